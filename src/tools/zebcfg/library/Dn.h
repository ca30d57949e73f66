// DNs as texts. Their syntax is the library's; here they are only brought to one spelling and cut.
#ifndef ZEBCFG_DN_H
#define ZEBCFG_DN_H

#include "base/Entry.h"
#include "files/MemoryFile.h"
#include "library/Session.h"

#include <functional>
#include <string>
#include <vector>

// Asks the library for its spelling of DNs, in an empty file where none of them exists.
class DnSpeller {
public:
    DnSpeller();
    // Throws Failure (34) for a text that is no DN, or has a NUL byte.
    std::string operator()(const std::string& dn) const;
    // The empty text for one that is no DN.
    std::string orNothing(const std::string& dn) const;

private:
    const MemoryFile emptyFile;
    const Session session;
};

// Throws Failure (34) for a DN with a NUL byte, which the library would not write.
void requireNoNul(const std::string& dn);

// "; the nearest entry that exists is X" for a DN in the library's spelling that does not exist, or the empty text.
std::string nearestNote(const std::string& dn, const std::function<bool(const std::string& dn)>& exists);

// Whether the library takes the text for the DN of the root: blanks and parentheses do not count.
bool isRootDn(const std::string& dn);
// The DN without its first RDN, for one in the library's spelling; empty for a single RDN.
std::string parentOf(const std::string& dn);
// All DNs above it, from its parent up.
std::vector<std::string> ancestorsOf(const std::string& dn);
// The attributes of the first RDN, each with one value without escapes and quotes. The names may repeat.
std::vector<Attribute> rdnOf(const std::string& dn);
// The same text for all spellings of one DN.
std::string keyOf(const std::string& dn);

#endif
