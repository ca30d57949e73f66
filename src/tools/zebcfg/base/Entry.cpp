#include "base/Entry.h"

#include <algorithm>

int lineOf(const Change& change, const std::string& value)
{
    const auto& values = change.attribute.values;
    const auto place = static_cast<std::size_t>(std::find(values.begin(), values.end(), value) - values.begin());
    return place < change.valueLines.size() ? change.valueLines[place] : change.line;
}
