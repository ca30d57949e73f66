// Passwords are shown as a mask, unless the user asks for them.
#ifndef ZEBCFG_MASKING_H
#define ZEBCFG_MASKING_H

#include <string>

// What stands for a password, unless showPasswords(true) has been called.
constexpr char passwordMask[] = "********";
void showPasswords(bool areShown);

// The value as output and messages show it.
std::string shownValue(const std::string& attribute, const std::string& value);
// The same for a line of the file, also where its colon is missing, or a filter.
std::string shownLine(const std::string& line);

#endif
