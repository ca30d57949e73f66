#include "cli/Call.h"
#include "update/LdifInput.h"

int runModify(const Call& call)
{
    LdifInput input;
    input.file = call.value("file", "-");
    input.type = call.has("add") ? LdifRecord::add : LdifRecord::modify;
    input.needsParent = !call.has("no-parent-check");
    input.goesOn = call.has("continue");
    input.skippedFile = call.value("skipped");
    return applyLdif(call.target(), input);
}
