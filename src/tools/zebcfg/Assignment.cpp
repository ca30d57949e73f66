#include "Assignment.h"

#include "Attributes.h"
#include "Failure.h"

#include <algorithm>

std::vector<Change> changesOf(const Call& call, int operation, NeedsValue needsValue)
{
    std::vector<Change> changes;
    for (auto word = call.operands().begin() + 1; word != call.operands().end(); ++word) {
        const auto equals = word->find('=');
        const std::string name = word->substr(0, equals);
        if (equals == std::string::npos && needsValue == NeedsValue::yes)
            throw Failure(0, "a word is not of the form ATTRIBUTE=VALUE");
        auto change = std::find_if(changes.begin(), changes.end(),
                                   [&](const Change& known) { return isSameName(known.attribute.name, name); });
        if (change == changes.end()) {
            hintAtName(call, name);
            change = changes.insert(change, Change{operation, {name, {}}});
        }
        if (equals != std::string::npos)
            change->attribute.values.push_back(word->substr(equals + 1));
    }
    return changes;
}

void hintAtName(const Call& call, const std::string& name)
{
    const std::string hint = attributeHint(name);
    if (!hint.empty())
        call.say(name + " is no attribute that the server knows" + hint);
}
