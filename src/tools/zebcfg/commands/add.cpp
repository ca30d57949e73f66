#include "cli/Call.h"
#include "update/LdifInput.h"

int runAdd(const Call& call)
{
    LdifInput input;
    input.file = call.value("file", "-");
    input.needsParent = !call.has("no-parent-check");
    return applyLdif(call.target(), input);
}
