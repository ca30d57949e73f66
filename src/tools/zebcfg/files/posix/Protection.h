// Who may do what with a file.
#ifndef ZEBCFG_PROTECTION_H
#define ZEBCFG_PROTECTION_H

#include <sys/types.h>

struct Protection {
    mode_t mode = 0;  // the permissions
    uid_t owner = 0;
    gid_t group = 0;
};

#endif
