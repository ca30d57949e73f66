// The tree of a whole file, built at once.
#ifndef LDIF_TREEBUILDER_H
#define LDIF_TREEBUILDER_H

#include "LDIF_Entry.h"
#include "LDIF_HashIndex.h"
#include "LDIF_Queue.h"

#include <cstdint>
#include <vector>

// Gathers entries in the order in which they come, and hangs them below a root as adding one by one with += would:
// equal DNs merge, each entry goes under its nearest ancestor, siblings stand in order of arrival. It finds parents by
// hash, so that neither the order of the entries nor the size of a family costs anything.
class LDIF_TreeBuilder {
public:
    explicit LDIF_TreeBuilder(LDIF_Entry& treeRoot);

    // Takes an entry whose DN is set, and whose children are not. Its relativeDn is set anew where it has another
    // length. Throws LDIF_Exception when it cannot merge the entry with the one that has its DN; the entry then is what
    // it was.
    void add(LDIF_Entry&& entry);
    // Hangs all entries below the root, which has no children. Nothing may be added behind it. When memory is
    // exhausted, the root has none of them.
    void finish();

private:
    using Number = std::uint32_t;  // of an entry or a node

    // A DN that an entry has or that lies above one. Node 0 is the root.
    struct Node {
        Number sample;  // an entry at or below the DN
        Number levels;  // of the DN
        Number parent;  // the node one level up
        Number entry;   // the entry that has the DN, or undefined
    };
    static constexpr Number undefined = static_cast<Number>(-1);

    Number nodeOf(const LDIF_DN& dn, std::size_t levels, Number sample);
    std::size_t findNode(const LDIF_DN& dn, std::size_t levels) const;
    Number definedAncestor(Number node);
    LDIF_Entry& entryOf(Number node) { return node == 0 ? root : entries[nodes[node].entry]; }
    void hashLevels(const LDIF_DN& dn);
    void prepare();

    LDIF_Entry& root;
    LDIF_Queue<LDIF_Entry> entries;  // in order of arrival
    std::vector<Number> parents;     // by entry: the node above it, in the end that of its parent in the tree
    std::vector<Number> nodeOfEntry;
    std::vector<LDIF_Entry*> homes;  // by node: where its entry stands while the tree is put together
    std::vector<Node> nodes;
    LDIF_HashIndex nodesByDn;
    std::vector<std::size_t> hashes;  // of the DN at hand: [n] is that of its n RDNs nearest the root
};

#endif
