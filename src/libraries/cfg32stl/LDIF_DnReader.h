// The text of a DN while the rules of its grammar take it from the front.
#ifndef LDIF_DNREADER_H
#define LDIF_DNREADER_H

#include <string>

// Wide text with a position. A position is an index into the text; a rule advances it over what it has understood.
class LDIF_DnReader {
public:
    // Throws LDIF_Exception (162) when the locale cannot convert the text.
    explicit LDIF_DnReader(const std::string& narrowText);

    const std::wstring& text() const noexcept { return wide; }
    std::size_t position() const noexcept { return current; }
    bool atEnd() const noexcept { return current == wide.size(); }
    // Whether the next unit is that character.
    bool isAt(char character) const noexcept;
    void advance(std::size_t units = 1) noexcept { current += units; }
    // Advances over white space and parentheses.
    void skipEdges() noexcept;
    // Advances over units of that character class, and gives the narrow text of them.
    std::string take(const std::string& characters);

    // The narrow text from a position on.
    std::string rest(std::size_t from) const;
    std::string rest() const { return rest(current); }

private:
    std::wstring wide;
    std::size_t current = 0;
};

#endif
