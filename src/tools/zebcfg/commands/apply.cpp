#include "update/Apply.h"
#include "base/Failure.h"
#include "cli/Call.h"

int runApply(const Call& call)
{
    const bool prunes = call.has("prune");
    if (prunes != call.has("base"))
        throw Failure(0, prunes ? "--prune needs -b, the entry below which entries are removed" : "-b needs --prune");
    applyState(call.target(), {call.value("file", "-"), !call.has("no-parent-check"), prunes, call.value("base")});
    return 0;
}
