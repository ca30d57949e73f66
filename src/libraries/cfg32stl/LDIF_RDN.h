// Relative distinguished names, RFC 4514, and their parts.
//
// Each class parses itself from the front of a text, either a cisString, from which it removes what it has understood
// with the white space and parentheses behind it, or an LDIF_DnReader, which it advances over the same. A syntax
// failure is an LDIF_Exception (34), wrapped once by each class that it passes. A text that the locale cannot convert
// is refused as a whole before it is parsed (162).
//
// compare gives 0 for equals; its sign, and with it <, >, <= and >=, is that of the text for the parts of an RDN. For
// the pairs, RDNs and DNs the operators turn it round: a < b when a.compare(b) is positive.
#ifndef LDIF_RDN_H
#define LDIF_RDN_H

#include "LDIF_Util.h"
#include "cisString.h"

#include <ostream>
#include <utility>
#include <vector>

class LDIF_DnReader;

// The attribute name of an RDN as written: a letter, then letters, digits and "-"; or digits and dots.
class LDIF_RDN_attribute final : public cisString {
public:
    LDIF_RDN_attribute() = default;
    explicit LDIF_RDN_attribute(cisString& input);
    explicit LDIF_RDN_attribute(LDIF_DnReader& reader);

    const std::string& str() const noexcept { return *this; }
};

// The value of an RDN: its bytes without escapes, and the form in which it was written and prints again. White space
// and parentheses at the end of a plain value are dropped, escaped or not. A missing closing quote is accepted.
class LDIF_RDN_value final : public cisString {
public:
    enum Form { FORM_HEX = 0, FORM_QUOTED = 1, FORM_PLAIN = 2 };
    Form form = FORM_QUOTED;

    LDIF_RDN_value() = default;
    explicit LDIF_RDN_value(cisString& input);
    explicit LDIF_RDN_value(LDIF_DnReader& reader);

    // The written form. Throws LDIF_Exception (34) for an empty value.
    virtual std::string str() const { return textOf(*this); }
    void appendTo(std::string& out) const;

private:
    void read(LDIF_DnReader& reader);
    void readUntil(LDIF_DnReader& reader, const std::string& ends);
    void readEscape(LDIF_DnReader& reader);
    void appendQuotedTo(std::string& out) const;
    void appendPlainTo(std::string& out) const;
};

// One "attribute=value" of an RDN. Compares by attribute, then by value.
class LDIF_RDN_pair final : public std::pair<LDIF_RDN_attribute, LDIF_RDN_value> {
public:
    explicit LDIF_RDN_pair(cisString& input);
    explicit LDIF_RDN_pair(LDIF_DnReader& reader);

    virtual int compare(const LDIF_RDN_pair& other) const;
    // Throws LDIF_Exception (34) when the value is empty.
    virtual std::string str() const { return textOf(*this); }
    friend std::ostream& operator<<(std::ostream& out, const LDIF_RDN_pair& pair) { return out << pair.str(); }
    virtual bool operator==(const LDIF_RDN_pair& other) const { return compare(other) == 0; }
    virtual bool operator<(const LDIF_RDN_pair& other) const { return compare(other) > 0; }
    virtual bool operator>(const LDIF_RDN_pair& other) const { return compare(other) < 0; }
    virtual bool operator!=(const LDIF_RDN_pair& other) const { return compare(other) != 0; }
    virtual bool operator<=(const LDIF_RDN_pair& other) const { return compare(other) >= 0; }
    virtual bool operator>=(const LDIF_RDN_pair& other) const { return compare(other) <= 0; }

    void appendTo(std::string& out) const;

private:
    void read(LDIF_DnReader& reader);
};

// An RDN: its pairs in ascending order of compare, no two equal. A parsed RDN has at least one.
class LDIF_RDN final : public std::vector<LDIF_RDN_pair> {
public:
    explicit LDIF_RDN(cisString& input);
    explicit LDIF_RDN(LDIF_DnReader& reader);

    // Adds a pair in its place; one that is there already stays as it is.
    virtual LDIF_RDN& operator+=(const LDIF_RDN_pair& pair);
    // The pairs joined by " + ". Throws LDIF_Exception (34) when a value is empty.
    virtual std::string str() const { return textOf(*this); }
    friend std::ostream& operator<<(std::ostream& out, const LDIF_RDN& rdn) { return out << rdn.str(); }
    // Pair by pair; an RDN that is a leading part of other gives 1.
    virtual int compare(const LDIF_RDN& other) const;
    virtual bool operator==(const LDIF_RDN& other) const { return compare(other) == 0; }
    virtual bool operator<(const LDIF_RDN& other) const { return compare(other) > 0; }
    virtual bool operator>(const LDIF_RDN& other) const { return compare(other) < 0; }
    virtual bool operator!=(const LDIF_RDN& other) const { return compare(other) != 0; }
    virtual bool operator<=(const LDIF_RDN& other) const { return compare(other) >= 0; }
    virtual bool operator>=(const LDIF_RDN& other) const { return compare(other) <= 0; }

    void appendTo(std::string& out) const;
    // Goes on from seed; equal RDNs give the same number as long as the locale folds case the same.
    std::size_t hash(std::size_t seed) const noexcept;

private:
    void read(LDIF_DnReader& reader);
    void sort();
};

#endif
