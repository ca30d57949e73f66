#include "platform.h"

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

constexpr std::uint64_t joined(DWORD high, DWORD low) noexcept
{
    return std::uint64_t{high} << 32U | low;
}

// The system counts units of 100 ns from 1601.
std::int64_t secondsOf(const FILETIME& time) noexcept
{
    constexpr std::int64_t unitsOfSecond = 10'000'000;
    constexpr std::int64_t start = 11'644'473'600;  // of 1970, in seconds
    return static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)) / unitsOfSecond - start;
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

constexpr SECURITY_INFORMATION whole =
    OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

// Empty when it cannot be read.
std::string readDescriptor(const Handle& file)
{
    std::string descriptor;
    DWORD size = 0;
    GetKernelObjectSecurity(file.get(), whole, nullptr, 0, &size);
    descriptor.resize(size);
    if (GetKernelObjectSecurity(file.get(), whole, descriptor.data(), size, &size) == FALSE)
        descriptor.clear();
    return descriptor;
}

FileProtection protectionOf(const Handle& file, DWORD attributes)
{
    constexpr DWORD carried = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ENCRYPTED;
    return {readDescriptor(file), attributes & carried};
}

// Not everybody who may ask for the time of a file may read its protection.
Handle openForStatus(const std::wstring& name)
{
    Handle file = openFile(name, FILE_READ_ATTRIBUTES | READ_CONTROL);
    return file.isOpen() ? std::move(file) : openFile(name, FILE_READ_ATTRIBUTES);
}

Handle createFile(const std::wstring& name, const FileProtection& before, void* descriptor) noexcept
{
    SECURITY_ATTRIBUTES security = {sizeof security, descriptor, FALSE};
    return Handle(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &security, CREATE_NEW,
                              before.attributes != 0 ? before.attributes : FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Another's file cannot be made: it becomes one of the process's own, to which the same have access.
Handle createProtected(const std::wstring& name, const FileProtection& before)
{
    std::string descriptor = before.descriptor;
    if (descriptor.empty())
        return createFile(name, before, nullptr);
    Handle made = createFile(name, before, descriptor.data());
    if (made.isOpen() || (GetLastError() != ERROR_INVALID_OWNER && GetLastError() != ERROR_INVALID_PRIMARY_GROUP))
        return made;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    SECURITY_DESCRIPTOR own = {};
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    const bool isDone = GetSecurityDescriptorDacl(descriptor.data(), &isPresent, &list, &isDefault) != FALSE &&
                        GetSecurityDescriptorControl(descriptor.data(), &control, &revision) != FALSE &&
                        InitializeSecurityDescriptor(&own, SECURITY_DESCRIPTOR_REVISION) != FALSE &&
                        SetSecurityDescriptorDacl(&own, isPresent, list, isDefault) != FALSE &&
                        SetSecurityDescriptorControl(&own, SE_DACL_PROTECTED, control & SE_DACL_PROTECTED) != FALSE;
    return isDone ? createFile(name, before, &own) : Handle(INVALID_HANDLE_VALUE);
}

// A new file like the one before, or the one that is there, cut to length 0; not open when neither can be opened, and
// for what is no regular file.
Handle openForWriting(const std::wstring& name, const FileProtection& before)
{
    Handle file = createProtected(name, before);
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

// The name by which a file has been opened, with all its links resolved; empty when it cannot be told.
std::wstring finalName(const Handle& file)
{
    std::wstring name(GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file.get(), name.data(), static_cast<DWORD>(name.size()), 0);
    name.resize(length < name.size() ? length : 0);
    return name;
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
    status = {secondsOf(information.ftLastWriteTime), isRegular, protectionOf(file, information.dwFileAttributes)};
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
    return MoveFileExW(wideName(name).c_str(), wideName(other).c_str(), MOVEFILE_COPY_ALLOWED) != FALSE;
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
    const std::wstring nameOfEntry = finalName(entry);
    return entryIs.nNumberOfLinks == 1 || nameOfEntry.empty() || nameOfEntry == finalName(otherEntry);
}
