// The configuration for commands that change nothing: a copy in memory, so that nothing the library does can reach
// the file.
#ifndef ZEBCFG_READING_H
#define ZEBCFG_READING_H

#include "files/LiveFile.h"
#include "files/MemoryFile.h"
#include "library/Session.h"
#include "update/Target.h"

class Reading {
public:
    // Loads and logs in. Throws Failure.
    explicit Reading(const Target& target);

    const LiveFile& live() const noexcept { return file; }
    Session& session() noexcept { return opened; }

private:
    const LiveFile file;
    const MemoryFile copy;
    Session opened;
};

// A copy in the library, while progress is shown. Throws Failure.
Session loadedCopy(const MemoryFile& copy, const std::string& shownName, const std::optional<Login>& login);

// Failure (16) for an attribute that an entry does not have, with a hint at a name that is near.
Failure missingAttribute(const std::string& name, const std::string& shownFile);

#endif
