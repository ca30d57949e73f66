#include "LDIF_FormerTree.h"

#include "LDIF_TextHash.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace {

// An entry and what it is sorted by, in one place: the entries themselves lie far apart.
using KeyedEntry = std::pair<std::uintptr_t, LDIF_Entry*>;

template <typename Key>
void gather(LDIF_Entry& entry, Key key, std::vector<KeyedEntry>& found)
{
    for (LDIF_Entry& child : entry.children) {
        found.emplace_back(key(child), &child);
        gather(child, key, found);
    }
}

// All entries below the root, with what key gives for each.
template <typename Key>
std::vector<KeyedEntry> entriesOf(LDIF_Entry& root, Key key)
{
    std::vector<KeyedEntry> found;
    gather(root, key, found);
    return found;
}

// All but the children.
void releaseContent(LDIF_Entry& entry) noexcept
{
    entry.dn = LDIF_DN();
    entry.relativeDn = LDIF_DN();
    entry.comment = LDIF_Comment();
    entry.attributes = LDIF_Attributes();
}

bool standsAt(std::size_t offset, const LDIF_Entry::FileText& known, std::string_view text)
{
    return known.hash != 0 && offset <= text.size() && known.length <= text.size() - offset &&
           textHash(text.substr(offset, known.length)) == known.hash;
}

}  // namespace

LDIF_FormerTree::LDIF_FormerTree(LDIF_Entry&& tree, std::size_t oldSize, std::string_view newText)
    : root(std::move(tree))
{
    std::vector<KeyedEntry> entries = entriesOf(root, [](LDIF_Entry& each) { return each.fileText().offset; });
    std::sort(entries.begin(), entries.end());
    for (const auto& [offset, entry] : entries) {
        const std::size_t fromEnd = offset + newText.size() - oldSize;
        if (standsAt(offset, entry->fileText(), newText))
            places.push_back({offset, entry});
        else if (standsAt(fromEnd, entry->fileText(), newText))
            places.push_back({fromEnd, entry});
        else
            releaseContent(*entry);
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const Place& left, const Place& right) { return left.offset < right.offset; });
}

std::optional<LDIF_Entry> LDIF_FormerTree::takeAt(std::size_t position)
{
    while (next < places.size() && places[next].offset < position)
        ++next;
    if (next == places.size() || places[next].offset != position)
        return std::nullopt;
    return places[next++].entry->takeContent();
}

void release(LDIF_Entry&& tree) noexcept
try {
    LDIF_Entry root = std::move(tree);
    const auto address = [](const LDIF_Entry& each) {
        return reinterpret_cast<std::uintptr_t>(each.attributes.data());
    };
    std::vector<KeyedEntry> entries = entriesOf(root, address);
    std::sort(entries.begin(), entries.end());
    for (const auto& [key, entry] : entries)
        releaseContent(*entry);
} catch (const std::bad_alloc&) {
    return;  // The tree has been released, in its own order.
}
