// The services of the system: its files, its registry, its locales, its memory and its texts. What is the same
// everywhere is in common/; what differs is in posix/ or windows/, and the code above knows nothing of it.
#ifndef PLATFORM_H
#define PLATFORM_H

#include "system.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The registry. On POSIX it is a directory tree below one that is fixed when the library is built, keys as folders,
// values as files whose content, less one final line feed, is the value.
//
// Copies a value of a key below HKEY_LOCAL_MACHINE to a buffer of that many bytes, with a closing NUL. The parts of a
// key are separated by "\". False when the value cannot be had or does not fit.
bool readRegistry(const char* key, const char* value, char* buffer, std::size_t size) noexcept;

// The error number for a name that is too long; error numbers are those of Windows.
constexpr int nameTooLong = 206;

// Puts a name behind the current directory, unless it is absolute, into a buffer of that many bytes. On POSIX nothing
// is resolved. Gives 0 or an error number.
int fullPathName(const char* name, char* buffer, std::size_t size);

// The system's text for an error number; empty when it has none.
std::string systemErrorText(int number);

// The text of an LDAP result code below 1000, from the system's LDAP library. Static.
const char* ldapErrorText(int code) noexcept;

// A copy on the C heap, or null when memory is exhausted.
char* copyText(const char* text) noexcept;

// A byte folded to lower case under the current locale, ASCII letters always as ASCII does, so that no locale changes
// an ASCII name.
unsigned char foldCase(char character) noexcept;

// Compare without regard to case, byte by byte, folded. The second takes texts that may hold NULs and are not
// terminated by one.
int compareFoldedText(const char* left, const char* right) noexcept;
int compareFolded(std::string_view left, std::string_view right) noexcept;

// A number that tells apart locales which fold bytes outside ASCII differently.
std::size_t caseFolding() noexcept;

// Convert a text, up to its first NUL, between narrow and wide. False when the locale cannot.
bool toWide(const std::string& text, std::wstring& wide);
bool toNarrow(const std::wstring& text, std::string& narrow);

// Whether the ASCII characters are the same bytes in narrow text and the same units in wide text, in this locale.
bool localeHasAscii() noexcept;

// Whether the locale converts a text to wide characters and back to the same bytes, and each character beyond ASCII
// takes bytes beyond ASCII alone: then the text can be taken apart at its ASCII characters where it stands. The text
// has no NUL. Sets hasSpace when a character beyond ASCII is white space.
bool isTransparent(std::string_view text, bool& hasSpace) noexcept;

// A hash of the text, and of seed, which may be that of a text before it. With foldedHash texts that compare equal
// without regard to case, up to the first NUL, stay equal as long as the locale folds case the same. Each process has
// hashes of its own.
std::size_t exactHash(std::size_t seed, std::string_view text) noexcept;
std::size_t foldedHash(std::size_t seed, std::string_view text) noexcept;

// While one lives, the locale of the process stays as it is, and is asked for only once.
class LocaleHold {
public:
    LocaleHold() noexcept;
    LocaleHold(const LocaleHold&) = delete;
    LocaleHold& operator=(const LocaleHold&) = delete;
    ~LocaleHold();
};

// The locale of the process as it was when this was made. While a Use of it lives, the calling thread converts,
// classifies and folds text in it.
class LocaleCopy {
public:
    // Throws std::bad_alloc.
    LocaleCopy();
    ~LocaleCopy();
    LocaleCopy(const LocaleCopy&) = delete;
    LocaleCopy& operator=(const LocaleCopy&) = delete;

    // Whether the process is in this locale, by its name.
    bool isPresent() const noexcept;

    class Use {
    public:
        explicit Use(const LocaleCopy& locale) noexcept;
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

    private:
        SystemLocale former;
    };

private:
    std::string name;
    SystemLocale system;
};

// Overwrites a clear text that is about to be released; no compiler leaves it out.
void wipe(void* memory, std::size_t size) noexcept;

// Memory for the whole text of a file, which the system gives in large pages where it can, and takes back at once. The
// bytes are not set to anything. While it may hold secrets, it is overwritten before it goes.
class TextBuffer {
public:
    TextBuffer() = default;
    // Throws std::bad_alloc.
    explicit TextBuffer(std::size_t size);
    TextBuffer(TextBuffer&& other) noexcept { *this = std::move(other); }
    TextBuffer& operator=(TextBuffer&& other) noexcept;
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;
    ~TextBuffer();

    char* data() const noexcept { return bytes; }
    std::size_t size() const noexcept { return length; }
    void setSecret(bool mayHoldSecrets) noexcept { isSecret = mayHoldSecrets; }

private:
    char* bytes = nullptr;
    std::size_t length = 0;
    bool isSecret = false;
};

// What is known of a file.
struct FileStatus {
    std::int64_t time = 0;  // of its last change, in seconds since 1970
    bool isRegular = false;
    FileProtection protection;
};

// Gives 0, or the errno of a file that cannot be reached; then the status stays as it was.
int readFileStatus(const std::string& name, FileStatus& status);

// Reads a whole file, byte for byte, as a secret, and gives the number of bytes in length. False when it cannot be
// opened or read, or is no regular file; never waits. Throws std::bad_alloc.
bool readFile(const std::string& name, TextBuffer& content, std::size_t& length);

// Creates a file or cuts it to length 0, and writes the pieces, byte for byte. A file that is created gets the
// protection of the one before, as far as the process may give it; it is never more widely open, not even briefly.
// False when the file cannot be opened or is no regular file; a write that fails after that is not reported.
bool writeFile(const std::string& name, const std::vector<std::string_view>& pieces, const FileProtection& before);

// Gives a file another name, which no file has. False when it cannot.
bool renameFile(const std::string& name, const std::string& other);

// Removes a file, and never a directory. A failure is not reported.
void removeFile(const std::string& name);

// Whether the directory entry other is the file itself, or what the file's symbolic link leads to: removing other
// would remove the file's content. False when one of them is not there, true when it cannot be told.
bool isSameFile(const std::string& name, const std::string& other);

#endif
