#include "base/Failure.h"
#include "cli/Assignment.h"
#include "update/Update.h"

int runSet(const Call& call)
{
    const int operation = call.has("add") ? LDAP_MOD_ADD : LDAP_MOD_REPLACE;
    const auto changes = changesOf(call, operation, NeedsValue::yes);
    call.messages().hintAtNames(changes);
    update(call.target(), [&](Changes& file) { file.modify(call.operands().front(), changes); });
    return 0;
}
