#include "cfg.h"

int cfg_add_s(CFG* cfg, const char* dn, LDAPMod** attrs)
{
    return updated(cfg, "System error in cfg_add_s()", [&](LDIF_File& file) { file.add(dnOf(dn), attrs); });
}
