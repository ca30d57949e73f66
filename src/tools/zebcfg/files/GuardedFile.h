// A file in memory that can be closed for writing, also for root.
#ifndef ZEBCFG_GUARDEDFILE_H
#define ZEBCFG_GUARDEDFILE_H

#include "files/MemoryFile.h"

#include <string>

// Calls throw Failure.
class GuardedFile {
public:
    explicit GuardedFile(const std::string& text);
    // A name under which this process can open it, always the same.
    std::string name() const;
    // Nobody can open it for writing then. The modification time stays.
    void refuseWrites();
    void allowWrites();
    // Throws when there is no room for as many bytes more.
    void requireRoomFor(std::size_t size) const { content.requireRoomFor(size); }

private:
    const MemoryFile content;
    Descriptor place;  // what refuses writes; on POSIX what the name stands for
};

#endif
