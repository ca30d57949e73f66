// What the system does with files. A call that fails gives false, or a negative number, with the reason in errno.
#ifndef ZEBCFG_FILESYSTEM_H
#define ZEBCFG_FILESYSTEM_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include <system.h>

// Who may do what with a file.
using Protection = FileProtection;

enum class FileKind { regular, pipe, other };

// What is known of a file.
struct FileInfo {
    FileKind kind = FileKind::other;
    std::uint64_t device = 0;
    std::uint64_t index = 0;  // on its device
    std::uint64_t names = 1;  // that it has: hard links
    std::int64_t size = 0;    // in bytes
    std::int64_t time = 0;    // of its last change, in seconds since 1970
    long nanoseconds = 0;     // the rest of the time
    bool isFixed = false;     // it can be neither written nor replaced: the attribute that Windows has for that
    Protection protection;
};

inline bool isSameFile(const FileInfo& left, const FileInfo& right) noexcept
{
    return left.device == right.device && left.index == right.index;
}

// Of the file that symbolic links lead to, of what has the name itself, and of an open file.
bool readInfo(const std::string& name, FileInfo& info);
bool readOwnInfo(const std::string& name, FileInfo& info);
bool readInfo(int file, FileInfo& info);
// Of a regular file that is still to be made, for this user alone. Its time is not 0.
FileInfo infoOfNewFile();
bool isThere(const std::string& name);
bool isReadable(const std::string& name);
// Whether every user may read a file, and what keeps them out.
bool isPublic(const Protection& protection);
extern const char* const privacyAdvice;
// What sets the time of a file to now.
std::string touchCommand(const std::string& name);
// Where the registry has the install location.
extern const char* const installPlace;

// Opens a file for reading without a trace in its access time, where that is allowed. It never waits.
int openForReading(const std::string& name);
// Opens a file and cuts it to length 0.
int openForOverwriting(const std::string& name);
// Opens a file for writing. One that is missing is made, for this user alone.
int openOrCreate(const std::string& name);
// Makes a new file. On POSIX it has at most these permissions for its owner, and none for others; on Windows it is
// protected so from its first moment.
int createFile(const std::string& name, const Protection& like);
// Makes a new file for this user alone. The six X at the end of the pattern become a name that is free.
int createUnique(std::string& pattern);
// The number of bytes, which is 0 at the end of a file. A signal may interrupt them (EINTR).
std::ptrdiff_t readSome(int file, char* bytes, std::size_t size);
std::ptrdiff_t writeSome(int file, const char* bytes, std::size_t size);
bool cutToNothing(int file);  // the next write begins at 0
bool syncFile(int file);
bool setTime(int file, std::int64_t time);
void closeFile(int file) noexcept;

// A file that others are made like: its name, and what is known of it.
struct Model {
    const std::string& name;
    const FileInfo& info;
};
// Gives a file the owner, group, access list and mode of a model, and at no moment wider permissions.
bool takeOver(int file, const Model& model);
// The same for extended attributes. Gives the names of those that could not be copied.
std::vector<std::string> copyAttributes(int file, const std::string& source);

bool removeName(const std::string& name) noexcept;
// Takes the place of another file in one step.
bool moveOver(const std::string& name, const std::string& other) noexcept;
// Gives a file a second name, where the file system knows such.
bool addName(const std::string& name, const std::string& other) noexcept;

// The absolute name that symbolic links lead to; empty when there is nothing.
std::string realName(const std::string& name);
// What ends the name of a directory, the usual one first.
extern const char* const separators;
// Makes what happened in a directory last.
void syncDirectory(const std::string& directory) noexcept;

// "process 4711 of root"
std::string processName();
std::tm localTime(std::time_t time) noexcept;

#endif
