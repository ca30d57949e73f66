#include "platform.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>

struct RegistryKey {
    std::string directory;
};

namespace {

// The number for a file or folder that cannot be reached.
LONG registryError(int error)
{
    const bool missing = error == ENOENT || error == ENOTDIR;
    return static_cast<LONG>(missing ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED);
}

bool isFileName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

LONG openKey(const char* subKey, HKEY* result)
{
    std::string path = subKey;
    std::replace(path.begin(), path.end(), '\\', '/');
    auto key = std::make_unique<RegistryKey>(RegistryKey{registryRoot() + ("/" + path)});
    FileStatus status = {};
    if (::stat(key->directory.c_str(), &status) != 0)
        return registryError(errno);
    if (!S_ISDIR(status.st_mode))
        return ERROR_FILE_NOT_FOUND;
    *result = key.release();
    return ERROR_SUCCESS;
}

LONG queryValue(const RegistryKey& key, const char* name, unsigned char* data, DWORD* size)
{
    if (!isFileName(name))
        return ERROR_FILE_NOT_FOUND;
    const std::string path = key.directory + "/" + name;
    FileStatus status = {};
    if (::stat(path.c_str(), &status) != 0)
        return registryError(errno);
    TextBuffer content;
    std::size_t length = 0;
    if (!readFile(path, content, length))
        return ERROR_ACCESS_DENIED;
    std::string value(content.data(), length);
    if (!value.empty() && value.back() == '\n')
        value.pop_back();
    const DWORD capacity = *size;
    *size = static_cast<DWORD>(value.size() + 1);
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (capacity < *size)
        return ERROR_MORE_DATA;
    std::memcpy(data, value.c_str(), value.size() + 1);
    return ERROR_SUCCESS;
}

}  // namespace

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD /*options*/, DWORD /*access*/, HKEY* result)
try {
    return key == HKEY_LOCAL_MACHINE ? openKey(subKey, result) : static_cast<LONG>(ERROR_INVALID_HANDLE);
} catch (const std::exception&) {
    return ERROR_NOT_ENOUGH_MEMORY;
}

LONG RegQueryValueExA(HKEY key, const char* name, DWORD* /*reserved*/, DWORD* /*type*/, unsigned char* data,
                      DWORD* size)
try {
    return key != nullptr ? queryValue(*key, name, data, size) : static_cast<LONG>(ERROR_INVALID_HANDLE);
} catch (const std::exception&) {
    return ERROR_NOT_ENOUGH_MEMORY;
}

LONG RegCloseKey(HKEY key)
{
    delete key;
    return ERROR_SUCCESS;
}
