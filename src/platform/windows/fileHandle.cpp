#include "fileHandle.h"

#include <memory>

#include <sddl.h>

namespace {

constexpr std::int64_t startOf1970 = 11'644'473'600 * unitsOfSecond;  // from the start of the system's count

}  // namespace

std::int64_t unitsSince1970(const FILETIME& time) noexcept
{
    return static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)) - startOf1970;
}

FILETIME fileTime(std::int64_t units) noexcept
{
    const auto counted = static_cast<std::uint64_t>(units + startOf1970);
    return {static_cast<DWORD>(counted), static_cast<DWORD>(counted >> 32U)};
}

std::wstring finalName(HANDLE file)
{
    std::wstring name(GetFinalPathNameByHandleW(file, nullptr, 0, 0), L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()), 0);
    name.resize(length < name.size() ? length : 0);
    return name;
}

FileProtection protectionOf(HANDLE file, DWORD attributes)
{
    constexpr SECURITY_INFORMATION whole =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    constexpr DWORD carried = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ENCRYPTED;
    FileProtection protection = {{}, attributes & carried};
    DWORD size = 0;
    GetKernelObjectSecurity(file, whole, nullptr, 0, &size);
    protection.descriptor.resize(size);
    if (GetKernelObjectSecurity(file, whole, protection.descriptor.data(), size, &size) == FALSE)
        protection.descriptor.clear();
    return protection;
}

HANDLE createProtected(const std::wstring& name, DWORD access, DWORD share, const FileProtection& protection)
{
    const auto create = [&](std::string descriptor) {
        SECURITY_ATTRIBUTES security = {sizeof security, descriptor.empty() ? nullptr : descriptor.data(), FALSE};
        return CreateFileW(name.c_str(), access, share, &security, CREATE_NEW,
                           protection.attributes != 0 ? protection.attributes : FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    const HANDLE made = create(protection.descriptor);
    const DWORD error = GetLastError();
    if (made != INVALID_HANDLE_VALUE || error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS)
        return made;
    const std::string own = descriptorWith(accessListOf(protection.descriptor));
    return own.empty() ? INVALID_HANDLE_VALUE : create(own);
}

std::wstring accessListOf(std::string descriptor)
{
    wchar_t* made = nullptr;
    if (descriptor.empty() ||
        ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor.data(), SDDL_REVISION_1,
                                                             DACL_SECURITY_INFORMATION, &made, nullptr) == FALSE)
        return {};
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(made, &LocalFree);
    return made;
}

std::string descriptorWith(const std::wstring& accessList)
{
    void* made = nullptr;
    DWORD size = 0;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(accessList.c_str(), SDDL_REVISION_1, &made, &size) ==
        FALSE)
        return {};
    const std::unique_ptr<void, decltype(&LocalFree)> owner(made, &LocalFree);
    return {static_cast<const char*>(made), size};
}
