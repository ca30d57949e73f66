#include "files/FileSystem.h"

#include "files/Descriptor.h"
#include "files/windows/Handle.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <exception>

#include <codePage.h>
#include <fileHandle.h>
#include <fileName.h>
#include <io.h>
#include <platform.h>

const char* const privacyAdvice =
    "icacls FILE /inheritance:d /remove:g *S-1-1-0 *S-1-5-11 *S-1-5-32-545 keeps others out";
const char* const installPlace = R"(HKEY_LOCAL_MACHINE\SOFTWARE\ZEB\LDAP\Client\LDAPHome)";
const char* const separators = "\\/:";

std::string touchCommand(const std::string& name)
{
    return "copy /b " + name + "+,,";
}

namespace {

constexpr DWORD anyFile = FILE_FLAG_BACKUP_SEMANTICS;  // a directory too

// A link counts as one where it was opened itself; other files may keep a mark of that kind.
bool readInfoOf(HANDLE handle, FileInfo& info, bool isLink = false)
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
    const DWORD noFile = isLink ? FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT : FILE_ATTRIBUTE_DIRECTORY;
    info.kind = (found.dwFileAttributes & noFile) == 0 ? FileKind::regular : FileKind::other;
    info.device = found.dwVolumeSerialNumber;
    info.index = joined(found.nFileIndexHigh, found.nFileIndexLow);
    info.names = found.nNumberOfLinks;
    info.isFixed = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    info.size = static_cast<std::int64_t>(joined(found.nFileSizeHigh, found.nFileSizeLow));
    const std::int64_t units = unitsSince1970(found.ftLastWriteTime);
    info.time = units / unitsOfSecond;
    info.nanoseconds = static_cast<long>(units % unitsOfSecond * 100);
    info.protection = protectionOf(handle, found.dwFileAttributes);
    return true;
}

// Not everybody who may ask for the time of a file may read its protection.
bool readInfoWith(const std::string& name, DWORD flags, FileInfo& info)
{
    for (const DWORD access : {DWORD{FILE_READ_ATTRIBUTES | READ_CONTROL}, DWORD{FILE_READ_ATTRIBUTES}}) {
        const Descriptor file(openFile(name, access, shareAll, OPEN_EXISTING, anyFile | flags));
        if (file.isOpen())
            return readInfoOf(handleOf(file.get()), info, (flags & FILE_FLAG_OPEN_REPARSE_POINT) != 0);
    }
    return false;
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

// Everyone, whoever has logged in, and the groups of all users, or no list at all.
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
    return list.find(L"NO_ACCESS_CONTROL") != std::wstring::npos || allows(L";DU") || allows(L";WD") ||
           allows(L";AU") || allows(L";BU");
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

// The protection is whole at once. Where that of the model could not be read, the file would be open to others.
int createFile(const std::string& name, const Protection& like)
{
    if (!like.descriptor.empty())
        return descriptorOf(createProtected(wideName(name), GENERIC_READ | GENERIC_WRITE, shareAll, like));
    errno = EACCES;
    return -1;
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
    return ::_lseeki64(file, 0, SEEK_SET) == 0 && (SetEndOfFile(handleOf(file)) != FALSE || failed());
}

bool syncFile(int file)
{
    return FlushFileBuffers(handleOf(file)) != FALSE || failed();
}

bool setTime(int file, std::int64_t time)
{
    const FILETIME changed = fileTime(time * unitsOfSecond);
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
