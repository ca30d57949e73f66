// Words of the form ATTRIBUTE=VALUE on the command line.
#ifndef ZEBCFG_ASSIGNMENT_H
#define ZEBCFG_ASSIGNMENT_H

#include "base/Entry.h"
#include "cli/Call.h"

#include <vector>

enum class NeedsValue { no, yes };

// One change for each attribute that the operands after the first name, with its values in their order. Throws
// Failure for a word without "=" where a value is needed.
std::vector<Change> changesOf(const Call& call, int operation, NeedsValue needsValue);

#endif
