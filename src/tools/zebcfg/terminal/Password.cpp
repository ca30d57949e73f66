#include "terminal/Password.h"

#include "base/Failure.h"

#include <ldapNames.h>

std::string askNewPassword()
{
    std::string password = askPassword("New password: ");
    if (askPassword("New password again: ") != password)
        throw Failure(0, "the two passwords differ, and nothing is changed");
    return password;
}

void requireClearPassword(const std::string& password)
{
    if (password.size() > 1 && password.front() == '>' && password.back() == '<')
        throw Failure(LDAP_CONSTRAINT_VIOLATION, "a password between > and < would be taken for an encoded one");
}
