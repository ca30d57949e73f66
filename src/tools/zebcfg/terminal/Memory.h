// The memory of the process.
#ifndef ZEBCFG_MEMORY_H
#define ZEBCFG_MEMORY_H

#include <cstddef>

// Keeps it from core files and from other processes of the same user.
void forbidDumps() noexcept;
// The bytes that a block of the C heap holds; none, where it is null.
std::size_t blockSize(void* block) noexcept;

#endif
