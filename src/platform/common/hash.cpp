#include "platform.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <random>

namespace {

constexpr std::uint64_t ones = 0x0101010101010101U;
constexpr std::uint64_t highBits = 0x8080808080808080U;

// What a process draws by chance: without it nobody can choose texts whose hashes collide.
struct Key {
    std::uint64_t start;
    std::uint64_t step;
    std::uint64_t end;
};

// Without random numbers from the system, the time and an address must do.
std::uint64_t drawSeed() noexcept
try {
    std::random_device device;
    return std::uint64_t{device()} << 32U | device();
} catch (const std::exception&) {
    const auto now = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    return now ^ reinterpret_cast<std::uintptr_t>(&now);
}

const Key& key() noexcept
{
    static const Key drawn = [] {
        std::mt19937_64 draw(drawSeed());
        return Key{draw(), draw() | 1, draw() | 1};
    }();
    return drawn;
}

// The upper half of the product of two words, and its lower half, as one word.
#ifdef __SIZEOF_INT128__
std::uint64_t mixed(std::uint64_t left, std::uint64_t right) noexcept
{
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{left} * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}
#else
std::uint64_t mixed(std::uint64_t left, std::uint64_t right) noexcept
{
    constexpr std::uint64_t half = 0xFFFFFFFFU;
    const std::uint64_t low = (left & half) * (right & half);
    const std::uint64_t first = (left >> 32U) * (right & half) + (low >> 32U);
    const std::uint64_t second = (left & half) * (right >> 32U) + (first & half);
    const std::uint64_t high = (left >> 32U) * (right >> 32U) + (first >> 32U) + (second >> 32U);
    return high ^ (second << 32U | (low & half));
}
#endif

template <typename Word>
std::uint64_t wordAt(const char* bytes) noexcept
{
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The bytes at the end of a text, at most eight; those of a longer text may be a part of the word before.
std::uint64_t lastWord(std::string_view text) noexcept
{
    const char* const end = text.data() + text.size();
    if (text.size() >= 8)
        return wordAt<std::uint64_t>(end - 8);
    if (text.size() >= 4)
        return wordAt<std::uint32_t>(text.data()) | wordAt<std::uint32_t>(end - 4) << 32U;
    if (text.empty())
        return 0;
    return wordAt<unsigned char>(text.data()) | wordAt<unsigned char>(text.data() + text.size() / 2) << 8U |
           wordAt<unsigned char>(end - 1) << 16U;
}

// Each byte folded to lower case, all at once where they are ASCII: 'A' to 'Z' are the bytes of which the first sum
// alone sets the high bit.
std::uint64_t foldedWord(std::uint64_t word) noexcept
{
    if ((word & highBits) == 0) {
        const std::uint64_t isUpper = ((word + ones * (0x80 - 'A')) ^ (word + ones * (0x7F - 'Z'))) & highBits;
        return word | isUpper >> 2U;
    }
    char bytes[sizeof word];
    std::memcpy(bytes, &word, sizeof word);
    for (char& byte : bytes)
        byte = static_cast<char>(foldCase(byte));
    return wordAt<std::uint64_t>(bytes);
}

template <typename Fold>
std::size_t hashed(std::size_t seed, std::string_view text, Fold fold) noexcept
{
    const Key& drawn = key();
    std::uint64_t hash = seed ^ drawn.start;
    for (std::size_t at = 0; at + 8 < text.size(); at += 8)
        hash = mixed(hash ^ fold(wordAt<std::uint64_t>(text.data() + at)), drawn.step);
    hash = mixed(hash ^ fold(lastWord(text)), drawn.step);
    return static_cast<std::size_t>(mixed(hash ^ text.size(), drawn.end));
}

}  // namespace

std::size_t exactHash(std::size_t seed, std::string_view text) noexcept
{
    return hashed(seed, text, [](std::uint64_t word) { return word; });
}

std::size_t foldedHash(std::size_t seed, std::string_view text) noexcept
{
    return hashed(seed, text.substr(0, text.find('\0')), foldedWord);
}
