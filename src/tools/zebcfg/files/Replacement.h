// The replacement of the live file by a new one.
#ifndef ZEBCFG_REPLACEMENT_H
#define ZEBCFG_REPLACEMENT_H

#include "files/FileLock.h"
#include "files/LiveFile.h"
#include "files/PrivateFile.h"

#include <string>

// Lock, private copy, and one rename. Without install() the old file stands, and
// nothing is left beside it.
class Replacement {
public:
    // backupName: where the old file goes, or empty. Throws Failure.
    Replacement(const std::string& name, std::string backupName);

    const LiveFile& live() const noexcept { return file; }
    // The private copy, which the library may work on. It lies in the directory of the file.
    PrivateFile& copy() noexcept { return working; }
    const PrivateFile& copy() const noexcept { return working; }
    // Puts the copy in the place of the file, which is kept under the backup name.
    void install();

private:
    void keepBackup();

    const FileLock lock;
    const LiveFile file;
    const std::string backup;
    PrivateFile working;
};

// Puts a copy of another file, with its owner and mode, where there is none. Throws Failure.
void createLike(const LiveFile& model, const std::string& name);

#endif
