// The install location and the default configuration file.
#include "platform.h"
#include "zebldapcfg.h"

#include <cstdio>
#include <memory>

namespace {

constexpr char clientKey[] = R"(SOFTWARE\ZEB\LDAP\Client)";
constexpr char homeValue[] = "LDAPHome";
constexpr DWORD bufferSize = 256;  // in bytes, with the closing NUL

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

// Reads the value into a buffer of bufferSize bytes. False when it cannot be had, or does not fit.
bool readHome(char* buffer)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, clientKey, 0, KEY_READ, &opened) != static_cast<LONG>(ERROR_SUCCESS))
        return false;
    const OpenKey owner(opened);
    DWORD size = bufferSize;
    auto* const bytes = reinterpret_cast<unsigned char*>(buffer);
    return RegQueryValueExA(opened, homeValue, nullptr, nullptr, bytes, &size) == static_cast<LONG>(ERROR_SUCCESS);
}

}  // namespace

const char* getInstallPath(void)
{
    static char filepath[bufferSize];
    return readHome(filepath) ? filepath : nullptr;
}

const char* getDefaultConfigFilename(void)
{
    static char filepath[bufferSize];
    const char* const installPath = getInstallPath();
    if (installPath == nullptr)
        return nullptr;
    const int length =
        std::snprintf(filepath, bufferSize, "%s%setc%szebslapd.conf", installPath, pathSeparator, pathSeparator);
    return length > 0 && length < static_cast<int>(bufferSize) ? filepath : nullptr;
}
