#include "LDIF_DN.h"

#include "LDIF_DnReader.h"
#include "LDIF_Exception.h"

#include <algorithm>

LDIF_DN::LDIF_DN(const cisString& text)
{
    *this = text;
}

// The RDNs are written from the leaf to the root, the reverse of their order here.
LDIF_DN& LDIF_DN::operator=(const cisString& text)
{
    LDIF_DnReader reader(text);
    reader.skipEdges();
    if (reader.atEnd())
        return *this;
    std::reverse(begin(), end());
    try {
        parse(reader);
    } catch (...) {
        std::reverse(begin(), end());
        wrapAndThrow("System error parsing dn", [&](LDIF_Exception& failure) { failure.value = text; });
    }
    std::reverse(begin(), end());
    return *this;
}

// DN = RDN *( ( "," / ";" ) RDN )
void LDIF_DN::parse(LDIF_DnReader& reader)
{
    emplace_back(reader);
    while (!reader.atEnd()) {
        reader.advance();
        reader.skipEdges();
        emplace_back(reader);
    }
}

LDIF_DN& LDIF_DN::operator+=(const LDIF_RDN& rdn)
{
    push_back(rdn);
    return *this;
}

LDIF_DN::size_type LDIF_DN::commonLevels(const LDIF_DN& other) const
{
    return static_cast<size_type>(std::mismatch(begin(), end(), other.begin(), other.end()).first - begin());
}

// From the leaf's side: there the DNs of one tree differ.
bool LDIF_DN::startsEqual(const LDIF_DN& other, size_type levels) const
{
    if (levels > size() || levels > other.size())
        return false;
    while (levels > 0 && (*this)[levels - 1] == other[levels - 1])
        --levels;
    return levels == 0;
}

void LDIF_DN::removeLeading(size_type levels)
{
    erase(begin(), begin() + static_cast<difference_type>(levels));
}

LDIF_DN LDIF_DN::intersection(const LDIF_DN& other) const
{
    LDIF_DN common;
    common.assign(begin(), begin() + static_cast<difference_type>(commonLevels(other)));
    return common;
}

LDIF_DN& LDIF_DN::operator-=(const LDIF_DN& other)
{
    removeLeading(commonLevels(other));
    return *this;
}

void LDIF_DN::appendTo(std::string& out) const
{
    const char* separator = "";
    for (auto rdn = rbegin(); rdn != rend(); ++rdn) {
        out += separator;
        rdn->appendTo(out);
        separator = ", ";
    }
}

std::size_t LDIF_DN::hash() const noexcept
{
    std::size_t number = 0;
    for (const LDIF_RDN& rdn : *this)
        number = rdn.hash(number);
    return number;
}

int LDIF_DN::compare(const LDIF_DN& other) const
{
    const auto [mine, its] = std::mismatch(begin(), end(), other.begin(), other.end());
    if (mine == end())
        return its == other.end() ? 0 : 1;
    return its == other.end() ? -1 : mine->compare(*its);
}

std::string printable(const LDIF_DN& dn)
try {
    return dn.str();
} catch (const LDIF_Exception&) {
    return {};  // The failure that is being reported counts for more than this one.
}
