// The install location and the default configuration file.
#include "platform.h"
#include "zebldapcfg.h"

#include <cstdio>

namespace {

constexpr char clientKey[] = R"(SOFTWARE\ZEB\LDAP\Client)";
constexpr char homeValue[] = "LDAPHome";
constexpr std::size_t bufferSize = 256;  // in bytes, with the closing NUL

}  // namespace

const char* getInstallPath(void)
{
    static char filepath[bufferSize];
    return readRegistry(clientKey, homeValue, filepath, bufferSize) ? filepath : nullptr;
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
