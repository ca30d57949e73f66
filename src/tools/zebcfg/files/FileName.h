// Names of files and of those beside them.
#ifndef ZEBCFG_FILENAME_H
#define ZEBCFG_FILENAME_H

#include <string>

// The name that symbolic links lead to. For a file that is missing, those of its directory.
std::string resolvedName(const std::string& name);
std::string directoryOf(const std::string& name);  // with its separator; empty for a plain name
// A name in the same directory for what is to take the place of name.
std::string siblingOf(const std::string& name);

#endif
