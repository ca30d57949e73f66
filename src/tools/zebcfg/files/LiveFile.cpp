#include "files/LiveFile.h"

#include "base/Failure.h"
#include "base/Text.h"
#include "files/Descriptor.h"
#include "files/FileName.h"

#include <cerrno>

#include <ldap.h>
#include <unistd.h>
#include <zebldapcfg.h>

namespace {

bool isSameFile(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isSameTime(const struct timespec& left, const struct timespec& right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

Failure fileFailure(int extended, Failure failure)
{
    failure.extended = extended;
    return failure;
}

bool isReadable(const std::string& name)
{
    struct stat status = {};
    return ::stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(name.c_str(), R_OK) == 0;
}

bool endsWhole(const std::string& text)
{
    return !text.empty() && text.back() == '\n';
}

// A link that leads nowhere is there too.
bool isInUse(const std::string& name)
{
    struct stat status = {};
    return ::lstat(name.c_str(), &status) == 0 || errno != ENOENT;
}

struct stat statusOfNewFile()
{
    struct stat status = {};
    status.st_mode = S_IFREG | S_IRUSR | S_IWUSR;
    status.st_uid = ::geteuid();
    status.st_gid = ::getegid();
    status.st_nlink = 1;
    status.st_mtime = 1;  // 0 stands for damage.
    return status;
}

}  // namespace

void requireMissing(const std::string& name)
{
    if (isInUse(name))
        throw Failure(LDAP_ALREADY_EXISTS, "the file already exists", name);
}

LiveFile::LiveFile(const std::string& name, Presence presence) : shown(name), resolved(resolvedName(name))
{
    if (presence == Presence::isMissing)
        requireMissing(name);
    isAbsent = presence != Presence::isThere && !isInUse(name);
    if (isAbsent) {
        read = statusOfNewFile();
        return;
    }
    if (::stat(resolved.c_str(), &read) != 0)
        throw fileFailure(CFG_ERR_CONFIG_NOT_FOUND,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be found", shown));
    if (!S_ISREG(read.st_mode))
        throw fileFailure(
            CFG_ERR_CONFIG_OPEN,
            Failure(CFG_CONNECT_ERROR, "this is not a regular file; name the configuration file with -F", shown));
    const Descriptor file(openForReading(resolved));
    if (!file.isOpen() || ::fstat(file.get(), &read) != 0)
        throw fileFailure(CFG_ERR_CONFIG_OPEN,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be read", shown));
    content = readAll(file.get(), shown);
}

bool LiveFile::isCurrent() const
{
    if (isAbsent)
        return !isInUse(shown);
    struct stat now = {};
    return ::stat(resolved.c_str(), &now) == 0 && isSameFile(now, read) && now.st_size == read.st_size &&
           isSameTime(now.st_mtim, read.st_mtim);
}

std::string LiveFile::damage(const std::string& backupName) const
{
    if (read.st_mtime == 0)
        return "the file has the modification time 0, so every program treats it as empty; run: touch " + shown;
    if (endsWhole(content) || !isReadable(backupName))
        return {};
    const std::string kept = readFile(backupName, backupName);
    if (!endsWhole(kept) || kept.size() <= content.size())
        return {};
    return std::string(isAbsent          ? "the file is missing"
                       : content.empty() ? "the file is empty"
                                         : "the last line of the file is incomplete") +
           ", while the backup " + backupName + " is complete; run: zebcfg restore" +
           (content.empty() ? ", or remove the backup" : ", or put a line end after the last line");
}

void LiveFile::requireUsable(const std::string& backupName) const
{
    const std::string found = damage(backupName);
    if (!found.empty())
        throw Failure(CFG_CONNECT_ERROR, found, shown);
    if (hasByteOrderMark(content))
        throw Failure(CFG_CONNECT_ERROR, "the file begins with a byte order mark; save it without one", shown);
}
