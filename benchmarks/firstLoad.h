// What a process pays that has not loaded before. Each figure comes from a child process, which measures itself.
#ifndef FIRSTLOAD_H
#define FIRSTLOAD_H

#include "measure.h"

#include <cstddef>
#include <string>
#include <vector>

// A child is ended after that many seconds, of wall time.
constexpr unsigned childSeconds = 60;

// What a child process does: prints the figures of the work that the arguments after childOption name.
void runChild(const std::vector<std::string>& arguments);

// CPU time in seconds, and the greatest resident memory since the process began, in bytes. All are infinite for a child
// that was ended.
struct LoadFigures {
    double load = infinite;
    double peak = infinite;     // after the load
    double release = infinite;  // of the handle, after that
};
struct ReloadFigures {
    double reload = infinite;
    double peak = infinite;  // after a load and the reload
};

LoadFigures firstLoad(const std::string& file);

// A load, then a change of one byte as another process would make it, and the base search that meets the change.
// revisionAt is where the digit of the revision stands in the file.
ReloadFigures firstReload(const std::string& file, std::size_t revisionAt);

// The CPU time in which libldap's LDIF reader reads the file, which has that many lines with a name and a value.
double firstLexing(const std::string& file, std::size_t lines);

// The memory of a process that makes a handle and loads nothing.
double peakWithoutLoad();

#endif
