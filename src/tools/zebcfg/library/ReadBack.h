// What becomes of a configuration that is written and loaded again.
#ifndef ZEBCFG_READBACK_H
#define ZEBCFG_READBACK_H

#include "files/GuardedFile.h"
#include "files/MemoryFile.h"
#include "library/Session.h"

#include <cstddef>
#include <string>
#include <vector>

// A text that the library has written to a file, loaded again as every program will load it.
class ReadBack {
public:
    ReadBack(const std::string& text, const GuardedFile& written, const std::string& shownName);

    const Session& session() const noexcept { return opened; }
    // Whether all entries are those of the other session, as a comparison of those with an objectclass shows it.
    bool isPlainlySame(const Session& other) const;
    // The same without that comparison: wanted and found have all entries.
    bool isSame(const Session& other, const std::vector<Entry>& wanted, const std::vector<Entry>& found) const;

private:
    const MemoryFile copy;
    const Session opened;
    const std::size_t count;  // of the entries in the text
    const bool isStable;      // neither the way to the disk nor the load has changed the text
};

#endif
