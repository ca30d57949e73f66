#include "files/FileSystem.h"

#include "files/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

const char* const privacyAdvice = "chmod o-r keeps others out";
const char* const installPlace = ZEBCFG_REGISTRY "/SOFTWARE/ZEB/LDAP/Client/LDAPHome";
const char* const separators = "/";

std::string touchCommand(const std::string& name)
{
    return "touch " + name;
}

namespace {

constexpr mode_t permissions = 07777;
constexpr mode_t ownerOnly = 0700;

FileInfo infoOf(const struct stat& status)
{
    FileInfo info;
    info.kind = S_ISREG(status.st_mode)    ? FileKind::regular
                : S_ISFIFO(status.st_mode) ? FileKind::pipe
                                           : FileKind::other;
    info.device = status.st_dev;
    info.index = status.st_ino;
    info.names = status.st_nlink;
    info.size = status.st_size;
    info.time = status.st_mtim.tv_sec;
    info.nanoseconds = status.st_mtim.tv_nsec;
    info.protection = {status.st_mode & permissions, status.st_uid, status.st_gid};
    return info;
}

constexpr char accessList[] = "system.posix_acl_access";
constexpr std::size_t longestList = 65536;  // and value: the kernel allows no more
using XattrBuffer = std::array<char, longestList>;

// Where a file has an access list, the mode of its group is a mask, and without the list it would be wider.
bool copyAccessList(int file, const std::string& source)
{
    XattrBuffer value = {};
    const ssize_t size = ::getxattr(source.c_str(), accessList, value.data(), value.size());
    if (size < 0 && errno != ENODATA && errno != ENOTSUP && errno != ENOENT)  // A file that is made has no model.
        return false;
    if (size < 0)  // One that the directory has passed on is not to widen the mode.
        return ::fremovexattr(file, accessList) == 0 || errno == ENODATA || errno == ENOTSUP;
    return ::fsetxattr(file, accessList, value.data(), static_cast<std::size_t>(size), 0) == 0;
}

// False for one that is not there as it is in the source.
bool copyAttribute(int file, const std::string& source, const char* name)
{
    XattrBuffer value = {};
    const ssize_t size = ::getxattr(source.c_str(), name, value.data(), value.size());
    if (size < 0)
        return errno == ENODATA;
    const std::string_view wanted(value.data(), static_cast<std::size_t>(size));
    XattrBuffer own = {};
    const ssize_t ownSize = ::fgetxattr(file, name, own.data(), own.size());
    return (ownSize == size && wanted == std::string_view(own.data(), wanted.size())) ||
           ::fsetxattr(file, name, wanted.data(), wanted.size(), 0) == 0;
}

}  // namespace

bool readInfo(const std::string& name, FileInfo& info)
{
    struct stat status = {};
    const bool isRead = ::stat(name.c_str(), &status) == 0;
    if (isRead)
        info = infoOf(status);
    return isRead;
}

bool readOwnInfo(const std::string& name, FileInfo& info)
{
    struct stat status = {};
    const bool isRead = ::lstat(name.c_str(), &status) == 0;
    if (isRead)
        info = infoOf(status);
    return isRead;
}

bool readInfo(int file, FileInfo& info)
{
    struct stat status = {};
    const bool isRead = ::fstat(file, &status) == 0;
    if (isRead)
        info = infoOf(status);
    return isRead;
}

FileInfo infoOfNewFile()
{
    FileInfo info;
    info.kind = FileKind::regular;
    info.time = 1;
    info.protection = {S_IRUSR | S_IWUSR, ::geteuid(), ::getegid()};
    return info;
}

bool isThere(const std::string& name)
{
    return ::access(name.c_str(), F_OK) == 0;
}

bool isReadable(const std::string& name)
{
    return ::access(name.c_str(), R_OK) == 0;
}

bool isPublic(const Protection& protection)
{
    return (protection.mode & S_IROTH) != 0;
}

int openForReading(const std::string& name)
{
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int file = ::open(name.c_str(), flags | O_NOATIME);
    return file < 0 && errno == EPERM ? ::open(name.c_str(), flags) : file;
}

int openForOverwriting(const std::string& name)
{
    return ::open(name.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
}

int openOrCreate(const std::string& name)
{
    return ::open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
}

int createFile(const std::string& name, const Protection& like)
{
    return ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, like.mode & ownerOnly);
}

int createUnique(std::string& pattern)
{
    return ::mkostemp(pattern.data(), O_CLOEXEC);
}

std::ptrdiff_t readSome(int file, char* bytes, std::size_t size)
{
    return ::read(file, bytes, size);
}

std::ptrdiff_t writeSome(int file, const char* bytes, std::size_t size)
{
    return ::write(file, bytes, size);
}

bool cutToNothing(int file)
{
    return ::ftruncate(file, 0) == 0 && ::lseek(file, 0, SEEK_SET) == 0;
}

bool syncFile(int file)
{
    return ::fsync(file) == 0;
}

bool setTime(int file, std::int64_t time)
{
    const struct timespec times[] = {{0, UTIME_OMIT}, {time, 0}};
    return ::futimens(file, times) == 0;
}

void closeFile(int file) noexcept
{
    ::close(file);
}

// The owner comes before the mode: permissions of a group are not to be another's for a moment.
bool takeOver(int file, const Model& model)
{
    struct stat own = {};
    const Protection& wanted = model.info.protection;
    const bool isOwned = ::fstat(file, &own) == 0 && own.st_uid == wanted.owner && own.st_gid == wanted.group;
    return (isOwned || ::fchown(file, wanted.owner, wanted.group) == 0) && copyAccessList(file, model.name) &&
           ::fchmod(file, wanted.mode) == 0;
}

std::vector<std::string> copyAttributes(int file, const std::string& source)
{
    std::vector<std::string> lost;
    XattrBuffer names = {};
    const ssize_t size = ::listxattr(source.c_str(), names.data(), names.size());
    const char* const end = names.data() + (size > 0 ? size : 0);
    for (const char* name = names.data(); name < end; name += std::strlen(name) + 1) {
        if (std::strcmp(name, accessList) != 0 && !copyAttribute(file, source, name))
            lost.emplace_back(name);
    }
    return lost;
}

bool removeName(const std::string& name) noexcept
{
    return ::unlink(name.c_str()) == 0;
}

bool moveOver(const std::string& name, const std::string& other) noexcept
{
    return ::rename(name.c_str(), other.c_str()) == 0;
}

bool addName(const std::string& name, const std::string& other) noexcept
{
    return ::link(name.c_str(), other.c_str()) == 0;
}

std::string realName(const std::string& name)
{
    const std::unique_ptr<char, decltype(&std::free)> path(::realpath(name.c_str(), nullptr), &std::free);
    return path != nullptr ? path.get() : "";
}

void syncDirectory(const std::string& directory) noexcept
{
    const Descriptor opened(::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.isOpen())
        (void)::fsync(opened.get());  // Some file systems refuse it, and nothing can be done about that.
}

std::string processName()
{
    const passwd* const user = ::getpwuid(::geteuid());
    return "process " + std::to_string(::getpid()) + " of " +
           (user != nullptr ? user->pw_name : std::to_string(::geteuid()));
}

std::tm localTime(std::time_t time) noexcept
{
    std::tm parts = {};
    (void)::localtime_r(&time, &parts);
    return parts;
}
