// An index from hashes to positions, for what is held elsewhere in a list.
#ifndef LDIF_HASHINDEX_H
#define LDIF_HASHINDEX_H

#include <cstddef>
#include <cstdint>
#include <vector>

// Positions by hash, in a table of open addresses that is at most half full: eight bytes for each slot.
class LDIF_HashIndex {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    std::size_t size() const noexcept { return count; }
    // Makes room for that many positions without further growth.
    void reserve(std::size_t positions);
    void add(std::size_t hash, std::size_t position);
    // Removes a position, and lets those behind it move up by one, as the list does.
    void erase(std::size_t position) noexcept;
    // Removes a position that was added under that hash, and leaves all others as they are.
    void remove(std::size_t hash, std::size_t position) noexcept;

    // The position added under that hash for which isWanted(position) holds, or npos.
    template <typename IsWanted>
    std::size_t find(std::size_t hash, IsWanted isWanted) const
    {
        if (slots.empty())
            return npos;
        const auto tag = static_cast<std::uint32_t>(hash);
        for (std::size_t at = firstSlot(tag); slots[at].next != 0; at = (at + 1) & (slots.size() - 1)) {
            if (slots[at].tag == tag && isWanted(std::size_t(slots[at].next - 1)))
                return slots[at].next - 1;
        }
        return npos;
    }

private:
    struct Slot {
        std::uint32_t tag;
        std::uint32_t next;  // the position and one, or 0 in an empty slot
    };

    std::size_t firstSlot(std::uint32_t tag) const noexcept { return tag & (slots.size() - 1); }
    void put(const Slot& slot);

    std::vector<Slot> slots;  // a power of two, or none
    std::size_t count = 0;
};

#endif
