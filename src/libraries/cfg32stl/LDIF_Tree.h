// The tree of entries.
#ifndef LDIF_TREE_H
#define LDIF_TREE_H

#include "LDIF_DnKey.h"
#include "LDIF_Entry.h"
#include "LDIF_EntryText.h"
#include "LDIF_HashIndex.h"
#include "LDIF_LineDirectory.h"
#include "LDIF_TextStore.h"
#include "platform.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The entries of a file. An entry is the text that the library would write for it, and hangs below the nearest entry
// whose DN is an ancestor of its own; siblings stand in order of arrival. What text cannot carry (a line end in a
// value, an empty RDN value, odd names), what is large and has been changed, and the root are objects instead.
//
//     node 0  the root: an object with the attributes before the first entry
//     node 1  dn: o=b            -> text        children 2, 3
//     node 2  dn: cn=a, o=b      -> text
//     node 3  dn: cn=b, o=b      -> object
//
// Entries are named by their number, which stays until the entry is erased. Whatever fails, for want of memory say, the
// tree is in order: what a call changes, it changes whole or not at all, unless it says otherwise.
class LDIF_Tree {
public:
    using Number = std::uint32_t;
    static constexpr Number root = 0;
    static constexpr Number none = static_cast<Number>(-1);

    LDIF_Tree();
    // A tree that borrows from the text of a file, which it takes over.
    LDIF_Tree(TextBuffer&& file, std::size_t size);

    // --- Loading: entries in the order of the file, then finish ---

    // The text of the file. What no entry has taken may be overwritten.
    char* fileText() noexcept { return store.file(); }
    std::size_t fileSize() const noexcept { return store.fileSize(); }
    // Adds an entry with its text, which stands in the text of the file, or is copied from elsewhere. False, with
    // nothing changed, when there is one of its DN.
    bool load(const LDIF_EntryText& entry, bool isFileText);
    // Adds an entry, or its comment and attributes to the one that has its DN. text is what it was read from, in the
    // text of the file. Says whether the entry has kept that.
    bool load(LDIF_Entry&& entry, std::string_view text);
    // Hangs all entries where they belong. To be called once, and before anything below. When memory runs out, the tree
    // has no entries but the root.
    void finish();

    // --- Reading ---

    LDIF_Entry& rootEntry() noexcept { return rootObject; }
    // The entry of that DN, or none. The empty DN is the root.
    Number find(const LDIF_DN& dn);
    Number find(LDIF_DnKey& wanted) const { return find(wanted, wanted.levels()); }
    Number firstChild(Number entry) const noexcept { return nodes[entry].firstChild; }
    Number nextSibling(Number entry) const noexcept { return nodes[entry].next; }
    Number parent(Number entry) const noexcept { return nodes[entry].parent; }
    // The entry after this one in preorder, in the subtree of top; none at the end.
    Number nextBelow(Number entry, Number top) const noexcept;
    std::size_t levels(Number entry) const noexcept { return nodes[entry].levels; }

    // The entry as an object, or null where it is text.
    const LDIF_Entry* object(Number entry) const noexcept;
    // The text of an entry that is no object.
    LDIF_EntryText text(Number entry) const noexcept;
    // The lines of its attributes from the first of that name on; empty when it has none.
    std::string_view linesFrom(Number entry, std::string_view name) const noexcept;
    // A copy.
    LDIF_Entry entry(Number number) const;
    LDIF_DN dn(Number number) const;
    // The string form of its DN, or the empty text for one that cannot be printed.
    std::string dnText(Number number) const;

    // The text of the whole tree and the lines after it as a file holds it, in pieces that live until the tree or
    // buffer changes. Throws LDIF_Exception for an entry that cannot be printed.
    std::vector<std::string_view> pieces(const LDIF_Comment& after, std::string& buffer);

    // --- Changing ---

    // An entry as an object while it is changed; what it is then, it stays, also after a failure.
    class Opened {
    public:
        Opened(LDIF_Tree& owner, Number entry) : tree(owner), number(entry), object(tree.open(number)) {}
        Opened(const Opened&) = delete;
        Opened& operator=(const Opened&) = delete;
        ~Opened() { tree.close(number); }
        LDIF_Entry& operator*() const noexcept { return object; }
        LDIF_Entry* operator->() const noexcept { return &object; }

    private:
        LDIF_Tree& tree;
        const Number number;
        LDIF_Entry& object;
    };

    // Adds an entry, or merges it with the one that has its DN.
    void add(LDIF_Entry&& entry);
    // Removes an entry with all below it.
    void erase(Number entry) noexcept;

    // Takes note of another locale of the process. Entries whose text depends on the locale become the objects that
    // they were in the former one.
    void followLocale();

private:
    struct Node {
        const char* text = nullptr;  // null for an object
        std::uint32_t size = 0;
        std::uint32_t dnStart = 0;
        std::uint32_t dnSize = 0;
        Number parent = root;  // none during a load, where it may be yet to come
        Number firstChild = none;
        Number lastChild = none;
        Number next = none;
        Number previous = none;
        std::uint32_t tag = 0;  // of the hash of the DN
        std::uint32_t levels : 30;
        std::uint32_t isLocaleBound : 1;
    };

    struct Object {
        LDIF_Entry entry;
        std::string printed;  // its text in the file, or empty until that is asked for
    };

    template <typename Fill>
    Number append(Fill fill);
    Number appendNode();
    void vacate(Number entry) noexcept;
    LDIF_Entry& open(Number entry);
    void close(Number entry) noexcept;
    void takeBack(Number entry) noexcept;
    void place(Number entry);
    void setText(Number entry, const LDIF_EntryText& text, bool isFileText);
    bool becomeText(Number entry, std::string_view source, std::size_t longest);
    bool mergeWithPresent(LDIF_Entry& entry);
    void finishMerged();
    void dropEntries() noexcept;
    void compact() noexcept;

    // Whether an entry other than the root has been erased, or taken back when memory ran out in a load.
    bool isVacant(Number entry) const noexcept { return nodes[entry].levels == 0; }
    Number find(LDIF_DnKey& wanted, std::size_t level) const;
    bool isDn(Number entry, LDIF_DnKey& wanted, std::size_t level) const;
    void assignKey(Number entry, LDIF_DnKey& wanted) const;
    Number nearestAncestor(LDIF_DnKey& wanted) const;
    bool isMissing(std::size_t hash) const;
    void noteMissingLevels(std::size_t ancestorLevels);
    std::vector<Number> childrenBelow(Number ancestor, Number entry);
    void link(Number entry, Number above) noexcept;
    void unlink(Number entry) noexcept;
    void indexAnew();
    void followSome();
    Number openLocaleBound(Number first, std::vector<Number>& opened);
    std::vector<std::string_view> gatherPieces(const LDIF_Comment& after, std::string& buffer);
    const std::string& printedObject(Number entry);
    bool needsBlankLine() const noexcept;

    std::vector<Node> nodes;
    Number firstVacant = none;  // an erased entry, whose next is another one
    LDIF_Entry rootObject;
    std::unordered_map<Number, Object> objects;
    LDIF_TextStore store;
    LDIF_HashIndex byDn;  // the entries but the root
    // The hashes of DNs that no entry has, between an entry and its parent; perhaps more than there are.
    LDIF_HashIndex missingLevels;
    LDIF_DnKey key;  // of the entry at hand
    mutable LDIF_LineDirectory directory;
    // During a load: the attributes of the entries whose DN has come more than once.
    std::unordered_map<Number, std::map<cisString, LDIF_Attribute>> merged;
    std::unique_ptr<LocaleCopy> locale;  // in which the texts are read
    // On the way to another locale, which lack of memory may interrupt: those of entries before followed are in it.
    std::unique_ptr<LocaleCopy> nextLocale;
    Number followed = 1;
};

#endif
