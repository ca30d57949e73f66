// What the system fixes of the platform's types, and what is called too often for a function of its own.
#ifndef SYSTEM_H
#define SYSTEM_H

#include <cctype>
#include <clocale>
#include <string_view>

#include <locale.h>  // NOLINT(modernize-deprecated-headers): locale_t is none of the C library's
#include <sys/types.h>

constexpr const char* pathSeparator = "/";

// What ends a line of a text file.
constexpr std::string_view lineEnd = "\n";

// Who may do what with a file.
struct FileProtection {
    mode_t mode = 0;  // the permissions alone
    uid_t owner = 0;
    gid_t group = 0;
};

using SystemLocale = locale_t;

// The directory that holds the registry; fixed when the library is built.
const char* registryRoot() noexcept;

// The lower case of a byte beyond ASCII in the locale.
inline int lowerCase(int byte) noexcept
{
    return std::tolower(byte);
}

#endif
