#include "platform.h"

#include <ldap.h>

namespace {

// The LDAP library numbers the client-side codes downwards from -1, where ours run upwards from 81.
int clientLibraryCode(int code) noexcept
{
    constexpr int first = 81;
    constexpr int last = 97;
    return code >= first && code <= last ? first - 1 - code : code;
}

}  // namespace

const char* ldapErrorText(int code) noexcept
{
    return ldap_err2string(clientLibraryCode(code));
}
