// Where the lines of entries begin.
#ifndef LDIF_LINEDIRECTORY_H
#define LDIF_LINEDIRECTORY_H

#include <cstdint>
#include <string_view>
#include <vector>

// Finds the lines of an attribute in the texts of entries without going over all lines before them. It learns of an
// entry when it is asked for it first, and takes two bytes for each attribute. What it does not learn, for want of
// memory or since the entry is large, it looks for line by line.
class LDIF_LineDirectory {
public:
    // The lines of an entry from the first of that name on; empty when it has none. attributes are all its lines, and
    // the same at each call until the entry is forgotten. A search asks for one name, entry by entry.
    std::string_view find(std::uint32_t entry, std::string_view attributes, std::string_view name) noexcept;
    // The entry has changed or gone.
    void forget(std::uint32_t entry) noexcept;
    void clear() noexcept { *this = LDIF_LineDirectory(); }

private:
    bool learn(std::uint32_t entry, std::string_view attributes) noexcept;

    std::vector<std::uint32_t> starts;  // by entry: one more than where its part of lines begins; 0 for none
    std::vector<std::uint16_t> lines;   // for each entry the number of its attributes, then where each begins
    std::size_t likely = 0;             // which attribute of the entry before had the name
    std::size_t forgotten = 0;          // how much of lines is dead
};

#endif
