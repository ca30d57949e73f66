#include "LDIF_Entry.h"

#include "LDIF_Exception.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <functional>
#include <new>
#include <ostream>
#include <utility>

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
    forgetText();
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
    const auto above = findChild(child.relativeDn, 0);
    if (above != children.end())
        return above->place(child, transfer);
    if (transfer == Transfer::copy) {
        LDIF_Entry copy = child;
        return placeBelow(copy, Transfer::move);
    }
    if (children.size() == children.capacity())
        children.reserve(2 * children.size() + 1);
    adoptInto(child);
    children.push_back(std::move(child));
    indexLast();
    return *this;
}

// Moves the children that belong below child there. Either all of them go, or memory is exhausted and none does.
void LDIF_Entry::adoptInto(LDIF_Entry& child)
{
    const ChildIndex* const known = index();
    if (known != nullptr && known->deepest <= child.relativeDn.size())
        return;
    const auto staysHere = [&](const LDIF_Entry& each) { return !isAtOrAbove(child.relativeDn, each.relativeDn); };
    const auto count = std::count_if(children.begin(), children.end(), std::not_fn(staysHere));
    if (count == 0)
        return;
    if (!child.children.empty())
        return adoptOneByOne(child, staysHere);
    child.children.reserve(static_cast<std::size_t>(count));
    childIndex->reset();
    const auto adopted = std::stable_partition(children.begin(), children.end(), staysHere);
    for (auto each = adopted; each != children.end(); ++each) {
        each->relativeDn.removeLeading(child.relativeDn.size());
        child.children.push_back(std::move(*each));  // they are no relations of each other
    }
    children.erase(adopted, children.end());
}

// A child that has children already may have relations of the adopted ones among them.
template <typename StaysHere>
void LDIF_Entry::adoptOneByOne(LDIF_Entry& child, StaysHere staysHere)
{
    for (auto each = children.begin(); each != children.end();) {
        if (staysHere(*each)) {
            ++each;
            continue;
        }
        child.place(LDIF_Entry(*each));
        childIndex->reset();
        each = children.erase(each);
    }
}

// Takes the last child into the index. Without memory for that, the index is made anew when it is needed.
void LDIF_Entry::indexLast() noexcept
{
    try {
        if (*childIndex != nullptr)
            (*childIndex)->add(children.back());
    } catch (const std::bad_alloc&) {
        childIndex->reset();
    }
}

void LDIF_Entry::eraseChild(std::vector<LDIF_Entry>::iterator child)
{
    if (*childIndex != nullptr)
        (*childIndex)->positions.erase(static_cast<std::size_t>(child - children.begin()));
    children.erase(child);
}

LDIF_Entry LDIF_Entry::takeContent()
{
    childIndex->reset();
    std::vector<LDIF_Entry> family = std::exchange(children, {});
    LDIF_Entry content = std::exchange(*this, LDIF_Entry());
    children = std::move(family);
    return content;
}

std::vector<LDIF_Entry>::iterator LDIF_Entry::findChild(const LDIF_DN& path, std::size_t level)
{
    const ChildIndex* const known = index();
    if (known == nullptr)
        return std::find_if(children.begin(), children.end(), [&](const LDIF_Entry& child) {
            return child.relativeDn.commonLevels(path, level) == child.relativeDn.size();
        });
    std::size_t hash = 0;
    for (std::size_t levels = 1; levels <= known->deepest && level + levels <= path.size(); ++levels) {
        hash = path[level + levels - 1].hash(hash);
        const std::size_t found = known->positions.find(hash, [&](std::size_t at) {
            const LDIF_DN& candidate = children[at].relativeDn;
            return candidate.size() == levels && candidate.commonLevels(path, level) == levels;
        });
        if (found != LDIF_HashIndex::npos)
            return children.begin() + static_cast<std::ptrdiff_t>(found);
    }
    return children.end();
}

// The index of the children, made anew where they or the locale have changed without it; null for a small family.
LDIF_Entry::ChildIndex* LDIF_Entry::index()
{
    constexpr std::size_t largeFamily = 8;
    if (children.size() < largeFamily) {
        childIndex->reset();
        return nullptr;
    }
    const std::size_t folding = caseFolding();
    ChildIndex* known = childIndex->get();
    if (known == nullptr || known->positions.size() != children.size() || known->folding != folding) {
        *childIndex = std::make_unique<ChildIndex>();
        known = childIndex->get();
        known->folding = folding;
        known->positions.reserve(children.size());
        for (const LDIF_Entry& child : children)
            known->add(child);
    }
    return known;
}

void LDIF_Entry::ChildIndex::add(const LDIF_Entry& child)
{
    positions.add(child.relativeDn.hash(), positions.size());
    deepest = std::max(deepest, child.relativeDn.size());
}

LDIF_Entry& LDIF_Entry::operator+=(const LDIF_Attribute& attribute)
{
    forgetText();
    attributes += attribute;
    return *this;
}

LDIF_Entry& LDIF_Entry::operator+=(const LDIF_Comment& lines)
{
    forgetText();
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
        const auto next = entry->findChild(wanted, level);
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
