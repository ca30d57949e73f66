#include "platform.h"

#include "fileHandle.h"
#include "fileName.h"
#include "transfer.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <exception>

#include <windows.h>

namespace {

class Handle {
public:
    explicit Handle(HANDLE opened) noexcept : handle(opened) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Handle(Handle&& other) noexcept : handle(std::exchange(other.handle, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle()
    {
        if (isOpen())
            CloseHandle(handle);
    }
    bool isOpen() const noexcept { return handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const noexcept { return handle; }

private:
    HANDLE handle;
};

// Others may do with the file meanwhile what they like, as with one that the C runtime has opened. The flags let it
// open a directory too, which is told apart later.
Handle openFile(const std::wstring& name, DWORD access, DWORD flags = 0) noexcept
{
    return Handle(CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

using Information = BY_HANDLE_FILE_INFORMATION;

// False for what is no file or directory of a disk, and on failure.
bool readInformation(const Handle& file, Information& information) noexcept
{
    return file.isOpen() && GetFileType(file.get()) == FILE_TYPE_DISK &&
           GetFileInformationByHandle(file.get(), &information) != FALSE;
}

bool isRegularFile(const Handle& file, Information& information) noexcept
{
    return readInformation(file, information) && (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// As the C runtime translates the number.
int errnoOf(DWORD error) noexcept
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
        return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return EACCES;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    case ERROR_NOT_ENOUGH_MEMORY:
        return ENOMEM;
    default:
        return EINVAL;
    }
}

// Not everybody who may ask for the time of a file may read its protection.
Handle openForStatus(const std::wstring& name)
{
    Handle file = openFile(name, FILE_READ_ATTRIBUTES | READ_CONTROL);
    return file.isOpen() ? std::move(file) : openFile(name, FILE_READ_ATTRIBUTES);
}

// A new file like the one before, or the one that is there, cut to length 0; not open when neither can be opened, and
// for what is no regular file.
Handle openForWriting(const std::wstring& name, const FileProtection& before)
{
    Handle file(createProtected(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, before));
    if (file.isOpen())
        return file;
    Handle present = openFile(name, GENERIC_WRITE);
    Information information = {};
    if (isRegularFile(present, information) && SetEndOfFile(present.get()) != FALSE)
        return present;
    return Handle(INVALID_HANDLE_VALUE);
}

constexpr std::size_t largestRead = std::size_t{1} << 30U;

DWORD atOnce(std::size_t size) noexcept
{
    return static_cast<DWORD>(std::min(size, largestRead));
}

// The number of bytes read, 0 at the end, negative on failure.
std::ptrdiff_t readSome(const Handle& file, char* bytes, std::size_t size) noexcept
{
    DWORD count = 0;
    return ReadFile(file.get(), bytes, atOnce(size), &count, nullptr) != FALSE ? static_cast<std::ptrdiff_t>(count)
                                                                               : -1;
}

// False when a write has failed.
bool writeAll(const Handle& file, std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        DWORD count = 0;
        if (WriteFile(file.get(), bytes.data(), atOnce(bytes.size()), &count, nullptr) == FALSE || count == 0)
            return false;
        bytes.remove_prefix(count);
    }
    return true;
}

// Whether the last call has failed because there is nothing of that name.
bool isGone() noexcept
{
    return errnoOf(GetLastError()) == ENOENT;
}

bool isSameIndex(const Information& left, const Information& right) noexcept
{
    return left.dwVolumeSerialNumber == right.dwVolumeSerialNumber && left.nFileIndexHigh == right.nFileIndexHigh &&
           left.nFileIndexLow == right.nFileIndexLow;
}

}  // namespace

int readFileStatus(const std::string& name, FileStatus& status)
{
    const Handle file = openForStatus(wideName(name));
    if (!file.isOpen())
        return errnoOf(GetLastError());
    Information information = {};
    const bool isRegular = isRegularFile(file, information);
    status = {unitsSince1970(information.ftLastWriteTime) / unitsOfSecond, isRegular,
              protectionOf(file.get(), information.dwFileAttributes)};
    return 0;
}

bool readFile(const std::string& name, TextBuffer& content, std::size_t& length)
{
    const Handle file = openFile(wideName(name), GENERIC_READ);
    Information information = {};
    if (!isRegularFile(file, information))
        return false;
    const std::uint64_t size = joined(information.nFileSizeHigh, information.nFileSizeLow);
    return readToEnd(content, length, static_cast<std::size_t>(size),
                     [&](char* bytes, std::size_t room) { return readSome(file, bytes, room); });
}

bool writeFile(const std::string& name, const std::vector<std::string_view>& pieces, const FileProtection& before)
{
    std::string buffer = gatheringBuffer();
    const Handle file = openForWriting(wideName(name), before);
    if (!file.isOpen())
        return false;
    writeGathered(pieces, buffer, [&](std::string_view bytes) { return writeAll(file, bytes); });
    return true;
}

bool renameFile(const std::string& name, const std::string& other)
{
    return MoveFileExW(wideName(name).c_str(), wideName(other).c_str(), 0) != FALSE;
}

void removeFile(const std::string& name)
{
    (void)DeleteFileW(wideName(name).c_str());
}

// A second hard link is another entry: removing it leaves the file where it is.
bool isSameFile(const std::string& name, const std::string& other)
{
    const std::wstring wide = wideName(name);
    const Handle target = openFile(wide, FILE_READ_ATTRIBUTES);
    if (!target.isOpen())
        return !isGone();
    const Handle entry = openFile(wide, FILE_READ_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT);
    const Handle otherEntry = openFile(wideName(other), FILE_READ_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT);
    if (!otherEntry.isOpen())
        return !isGone();
    Information targetIs = {};
    Information entryIs = {};
    Information otherIs = {};
    if (!readInformation(target, targetIs) || !readInformation(entry, entryIs) || !readInformation(otherEntry, otherIs))
        return true;
    if (!isSameIndex(entryIs, otherIs))
        return isSameIndex(targetIs, otherIs);
    const std::wstring nameOfEntry = finalName(entry.get());
    const std::wstring nameOfOther = finalName(otherEntry.get());
    return entryIs.nNumberOfLinks == 1 || nameOfEntry.empty() || nameOfOther.empty() || nameOfEntry == nameOfOther;
}
