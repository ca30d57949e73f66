#include "files/MemoryFile.h"

#include "base/Failure.h"

#include <ldap.h>
#include <sys/mman.h>

MemoryFile::MemoryFile(const std::string& text) : file(::memfd_create("zebcfg", MFD_CLOEXEC))
{
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot create a file in memory");
    writeAll(file.get(), text, "a file in memory");
}
