#include "base/Attributes.h"
#include "base/Failure.h"
#include "cli/Call.h"
#include "files/Input.h"
#include "terminal/Password.h"
#include "update/Update.h"

namespace {

std::string newPassword(const Call& call)
{
    if (call.has("new-password-file"))
        return readPasswordFile(call.value("new-password-file"));
    std::string password = askPassword("New password: ");
    if (askPassword("New password again: ") != password)
        throw Failure(0, "the two passwords differ, and nothing is changed");
    return password;
}

}  // namespace

int runPasswd(const Call& call)
{
    const std::string name = call.operands().size() > 1 ? call.operand(1) : "zeb-slapdAdminPW";
    if (!isPassword(name))
        throw Failure(0, name + " is no attribute for a password" + attributeHint(name));
    const Target target = call.target();  // The password of the login is asked for before the new one.
    const std::string password = newPassword(call);
    if (password.size() > 1 && password.front() == '>' && password.back() == '<')
        throw Failure(LDAP_CONSTRAINT_VIOLATION, "a password between > and < would be taken for an encoded one");
    update(target, [&](Changes& file) { file.modify(call.operand(0), {{LDAP_MOD_REPLACE, {name, {password}}}}); });
    return 0;
}
