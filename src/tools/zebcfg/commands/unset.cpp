#include "cli/Assignment.h"
#include "update/Update.h"

int runUnset(const Call& call)
{
    const auto changes = changesOf(call, LDAP_MOD_DELETE, NeedsValue::no);
    call.messages().hintAtNames(changes);
    update(call.target(), [&](Changes& file) { file.modify(call.operands().front(), changes); });
    return 0;
}
