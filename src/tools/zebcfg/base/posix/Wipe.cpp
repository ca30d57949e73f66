#include "base/Wipe.h"

#include <cstring>

void wipeMemory(void* memory, std::size_t size) noexcept
{
    ::explicit_bzero(memory, size);
}
