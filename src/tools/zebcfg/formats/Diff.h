// Two texts compared line by line, as diff -u shows them. It happens in this process, so that passwords reach no other
// program and can be masked line by line.
#ifndef ZEBCFG_DIFF_H
#define ZEBCFG_DIFF_H

#include <string>

// Empty for equal texts. Passwords are masked in it: a line that differs in its password alone is shown all the same.
std::string unifiedDiff(const std::string& before, const std::string& after, const std::string& shownName,
                        bool isColored);

#endif
