// A folder for a text that the user works on.
#ifndef ZEBCFG_WORKFOLDER_H
#define ZEBCFG_WORKFOLDER_H

#include <string>
#include <vector>

// A directory that only this user may enter, with the text in one file, in memory where there is such a place. It is
// removed at the end, also when a signal ends the process. One that a killed process has left is removed when the next
// is made, once it is certain that nobody uses it. Calls throw Failure.
class WorkFolder {
public:
    // name: of the file, without a directory.
    explicit WorkFolder(const std::string& name);
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder();

    const std::string& file() const noexcept { return path; }
    void write(const std::string& text);
    std::string read() const;

    // The directories where a text can be kept, with their separators.
    static std::vector<std::string> otherPlaces();

private:
    std::string directory;
    std::string path;
    int lock = -1;  // on the directory; an editor that outlives the process holds it too
};

// Writes the text to a new file beside another one, or else where there is room for it, where it stays. Only this user
// may read it. Gives its name.
std::string keepText(const std::string& text, const std::string& beside);

#endif
