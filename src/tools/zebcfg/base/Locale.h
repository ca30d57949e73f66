// The locale of the process.
#ifndef ZEBCFG_LOCALE_H
#define ZEBCFG_LOCALE_H

#include <optional>
#include <string>
#include <vector>

// Takes the user's locale, or one of UTF-8 where that is the plain one.
void useLocale();
// Takes it again after another library has taken that of the system.
void reuseLocale();
// The name of its encoding, "UTF-8" for one.
std::string localeEncoding();
// Nothing when the text cannot be converted as a whole.
std::optional<std::string> localeToUtf8(const std::string& text);
std::optional<std::string> utf8ToLocale(const std::string& text);

// A variable of the environment, and the words of the command line, in that encoding. The value is empty for a variable
// that is not set.
std::string environmentValue(const char* name);
std::vector<std::string> localArguments(int argc, char** argv);

#endif
