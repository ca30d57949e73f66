// A file of the tool's own beside another, whose place it is to take.
#ifndef ZEBCFG_PRIVATEFILE_H
#define ZEBCFG_PRIVATEFILE_H

#include "files/Descriptor.h"
#include "files/FileSystem.h"

#include <string>
#include <vector>

// A new file that is removed at the end unless it has been moved, also when a signal ends the process. It has owner,
// group, access list, extended attributes and mode of a model and at no moment wider permissions. Calls throw Failure.
class PrivateFile {
public:
    // What an earlier process has left under that name is removed: the caller holds a lock.
    PrivateFile(const std::string& fileName, const Model& model);
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;
    ~PrivateFile();

    // Replaces the content.
    void write(const std::string& text);
    // The content, as it is read from the file; not after it has been moved.
    std::string text() const;
    void sync();
    // Programs notice a change by the modification time in whole seconds: it is made later than the other one, unless
    // that is more than a second ahead of the clock, and then is another one all the same.
    void makeLaterThan(const FileInfo& other);
    // Puts the file in the place of another in one step. Nothing else is possible then.
    void moveTo(const std::string& target);
    // The names of the model's extended attributes that this user may not set.
    const std::vector<std::string>& lostAttributes() const noexcept { return lost; }

private:
    const std::string path;
    Descriptor file;
    bool isMoved = false;
    std::vector<std::string> lost;
};

#endif
