// Commands whose changes come as LDIF.
#ifndef ZEBCFG_LDIFINPUT_H
#define ZEBCFG_LDIFINPUT_H

#include "Call.h"
#include "Ldif.h"

// Applies the records of the file of --file, or of standard input, as one update. A record without a changetype is
// taken for type. With --continue those that fail are told and left out, and --skipped keeps them in a file. Gives the
// exit status; throws Failure.
int applyLdif(const Call& call, LdifRecord::Type type);

#endif
