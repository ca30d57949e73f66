// The configuration file as it stands on disk.
#ifndef ZEBCFG_LIVEFILE_H
#define ZEBCFG_LIVEFILE_H

#include "files/FileSystem.h"

#include <string>

// What an update needs: a file, a file or none, or none.
enum class Presence { isThere, mayBeMissing, isMissing };

// Throws Failure (68) for a name that is in use.
void requireMissing(const std::string& name);

// The file as it was when it was read. Symbolic links are followed once, here.
class LiveFile {
public:
    // Throws Failure (91) for a file that is missing, no regular file, or cannot be read.
    // One that may be missing then is an empty text for this user alone; Failure (68) for one that must be, and is not.
    explicit LiveFile(const std::string& name, Presence presence = Presence::isThere);

    const std::string& shownName() const noexcept { return shown; }  // as the user calls it
    const std::string& path() const noexcept { return resolved; }
    const FileInfo& info() const noexcept { return read; }
    const std::string& text() const noexcept { return content; }

    bool isMissing() const noexcept { return isAbsent; }

    // Whether the name still stands for the file that was read, unchanged.
    bool isCurrent() const;
    // What keeps the file from being used, in words, or the empty text: a modification time of 0, or a text that is
    // empty or cut off beside a whole backup.
    std::string damage(const std::string& backupName) const;
    // Throws Failure (91) for a file that is damaged, or begins with a byte order mark.
    void requireUsable(const std::string& backupName) const;

private:
    std::string shown;
    std::string resolved;
    FileInfo read;
    std::string content;
    bool isAbsent = false;
};

#endif
