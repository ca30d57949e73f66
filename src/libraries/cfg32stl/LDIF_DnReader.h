// The text of a DN while the rules of its grammar take it from the front.
#ifndef LDIF_DNREADER_H
#define LDIF_DNREADER_H

#include <string>

// Wide text, taken unit by unit.
class LDIF_DnReader {
public:
    // Throws LDIF_Exception (162) for text that the locale cannot convert.
    explicit LDIF_DnReader(const std::string& narrow);

    std::size_t position() const noexcept { return current; }
    bool atEnd() const noexcept { return current == text.size(); }
    // The next character; 0 at the end.
    wchar_t peek() const noexcept { return atEnd() ? L'\0' : text[current]; }
    // Whether the next character is that one, or one of a set of ASCII characters.
    bool isAt(wchar_t character) const noexcept { return peek() == character; }
    bool isAtOneOf(const std::string& characters) const noexcept;
    // Advances over one character.
    void advance() noexcept { ++current; }
    // Advances over white space and parentheses.
    void skipEdges() noexcept;
    // Advances over characters of that set, or up to the first of that set, and gives them.
    std::string take(const std::string& characters) { return takeWhile(characters, true); }
    std::string takeUntil(const std::string& characters) { return takeWhile(characters, false); }
    // Takes two hex digits. False, with nothing changed, when there are none.
    bool takeHexPair(char& byte) noexcept;

    // The narrow text from a position on.
    std::string rest(std::size_t from) const;
    std::string rest() const { return rest(current); }

private:
    std::string takeWhile(const std::string& characters, bool isMember);

    std::wstring text;
    std::size_t current = 0;
};

#endif
