#include "base/Failure.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "library/Dn.h"
#include "library/Outline.h"
#include "terminal/Question.h"
#include "update/Reading.h"
#include "update/Update.h"

#include <set>

namespace {

// Asks before entries are deleted together with others below them.
void confirm(const Call& call, const Target& target)
{
    Reading reading(target);
    const auto nodes = outlineOf(reading.session());
    const DnSpeller spelled;
    std::set<std::string> deleted;
    for (const std::string& dn : call.operands()) {
        for (const Node& node : below(nodes, spelled(dn)))
            deleted.insert(lowerCase(node.dn));
    }
    if (deleted.empty())
        return;
    const std::string count = std::to_string(deleted.size()) + (deleted.size() == 1 ? " entry" : " entries");
    if (ask("delete " + count + "? (y)es or (n)o: ", "yn") != 'y')
        throw Failure(0, "nothing is deleted", target.file);
}

}  // namespace

int runDelete(const Call& call)
{
    const Target target = call.target();
    if (call.has("recursive") && call.mayAsk())
        confirm(call, target);
    update(target, [&](Changes& file) {
        for (const std::string& dn : call.operands())
            file.erase(dn, call.has("recursive"));
    });
    return 0;
}
