// Open files, and what is read and written through them. Functions throw Failure.
#ifndef ZEBCFG_DESCRIPTOR_H
#define ZEBCFG_DESCRIPTOR_H

#include <string>
#include <string_view>

// Closes a file at the end.
class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : number(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();
    int get() const noexcept { return number; }
    void close() noexcept;
    void take(int descriptor) noexcept { number = descriptor; }  // for one that is closed
    bool isOpen() const noexcept { return number >= 0; }
    // A name under which this process can open the same file.
    std::string name() const;

private:
    int number;  // negative when it is closed
};

// Texts have lines that end with LF alone here, whatever ends a line in the files of the system.
//
// What is left to read, or the content of a regular file.
std::string readAll(int file, const std::string& shownName);
std::string readFile(const std::string& name, const std::string& shownName);
// Whether the content of the file is the text. On POSIX the file is not held in memory.
bool holdsText(const std::string& name, const std::string& text, const std::string& shownName);

void writeAll(int file, std::string_view text, const std::string& shownName);
// Replaces the content of a file in place. Only for private files.
void overwriteFile(const std::string& name, const std::string& text);

#endif
