#include "LDIF_AttrType.h"

#include "LDIF_AttrTable.h"
#include "platform.h"

#include <algorithm>
#include <mutex>

namespace {

_AttrType* const _attrMap = _attrMapArray;
int numAttrs = 0;                            // of named types; 0 before preparation
const _AttrType* defaultAttrType = nullptr;  // null before preparation
std::once_flag prepared;

// Sorts the named types. The default type behind them stays where it is.
void initAttrMap()
{
    while (_attrMap[numAttrs].name != nullptr)
        ++numAttrs;
    std::sort(_attrMap, _attrMap + numAttrs);
    defaultAttrType = _attrMap + numAttrs;
}

// The type of that name among the rows from low up to but not including high, or null.
const _AttrType* searchAttrMap(const char* name, int low, int high)
{
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int order = _attrMap[middle].compare(name);
        if (order == 0)
            return _attrMap + middle;
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return nullptr;
}

}  // namespace

int _AttrType::compare(const char* other) const
{
    return _stricmp(name, other);
}

const _AttrType* getAttrType(const char* name)
{
    std::call_once(prepared, initAttrMap);
    const _AttrType* const found = name != nullptr ? searchAttrMap(name, 0, numAttrs) : nullptr;
    return found != nullptr ? found : defaultAttrType;
}
