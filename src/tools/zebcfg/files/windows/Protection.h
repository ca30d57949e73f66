// Who may do what with a file.
#ifndef ZEBCFG_PROTECTION_H
#define ZEBCFG_PROTECTION_H

#include <system.h>

using Protection = FileProtection;

#endif
