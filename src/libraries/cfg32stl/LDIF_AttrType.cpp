#include "LDIF_AttrType.h"

#include "LDIF_HashIndex.h"
#include "platform.h"

#include <algorithm>

namespace {

// The table in ascending order of name, and where each name stands in it: a file has the same few names over and over.
struct PreparedTable {
    PreparedTable()
    {
        _AttrType* end = _attrMapArray;
        while (end->name != nullptr)
            ++end;
        std::sort(_attrMapArray, end);
        defaultType = end;
        for (const _AttrType* type = _attrMapArray; type != end; ++type)
            places.add(foldedHash(0, type->name), static_cast<std::size_t>(type - _attrMapArray));
    }

    const _AttrType* defaultType;
    LDIF_HashIndex places;
};

}  // namespace

int _AttrType::compare(const char* other) const
{
    return compareFoldedText(name, other);
}

const _AttrType* getAttrType(const char* name)
{
    return getAttrType(name != nullptr ? std::string_view(name) : std::string_view());
}

const _AttrType* getAttrType(std::string_view name)
{
    static const PreparedTable table;
    const auto isNamed = [&](std::size_t place) { return compareFolded(_attrMapArray[place].name, name) == 0; };
    const std::size_t found = table.places.find(foldedHash(0, name), isNamed);
    return found != LDIF_HashIndex::npos ? &_attrMapArray[found] : table.defaultType;
}
