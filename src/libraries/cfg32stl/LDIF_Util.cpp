#include "LDIF_Util.h"

#include "LDIF_Exception.h"

#include <algorithm>
#include <cwctype>
#include <stdexcept>

const std::string ALPHA = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const std::string DIGIT = "0123456789";
const std::string hexChar = DIGIT + "ABCDEFabcdef";
const std::string keyChar = ALPHA + DIGIT + "-";
const std::string oidChar = DIGIT + ".";
const std::string special = ",=+<>#;\\\"";

const char* const empty_str = "";

namespace {

constexpr int wideFailure = 162;
constexpr int narrowFailure = 163;

bool isEdge(wchar_t unit) noexcept
{
    return w_my_isspace(unit) || w_my_isparen(unit);
}

// How many units the trimming removes from the front.
template <typename Text>
std::size_t leadingEdges(const Text& text) noexcept
{
    std::size_t first = 0;
    while (first < text.size() && isEdge(text[first]))
        ++first;
    return first;
}

// How many units it leaves from the front when it trims the end.
template <typename Text>
std::size_t lengthWithoutTrailing(const Text& text) noexcept
{
    if (text.empty())
        return 0;
    std::size_t last = text.size() - 1;
    while (last > 0 && isEdge(text[last]))
        --last;
    return isEdge(text[last]) && !w_my_isparen(text[last]) ? last : last + 1;
}

// Trims narrow text in its wide form, and wipes where it stood.
std::string& stripAsWide(std::string& text, std::wstring& (*strip)(std::wstring&))
{
    WideText wide(text);
    std::string stripped = wide2multibyte(strip(wide.units));
    wipe(text);
    return text = std::move(stripped);
}

// The value of a hex digit, or -1.
int hexValue(wchar_t unit) noexcept
{
    if (!w_isOneOf(unit, hexChar))
        return -1;
    const int index = static_cast<int>(hexChar.find(static_cast<char>(unit)));
    return index < 16 ? index : index - 6;
}

template <typename Text>
bool readHexPair(const Text& text, std::size_t pos, char& byte) noexcept
{
    if (text.size() < pos + 2)
        return false;
    const int high = hexValue(text[pos]);
    const int low = hexValue(text[pos + 1]);
    if (high < 0 || low < 0)
        return false;
    byte = static_cast<char>(high * 16 + low);
    return true;
}

}  // namespace

const char* requireText(const char* text)
{
    if (text == nullptr)
        throw std::invalid_argument("null text");
    return text;
}

bool isPlain(std::string_view text) noexcept
{
    const auto isAscii = [](char byte) { return static_cast<signed char>(byte) > 0; };
    return std::all_of(text.begin(), text.end(), isAscii) && localeHasAscii();
}

bool w_my_isspace(wchar_t unit) noexcept
{
    if (unit > 0 && unit < 0x80)
        return unit == L' ' || (unit >= L'\t' && unit <= L'\r');
    return std::iswspace(static_cast<std::wint_t>(unit)) != 0;
}

bool w_my_isparen(wchar_t unit) noexcept
{
    return unit == L'(' || unit == L')';
}

bool w_isOneOf(wchar_t unit, const std::string& characters) noexcept
{
    return unit > 0 && unit < 0x80 && characters.find(static_cast<char>(unit)) != std::string::npos;
}

bool w_isBlank(const std::wstring& text) noexcept
{
    return std::all_of(text.begin(), text.end(), w_my_isspace);
}

bool isBlank(const std::string& text)
{
    return w_isBlank(WideText(text).units);
}

std::string_view withoutLeading(std::string_view text) noexcept
{
    return text.substr(leadingEdges(text));
}

std::string_view withoutTrailing(std::string_view text) noexcept
{
    return text.substr(0, lengthWithoutTrailing(text));
}

std::wstring& w_stripLeading(std::wstring& text) noexcept
{
    text.erase(0, leadingEdges(text));
    return text;
}

std::string& stripLeading(std::string& text)
{
    return isPlain(text) ? text.erase(0, leadingEdges(text)) : stripAsWide(text, w_stripLeading);
}

std::wstring& w_stripTrailing(std::wstring& text) noexcept
{
    text.resize(lengthWithoutTrailing(text));
    return text;
}

std::string& stripTrailing(std::string& text)
{
    return isPlain(text) ? text.erase(lengthWithoutTrailing(text)) : stripAsWide(text, w_stripTrailing);
}

bool w_hexPair(const std::wstring& text, std::size_t pos, char& byte) noexcept
{
    return readHexPair(text, pos, byte);
}

bool hexPair(std::string_view text, std::size_t pos, char& byte) noexcept
{
    return readHexPair(text, pos, byte);
}

bool w_hex2byte(std::wstring& text, char& byte) noexcept
{
    if (!w_hexPair(text, 0, byte))
        return false;
    text.erase(0, 2);
    return true;
}

bool hex2byte(std::string& text, char& byte)
{
    std::wstring wide = multibyte2wide(text);
    char found = 0;
    if (!w_hex2byte(wide, found))
        return false;
    text = wide2multibyte(wide);
    byte = found;
    return true;
}

std::string& byte2hex(unsigned int byte, std::string& out)
{
    out += hexChar[byte >> 4 & 15U];
    out += hexChar[byte & 15U];
    return out;
}

std::wstring multibyte2wide(const std::string& text)
{
    if (isPlain(text))
        return {text.begin(), text.end()};
    std::wstring wide;
    if (toWide(text, wide))
        return wide;
    LDIF_Exception failure(wideFailure, wideFailure, "mbstowcs( " + text + " )");
    failure.value = text;
    throw failure;
}

std::string wide2multibyte(const std::wstring& text)
{
    const auto isAscii = [](wchar_t unit) { return unit > 0 && unit < 0x80; };
    if (std::all_of(text.begin(), text.end(), isAscii) && localeHasAscii())
        return {text.begin(), text.end()};
    std::string narrow;
    if (toNarrow(text, narrow))
        return narrow;
    throw LDIF_Exception(narrowFailure, narrowFailure, "wcstombs()");
}

WideText::WideText(std::string_view narrow)
{
    std::string text(narrow);
    const Wiper wiper(text);
    units = multibyte2wide(text);
}
