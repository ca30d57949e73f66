#include "terminal/Memory.h"

#include <malloc.h>
#include <sys/prctl.h>

void forbidDumps() noexcept
{
    (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}

std::size_t blockSize(void* block) noexcept
{
    return ::malloc_usable_size(block);
}
