#include "files/FileLock.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "terminal/Signals.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <ldapNames.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Whether the name still stands for the file that was opened.
bool standsFor(const std::string& name, int file)
{
    struct stat own = {};
    struct stat there = {};
    return ::fstat(file, &own) == 0 && ::lstat(name.c_str(), &there) == 0 && own.st_dev == there.st_dev &&
           own.st_ino == there.st_ino;
}

// Other users may read it: a message names the holder to whoever waits.
void describeHolder(int file, const std::string& text, const std::string& name)
{
    writeAll(file, text, "the lock file " + name);
    if (::fchmod(file, 0644) != 0)
        throw systemFailure(LDAP_OTHER, "cannot write the lock file " + name);
}

bool lockNow(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0;
}

// Not every file system knows the flag.
void renameToFree(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0 && errno != EEXIST &&
        ::link(from.c_str(), to.c_str()) == 0)
        (void)::unlink(from.c_str());
}

}  // namespace

// A lock counts only while the name stands for the file that is locked. It is made under another name, so that it is
// never seen without its text.
bool FileLock::tryLock()
{
    const BlockedSignals blocked;
    holder = "another zebcfg";
    if (!removeLeftover(name) || !removeLeftover(fresh))
        return false;
    const mode_t before = ::umask(0);  // Whoever comes after a kill has to read it.
    file = ::open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    (void)::umask(before);
    if (file < 0 && errno == EEXIST)
        return false;
    if (file < 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot create the lock file " + name);
    if (lockNow(file)) {
        try {
            describeHolder(file, content(), name);
        } catch (...) {
            (void)::unlink(fresh.c_str());
            ::close(file);
            throw;
        }
        renameToFree(fresh, name);
        if (standsFor(name, file)) {
            removeOnSignals(name);
            return true;
        }
        if (standsFor(fresh, file))
            (void)::unlink(fresh.c_str());
    }
    ::close(file);
    return false;
}

// Removes a lock that no process holds any more. False while one does.
bool FileLock::removeLeftover(const std::string& path)
{
    const Descriptor there(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!there.isOpen() && errno == ENOENT)
        return true;
    if (!there.isOpen() && errno != ELOOP)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot read the lock file " + path);
    struct stat status = {};
    const bool isRegular = there.isOpen() && ::fstat(there.get(), &status) == 0 && S_ISREG(status.st_mode);
    const std::string text = isRegular ? readAll(there.get(), path) : "";
    if (!readHolder(text) && path == name)
        throw foreign();
    if (!isRegular || !lockNow(there.get()))
        return false;
    if (standsFor(path, there.get()) && ::unlink(path.c_str()) != 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot remove the lock file " + path + ", left by " + holder);
    return true;
}

void FileLock::release() noexcept
{
    const BlockedSignals blocked;
    if (standsFor(name, file))
        (void)::unlink(name.c_str());
    keepOnSignals(name);
    ::close(file);
}
