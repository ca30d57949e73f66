#include "LDIF_DnReader.h"

#include "LDIF_Util.h"

LDIF_DnReader::LDIF_DnReader(const std::string& narrow) : text(multibyte2wide(narrow)) {}

bool LDIF_DnReader::isAtOneOf(const std::string& characters) const noexcept
{
    return w_isOneOf(peek(), characters);
}

void LDIF_DnReader::skipEdges() noexcept
{
    while (!atEnd() && (w_my_isspace(peek()) || w_my_isparen(peek())))
        advance();
}

bool LDIF_DnReader::takeHexPair(char& byte) noexcept
{
    if (!w_hexPair(text, current, byte))
        return false;
    current += 2;
    return true;
}

std::string LDIF_DnReader::rest(std::size_t from) const
{
    return wide2multibyte(text.substr(from));
}

std::string LDIF_DnReader::takeWhile(const std::string& characters, bool isMember)
{
    const std::size_t start = current;
    while (!atEnd() && isAtOneOf(characters) == isMember)
        advance();
    return wide2multibyte(text.substr(start, current - start));
}
