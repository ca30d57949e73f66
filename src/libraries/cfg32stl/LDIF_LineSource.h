// The physical lines of the configuration file.
#ifndef LDIF_LINESOURCE_H
#define LDIF_LINESOURCE_H

#include <iosfwd>
#include <string>
#include <string_view>

// A physical line without its line end and without carriage returns, up to the first NUL, in narrow text that the
// locale can convert. The views live until the next line is read from the same source.
struct LDIF_PhysicalLine {
    std::string_view text;
    bool isPlain = true;  // ASCII in a locale that knows it: each byte is a character

    bool isBlank() const;
    bool isContinuation() const;  // begins with white space
    // The position of the first colon, or npos.
    std::size_t findColon() const;
};

// A source of physical lines that can take the last one back.
class LDIF_LineSource {
public:
    LDIF_LineSource(const LDIF_LineSource&) = delete;
    LDIF_LineSource& operator=(const LDIF_LineSource&) = delete;
    virtual ~LDIF_LineSource();

    // Whether there is something to read: false once a read has met the end.
    virtual bool good() const = 0;
    // Throws LDIF_Exception (162) for text that the locale cannot convert.
    virtual const LDIF_PhysicalLine& read() = 0;
    // Takes the last line back, so that it is read once more, unless it was what the end of the text left: nothing.
    virtual void unread() = 0;

protected:
    explicit LDIF_LineSource(bool holdsReturns) : mayHoldReturns(holdsReturns) {}
    // Makes a line of the bytes between two line ends, which the line borrows or, where they change, has stored.
    void set(LDIF_PhysicalLine& line, std::string_view bytes);

private:
    const bool mayHoldReturns;
    std::string stored;
};

// The lines of a text in memory, which it overwrites in the end, for it may hold clear passwords. A line that is taken
// back is not looked at again.
class LDIF_TextSource final : public LDIF_LineSource {
public:
    explicit LDIF_TextSource(std::string&& wholeText);
    LDIF_TextSource(const LDIF_TextSource&) = delete;
    LDIF_TextSource& operator=(const LDIF_TextSource&) = delete;
    ~LDIF_TextSource() override;
    bool good() const override { return !metEnd || pending; }
    const LDIF_PhysicalLine& read() override;
    void unread() override { pending = !leftNothing; }

    // In bytes, behind the last line that was read, also where that has been taken back.
    std::size_t position() const noexcept { return next; }
    // What stands from a position on, up to the last line that was read.
    std::string_view textFrom(std::size_t start) const noexcept
    {
        return std::string_view(text).substr(start, next - start);
    }
    // Reads on over that many bytes, up to the beginning of a line; gives the number of lines.
    int skip(std::size_t bytes) noexcept;
    // Gives the memory of what stands before a position back to the system, in large pieces.
    void forgetBefore(std::size_t end) noexcept;

private:
    std::string text;
    std::size_t next = 0;  // where the next line begins
    std::size_t forgotten = 0;
    LDIF_PhysicalLine line;
    bool metEnd = false;
    bool leftNothing = false;
    bool pending = false;
};

// The lines of a stream in binary mode that can be positioned.
class LDIF_StreamSource final : public LDIF_LineSource {
public:
    explicit LDIF_StreamSource(std::istream& stream) : LDIF_LineSource(true), in(stream) {}
    bool good() const override;
    const LDIF_PhysicalLine& read() override;
    void unread() override;

private:
    std::istream& in;
    std::streamoff start = 0;  // of the last line
    std::string bytes;
    LDIF_PhysicalLine line;
};

// Removes every carriage return.
void w_stripCarriageReturn(std::wstring& text);

#endif
