// The install location and the default configuration file.
#include "platform.h"
#include "zebldapcfg.h"

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr char clientKey[] = R"(SOFTWARE\ZEB\LDAP\Client)";
constexpr char homeValue[] = "LDAPHome";
constexpr std::size_t bufferSize = 256;  // in bytes, with the closing NUL

constexpr int keyMissing = 176;
constexpr int keyUnreadable = 177;
constexpr int valueUnreadable = 178;

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

// Reads a registry value. 0, and *path is C heap that the caller frees; 176 to 178 or 90 on failure.
int regGetPath(const char* key, const char* value, char** path)
{
    HKEY opened = nullptr;
    const LONG result = RegOpenKeyExA(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &opened);
    if (result != static_cast<LONG>(ERROR_SUCCESS))
        return result == static_cast<LONG>(ERROR_FILE_NOT_FOUND) ? keyMissing : keyUnreadable;
    const OpenKey owner(opened);
    DWORD size = 0;
    if (RegQueryValueExA(opened, value, nullptr, nullptr, nullptr, &size) != static_cast<LONG>(ERROR_SUCCESS))
        return valueUnreadable;
    std::unique_ptr<char, decltype(&std::free)> buffer(static_cast<char*>(std::malloc(size)), &std::free);
    if (buffer == nullptr)
        return CFG_NO_MEMORY;
    auto* const bytes = reinterpret_cast<unsigned char*>(buffer.get());
    if (RegQueryValueExA(opened, value, nullptr, nullptr, bytes, &size) != static_cast<LONG>(ERROR_SUCCESS))
        return valueUnreadable;
    *path = buffer.release();
    return LDAP_SUCCESS;
}

// Copies text into a buffer of bufferSize bytes, behind the first length ones. False when it does not fit.
bool copyInto(char* buffer, std::size_t length, const char* text)
{
    const std::size_t size = std::strlen(text) + 1;
    if (size > bufferSize - length)
        return false;
    std::memcpy(buffer + length, text, size);
    return true;
}

}  // namespace

const char* getInstallPath(void)
{
    static char filepath[bufferSize];
    char* path = nullptr;
    if (regGetPath(clientKey, homeValue, &path) != 0)
        return nullptr;
    const std::unique_ptr<char, decltype(&std::free)> owner(path, &std::free);
    return copyInto(filepath, 0, path) ? filepath : nullptr;
}

const char* getDefaultConfigFilename(void)
{
    static char filepath[bufferSize];
    const char* const installPath = getInstallPath();
    if (installPath == nullptr || !copyInto(filepath, 0, installPath))
        return nullptr;
    for (const char* part : {pathSeparator, "etc", pathSeparator, "zebslapd.conf"}) {
        if (!copyInto(filepath, std::strlen(filepath), part))
            return nullptr;
    }
    return filepath;
}
