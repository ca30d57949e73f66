// The replacement of the live file by a new one.
#ifndef ZEBCFG_REPLACEMENT_H
#define ZEBCFG_REPLACEMENT_H

#include "files/Backup.h"
#include "files/FileLock.h"
#include "files/LiveFile.h"
#include "files/PrivateFile.h"

#include <chrono>
#include <functional>
#include <string>

// What the user wants of it.
struct Handling {
    std::string backup;         // where the old file goes; empty for nowhere
    int generations;            // of backups that are kept
    std::chrono::seconds wait;  // for another holder of the lock
    Presence presence;          // of the file
    bool isForced;              // replaces a file that has other names
    std::function<void(const std::string& text)> note;
};

// Lock, private copy, and one rename. Without install() the old file stands, and nothing is left beside it.
class Replacement {
public:
    // Throws Failure.
    Replacement(const std::string& name, const Handling& wanted);

    const LiveFile& live() const noexcept { return file; }
    // The private copy, empty at first. It lies in the directory of the file.
    PrivateFile& copy() noexcept { return working; }
    // Puts the copy in the place of the file, which is kept under the backup name.
    void install();

private:
    const Handling handling;
    const FileLock lock;
    const LiveFile file;
    Backup backup;
    PrivateFile working;
};

// Whether an update of the file writes to that name or removes it.
bool isPartOfUpdate(const std::string& name, const std::string& file, const std::string& backup, int generations);

// Throws Failure for a file that is read-only, for one whose other names would keep the old text, unless that is
// forced, and for a backup name that is neither free nor that of another regular file.
void requireReplaceable(const LiveFile& file, const Handling& handling);

// Puts a copy of another file, with its owner and mode, where there is none. Throws Failure.
void createLike(const LiveFile& model, const std::string& name, const Handling& handling);

#endif
