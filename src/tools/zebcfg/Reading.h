// The configuration for commands that change nothing: a copy in memory, so that nothing the library does can reach
// the file.
#ifndef ZEBCFG_READING_H
#define ZEBCFG_READING_H

#include "Call.h"
#include "LiveFile.h"
#include "PrivateFile.h"
#include "Session.h"

class Reading {
public:
    // Loads and logs in as the call says. Throws Failure.
    explicit Reading(const Call& call);

    const LiveFile& live() const noexcept { return file; }
    Session& session() noexcept { return opened; }

private:
    const LiveFile file;
    const MemoryFile copy;
    Session opened;
};

#endif
