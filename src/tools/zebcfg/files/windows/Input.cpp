#include "files/Input.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"

#include <ldapNames.h>

std::string readNamed(const std::string& name)
{
    const Descriptor file(openForReading(name));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot open", name);
    return readAll(file.get(), name);
}
