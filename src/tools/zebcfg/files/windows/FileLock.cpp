#include "files/FileLock.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"
#include "files/windows/Handle.h"

#include <cerrno>

#include <ldapNames.h>

namespace {

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

// Whether a process holds a lock that could not be opened, though this user may perhaps only read it.
bool isHeld(const std::string& name)
{
    if (errno == ETXTBSY)
        return true;
    const Descriptor there(openFile(name, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
    return !there.isOpen() && errno == ETXTBSY;
}

bool removeOnClose(const Descriptor& file)
{
    FILE_DISPOSITION_INFO disposition = {TRUE};
    if (file.isOpen())
        return SetFileInformationByHandle(handleOf(file.get()), FileDispositionInfo, &disposition,
                                          sizeof disposition) != FALSE ||
               failed();
    errno = EACCES;
    return false;
}

bool isRegular(const std::string& name)
{
    FileInfo info;
    return readOwnInfo(name, info) && info.kind == FileKind::regular;
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
    } catch (...) {
        release();
        throw;
    }
    return true;
}

// One that the system could not remove, because the power failed, is open nowhere. Of its text NULs may be left, or
// nothing.
bool FileLock::removeLeftover(const std::string& path)
{
    const Descriptor there(openExclusively(path, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
    if (!there.isOpen() && errno == ENOENT)
        return true;
    const bool isTaken = !there.isOpen() && isHeld(path);
    const std::string text = isTaken || isRegular(path) ? textOf(path) : "";
    const bool isBlank = text.find_first_not_of('\0') == std::string::npos && (isTaken || isRegular(path));
    if (!readHolder(text) && !isBlank)
        throw foreign();
    if (isTaken)
        return false;
    if (!removeOnClose(there))
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot remove the lock file " + path + ", left by " + holder);
    return true;
}

void FileLock::release() noexcept  // NOLINT(readability-make-member-function-const): nothing is locked then
{
    closeFile(file);
}
