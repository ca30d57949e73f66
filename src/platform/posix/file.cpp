#include "platform.h"

#include "transfer.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : number(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (number >= 0)
            ::close(number);
    }
    int get() const noexcept { return number; }

private:
    int number;
};

constexpr mode_t permissions = 07777;
constexpr mode_t ownerOnly = 0700;
constexpr mode_t groupPermissions = 0070;

// O_NONBLOCK keeps a FIFO without a peer from holding the call up; on regular files it means nothing.
int openFile(const std::string& name, int flags, mode_t mode = 0) noexcept
{
    return ::open(name.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
}

// Without the old group, the permissions of a group would be another's.
void takeOver(int file, const FileProtection& before) noexcept
{
    const bool hasGroup =
        ::fchown(file, before.owner, before.group) == 0 || ::fchown(file, static_cast<uid_t>(-1), before.group) == 0;
    (void)::fchmod(file, hasGroup ? before.mode : before.mode & ~groupPermissions);
}

// The status of an open regular file; false for any other, and on failure.
bool readRegular(int file, struct stat& status) noexcept
{
    return file >= 0 && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// A new file like the one before, or the one that is there, cut to length 0; negative when neither can be opened, and
// for what is no regular file.
int openForWriting(const std::string& name, const FileProtection& before) noexcept
{
    const int created = openFile(name, O_WRONLY | O_CREAT | O_EXCL, before.mode & ownerOnly);
    if (created >= 0) {
        takeOver(created, before);
        return created;
    }
    struct stat status = {};
    const int present = openFile(name, O_WRONLY);
    if (present < 0 || (readRegular(present, status) && ::ftruncate(present, 0) == 0))
        return present;
    ::close(present);
    return -1;
}

// The number of bytes read, 0 at the end, negative on failure.
std::ptrdiff_t readSome(int file, char* bytes, std::size_t size) noexcept
{
    for (;;) {
        const ssize_t count = ::read(file, bytes, size);
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

// False when a write has failed.
bool writeAll(int file, std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return true;
}

bool isSameInode(const struct stat& left, const struct stat& right) noexcept
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// The directory of a name, and its last part.
std::pair<std::string, std::string> splitName(const std::string& name)
{
    const auto slash = name.find_last_of('/');
    if (slash == std::string::npos)
        return {".", name};
    return {name.substr(0, slash + 1), name.substr(slash + 1)};
}

// Whether two names stand in the same directory under the same last part, or it cannot be told.
bool isSamePlace(const std::string& name, const std::string& other)
{
    const auto [directory, last] = splitName(name);
    const auto [otherDirectory, otherLast] = splitName(other);
    struct stat status = {};
    struct stat otherStatus = {};
    return last == otherLast && (::stat(directory.c_str(), &status) != 0 ||
                                 ::stat(otherDirectory.c_str(), &otherStatus) != 0 || isSameInode(status, otherStatus));
}

}  // namespace

int readFileStatus(const std::string& name, FileStatus& status)
{
    struct stat found = {};
    if (::stat(name.c_str(), &found) != 0)
        return errno;
    status = {found.st_mtime, S_ISREG(found.st_mode), {found.st_mode & permissions, found.st_uid, found.st_gid}};
    return 0;
}

bool readFile(const std::string& name, TextBuffer& content, std::size_t& length)
{
    const Descriptor file(openFile(name, O_RDONLY));
    struct stat status = {};
    if (!readRegular(file.get(), status))
        return false;
    return readToEnd(content, length, static_cast<std::size_t>(status.st_size),
                     [&](char* bytes, std::size_t size) { return readSome(file.get(), bytes, size); });
}

bool writeFile(const std::string& name, const std::vector<std::string_view>& pieces, const FileProtection& before)
{
    std::string buffer = gatheringBuffer();
    const Descriptor file(openForWriting(name, before));
    if (file.get() < 0)
        return false;
    writeGathered(pieces, buffer, [&](std::string_view bytes) { return writeAll(file.get(), bytes); });
    return true;
}

bool renameFile(const std::string& name, const std::string& other)
{
    return std::rename(name.c_str(), other.c_str()) == 0;
}

void removeFile(const std::string& name)
{
    (void)::unlink(name.c_str());
}

// A second hard link is another entry: removing it leaves the file where it is.
bool isSameFile(const std::string& name, const std::string& other)
{
    struct stat target = {};
    struct stat entry = {};
    struct stat otherEntry = {};
    if (::stat(name.c_str(), &target) != 0 || ::lstat(name.c_str(), &entry) != 0 ||
        ::lstat(other.c_str(), &otherEntry) != 0)
        return errno != ENOENT && errno != ENOTDIR;
    if (S_ISLNK(entry.st_mode) && isSameInode(target, otherEntry))
        return true;
    return isSameInode(entry, otherEntry) && (entry.st_nlink == 1 || isSamePlace(name, other));
}
