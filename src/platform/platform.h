// The services of the library's home platform: Win32 and the Microsoft C runtime. On Windows this header takes the
// real ones; on POSIX it declares a small layer with the same names, results and error numbers, so that the code
// above reads the same everywhere.
#ifndef PLATFORM_H
#define PLATFORM_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

#ifdef _WIN32

#include <string.h>
#include <windows.h>

constexpr const char* pathSeparator = "\\";

using FileStatus = struct _stat;

#else

using LONG = int;
using DWORD = unsigned int;

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MORE_DATA = 234;

constexpr const char* pathSeparator = "/";

// The registry: a directory tree below registryRoot(), keys as folders, values as files whose content, less one final
// line feed, is the value. All three calls give ERROR_SUCCESS or an error number.
struct RegistryKey;
using HKEY = RegistryKey*;
constexpr RegistryKey* HKEY_LOCAL_MACHINE = nullptr;
constexpr DWORD KEY_READ = 0x20019;

// Opens a key below HKEY_LOCAL_MACHINE; its parts are separated by "\". *result is closed with RegCloseKey.
LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD options, DWORD access, HKEY* result);
// Copies a value and its closing NUL to data, when data is not null, and sets *size to their number of bytes.
// ERROR_MORE_DATA when *size says that they do not fit.
LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, unsigned char* data, DWORD* size);
LONG RegCloseKey(HKEY key);

// The directory that holds the registry; fixed when the library is built.
const char* registryRoot() noexcept;

// Puts a relative name behind the current directory and takes an absolute one as it is; resolves nothing. Gives the
// length, or the size that is needed when that is more than size, or 0 on failure, with the number in GetLastError.
DWORD GetFullPathNameA(const char* name, DWORD size, char* buffer, char** filePart);

// The number of the calling thread's last failure in this layer.
DWORD GetLastError() noexcept;

constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x100;
constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

// Only with both flags above: *reinterpret_cast<char**>(buffer) receives the text of an error number, to be released
// with LocalFree. Gives its length, or 0 for a number without a text.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD number, DWORD language, char* buffer, DWORD size,
                     void* arguments);
void* LocalFree(void* memory) noexcept;

// Compares without regard to case: each byte folded to lower case under the current locale, ASCII letters always as
// ASCII does, so that no locale changes an ASCII name.
int _stricmp(const char* left, const char* right) noexcept;
// A copy on the C heap, or null when memory is exhausted.
char* _strdup(const char* text) noexcept;

// The record that _stat fills in; st_mtime is in seconds.
using FileStatus = struct ::stat;
// 0, or -1 with the reason in errno.
int _stat(const char* name, FileStatus* status) noexcept;

#endif

// A byte folded to lower case as _stricmp folds it.
unsigned char foldCase(char character) noexcept;

// Compares like _stricmp, but texts that may hold NULs and are not terminated by one.
int compareFolded(std::string_view left, std::string_view right) noexcept;

// A number that tells apart locales which fold bytes outside ASCII differently.
std::size_t caseFolding() noexcept;

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
        void* former;
    };

private:
    std::string name;
    void* handle;
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

// Reads a whole file, byte for byte, as a secret, and gives the number of bytes in length. False when it cannot be
// opened or read, or is no regular file; never waits. Throws std::bad_alloc.
bool readFile(const std::string& name, TextBuffer& content, std::size_t& length);

// What ends a line of a text file here.
#ifdef _WIN32
constexpr std::string_view lineEnd = "\r\n";
#else
constexpr std::string_view lineEnd = "\n";
#endif

// Whether the status is that of a regular file.
bool isRegular(const FileStatus& status) noexcept;

// Creates a file or cuts it to length 0, and writes the pieces, byte for byte. A file that is created gets the mode of
// the one before and, where the process may set them, its owner and group; it is never more widely open, not even
// briefly. False when the file cannot be opened or is no regular file; a write that fails after that is not reported.
bool writeFile(const std::string& name, const std::vector<std::string_view>& pieces, const FileStatus& before);

// Removes a file, and never a directory. A failure is not reported.
void removeFile(const std::string& name) noexcept;

// Whether the directory entry other is the file itself, or what the file's symbolic link leads to: removing other
// would remove the file's content. False when one of them is not there, true when it cannot be told.
bool isSameFile(const std::string& name, const std::string& other);

#endif
