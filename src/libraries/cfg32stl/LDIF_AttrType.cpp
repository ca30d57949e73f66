#include "LDIF_AttrType.h"

#include "LDIF_AttrTable.h"
#include "platform.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <string_view>

namespace {

_AttrType* const _attrMap = _attrMapArray;
int numAttrs = 0;                            // of named types; 0 before preparation
const _AttrType* defaultAttrType = nullptr;  // null before preparation

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

// The types found last under the table's own spelling of their names: a file has the same few names over and over, and
// looking them up by halves is a seventh of a load.
class Memory {
public:
    const _AttrType* find(std::string_view name) const noexcept
    {
        const _AttrType* const known = slots[slotOf(name)].load(std::memory_order_relaxed);
        return known != nullptr && name == known->name ? known : nullptr;
    }
    void keep(const _AttrType& type) noexcept { slots[slotOf(type.name)].store(&type, std::memory_order_relaxed); }

private:
    static constexpr std::size_t count = 256;

    static std::size_t slotOf(std::string_view name) noexcept
    {
        if (name.empty())
            return 0;
        const auto byteAt = [&](std::size_t at) { return std::size_t{static_cast<unsigned char>(name[at])}; };
        return (name.size() * 29 + byteAt(name.size() / 2) * 5 + byteAt(name.size() - 1)) % count;
    }

    std::array<std::atomic<const _AttrType*>, count> slots = {};
} memory;

}  // namespace

int _AttrType::compare(const char* other) const
{
    return _stricmp(name, other);
}

const _AttrType* getAttrType(const char* name)
{
    static const bool prepared = (initAttrMap(), true);
    (void)prepared;
    if (name == nullptr)
        return defaultAttrType;
    if (const _AttrType* const known = memory.find(name))
        return known;
    const _AttrType* const found = searchAttrMap(name, 0, numAttrs);
    if (found == nullptr)
        return defaultAttrType;
    memory.keep(*found);
    return found;
}

const _AttrType* getAttrType(std::string_view name)
{
    const _AttrType* const known = memory.find(name);
    return known != nullptr ? known : getAttrType(std::string(name).c_str());
}
