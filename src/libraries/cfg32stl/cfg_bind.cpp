#include "cfg.h"

#include <memory>

namespace {

char* defaultConfigFile()
{
    const char* const name = getDefaultConfigFilename();
    if (name == nullptr)
        throw LDIF_Exception(LDAP_OTHER, CFG_ERR_UNEXPECTED,
                             "Unable to get default config filename. "
                             "Either out of memory or ldaphome not in registry");
    char* const copy = copyText(name);
    if (copy == nullptr)
        throw LDIF_Exception(CFG_NO_MEMORY, CFG_NO_MEMORY, "strdup()");
    return copy;
}

// A handle that is bound already gives up its old file only when all has gone well.
int bind(CFG& cfg, const char* dn, const char* password, int method)
{
    if (cfg.configFile == nullptr)
        cfg.configFile = defaultConfigFile();
    if (method != static_cast<int>(LDAP_AUTH_SIMPLE))
        throw LDIF_Exception(CFG_AUTH_UNKNOWN, CFG_AUTH_UNKNOWN, "Bind method must be one of { LDAP_AUTH_SIMPLE }");
    auto file = std::make_unique<LDIF_File>(cfg.configFile, cfg.backupFile != nullptr ? cfg.backupFile : "");
    if (file->setAuthentication(dn, password, method) == LDIF_File::noAccess)
        return LDAP_INVALID_CREDENTIALS;
    delete cfg.file;
    cfg.file = file.release();
    return LDAP_SUCCESS;
}

}  // namespace

int cfg_bind_s(CFG* cfg, const char* dn, const char* password, int method)
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    return framed(
        *cfg, "System error in cfg_bind_s()", [&] { return bind(*cfg, dn, password, method); }, SourcePos::here());
}
