#include "platform.h"

#include <cstdint>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace {

std::uintptr_t addressOf(const void* memory) noexcept
{
    return reinterpret_cast<std::uintptr_t>(memory);
}

void* map(std::size_t size) noexcept
{
    void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED ? memory : nullptr;
}

// Takes twice the size, and gives back what stands before and behind the aligned half.
void* mapAligned(std::size_t size) noexcept
{
    char* const memory = static_cast<char*>(map(2 * size));
    if (memory == nullptr)
        return nullptr;
    const std::size_t before = (size - addressOf(memory) % size) % size;
    if (before != 0)
        (void)::munmap(memory, before);
    (void)::munmap(memory + before + size, size - before);
    return memory + before;
}

}  // namespace

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
    void* region = map(size);
    if (region != nullptr && addressOf(region) % size != 0) {
        (void)::munmap(region, size);
        region = mapAligned(size);
    }
#ifdef MADV_HUGEPAGE
    if (region != nullptr)
        (void)::madvise(region, size, isLarge ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
#endif
    return region;
}

void releaseRegion(void* region, std::size_t size) noexcept
{
    (void)::munmap(region, size);
}

void offerRegion(void* region, std::size_t size) noexcept
{
#ifdef MADV_FREE
    (void)::madvise(region, size, MADV_FREE);
#endif
}

void wipe(void* memory, std::size_t size) noexcept
{
    ::explicit_bzero(memory, size);
}

// Pages that the system takes back read as zeros from then on.
void discard(void* memory, std::size_t size) noexcept
{
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    char* const begin = static_cast<char*>(memory);
    const std::size_t head = (pageSize - addressOf(begin) % pageSize) % pageSize;
    if (size < head + pageSize)
        return wipe(begin, size);
    const std::size_t pages = (size - head) / pageSize * pageSize;
    wipe(begin, head);
    if (::madvise(begin + head, pages, MADV_DONTNEED) != 0)
        wipe(begin + head, pages);
    wipe(begin + head + pages, size - head - pages);
}

char* _strdup(const char* text) noexcept
{
    return ::strdup(text);
}

int _stat(const char* name, FileStatus* status) noexcept
{
    return ::stat(name, status);
}
