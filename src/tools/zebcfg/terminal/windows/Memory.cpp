#include "terminal/Memory.h"

#include "base/Wipe.h"

#include <malloc.h>
#include <windows.h>

// The report of a crash would hold the memory.
void forbidDumps() noexcept
{
    SetErrorMode(GetErrorMode() | SEM_NOGPFAULTERRORBOX);
}

void wipeBlock(void* block) noexcept
{
    if (block != nullptr)
        wipeMemory(block, ::_msize(block));
}
