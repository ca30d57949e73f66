#include "terminal/PrivateProcess.h"

#include "base/Wipe.h"
#include "terminal/Memory.h"

#include <cstdlib>
#include <new>

// AddressSanitizer has the memory to itself, and its search for leaks looks at the process from another one.
#ifdef ZEBCFG_SANITIZED

void hideMemory() {}

#else

void hideMemory()
{
    forbidDumps();
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
        wipeMemory(block, size);
    std::free(block);
}

void operator delete(void* block) noexcept
{
    operator delete(block, blockSize(block));
}

#endif
