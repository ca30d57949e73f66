// The configuration file as it stands on disk: what reading commands look at, and what updating ones replace.
#ifndef ZEBCFG_LIVEFILE_H
#define ZEBCFG_LIVEFILE_H

#include "PrivateFile.h"

#include <optional>
#include <string>

#include <sys/stat.h>

// The file as it was when it was read. Symbolic links are followed once, here.
class LiveFile {
public:
    // Throws Failure (91) for a file that is missing, no regular file, or cannot be read.
    explicit LiveFile(const std::string& name);

    const std::string& shownName() const noexcept { return shown; }  // as the user calls it
    const std::string& path() const noexcept { return resolved; }
    const struct stat& status() const noexcept { return read; }
    const std::string& text() const noexcept { return content; }

    // Whether the name still stands for the file that was read, unchanged.
    bool isCurrent() const;
    // What keeps the file from being used, in words, or the empty text: a modification time of 0, or a text that is
    // empty or cut off beside a whole backup.
    std::string damage(const std::string& backupName) const;
    // Throws Failure (91) for a file that is damaged.
    void requireUsable(const std::string& backupName) const;

private:
    std::string shown;
    std::string resolved;
    struct stat read = {};
    std::string content;
};

// Keeps other runs of the tool from updating the same file. The lock file is removed at the end.
class FileLock {
public:
    // Waits for another holder, up to a minute, and then throws Failure (51).
    explicit FileLock(const std::string& path);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

private:
    bool tryLock();

    const std::string name;
    int file = -1;
};

// One replacement of the live file: lock, private copy, and one rename. Without install() the old file stands, and
// nothing is left beside it.
class Replacement {
public:
    // backupName: where the old file goes, or empty. Throws Failure.
    Replacement(const std::string& name, std::string backupName);

    const LiveFile& live() const noexcept { return file; }
    // The private copy, which the library may work on. It lies in the directory of the file.
    PrivateFile& copy() noexcept { return working; }
    // Puts the copy in the place of the file, which is kept under the backup name.
    void install();

private:
    void keepBackup();

    const FileLock lock;
    const LiveFile file;
    const std::string backup;
    PrivateFile working;
};

// The name behind symbolic links, also for a file that is missing.
std::string resolvedName(const std::string& name);

#endif
