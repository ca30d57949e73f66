// What happens to the text of the configuration file when an entry gets another DN.
#ifndef ZEBCFG_MOVE_H
#define ZEBCFG_MOVE_H

#include "library/Dn.h"

#include <string>
#include <vector>

// An entry on its way from one DN to another, both in the library's spelling, with all that lies below it.
class Move {
public:
    Move(std::string oldDn, std::string newDn, const DnSpeller& speller);

    const std::string& from() const noexcept { return oldName; }
    const std::string& to() const noexcept { return newName; }
    // Whether only the spelling changes.
    bool isSpelling() const;
    // Whether the new DN lies below the old one.
    bool isIntoItself() const;
    // Whether a DN, in any spelling, is the old one or below it; a text that is no DN is not.
    bool affects(const std::string& dn) const;
    // The DN after the move, or the same.
    std::string moved(const std::string& dn) const;
    // The text with moved DNs in its dn lines. All others stay as they are.
    std::string movedText(const std::string& text) const;
    // The values of an attribute of the entry, of which the RDN gives some. The new ones take the places of the old
    // ones, which stay where that is wanted.
    std::vector<std::string> movedValues(const std::string& name, std::vector<std::string> values, bool keepsOld) const;

private:
    const std::string oldName;
    const std::string newName;
    const std::string oldKey;
    const DnSpeller& spelled;
};

#endif
