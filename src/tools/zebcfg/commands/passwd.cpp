#include "base/Attributes.h"
#include "base/Failure.h"
#include "cli/Call.h"
#include "files/Input.h"
#include "terminal/Password.h"
#include "update/Update.h"

int runPasswd(const Call& call)
{
    const std::string name = call.operands().size() > 1 ? call.operand(1) : "zeb-slapdAdminPW";
    if (!isPassword(name))
        throw Failure(0, name + " is not a password attribute" + attributeHint(name));
    const Target target = call.target();  // The password of the login is asked for before the new one.
    const std::string password =
        call.has("new-password-file") ? readPasswordFile(call.value("new-password-file")) : askNewPassword();
    requireClearPassword(password);
    update(target, [&](Changes& file) { file.modify(call.operand(0), {{LDAP_MOD_REPLACE, {name, {password}}}}); });
    return 0;
}
