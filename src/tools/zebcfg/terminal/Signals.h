// What is removed and restored when a signal ends the process.
#ifndef ZEBCFG_SIGNALS_H
#define ZEBCFG_SIGNALS_H

#include "SignalMask.h"

#include <string>

// Lets the signals that end a process, on Windows the control events, remove the files named in between, at most four
// at a time, and directories that are empty without them. On POSIX a limit on the size of files is reported like a full
// disk, not by a signal.
void handleSignals();
void removeOnSignals(const std::string& path);
void keepOnSignals(const std::string& path);

// Holds those signals back as long as it lives.
class BlockedSignals {
public:
    BlockedSignals();
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals();

private:
    [[maybe_unused]] SignalMask before = {};
};

#endif
