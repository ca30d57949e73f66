// A state of the configuration that is wanted, as LDIF.
#ifndef ZEBCFG_APPLY_H
#define ZEBCFG_APPLY_H

#include "update/Target.h"

#include <string>

struct WantedState {
    std::string file = "-";   // "-" for standard input
    bool needsParent = true;  // an entry to add
    bool isWhole = false;     // what is not named goes: attributes of the entries that are, and the entries below base
    std::string base;         // of an entry in the library's or another spelling
};

// Adds the entries that are missing, and gives each attribute that is named exactly its values. What is so already is
// left alone. Throws Failure.
void applyState(Target target, const WantedState& wanted);

#endif
