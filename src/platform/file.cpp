#include "platform.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
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
void takeOver(int file, const FileStatus& before) noexcept
{
    const bool hasGroup =
        ::fchown(file, before.st_uid, before.st_gid) == 0 || ::fchown(file, static_cast<uid_t>(-1), before.st_gid) == 0;
    const mode_t mode = before.st_mode & permissions;
    (void)::fchmod(file, hasGroup ? mode : mode & ~groupPermissions);
}

// A new file like the one before, or the one that is there, cut to length 0; negative when neither can be opened.
int openForWriting(const std::string& name, const FileStatus& before) noexcept
{
    const int created = openFile(name, O_WRONLY | O_CREAT | O_EXCL, before.st_mode & ownerOnly);
    if (created < 0)
        return openFile(name, O_WRONLY | O_TRUNC);
    takeOver(created, before);
    return created;
}

// Doubles a text, and overwrites what it stood in before: it may hold clear passwords.
void enlarge(std::string& content)
{
    std::string larger(2 * content.size(), '\0');
    std::copy(content.begin(), content.end(), larger.begin());
    content.swap(larger);
    wipe(larger.data(), larger.size());
}

bool isSameInode(const FileStatus& left, const FileStatus& right) noexcept
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
    FileStatus status = {};
    FileStatus otherStatus = {};
    return last == otherLast && (::stat(directory.c_str(), &status) != 0 ||
                                 ::stat(otherDirectory.c_str(), &otherStatus) != 0 || isSameInode(status, otherStatus));
}

}  // namespace

bool readFile(const std::string& name, std::string& content)
{
    const Descriptor file(openFile(name, O_RDONLY));
    FileStatus status = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    content.resize(static_cast<std::size_t>(status.st_size) + 1);  // one more, to meet the end in the same read
    std::size_t length = 0;
    for (;;) {
        if (length == content.size())
            enlarge(content);
        const ssize_t count = ::read(file.get(), &content[length], content.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    content.resize(length);
    return true;
}

bool writeFile(const std::string& name, const std::string& text, const FileStatus& before)
{
    const Descriptor file(openForWriting(name, before));
    if (file.get() < 0)
        return false;
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(file.get(), &text[done], text.size() - done);
        if (count < 0 && errno != EINTR)
            break;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

void removeFile(const std::string& name) noexcept
{
    (void)::unlink(name.c_str());
}

// A second hard link is another entry: removing it leaves the file where it is.
bool isSameFile(const std::string& name, const std::string& other)
{
    FileStatus target = {};
    FileStatus entry = {};
    FileStatus otherEntry = {};
    if (::stat(name.c_str(), &target) != 0 || ::lstat(name.c_str(), &entry) != 0 ||
        ::lstat(other.c_str(), &otherEntry) != 0)
        return errno != ENOENT && errno != ENOTDIR;
    if (S_ISLNK(entry.st_mode) && isSameInode(target, otherEntry))
        return true;
    return isSameInode(entry, otherEntry) && (entry.st_nlink == 1 || isSamePlace(name, other));
}
