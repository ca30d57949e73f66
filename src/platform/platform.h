// The services of the library's home platform: Win32 and the Microsoft C runtime. On Windows this header takes the
// real ones; on POSIX it declares a small layer with the same names, results and error numbers, so that the code
// above reads the same everywhere.
#ifndef PLATFORM_H
#define PLATFORM_H

#include <cstddef>
#include <string>
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

// A number that tells apart locales which fold bytes outside ASCII differently.
std::size_t caseFolding() noexcept;

// Whether the ASCII characters are the same bytes in narrow text and the same units in wide text, in this locale.
bool localeHasAscii() noexcept;

// While one lives, the locale of the process stays as it is, and is asked for only once.
class LocaleHold {
public:
    LocaleHold() noexcept;
    LocaleHold(const LocaleHold&) = delete;
    LocaleHold& operator=(const LocaleHold&) = delete;
    ~LocaleHold();
};

// A region of memory that begins at a multiple of its size, a power of two; isLarge asks for large pages. Null when
// memory is exhausted.
void* allocateRegion(std::size_t size, bool isLarge) noexcept;
void releaseRegion(void* region, std::size_t size) noexcept;

// Lets the system take the memory of a region whose content is needed no more, once it is short of memory.
void offerRegion(void* region, std::size_t size) noexcept;

// Whether the build checks each block of memory, so that none may be handed out as a part of another.
#if defined(__SANITIZE_ADDRESS__) || defined(ZEBLDAPCFG_CHECK_MEMORY)
constexpr bool checksMemory = true;
#elif defined(__has_feature)
constexpr bool checksMemory = __has_feature(address_sanitizer);
#else
constexpr bool checksMemory = false;
#endif

// Overwrites a clear text that is about to be released; no compiler leaves it out.
void wipe(void* memory, std::size_t size) noexcept;

// Overwrites memory of the heap that is used no more, and gives its whole pages back to the system at once.
void discard(void* memory, std::size_t size) noexcept;

// Reads a whole file, byte for byte. False when it cannot be opened or read, or is no regular file; never waits.
bool readFile(const std::string& name, std::string& content);

// Creates a file or cuts it to length 0, and writes the text with the platform's line ends, all at once. A file that is
// created gets the mode of the one before and, where the process may set them, its owner and group; it is never more
// widely open, not for a moment. False when the file cannot be opened; a write that fails behind that is not reported.
bool writeFile(const std::string& name, const std::string& text, const FileStatus& before);

// Removes a file, and never a directory. A failure is not reported.
void removeFile(const std::string& name) noexcept;

// Whether the directory entry other is the file itself, or what the file's symbolic link leads to: removing other
// would remove the file's content. False when one of them is not there, true when it cannot be told.
bool isSameFile(const std::string& name, const std::string& other);

#endif
