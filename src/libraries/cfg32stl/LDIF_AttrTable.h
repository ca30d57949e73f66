// The table of attribute types: the configuration schema of the server, compiled in.
#ifndef LDIF_ATTRTABLE_H
#define LDIF_ATTRTABLE_H

#include "LDIF_AttrType.h"

// The named types in any order, then the default type, whose name is null. Sorted where it lies, at the first look-up.
extern _AttrType _attrMapArray[];

#endif
