#include "files/GuardedFile.h"

#include "base/Failure.h"
#include "files/windows/Handle.h"

#include <ldapNames.h>

GuardedFile::GuardedFile(const std::string& text) : content(text), place(-1) {}

std::string GuardedFile::name() const
{
    return content.name();
}

// Whoever opens the file for writing fails while it is open without sharing that.
void GuardedFile::refuseWrites()
{
    place.close();
    place.take(
        openFile(name(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
    if (!place.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot guard a file in memory");
}

void GuardedFile::allowWrites()
{
    place.close();
}
