#include "platform.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace {

bool isFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

}  // namespace

bool readRegistry(const char* key, const char* value, char* buffer, std::size_t size) noexcept
try {
    std::string folder = key;
    std::replace(folder.begin(), folder.end(), '\\', '/');
    TextBuffer content;
    std::size_t length = 0;
    if (!isFileName(value) || !readFile(registryRoot() + ('/' + folder + '/') + value, content, length))
        return false;
    if (length > 0 && content.data()[length - 1] == '\n')
        --length;
    if (length >= size)
        return false;
    std::memcpy(buffer, content.data(), length);
    buffer[length] = '\0';
    return true;
} catch (const std::exception&) {
    return false;  // for want of memory
}
