// Where the lines of entries begin.
#ifndef LDIF_LINEDIRECTORY_H
#define LDIF_LINEDIRECTORY_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Finds the lines of an attribute in the texts of entries without going over all lines before them. Entries that have
// attributes of the same names are of one form, so that a search looks for a name once for each form. The directory
// learns of an entry when it is asked for it a second time, for that takes longer than one search, and then takes two
// bytes for each attribute. What it does not know it looks for line by line.
class LDIF_LineDirectory {
public:
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    // The lines of an entry from the first of that name on; empty when it has none. attributes are all its lines, and
    // the same at each call until the entry is forgotten.
    std::string_view find(std::uint32_t entry, std::string_view attributes, std::string_view name) noexcept;
    // Where in its attributes a known entry has the name that find was asked for last, or nowhere.
    std::size_t start(std::uint32_t entry) const noexcept;
    // The entry has changed or gone.
    void forget(std::uint32_t entry) noexcept;
    void clear() noexcept { *this = LDIF_LineDirectory(); }

private:
    struct Form {
        std::uint16_t count;  // of attributes
        std::uint16_t place;  // of the one that is asked for: count for none, or unknownPlace
    };

    static constexpr std::uint32_t askedOnce = 1;

    bool isKnown(std::uint32_t entry) const noexcept { return entry < parts.size() && parts[entry] > askedOnce; }
    // Where the attributes of a known entry begin; its form stands before them.
    const std::uint16_t* startsOf(std::uint32_t entry) const noexcept
    {
        return lines.data() + parts[entry] - askedOnce;
    }
    bool learn(std::uint32_t entry, std::string_view attributes);
    void ask(std::string_view name);
    std::uint16_t placeOf(std::string_view attributes, const std::uint16_t* first, std::size_t count) const noexcept;

    std::vector<std::uint32_t> parts;  // by entry: 0, askedOnce, or that and where its attributes stand in lines
    std::vector<std::uint16_t> lines;  // for each entry its form, then where each attribute begins
    std::vector<Form> forms;
    std::map<std::string, std::uint16_t> formsByNames;
    std::string asked;
    // Of the entry that it learns of:
    std::string names;
    std::vector<std::uint16_t> part;
    std::size_t forgotten = 0;  // how much of lines is dead
};

#endif
