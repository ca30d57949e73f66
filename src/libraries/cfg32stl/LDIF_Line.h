// One logical line of the configuration file.
#ifndef LDIF_LINE_H
#define LDIF_LINE_H

#include "LDIF_Exception.h"
#include "LDIF_Util.h"

#include <iosfwd>
#include <string>

class LDIF_TextSource;

// A line of the library's dialect of LDIF (RFC 2849): folded lines are joined, the name stands before the first colon,
// and the value is plain text. Departures from RFC 2849: no base64 and no URL form, comments are not folded, every
// carriage return is dropped, white space and parentheses around a value are dropped.
class LDIF_Line final {
public:
    enum Type { endOfFile = 0, blankLine = 1, comment = 2, dn = 3, attribute = 4 };

    std::string value;  // of a dn or attribute line; the whole text of a comment
    std::string name;   // of a dn or attribute line, as written; a line without a usable colon is all name
    Type type = endOfFile;
    int lineNumber = 0;      // of its first physical line, counted from 1
    bool wellFormed = true;  // false for a dn or attribute line without a usable colon

    // Reads the next logical line into this object. lastLine is the number of the last physical line read so far, 0 at
    // first; the result is that number after the call. At the end of the input the type is endOfFile. A stream is in
    // binary mode and can be positioned. Throws LDIF_Exception (162) for text that the locale cannot convert.
    int next(std::istream& in, int lastLine);
    int next(LDIF_TextSource& in, int lastLine);

    // The line as text, without a line end.
    virtual std::string str() const { return textOf(*this); }
    void appendTo(std::string& out) const;

    // Makes the line a value of the quarantine attribute zeb-slapdInvalidLine. type and wellFormed stay.
    void changeToInvalidAttr();

private:
    void clear() noexcept;
    void readName(const std::wstring& line, std::size_t colon);
};

// The failure (80) of an object that is made from a line of the wrong type.
LDIF_Exception illegalConstructor(const char* className, const LDIF_Line& line, SourcePos pos = SourcePos::here());

#endif
