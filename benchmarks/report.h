// What the benchmark of the whole has found with the generated files, as tables.
#ifndef REPORT_H
#define REPORT_H

#include "generate.h"
#include "measure.h"

#include <cstddef>
#include <string>
#include <vector>

// What is found with one file: samples of CPU time in seconds, and memory in bytes. What was not measured is unknown.
struct Figures {
    Shape shape = Shape::containers;
    std::size_t size = 0;
    double bytes = 0;  // of the file

    Samples load, lexer, reload, release;  // first ones, each in a fresh process
    Samples peak;                          // of that process after the load, above that of one that loads nothing
    Samples reloadPeak;                    // the same after the reload
    Samples warmLoad, warmLexer, read;     // in a process that has done the same before

    Samples lookUp, ldbLookUp, subtree, ldbSubtree, ldbIndexed;

    Samples flush, modify, add, erase, write;
};

using Member = Samples Figures::*;

template <Member time, Member reference>
double ratio(const Figures& row)
{
    return (row.*time).median() / (row.*reference).median();
}

template <Member memory>
double perByte(const Figures& row)
{
    return (row.*memory).median() / row.bytes;
}

// From this size on growth is measured, and targets for large files apply.
constexpr std::size_t large = 3000;

// The tables of one size.
void printTables(const std::vector<Figures>& rows);

// How load, flush and look-up of each shape grow with the size.
void printGrowth(const std::vector<Figures>& all);

// The exponent of one figure of one shape, over the sizes from large on.
struct Growth {
    double exponent = unknown;
    std::string sizes;
};
Growth growthOf(const std::vector<Figures>& all, Shape shape, Member figure);

#endif
