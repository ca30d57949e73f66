#include "cfg.h"

#include "LDIF_AttrType.h"
#include "LDIF_Value.h"

#include <cstdlib>

namespace {

// What an option stands for: a flag of the handle, one of the process, a name, or nothing.
struct Option {
    unsigned int flag;
    bool* processFlag;
    char** name;
};

Option optionOf(CFG& cfg, int option)
{
    switch (option) {
    case CFG_OPT_STORED_FLAG_0:
        return {flagStored0, nullptr, nullptr};
    case CFG_OPT_STORED_FLAG_1:
        return {flagStored1, nullptr, nullptr};
    case CFG_OPT_DELETE_NON_LEAVES:
        return {flagDeleteNonLeaves, nullptr, nullptr};
    case CFG_OPT_SHOW_SOURCE:
        return {0, &LDIF_Exception::showSource, nullptr};
    case CFG_OPT_SHOW_STACK:
        return {0, &LDIF_Exception::showStack, nullptr};
    case CFG_OPT_CONFIG_FILE:
        return {0, nullptr, &cfg.configFile};
    case CFG_OPT_BACKUP_FILE:
        return {0, nullptr, &cfg.backupFile};
    default:
        return {};
    }
}

// The name is checked as a value of an attribute that holds file names.
int setName(char*& field, const void* value) noexcept
{
    char* name = nullptr;
    if (value != nullptr) {
        try {
            static const _AttrType* const fileAttribute = getAttrType("zeb-slapdIncludeSchema");
            name = copyText(LDIF_Value(fileAttribute, static_cast<const char*>(value)).str().c_str());
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
    const auto [flag, processFlag, name] = optionOf(*cfg, option);
    if (flag != 0)
        *static_cast<int*>(out) = (cfg->flags & flag) != 0 ? 1 : 0;
    else if (processFlag != nullptr)
        *static_cast<int*>(out) = *processFlag ? 1 : 0;
    else if (name != nullptr)
        *static_cast<char**>(out) = *name != nullptr ? copyText(*name) : nullptr;
    return LDAP_SUCCESS;
}

int cfg_set_option(CFG* cfg, int option, const void* value)
{
    if (cfg == nullptr)
        return CFG_PARAM_ERROR;
    const auto [flag, processFlag, name] = optionOf(*cfg, option);
    if (name != nullptr)
        return setName(*name, value);
    if (processFlag != nullptr)
        *processFlag = value != nullptr;
    cfg->flags = value != nullptr ? cfg->flags | flag : cfg->flags & ~flag;
    return LDAP_SUCCESS;
}
