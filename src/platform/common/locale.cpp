#include "platform.h"

#include "conversion.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstring>

namespace {

constexpr int asciiEnd = 0x80;

// strcmp, but inline: the texts are short and mostly equal.
bool isSameText(const char* left, const char* right) noexcept
{
    while (*left == *right && *left != '\0') {
        ++left;
        ++right;
    }
    return *left == *right;
}

std::size_t foldingNumber() noexcept
{
    std::size_t number = 0;
    for (int byte = asciiEnd; byte < 2 * asciiEnd; ++byte)
        number = number * 31 + static_cast<std::size_t>(lowerCase(byte));
    return number;
}

// Characters beyond ASCII that have been found to be transparent and no white space: a text has the same few over and
// over, and converting them is half of its load.
class Characters {
public:
    // The length of a known character at the front, in bytes, or 0.
    std::size_t find(std::string_view text) const noexcept
    {
        const std::size_t size = sizes[static_cast<unsigned char>(text[0])];
        return size != 0 && size <= text.size() && known[slotOf(text.substr(0, size))] == codeOf(text.substr(0, size))
                   ? size
                   : 0;
    }
    void keep(std::string_view bytes) noexcept
    {
        if (bytes.size() > sizeof(std::uint32_t))
            return;
        sizes[static_cast<unsigned char>(bytes[0])] = static_cast<unsigned char>(bytes.size());
        known[slotOf(bytes)] = codeOf(bytes);
    }

private:
    static std::uint32_t codeOf(std::string_view bytes) noexcept
    {
        std::uint32_t code = 0;
        for (const char byte : bytes)
            code = code << 8 | static_cast<unsigned char>(byte);
        return code;
    }
    static std::size_t slotOf(std::string_view bytes) noexcept { return codeOf(bytes) * 0x9E3779B1U >> 23; }

    std::array<std::uint32_t, 512> known = {};
    std::array<unsigned char, 256> sizes = {};  // by first byte, of the character met last
};

// What is known of a locale.
struct Locale {
    char name[256];  // The longest names of Windows take more than 64 bytes.
    bool hasAscii;
    std::size_t folding;
    Characters characters;
};

Locale lastLocale = {"", false, 0, {}};
int holds = 0;  // the number of LocaleHold objects

void look(const char* name) noexcept
{
    lastLocale = {"", convertsAscii(), foldingNumber(), {}};
    std::strncat(lastLocale.name, name, sizeof lastLocale.name - 1);
}

void askForLocale() noexcept
{
    const char* const name = std::setlocale(LC_CTYPE, nullptr);
    if (!isSameText(name, lastLocale.name))
        look(name);
}

// Needed with each text, so the answer is kept as long as the locale stays the same.
const Locale& currentLocale() noexcept
{
    if (holds == 0)
        askForLocale();
    return lastLocale;
}

bool isAscii(char byte) noexcept
{
    return static_cast<unsigned char>(byte) < asciiEnd;
}

}  // namespace

bool isTransparent(std::string_view text, bool& hasSpace) noexcept
{
    if (!currentLocale().hasAscii)
        return false;
    for (;;) {
        text.remove_prefix(
            static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) - text.begin()));
        if (text.empty())
            return true;
        std::size_t size = lastLocale.characters.find(text);
        if (size == 0) {
            bool isSpace = false;
            size = transparentLength(text, isSpace);
            if (size == 0)
                return false;
            if (!isSpace)
                lastLocale.characters.keep(text.substr(0, size));
            hasSpace = hasSpace || isSpace;
        }
        text.remove_prefix(size);
    }
}

std::size_t caseFolding() noexcept
{
    return currentLocale().folding;
}

bool localeHasAscii() noexcept
{
    return currentLocale().hasAscii;
}

LocaleHold::LocaleHold() noexcept
{
    (void)currentLocale();
    ++holds;
}

LocaleHold::~LocaleHold()
{
    --holds;
}

bool LocaleCopy::isPresent() const noexcept
{
    return isSameText(name.c_str(), std::setlocale(LC_CTYPE, nullptr));
}

void beginOtherLocale() noexcept
{
    ++holds;
    look("");
}

void endOtherLocale() noexcept
{
    --holds;
    look(std::setlocale(LC_CTYPE, nullptr));
}
