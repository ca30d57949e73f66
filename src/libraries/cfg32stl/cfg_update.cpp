// The updates.
#include "cfg.h"

namespace {

// Takes in what has changed on disk, changes the tree, and writes the file.
template <typename Change>
int updated(CFG* cfg, const char* systemError, Change change, SourcePos pos = SourcePos::here()) noexcept
{
    const auto run = [&](LDIF_File& file) {
        file.refresh();
        change(file);
        file.flush();
    };
    return guarded(cfg, systemError, run, pos);
}

}  // namespace

int cfg_add_s(CFG* cfg, const char* dn, LDAPMod** attrs)
{
    return updated(cfg, "System error in cfg_add_s()", [&](LDIF_File& file) { file.add(dnOf(dn), attrs); });
}

int cfg_modify_s(CFG* cfg, const char* dn, LDAPMod** mods)
{
    return updated(cfg, "System error in cfg_modify_s()", [&](LDIF_File& file) { file.modify(dnOf(dn), mods); });
}

int cfg_delete_s(CFG* cfg, const char* dn)
{
    return updated(cfg, "System error in cfg_delete_s()",
                   [&](LDIF_File& file) { file.erase(dnOf(dn), (cfg->flags & flagDeleteNonLeaves) != 0); });
}

int cfg_flush_s(CFG* cfg)
{
    return updated(cfg, "System error in cfg_flush_s()", [](LDIF_File&) {});
}
