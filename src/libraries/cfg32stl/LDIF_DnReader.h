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

// Text, taken character by character: bytes where each is an ASCII character, wide units elsewhere. A position counts
// these.
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
    bool atEnd() const noexcept { return current == size(); }
    // The next character; 0 at the end.
    wchar_t peek() const noexcept;
    // Whether the next character is that one.
    bool isAt(wchar_t character) const noexcept { return peek() == character; }
    // Advances over one character.
    void advance() noexcept { ++current; }
    // Advances over white space and parentheses.
    void skipEdges() noexcept;
    // Advances over characters of that set, or up to the first of that set, and gives them, until the next call.
    std::string_view take(const LDIF_CharacterSet& characters) { return takeWhile(characters, true); }
    std::string_view takeUntil(const LDIF_CharacterSet& characters) { return takeWhile(characters, false); }
    // Takes two hex digits. False, with nothing changed, when there are none.
    bool takeHexPair(char& byte) noexcept;

    // The narrow text from a position on.
    std::string rest(std::size_t from) const { return narrowed(from, size() - from); }
    std::string rest() const { return rest(current); }

private:
    std::size_t size() const noexcept { return plain ? narrow.size() : wide.size(); }
    std::string narrowed(std::size_t from, std::size_t length) const;
    std::string_view takeWhile(const LDIF_CharacterSet& characters, bool isMember);

    std::string_view narrow;  // the text, when it is plain
    std::wstring wide;        // the text, when it is not
    std::string taken;        // what was taken last from wide
    std::size_t current = 0;
    bool plain;
};

#endif
