#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

constexpr std::size_t large = 3000;  // from this size on growth is measured, and targets for large files apply

using Time = Samples Figures::*;

struct Column {
    const char* title;
    double (*figure)(const Figures&);
};

template <Time time>
double ms(const Figures& row)
{
    return (row.*time).median() * 1e3;
}

template <Time time>
double us(const Figures& row)
{
    return (row.*time).median() * 1e6;
}

template <Time time, Time reference>
double ratio(const Figures& row)
{
    return (row.*time).median() / (row.*reference).median();
}

double loadToFirst(const Figures& row)
{
    return row.load.median() / row.firstLoad;
}

double peakPerByte(const Figures& row)
{
    return row.peak / row.bytes;
}

double peakOfReload(const Figures& row)
{
    return row.reloadPeak / row.peak;
}

const std::vector<Column> loadColumns = {
    {"MB", [](const Figures& row) { return row.bytes / 1e6; }},
    {"load ms", ms<&Figures::load>},
    {"to first", loadToFirst},
    {"reader ms", ms<&Figures::reader>},
    {"load/reader", ratio<&Figures::load, &Figures::reader>},
    {"read(2) ms", ms<&Figures::read>},
    {"reload ms", ms<&Figures::reload>},
    {"/load", ratio<&Figures::reload, &Figures::load>},
    {"release ms", ms<&Figures::release>},
    {"/load", ratio<&Figures::release, &Figures::load>},
    {"peak B/B", peakPerByte},
    {"reload/load peak", peakOfReload},
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

// With three digits that count.
std::string shown(double number)
{
    if (std::isnan(number))
        return "-";
    const int magnitude = number < 1 ? 0 : std::min(static_cast<int>(std::log10(number)) + 1, 3);
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.*f", 3 - magnitude, number);
    return text;
}

// With a comma between thousands.
std::string shown(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t pos = text.size(); pos > 3;)
        text.insert(pos -= 3, ",");
    return text;
}

// The first line holds the titles. All but the first column is aligned to the right.
void printTable(const std::string& title, const std::vector<std::vector<std::string>>& lines)
{
    std::printf("\n%s\n", title.c_str());
    for (const auto& line : lines) {
        std::printf("%-15s", line.front().c_str());
        for (std::size_t i = 1; i < line.size(); ++i)
            std::printf("  %*s", static_cast<int>(std::max<std::size_t>(lines.front()[i].size(), 6)), line[i].c_str());
        std::printf("\n");
    }
    (void)std::fflush(stdout);
}

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

// A figure that a target looks at, and where it was found.
struct Found {
    double value = unknown;
    std::string where;

    void takeWorse(const Found& other)
    {
        if (!std::isnan(other.value) && !(other.value <= value))
            *this = other;
    }
};

// No shapes means all.
Found worst(const std::vector<Figures>& all, const std::vector<Shape>& shapes, std::size_t leastSize,
            double (*figure)(const Figures&))
{
    Found found;
    for (const Figures& row : all) {
        const bool isMeant = shapes.empty() || std::find(shapes.begin(), shapes.end(), row.shape) != shapes.end();
        if (isMeant && row.size >= leastSize)
            found.takeWorse({figure(row), std::string(nameOf(row.shape)) + ", " + shown(row.size)});
    }
    return found;
}

Found growth(const std::vector<Figures>& all, Shape shape, Time time)
{
    std::vector<std::pair<double, double>> points;
    std::string sizes;
    for (const Figures& row : all) {
        const double median = (row.*time).median();
        if (row.shape != shape || row.size < large || std::isnan(median))
            continue;
        points.emplace_back(static_cast<double>(row.size), median);
        sizes += (sizes.empty() ? "" : " - ") + shown(row.size);
    }
    return {growthExponent(points), std::string(nameOf(shape)) + ", " + sizes};
}

Found worstGrowth(const std::vector<Figures>& all, Time time)
{
    Found found;
    for (const Shape shape : allShapes)
        found.takeWorse(growth(all, shape, time));
    return found;
}

// stretch is unknown for a target without one.
void judge(const char* text, const Found& found, double target, double stretch = unknown)
{
    const bool isKnown = !std::isnan(found.value);
    std::printf("%-12s  %-42s", !isKnown ? "not measured" : found.value <= target ? "met" : "not met", text);
    std::printf("  %6s  target %-5s", shown(found.value).c_str(), shown(target).c_str());
    std::printf("  stretch %-9s", (shown(stretch) + (found.value <= stretch ? " met" : "")).c_str());
    std::printf("  %s\n", isKnown ? found.where.c_str() : "");
}

}  // namespace

void printTables(const std::vector<Figures>& rows)
{
    printColumns("load and release", loadColumns, rows);
    printColumns("searches", searchColumns, rows);
    printColumns("updates", updateColumns, rows);
}

void printGrowth(const std::vector<Figures>& all)
{
    std::vector<std::vector<std::string>> lines{{"shape", "load", "flush", "look-up"}};
    for (const Shape shape : allShapes) {
        lines.push_back({nameOf(shape)});
        for (const Time time : {&Figures::load, &Figures::flush, &Figures::lookUp})
            lines.back().push_back(shown(growth(all, shape, time).value));
    }
    printTable("Exponents of growth, from N = " + shown(large) + " on", lines);
}

void printTargets(const std::vector<Figures>& all)
{
    const std::vector<Shape> first{Shape::containers};
    const std::vector<Shape> otherTrees{Shape::flat, Shape::childrenFirst, Shape::missingParents};
    const std::vector<Shape> list{Shape::oneAttribute};
    const auto loadToReader = ratio<&Figures::load, &Figures::reader>;
    std::printf("\nTargets, by the worst figure of each\n");
    judge("load / reader, containers", worst(all, first, 0, loadToReader), 6, 4);
    judge("load / load of containers, other trees", worst(all, otherTrees, 0, loadToFirst), 1.4, 1.2);
    judge("load / reader, one attribute", worst(all, list, 0, loadToReader), 8, 5);
    judge("exponent of load", worstGrowth(all, &Figures::load), 1.1, 1.05);
    judge("exponent of flush", worstGrowth(all, &Figures::flush), 1.1, 1.05);
    judge("reload / load", worst(all, {}, 0, ratio<&Figures::reload, &Figures::load>), 1);
    judge("peak of reload / peak of load", worst(all, {}, large, peakOfReload), 1.4);
    judge("look-up / ldb", worst(all, {}, 0, ratio<&Figures::lookUp, &Figures::ldbLookUp>), 0.5, 0.25);
    judge("exponent of look-up, flat", growth(all, Shape::flat, &Figures::lookUp), 0.15);
    judge("subtree search of 1 % / ldb", worst(all, {}, 0, ratio<&Figures::subtree, &Figures::ldbSubtree>), 0.25);
    judge("the same / indexed ldb", worst(all, {}, 0, ratio<&Figures::subtree, &Figures::ldbIndexed>), 2, 1);
    judge("modify / write(2)", worst(all, {}, large, ratio<&Figures::modify, &Figures::write>), 5, 3);
    judge("add / write(2)", worst(all, {}, large, ratio<&Figures::add, &Figures::write>), 5, 3);
    judge("delete / write(2)", worst(all, {}, large, ratio<&Figures::erase, &Figures::write>), 5, 3);
    judge("peak of load / bytes of the file", worst(all, {}, large, peakPerByte), 12, 8);
    judge("release / load", worst(all, {}, 0, ratio<&Figures::release, &Figures::load>), 0.5);
}
