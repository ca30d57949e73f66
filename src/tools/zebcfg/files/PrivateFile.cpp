#include "files/PrivateFile.h"

#include "base/Failure.h"
#include "terminal/Signals.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <ldap.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr mode_t permissions = 07777;
constexpr mode_t ownerOnly = 0700;
constexpr time_t mostAhead = 2;  // seconds

int createLike(const std::string& path, const struct stat& like)
{
    (void)::unlink(path.c_str());
    removeOnSignals(path);
    return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, like.st_mode & ownerOnly);
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

// The names of those that could not be copied.
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

// The owner comes before the mode: permissions of a group are not to be another's for a moment.
bool takeOver(int file, const Model& model)
{
    struct stat own = {};
    const struct stat& wanted = model.status;
    const bool isOwned = ::fstat(file, &own) == 0 && own.st_uid == wanted.st_uid && own.st_gid == wanted.st_gid;
    return (isOwned || ::fchown(file, wanted.st_uid, wanted.st_gid) == 0) && copyAccessList(file, model.name) &&
           ::fchmod(file, wanted.st_mode & permissions) == 0;
}

}  // namespace

PrivateFile::PrivateFile(const std::string& fileName, const Model& model)
    : path(fileName), file(createLike(fileName, model.status))
{
    if (file.isOpen() && takeOver(file.get(), model)) {
        lost = copyAttributes(file.get(), model.name);
        return;
    }
    const Failure failure = systemFailure(
        LDAP_INSUFFICIENT_ACCESS, file.isOpen() ? "cannot keep the owner and mode of the file, so nothing is changed"
                                                : "cannot create the file " + path);
    if (file.isOpen())
        (void)::unlink(path.c_str());
    keepOnSignals(path);
    throw failure;
}

PrivateFile::~PrivateFile()
{
    if (!isMoved)
        (void)::unlink(path.c_str());
    keepOnSignals(path);
}

void PrivateFile::write(const std::string& text)
{
    if (::ftruncate(file.get(), 0) != 0 || ::lseek(file.get(), 0, SEEK_SET) != 0)
        throw systemFailure(LDAP_OTHER, "cannot write " + path);
    writeAll(file.get(), text, path);
}

std::string PrivateFile::text() const
{
    return readFile(file.name(), path);
}

void PrivateFile::sync()
{
    if (::fsync(file.get()) != 0)
        throw systemFailure(LDAP_OTHER, "cannot sync the new file, and nothing is changed");
}

void PrivateFile::makeLaterThan(const struct stat& other)
{
    struct stat own = {};
    const auto later = other.st_mtime + 1;
    if (::fstat(file.get(), &own) != 0 || own.st_mtime >= later || own.st_mtime + mostAhead < later)
        return;
    const struct timespec times[] = {{0, UTIME_OMIT}, {later, 0}};
    (void)::futimens(file.get(), times);
}

void PrivateFile::moveTo(const std::string& target)
{
    file.close();
    if (::rename(path.c_str(), target.c_str()) != 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot put a new file in place of " + target);
    isMoved = true;
}
