#include "LDIF_DnReader.h"

#include "LDIF_Util.h"

LDIF_CharacterSet::LDIF_CharacterSet(const std::string& characters)
{
    for (const char character : characters)
        members[static_cast<unsigned char>(character)] = true;
}

LDIF_DnReader::LDIF_DnReader(const std::string& text) : narrow(text), plain(::isPlain(text))
{
    if (!plain)
        wide = multibyte2wide(text);
}

wchar_t LDIF_DnReader::peek() const noexcept
{
    if (atEnd())
        return L'\0';
    return plain ? static_cast<wchar_t>(narrow[current]) : wide[current];
}

void LDIF_DnReader::skipEdges() noexcept
{
    while (!atEnd() && (w_my_isspace(peek()) || w_my_isparen(peek())))
        advance();
}

bool LDIF_DnReader::takeHexPair(char& byte) noexcept
{
    if (plain ? !hexPair(narrow, current, byte) : !w_hexPair(wide, current, byte))
        return false;
    current += 2;
    return true;
}

std::string LDIF_DnReader::narrowed(std::size_t from, std::size_t length) const
{
    return plain ? std::string(narrow.substr(from, length)) : wide2multibyte(wide.substr(from, length));
}

std::string_view LDIF_DnReader::takeWhile(const LDIF_CharacterSet& characters, bool isMember)
{
    const std::size_t start = current;
    if (plain) {
        while (current < narrow.size() && characters.has(static_cast<wchar_t>(narrow[current])) == isMember)
            ++current;
        return narrow.substr(start, current - start);
    }
    while (!atEnd() && characters.has(wide[current]) == isMember)
        ++current;
    taken = narrowed(start, current - start);
    return taken;
}
