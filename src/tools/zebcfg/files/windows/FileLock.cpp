#include "files/FileLock.h"

#include "Handle.h"
#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"

#include <cerrno>

#include <ldapNames.h>

namespace {

// While it is open, others may read it, so that a message names the holder to whoever waits.
constexpr DWORD exclusive = GENERIC_READ | GENERIC_WRITE | DELETE;

int openExclusively(const std::string& name, DWORD disposition, DWORD flags)
{
    return openFile(name, exclusive, FILE_SHARE_READ, disposition, flags | FILE_FLAG_OPEN_REPARSE_POINT);
}

// What another process keeps, which may be gone already.
std::string textOf(const std::string& name)
try {
    return readFile(name, name);
} catch (const Failure&) {
    return {};
}

}  // namespace

// The system removes the file when the process ends, whatever ends it.
bool FileLock::tryLock()
{
    holder = "another zebcfg";
    if (!removeLeftover(name))
        return false;
    file = openExclusively(name, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);
    if (file < 0 && (errno == EEXIST || errno == ETXTBSY))
        return false;
    if (file < 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot create the lock file " + name);
    try {
        writeAll(file, content(), "the lock file " + name);
    } catch (const Failure&) {
        release();
        throw;
    }
    return true;
}

// One that the system could not remove, because the power failed, is open nowhere.
bool FileLock::removeLeftover(const std::string& path)
{
    const Descriptor there(openExclusively(path, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
    if (!there.isOpen() && errno == ENOENT)
        return true;
    if (!there.isOpen() && errno == ETXTBSY) {
        (void)readHolder(textOf(path));
        return false;
    }
    FileInfo info;
    const bool isRegular = there.isOpen() && readInfo(there.get(), info) && info.kind == FileKind::regular;
    if (!readHolder(isRegular ? readAll(there.get(), path) : ""))
        throw foreign();
    FILE_DISPOSITION_INFO disposition = {TRUE};
    if (SetFileInformationByHandle(handleOf(there.get()), FileDispositionInfo, &disposition, sizeof disposition) ==
        FALSE)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot remove the lock file " + path + ", left by " + holder);
    return true;
}

void FileLock::release() noexcept  // NOLINT(readability-make-member-function-const): nothing is locked then
{
    closeFile(file);
}
