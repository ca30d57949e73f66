// A hash that stands for a text.
#ifndef LDIF_TEXTHASH_H
#define LDIF_TEXTHASH_H

#include <cstdint>
#include <string_view>

// The value of the text, seven bytes a coefficient, as a polynomial modulo the prime 2^61 - 1 at a point that each
// process draws by chance: two texts of n bytes, whoever chose them, have the same hash with a probability of at most
// n / 2^62. Never 0. Throws std::exception when the system has no random number.
std::uint64_t textHash(std::string_view text);

#endif
