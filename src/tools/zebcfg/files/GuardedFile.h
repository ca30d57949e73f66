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
    std::string name() const { return place.name(); }
    // The name stands for a socket then, which nobody can open, with the modification time of the file.
    void refuseWrites();
    void allowWrites();
    // Throws when there is no room for as many bytes more.
    void requireRoomFor(std::size_t size) const { content.requireRoomFor(size); }

private:
    const MemoryFile content;
    const Descriptor place;  // the content, or a socket
};

#endif
