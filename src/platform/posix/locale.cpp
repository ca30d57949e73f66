#include "platform.h"

#include "conversion.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <new>

namespace {

constexpr int asciiEnd = 0x80;

// Converts a text by mbstowcs or wcstombs. False when the locale cannot.
template <typename From, typename To>
bool convert(std::size_t (*call)(To*, const From*, std::size_t), const std::basic_string<From>& text,
             std::basic_string<To>& made)
{
    const std::size_t length = text.empty() ? 0 : call(nullptr, text.c_str(), 0);
    if (length == static_cast<std::size_t>(-1))
        return false;
    made.resize(length);
    return length == 0 || call(made.data(), text.c_str(), length + 1) == length;
}

bool isAscii(char byte) noexcept
{
    return static_cast<unsigned char>(byte) < asciiEnd;
}

}  // namespace

bool toWide(const std::string& text, std::wstring& wide)
{
    return convert(std::mbstowcs, text, wide);
}

bool toNarrow(const std::wstring& text, std::string& narrow)
{
    return convert(std::wcstombs, text, narrow);
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

std::size_t transparentLength(std::string_view text, bool& isSpace) noexcept
{
    std::mbstate_t state = {};
    wchar_t unit = 0;
    const std::size_t size = std::mbrtowc(&unit, text.data(), text.size(), &state);
    if (size == 0 || size > text.size())
        return 0;
    char narrow[MB_LEN_MAX];
    state = {};
    const std::string_view bytes = text.substr(0, size);
    if (std::any_of(bytes.begin(), bytes.end(), isAscii) || std::wcrtomb(narrow, unit, &state) != size ||
        bytes != std::string_view(narrow, size))
        return 0;
    isSpace = std::iswspace(static_cast<std::wint_t>(unit)) != 0;
    return size;
}

LocaleCopy::LocaleCopy() : name(std::setlocale(LC_CTYPE, nullptr)), system(::duplocale(LC_GLOBAL_LOCALE))
{
    if (system == nullptr)
        throw std::bad_alloc();
}

LocaleCopy::~LocaleCopy()
{
    ::freelocale(system);
}

LocaleCopy::Use::Use(const LocaleCopy& locale) noexcept : former(::uselocale(locale.system))
{
    beginOtherLocale();
}

LocaleCopy::Use::~Use()
{
    (void)::uselocale(former);
    endOtherLocale();
}
