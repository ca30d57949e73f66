// Keeps other runs of the tool from updating the same file.
#ifndef ZEBCFG_FILELOCK_H
#define ZEBCFG_FILELOCK_H

#include "base/Failure.h"

#include <chrono>
#include <functional>
#include <string>

// Held as long as it lives. The lock file, FILE.lock, names its holder, and is removed at the end. One that a killed
// process has left is replaced; one that is not the tool's is never touched. On Windows it is open without sharing, but
// for reading, so that others learn who holds it: they can neither write nor remove it, nor open it as a holder does.
class FileLock {
public:
    // Waits for another holder, and then throws Failure (51). While isDue says no for the path, the lock is neither
    // taken nor kept. note is called when the wait becomes long.
    FileLock(const std::string& path, std::chrono::seconds wait, const std::function<bool(const std::string&)>& isDue,
             const std::function<void(const std::string&)>& note);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

private:
    bool tryLock();
    bool removeLeftover(const std::string& path);
    void release() noexcept;
    // What a lock file says of this process.
    static std::string content();
    // Takes the holder from the content of a lock. False for what is not the tool's.
    bool readHolder(const std::string& text);
    Failure foreign() const;  // for what is not the tool's under the name

    const std::string name;
    const std::string fresh;  // where a new one is made
    std::string holder;       // of the lock that was met last
    int file = -1;
};

#endif
