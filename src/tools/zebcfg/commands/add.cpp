#include "cli/Call.h"
#include "update/LdifInput.h"

int runAdd(const Call& call)
{
    LdifInput input;
    input.file = call.value("file", "-");
    input.needsParent = !call.has("no-parent-check");
    Target target = call.target();
    if (call.has("create"))
        target.presence = Presence::mayBeMissing;
    return applyLdif(target, input);
}
