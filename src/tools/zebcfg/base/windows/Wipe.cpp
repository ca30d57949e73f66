#include "base/Wipe.h"

#include <platform.h>

void wipeMemory(void* memory, std::size_t size) noexcept
{
    wipe(memory, size);
}
