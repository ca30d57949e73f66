// What the benchmark of the whole has found, as tables and as a line for each target.
#ifndef REPORT_H
#define REPORT_H

#include "generate.h"
#include "measure.h"

#include <cstddef>
#include <vector>

// What is found with one file: samples of CPU time in seconds, and memory in bytes. What was not measured is unknown.
struct Figures {
    Shape shape = Shape::containers;
    std::size_t size = 0;
    double bytes = 0;  // of the file

    Samples load, reload, release, reader, read;
    double firstLoad = unknown;   // the median of the first shape
    double peak = unknown;        // after a load, above that of a process that loads nothing
    double reloadPeak = unknown;  // the same after a reload

    Samples lookUp, ldbLookUp, subtree, ldbSubtree, ldbIndexed;

    Samples flush, modify, add, erase, write;
};

// The tables of one size.
void printTables(const std::vector<Figures>& rows);

// How load, flush and look-up of each shape grow with the size.
void printGrowth(const std::vector<Figures>& all);

// Whether each target is met, by the worst figure that it applies to.
void printTargets(const std::vector<Figures>& all);

#endif
