// The text of a DN while the rules of its grammar take it from the front.
#ifndef LDIF_DNREADER_H
#define LDIF_DNREADER_H

#include <string>
#include <string_view>

// A set of ASCII characters.
class LDIF_CharacterSet {
public:
    explicit LDIF_CharacterSet(const std::string& characters);
    bool has(wchar_t unit) const noexcept { return unit > 0 && unit < size && members[unit]; }

private:
    static constexpr int size = 0x80;
    bool members[size] = {};
};

// Narrow text, taken character by character. A position counts bytes.
class LDIF_DnReader {
public:
    // Borrows the text. Throws LDIF_Exception (162) when the locale cannot convert it.
    explicit LDIF_DnReader(const std::string& text);
    LDIF_DnReader(const LDIF_DnReader&) = delete;
    LDIF_DnReader& operator=(const LDIF_DnReader&) = delete;
    ~LDIF_DnReader() = default;

    // Whether each byte is a character, in ASCII.
    bool isPlain() const noexcept { return plain; }
    std::size_t position() const noexcept { return current; }
    bool atEnd() const noexcept { return current == narrow.size(); }
    // The next character; 0 at the end.
    wchar_t peek() const noexcept { return plain ? plainUnit() : decode().unit; }
    // Whether the next character is that one.
    bool isAt(wchar_t character) const noexcept { return peek() == character; }
    // Advances over one character.
    void advance() noexcept { current += plain ? 1 : decode().length; }
    // Advances over white space and parentheses.
    void skipEdges() noexcept;
    // Advances over characters of that set, or up to the first of that set, and gives them.
    std::string_view take(const LDIF_CharacterSet& characters) noexcept { return takeWhile(characters, true); }
    std::string_view takeUntil(const LDIF_CharacterSet& characters) noexcept { return takeWhile(characters, false); }
    // Takes two hex digits. False, with nothing changed, when there are none.
    bool takeHexPair(char& byte) noexcept;

    // The text from a position on.
    std::string rest(std::size_t from) const { return std::string(narrow.substr(from)); }
    std::string rest() const { return rest(current); }

private:
    struct Character {
        wchar_t unit;
        std::size_t length;  // in bytes
    };

    wchar_t plainUnit() const noexcept { return atEnd() ? L'\0' : static_cast<wchar_t>(narrow[current]); }
    Character decode() const noexcept;
    std::string_view takeWhile(const LDIF_CharacterSet& characters, bool isMember) noexcept;

    std::string converted;    // the text as the locale gives it back, unless it is plain
    std::string_view narrow;  // all of the text
    std::size_t current = 0;
    bool plain;
};

#endif
