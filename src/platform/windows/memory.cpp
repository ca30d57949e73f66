#include "platform.h"

#include <windows.h>

// The heap takes what is large from the system, and gives it back at once.
TextBuffer::TextBuffer(std::size_t size) : bytes(new char[size]), length(size) {}

TextBuffer::~TextBuffer()
{
    if (isSecret)
        wipe(bytes, length);
    delete[] bytes;
}

void wipe(void* memory, std::size_t size) noexcept
{
    SecureZeroMemory(memory, size);
}
