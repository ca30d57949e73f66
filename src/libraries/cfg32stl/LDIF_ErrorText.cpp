#include "LDIF_ErrorText.h"

#include "platform.h"
#include "zebldapcfg.h"

namespace {

const struct Row {
    int code;
    const char* text;
} extendedCodes[] = {
    {CFG_ERR_UNEXPECTED, "Unexpected error in cfg32 API"},
    {CFG_ERR_CONFIG_FILENAME, "Configuration filename is not valid."},
    {CFG_ERR_CONFIG_FORMAT, "Configuration file format is not valid."},
    {CFG_ERR_CONFIG_NOT_FOUND, "Configuration file not found."},
    {CFG_ERR_CONFIG_OPEN, "Configuration file cannot be opened."},
    {CFG_ERR_VALUE, "Value is not valid."},
    {CFG_ERR_SINGLE_VALUED, "Attribute may not have multiple values."},
    {CFG_ERR_NOT_IN_CLASS, "Attribute is not a member of object class."},
    {CFG_ERR_NO_BINARY_FORM, "No binary representation is defined for attribute."},
    {CFG_ERR_NO_STRING_FORM, "No string representation is defined for attribute."},
    {CFG_ERR_MOD_OP, "Unknown operation in LDAPMod."},
    {CFG_ERR_DN_NO_ATTRIBUTE, "DN is not valid (missing attribute name)."},
    {CFG_ERR_DN_ATTRIBUTE, "Attribute name in DN is not valid."},
    {CFG_ERR_DN_NO_VALUE, "DN is not valid (missing attribute value)."},
    {CFG_ERR_DN_VALUE, "Attribute value in DN is not valid."},
    {CFG_ERR_INT_RANGE, "Integer value is not within allowable range."},
    {CFG_ERR_INT_SYNTAX, "Value is not a valid integer."},
    {CFG_ERR_ENUM, "Enumerated value is not one of allowable values."},
    {CFG_ERR_LENGTH, "Length of value is not within allowable range."},
    {CFG_ERR_BITMASK, "Bitfield value is not within allowable bitmask."},
    {CFG_ERR_OID, "Value is not a valid OID."},
    {CFG_ERR_DOMAIN, "Value is not a valid tcp/ip domain component."},
    {CFG_ERR_URL, "Value is not a valid URL."},
    {CFG_ERR_URL_PROTOCOL, "URL protocol is not one of allowable values."},
    {CFG_ERR_KRB_DN, "Value is not a valid kerberos DN."},
    {CFG_ERR_ENV, "Value is not a valid environment string."},
    {CFG_ERR_PATH, "Value is not a valid filesystem path."},
    {CFG_ERR_DIR_NOT_FOUND, "One or more directories in path not found."},
    {CFG_ERR_DIR_ACCESS, "Directory access denied."},
    {CFG_ERR_FILE_NAME, "Value is not a valid file name."},
    {CFG_ERR_FILE_NOT_FOUND, "File not found."},
    {CFG_ERR_FILE_ACCESS, "File access denied."},
    {CFG_ERR_PLUGIN, "Error in plugin directive."},
    {CFG_ERR_PLUGIN_NOT_FOUND, "Plugin library not found."},
    {CFG_ERR_PLUGIN_LOAD, "Plugin library could not be loaded."},
    {CFG_ERR_PLUGIN_INIT, "Could not load init function from plugin library."},
    {0, "Unknown error"},  // ends the table
};

}  // namespace

const char* errorText(int code) noexcept
{
    if (code < CFG_ERR_UNEXPECTED)
        return ldapErrorText(code);
    const Row* row = extendedCodes;
    while (row->code != code && row->code != 0)
        ++row;
    return row->text;
}
