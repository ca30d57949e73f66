#include "LDIF_DnReader.h"

#include "LDIF_Util.h"

LDIF_DnReader::LDIF_DnReader(const std::string& narrowText) : wide(multibyte2wide(narrowText)) {}

bool LDIF_DnReader::isAt(char character) const noexcept
{
    return !atEnd() && wide[current] == static_cast<wchar_t>(character);
}

void LDIF_DnReader::skipEdges() noexcept
{
    while (!atEnd() && (w_my_isspace(wide[current]) || w_my_isparen(wide[current])))
        ++current;
}

std::string LDIF_DnReader::take(const std::string& characters)
{
    const std::size_t start = current;
    while (!atEnd() && w_isOneOf(wide[current], characters))
        ++current;
    return wide2multibyte(wide.substr(start, current - start));
}

std::string LDIF_DnReader::rest(std::size_t from) const
{
    return wide2multibyte(wide.substr(from));
}
