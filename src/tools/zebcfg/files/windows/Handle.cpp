#include "files/windows/Handle.h"

#include "base/Failure.h"

#include <cerrno>
#include <memory>
#include <random>

#include <codePage.h>
#include <fcntl.h>
#include <fileHandle.h>
#include <fileName.h>
#include <io.h>

#include <sddl.h>

extern "C" LONG NTAPI RtlGetLastNtStatus();  // declared by no header

namespace {

constexpr auto deletePending = static_cast<LONG>(0xC0000056);  // reported as ERROR_ACCESS_DENIED

}  // namespace

bool failed() noexcept
{
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_NAME:
        errno = ENOENT;
        break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        errno = EEXIST;
        break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_DELETE_PENDING:
    case ERROR_USER_MAPPED_FILE:
        errno = ETXTBSY;
        break;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        errno = RtlGetLastNtStatus() == deletePending ? ETXTBSY : EACCES;
        break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        errno = ENOSPC;
        break;
    case ERROR_FILENAME_EXCED_RANGE:
        errno = ENAMETOOLONG;
        break;
    case ERROR_TOO_MANY_OPEN_FILES:
        errno = EMFILE;
        break;
    case ERROR_NOT_ENOUGH_MEMORY:
        errno = ENOMEM;
        break;
    default:
        errno = EIO;
    }
    return false;
}

int descriptorOf(HANDLE handle) noexcept
{
    if (handle == INVALID_HANDLE_VALUE) {
        (void)failed();
        return -1;
    }
    const int descriptor = ::_open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0)
        CloseHandle(handle);
    return descriptor;
}

HANDLE handleOf(int descriptor) noexcept
{
    return reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));  // NOLINT(performance-no-int-to-ptr)
}

std::string nameOf(HANDLE handle)
{
    std::string name;
    std::wstring wide = finalName(handle);
    if (wide.compare(0, 8, LR"(\\?\UNC\)") == 0)
        wide.replace(0, 7, L"\\");
    else if (wide.compare(0, 4, LR"(\\?\)") == 0)
        wide.erase(0, 4);
    return narrow(namePage(), wide, name) ? name : "";
}

namespace {

// The identity of the user, as a text; empty when it cannot be told.
std::wstring userIdentity()
{
    HANDLE token = nullptr;
    std::wstring identity;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE)
        return identity;
    const std::unique_ptr<void, decltype(&CloseHandle)> owner(token, &CloseHandle);
    alignas(TOKEN_USER) char user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE] = {};
    DWORD size = sizeof user;
    wchar_t* text = nullptr;
    if (GetTokenInformation(token, TokenUser, user, size, &size) != FALSE &&
        ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text) != FALSE)
        identity = text;
    LocalFree(text);
    return identity;
}

}  // namespace

std::string privateDescriptor()
{
    const std::wstring user = userIdentity();
    return descriptorWith(L"D:P(A;OICI;FA;;;" + (user.empty() ? L"OW" : user) + L")");  // OW: whoever owns the file
}

std::string temporaryDirectory()
{
    std::string name;
    wchar_t wide[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, wide);
    if (length == 0 || length > MAX_PATH || !narrow(namePage(), {wide, length}, name))
        throw Failure(0, "the directory for temporary files cannot be named in this locale; set TMP");
    return name;
}

std::string anyCharacters()
{
    constexpr char characters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string any;
    while (any.size() < 6)
        any += characters[random() % (sizeof characters - 1)];
    return any;
}

int openFile(const std::string& name, DWORD access, DWORD share, DWORD disposition, DWORD flags, std::string descriptor)
{
    SECURITY_ATTRIBUTES security = {sizeof security, descriptor.empty() ? nullptr : descriptor.data(), FALSE};
    return descriptorOf(CreateFileW(wideName(name).c_str(), access, share, &security, disposition, flags, nullptr));
}
