#include "LDIF_Syntax.h"

#include "LDIF_HashIndex.h"
#include "LDIF_Value.h"

bool canHash(const LDIF_Value& value) noexcept
{
    const auto match = value.attrType->match;
    return match == cesCompare || match == cisCompare || match == intCompare ||
           (match == dnCompare && value.dnValue != nullptr);
}

bool foldsCase(const LDIF_Value& value) noexcept
{
    return value.attrType->match == cisCompare || value.attrType->match == dnCompare;
}

// Where the comparison knows more forms of a value than its text, the hash goes over what it compares.
std::size_t hashOf(const LDIF_Value& value)
{
    const auto match = value.attrType->match;
    if (match == cisCompare)
        return foldedHash(0, value.stringValue);
    if (match != dnCompare)
        return exactHash(0, value.stringValue);
    return value.dnValue != nullptr ? value.dnValue->hash() : LDIF_DN(cisString(value.stringValue)).hash();
}
