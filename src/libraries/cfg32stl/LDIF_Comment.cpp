#include "LDIF_Comment.h"

#include <algorithm>
#include <iterator>
#include <utility>

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
    return *this += LDIF_Comment(other);
}

LDIF_Comment& LDIF_Comment::operator+=(LDIF_Comment&& other)
{
    makeRoom(other.lines.size());
    std::move(other.lines.begin(), other.lines.end(), std::back_inserter(lines));
    other.clear();
    return *this;
}

// At least doubles, so that many small additions stay cheap.
void LDIF_Comment::makeRoom(std::size_t count)
{
    if (lines.capacity() - lines.size() < count)
        lines.reserve(lines.size() + std::max(lines.size(), count));
}

LDIF_Comment& LDIF_Comment::clear()
{
    lines.clear();
    return *this;
}
