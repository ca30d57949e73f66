#include "platform.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

int _stricmp(const char* left, const char* right) noexcept
{
    for (;; ++left, ++right) {
        if (*left == *right) {
            if (*left == '\0')
                return 0;
            continue;
        }
        const int difference = foldCase(*left) - foldCase(*right);
        if (difference != 0)
            return difference;
    }
}

void* allocateRegion(std::size_t size, bool isLarge) noexcept
{
    void* const region = std::aligned_alloc(size, size);
#ifdef MADV_HUGEPAGE
    if (region != nullptr && isLarge)
        (void)madvise(region, size, MADV_HUGEPAGE);
#endif
    return region;
}

void releaseRegion(void* region) noexcept
{
    std::free(region);
}

void wipe(void* memory, std::size_t size) noexcept
{
    ::explicit_bzero(memory, size);
}

char* _strdup(const char* text) noexcept
{
    return ::strdup(text);
}

int _stat(const char* name, FileStatus* status) noexcept
{
    return ::stat(name, status);
}
