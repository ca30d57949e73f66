// A list that is filled at its end and given up from its front.
#ifndef LDIF_QUEUE_H
#define LDIF_QUEUE_H

#include "platform.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

// The allocator of arrays that all have one size, which they get from the system and give back to it directly.
template <typename T>
struct LDIF_PieceAllocator {
    using value_type = T;
    using is_always_equal = std::true_type;
    static constexpr std::size_t size = std::size_t{32} << 10;  // bytes

    T* allocate(std::size_t /*count*/)
    {
        void* const piece = checksMemory ? ::operator new(size) : allocateRegion(size, false);
        if (piece == nullptr)
            throw std::bad_alloc();
        return static_cast<T*>(piece);
    }
    void deallocate(T* piece, std::size_t /*count*/) noexcept
    {
        if (checksMemory)
            ::operator delete(piece);
        else
            releaseRegion(piece, size);
    }
    friend bool operator==(const LDIF_PieceAllocator& /*left*/, const LDIF_PieceAllocator& /*right*/) noexcept
    {
        return true;
    }
    friend bool operator!=(const LDIF_PieceAllocator& /*left*/, const LDIF_PieceAllocator& /*right*/) noexcept
    {
        return false;
    }
};

// Objects in order of arrival, which stay where they are. The memory comes from the system in large pieces and goes
// back to it as the objects at the front go, so that what they are moved to may take its place.
template <typename T>
class LDIF_Queue {
public:
    std::size_t size() const noexcept { return end - begin; }
    bool empty() const noexcept { return begin == end; }
    // Counted from the first that ever was in the queue; it must not have gone.
    T& operator[](std::size_t number) noexcept { return pieces[number / perPiece][number % perPiece]; }
    const T& operator[](std::size_t number) const noexcept { return pieces[number / perPiece][number % perPiece]; }
    T& front() noexcept { return (*this)[begin]; }
    T& back() noexcept { return (*this)[end - 1]; }

    // Throws std::bad_alloc; then nothing has changed.
    void push(T&& object)
    {
        if (end / perPiece == pieces.size()) {
            Piece piece;
            piece.reserve(perPiece);
            pieces.push_back(std::move(piece));
        }
        pieces.back().push_back(std::move(object));
        ++end;
    }
    void popBack() noexcept
    {
        pieces.back().pop_back();
        if (--end % perPiece == 0)
            pieces.pop_back();
    }
    void popFront() noexcept
    {
        if (++begin % perPiece == 0)
            pieces[begin / perPiece - 1] = Piece();
    }

private:
    using Piece = std::vector<T, LDIF_PieceAllocator<T>>;

    static constexpr std::size_t perPiece = LDIF_PieceAllocator<T>::size / sizeof(T);

    std::vector<Piece> pieces;
    std::size_t begin = 0;
    std::size_t end = 0;
};

#endif
