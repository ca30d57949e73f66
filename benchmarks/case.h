// The measurements with one generated file.
#ifndef CASE_H
#define CASE_H

#include "generate.h"
#include "measure.h"
#include "report.h"

#include <string>

// A generated file in a directory of its own, and what is found with it.
struct Case {
    explicit Case(const Request& request);

    TempDirectory directory;
    Input input;
    std::string file;
    Figures figures;
};

// First loads, reloads and releases in fresh processes, and loads in this one, beside what else reads the file.
void measureLoads(Case& each, const Effort& effort);

// Look-ups and searches beside ldb.
void measureSearches(Case& each, const Effort& effort);

// Updates of a copy of the file beside write(2).
void measureUpdates(Case& each, const Effort& effort);

#endif
