#include "terminal/Memory.h"

#include "base/Wipe.h"

#include <malloc.h>
#include <sys/prctl.h>

void forbidDumps() noexcept
{
    (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}

void wipeBlock(void* block) noexcept
{
    if (block != nullptr)
        wipeMemory(block, ::malloc_usable_size(block));
}
