// Two texts compared line by line, as diff -u shows them. It happens in this process, so that passwords reach no other
// program and can be masked line by line.
#ifndef ZEBCFG_DIFF_H
#define ZEBCFG_DIFF_H

#include "base/Entry.h"

#include <string>
#include <vector>

// Empty for equal texts. Passwords are masked in it: a line that differs in its password alone is shown all the same.
std::string unifiedDiff(const std::string& before, const std::string& after, const std::string& shownName,
                        bool isColored);

// Entries under the name that messages have for them.
struct NamedEntries {
    const std::string& name;
    const std::vector<Entry>& entries;
};

// Two configurations compared entry by entry: each that differs, with the values that do, however the files arrange
// them. Empty for the same. Passwords are masked.
std::string entryDiff(const NamedEntries& before, const NamedEntries& after, bool isColored);

#endif
