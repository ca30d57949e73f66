// One load of the configuration file: its text to the tree of entries.
#ifndef LDIF_LOADER_H
#define LDIF_LOADER_H

#include "LDIF_Comment.h"
#include "LDIF_Entry.h"
#include "LDIF_Line.h"
#include "LDIF_LineSource.h"
#include "LDIF_Tree.h"

#include <map>
#include <optional>
#include <string>

class LDIF_EntryReader;

// Fills the tree and the comment of an LDIF_File, both of which it only borrows. Where an entry begins,
// LDIF_EntryReader has the first word; what that does not understand goes line by line. Comment and blank lines wait in
// the comment for the attribute or entry after them; those that no one takes stay there.
class LDIF_Loader {
public:
    // The tree has the text of the file, and no entries.
    LDIF_Loader(LDIF_Tree& emptyTree, LDIF_Comment& waitingLines);

    // Reads the whole text. What no entry keeps of it is overwritten, for it may hold clear passwords. Throws
    // LDIF_Exception: 65 for an attribute that may not stand where it does, 34 for a DN that is none, 162 for text that
    // the locale cannot convert. The tree then holds the entries before that line.
    void load();

    // Whether a line was changed to the quarantine attribute, so that the file should be written back.
    bool hasQuarantined() const noexcept { return quarantined; }
    // The last physical line read.
    int lineCount() const noexcept { return lastLine; }
    // The DN of the entry being read, or "<root>".
    std::string currentDn() const;

private:
    void finishQuietly() noexcept;
    void readText();
    bool readEntry(LDIF_EntryReader& reader);
    bool readLine(LDIF_Line& line);
    void take(LDIF_Line& line);
    void takeAttribute(LDIF_Line& line);
    void addAttribute(const LDIF_Line& line);
    void addToEntry(const LDIF_Line& line);
    void addToHead(const LDIF_Attribute& attribute);
    void addOnce(const LDIF_Attribute& attribute, const char* name, bool& seen);
    void openEntry(const LDIF_Line& line);
    void closeEntry();
    void addDefault(const char* name, const char* value, bool& seen);
    void quarantine(LDIF_Line& line);
    void forget() noexcept;

    LDIF_Tree& tree;
    LDIF_Entry& root;
    LDIF_Comment& waiting;
    LDIF_TextSource source;
    std::size_t done = 0;  // bytes of the text that an entry keeps or that have been overwritten
    std::optional<LDIF_Entry> current;
    // Those of the entry being read, which come in any order; they go to the entry when it is complete.
    std::map<cisString, LDIF_Attribute> attributes;
    int lastLine = 0;
    bool seenVersion = false;
    bool seenCharset = false;
    bool quarantined = false;
};

#endif
