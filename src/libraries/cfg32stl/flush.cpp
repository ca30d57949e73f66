#include "cfg.h"

int cfg_flush_s(CFG* cfg)
{
    return updated(cfg, "System error in cfg_flush_s()", [](LDIF_File&) {});
}
