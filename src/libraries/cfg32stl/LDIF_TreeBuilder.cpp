#include "LDIF_TreeBuilder.h"

#include <algorithm>

namespace {

void assignRelative(LDIF_Entry& entry, std::size_t levelsAbove)
{
    entry.relativeDn.assign(entry.dn.begin() + static_cast<std::ptrdiff_t>(levelsAbove), entry.dn.end());
}

}  // namespace

LDIF_TreeBuilder::LDIF_TreeBuilder(LDIF_Entry& treeRoot) : root(treeRoot), nodes(1, Node{0, 0, 0, 0}) {}

void LDIF_TreeBuilder::add(LDIF_Entry&& entry)
{
    const auto number = static_cast<Number>(entries.size());
    entries.push_back(std::move(entry));
    LDIF_Entry& taken = entries.back();
    hashLevels(taken.dn);
    const Number node = nodeOf(taken.dn, taken.dn.size(), number);
    if (node == 0 || nodes[node].entry != undefined) {
        const LDIF_Entry duplicate = std::move(taken);
        entries.pop_back();
        LDIF_Entry& present = entryOf(node);
        present.comment += duplicate.comment;
        present.attributes += duplicate.attributes;
        return;
    }
    const Number parent = nodes[node].parent;
    parents.push_back(parent);
    nodes[node].entry = number;
    if (parent == 0 || nodes[parent].entry != undefined)
        assignRelative(taken, taken.dn.size() - 1);  // now, while it is at hand
}

void LDIF_TreeBuilder::hashLevels(const LDIF_DN& dn)
{
    hashes.assign(1, 0);
    for (const LDIF_RDN& rdn : dn)
        hashes.push_back(rdn.hash(hashes.back()));
}

// The node of the levels of dn nearest the root, which is made with all above it where it is not there.
LDIF_TreeBuilder::Number LDIF_TreeBuilder::nodeOf(const LDIF_DN& dn, std::size_t levels, Number sample)
{
    Number first = 0;
    Number* above = &first;  // what waits for the number of the node one level up
    for (; levels > 0; --levels) {
        const std::size_t found = findNode(dn, levels);
        if (found != LDIF_HashIndex::npos) {
            *above = static_cast<Number>(found);
            return first;
        }
        const auto made = static_cast<Number>(nodes.size());
        *above = made;
        nodes.push_back({sample, static_cast<Number>(levels), 0, undefined});
        nodesByDn.add(hashes[levels], made);
        above = &nodes.back().parent;
    }
    return first;
}

std::size_t LDIF_TreeBuilder::findNode(const LDIF_DN& dn, std::size_t levels) const
{
    return nodesByDn.find(hashes[levels], [&](std::size_t number) {
        const Node& node = nodes[number];
        return node.levels == levels && entries[node.sample].dn.startsEqual(dn, levels);
    });
}

// The nearest node from this one up that an entry defines. The way there is not walked twice.
LDIF_TreeBuilder::Number LDIF_TreeBuilder::definedAncestor(Number node)
{
    Number end = node;
    while (nodes[end].entry == undefined)
        end = nodes[end].parent;
    while (nodes[node].entry == undefined) {
        const Number next = nodes[node].parent;
        nodes[node].parent = end;
        node = next;
    }
    return end;
}

// Finds the parents, gives each entry its place, and each parent room for its children.
void LDIF_TreeBuilder::makeRoom()
{
    std::vector<Number> counts(nodes.size());
    places.reserve(entries.size());
    for (Number& parent : parents) {
        parent = definedAncestor(parent);
        places.push_back(counts[parent]++);
    }
    for (Number node = 0; node < nodes.size(); ++node) {
        if (counts[node] != 0)
            entryOf(node).children.resize(counts[node]);
    }
}

// The numbers of the entries, those with the longest DNs first, so that a subtree is whole before it is moved.
std::vector<LDIF_TreeBuilder::Number> LDIF_TreeBuilder::deepestFirst() const
{
    std::size_t deepest = 0;
    for (const LDIF_Entry& entry : entries)
        deepest = std::max(deepest, entry.dn.size());
    std::vector<std::size_t> starts(deepest + 2);  // by distance from the deepest level: where its entries begin
    for (const LDIF_Entry& entry : entries)
        ++starts[deepest - entry.dn.size() + 1];
    for (std::size_t distance = 1; distance < starts.size(); ++distance)
        starts[distance] += starts[distance - 1];
    std::vector<Number> order(entries.size());
    for (Number number = 0; number < entries.size(); ++number)
        order[starts[deepest - entries[number].dn.size()]++] = number;
    return order;
}

void LDIF_TreeBuilder::finish()
{
    entries.resize(parents.size());  // one more is there when memory ran out in add
    makeRoom();
    for (const Number number : deepestFirst()) {
        LDIF_Entry& entry = entries[number];
        LDIF_Entry& parent = entryOf(parents[number]);
        if (entry.relativeDn.size() + parent.dn.size() != entry.dn.size())
            assignRelative(entry, parent.dn.size());
        parent.children[places[number]] = std::move(entry);
    }
    entries.clear();
}
