#include "PrivateFile.h"

#include "Failure.h"
#include "Signals.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <ldap.h>
#include <sys/mman.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr mode_t permissions = 07777;
constexpr mode_t ownerOnly = 0700;

std::string nameOfDescriptor(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

int createLike(const std::string& path, const struct stat& like)
{
    (void)::unlink(path.c_str());
    removeOnSignals(path);
    return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, like.st_mode & ownerOnly);
}

// Where a file has an access list, the mode of its group is a mask, and without the list it would be wider.
bool copyAccessList(int file, const std::string& source)
{
    constexpr char list[] = "system.posix_acl_access";
    std::array<char, 65536> value = {};
    const ssize_t size = ::getxattr(source.c_str(), list, value.data(), value.size());
    if (size < 0 && errno != ENODATA && errno != ENOTSUP)
        return false;
    if (size < 0)  // One that the directory has passed on is not to widen the mode.
        return ::fremovexattr(file, list) == 0 || errno == ENODATA || errno == ENOTSUP;
    return ::fsetxattr(file, list, value.data(), static_cast<std::size_t>(size), 0) == 0;
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

void writeAll(int file, const char* data, std::size_t size, const std::string& shown)
{
    while (size > 0) {
        const ssize_t count = ::write(file, data, size);
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot write " + shown + ", and nothing is changed");
        data += count > 0 ? count : 0;
        size -= count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

}  // namespace

Descriptor::~Descriptor()
{
    close();
}

void Descriptor::close() noexcept
{
    if (number >= 0)
        ::close(number);
    number = -1;
}

PrivateFile::PrivateFile(const std::string& fileName, const Model& model)
    : path(fileName), file(createLike(fileName, model.status))
{
    if (file.isOpen() && takeOver(file.get(), model))
        return;
    const Failure failure = systemFailure(
        LDAP_INSUFFICIENT_ACCESS, file.isOpen() ? "cannot keep owner and mode of the file, so nothing is changed"
                                                : "cannot make the file " + path);
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

std::string PrivateFile::openName() const
{
    constexpr std::size_t longest = 260;
    return path.size() <= longest ? path : nameOfDescriptor(file.get());
}

void PrivateFile::write(const std::string& text)
{
    if (::ftruncate(file.get(), 0) != 0 || ::lseek(file.get(), 0, SEEK_SET) != 0)
        throw systemFailure(LDAP_OTHER, "cannot write " + path);
    writeAll(file.get(), text.data(), text.size(), path);
}

void PrivateFile::requireRoomFor(std::size_t size)
{
    const off_t end = ::lseek(file.get(), 0, SEEK_END);
    writeAll(file.get(), std::string(size, '\n').data(), size, path);
    if (end < 0 || ::ftruncate(file.get(), end) != 0)
        throw systemFailure(LDAP_OTHER, "cannot write " + path);
}

void PrivateFile::sync()
{
    if (::fsync(file.get()) != 0)
        throw systemFailure(LDAP_OTHER, "cannot bring the new file to disk, and nothing is changed");
}

void PrivateFile::makeLaterThan(const struct stat& other)
{
    struct stat own = {};
    if (::fstat(file.get(), &own) != 0 || own.st_mtime > other.st_mtime)
        return;
    const struct timespec times[] = {{0, UTIME_OMIT}, {other.st_mtime + 1, 0}};
    (void)::futimens(file.get(), times);
}

void PrivateFile::moveTo(const std::string& target)
{
    file.close();
    if (::rename(path.c_str(), target.c_str()) != 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot put a new file in the place of " + target);
    isMoved = true;
}

MemoryFile::MemoryFile(const std::string& text) : file(::memfd_create("zebcfg", MFD_CLOEXEC))
{
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot make a file in memory");
    writeAll(file.get(), text.data(), text.size(), "a file in memory");
}

std::string MemoryFile::name() const
{
    return nameOfDescriptor(file.get());
}

int openForReading(const std::string& name) noexcept
{
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int file = ::open(name.c_str(), flags | O_NOATIME);
    return file < 0 && errno == EPERM ? ::open(name.c_str(), flags) : file;
}

std::string readAll(int file, const std::string& shownName)
{
    std::string text;
    std::array<char, 65536> buffer = {};
    for (;;) {
        const ssize_t count = ::read(file, buffer.data(), buffer.size());
        if (count == 0)
            return text;
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot read", shownName);
        text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

std::string readFile(const std::string& name, const std::string& shownName)
{
    const Descriptor file(openForReading(name));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot open", shownName);
    return readAll(file.get(), shownName);
}

void overwriteFile(const std::string& name, const std::string& text)
{
    const Descriptor file(::open(name.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot write " + name);
    writeAll(file.get(), text.data(), text.size(), name);
}

std::string directoryOf(const std::string& name)
{
    return name.substr(0, name.find_last_of('/') + 1);  // npos + 1 is 0: no directory
}

void syncDirectoryOf(const std::string& name)
{
    const std::string directory = directoryOf(name);
    const Descriptor opened(::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.isOpen())
        (void)::fsync(opened.get());  // Some file systems refuse it, and nothing can be done about that.
}

std::string siblingOf(const std::string& name)
{
    const std::string directory = directoryOf(name);
    return directory + '.' + name.substr(directory.size()) + ".zebcfg-new";
}
