// The tree of entries.
#ifndef LDIF_ENTRY_H
#define LDIF_ENTRY_H

#include "LDIF_Attribute.h"
#include "LDIF_Comment.h"
#include "LDIF_DN.h"
#include "cisString.h"

#include <iosfwd>
#include <string>
#include <vector>

// A node of the tree. The root has no name and no DN, and holds the attributes before the first entry of the file. An
// entry hangs under the nearest entry whose DN is an ancestor of its own; levels that are not defined stay in its
// relativeDn. An entry owns its children by value, so a pointer to a child lives until the parent's children change.
//
// No two children of an entry are the same DN or one the ancestor of the other; the relativeDn values on the path from
// the root make up the dn.
class LDIF_Entry final {
public:
    cisString name;  // the word "dn" as written; empty for the root
    LDIF_DN dn;
    LDIF_DN relativeDn;  // what is left of dn below the parent
    LDIF_Comment comment;
    LDIF_Attributes attributes;
    std::vector<LDIF_Entry> children;  // in the order in which they came

    // The root.
    LDIF_Entry() = default;
    // The line is of type dn. Throws LDIF_Exception (34) for a value that is no DN, and (80) for another type of line.
    LDIF_Entry(const LDIF_Line& line, LDIF_Comment entryComment);
    // A new entry.
    explicit LDIF_Entry(LDIF_DN entryDn);

    // Places a copy of child in the subtree of this entry, and gives the entry that took it. An entry of the same DN
    // takes on comment, attributes and children; entries that belong below child are hung there. child.relativeDn, and
    // child.children with those entries, change on the way. Throws LDIF_Exception (80) for a child that does not
    // belong here.
    virtual LDIF_Entry& operator+=(LDIF_Entry& child);
    virtual LDIF_Entry& operator+=(const LDIF_Attribute& attribute);
    virtual LDIF_Entry& operator+=(const LDIF_Comment& lines);
    // The text of this entry without its children, with the blank line that closes it.
    virtual std::string str() const;
    // Makes it an empty root.
    virtual LDIF_Entry& clear();
    // The entry with that DN, taken relative to this entry's parent, or null.
    virtual LDIF_Entry* find(const LDIF_DN& wanted);

    // Like += but takes the child over instead of copying it.
    LDIF_Entry& place(LDIF_Entry&& child);
    void appendTo(std::string& out) const;
    // This entry and, in preorder, all below it.
    void appendTreeTo(std::string& out) const;

private:
    enum class Transfer { copy, move };

    LDIF_Entry& place(LDIF_Entry& child, Transfer transfer);
    LDIF_Entry& placeBelow(LDIF_Entry& child, Transfer transfer);
    LDIF_Entry& merge(LDIF_Entry& other, Transfer transfer);
    void adoptInto(LDIF_Entry& child);
    bool needsClosingLine() const;
};

// Writes the entry and, in preorder, all below it.
std::ostream& operator<<(std::ostream& stream, const LDIF_Entry& entry);

#endif
