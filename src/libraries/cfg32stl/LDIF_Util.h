// Character classes, trimming, hex pairs, and conversions between narrow and wide text.
//
// Narrow text is in the multibyte encoding of the C locale of the process. Wide text has one unit for each character,
// or on Windows for each 16-bit half of one; what has to look at characters rather than bytes works on it. A function
// w_name takes wide text, and its twin without the prefix narrow text. What converts a text (multibyte2wide,
// wide2multibyte, isBlank, hex2byte and the trimming of narrow text) throws LDIF_Exception when the locale cannot: 162
// from narrow to wide, 163 from wide to narrow. An embedded NUL ends a text that is converted.
#ifndef LDIF_UTIL_H
#define LDIF_UTIL_H

#include "platform.h"

#include <algorithm>
#include <string>
#include <string_view>

extern const std::string ALPHA;    // the ASCII letters
extern const std::string DIGIT;    // the decimal digits
extern const std::string hexChar;  // the hex digits, 0 to 9, A to F, a to f
extern const std::string keyChar;  // letters, digits and "-"
extern const std::string oidChar;  // digits and "."
extern const std::string special;  // the characters that a plain RDN value escapes

// The empty text, for a const char* that may not be null.
extern const char* const empty_str;

// Gives text back. Throws std::invalid_argument for null: a caller of the exported calls has left an argument out.
const char* requireText(const char* text);

// The text that an object appends to another.
template <typename Part>
std::string textOf(const Part& part)
{
    std::string text;
    part.appendTo(text);
    return text;
}

// Whether narrow and wide text are the same here, unit by unit: ASCII without NUL in a locale that knows ASCII.
bool isPlain(std::string_view text) noexcept;

// White space or a parenthesis of ASCII, which trimming removes.
constexpr bool isEdge(char byte) noexcept
{
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == '(' || byte == ')';
}

// Trim as the functions below do, but text without white space beyond ASCII.
std::string_view withoutLeading(std::string_view text) noexcept;
std::string_view withoutTrailing(std::string_view text) noexcept;

bool w_my_isspace(wchar_t unit) noexcept;
bool w_my_isparen(wchar_t unit) noexcept;
// Whether a unit is one of a character class above.
bool w_isOneOf(wchar_t unit, const std::string& characters) noexcept;

// Whether all units are white space.
bool w_isBlank(const std::wstring& text) noexcept;
bool isBlank(const std::string& text);

// Remove white space and parentheses from the front.
std::wstring& w_stripLeading(std::wstring& text) noexcept;
std::string& stripLeading(std::string& text);

// Remove white space and parentheses from the end. A parenthesis that stands first in the text stays.
std::wstring& w_stripTrailing(std::wstring& text) noexcept;
std::string& stripTrailing(std::string& text);

// Takes two hex digits off the front. False, with nothing changed, when there are none.
bool w_hex2byte(std::wstring& text, char& byte) noexcept;
bool hex2byte(std::string& text, char& byte);

// The byte that two hex digits from pos on stand for. False, with byte unchanged, when there are none.
bool w_hexPair(const std::wstring& text, std::size_t pos, char& byte) noexcept;
bool hexPair(std::string_view text, std::size_t pos, char& byte) noexcept;

// Appends two upper case hex digits; byte is 0 to 255.
std::string& byte2hex(unsigned int byte, std::string& out);

std::wstring multibyte2wide(const std::string& text);
std::string wide2multibyte(const std::wstring& text);

// What follows is for texts that may hold a clear password: no memory that held one is released before it is
// overwritten.
//
// Overwrites a text with all the memory that it has, and empties it.
template <typename Text>
void wipe(Text& text) noexcept
{
    text.resize(text.capacity());
    wipe(text.data(), text.size() * sizeof text[0]);
    text.clear();
}

// Wipes a text at the end of its own life, which is over before that of the text.
template <typename Text>
class Wiper {
public:
    explicit Wiper(Text& wiped) noexcept : text(wiped) {}
    Wiper(const Wiper&) = delete;
    Wiper& operator=(const Wiper&) = delete;
    ~Wiper() { wipe(text); }

private:
    Text& text;
};

// Makes room for a text of that size, and wipes what it stood in before.
template <typename Text>
void reserveWiping(Text& text, std::size_t size)
{
    if (size <= text.capacity())
        return;
    Text larger;
    larger.reserve(std::max(size, 2 * text.capacity()));
    larger = text;
    text.swap(larger);
    wipe(larger);
}

// The wide form of a text, wiped at the end.
class WideText {
public:
    // Throws LDIF_Exception (162) for text that the locale cannot convert.
    explicit WideText(std::string_view narrow);
    WideText(const WideText&) = delete;
    WideText& operator=(const WideText&) = delete;
    ~WideText() { wipe(units); }

    std::wstring units;
};

#endif
