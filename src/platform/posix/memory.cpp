#include "platform.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace {

std::uintptr_t addressOf(const void* memory) noexcept
{
    return reinterpret_cast<std::uintptr_t>(memory);
}

constexpr std::size_t largePage = std::size_t{2} << 20;  // of the usual machines

// From here on, memory comes from the system and not from the heap.
constexpr std::size_t largeBuffer = std::size_t{256} << 10;

// What the system is asked for: with one large page more, of which what stands before the first and after the last
// byte goes back at once.
char* mapPages(std::size_t size)
{
    const std::size_t aligning = size >= 2 * largePage ? largePage : 0;
    void* const memory = ::mmap(nullptr, size + aligning, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    char* const start = static_cast<char*>(memory);
    if (aligning == 0)
        return start;
    const std::size_t before = (largePage - addressOf(start) % largePage) % largePage;
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t pages = (size + pageSize - 1) / pageSize * pageSize;
    if (before != 0)
        (void)::munmap(start, before);
    (void)::munmap(start + before + pages, aligning - before);
#ifdef MADV_HUGEPAGE
    (void)::madvise(start + before, size / largePage * largePage, MADV_HUGEPAGE);
#endif
    return start + before;
}

}  // namespace

TextBuffer::TextBuffer(std::size_t size) : bytes(size < largeBuffer ? new char[size] : mapPages(size)), length(size) {}

TextBuffer::~TextBuffer()
{
    if (isSecret)
        wipe(bytes, length);
    if (length < largeBuffer)
        delete[] bytes;
    else if (bytes != nullptr)
        (void)::munmap(bytes, length);
}

void wipe(void* memory, std::size_t size) noexcept
{
    ::explicit_bzero(memory, size);
}
