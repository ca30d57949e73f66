// The comment and blank lines that stand before an attribute or an entry.
#ifndef LDIF_COMMENT_H
#define LDIF_COMMENT_H

#include "LDIF_Line.h"
#include "LDIF_Util.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

// Lines of the types comment and blankLine in the order of the file, and no others. A plain value.
class LDIF_Comment final {
public:
    std::vector<LDIF_Line> lines;

    // Each line with a line end behind it.
    virtual std::string str() const { return textOf(*this); }
    friend std::ostream& operator<<(std::ostream& out, const LDIF_Comment& comment) { return out << comment.str(); }
    void appendTo(std::string& out) const;

    // Adds a comment or blank line; any other is ignored.
    LDIF_Comment& operator+=(const LDIF_Line& line);
    LDIF_Comment& operator+=(const LDIF_Comment& other);
    LDIF_Comment& operator+=(LDIF_Comment&& other);
    // Makes room for that many more lines, so that adding them cannot fail.
    void makeRoom(std::size_t count);
    LDIF_Comment& clear();
};

#endif
