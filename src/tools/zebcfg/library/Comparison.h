// Two sessions compared.
#ifndef ZEBCFG_COMPARISON_H
#define ZEBCFG_COMPARISON_H

#include <cstddef>

class Session;

// Compares the root and all entries that have an objectclass: their order, names and values. Gives the number of these
// entries, and nothing when any of them differs. Large trees are compared in parts, so that no copy of them is held.
constexpr std::size_t noneSame = static_cast<std::size_t>(-1);
std::size_t countSameEntries(const Session& left, const Session& right);

#endif
