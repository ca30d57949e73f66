#include "LDIF_Entry.h"

#include "LDIF_Exception.h"
#include "LDIF_LineSource.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <utility>

namespace {

template <typename List, typename IsSame>
bool areSame(const List& left, const List& right, IsSame isSame)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSame);
}

bool isSameText(const std::string& left, const std::string& right)
{
    return left == right;
}

bool isSameComment(const LDIF_Comment& left, const LDIF_Comment& right)
{
    return areSame(left.lines, right.lines, [](const LDIF_Line& one, const LDIF_Line& other) {
        return one.type == other.type && isSameText(one.value, other.value);
    });
}

bool isSameAttribute(const LDIF_Attribute& left, const LDIF_Attribute& right)
{
    return isSameText(left.name, right.name) && isSameComment(left.comment, right.comment) &&
           areSame(left.values, right.values, [](const LDIF_Value& one, const LDIF_Value& other) {
               return isSameText(one.stringValue, other.stringValue);
           });
}

bool isSamePair(const LDIF_RDN_pair& left, const LDIF_RDN_pair& right)
{
    return left.second.form == right.second.form && isSameText(left.first, right.first) &&
           isSameText(left.second, right.second);
}

}  // namespace

LDIF_Entry::LDIF_Entry(const LDIF_Line& line, LDIF_Comment entryComment)
    : name(line.name), comment(std::move(entryComment))
{
    if (line.type != LDIF_Line::dn)
        throw illegalConstructor("LDIF_Entry", line);
    dn = cisString(line.value);
}

LDIF_Entry::LDIF_Entry(LDIF_DN entryDn) : name("dn"), dn(std::move(entryDn)) {}

LDIF_Entry::LDIF_Entry(std::string_view text)
{
    LDIF_TextSource source(text);
    LDIF_Line line;
    LDIF_Comment waiting;
    for (int last = 0; last = line.next(source, last), line.type != LDIF_Line::endOfFile;) {
        if (line.type == LDIF_Line::attribute && line.wellFormed && !name.empty())
            attributes.add(line, waiting);
        else if (line.type == LDIF_Line::dn && line.wellFormed && name.empty())
            *this = LDIF_Entry(line, std::exchange(waiting, LDIF_Comment()));
        else if (line.type == LDIF_Line::blankLine && !name.empty())
            break;
        else if (line.type == LDIF_Line::blankLine || line.type == LDIF_Line::comment)
            waiting += line;
        else
            throw illegalConstructor("LDIF_Entry", line);
    }
    if (line.type != LDIF_Line::blankLine || source.position() != text.size() || !waiting.lines.empty())
        throw illegalConstructor("LDIF_Entry", line);
}

LDIF_Entry& LDIF_Entry::operator+=(const LDIF_Attribute& attribute)
{
    attributes += attribute;
    return *this;
}

LDIF_Entry& LDIF_Entry::operator+=(const LDIF_Comment& lines)
{
    comment += lines;
    return *this;
}

void LDIF_Entry::appendTo(std::string& out) const
{
    comment.appendTo(out);
    if (!name.empty()) {
        out.append(name).append(": ");
        dn.appendTo(out);
        out += '\n';
    }
    attributes.appendTo(out);
    if (!name.empty())
        out += '\n';
}

LDIF_Entry& LDIF_Entry::clear()
{
    return *this = LDIF_Entry();
}

void LDIF_Entry::merge(LDIF_Entry&& other)
{
    comment += std::move(other.comment);
    attributes += std::move(other.attributes);
}

bool LDIF_Entry::isSameAs(const LDIF_Entry& other) const
{
    const auto isSameRdn = [](const LDIF_RDN& left, const LDIF_RDN& right) { return areSame(left, right, isSamePair); };
    return isSameText(name, other.name) && areSame(dn, other.dn, isSameRdn) && isSameComment(comment, other.comment) &&
           areSame(attributes, other.attributes, isSameAttribute);
}
