#include "base/Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <sstream>

namespace {

// The length of the control character at a place, 0 for any other: C0 without the tab, DEL, C1 and the byte order mark,
// in UTF-8 or an encoding of single bytes.
std::size_t controlAt(const std::string& text, std::size_t place)
{
    const auto byte = static_cast<unsigned char>(text[place]);
    const auto next = static_cast<unsigned char>(place + 1 < text.size() ? text[place + 1] : '\0');
    if ((byte < 0x80 || MB_CUR_MAX == 1) && std::iscntrl(byte) != 0 && byte != '\t')
        return 1;
    if (byte == 0xc2 && next >= 0x80 && next < 0xa0)
        return 2;
    return text.compare(place, sizeof byteOrderMark - 1, byteOrderMark) == 0 ? sizeof byteOrderMark - 1 : 0;
}

}  // namespace

std::string replaced(std::string text, const std::string& word, const std::string& replacement)
{
    for (auto at = word.empty() ? std::string::npos : text.find(word); at != std::string::npos;
         at = text.find(word, at + replacement.size()))
        text.replace(at, word.size(), replacement);
    return text;
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), lowered);
    return text;
}

std::string hexOf(unsigned char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    return {digits[byte >> 4], digits[byte & 15]};
}

std::optional<char> byteAt(std::string_view text, std::size_t place)
{
    constexpr int radix = 16;
    constexpr std::size_t length = 2;
    if (text.size() < place + length)
        return std::nullopt;
    unsigned char byte = 0;
    const char* const begin = text.data() + place;
    const bool isPair = std::from_chars(begin, begin + length, byte, radix).ptr == begin + length;
    return isPair ? std::optional(static_cast<char>(byte)) : std::nullopt;
}

std::size_t findPlain(std::string_view text, std::string_view characters, std::size_t place)
{
    bool isQuoted = false;
    for (; place < text.size(); ++place) {
        if (text[place] == '\\')
            ++place;
        else if (text[place] == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && characters.find(text[place]) != std::string_view::npos)
            return place;
    }
    return std::string_view::npos;
}

std::size_t blankAt(std::string_view text, std::size_t place)
{
    if (place < text.size() && std::isgraph(static_cast<unsigned char>(text[place])) != 0)
        return 0;  // The usual line needs no conversion.
    wchar_t unit = 0;
    std::mbstate_t state = {};
    const std::size_t length = std::mbrtowc(&unit, text.data() + place, text.size() - place, &state);
    return length <= text.size() - place && std::iswspace(static_cast<std::wint_t>(unit)) != 0 ? length : 0;
}

bool hasByteOrderMark(const std::string& text)
{
    return text.rfind(byteOrderMark, 0) == 0;
}

std::string visible(const std::string& text)
{
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t count = controlAt(text, i);
        if (count == 0)
            shown += text[i++];
        for (; count > 0; --count)
            shown += "\\x" + hexOf(static_cast<unsigned char>(text[i++]));
    }
    return shown;
}

std::string eachLine(const std::string& text, std::string (*change)(const std::string& line))
{
    std::istringstream in(text);
    std::string changed;
    for (std::string line; std::getline(in, line);)
        changed += change(line) + '\n';
    return changed;
}
