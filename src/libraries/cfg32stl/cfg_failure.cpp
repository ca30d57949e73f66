// The codes, and the accessors of the last failure.
#include "cfg.h"

#include "LDIF_AttrType.h"
#include "LDIF_ErrorText.h"
#include "LDIF_Util.h"

namespace {

const LDIF_Exception* failureOf(const CFG* cfg)
{
    return cfg != nullptr ? cfg->exception : nullptr;
}

// The attribute type concerned, or the type that has no limits.
const _AttrType& limitsOf(const CFG* cfg)
{
    static const _AttrType noLimits = {};
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr && failure->attrType != nullptr ? *failure->attrType : noLimits;
}

}  // namespace

const char* cfg_err2string(int code)
{
    return errorText(code);
}

void cfg_perror(CFG* /*cfg*/, const char* /*text*/) {}

int cfg_get_errno(CFG* cfg)
{
    return cfg != nullptr ? cfg->lastError : CFG_PARAM_ERROR;
}

int cfg_get_exterror(CFG* cfg)
{
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr && failure->extErr != 0 ? failure->extErr : cfg_get_errno(cfg);
}

const char* cfg_dump_exception(CFG* cfg)
{
    if (cfg == nullptr)
        return nullptr;
    if (cfg->dumpText == nullptr && cfg->exception != nullptr)
        cfg->dumpText = copyOfText([&] { return cfg->exception->dump(); });
    return cfg->dumpText;
}

const char* cfg_get_file_name(CFG* cfg)
{
    if (cfg == nullptr)
        return nullptr;
    if (cfg->exception != nullptr && !cfg->exception->configFile.empty())
        return cfg->exception->configFile.c_str();
    if (isBound(*cfg))
        return cfg->file->getFileName();
    return cfg->configFile != nullptr ? cfg->configFile : getDefaultConfigFilename();
}

int cfg_get_file_line(CFG* cfg)
{
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr ? failure->configLine : 0;
}

const char* cfg_get_entry(CFG* cfg)
{
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr ? failure->entryDn.c_str() : nullptr;
}

const char* cfg_get_attribute(CFG* cfg)
{
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr && !failure->attribute.empty() ? failure->attribute.c_str() : limitsOf(cfg).name;
}

const char* cfg_get_value(CFG* cfg)
{
    const LDIF_Exception* const failure = failureOf(cfg);
    return failure != nullptr ? failure->value.c_str() : nullptr;
}

const char* const* cfg_get_enum(CFG* cfg)
{
    return limitsOf(cfg).enumValues;
}

unsigned int cfg_get_bitmask(CFG* cfg)
{
    return limitsOf(cfg).bitmask;
}

int cfg_get_minimum(CFG* cfg)
{
    return limitsOf(cfg).minimum;
}

int cfg_get_maximum(CFG* cfg)
{
    return limitsOf(cfg).maximum;
}

int cfg_get_is_single(CFG* cfg)
{
    return limitsOf(cfg).isSingle ? 1 : 0;
}
