// The command line as a Call, and the help.
#ifndef ZEBCFG_COMMANDLINE_H
#define ZEBCFG_COMMANDLINE_H

#include "cli/Call.h"

// Throws Failure for a line that is not understood; messages says how that is reported. A call without a command has
// written help or version itself.
Call readCommandLine(int argc, char** argv, Messages& messages);

#endif
