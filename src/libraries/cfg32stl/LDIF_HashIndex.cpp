#include "LDIF_HashIndex.h"

#include <algorithm>

namespace {

constexpr std::size_t smallest = 16;

}  // namespace

void LDIF_HashIndex::reserve(std::size_t positions)
{
    if (2 * positions <= slots.size())
        return;
    std::size_t size = smallest;
    while (size < 2 * positions)
        size *= 2;
    std::vector<Slot> old(size);
    old.swap(slots);
    for (const Slot& slot : old) {
        if (slot.next != 0)
            put(slot);
    }
}

void LDIF_HashIndex::add(std::size_t hash, std::size_t position)
{
    reserve(count + 1);
    put({static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(position + 1)});
    ++count;
}

void LDIF_HashIndex::put(const Slot& slot)
{
    std::size_t at = firstSlot(slot.tag);
    while (slots[at].next != 0)
        at = (at + 1) & (slots.size() - 1);
    slots[at] = slot;
}

void LDIF_HashIndex::erase(std::size_t position) noexcept
{
    const auto isGone = [&](const Slot& slot) { return slot.next == position + 1; };
    remove(std::find_if(slots.begin(), slots.end(), isGone)->tag, position);
    for (Slot& slot : slots)
        slot.next -= slot.next > position ? 1 : 0;
}

// Closes the gap: a slot moves there unless it would stand before the first one of its hash.
void LDIF_HashIndex::remove(std::size_t hash, std::size_t position) noexcept
{
    const std::size_t mask = slots.size() - 1;
    std::size_t gap = firstSlot(static_cast<std::uint32_t>(hash));
    while (slots[gap].next != position + 1)
        gap = (gap + 1) & mask;
    for (std::size_t at = (gap + 1) & mask; slots[at].next != 0; at = (at + 1) & mask) {
        if (((at - firstSlot(slots[at].tag)) & mask) < ((at - gap) & mask))
            continue;
        slots[gap] = slots[at];
        gap = at;
    }
    slots[gap] = Slot();
    --count;
}
