#include "base/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t groupOfBytes = 3;
constexpr std::size_t groupOfDigits = 4;
constexpr char padding = '=';

// What each byte stands for as a digit, -1 for nothing.
constexpr auto valuesOfDigits = [] {
    std::array<int, 256> table = {};
    for (int& value : table)
        value = -1;
    for (std::size_t i = 0; i < digits.size(); ++i)
        table[static_cast<unsigned char>(digits[i])] = static_cast<int>(i);
    return table;
}();

}  // namespace

std::string toBase64(std::string_view bytes)
{
    std::string text;
    text.reserve((bytes.size() + groupOfBytes - 1) / groupOfBytes * groupOfDigits);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(groupOfBytes, bytes.size()))) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < groupOfBytes; ++i)
            bits = bits << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0);
        for (std::size_t i = 0; i < groupOfDigits; ++i)
            text += i <= bytes.size() ? digits[bits >> (18 - 6 * i) & 63] : padding;
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text)
{
    if (text.size() % groupOfDigits != 0)
        return std::nullopt;
    for (int i = 0; i < 2 && !text.empty() && text.back() == padding; ++i)
        text.remove_suffix(1);
    std::string bytes;
    bytes.reserve(text.size() / groupOfDigits * groupOfBytes + groupOfBytes);
    std::uint32_t bits = 0;
    int count = 0;  // of the bits that are no whole byte yet
    for (const char digit : text) {
        const int value = valuesOfDigits[static_cast<unsigned char>(digit)];
        if (value < 0)
            return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        count += 6;
        if (count < 8)
            continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count & 255);
    }
    return bytes;
}
