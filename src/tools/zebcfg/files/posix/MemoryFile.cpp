#include "files/MemoryFile.h"

#include "base/Failure.h"

#include <ldapNames.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr char called[] = "a file in memory";

}  // namespace

MemoryFile::MemoryFile(const std::string& text) : file(::memfd_create("zebcfg", MFD_CLOEXEC))
{
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, std::string("cannot create ") + called);
    writeAll(file.get(), text, called);
}

void MemoryFile::requireRoomFor(std::size_t size) const
{
    const off_t end = ::lseek(file.get(), 0, SEEK_END);
    writeAll(file.get(), std::string(size, '\n'), called);
    if (end < 0 || ::ftruncate(file.get(), end) != 0)
        throw systemFailure(LDAP_OTHER, std::string("cannot write ") + called);
}
