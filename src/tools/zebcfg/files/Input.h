// Files that the user names beside the configuration file.
#ifndef ZEBCFG_INPUT_H
#define ZEBCFG_INPUT_H

#include <string>

constexpr char standardInput[] = "standard input";
// What messages call it: "-" is standard input.
std::string shownInput(const std::string& name);
// The content of the file; a pipe is read to its end. This and the others throw Failure.
std::string readNamed(const std::string& name);
// The same, or standard input for "-".
std::string readInput(const std::string& name);
// The content without one line end after it.
std::string readPasswordFile(const std::string& name);

#endif
