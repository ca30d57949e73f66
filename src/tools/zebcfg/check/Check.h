// What is wrong with a configuration file, all at once. Every rule is the library's: it is asked about a copy.
#ifndef ZEBCFG_CHECK_H
#define ZEBCFG_CHECK_H

#include "check/Finding.h"

#include <string>
#include <vector>

class LiveFile;

// In the order of the lines. An error is what ends a load or would be quarantined by it.
std::vector<Finding> check(const std::string& text, const std::string& shownName);
// What can be said of the file itself: its mode, and damage.
std::vector<Finding> checkFile(const LiveFile& file, const std::string& backupName);

#endif
