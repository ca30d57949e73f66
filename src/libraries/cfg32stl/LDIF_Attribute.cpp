#include "LDIF_Attribute.h"

#include "LDIF_Exception.h"
#include "LDIF_Util.h"
#include "platform.h"

#include <algorithm>
#include <iterator>
#include <utility>

LDIF_Attribute::LDIF_Attribute(const std::string& attributeName, const std::string& text)
    : name(attributeName), values(attributeName)
{
    if (!text.empty())
        values += text;
}

LDIF_Attribute::LDIF_Attribute(const LDIF_Line& line, LDIF_Comment attributeComment)
    : name(line.name), comment(std::move(attributeComment)), values(line.name)
{
    if (line.type != LDIF_Line::attribute)
        throw illegalConstructor("LDIF_Attribute", line);
    values += line.value;
}

void LDIF_Attribute::appendTo(std::string& out) const
{
    comment.appendTo(out);
    values.appendTo(out);
}

LDIF_Attribute& LDIF_Attribute::operator+=(const LDIF_Attribute& other)
{
    return *this += LDIF_Attribute(other);
}

LDIF_Attribute& LDIF_Attribute::operator+=(LDIF_Attribute&& other)
{
    if (*this == other) {
        comment += std::move(other.comment);
        values += std::move(other.values);
    }
    return *this;
}

LDIF_Attribute& LDIF_Attribute::operator+=(const LDIF_Comment& lines)
{
    comment += lines;
    return *this;
}

LDIF_Attribute& LDIF_Attribute::operator+=(const std::string& value)
{
    values += value;
    return *this;
}

void LDIF_Attribute::add(const LDIF_Line& line, LDIF_Comment& before)
{
    comment.makeRoom(before.lines.size());
    values += line.value;
    comment += std::move(before);
}

void LDIF_Attributes::appendTo(std::string& out) const
{
    for (const LDIF_Attribute& attribute : *this)
        attribute.appendTo(out);
}

// Names beyond ASCII have their places by the locale, which may have changed since the list was sorted.
bool LDIF_Attributes::isSorted() const
{
    const std::size_t present = caseFolding();
    if (sortedUnder != present)
        sortedUnder = std::is_sorted(begin(), end()) ? present : 0;
    return sortedUnder == present;
}

// The first attribute that does not sort before name. Names mostly come in ascending order, so the end comes first.
LDIF_Attributes::iterator LDIF_Attributes::placeOf(const std::string& name)
{
    const auto present = isPlain(name) || isSorted() ? end() : std::find(begin(), end(), name);
    if (present != end() || empty() || back().compare(name) < 0)
        return present;
    return std::lower_bound(begin(), end(), name, [](const LDIF_Attribute& attribute, const std::string& wanted) {
        return attribute.compare(wanted) < 0;
    });
}

LDIF_Attributes& LDIF_Attributes::operator+=(const LDIF_Attribute& attribute)
{
    return *this += LDIF_Attribute(attribute);
}

LDIF_Attributes& LDIF_Attributes::operator+=(LDIF_Attribute&& attribute)
{
    const auto place = placeOf(attribute.name);
    if (place != end() && *place == attribute)
        *place += std::move(attribute);
    else
        insert(place, std::move(attribute));
    return *this;
}

void LDIF_Attributes::add(const LDIF_Line& line, LDIF_Comment& before)
{
    auto place = placeOf(line.name);
    if (place == end() || !(*place == line.name)) {
        place = emplace(place, line, LDIF_Comment());
        std::swap(place->comment, before);
        return;
    }
    place->add(line, before);
}

LDIF_Attributes& LDIF_Attributes::operator-=(const LDIF_Attribute& attribute)
{
    const auto place = placeOf(attribute.name);
    if (place != end() && *place == attribute)
        erase(place);
    return *this;
}

LDIF_Attributes& LDIF_Attributes::operator+=(const LDIF_Attributes& other)
{
    return this == &other ? *this : *this += LDIF_Attributes(other);
}

LDIF_Attributes& LDIF_Attributes::operator+=(LDIF_Attributes&& other)
{
    for (LDIF_Attribute& attribute : other)
        *this += std::move(attribute);
    return *this;
}

LDIF_Attribute* LDIF_Attributes::find(const cisString& name)
{
    const auto place = placeOf(name);
    const auto index = place - begin();
    return data() + (place != end() && *place == name ? index : static_cast<difference_type>(size()));
}
