#include "cfg.h"

int cfg_delete_s(CFG* cfg, const char* dn)
{
    return updated(cfg, "System error in cfg_delete_s()", [&](LDIF_File& file) {
        int deleteNonLeaves = 0;
        cfg_get_option(cfg, CFG_OPT_DELETE_NON_LEAVES, &deleteNonLeaves);
        file.erase(dnOf(dn), deleteNonLeaves != 0);
    });
}
