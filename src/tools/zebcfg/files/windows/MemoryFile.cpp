#include "files/MemoryFile.h"

#include "base/Failure.h"
#include "files/FileSystem.h"
#include "files/windows/Handle.h"

#include <cerrno>

#include <io.h>
#include <ldapNames.h>

namespace {

constexpr char called[] = "a temporary file";

// The system keeps such a file in memory while there is enough, and removes it when the process ends. It is not open
// for writing, so that others can keep it from being written.
int create()
{
    const std::string directory = temporaryDirectory();
    for (;;) {
        const int file =
            openFile(directory + "zebcfg-" + anyCharacters() + ".tmp", DELETE | FILE_READ_ATTRIBUTES, shareAll,
                     CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, privateDescriptor());
        if (file >= 0 || errno != EEXIST)
            return file;
    }
}

}  // namespace

MemoryFile::MemoryFile(const std::string& text) : file(create())
{
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, std::string("cannot create ") + called);
    overwriteFile(name(), text);
}

void MemoryFile::requireRoomFor(std::size_t size) const
{
    const Descriptor written(openFile(name(), GENERIC_WRITE, shareAll, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
    const auto end = written.isOpen() ? ::_lseeki64(written.get(), 0, SEEK_END) : -1;
    if (end >= 0)
        writeAll(written.get(), std::string(size, '\n'), called);
    if (end < 0 || ::_lseeki64(written.get(), end, SEEK_SET) != end ||
        (SetEndOfFile(handleOf(written.get())) == FALSE && !failed()))
        throw systemFailure(LDAP_OTHER, std::string("cannot write ") + called);
}
