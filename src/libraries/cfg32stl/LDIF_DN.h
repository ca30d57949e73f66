// Distinguished names, RFC 4514, and the arithmetic of the tree on them.
#ifndef LDIF_DN_H
#define LDIF_DN_H

#include "LDIF_RDN.h"
#include "LDIF_Util.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

// A distinguished name, held from the root outwards: index 0 is the rightmost RDN as written. A plain value: copies
// share nothing. The empty DN is the root. Departures from RFC 4514: ";" separates like ",", white space and
// parentheses around the parts are dropped, and case never counts in a comparison.
class LDIF_DN final : public std::vector<LDIF_RDN> {
public:
    LDIF_DN() = default;
    // Parses the string form. Throws LDIF_Exception (34) with the whole text in value.
    explicit LDIF_DN(const cisString& text);

    // Parses the string form into an empty DN. Throws like the constructor; the RDNs before the failing one stay.
    virtual LDIF_DN& operator=(const cisString& text);
    // Adds an RDN on the leaf's side.
    virtual LDIF_DN& operator+=(const LDIF_RDN& rdn);
    // The common ancestor, in this DN's spelling; may be empty.
    virtual LDIF_DN intersection(const LDIF_DN& other) const;
    // Removes the common ancestor, which leaves the DN relative to other if that is an ancestor.
    virtual LDIF_DN& operator-=(const LDIF_DN& other);
    // The canonical string form: ", " and " + ", sorted pairs, case and form of the values kept. Throws LDIF_Exception
    // (34) when an RDN value is empty.
    virtual std::string str() const { return textOf(*this); }
    friend std::ostream& operator<<(std::ostream& out, const LDIF_DN& dn) { return out << dn.str(); }
    // RDN by RDN from the root; an ancestor of other gives 1. The operators turn the usual sign round: an ancestor is
    // less than what lies below it, and siblings stand in descending order of their text.
    virtual int compare(const LDIF_DN& other) const;
    virtual bool operator==(const LDIF_DN& other) const { return compare(other) == 0; }
    virtual bool operator<(const LDIF_DN& other) const { return compare(other) > 0; }
    virtual bool operator>(const LDIF_DN& other) const { return compare(other) < 0; }
    virtual bool operator!=(const LDIF_DN& other) const { return compare(other) != 0; }
    virtual bool operator<=(const LDIF_DN& other) const { return compare(other) >= 0; }
    virtual bool operator>=(const LDIF_DN& other) const { return compare(other) <= 0; }

    // How many leading RDNs equal those of other.
    size_type commonLevels(const LDIF_DN& other) const;
    // Whether the first levels RDNs of both are there and equal.
    bool startsEqual(const LDIF_DN& other, size_type levels) const;
    // Removes that many RDNs on the root's side; at most size().
    void removeLeading(size_type levels);
    void appendTo(std::string& out) const;
    // Equal DNs have equal hashes, as long as the locale folds case the same.
    std::size_t hash() const noexcept;

private:
    void parse(LDIF_DnReader& reader);
};

// The string form, or the empty text for a DN that cannot be printed: for the report of another failure.
std::string printable(const LDIF_DN& dn);

#endif
