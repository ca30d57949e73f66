// The memory of the process.
#ifndef ZEBCFG_MEMORY_H
#define ZEBCFG_MEMORY_H

// Keeps it from core files and from other processes of the same user.
void forbidDumps() noexcept;
// Overwrites a block of the C heap, which may be null.
void wipeBlock(void* block) noexcept;

#endif
