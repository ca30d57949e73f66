// The tree of entries.
#ifndef LDIF_ENTRY_H
#define LDIF_ENTRY_H

#include "LDIF_Aid.h"
#include "LDIF_Attribute.h"
#include "LDIF_Comment.h"
#include "LDIF_DN.h"
#include "LDIF_HashIndex.h"
#include "cisString.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
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
    // takes on comment, attributes and children; entries that belong below child are hung there. child.relativeDn
    // changes on the way. Throws LDIF_Exception (80) for a child that does not belong here.
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
    // Removes a child with its subtree. Children come and go through this class alone, which may have them indexed.
    void eraseChild(std::vector<LDIF_Entry>::iterator child);
    // Moves all but the children out of the entry. They stay where they are.
    LDIF_Entry takeContent();
    // The child whose relativeDn is at or above the RDNs of path from level on, or the end.
    std::vector<LDIF_Entry>::iterator findChild(const LDIF_DN& path, std::size_t level);

    void appendTo(std::string& out) const;
    // This entry and, in preorder, all below it.
    void appendTreeTo(std::string& out) const;

    // Where the text of an entry stands in the file's text as it was read or written last.
    struct FileText {
        std::size_t offset = 0;
        std::uint32_t length = 0;
        std::uint32_t version = 0;  // of the text written; 0 when the entry has changed since, or was never written
        std::uint64_t hash = 0;     // of the text that gives this entry when it is read; 0 when there is none
    };
    FileText& fileText() noexcept { return *inFile; }
    // To be called before the attributes are changed other than by an operator of this class.
    void forgetText() noexcept { *inFile = FileText(); }

private:
    enum class Transfer { copy, move };

    // Finds the children of a large family by hash.
    struct ChildIndex {
        LDIF_HashIndex positions;
        std::size_t deepest = 0;  // no relativeDn among the children has more RDNs
        std::size_t folding = 0;  // of the locale under which the hashes were made

        void add(const LDIF_Entry& child);
    };

    LDIF_Entry& place(LDIF_Entry& child, Transfer transfer);
    LDIF_Entry& placeBelow(LDIF_Entry& child, Transfer transfer);
    LDIF_Entry& merge(LDIF_Entry& other, Transfer transfer);
    void adoptInto(LDIF_Entry& child);
    template <typename StaysHere>
    void adoptOneByOne(LDIF_Entry& child, StaysHere staysHere);
    void indexLast() noexcept;
    bool needsClosingLine() const;
    ChildIndex* index();

    LDIF_Aid<std::unique_ptr<ChildIndex>> childIndex;
    LDIF_Aid<FileText> inFile;
};

// Writes the entry and, in preorder, all below it.
std::ostream& operator<<(std::ostream& stream, const LDIF_Entry& entry);

#endif
