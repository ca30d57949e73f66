// One entry.
#ifndef LDIF_ENTRY_H
#define LDIF_ENTRY_H

#include "LDIF_Attribute.h"
#include "LDIF_Comment.h"
#include "LDIF_DN.h"
#include "LDIF_Util.h"
#include "cisString.h"

#include <ostream>
#include <string>
#include <string_view>

// An entry with all that the file says of it. The root has no name and no DN, and holds the attributes before the first
// entry of the file. A plain value. Which entry lies below which is the business of LDIF_Tree.
//
//     # comment            comment
//     dn: cn=a, o=b        name, dn
//     cn: a                attributes, in ascending order of name
//
class LDIF_Entry final {
public:
    cisString name;  // the word "dn" as written; empty for the root
    LDIF_DN dn;
    LDIF_Comment comment;
    LDIF_Attributes attributes;

    // The root.
    LDIF_Entry() = default;
    // The line is of type dn. Throws LDIF_Exception (34) for a value that is no DN, and (80) for another type of line.
    LDIF_Entry(const LDIF_Line& line, LDIF_Comment entryComment);
    // A new entry.
    explicit LDIF_Entry(LDIF_DN entryDn);
    // Reads the text of one entry. Throws LDIF_Exception for a text that does not hold exactly that.
    explicit LDIF_Entry(std::string_view text);

    virtual LDIF_Entry& operator+=(const LDIF_Attribute& attribute);
    virtual LDIF_Entry& operator+=(const LDIF_Comment& lines);
    // The text of this entry, with the blank line that closes it; the root has none.
    virtual std::string str() const { return textOf(*this); }
    friend std::ostream& operator<<(std::ostream& out, const LDIF_Entry& entry) { return out << entry.str(); }
    // Makes it an empty root.
    virtual LDIF_Entry& clear();

    // Adds comment and attributes of an entry of the same DN. After a failure, those before the failing one stay.
    void merge(LDIF_Entry&& other);
    void appendTo(std::string& out) const;
    // Whether it has the same parts, byte by byte and in the same order.
    bool isSameAs(const LDIF_Entry& other) const;
};

#endif
