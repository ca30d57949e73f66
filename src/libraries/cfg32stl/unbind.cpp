#include "cfg.h"

#include <cstdlib>

namespace {

int release(const CFG& cfg) noexcept
{
    try {
        std::free(cfg.configFile);
        std::free(cfg.backupFile);
        delete cfg.file;
        return LDAP_SUCCESS;
    } catch (...) {
        return LDAP_OPERATIONS_ERROR;
    }
}

}  // namespace

int cfg_unbind(CFG* cfg)
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    const int result = release(*cfg);
    *cfg = CFG();
    std::free(cfg);
    return result;
}
