// Changes that come as LDIF.
#ifndef ZEBCFG_LDIFINPUT_H
#define ZEBCFG_LDIFINPUT_H

#include "formats/LdifRecord.h"
#include "update/Target.h"

#include <string>
#include <vector>

struct Failure;

// Where the records come from, and how they are taken.
struct LdifInput {
    std::string file = "-";                   // "-" for standard input
    LdifRecord::Type type = LdifRecord::add;  // of a record without a changetype
    bool needsParent = true;                  // an entry to add
    bool goesOn = false;                      // records that fail are reported and left out
    std::string skippedFile;                  // where those go; empty for nowhere
};

// Applies the records as one update. Gives the exit status: that of the first record left out. Throws Failure.
int applyLdif(const Target& target, const LdifInput& input);

// Where in records of an input what could not be read back comes from: the last record about the entry, and in it the
// last line of the attribute with that value.
void addRecordPlace(Failure& failure, const std::vector<LdifRecord>& records, const std::string& shownName);

#endif
