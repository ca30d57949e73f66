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

private:
    const Descriptor file;
};

#endif
