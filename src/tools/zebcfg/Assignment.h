// Words of the form ATTRIBUTE=VALUE on the command line.
#ifndef ZEBCFG_ASSIGNMENT_H
#define ZEBCFG_ASSIGNMENT_H

#include "Call.h"
#include "Entry.h"

#include <vector>

enum class NeedsValue { no, yes };

// One change for each attribute that the operands behind the first name, with its values in their order. Hints at
// misspelt names. Throws Failure for a word without "=" where a value is needed.
std::vector<Change> changesOf(const Call& call, int operation, NeedsValue needsValue);
// Tells on standard error when the name looks like a misspelt one.
void hintAtName(const Call& call, const std::string& name);

#endif
