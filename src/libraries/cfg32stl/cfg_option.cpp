#include "cfg.h"

#include "LDIF_AttrType.h"
#include "LDIF_Value.h"

#include <cstdlib>

namespace {

void getFlag(bool flag, void* out)
{
    *static_cast<int*>(out) = flag ? 1 : 0;
}

void getName(const char* name, void* out)
{
    *static_cast<char**>(out) = name != nullptr ? _strdup(name) : nullptr;
}

void setFlag(unsigned int& flags, unsigned int flag, const void* value)
{
    flags = value != nullptr ? flags | flag : flags & ~flag;
}

// The name is checked as a value of an attribute that holds file names.
int setName(char*& field, const void* value) noexcept
{
    char* name = nullptr;
    if (value != nullptr) {
        try {
            static const _AttrType* const fileAttribute = getAttrType("zeb-slapdIncludeSchema");
            name = _strdup(LDIF_Value(fileAttribute, static_cast<const char*>(value)).str().c_str());
        } catch (...) {
            return failureCode();
        }
        if (name == nullptr)
            return CFG_NO_MEMORY;
    }
    std::free(field);
    field = name;
    return LDAP_SUCCESS;
}

}  // namespace

int cfg_get_option(CFG* cfg, int option, void* out)
{
    if (cfg == nullptr || out == nullptr)
        return CFG_PARAM_ERROR;
    switch (option) {
    case CFG_OPT_STORED_FLAG_0:
        getFlag((cfg->flags & flagStored0) != 0, out);
        break;
    case CFG_OPT_STORED_FLAG_1:
        getFlag((cfg->flags & flagStored1) != 0, out);
        break;
    case CFG_OPT_SHOW_SOURCE:
        getFlag(LDIF_Exception::showSource, out);
        break;
    case CFG_OPT_SHOW_STACK:
        getFlag(LDIF_Exception::showStack, out);
        break;
    case CFG_OPT_DELETE_NON_LEAVES:
        getFlag((cfg->flags & flagDeleteNonLeaves) != 0, out);
        break;
    case CFG_OPT_CONFIG_FILE:
        getName(cfg->configFile, out);
        break;
    case CFG_OPT_BACKUP_FILE:
        getName(cfg->backupFile, out);
        break;
    default:
        break;
    }
    return LDAP_SUCCESS;
}

int cfg_set_option(CFG* cfg, int option, const void* value)
{
    if (cfg == nullptr)
        return CFG_PARAM_ERROR;
    switch (option) {
    case CFG_OPT_STORED_FLAG_0:
        setFlag(cfg->flags, flagStored0, value);
        break;
    case CFG_OPT_STORED_FLAG_1:
        setFlag(cfg->flags, flagStored1, value);
        break;
    case CFG_OPT_SHOW_SOURCE:
        LDIF_Exception::showSource = value != nullptr;
        break;
    case CFG_OPT_SHOW_STACK:
        LDIF_Exception::showStack = value != nullptr;
        break;
    case CFG_OPT_DELETE_NON_LEAVES:
        setFlag(cfg->flags, flagDeleteNonLeaves, value);
        break;
    case CFG_OPT_CONFIG_FILE:
        return setName(cfg->configFile, value);
    case CFG_OPT_BACKUP_FILE:
        return setName(cfg->backupFile, value);
    default:
        break;
    }
    return LDAP_SUCCESS;
}
