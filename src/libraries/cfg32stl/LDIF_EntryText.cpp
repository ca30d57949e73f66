#include "LDIF_EntryText.h"

LDIF_TextLine takeLine(std::string_view& attributes) noexcept
{
    const std::size_t end = attributes.find('\n');
    const std::string_view line = attributes.substr(0, end + 1 - lineEnd.size());
    attributes.remove_prefix(end + 1);
    if (line[0] == '#')
        return {{}, line};
    const std::size_t colon = line.find(':');
    return {line.substr(0, colon), line.substr(colon + 2)};
}

std::string_view linesFrom(std::string_view attributes, std::string_view name) noexcept
{
    const unsigned char first = name.empty() ? 0 : foldCase(name[0]);
    while (!attributes.empty()) {
        const unsigned char found = foldCase(attributes[0]);
        if (found == first && isNamed(attributes, name))
            return attributes;
        if (found > first && attributes[0] != '#')
            return {};
        attributes.remove_prefix(attributes.find('\n') + 1);
    }
    return {};
}
