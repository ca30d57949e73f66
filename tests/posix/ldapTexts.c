/* The texts of the LDAP library, for a build where that is not to be had. */
#include <ldap.h>

static const struct {
    int code;
    const char* text;
} rows[] = {
#include "../data/ldap-texts.inc"
};

char* ldap_err2string(int code)
{
    unsigned row;
    for (row = 0; row < sizeof rows / sizeof rows[0]; ++row)
        if (rows[row].code == code)
            return (char*)rows[row].text;
    return (char*)"Unknown error";
}
