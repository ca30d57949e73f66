// What the system fixes of the platform's types.
#ifndef SYSTEM_H
#define SYSTEM_H

#include <string>
#include <string_view>

constexpr const char* pathSeparator = "\\";

// What ends a line of a text file.
constexpr std::string_view lineEnd = "\r\n";

// Who may do what with a file.
struct FileProtection {
    // The security descriptor in its self-relative form. Empty when it cannot be read: a new file then gets what its
    // directory passes on.
    std::string descriptor;
    unsigned int attributes = 0;  // FILE_ATTRIBUTE_..., those that a new file can be given
};

using SystemLocale = unsigned int;  // its code page; 0 for that of the locale "C"

// The lower case of a byte beyond ASCII in the locale; the byte itself where characters take several bytes.
int lowerCase(int byte) noexcept;

#endif
