#include "base/Attributes.h"
#include "base/Failure.h"
#include "cli/Call.h"
#include "files/Input.h"
#include "terminal/Password.h"
#include "update/Update.h"

int runPasswd(const Call& call)
{
    const std::string name = call.operands().size() > 1 ? call.operand(1) : "zeb-slapdAdminPW";
    const std::string hint = attributeHint(name);
    const bool isName = findAttributeType(name) != nullptr || !hint.empty();  // and not the new password, say
    if (!isPassword(name))
        throw Failure(0, (isName ? name : "the word after the DN") + " is not a password attribute" + hint);
    const Target target = call.target();  // The password of the login is asked for before the new one.
    const std::string password =
        call.has("new-password-file") ? readPasswordFile(call.value("new-password-file")) : askNewPassword();
    requireClearPassword(password);
    update(target, [&](Changes& file) { file.modify(call.operand(0), {{LDAP_MOD_REPLACE, {name, {password}}}}); });
    return 0;
}
