// Secrets in memory.
#ifndef ZEBCFG_WIPE_H
#define ZEBCFG_WIPE_H

#include <cstddef>

// Overwrites what is about to be released; no compiler leaves it out.
void wipeMemory(void* memory, std::size_t size) noexcept;

#endif
