#include "targets.h"

#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace {

constexpr std::size_t tenMegabytes = 30000;  // the size from which a file of entries has about that many bytes
constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

using Figure = double (*)(const Figures&);

// What a target looks at: the shapes, and the sizes from least up to below end.
struct Scope {
    std::vector<Shape> shapes;
    std::size_t least = 0;
    std::size_t end = noLimit;

    bool holds(const Figures& row) const
    {
        return row.size >= least && row.size < end &&
               std::find(shapes.begin(), shapes.end(), row.shape) != shapes.end();
    }
};

const std::vector<Shape> every(std::begin(allShapes), std::end(allShapes));
const std::vector<Shape> inAscii{Shape::containers, Shape::flat, Shape::missingParents};  // as the library writes it
const std::vector<Shape> asWritten{Shape::containers, Shape::flat, Shape::missingParents, Shape::beyondAscii};
const std::vector<Shape> manyEntries{Shape::containers, Shape::flat,        Shape::missingParents,
                                     Shape::rearranged, Shape::beyondAscii, Shape::childrenFirst};

// A figure and where it was found.
struct Found {
    double value = unknown;
    std::string where;

    void takeWorse(const Found& other)
    {
        if (!std::isnan(other.value) && !(other.value <= value))
            *this = other;
    }
};

Found worst(const std::vector<Figures>& all, const Scope& scope, Figure figure)
{
    Found found;
    for (const Figures& row : all) {
        if (scope.holds(row))
            found.takeWorse({figure(row), std::string(nameOf(row.shape)) + ", " + shown(row.size)});
    }
    return found;
}

Found worstGrowth(const std::vector<Figures>& all, Member figure)
{
    Found found;
    for (const Shape shape : allShapes) {
        const Growth growth = growthOf(all, shape, figure);
        found.takeWorse({growth.exponent, std::string(nameOf(shape)) + ", " + growth.sizes});
    }
    return found;
}

Found worst(const std::vector<HardFile>& hardFiles, double (HardFile::*figure)() const)
{
    Found found;
    for (const HardFile& each : hardFiles)
        found.takeWorse({(each.*figure)(), each.kind});
    return found;
}

// stretch is unknown for a target without one.
void judge(const char* text, const Found& found, double target, double stretch = unknown)
{
    const bool isKnown = !std::isnan(found.value);
    std::printf("%-12s  %-50s", !isKnown ? "not measured" : found.value <= target ? "met" : "missed", text);
    std::printf("  %6s  target %-5s", shown(found.value).c_str(), shown(target).c_str());
    std::printf("  stretch %-9s", (shown(stretch) + (found.value <= stretch ? " met" : "")).c_str());
    std::printf("  %s\n", isKnown ? found.where.c_str() : "");
}

void judgeLoads(const std::vector<Figures>& all)
{
    const auto load = [&](const char* text, const Scope& scope, double target, double stretch) {
        judge(text, worst(all, scope, ratio<&Figures::load, &Figures::lexer>), target, stretch);
    };
    load("first load / lexer, as written", {inAscii, large}, 1.5, 1);
    load("the same, attributes and blanks rearranged", {{Shape::rearranged}, large}, 3, 2);
    load("the same, 300 entries", {inAscii, 0, large}, 4, 2);
    load("the same, text beyond ASCII", {{Shape::beyondAscii}, large}, 2, 1.5);
    load("the same, children first", {{Shape::childrenFirst}, large}, 2, 1.5);
    load("the same, one attribute of 30,000 values", {{Shape::oneAttribute}, tenMegabytes}, 3, 1.5);
}

void judgeMemory(const std::vector<Figures>& all)
{
    const auto load = [&](const char* text, const Scope& scope, double target) {
        judge(text, worst(all, scope, perByte<&Figures::peak>), target, 1.3);
    };
    load("peak B/B of a first load, as written, 10 MB", {asWritten, tenMegabytes}, 1.5);
    load("the same, 1 MB", {asWritten, large, tenMegabytes}, 2.2);
    load("the same, rearranged, 10 MB", {{Shape::rearranged}, tenMegabytes}, 2.5);
    judge("peak B/B of a reload, as written, 10 MB",
          worst(all, {asWritten, tenMegabytes}, perByte<&Figures::reloadPeak>), 2.5, 1.3);
}

void judgeSearches(const std::vector<Figures>& all)
{
    judge("look-up / ldb", worst(all, {every}, ratio<&Figures::lookUp, &Figures::ldbLookUp>), 0.3, 0.25);
    judge("exponent of look-up", worstGrowth(all, &Figures::lookUp), 0.1);
    judge("search of 1 % / ldb", worst(all, {every}, ratio<&Figures::subtree, &Figures::ldbSubtree>), 0.05);
    judge("the same / indexed ldb", worst(all, {every}, ratio<&Figures::subtree, &Figures::ldbIndexed>), 0.6);
}

void judgeUpdates(const std::vector<Figures>& all)
{
    judge("modify / write(2)", worst(all, {manyEntries, large}, ratio<&Figures::modify, &Figures::write>), 1.4, 1.2);
    judge("add / write(2)", worst(all, {every, large}, ratio<&Figures::add, &Figures::write>), 1.4, 1.2);
    judge("delete / write(2)", worst(all, {every, large}, ratio<&Figures::erase, &Figures::write>), 1.4, 1.2);
    judge("modify / write(2), in an attribute of 30,000 values",
          worst(all, {{Shape::oneAttribute}, tenMegabytes}, ratio<&Figures::modify, &Figures::write>), 2.5, 1.2);
}

}  // namespace

void printTargets(const std::vector<Figures>& all, const std::vector<HardFile>& hardFiles)
{
    std::printf("\nTargets, by the worst figure of each\n");
    judgeLoads(all);
    judgeMemory(all);
    judgeSearches(all);
    judgeUpdates(all);
    judge("reload / first load", worst(all, {every}, ratio<&Figures::reload, &Figures::load>), 1);
    judge("release / first load", worst(all, {every}, ratio<&Figures::release, &Figures::load>), 0.1, 0.05);
    judge("exponent of first load", worstGrowth(all, &Figures::load), 1.05);
    judge("exponent of flush", worstGrowth(all, &Figures::flush), 1.05);
    judge("exponent of hard files", worst(hardFiles, &HardFile::exponent), 1.35);
    judge("us a byte of hard files", worst(hardFiles, &HardFile::usPerByte), 3);
}
