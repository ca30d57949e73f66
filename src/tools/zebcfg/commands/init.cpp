#include "base/Failure.h"
#include "cli/Call.h"
#include "library/Dn.h"
#include "terminal/Password.h"
#include "terminal/Question.h"
#include "update/Update.h"

namespace {

// The administrator that the new file names. An option of the login stands for it.
Login newLogin(const Call& call)
{
    const std::string dn = call.has("bind-dn") ? call.value("bind-dn") : askLine("DN of the administrator: ");
    if (DnSpeller()(dn).empty())
        throw Failure(LDAP_INVALID_DN_SYNTAX, "the administrator needs a DN");
    if (call.has("ask-password"))
        return {dn, askNewPassword()};
    const auto password = call.givenPassword();
    return {dn, password ? *password : askNewPassword()};
}

}  // namespace

int runInit(const Call& call)
{
    Target target = call.targetFor(call.operand(0));
    target.presence = Presence::isMissing;
    requireMissing(target.file);
    const Login login = newLogin(call);
    requireClearPassword(login.password);
    update(target, [&](Changes& file) {
        file.add(configurationDn,
                 {{LDAP_MOD_ADD, {"objectclass", {"top", "zeb-slapdServer"}}},
                  {LDAP_MOD_ADD, {"cn", {"Configuration"}}},
                  {LDAP_MOD_ADD, {"zeb-slapdAdminDN", {login.dn}}},
                  {LDAP_MOD_ADD, {"zeb-slapdAdminPW", {login.password}}}},
                 true);
    });
    return 0;
}
