#include "platform.h"

#include <algorithm>
#include <array>

namespace {

constexpr int asciiEnd = 0x80;

constexpr std::array<unsigned char, asciiEnd> lowerAscii = [] {
    std::array<unsigned char, asciiEnd> table = {};
    for (int byte = 0; byte < asciiEnd; ++byte)
        table[static_cast<std::size_t>(byte)] =
            static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
    return table;
}();

}  // namespace

unsigned char foldCase(char character) noexcept
{
    const auto byte = static_cast<unsigned char>(character);
    if (byte < asciiEnd)
        return lowerAscii[byte];
    const int lower = lowerCase(byte);
    return lower < asciiEnd ? byte : static_cast<unsigned char>(lower);
}

int compareFoldedText(const char* left, const char* right) noexcept
{
    for (;; ++left, ++right) {
        if (*left == *right) {
            if (*left == '\0')
                return 0;
            continue;
        }
        const int difference = foldCase(*left) - foldCase(*right);
        if (difference != 0)
            return difference;
    }
}

int compareFolded(std::string_view left, std::string_view right) noexcept
{
    if (left == right)
        return 0;
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t pos = 0; pos < common; ++pos) {
        const int difference = left[pos] == right[pos] ? 0 : foldCase(left[pos]) - foldCase(right[pos]);
        if (difference != 0)
            return difference;
    }
    return static_cast<int>(left.size() > common) - static_cast<int>(right.size() > common);
}
