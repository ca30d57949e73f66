// The look-up of entries by DN, and what another locale changes in it.
#include "LDIF_Tree.h"

#include <limits>
#include <utility>

LDIF_Tree::Number LDIF_Tree::find(const LDIF_DN& dn)
{
    key.assign(dn);
    return find(key, key.levels());
}

LDIF_Tree::Number LDIF_Tree::find(LDIF_DnKey& wanted, std::size_t level) const
{
    if (level == 0)
        return root;
    const auto isWanted = [&](std::size_t number) { return isDn(static_cast<Number>(number), wanted, level); };
    const std::size_t found = byDn.find(wanted.hash(level), isWanted);
    return found == LDIF_HashIndex::npos ? none : static_cast<Number>(found);
}

// Whether the entry has the DN that lies that many levels below the root.
bool LDIF_Tree::isDn(Number entry, LDIF_DnKey& wanted, std::size_t level) const
{
    const Node& node = nodes[entry];
    if (node.levels != level)
        return false;
    const std::string_view wantedText = wanted.simpleText(level);
    if (node.text != nullptr && !wantedText.empty()) {
        const std::string_view text(node.text + node.dnStart, node.dnSize);
        const bool isSameText = text.size() == wantedText.size() && compareFolded(text, wantedText) == 0;
        if (isSameText || node.isLocaleBound == 0 || isSimpleDn(text))
            return isSameText;
    }
    return dn(entry).startsEqual(wanted.dn(), level);
}

void LDIF_Tree::assignKey(Number entry, LDIF_DnKey& wanted) const
{
    if (nodes[entry].text == nullptr)
        wanted.assign(objects.at(entry).entry.dn);
    else
        wanted.assign(text(entry).dn());
}

LDIF_Tree::Number LDIF_Tree::nearestAncestor(LDIF_DnKey& wanted) const
{
    Number above = none;
    for (std::size_t level = wanted.levels() - 1; above == none; --level)
        above = find(wanted, level);
    return above;
}

bool LDIF_Tree::isMissing(std::size_t hash) const
{
    return missingLevels.find(hash, [](std::size_t) { return true; }) != LDIF_HashIndex::npos;
}

// The key is that of the descendant.
void LDIF_Tree::noteMissingLevels(std::size_t ancestorLevels)
{
    for (std::size_t level = ancestorLevels + 1; level < key.levels(); ++level) {
        if (!isMissing(key.hash(level)))
            missingLevels.add(key.hash(level), 0);
    }
}

// The children of an entry that belong below another one, whose key is at hand.
std::vector<LDIF_Tree::Number> LDIF_Tree::childrenBelow(Number ancestor, Number entry)
{
    std::vector<Number> found;
    if (!isMissing(key.hash()))
        return found;
    LDIF_DnKey each;
    const std::size_t level = key.levels();
    for (Number child = firstChild(ancestor); child != none; child = nextSibling(child)) {
        if (levels(child) <= level)
            continue;
        assignKey(child, each);
        if (each.hash(level) == key.hash() && isDn(entry, each, level))
            found.push_back(child);
    }
    return found;
}

void LDIF_Tree::followLocale()
{
    while (nextLocale != nullptr || !locale->isPresent()) {
        if (nextLocale == nullptr) {
            nextLocale = std::make_unique<LocaleCopy>();
            followed = 1;
        }
        while (followed < nodes.size())
            followSome();
        for (auto& each : objects)
            each.second.printed.clear();
        const LocaleCopy::Use present(*nextLocale);
        indexAnew();
        locale = std::move(nextLocale);
    }
}

// Reads some entries in the former locale, and prints them in the next one.
void LDIF_Tree::followSome()
{
    std::vector<Number> opened;
    followed = openLocaleBound(followed, opened);
    const LocaleCopy::Use present(*nextLocale);
    for (const Number number : opened)
        (void)becomeText(number, {}, std::numeric_limits<std::size_t>::max());
}

// Makes objects of some entries from that one on, which are read in the former locale. Gives where to go on.
LDIF_Tree::Number LDIF_Tree::openLocaleBound(Number first, std::vector<Number>& opened)
{
    constexpr std::size_t most = 1000;  // objects take much memory
    const LocaleCopy::Use former(*locale);
    for (; first < nodes.size() && opened.size() < most; ++first) {
        if (nodes[first].text == nullptr || nodes[first].isLocaleBound == 0)
            continue;
        opened.push_back(first);
        (void)open(first);
    }
    return first;
}

void LDIF_Tree::indexAnew()
{
    LDIF_HashIndex index;
    std::vector<std::uint32_t> tags(nodes.size());
    for (Number number = 1; number < nodes.size(); ++number) {
        if (isVacant(number))
            continue;
        assignKey(number, key);
        index.add(key.hash(), number);
        tags[number] = static_cast<std::uint32_t>(key.hash());
        noteMissingLevels(levels(nodes[number].parent));
    }
    for (Number number = 1; number < nodes.size(); ++number)
        nodes[number].tag = tags[number];
    byDn = std::move(index);
}
