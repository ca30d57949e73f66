#include "LDIF_Tree.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::uint32_t mostLevels = (std::uint32_t{1} << 30) - 1;  // of a DN

constexpr std::uint32_t entriesAhead = 16;

// Lets a line come that will be needed soon: the memory of a large tree is slow to come. Entries mostly have the
// numbers in the order in which they are looked at.
void fetch(const char* line) noexcept
{
    constexpr std::size_t usualSize = 48;
    __builtin_prefetch(line);
    __builtin_prefetch(line + usualSize);
}

}  // namespace

LDIF_Tree::LDIF_Tree() : LDIF_Tree(TextBuffer(), 0) {}

LDIF_Tree::LDIF_Tree(TextBuffer&& file, std::size_t size)
    : store(std::move(file), size), locale(std::make_unique<LocaleCopy>())
{
    constexpr std::size_t usualSize = 128;  // of an entry, or more
    nodes.reserve(size / usualSize + 1);
    nodes.push_back({});
}

bool LDIF_Tree::load(const LDIF_EntryText& entry, bool isFileText)
{
    if (entry.isLocaleBound)
        key.assign(entry.dn());
    else
        key.assignSimple(entry.dn());
    if (find(key) != none)
        return false;
    place(append([&](Number number) { setText(number, entry, isFileText); }));
    return true;
}

bool LDIF_Tree::load(LDIF_Entry&& entry, std::string_view text)
{
    if (mergeWithPresent(entry))
        return false;
    const Number made = append([&](Number number) { objects.emplace(number, Object{std::move(entry), {}}); });
    place(made);
    return becomeText(made, text, std::numeric_limits<std::size_t>::max());
}

// False when no entry has the DN. The attributes of one that has wait in a map until the load is over: many more may
// come, in any order.
bool LDIF_Tree::mergeWithPresent(LDIF_Entry& entry)
{
    key.assign(entry.dn);
    const Number present = find(key);
    if (present == none)
        return false;
    LDIF_Entry& target = open(present);
    auto& attributes = merged[present];
    const auto take = [&](LDIF_Attributes& source) {
        for (LDIF_Attribute& attribute : source) {
            const auto known = attributes.find(attribute.name);
            if (known == attributes.end())
                attributes.emplace(attribute.name, std::move(attribute));
            else
                known->second += std::move(attribute);
        }
        source.clear();
    };
    take(target.attributes);
    target.comment += std::move(entry.comment);
    take(entry.attributes);
    return true;
}

void LDIF_Tree::finishMerged()
{
    for (auto& [number, attributes] : merged) {
        LDIF_Entry& entry = open(number);
        entry.attributes.reserve(attributes.size());
        for (auto& each : attributes)
            entry.attributes.push_back(std::move(each.second));
        if (number != root)
            (void)becomeText(number, {}, std::numeric_limits<std::size_t>::max());
    }
    merged.clear();
}

// A node for the entry of the key, which fill gives its text or object.
template <typename Fill>
LDIF_Tree::Number LDIF_Tree::append(Fill fill)
{
    const Number number = appendNode();
    try {
        fill(number);
    } catch (...) {
        takeBack(number);
        throw;
    }
    return number;
}

LDIF_Tree::Number LDIF_Tree::appendNode()
{
    if (key.levels() > mostLevels || (firstVacant == none && nodes.size() >= none))
        throw std::length_error("too many entries or levels");
    if (firstVacant == none) {
        nodes.push_back({});
        vacate(static_cast<Number>(nodes.size() - 1));
    }
    byDn.add(key.hash(), firstVacant);
    Node& node = nodes[firstVacant];
    node.tag = static_cast<std::uint32_t>(key.hash());
    node.levels = static_cast<std::uint32_t>(key.levels()) & mostLevels;
    return std::exchange(firstVacant, node.next);
}

void LDIF_Tree::vacate(Number entry) noexcept
{
    nodes[entry] = {};
    nodes[entry].next = std::exchange(firstVacant, entry);
}

// Removes what nothing is linked to.
void LDIF_Tree::takeBack(Number entry) noexcept
{
    const Node& node = nodes[entry];
    byDn.remove(node.tag, entry);
    if (node.text != nullptr)
        store.release({node.text, node.size});
    else
        objects.erase(entry);
    directory.forget(entry);
    vacate(entry);
}

// isFileText: it stands in the text of the file already.
void LDIF_Tree::setText(Number entry, const LDIF_EntryText& text, bool isFileText)
{
    Node& node = nodes[entry];
    if (isFileText)
        store.keep(text.text);
    node.text = isFileText ? text.text.data() : store.add(text.text).data();
    node.size = static_cast<std::uint32_t>(text.text.size());
    node.dnStart = static_cast<std::uint32_t>(text.dnStart);
    node.dnSize = static_cast<std::uint32_t>(text.dnSize);
    node.isLocaleBound = text.isLocaleBound ? 1 : 0;
}

// During a load: where the entry hangs, if that is settled already. An entry right above it is nearest.
void LDIF_Tree::place(Number entry)
{
    nodes[entry].parent = key.levels() == 1 ? root : find(key, key.levels() - 1);
}

void LDIF_Tree::finish()
try {
    for (Number number = 1; number < nodes.size(); ++number) {
        if (nodes[number].parent != none)
            continue;
        if (number + entriesAhead < nodes.size() && nodes[number + entriesAhead].text != nullptr)
            fetch(text(number + entriesAhead).dn().data());
        assignKey(number, key);
        nodes[number].parent = nearestAncestor(key);
        noteMissingLevels(levels(nodes[number].parent));
    }
    for (Number number = 1; number < nodes.size(); ++number) {
        if (!isVacant(number))
            link(number, nodes[number].parent);
    }
    finishMerged();
    store.declassifyFile();
    store.dropDeadFile();
    if (store.isWasteful())
        compact();
} catch (...) {
    dropEntries();
    throw;
}

void LDIF_Tree::dropEntries() noexcept
{
    nodes.resize(1);
    nodes[root] = {};
    firstVacant = none;
    objects.clear();
    directory.clear();
    byDn = LDIF_HashIndex();
    missingLevels = LDIF_HashIndex();
    merged.clear();
}

void LDIF_Tree::link(Number entry, Number above) noexcept
{
    Node& node = nodes[entry];
    Node& parentNode = nodes[above];
    node.parent = above;
    node.next = none;
    node.previous = parentNode.lastChild;
    (node.previous == none ? parentNode.firstChild : nodes[node.previous].next) = entry;
    parentNode.lastChild = entry;
}

void LDIF_Tree::unlink(Number entry) noexcept
{
    const Node& node = nodes[entry];
    Node& parentNode = nodes[node.parent];
    (node.previous == none ? parentNode.firstChild : nodes[node.previous].next) = node.next;
    (node.next == none ? parentNode.lastChild : nodes[node.next].previous) = node.previous;
}

LDIF_Tree::Number LDIF_Tree::nextBelow(Number entry, Number top) const noexcept
{
    if (firstChild(entry) != none)
        return firstChild(entry);
    while (entry != top && nextSibling(entry) == none)
        entry = parent(entry);
    return entry == top ? none : nextSibling(entry);
}

const LDIF_Entry* LDIF_Tree::object(Number entry) const noexcept
{
    if (entry == root)
        return &rootObject;
    return nodes[entry].text == nullptr ? &objects.find(entry)->second.entry : nullptr;
}

LDIF_EntryText LDIF_Tree::text(Number entry) const noexcept
{
    const Node& node = nodes[entry];
    return {{node.text, node.size}, node.dnStart, node.dnSize, node.isLocaleBound != 0};
}

std::string_view LDIF_Tree::linesFrom(Number entry, std::string_view name) const noexcept
{
    const Number ahead = entry + entriesAhead;
    const std::size_t start = directory.start(ahead);
    if (start != LDIF_LineDirectory::nowhere)
        fetch(text(ahead).attributes().data() + start);
    return directory.find(entry, text(entry).attributes(), name);
}

LDIF_Entry LDIF_Tree::entry(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? *known : LDIF_Entry(text(number).text);
}

std::string LDIF_Tree::dnText(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? printable(known->dn) : std::string(text(number).dn());
}

LDIF_DN LDIF_Tree::dn(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? known->dn : LDIF_DN(cisString(std::string(text(number).dn())));
}

void LDIF_Tree::add(LDIF_Entry&& entry)
{
    key.assign(entry.dn);
    const Number present = find(key, key.levels());
    if (present != none) {
        const Opened opened(*this, present);
        opened->merge(std::move(entry));
        return;
    }
    const Number above = nearestAncestor(key);
    noteMissingLevels(levels(above));
    std::vector<Number> below;
    const Number made = append([&](Number number) {
        objects.emplace(number, Object{std::move(entry), {}});
        below = childrenBelow(above, number);
    });
    link(made, above);
    for (const Number each : below) {
        unlink(each);
        link(each, made);
    }
    close(made);
}

// Leaf by leaf, for a tree may be deep.
void LDIF_Tree::erase(Number entry) noexcept
{
    for (Number each = entry, gone = none; gone != entry;) {
        while (firstChild(each) != none)
            each = firstChild(each);
        gone = std::exchange(each, parent(each));
        unlink(gone);
        takeBack(gone);
    }
    if (store.isWasteful())
        compact();
}
