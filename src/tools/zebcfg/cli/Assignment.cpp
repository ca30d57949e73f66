#include "cli/Assignment.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"

#include <algorithm>

std::vector<Change> changesOf(const Call& call, int operation, NeedsValue needsValue)
{
    std::vector<Change> changes;
    for (auto word = call.operands().begin() + 1; word != call.operands().end(); ++word) {
        const auto equals = word->find('=');
        const std::string name = word->substr(0, equals);
        if (equals == std::string::npos && needsValue == NeedsValue::yes)
            throw Failure(0, "an argument does not have the form ATTRIBUTE=VALUE");
        auto change = std::find_if(changes.begin(), changes.end(),
                                   [&](const Change& known) { return isSameName(known.attribute.name, name); });
        if (change == changes.end())
            change = changes.insert(change, Change{operation, {name, {}}});
        if (equals + 1 < word->size() && equals != std::string::npos && isSecret(name))
            call.messages().warn("the password of " + name +
                                 " can be seen by others on this machine; use zebcfg passwd, or zebcfg modify");
        if (equals != std::string::npos)
            change->attribute.values.push_back(word->substr(equals + 1));
    }
    return changes;
}
