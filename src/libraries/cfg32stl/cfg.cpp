// The handle: cfg_init, cfg_reset, cfg_unbind, and the frame of the calls.
#include "cfg.h"

#include "LDIF_Util.h"

#include <clocale>
#include <cstdlib>
#include <new>

CFG* cfg_init(void)
{
    CFG* const cfg = static_cast<CFG*>(std::calloc(1, sizeof(CFG)));
    if (cfg == nullptr)
        return nullptr;
    (void)std::setlocale(LC_ALL, "");  // An unknown locale leaves the old one.
    cfg->flags = flagStored0;
    LDIF_Exception::showSource = false;
    LDIF_Exception::showStack = true;
    return cfg;
}

int cfg_reset(CFG* cfg)
{
    if (cfg == nullptr)
        return CFG_PARAM_ERROR;
    cfg->lastError = LDAP_SUCCESS;
    std::free(cfg->dumpText);
    cfg->dumpText = nullptr;
    std::free(cfg->treeText);
    cfg->treeText = nullptr;
    delete cfg->exception;
    cfg->exception = nullptr;
    return LDAP_SUCCESS;
}

int cfg_unbind(CFG* cfg)
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    std::free(cfg->configFile);
    std::free(cfg->backupFile);
    delete cfg->file;
    *cfg = CFG();
    std::free(cfg);
    return LDAP_SUCCESS;
}

int keepFailure(CFG& cfg, const char* systemError, SourcePos pos) noexcept
{
    cfg.lastError = LDAP_OTHER;
    try {
        LDIF_Exception failure = takeCurrent(systemError, pos);
        cfg.lastError = failure.ldapErr;
        cfg.exception = new (std::nothrow) LDIF_Exception(std::move(failure));
    } catch (...) {
        cfg.exception = nullptr;  // no memory for the text of a system error
    }
    return cfg.lastError;
}

int failureCode() noexcept
{
    try {
        return takeCurrent("").ldapErr;
    } catch (...) {
        return LDAP_OTHER;
    }
}

LDIF_DN dnOf(const char* text)
{
    return LDIF_DN(cisString(requireText(text)));
}
