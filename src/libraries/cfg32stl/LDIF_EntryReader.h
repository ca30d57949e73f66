// The fast way of reading a configuration file: entry by entry, as text.
#ifndef LDIF_ENTRYREADER_H
#define LDIF_ENTRYREADER_H

#include "LDIF_EntryText.h"
#include "LDIF_HashIndex.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

struct LDIF_Syntax;
struct _AttrType;

// Goes over the lines of an entry once, and tells whether they are exactly what the library would write for it, or
// would be but for order, spelling and spacing. It builds no values. Whatever it accepts, LDIF_Line, LDIF_Attribute and
// LDIF_Entry read and print with the same bytes; what it does not understand in full, it leaves to them: folded and
// broken lines, refused values, clear passwords, comments after the last attribute, odd names.
class LDIF_EntryReader {
public:
    enum Form {
        asWritten,   // the entry is a slice of what was read
        rearranged,  // the entry is a text of the reader's own
        unknown,     // not for this reader
    };

    LDIF_EntryReader() = default;
    LDIF_EntryReader(const LDIF_EntryReader&) = delete;
    LDIF_EntryReader& operator=(const LDIF_EntryReader&) = delete;
    ~LDIF_EntryReader() = default;

    // Reads the entry that a text begins with; the text borrows nothing from lines before it.
    Form read(std::string_view text);

    // What was read, until the next call. The entry borrows from the text that was read, or from the reader.
    const LDIF_EntryText& entry() const noexcept { return found; }
    std::size_t length() const noexcept { return consumed; }  // in bytes
    int lineCount() const noexcept { return lines; }          // physical lines

private:
    // A name of an attribute, with what is known of it. Most entries of a file have the same names in the same order.
    struct Name {
        std::string start;  // the name, colon and blank
        const _AttrType* type = nullptr;
        const LDIF_Syntax* syntax = nullptr;
        std::size_t rank = 0;    // names in ascending order have ascending ranks, and equal ones the same
        Name* likely = nullptr;  // one that sorts after this one, and came after it last

        std::string_view text() const noexcept { return std::string_view(start).substr(0, start.size() - 2); }
    };

    // A line of an attribute.
    struct Value {
        const Name* name;
        std::string_view text;     // in canonical form
        std::string_view comment;  // the lines before it
        bool isRepeated;           // equal to one before
    };
    using Values = std::vector<Value>;

    void begin(std::string_view text);
    bool readLines();
    bool takePhysicalLine(std::string_view& line);
    bool isReadable(std::string_view line);
    bool takeLogicalLine(std::string_view line);
    bool takeDn(std::string_view line);
    bool takeAttribute(std::string_view line);
    bool takeName(std::string_view line);
    Name& nameOf(std::string_view text);
    Name& makeName(std::string_view text, std::size_t hash);
    std::string_view valueAfter(std::string_view line, std::size_t colon) noexcept;
    bool canonicalise(const Name& name, std::string_view& value);
    bool canonicaliseNumber(const _AttrType& type, std::string_view& value);
    bool canonicaliseDn(std::string_view& text);
    std::string& nextMade();
    bool checkValues();
    bool markRepeated(Values::iterator first, Values::iterator last);
    void write();
    void writeComment(std::string_view text);

    // The entry as it is read.
    std::string_view whole;
    std::string_view rest;     // of whole
    std::string_view comment;  // the comment and blank lines that wait for what comes next
    std::string_view entryComment;
    std::string_view word;  // that opens the entry
    std::string_view dn;
    Values values;
    bool isExact = true;  // so far it stands as it would be written
    bool isLocaleBound = false;
    bool hasOddDn = false;        // one that is not simple
    bool hasForeignEnds = false;  // of lines
    bool hasRepeats = false;      // of a name
    bool hasWideSpace = false;    // beyond ASCII, in the line at hand

    LDIF_EntryText found;
    std::size_t consumed = 0;
    int lines = 0;

    Name front;  // stands before the first name of an entry
    Name* lastName = &front;
    std::deque<Name> names;
    LDIF_HashIndex namesByText;
    std::vector<Name*> sortedNames;
    std::deque<std::string> made;  // canonical forms, at first madeCount of them
    std::size_t madeCount = 0;
    std::string written;
};

#endif
