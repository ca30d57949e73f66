#include "platform.h"

#include "transfer.h"

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

void enlarge(TextBuffer& content)
{
    TextBuffer larger(2 * content.size());
    larger.setSecret(true);
    std::memcpy(larger.data(), content.data(), content.size());
    content = std::move(larger);
}

std::string gatheringBuffer()
{
    std::string buffer;
    buffer.reserve(std::size_t{64} << 10);
    return buffer;
}
