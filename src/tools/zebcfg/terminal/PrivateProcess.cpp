#include "terminal/PrivateProcess.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include <malloc.h>
#include <sys/prctl.h>

// AddressSanitizer has the memory to itself, and its search for leaks looks at the process from another one.
#ifdef ZEBCFG_SANITIZED

void hideMemory() {}

#else

void hideMemory()
{
    (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}

// Texts of all kinds hold passwords, those of other libraries among them: whatever is released is wiped.
void* operator new(std::size_t size)
{
    for (;;) {
        if (void* const block = std::malloc(size != 0 ? size : 1))
            return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr)
            throw std::bad_alloc();
        handler();
    }
}

void operator delete(void* block, std::size_t size) noexcept
{
    if (block != nullptr)
        ::explicit_bzero(block, size);
    std::free(block);
}

void operator delete(void* block) noexcept
{
    operator delete(block, ::malloc_usable_size(block));
}

#endif
