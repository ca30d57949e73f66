// The configuration file as lines with their numbers, for messages: what the lines mean is up to the library.
#ifndef ZEBCFG_CONFIGTEXT_H
#define ZEBCFG_CONFIGTEXT_H

#include <string>
#include <vector>

// A dn or attribute line with those that continue it. Comments and blank lines are left out.
struct ConfigLine {
    int first = 0;  // of its lines, counted from 1
    int last = 0;
    bool isDn = false;
    bool hasColon = true;
    std::string name;   // before the colon; the whole line without one
    std::string value;  // after the colons, without white space and parentheses at both ends
    int entry = 0;      // the number of the dn line above it, which is its own for that; 0 for none
};

std::vector<ConfigLine> linesOf(const std::string& text);
// The names of all attributes, each once. That of an attribute of the root comes first: nothing else finds the root.
std::vector<std::string> namesIn(const std::string& text);
// The numbers of the physical lines with a NUL byte, of which the library drops the rest.
std::vector<int> linesWithNul(const std::string& text);
std::string trimmedValue(const std::string& value);

#endif
