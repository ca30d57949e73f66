// The lines of LDIF, RFC 2849, and the records that they make up.
#ifndef ZEBCFG_LDIFLINES_H
#define ZEBCFG_LDIFLINES_H

#include <cstddef>
#include <string>
#include <string_view>

struct Failure;

// A name and its value, decoded and in the encoding of the locale; or "-" alone, which has neither.
struct LdifLine {
    bool isSeparator = false;
    std::string name;
    std::string value;
};

// Reads forwards only. Departures from RFC 2849: any record may begin with a version, carriage returns are dropped
// wherever they stand, and blanks may surround a name and follow a value in base64.
class LdifLines {
public:
    // shown is what messages call the text. Throws Failure for a text that begins with a byte order mark.
    LdifLines(std::string ldif, std::string shown);

    // Goes to the next record, the lines up to a blank one. False at the end. Throws Failure when it has a NUL byte.
    bool nextRecord();
    // The lines of the record that was gone to last, with comments and folds.
    std::string record() const { return text.substr(recordBegin, recordEnd - recordBegin); }

    // The next line of the record, unfolded. Comments are skipped. False after the last one. Throws Failure.
    bool next(LdifLine& line);
    // Where the line that was read last begins, counted from 1.
    int lineNumber() const { return number; }
    // A failure at that line.
    Failure failure(int code, const std::string& reason) const;

private:
    std::string_view nextFolded();
    LdifLine parse(std::string_view line) const;
    std::string decoded(std::string_view value) const;
    std::string inLocale(std::string utf8) const;

    std::string text;  // Each line has its end, and a blank line follows the last record.
    std::string shownName;
    std::size_t recordBegin = 0;
    std::size_t recordEnd = 0;
    std::size_t place = 0;  // of the next line
    int number = 0;
    int nextNumber = 1;  // of the line at place
};

#endif
