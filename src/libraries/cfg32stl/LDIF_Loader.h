// One load of the configuration file: its lines, one by one, to the tree of entries.
#ifndef LDIF_LOADER_H
#define LDIF_LOADER_H

#include "LDIF_Comment.h"
#include "LDIF_Entry.h"
#include "LDIF_FormerTree.h"
#include "LDIF_Line.h"
#include "LDIF_LineSource.h"
#include "LDIF_TreeBuilder.h"

#include <map>
#include <optional>
#include <string>

// Fills the tree and the comment of an LDIF_File, both of which it only borrows. Comment and blank lines wait in the
// comment for the attribute or entry behind them; those that no one takes stay there.
class LDIF_Loader {
public:
    LDIF_Loader(LDIF_Entry& treeRoot, LDIF_Comment& waitingLines)
        : root(treeRoot), waiting(waitingLines), tree(treeRoot)
    {}

    // Reads the whole text of a file, and takes over what it can from the tree of the text before. Throws
    // LDIF_Exception: 65 for an attribute that may not stand where it does, 34 for a DN that is none, 162 for text that
    // the locale cannot convert. The tree then holds the entries before that line.
    void load(std::string&& text, LDIF_FormerTree&& former = LDIF_FormerTree());

    // Whether a line was changed to the quarantine attribute, so that the file should be written back.
    bool hasQuarantined() const noexcept { return quarantined; }
    // The last physical line read.
    int lineCount() const noexcept { return lastLine; }
    // The DN of the entry being read, or "<root>".
    std::string currentDn() const;

private:
    void finishQuietly() noexcept;
    void readLines();
    bool readLine(LDIF_Line& line);
    void take(LDIF_Line& line);
    void takeBlankLine(const LDIF_Line& line);
    void takeAttribute(LDIF_Line& line);
    void addAttribute(const LDIF_Line& line);
    void addToEntry(const LDIF_Line& line);
    void takeInLate();
    void addToHead(const LDIF_Attribute& attribute);
    void addOnce(const LDIF_Attribute& attribute, const char* name, bool& seen);
    void openEntry(const LDIF_Line& line);
    void closeEntry();
    void noteText();
    void beginBlock();
    void addDefault(const char* name, const char* value, bool& seen);
    void quarantine(LDIF_Line& line);
    void dropTrailingBlankLines();

    static constexpr std::size_t undefined = static_cast<std::size_t>(-1);

    LDIF_Entry& root;
    LDIF_Comment& waiting;
    LDIF_TreeBuilder tree;
    LDIF_FormerTree former;
    std::optional<LDIF_TextSource> source;
    std::optional<LDIF_Entry> current;
    // Where the text of the current entry begins: right behind the blank line of an entry that left no lines to this
    // one. Without such an entry, and for an entry that is not all that its text says, undefined.
    std::size_t blockStart = undefined;
    // What sorts before others of a large entry: it waits for the end of the entry, so that it does not move them all.
    std::map<cisString, LDIF_Attribute> late;
    std::size_t attributeCount = 0;  // of the entry before: most entries of a file are alike
    int lastLine = 0;
    bool seenVersion = false;
    bool seenCharset = false;
    bool quarantined = false;
};

#endif
