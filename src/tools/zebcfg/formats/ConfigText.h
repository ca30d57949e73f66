// The configuration file as lines with their numbers, for messages: what the lines mean is up to the library.
#ifndef ZEBCFG_CONFIGTEXT_H
#define ZEBCFG_CONFIGTEXT_H

#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A dn or attribute line with those that continue it. Comments and blank lines are left out.
struct ConfigLine {
    int first = 0;  // of its lines, counted from 1
    int last = 0;
    bool isDn = false;
    bool hasColon = true;
    std::string_view name;   // before the colon; the whole line without one
    std::string_view value;  // after the colons, without white space and parentheses at both ends
    int entry = 0;           // the number of the dn line above it, which is its own for that; 0 for none
};

// The lines of a text, which has to outlive them.
class ConfigLines {
public:
    explicit ConfigLines(const std::string& text);
    ConfigLines(const ConfigLines&) = delete;
    ConfigLines& operator=(const ConfigLines&) = delete;
    ~ConfigLines() = default;

    auto begin() const noexcept { return lines.begin(); }
    auto end() const noexcept { return lines.end(); }
    bool empty() const noexcept { return lines.empty(); }

private:
    // The first physical line, without line end and carriage returns, which the library drops wherever they stand.
    std::string_view takeLine(std::string_view& rest);
    // A value with the lines at the begin of rest that continue it, which the number counts.
    std::string_view joined(std::string_view value, std::string_view& rest, int& number);

    std::vector<ConfigLine> lines;
    std::deque<std::string> kept;  // what does not stand in the text as it is
};

inline ConfigLines linesOf(const std::string& text)
{
    return ConfigLines(text);
}

// The names of all attributes, each once. That of an attribute of the root comes first: nothing else finds the root.
std::vector<std::string> namesIn(const std::string& text);
// The numbers of the physical lines with a NUL byte, of which the library drops the rest.
std::vector<int> linesWithNul(const std::string& text);
std::string_view trimmedValue(std::string_view value);

#endif
