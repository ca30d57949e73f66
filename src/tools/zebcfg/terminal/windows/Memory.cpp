#include "terminal/Memory.h"

#include <malloc.h>
#include <windows.h>

// The report of a crash would hold the memory.
void forbidDumps() noexcept
{
    SetErrorMode(GetErrorMode() | SEM_NOGPFAULTERRORBOX);
}

std::size_t blockSize(void* block) noexcept
{
    return block != nullptr ? ::_msize(block) : 0;
}
