// Files on which a careless load takes time with the square of the size.
#ifndef HARDFILES_H
#define HARDFILES_H

#include "measure.h"

#include <string>
#include <utility>
#include <vector>

// The first loads of files of one kind, which double in size.
struct HardFile {
    std::string kind;
    std::vector<std::pair<double, double>> points;  // bytes, and CPU time in seconds; infinite where a load was ended

    double exponent() const { return growthExponent(points); }
    // The most of all sizes.
    double usPerByte() const;
};

std::vector<HardFile> measureHardFiles(const Effort& effort);

void printHardFiles(const std::vector<HardFile>& files);

#endif
