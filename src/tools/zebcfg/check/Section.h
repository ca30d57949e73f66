// The lines of one entry in the text of a configuration file, or all lines.
#ifndef ZEBCFG_SECTION_H
#define ZEBCFG_SECTION_H

#include <string>

class Section {
public:
    // An empty DN stands for the whole text. Throws Failure (32) when no entry has the DN, in the library's spelling.
    Section(const std::string& text, const std::string& dn);

    std::string part() const { return whole.substr(begin, end - begin); }
    int firstLine() const;  // of the part, from 1
    // The whole text with another part.
    std::string with(const std::string& replacement) const;

private:
    std::string whole;
    std::size_t begin = 0;
    std::size_t end;
};

#endif
