#include "platform.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

// The numbers of Windows; systemErrorText has their texts.
int windowsError(int error)
{
    switch (error) {
    case ENOENT:
        return 3;
    case EACCES:
        return 5;
    case ENOMEM:
        return 8;
    case ERANGE:
    case ENAMETOOLONG:
        return nameTooLong;
    default:
        return 31;
    }
}

}  // namespace

// Takes no memory, which could run out: a failure here is that of a name.
int fullPathName(const char* name, char* buffer, std::size_t size)
{
    char directory[PATH_MAX] = "";
    const bool isAbsolute = name[0] == '/';
    if (!isAbsolute && getcwd(directory, sizeof directory) == nullptr)
        return windowsError(errno);
    const char* const separator = isAbsolute || std::strcmp(directory, "/") == 0 ? "" : "/";
    if (std::strlen(directory) + std::strlen(separator) + std::strlen(name) >= size)
        return nameTooLong;
    (void)std::snprintf(buffer, size, "%s%s%s", directory, separator, name);
    return 0;
}
