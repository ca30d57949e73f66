// The physical lines of the configuration file.
#ifndef LDIF_LINESOURCE_H
#define LDIF_LINESOURCE_H

#include <string>
#include <string_view>

// The lines of a text in memory, which it borrows. It can take the last one back.
class LDIF_TextSource {
public:
    explicit LDIF_TextSource(std::string_view wholeText) : text(wholeText) {}
    LDIF_TextSource(const LDIF_TextSource&) = delete;
    LDIF_TextSource& operator=(const LDIF_TextSource&) = delete;
    ~LDIF_TextSource();

    // Whether there is something to read: false once a read has met the end.
    bool good() const noexcept { return !metEnd || pending; }
    // The next line, up to its first NUL, without line end and carriage returns; it lives until the next call. Throws
    // LDIF_Exception (162) for text that the locale cannot convert.
    const std::wstring& read();
    // Takes the last line back, so that it is read once more, unless it was what the end of the text left: nothing.
    void unread() noexcept { pending = !leftNothing; }

    // Where the next line begins, in bytes.
    std::size_t position() const noexcept { return pending ? start : next; }
    std::string_view rest() const noexcept { return text.substr(position()); }
    // Moves on over whole lines of that many bytes.
    void skip(std::size_t bytes) noexcept;

private:
    std::string_view text;
    std::size_t start = 0;  // of the last line
    std::size_t next = 0;   // where the one after it begins
    std::wstring line;
    bool metEnd = false;
    bool leftNothing = false;
    bool pending = false;
};

// Removes every carriage return.
void w_stripCarriageReturn(std::wstring& text);

#endif
