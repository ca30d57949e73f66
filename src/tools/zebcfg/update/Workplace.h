// Where an update is made, and how it ends: installed, or only shown.
#ifndef ZEBCFG_WORKPLACE_H
#define ZEBCFG_WORKPLACE_H

#include "files/GuardedFile.h"
#include "files/LiveFile.h"
#include "files/Replacement.h"
#include "update/Target.h"

#include <memory>
#include <string>

class Workplace {
public:
    Workplace() = default;
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;
    virtual ~Workplace() = default;

    virtual const LiveFile& file() const = 0;
    // The copy to work on, in memory.
    virtual GuardedFile& copy() = 0;
    // What would be installed, as it is read from where it lies.
    virtual std::string result() = 0;
    // Installs the copy, or shows what it changes. A text that is the same as before leaves the file alone.
    virtual void finish() = 0;
};

// Beside the file; under --dry-run in memory. Throws Failure.
std::unique_ptr<Workplace> openWorkplace(const Target& target);

Handling handlingOf(const Target& target);

// Writes what changes to standard output. Throws Failure when it cannot be written.
void showDiff(const Target& target, const std::string& before, const std::string& after, const std::string& shownName);

#endif
