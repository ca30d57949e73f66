#include "LDIF_AttrType.h"

#include "platform.h"

#include <algorithm>

namespace {

// Sorts the named types, and gives the default type behind them.
const _AttrType* prepareTable()
{
    _AttrType* end = _attrMapArray;
    while (end->name != nullptr)
        ++end;
    std::sort(_attrMapArray, end);
    return end;
}

}  // namespace

int _AttrType::compare(const char* other) const
{
    return _stricmp(name, other);
}

const _AttrType* getAttrType(const char* name)
{
    static const _AttrType* const defaultType = prepareTable();
    if (name == nullptr)
        return defaultType;
    const auto isBefore = [](const _AttrType& type, const char* wanted) { return type.compare(wanted) < 0; };
    const auto* const found = std::lower_bound<const _AttrType*>(_attrMapArray, defaultType, name, isBefore);
    return found != defaultType && found->compare(name) == 0 ? found : defaultType;
}

const _AttrType* getAttrType(std::string_view name)
{
    return getAttrType(std::string(name).c_str());
}
