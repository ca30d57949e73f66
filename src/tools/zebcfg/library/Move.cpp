#include "library/Move.h"

#include "base/Attributes.h"
#include "base/Entry.h"
#include "base/Value.h"
#include "formats/ConfigText.h"

#include <algorithm>
#include <sstream>
#include <utility>

Move::Move(std::string oldDn, std::string newDn, const DnSpeller& speller)
    : oldName(std::move(oldDn)), newName(std::move(newDn)), oldKey(keyOf(oldName)), spelled(speller)
{}

bool Move::isSpelling() const
{
    return oldKey == keyOf(newName);
}

bool Move::isIntoItself() const
{
    return !isSpelling() && affects(newName);
}

bool Move::affects(const std::string& dn) const
{
    const std::string known = spelled.orNothing(dn);
    const auto above = ancestorsOf(known);
    return !known.empty() && (keyOf(known) == oldKey || std::any_of(above.begin(), above.end(), [&](const auto& each) {
                                  return keyOf(each) == oldKey;
                              }));
}

std::string Move::moved(const std::string& dn) const
{
    const std::string known = spelled.orNothing(dn);
    for (std::string above = known; !above.empty(); above = parentOf(above)) {
        if (keyOf(above) == oldKey)
            return known.substr(0, known.size() - above.size()) + newName;
    }
    return dn;
}

std::string Move::movedText(const std::string& text) const
{
    const auto lines = linesOf(text);
    auto next = std::find_if(lines.begin(), lines.end(), [](const ConfigLine& line) { return line.isDn; });
    std::istringstream in(text);
    std::string result;
    int number = 1;
    for (std::string line; std::getline(in, line); ++number) {
        if (next == lines.end() || number < next->first || !affects(std::string(next->value)))
            result += line + '\n';
        else if (number == next->first)
            result += "dn: " + moved(std::string(next->value)) + '\n';
        if (next != lines.end() && number >= next->last)
            next = std::find_if(next + 1, lines.end(), [](const ConfigLine& each) { return each.isDn; });
    }
    return result;
}

std::vector<std::string> Move::movedValues(const std::string& name, std::vector<std::string> values,
                                           bool keepsOld) const
{
    const AttributeType* const type = findAttributeType(name);
    const auto find = [&](const std::string& value) {
        return std::find_if(values.begin(), values.end(),
                            [&](const std::string& each) { return compareValues(type, each, value) == 0; });
    };
    auto place = static_cast<std::ptrdiff_t>(values.size());
    for (const Attribute& old : rdnOf(oldName)) {
        const auto found = find(old.values.front());
        if (keepsOld || !isSameName(old.name, name) || found == values.end())
            continue;
        place = found - values.begin();
        values.erase(found);
    }
    for (const Attribute& added : rdnOf(newName)) {
        if (isSameName(added.name, name) && find(added.values.front()) == values.end())
            values.insert(values.begin() + place++, added.values.front());
    }
    return values;
}
