#include "platform.h"

#include "lastError.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

DWORD win32Error(int error)
{
    switch (error) {
    case ENOENT:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
        return ERROR_ACCESS_DENIED;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case ERANGE:
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    default:
        return ERROR_GEN_FAILURE;
    }
}

}  // namespace

// Takes no memory, which could run out: a failure here is that of a name.
DWORD GetFullPathNameA(const char* name, DWORD size, char* buffer, char** /*filePart*/)
{
    char directory[PATH_MAX] = "";
    const bool isAbsolute = name[0] == '/';
    if (!isAbsolute && getcwd(directory, sizeof directory) == nullptr) {
        setLastError(win32Error(errno));
        return 0;
    }
    const char* const separator = isAbsolute || std::strcmp(directory, "/") == 0 ? "" : "/";
    const std::size_t length = std::strlen(directory) + std::strlen(separator) + std::strlen(name);
    if (length + 1 > size)
        return static_cast<DWORD>(length + 1);
    (void)std::snprintf(buffer, size, "%s%s%s", directory, separator, name);
    return static_cast<DWORD>(length);
}
