#include "platform.h"

#include <cstdlib>
#include <cstring>
#include <utility>

char* copyText(const char* text) noexcept
{
    const std::size_t size = std::strlen(text) + 1;
    void* const copy = std::malloc(size);
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

TextBuffer& TextBuffer::operator=(TextBuffer&& other) noexcept
{
    std::swap(bytes, other.bytes);
    std::swap(length, other.length);
    std::swap(isSecret, other.isSecret);
    return *this;
}
