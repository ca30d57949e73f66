// Searches of the tree: filter, selection of attributes, and the walk.
#ifndef LDIF_SEARCH_H
#define LDIF_SEARCH_H

#include "LDIF_Entry.h"
#include "LDIF_Tree.h"
#include "cisString.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

// One test on one attribute: that the entry has it, or has it with a value. The text form is "name=value", "name=*" or
// "name", with or without parentheses around it; a value may hold the escapes \XX of RFC 4515. Nothing else of the
// filter language of RFC 4515 is known. Every text is a filter; one without a name tests for objectclass.
class LDIF_Filter final {
public:
    cisString attr = cisString("objectclass");
    std::string value;     // without escapes
    bool anyValue = true;  // the attribute is enough, value does not count

    LDIF_Filter() = default;
    // Throws LDIF_Exception (162) for text that the locale cannot convert.
    explicit LDIF_Filter(const std::string& text);
    LDIF_Filter(const LDIF_Filter& other) = default;
    LDIF_Filter(LDIF_Filter&& other) noexcept = default;
    LDIF_Filter& operator=(const LDIF_Filter& other) = default;
    LDIF_Filter& operator=(LDIF_Filter&& other) noexcept = default;
    ~LDIF_Filter();
    LDIF_Filter& operator=(const std::string& text);

    // Throws LDIF_Exception for a value that the attribute's syntax refuses.
    virtual bool match(const LDIF_Entry& entry) const;

private:
    void readValue(const std::string& text);
};

// The names of the attributes wanted; none means all.
class LDIF_AttrFilter : public std::set<cisString> {
public:
    bool selects(std::string_view name) const { return empty() || count(cisString(std::string(name))) != 0; }
};

// How far a search reaches from its base entry.
enum class LDIF_Scope { base = 0, oneLevel = 1, subtree = 2 };

// The entries that a search from base finds, in preorder. Throws LDIF_Exception for a value that an attribute's syntax
// refuses, with a link and entryDn for each entry on the way down.
std::vector<LDIF_Tree::Number> findMatches(const LDIF_Tree& tree, LDIF_Tree::Number base, LDIF_Scope scope,
                                           const LDIF_Filter& filter);

#endif
