// Two sessions compared.
#ifndef ZEBCFG_COMPARISON_H
#define ZEBCFG_COMPARISON_H

#include <cstddef>
#include <optional>

class Session;

// Compares the root and all entries that have an objectclass: their order, names and values. Gives the number of these
// entries, or nothing when any of them differs. Large trees are compared in parts, so that no copy of them is held.
std::optional<std::size_t> countSameEntries(const Session& left, const Session& right);

#endif
