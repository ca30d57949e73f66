// Files of the tool's own: a named one beside the configuration file, which is to take its place, and one in memory.
#ifndef ZEBCFG_PRIVATEFILE_H
#define ZEBCFG_PRIVATEFILE_H

#include <string>

#include <sys/stat.h>

// Closes a file at the end.
class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : number(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();
    int get() const noexcept { return number; }
    void close() noexcept;
    bool isOpen() const noexcept { return number >= 0; }

private:
    int number;  // negative when it is closed
};

// A file that others are made like: its name, and its status.
struct Model {
    const std::string& name;
    const struct stat& status;
};

// A new file that is removed at the end unless it has been moved, also when a signal ends the process. It has owner,
// group, access list and mode of a model and at no moment wider permissions. Calls throw Failure.
class PrivateFile {
public:
    // What an earlier process has left under that name is removed: the caller holds a lock.
    PrivateFile(const std::string& fileName, const Model& model);
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;
    ~PrivateFile();

    // A name under which this process can open it: the library takes none that is longer than 260 bytes.
    std::string openName() const;
    // Replaces the content.
    void write(const std::string& text);
    // Throws when there is no room for as many bytes more.
    void requireRoomFor(std::size_t size);
    void sync();
    // Programs notice a change by the modification time in whole seconds: it is made later than the other one.
    void makeLaterThan(const struct stat& other);
    // Puts the file in the place of another in one step. Nothing else is possible then.
    void moveTo(const std::string& target);

private:
    const std::string path;
    Descriptor file;
    bool isMoved = false;
};

// A file without a place in a directory, which is gone with its last descriptor.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text);
    // A name under which this process can open it.
    std::string name() const;

private:
    const Descriptor file;
};

// Opens a file for reading without a trace in its access time, where that is allowed; negative with the reason in
// errno.
int openForReading(const std::string& name) noexcept;
// What is left to read, or the content of a regular file. They throw Failure.
std::string readAll(int file, const std::string& shownName);
std::string readFile(const std::string& name, const std::string& shownName);
// Replaces the content of a file in place. Only for private files. Throws Failure.
void overwriteFile(const std::string& name, const std::string& text);
// Makes what happened in the directory of a file last.
void syncDirectoryOf(const std::string& name);
std::string directoryOf(const std::string& name);  // with its slash; empty for a plain name
// A name in the same directory for what is to take the place of name.
std::string siblingOf(const std::string& name);

#endif
