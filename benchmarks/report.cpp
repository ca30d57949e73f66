#include "report.h"

#include "table.h"

namespace {

struct Column {
    const char* title;
    double (*figure)(const Figures&);
};

template <Member time>
double ms(const Figures& row)
{
    return (row.*time).median() * 1e3;
}

template <Member time>
double us(const Figures& row)
{
    return (row.*time).median() * 1e6;
}

const std::vector<Column> loadColumns = {
    {"MB", [](const Figures& row) { return row.bytes / 1e6; }},
    {"first ms", ms<&Figures::load>},
    {"lexer ms", ms<&Figures::lexer>},
    {"/lexer", ratio<&Figures::load, &Figures::lexer>},
    {"load B/B", perByte<&Figures::peak>},
    {"warm ms", ms<&Figures::warmLoad>},
    {"lexer ms", ms<&Figures::warmLexer>},
    {"/lexer", ratio<&Figures::warmLoad, &Figures::warmLexer>},
    {"read(2) ms", ms<&Figures::read>},
    {"reload ms", ms<&Figures::reload>},
    {"/first", ratio<&Figures::reload, &Figures::load>},
    {"reload B/B", perByte<&Figures::reloadPeak>},
    {"release ms", ms<&Figures::release>},
    {"/first", ratio<&Figures::release, &Figures::load>},
};

const std::vector<Column> searchColumns = {
    {"look-up us", us<&Figures::lookUp>},
    {"ldb us", us<&Figures::ldbLookUp>},
    {"/ldb", ratio<&Figures::lookUp, &Figures::ldbLookUp>},
    {"1 % ms", ms<&Figures::subtree>},
    {"ldb ms", ms<&Figures::ldbSubtree>},
    {"/ldb", ratio<&Figures::subtree, &Figures::ldbSubtree>},
    {"indexed ldb ms", ms<&Figures::ldbIndexed>},
    {"/indexed", ratio<&Figures::subtree, &Figures::ldbIndexed>},
};

const std::vector<Column> updateColumns = {
    {"write(2) ms", ms<&Figures::write>},
    {"flush ms", ms<&Figures::flush>},
    {"/write", ratio<&Figures::flush, &Figures::write>},
    {"modify ms", ms<&Figures::modify>},
    {"/write", ratio<&Figures::modify, &Figures::write>},
    {"add ms", ms<&Figures::add>},
    {"/write", ratio<&Figures::add, &Figures::write>},
    {"delete ms", ms<&Figures::erase>},
    {"/write", ratio<&Figures::erase, &Figures::write>},
};

void printColumns(const char* subject, const std::vector<Column>& columns, const std::vector<Figures>& rows)
{
    std::vector<std::vector<std::string>> lines{{"shape"}};
    for (const Column& column : columns)
        lines.front().emplace_back(column.title);
    for (const Figures& row : rows) {
        lines.push_back({nameOf(row.shape)});
        for (const Column& column : columns)
            lines.back().push_back(shown(column.figure(row)));
    }
    printTable("N = " + shown(rows.front().size) + ": " + subject, lines);
}

}  // namespace

void printTables(const std::vector<Figures>& rows)
{
    printColumns("load, reload and release", loadColumns, rows);
    printColumns("searches", searchColumns, rows);
    printColumns("updates", updateColumns, rows);
}

Growth growthOf(const std::vector<Figures>& all, Shape shape, Member figure)
{
    Growth growth;
    std::vector<std::pair<double, double>> points;
    for (const Figures& row : all) {
        if (row.shape != shape || row.size < large)
            continue;
        points.emplace_back(static_cast<double>(row.size), (row.*figure).median());
        growth.sizes += (growth.sizes.empty() ? "" : " - ") + shown(row.size);
    }
    growth.exponent = growthExponent(points);
    return growth;
}

void printGrowth(const std::vector<Figures>& all)
{
    std::vector<std::vector<std::string>> lines{{"shape", "first load", "flush", "look-up"}};
    for (const Shape shape : allShapes) {
        if (growthOf(all, shape, &Figures::load).sizes.empty())
            continue;
        lines.push_back({nameOf(shape)});
        for (const Member figure : {&Figures::load, &Figures::flush, &Figures::lookUp})
            lines.back().push_back(shown(growthOf(all, shape, figure).exponent));
    }
    printTable("Exponents of growth, from N = " + shown(large) + " on", lines);
}
