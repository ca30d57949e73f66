// DNs as the tree looks them up: by hash, from their text where it is simple.
#ifndef LDIF_DNKEY_H
#define LDIF_DNKEY_H

#include "LDIF_DN.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Whether a text is the canonical string form of a simple DN: every RDN is one pair, and no value has an escape,
// quotes, or the form of hex digits. Two such texts are the same DN exactly when they are equal but for case. The text
// is plain, or the locale converts it and it has no white space outside ASCII.
bool isSimpleDn(std::string_view text) noexcept;

// Writes the canonical string form of a DN to out, when that is simple and the text differs in the white space around
// its separators only. False for any other text, with out changed.
bool simplifyDn(std::string_view text, std::string& out);

// A DN with the hash of each ancestor. Levels are counted from the root: a key of n levels is the DN of n RDNs.
//
//     cn=a, ou=b, o=c     hash(1) that of o=c, hash(2) that of ou=b, o=c, hash(3) that of the whole
class LDIF_DnKey {
public:
    // Takes any string form. Throws LDIF_Exception (34) as LDIF_DN does.
    void parse(const std::string& anyForm);
    // Takes the canonical string form, which it borrows.
    void assign(std::string_view canonical);
    // The same for that of a DN that is known to be simple.
    void assignSimple(std::string_view canonical);
    void assign(const LDIF_DN& dn);

    std::size_t levels() const noexcept { return ancestors.size(); }
    std::size_t hash(std::size_t level) const noexcept { return level == 0 ? 0 : ancestors[level - 1].hash; }
    std::size_t hash() const noexcept { return hash(levels()); }
    // The string form of the ancestor of that level; empty when the DN is not simple.
    std::string_view simpleText(std::size_t level) const noexcept;
    // The DN in its parsed form.
    const LDIF_DN& dn();
    // The canonical string form, or the empty text for a DN that cannot be printed.
    std::string str() const { return parsed ? printable(*parsed) : std::string(text); }

private:
    struct Ancestor {
        std::size_t hash;
        std::size_t start;  // where it stands in the text of a simple DN
    };

    std::string_view text;            // of a simple DN
    std::string printed;              // what text borrows when the key was made of a parsed DN
    std::vector<Ancestor> ancestors;  // from the one below the root to the DN itself
    std::optional<LDIF_DN> parsed;
};

#endif
