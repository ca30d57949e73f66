#include "platform.h"

#include "codePage.h"
#include "conversion.h"

#include <array>
#include <climits>
#include <clocale>
#include <cwchar>
#include <cwctype>

#include <windows.h>

namespace {

constexpr unsigned int latin1 = 28591;  // each byte is the character of that number
constexpr unsigned int gb18030 = 54936;
constexpr unsigned int none = ~0U;
constexpr int asciiEnd = 0x80;
constexpr int longestCharacter = 4;  // in bytes

unsigned int used = none;  // the locale of a LocaleCopy that is in use

SystemLocale presentLocale() noexcept
{
    return used != none ? used : ___lc_codepage_func();
}

// The code pages of all of Unicode know no default character, and want another flag.
bool isOfUnicode(unsigned int page) noexcept
{
    return page == CP_UTF8 || page == gb18030;
}

int unitsOf(unsigned int page, std::string_view text, wchar_t* units, int size) noexcept
{
    return MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()), units, size);
}

int bytesOf(unsigned int page, std::wstring_view text, char* bytes, int size) noexcept
{
    const bool isWhole = isOfUnicode(page);
    BOOL hasDefault = FALSE;
    const int length =
        WideCharToMultiByte(page, isWhole ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS, text.data(),
                            static_cast<int>(text.size()), bytes, size, nullptr, isWhole ? nullptr : &hasDefault);
    return hasDefault == FALSE ? length : 0;
}

// Converts by one of the two above: first for the size, then for the text.
template <typename From, typename To>
bool convert(int (*call)(unsigned int, std::basic_string_view<From>, To*, int), unsigned int page,
             std::basic_string_view<From> text, std::basic_string<To>& made)
{
    made.clear();
    if (text.empty())
        return true;
    const int size = text.size() <= INT_MAX ? call(page, text, nullptr, 0) : 0;
    made.resize(static_cast<std::size_t>(size));
    return size > 0 && call(page, text, made.data(), size) == size;
}

// By its first byte.
std::size_t characterSize(unsigned int page, char first) noexcept
{
    const auto byte = static_cast<unsigned char>(first);
    if (page == CP_UTF8)
        return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return IsDBCSLeadByteEx(page, byte) != FALSE ? 2 : 1;
}

bool hasSingleBytes(unsigned int page) noexcept
{
    CPINFO info = {};
    return GetCPInfo(page, &info) != FALSE && info.MaxCharSize == 1;
}

unsigned char lowerIn(unsigned int page, unsigned char byte) noexcept
{
    const char text = static_cast<char>(byte);
    wchar_t unit = 0;
    wchar_t lower = 0;
    char made = 0;
    const bool isDone = unitsOf(page, {&text, 1}, &unit, 1) == 1 &&
                        LCMapStringW(LOCALE_INVARIANT, LCMAP_LOWERCASE, &unit, 1, &lower, 1) == 1 &&
                        bytesOf(page, {&lower, 1}, &made, 1) == 1;
    return isDone ? static_cast<unsigned char>(made) : byte;
}

// What lowerCase gives, by byte beyond ASCII.
struct Folding {
    SystemLocale locale;
    std::array<unsigned char, asciiEnd> lower;
};

Folding makeFolding(SystemLocale locale) noexcept
{
    Folding made = {locale, {}};
    const bool hasCase = locale != 0 && hasSingleBytes(locale);
    for (int place = 0; place < asciiEnd; ++place) {
        const auto byte = static_cast<unsigned char>(asciiEnd + place);
        made.lower[static_cast<std::size_t>(place)] = hasCase ? lowerIn(locale, byte) : byte;
    }
    return made;
}

}  // namespace

unsigned int codePage() noexcept
{
    const SystemLocale locale = presentLocale();
    return locale != 0 ? locale : latin1;
}

bool widen(unsigned int page, std::string_view text, std::wstring& wide)
{
    return convert(unitsOf, page, text, wide);
}

bool narrow(unsigned int page, std::wstring_view text, std::string& out)
{
    return convert(bytesOf, page, text, out);
}

int lowerCase(int byte) noexcept
{
    static Folding folding = makeFolding(0);
    const SystemLocale locale = presentLocale();
    if (folding.locale != locale)
        folding = makeFolding(locale);
    return folding.lower[static_cast<std::size_t>(byte - asciiEnd)];
}

bool toWide(const std::string& text, std::wstring& wide)
{
    return widen(codePage(), text.c_str(), wide);
}

bool toNarrow(const std::wstring& text, std::string& narrowText)
{
    return narrow(codePage(), text.c_str(), narrowText);
}

bool convertsAscii() noexcept
{
    const unsigned int page = codePage();
    for (int byte = 1; byte < asciiEnd; ++byte) {
        const char text = static_cast<char>(byte);
        wchar_t unit = 0;
        if (unitsOf(page, {&text, 1}, &unit, 1) != 1 || unit != byte)
            return false;
    }
    return true;
}

std::size_t transparentLength(std::string_view text, bool& isSpace) noexcept
{
    const unsigned int page = codePage();
    const std::size_t size = characterSize(page, text[0]);
    if (size > text.size())
        return 0;
    const std::string_view bytes = text.substr(0, size);
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) < asciiEnd)
            return 0;
    }
    wchar_t units[2] = {};
    char back[longestCharacter] = {};
    const int count = unitsOf(page, bytes, units, 2);
    const int length = bytesOf(page, {units, static_cast<std::size_t>(count)}, back, longestCharacter);
    if (count == 0 || bytes != std::string_view(back, static_cast<std::size_t>(length)))
        return 0;
    isSpace = std::iswspace(units[0]) != 0;
    return size;
}

LocaleCopy::LocaleCopy() : name(std::setlocale(LC_CTYPE, nullptr)), system(presentLocale()) {}

LocaleCopy::~LocaleCopy() = default;

LocaleCopy::Use::Use(const LocaleCopy& locale) noexcept : former(used)
{
    used = locale.system;
    beginOtherLocale();
}

LocaleCopy::Use::~Use()
{
    used = former;
    endOtherLocale();
}
