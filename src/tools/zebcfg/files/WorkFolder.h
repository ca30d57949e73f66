// A folder for a text that the user works on.
#ifndef ZEBCFG_WORKFOLDER_H
#define ZEBCFG_WORKFOLDER_H

#include <string>

// A directory that only this user may enter, with one file in it; both are gone at the end, also when a signal ends
// the process. Calls throw Failure.
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

private:
    std::string directory;
    std::string path;
};

#endif
