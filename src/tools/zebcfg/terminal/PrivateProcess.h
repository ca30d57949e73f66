// What other processes may see of this one, and what comes after it in the same memory.
#ifndef ZEBCFG_PRIVATEPROCESS_H
#define ZEBCFG_PRIVATEPROCESS_H

// Keeps the memory, which holds passwords, from core files and from other processes of the same user.
void hideMemory();

#endif
