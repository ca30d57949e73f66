#include "LDIF_Comment.h"

#include <ostream>

std::string LDIF_Comment::str() const
{
    std::string text;
    appendTo(text);
    return text;
}

void LDIF_Comment::appendTo(std::string& out) const
{
    for (const LDIF_Line& line : lines) {
        line.appendTo(out);
        out += '\n';
    }
}

LDIF_Comment& LDIF_Comment::operator+=(const LDIF_Line& line)
{
    if (line.type == LDIF_Line::comment || line.type == LDIF_Line::blankLine)
        lines.push_back(line);
    return *this;
}

LDIF_Comment& LDIF_Comment::operator+=(const LDIF_Comment& other)
{
    lines.reserve(lines.size() + other.lines.size());  // other may be this one
    lines.insert(lines.end(), other.lines.begin(), other.lines.end());
    return *this;
}

LDIF_Comment& LDIF_Comment::clear()
{
    lines.clear();
    return *this;
}

std::ostream& operator<<(std::ostream& stream, const LDIF_Comment& comment)
{
    return stream << comment.str();
}
