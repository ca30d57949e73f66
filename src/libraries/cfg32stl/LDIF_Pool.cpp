#include "LDIF_Pool.h"

#include "platform.h"

#include <array>
#include <cstdint>

namespace {

constexpr std::size_t slabSize = std::size_t{64} << 10;
constexpr std::size_t regionSize = std::size_t{2} << 20;  // a large page of the usual machines
constexpr std::size_t keptRegions = 4;                    // for the next tree, which is spared asking for them
constexpr std::size_t granule = 16;                       // bytes: block sizes are its multiples

// A piece of memory that serves one size at a time. Its own fields stand at its beginning.
struct Slab {
    Slab* next;
    Slab** toThis;      // what points at this slab in its list
    void* freed;        // the first of the blocks that have come back, each of which points at the next
    std::uint32_t end;  // where blocks begin that have never been handed out
    std::uint32_t blockSize;
    std::uint32_t used;   // blocks that are out
    std::uint32_t taken;  // in the first slab of a region: how many of its slabs serve a size
};

constexpr std::size_t headerSize = (sizeof(Slab) + granule - 1) / granule * granule;

Slab* partlyUsed[LDIF_Pool::largest / granule + 1];  // by size in granules: slabs that have room
Slab* unused;                                        // slabs that serve no size
std::size_t regions;                                 // without the idle ones
std::array<void*, 256> idle;                         // regions without slabs, at first idleCount of them
std::size_t idleCount;

void link(Slab*& list, Slab& slab) noexcept
{
    slab.next = list;
    slab.toThis = &list;
    if (list != nullptr)
        list->toThis = &slab.next;
    list = &slab;
}

void unlink(Slab& slab) noexcept
{
    *slab.toThis = slab.next;
    if (slab.next != nullptr)
        slab.next->toThis = slab.toThis;
}

char* bytesOf(Slab& slab) noexcept
{
    return reinterpret_cast<char*>(&slab);
}

template <std::size_t alignment>
Slab& aligned(void* block) noexcept
{
    return *reinterpret_cast<Slab*>(static_cast<char*>(block) - reinterpret_cast<std::uintptr_t>(block) % alignment);
}

bool hasRoom(const Slab& slab) noexcept
{
    return slab.freed != nullptr || slab.end + slab.blockSize <= slabSize;
}

void addRegion()
{
    constexpr std::size_t smallTree = 8;  // regions: below, a large page that is mostly empty would count
    char* const region =
        static_cast<char*>(idleCount > 0 ? idle[--idleCount] : allocateRegion(regionSize, regions >= smallTree));
    if (region == nullptr)
        throw std::bad_alloc();
    ++regions;
    for (std::size_t offset = regionSize; offset > 0; offset -= slabSize)
        link(unused, *new (region + offset - slabSize) Slab());
}

Slab& addSlab(std::size_t granules)
{
    if (unused == nullptr)
        addRegion();
    Slab& slab = *unused;
    unlink(slab);
    ++aligned<regionSize>(&slab).taken;
    slab.freed = nullptr;
    slab.end = headerSize;
    slab.blockSize = static_cast<std::uint32_t>(granules * granule);
    slab.used = 0;
    link(partlyUsed[granules], slab);
    return slab;
}

// Offers a region back of which nothing is in use. What the system has not taken until it is needed again costs
// nothing.
void releaseSlabs(Slab& first) noexcept
{
    for (std::size_t offset = 0; offset < regionSize; offset += slabSize)
        unlink(*reinterpret_cast<Slab*>(bytesOf(first) + offset));
    --regions;
    if (idleCount == idle.size())
        return releaseRegion(&first, regionSize);
    offerRegion(&first, regionSize);
    idle[idleCount++] = &first;
}

void giveBack(Slab& slab) noexcept
{
    unlink(slab);
    link(unused, slab);
    Slab& first = aligned<regionSize>(&slab);
    if (--first.taken > 0 || regions <= keptRegions)
        return;
    releaseSlabs(first);
}

// Gives the last regions back when the library is unloaded, but for those of which somebody still holds a part. Objects
// that are destroyed later still may ask for memory.
struct LastRegions {
    LastRegions() = default;
    LastRegions(const LastRegions&) = delete;
    LastRegions& operator=(const LastRegions&) = delete;
    ~LastRegions()
    {
        for (Slab* slab = unused; slab != nullptr;) {
            Slab& first = aligned<regionSize>(slab);
            const bool isUsed = first.taken > 0;
            if (!isUsed)
                releaseSlabs(first);
            slab = isUsed ? slab->next : unused;
        }
        while (idleCount > 0)
            releaseRegion(idle[--idleCount], regionSize);
    }
} const lastRegions;

std::size_t granulesFor(std::size_t bytes) noexcept
{
    return (bytes + granule - 1) / granule;
}

}  // namespace

void* LDIF_Pool::allocate(std::size_t bytes)
{
    if (bytes > largest || checksMemory)
        return ::operator new(bytes);
    const std::size_t granules = granulesFor(bytes);
    Slab& slab = partlyUsed[granules] != nullptr ? *partlyUsed[granules] : addSlab(granules);
    void* block = slab.freed;
    if (block != nullptr) {
        slab.freed = *static_cast<void**>(block);
    } else {
        block = bytesOf(slab) + slab.end;
        slab.end += slab.blockSize;
    }
    ++slab.used;
    if (!hasRoom(slab))
        unlink(slab);
    return block;
}

void LDIF_Pool::release(void* block, std::size_t bytes) noexcept
{
    if (bytes > largest || checksMemory)
        return ::operator delete(block);
    Slab& slab = aligned<slabSize>(block);
    if (!hasRoom(slab))
        link(partlyUsed[granulesFor(bytes)], slab);
    *static_cast<void**>(block) = slab.freed;
    slab.freed = block;
    if (--slab.used == 0)
        giveBack(slab);
}
