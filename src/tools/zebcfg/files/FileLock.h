// Keeps other runs of the tool from updating the same file.
#ifndef ZEBCFG_FILELOCK_H
#define ZEBCFG_FILELOCK_H

#include <string>

// Held as long as it lives. The lock file is removed at the end.
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

#endif
