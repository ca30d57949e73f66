// Memory for the many small arrays that a tree is made of.
#ifndef LDIF_POOL_H
#define LDIF_POOL_H

#include <cstddef>
#include <new>
#include <type_traits>

// Hands out blocks of one size from slabs, side by side and without a header for each, and a large tree in large pages,
// which saves time and memory over the C heap. A slab whose blocks have all come back serves any size; a region whose
// slabs have all come back is offered back to the system, but for the last few. For one thread at a time, as all of the
// library.
class LDIF_Pool {
public:
    static constexpr std::size_t largest = 2048;  // bytes; larger blocks belong on the C heap

    // Throws std::bad_alloc.
    static void* allocate(std::size_t bytes);
    static void release(void* block, std::size_t bytes) noexcept;
};

// The allocator of a container whose arrays mostly are small.
template <typename T>
class LDIF_PoolAllocator {
public:
    using value_type = T;
    using is_always_equal = std::true_type;

    LDIF_PoolAllocator() = default;
    template <typename U>
    LDIF_PoolAllocator(const LDIF_PoolAllocator<U>& /*other*/) noexcept  // NOLINT(google-explicit-constructor)
    {}

    // NOLINTBEGIN(bugprone-sizeof-expression): T may be a pointer.
    T* allocate(std::size_t count) { return static_cast<T*>(LDIF_Pool::allocate(count * sizeof(T))); }
    void deallocate(T* array, std::size_t count) noexcept { LDIF_Pool::release(array, count * sizeof(T)); }
    // NOLINTEND(bugprone-sizeof-expression)

    friend bool operator==(const LDIF_PoolAllocator& /*left*/, const LDIF_PoolAllocator& /*right*/) noexcept
    {
        return true;
    }
    friend bool operator!=(const LDIF_PoolAllocator& /*left*/, const LDIF_PoolAllocator& /*right*/) noexcept
    {
        return false;
    }
};

#endif
