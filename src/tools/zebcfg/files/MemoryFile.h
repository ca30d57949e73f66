// A file without a place in a directory, which is gone with its last descriptor.
#ifndef ZEBCFG_MEMORYFILE_H
#define ZEBCFG_MEMORYFILE_H

#include "files/Descriptor.h"

#include <string>

class MemoryFile {
public:
    explicit MemoryFile(const std::string& text);
    // A name under which this process can open it.
    std::string name() const { return file.name(); }
    int descriptor() const noexcept { return file.get(); }
    // Throws when there is no room for as many bytes more.
    void requireRoomFor(std::size_t size) const;

private:
    const Descriptor file;
};

#endif
