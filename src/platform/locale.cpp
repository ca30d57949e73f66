#include "platform.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <locale.h>
#include <new>

namespace {

constexpr int asciiEnd = 0x80;

constexpr std::array<unsigned char, asciiEnd> lowerAscii = [] {
    std::array<unsigned char, asciiEnd> table = {};
    for (int byte = 0; byte < asciiEnd; ++byte)
        table[static_cast<std::size_t>(byte)] =
            static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
    return table;
}();

// strcmp, but inline: the texts are short and mostly equal.
bool isSameText(const char* left, const char* right) noexcept
{
    while (*left == *right && *left != '\0') {
        ++left;
        ++right;
    }
    return *left == *right;
}

bool isAscii(char byte) noexcept
{
    return static_cast<unsigned char>(byte) < asciiEnd;
}

bool convertsAscii() noexcept
{
    for (int byte = 1; byte < asciiEnd; ++byte) {
        const char narrow = static_cast<char>(byte);
        wchar_t wide = 0;
        if (std::mbtowc(&wide, &narrow, 1) != 1 || wide != byte)
            return false;
    }
    return true;
}

std::size_t foldingNumber() noexcept
{
    std::size_t number = 0;
    for (int byte = asciiEnd; byte < 2 * asciiEnd; ++byte)
        number = number * 31 + static_cast<std::size_t>(std::tolower(byte));
    return number;
}

// What is known of a locale.
struct Locale {
    char name[64];
    bool hasAscii;
    std::size_t folding;
};

Locale lastLocale = {"", false, 0};
int holds = 0;  // the number of LocaleHold objects

void look(const char* name) noexcept
{
    lastLocale = {"", convertsAscii(), foldingNumber()};
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

}  // namespace

unsigned char foldCase(char character) noexcept
{
    const auto byte = static_cast<unsigned char>(character);
    if (byte < asciiEnd)
        return lowerAscii[byte];
    const int lower = std::tolower(byte);
    return lower < asciiEnd ? byte : static_cast<unsigned char>(lower);
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

std::size_t caseFolding() noexcept
{
    return currentLocale().folding;
}

bool localeHasAscii() noexcept
{
    return currentLocale().hasAscii;
}

bool isTransparent(std::string_view text, bool& hasSpace) noexcept
{
    if (!localeHasAscii())
        return false;
    for (std::size_t pos = 0; pos < text.size();) {
        if (isAscii(text[pos])) {
            ++pos;
            continue;
        }
        std::mbstate_t state = {};
        wchar_t unit = 0;
        const std::size_t size = std::mbrtowc(&unit, &text[pos], text.size() - pos, &state);
        if (size == 0 || size > text.size() - pos)
            return false;
        const std::string_view bytes = text.substr(pos, size);
        char narrow[MB_LEN_MAX];
        state = {};
        if (std::any_of(bytes.begin(), bytes.end(), isAscii) || std::wcrtomb(narrow, unit, &state) != size ||
            bytes != std::string_view(narrow, size))
            return false;
        hasSpace = hasSpace || std::iswspace(static_cast<std::wint_t>(unit)) != 0;
        pos += size;
    }
    return true;
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

LocaleCopy::LocaleCopy() : name(std::setlocale(LC_CTYPE, nullptr)), handle(::duplocale(LC_GLOBAL_LOCALE))
{
    if (handle == nullptr)
        throw std::bad_alloc();
}

LocaleCopy::~LocaleCopy()
{
    ::freelocale(static_cast<locale_t>(handle));
}

bool LocaleCopy::isPresent() const noexcept
{
    return isSameText(name.c_str(), std::setlocale(LC_CTYPE, nullptr));
}

LocaleCopy::Use::Use(const LocaleCopy& locale) noexcept : former(::uselocale(static_cast<locale_t>(locale.handle)))
{
    ++holds;
    look("");
}

LocaleCopy::Use::~Use()
{
    (void)::uselocale(static_cast<locale_t>(former));
    --holds;
    look(std::setlocale(LC_CTYPE, nullptr));
}
