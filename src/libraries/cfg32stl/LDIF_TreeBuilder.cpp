#include "LDIF_TreeBuilder.h"

namespace {

void assignRelative(LDIF_Entry& entry, std::size_t levelsAbove)
{
    if (entry.relativeDn.size() + levelsAbove == entry.dn.size())
        return;
    entry.relativeDn.assign(entry.dn.begin() + static_cast<std::ptrdiff_t>(levelsAbove), entry.dn.end());
}

}  // namespace

LDIF_TreeBuilder::LDIF_TreeBuilder(LDIF_Entry& treeRoot) : root(treeRoot), nodes(1, Node{0, 0, 0, 0}) {}

void LDIF_TreeBuilder::add(LDIF_Entry&& entry)
{
    const auto number = static_cast<Number>(entries.size());
    entries.push(std::move(entry));
    LDIF_Entry& taken = entries.back();
    hashLevels(taken.dn);
    const Number node = nodeOf(taken.dn, taken.dn.size(), number);
    if (node == 0 || nodes[node].entry != undefined) {
        entry = std::move(taken);
        entries.popBack();
        LDIF_Entry& present = entryOf(node);
        present.forgetText();
        present.comment += entry.comment;
        present.attributes += entry.attributes;
        return;
    }
    const Number parent = nodes[node].parent;
    nodeOfEntry.push_back(node);
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

// Finds the parents and what each entry is to be called below them, and makes room for the children.
void LDIF_TreeBuilder::prepare()
{
    if (entries.size() > parents.size())
        entries.popBack();  // for which memory ran out in add
    nodesByDn = LDIF_HashIndex();
    std::vector<Number> counts(nodes.size());
    for (Number number = 0; number < entries.size(); ++number) {
        parents[number] = definedAncestor(parents[number]);
        ++counts[parents[number]];
        LDIF_Entry& entry = entries[number];
        assignRelative(entry, nodes[parents[number]].levels);
    }
    for (Number node = 0; node < nodes.size(); ++node) {
        if (counts[node] != 0)
            entryOf(node).children.reserve(counts[node]);
    }
    homes.assign(nodes.size(), &root);
    for (Number node = 1; node < nodes.size(); ++node) {
        if (nodes[node].entry != undefined)
            homes[node] = &entries[nodes[node].entry];
    }
}

// An entry moves below its parent, wherever that stands by then, and its own children's room moves with it.
void LDIF_TreeBuilder::finish()
{
    prepare();
    for (Number number = 0; !entries.empty(); ++number) {
        auto& siblings = homes[parents[number]]->children;
        siblings.push_back(std::move(entries.front()));
        homes[nodeOfEntry[number]] = &siblings.back();
        entries.popFront();
    }
}
