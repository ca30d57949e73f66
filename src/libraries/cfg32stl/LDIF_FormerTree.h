// What a load can take from the tree of the load before.
#ifndef LDIF_FORMERTREE_H
#define LDIF_FORMERTREE_H

#include "LDIF_Entry.h"

#include <optional>
#include <string_view>
#include <vector>

// A tree that gives way to that of a new text of the file. Entries whose text stands in the new one too, as far from
// its beginning or from its end as before, wait here to be taken over; the memory of all others is given back at once.
class LDIF_FormerTree {
public:
    // There is nothing to take.
    LDIF_FormerTree() = default;
    // Takes the tree of a text of oldSize bytes, read in the same locale. Borrows the new text for the call.
    LDIF_FormerTree(LDIF_Entry&& tree, std::size_t oldSize, std::string_view newText);

    // Gives away the entry whose text begins there, in bytes from the beginning of the new text, without its children.
    // To be called for ascending positions.
    std::optional<LDIF_Entry> takeAt(std::size_t position);

private:
    struct Place {
        std::size_t offset;  // in the new text
        LDIF_Entry* entry;
    };

    LDIF_Entry root;
    std::vector<Place> places;  // in ascending order of offset
    std::size_t next = 0;
};

// Gives the memory of a tree back, in the order in which it lies there: that is faster where the entries of a large
// file stand in an order far from that of the tree.
void release(LDIF_Entry&& tree) noexcept;

#endif
