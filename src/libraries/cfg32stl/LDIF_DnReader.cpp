#include "LDIF_DnReader.h"

#include "LDIF_Util.h"

#include <cwchar>

LDIF_CharacterSet::LDIF_CharacterSet(const std::string& characters)
{
    for (const char character : characters)
        members[static_cast<unsigned char>(character)] = true;
}

LDIF_DnReader::LDIF_DnReader(const std::string& text) : plain(::isPlain(text))
{
    if (!plain)
        converted = wide2multibyte(multibyte2wide(text));
    narrow = plain ? text : converted;
}

// The text has been converted once, so every character of it can be.
LDIF_DnReader::Character LDIF_DnReader::decode() const noexcept
{
    if (atEnd())
        return {L'\0', 0};
    std::mbstate_t state = {};
    wchar_t unit = 0;
    const std::size_t length = std::mbrtowc(&unit, narrow.data() + current, narrow.size() - current, &state);
    return length <= narrow.size() - current ? Character{unit, length} : Character{L'\0', 1};
}

void LDIF_DnReader::skipEdges() noexcept
{
    while (!atEnd() && (w_my_isspace(peek()) || w_my_isparen(peek())))
        advance();
}

bool LDIF_DnReader::takeHexPair(char& byte) noexcept
{
    if (!hexPair(narrow, current, byte))
        return false;
    current += 2;
    return true;
}

std::string_view LDIF_DnReader::takeWhile(const LDIF_CharacterSet& characters, bool isMember) noexcept
{
    const std::size_t start = current;
    if (plain) {
        while (current < narrow.size() && characters.has(static_cast<wchar_t>(narrow[current])) == isMember)
            ++current;
        return narrow.substr(start, current - start);
    }
    while (!atEnd() && characters.has(peek()) == isMember)
        advance();
    return narrow.substr(start, current - start);
}
