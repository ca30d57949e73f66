#include "LDIF_Entry.h"

#include "LDIF_Exception.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <ostream>

namespace {

// Whether ancestor is dn or lies above it; both are relative to the same entry.
bool isAtOrAbove(const LDIF_DN& ancestor, const LDIF_DN& dn)
{
    return ancestor.commonLevels(dn) == ancestor.size();
}

}  // namespace

LDIF_Entry::LDIF_Entry(const LDIF_Line& line, LDIF_Comment entryComment)
    : name(line.name), comment(std::move(entryComment))
{
    if (line.type != LDIF_Line::dn)
        throw illegalConstructor("LDIF_Entry", line);
    dn = cisString(line.value);
    relativeDn = dn;
}

LDIF_Entry::LDIF_Entry(LDIF_DN entryDn) : name("dn"), dn(std::move(entryDn)), relativeDn(dn) {}

LDIF_Entry& LDIF_Entry::operator+=(LDIF_Entry& child)
{
    return place(child, Transfer::copy);
}

LDIF_Entry& LDIF_Entry::place(LDIF_Entry&& child)
{
    return place(child, Transfer::move);
}

// child.relativeDn is relative to this entry's parent.
LDIF_Entry& LDIF_Entry::place(LDIF_Entry& child, Transfer transfer)
{
    if (!isAtOrAbove(relativeDn, child.relativeDn))
        throw LDIF_Exception(LDAP_OTHER, CFG_ERR_UNEXPECTED,
                             "[" + child.relativeDn.str() + "] is not child of [" + relativeDn.str() + "]");
    if (relativeDn.size() == child.relativeDn.size())
        return merge(child, transfer);
    child.relativeDn.removeLeading(relativeDn.size());
    return placeBelow(child, transfer);
}

LDIF_Entry& LDIF_Entry::merge(LDIF_Entry& other, Transfer transfer)
{
    comment += other.comment;
    attributes += other.attributes;
    for (LDIF_Entry& child : other.children)
        placeBelow(child, transfer);
    return *this;
}

// child.relativeDn is relative to this entry. At most one child of this entry is the same or an ancestor, and only
// where there is none can child be an ancestor of others.
LDIF_Entry& LDIF_Entry::placeBelow(LDIF_Entry& child, Transfer transfer)
{
    for (LDIF_Entry& each : children) {
        if (isAtOrAbove(each.relativeDn, child.relativeDn))
            return each.place(child, transfer);
    }
    children.reserve(children.size() + 1);  // what follows cannot fail halfway
    adoptInto(child);
    children.push_back(transfer == Transfer::copy ? child : std::move(child));
    return *this;
}

// Moves the children that belong below child there.
void LDIF_Entry::adoptInto(LDIF_Entry& child)
{
    const auto staysHere = [&](const LDIF_Entry& each) { return !isAtOrAbove(child.relativeDn, each.relativeDn); };
    if (std::all_of(children.begin(), children.end(), staysHere))
        return;
    const auto adopted = std::stable_partition(children.begin(), children.end(), staysHere);
    child.children.reserve(child.children.size() + static_cast<std::size_t>(children.end() - adopted));
    for (auto each = adopted; each != children.end(); ++each)
        child.place(std::move(*each));
    children.erase(adopted, children.end());
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

std::string LDIF_Entry::str() const
{
    std::string text;
    appendTo(text);
    return text;
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
    if (needsClosingLine())
        out += '\n';
}

// The blank lines below the root's attributes are comment lines of the first entry, if the file had any.
bool LDIF_Entry::needsClosingLine() const
{
    if (!name.empty())
        return true;
    if (children.empty())
        return false;
    const auto& lines = children.front().comment.lines;
    return lines.empty() || lines.front().type != LDIF_Line::blankLine;
}

void LDIF_Entry::appendTreeTo(std::string& out) const
{
    appendTo(out);
    for (const LDIF_Entry& child : children)
        child.appendTreeTo(out);
}

LDIF_Entry& LDIF_Entry::clear()
{
    return *this = LDIF_Entry();
}

LDIF_Entry* LDIF_Entry::find(const LDIF_DN& wanted)
{
    if (!isAtOrAbove(relativeDn, wanted))
        return nullptr;
    LDIF_Entry* entry = this;
    for (auto level = relativeDn.size(); level < wanted.size(); level += entry->relativeDn.size()) {
        const auto next = std::find_if(entry->children.begin(), entry->children.end(), [&](const LDIF_Entry& child) {
            return child.relativeDn.commonLevels(wanted, level) == child.relativeDn.size();
        });
        if (next == entry->children.end())
            return nullptr;
        entry = &*next;
    }
    return entry;
}

std::ostream& operator<<(std::ostream& stream, const LDIF_Entry& entry)
{
    std::string text;
    entry.appendTreeTo(text);
    return stream << text;
}
