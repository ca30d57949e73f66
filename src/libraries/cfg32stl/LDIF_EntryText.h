// The text of an entry.
#ifndef LDIF_ENTRYTEXT_H
#define LDIF_ENTRYTEXT_H

#include "platform.h"

#include <cstddef>
#include <string_view>

// The text of one entry as the file holds it: the comment, the dn line, the attributes, and the blank line that closes
// it. Only borrowed. Names of attributes are ASCII, and reading the text gives the entry that it was made of.
//
//     # comment                          text
//     dn: cn=a, o=b                      dnStart and dnSize: cn=a, o=b
//     cn: a                              attributes: from here to the blank line
//
struct LDIF_EntryText {
    std::string_view text;
    std::size_t dnStart = 0;
    std::size_t dnSize = 0;
    // What it says depends on the locale: it has characters beyond ASCII, or a DN with escapes or quotes.
    bool isLocaleBound = false;

    std::string_view dn() const noexcept { return text.substr(dnStart, dnSize); }
    std::string_view attributes() const noexcept
    {
        const std::size_t start = dnStart + dnSize + lineEnd.size();
        return text.substr(start, text.size() - lineEnd.size() - start);
    }
};

// One line of an attribute, "name: value", or a comment line, which has no name and is all value.
struct LDIF_TextLine {
    std::string_view name;
    std::string_view value;
};

// Takes the first line off the attributes of an entry, which are not empty.
LDIF_TextLine takeLine(std::string_view& attributes) noexcept;

// Whether the text begins with a line of that name.
inline bool isNamed(std::string_view lines, std::string_view name) noexcept
{
    return lines.size() > name.size() && lines[name.size()] == ':' &&
           compareFolded(lines.substr(0, name.size()), name) == 0;
}

// The lines from the first of that name on; empty when there is none.
std::string_view linesFrom(std::string_view attributes, std::string_view name) noexcept;

#endif
