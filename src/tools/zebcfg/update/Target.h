// The configuration file that a command works on, and how.
#ifndef ZEBCFG_TARGET_H
#define ZEBCFG_TARGET_H

#include "files/LiveFile.h"
#include "formats/Messages.h"
#include "library/Session.h"

#include <chrono>
#include <optional>
#include <string>

struct Target {
    std::string file;                       // as the user calls it
    Presence presence = Presence::isThere;  // of the file
    std::string backup;                     // where the old file goes; empty for nowhere
    int generations = 1;                    // of backups that are kept
    std::optional<Login> login;
    bool isDryRun = false;
    bool isForced = false;
    bool isState = false;          // a change of the form alone does not count, and JSON says whether there is one
    bool hasColor = false;         // for diffs on standard output
    std::chrono::seconds wait{0};  // for another update
    Messages messages;
};

#endif
