#include "LDIF_TextHash.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace {

__extension__ using Wide = unsigned __int128;

constexpr unsigned int primeBits = 61;
constexpr std::uint64_t prime = (std::uint64_t{1} << primeBits) - 1;
constexpr std::size_t chunkSize = 7;  // bytes: each chunk is a number below the prime

// The same modulo the prime, and at most a little above it, for a number below 2^124.
std::uint64_t reduced(Wide number) noexcept
{
    const std::uint64_t once =
        (static_cast<std::uint64_t>(number) & prime) + static_cast<std::uint64_t>(number >> primeBits);
    return (once & prime) + (once >> primeBits);
}

// The chunk at bytes as a number. One more byte is there to be read with it: a whole word is read faster.
std::uint64_t chunkAt(const char* bytes) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word % (std::uint64_t{1} << 8 * chunkSize);
}

// The chunk at bytes, or what there is of it.
std::uint64_t lastChunkAt(const char* bytes, std::size_t size) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, std::min(size, chunkSize));
    return word;
}

// The point and its square.
struct Point {
    std::uint64_t first;
    std::uint64_t second;
};

Point drawPoint()
{
    std::random_device device;
    const std::uint64_t number = (std::uint64_t{device()} << 32 | device()) % prime;
    return {number, reduced(Wide{number} * number) % prime};
}

}  // namespace

std::uint64_t textHash(std::string_view text)
{
    static const Point point = drawPoint();
    std::uint64_t hash = text.size();
    std::size_t at = 0;
    for (; at + 2 * chunkSize < text.size(); at += 2 * chunkSize) {
        const Wide both = Wide{chunkAt(&text[at])} * point.first + chunkAt(&text[at + chunkSize]);
        hash = reduced(Wide{hash} * point.second + both);
    }
    for (; at < text.size(); at += chunkSize)
        hash = reduced(Wide{hash} * point.first + lastChunkAt(&text[at], text.size() - at));
    return hash % prime + 1;
}
