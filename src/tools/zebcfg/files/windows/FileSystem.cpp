#include "files/FileSystem.h"

#include "Handle.h"
#include "files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <exception>

#include <codePage.h>
#include <fileName.h>
#include <io.h>
#include <platform.h>

const char* const privacyAdvice = "icacls FILE /inheritance:r keeps those out who have inherited the right";
const char* const installPlace = R"(HKEY_LOCAL_MACHINE\SOFTWARE\ZEB\LDAP\Client\LDAPHome)";
const char* const separators = "\\/:";

std::string touchCommand(const std::string& name)
{
    return "copy /b " + name + "+,,";
}

namespace {

constexpr std::int64_t unitsOfSecond = 10'000'000;     // the system counts 100 ns
constexpr std::int64_t startOf1970 = 11'644'473'600;   // in seconds from 1601
constexpr DWORD anyFile = FILE_FLAG_BACKUP_SEMANTICS;  // a directory too

constexpr std::uint64_t joined(DWORD high, DWORD low) noexcept
{
    return std::uint64_t{high} << 32U | low;
}

bool readInfoOf(HANDLE handle, FileInfo& info)
{
    BY_HANDLE_FILE_INFORMATION found = {};
    const DWORD type = GetFileType(handle);
    info = {};
    if (type == FILE_TYPE_PIPE)
        info.kind = FileKind::pipe;
    if (type != FILE_TYPE_DISK)
        return true;
    if (GetFileInformationByHandle(handle, &found) == FALSE)
        return failed();
    constexpr DWORD noFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    info.kind = (found.dwFileAttributes & noFile) == 0 ? FileKind::regular : FileKind::other;
    info.device = found.dwVolumeSerialNumber;
    info.index = joined(found.nFileIndexHigh, found.nFileIndexLow);
    info.names = found.nNumberOfLinks;
    info.isFixed = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    info.size = static_cast<std::int64_t>(joined(found.nFileSizeHigh, found.nFileSizeLow));
    const auto units =
        static_cast<std::int64_t>(joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime));
    info.time = units / unitsOfSecond - startOf1970;
    info.nanoseconds = static_cast<long>(units % unitsOfSecond * 100);
    FileStatus status;
    if (readFileStatus(nameOf(handle), status) == 0)
        info.protection = status.protection;
    return true;
}

bool readInfoWith(const std::string& name, DWORD flags, FileInfo& info)
{
    const Descriptor file(openFile(name, FILE_READ_ATTRIBUTES, shareAll, OPEN_EXISTING, anyFile | flags));
    return file.isOpen() && readInfoOf(handleOf(file.get()), info);
}

// Whether a file whose place could not be taken, "access denied", is open in another program: it may be removed itself.
bool isInUse(const std::string& name)
{
    FileInfo info;
    const Descriptor file(
        openFile(name, DELETE | FILE_READ_ATTRIBUTES, shareAll, OPEN_EXISTING, anyFile | FILE_FLAG_OPEN_REPARSE_POINT));
    if (!file.isOpen())
        return errno == ETXTBSY;
    return readInfoOf(handleOf(file.get()), info) && info.kind == FileKind::regular && !info.isFixed;
}

bool moveNow(const std::string& name, const std::string& other)
{
    return MoveFileExW(wideName(name).c_str(), wideName(other).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE ||
           failed();
}

}  // namespace

bool readInfo(const std::string& name, FileInfo& info)
{
    return readInfoWith(name, 0, info);
}

bool readOwnInfo(const std::string& name, FileInfo& info)
{
    return readInfoWith(name, FILE_FLAG_OPEN_REPARSE_POINT, info);
}

bool readInfo(int file, FileInfo& info)
{
    return readInfoOf(handleOf(file), info);
}

FileInfo infoOfNewFile()
{
    FileInfo info;
    info.kind = FileKind::regular;
    info.time = 1;
    info.protection = {privateDescriptor(), 0};
    return info;
}

bool isThere(const std::string& name)
{
    return GetFileAttributesW(wideName(name).c_str()) != INVALID_FILE_ATTRIBUTES || failed();
}

bool isReadable(const std::string& name)
{
    return Descriptor(openForReading(name)).isOpen();
}

// Everyone, whoever has logged in, and the group of all users.
bool isPublic(const Protection& protection)
{
    const std::wstring list = accessListOf(protection.descriptor);
    const auto allows = [&](const wchar_t* who) {
        for (auto place = list.find(L"(A;"); place != std::wstring::npos; place = list.find(L"(A;", place + 1)) {
            const std::wstring entry = list.substr(place, list.find(L')', place) - place);
            if (entry.size() > 4 && entry.compare(entry.size() - 3, 3, who) == 0)
                return true;
        }
        return false;
    };
    return allows(L";WD") || allows(L";AU") || allows(L";BU");
}

int openForReading(const std::string& name)
{
    return openFile(name, GENERIC_READ, shareAll, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
}

int openForOverwriting(const std::string& name)
{
    return openFile(name, GENERIC_WRITE, shareAll, TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL);
}

int openOrCreate(const std::string& name)
{
    return openFile(name, GENERIC_WRITE, shareAll, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, privateDescriptor());
}

// The protection is whole at once. Another's file cannot be made: it becomes this user's, and the same have access.
int createFile(const std::string& name, const Protection& like)
{
    const auto create = [&](const std::string& descriptor) {
        return openFile(name, GENERIC_READ | GENERIC_WRITE, shareAll, CREATE_NEW,
                        like.attributes != 0 ? like.attributes : FILE_ATTRIBUTE_NORMAL, descriptor);
    };
    const int file = create(like.descriptor);
    const DWORD error = GetLastError();
    if (file >= 0 || (error != ERROR_INVALID_OWNER && error != ERROR_INVALID_PRIMARY_GROUP))
        return file;
    return create(descriptorWith(accessListOf(like.descriptor)));
}

int createUnique(std::string& pattern)
{
    const std::string begin = pattern.substr(0, pattern.size() - 6);
    for (;;) {
        pattern = begin + anyCharacters();
        const int file = openFile(pattern, GENERIC_READ | GENERIC_WRITE, shareAll, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                                  privateDescriptor());
        if (file >= 0 || errno != EEXIST)
            return file;
    }
}

std::ptrdiff_t readSome(int file, char* bytes, std::size_t size)
{
    return ::_read(file, bytes, static_cast<unsigned int>(std::min<std::size_t>(size, INT_MAX)));
}

std::ptrdiff_t writeSome(int file, const char* bytes, std::size_t size)
{
    return ::_write(file, bytes, static_cast<unsigned int>(std::min<std::size_t>(size, INT_MAX)));
}

bool cutToNothing(int file)
{
    return ::_lseeki64(file, 0, SEEK_SET) == 0 && SetEndOfFile(handleOf(file)) != FALSE;
}

bool syncFile(int file)
{
    return FlushFileBuffers(handleOf(file)) != FALSE || failed();
}

bool setTime(int file, std::int64_t time)
{
    const auto units = static_cast<std::uint64_t>((time + startOf1970) * unitsOfSecond);
    const FILETIME changed = {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32U)};
    return SetFileTime(handleOf(file), nullptr, nullptr, &changed) != FALSE || failed();
}

void closeFile(int file) noexcept
{
    ::_close(file);
}

// The file has been made so.
bool takeOver(int /*file*/, const Model& /*model*/)
{
    return true;
}

std::vector<std::string> copyAttributes(int /*file*/, const std::string& /*source*/)
{
    return {};
}

bool removeName(const std::string& name) noexcept
try {
    return DeleteFileW(wideName(name).c_str()) != FALSE || failed();
} catch (const std::exception&) {
    errno = ENOMEM;
    return false;
}

// Another program may have one of the files open for a moment: a server that starts, or a search for viruses.
bool moveOver(const std::string& name, const std::string& other) noexcept
try {
    constexpr int most = 100;
    constexpr DWORD pause = 20;  // milliseconds
    for (int i = 0; !moveNow(name, other); ++i) {
        if (errno == EACCES)
            errno = isInUse(other) ? ETXTBSY : EACCES;
        if (errno != ETXTBSY || i == most)
            return false;
        Sleep(pause);
    }
    return true;
} catch (const std::exception&) {
    errno = ENOMEM;
    return false;
}

bool addName(const std::string& name, const std::string& other) noexcept
try {
    return CreateHardLinkW(wideName(other).c_str(), wideName(name).c_str(), nullptr) != FALSE || failed();
} catch (const std::exception&) {
    errno = ENOMEM;
    return false;
}

std::string realName(const std::string& name)
{
    const Descriptor file(openFile(name, 0, shareAll, OPEN_EXISTING, anyFile));
    return file.isOpen() ? nameOf(handleOf(file.get())) : "";
}

void syncDirectory(const std::string& /*directory*/) noexcept {}  // Moves are written through.

std::string processName()
{
    wchar_t wide[257] = {};
    DWORD size = 257;
    std::string user;
    if (GetUserNameW(wide, &size) == FALSE || !narrow(codePage(), wide, user))
        user = "an unknown user";
    return "process " + std::to_string(GetCurrentProcessId()) + " of " + user;
}

std::tm localTime(std::time_t time) noexcept
{
    const std::tm* const parts = std::localtime(&time);  // of this thread
    return parts != nullptr ? *parts : std::tm{};
}
