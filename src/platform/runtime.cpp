#include "platform.h"

#include <cctype>
#include <cstring>

namespace {

int folded(char character) noexcept
{
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 'A' && byte <= 'Z')
        return byte - 'A' + 'a';
    if (byte < 0x80)
        return byte;
    const int lower = std::tolower(byte);
    return lower < 0x80 ? byte : lower;
}

}  // namespace

int _stricmp(const char* left, const char* right) noexcept
{
    for (;; ++left, ++right) {
        const int difference = folded(*left) - folded(*right);
        if (difference != 0 || *left == '\0')
            return difference;
    }
}

char* _strdup(const char* text) noexcept
{
    return ::strdup(text);
}

int _stat(const char* name, FileStatus* status) noexcept
{
    return ::stat(name, status);
}
