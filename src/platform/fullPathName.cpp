#include "platform.h"

#include "lastError.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <exception>
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

// An absolute name for a relative one, or the empty text with the reason in errno.
std::string behindCurrentDirectory(const char* name)
{
    char directory[PATH_MAX];
    if (getcwd(directory, sizeof directory) == nullptr)
        return {};
    std::string path = directory;
    if (path.back() != '/')
        path += '/';
    return path + name;
}

}  // namespace

DWORD GetFullPathNameA(const char* name, DWORD size, char* buffer, char** /*filePart*/)
try {
    const std::string path = name[0] == '/' ? name : behindCurrentDirectory(name);
    if (path.empty()) {
        setLastError(win32Error(errno));
        return 0;
    }
    if (path.size() + 1 > size)
        return static_cast<DWORD>(path.size() + 1);
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return static_cast<DWORD>(path.size());
} catch (const std::exception&) {
    setLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}
