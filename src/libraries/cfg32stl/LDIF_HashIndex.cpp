#include "LDIF_HashIndex.h"

#include "platform.h"

namespace {

constexpr std::size_t smallest = 16;

std::size_t mixed(std::size_t hash, unsigned char byte) noexcept
{
    constexpr std::size_t prime = 0x100000001B3U;
    hash = (hash ^ byte) * prime;
    return hash ^ hash >> 29;
}

// A byte that no text up to its first NUL holds.
constexpr unsigned char separator = 0;

}  // namespace

void LDIF_HashIndex::reserve(std::size_t positions)
{
    std::size_t size = smallest;
    while (size < 2 * positions)
        size *= 2;
    if (size > slots.size())
        resize(size);
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

void LDIF_HashIndex::erase(std::size_t position)
{
    const auto gone = static_cast<std::uint32_t>(position + 1);
    std::vector<Slot> old(slots.size());
    old.swap(slots);
    for (Slot slot : old) {
        if (slot.next == 0 || slot.next == gone)
            continue;
        if (slot.next > gone)
            --slot.next;
        put(slot);
    }
    --count;
}

void LDIF_HashIndex::resize(std::size_t size)
{
    std::vector<Slot> old(size);
    old.swap(slots);
    for (const Slot& slot : old) {
        if (slot.next != 0)
            put(slot);
    }
}

std::size_t exactHash(std::size_t hash, std::string_view text) noexcept
{
    for (const char byte : text)
        hash = mixed(hash, static_cast<unsigned char>(byte));
    return mixed(hash, separator);
}

std::size_t foldedHash(std::size_t hash, std::string_view text) noexcept
{
    for (const char byte : text.substr(0, text.find('\0')))
        hash = mixed(hash, foldCase(byte));
    return mixed(hash, separator);
}
