#include "base/Failure.h"
#include "cli/Assignment.h"
#include "update/Reading.h"

#include <iostream>

int runCompare(const Call& call)
{
    const Attribute assertion = changesOf(call, LDAP_MOD_REPLACE, NeedsValue::yes).front().attribute;
    const std::string& dn = call.operands().front();
    Reading reading(call.target());
    const Session& session = reading.session();
    if (session.values(dn, assertion.name).empty())
        throw missingAttribute(assertion.name, reading.live().shownName());
    const bool isHeld = session.holds(dn, assertion.name, assertion.values.front());
    if (call.isJson())
        std::cout << (isHeld ? "true\n" : "false\n");
    else if (!call.isQuiet())
        std::cout << (isHeld ? "TRUE\n" : "FALSE\n");
    return isHeld ? LDAP_COMPARE_TRUE : LDAP_COMPARE_FALSE;
}
