// Whether the benchmark of the whole meets its targets.
#ifndef TARGETS_H
#define TARGETS_H

#include "hardFiles.h"
#include "report.h"

#include <vector>

// A line for each target, with the worst figure that it applies to.
void printTargets(const std::vector<Figures>& all, const std::vector<HardFile>& hardFiles);

#endif
