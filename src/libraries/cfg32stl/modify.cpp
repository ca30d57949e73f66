#include "cfg.h"

int cfg_modify_s(CFG* cfg, const char* dn, LDAPMod** mods)
{
    return updated(cfg, "System error in cfg_modify_s()", [&](LDIF_File& file) { file.modify(dnOf(dn), mods); });
}
