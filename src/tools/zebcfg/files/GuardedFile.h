// A file in memory that can be closed for writing, also for root. The library keeps a change in memory when it may not
// write the file, and its next write has it: many changes take one write so.
#ifndef ZEBCFG_GUARDEDFILE_H
#define ZEBCFG_GUARDEDFILE_H

#include "files/MemoryFile.h"

#include <string>

// Calls throw Failure.
class GuardedFile {
public:
    explicit GuardedFile(const std::string& text);
    // A name under which this process can open it.
    std::string name() const { return place.name(); }
    // The name stands for a pipe then, which the library neither writes nor reads, with the same modification time.
    void refuseWrites();
    void allowWrites();
    // Throws when there is no room for as many bytes more.
    void requireRoomFor(std::size_t size) const { content.requireRoomFor(size); }

private:
    const MemoryFile content;
    const Descriptor place;  // the content, or the pipe
};

#endif
