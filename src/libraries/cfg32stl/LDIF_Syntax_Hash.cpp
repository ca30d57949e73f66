#include "LDIF_Syntax.h"

#include "LDIF_HashIndex.h"
#include "LDIF_Value.h"

bool foldsCase(const LDIF_Value& value) noexcept
{
    return value.attrType->match == cisCompare || value.attrType->match == dnCompare;
}

// Where the comparison knows more forms of a value than its text, the hash goes over what it compares.
std::optional<std::size_t> hashOf(const LDIF_Value& value)
{
    const auto match = value.attrType->match;
    if (match == cisCompare)
        return foldedHash(0, value.stringValue);
    if (match == cesCompare || match == intCompare)
        return exactHash(0, value.stringValue);
    if (match == pwCompare)
        return pwHash(value);
    if (match != dnCompare || value.dnValue == nullptr)
        return std::nullopt;
    return value.dnValue->hash();
}
