// The login against the entry that holds the administrator's name and password.
#include "LDIF_Exception.h"
#include "LDIF_File.h"
#include "LDIF_Util.h"

namespace {

constexpr char configurationDn[] = "cn=Configuration";
constexpr char adminDn[] = "zeb-slapdAdminDN";
constexpr char adminPassword[] = "zeb-slapdAdminPW";
constexpr int noAuthentication = 0;
constexpr int simpleAuthentication = LDAP_AUTH_SIMPLE;

bool isGiven(const char* text)
{
    return text != nullptr && *text != '\0';
}

// Whether the first value of an attribute equals the text under the attribute's syntax.
bool matchesFirstValue(const LDIF_Entry& entry, const char* name, const char* text)
{
    const LDIF_Attribute* const attribute = entry.attributes.find(cisString(name));
    if (attribute == entry.attributes.data() + entry.attributes.size() || attribute->values.empty())
        return false;
    std::string wanted = text;
    const Wiper wiper(wanted);
    return attribute->values.front() == wanted;
}

}  // namespace

LDIF_File::Authentication LDIF_File::setAuthentication(const char* dn, const char* password, int method)
{
    if (method == noAuthentication)
        return authentication = anonymous;
    if (method == simpleAuthentication && dn == nullptr && password == nullptr)
        return authentication = anonymous;
    if (method != simpleAuthentication || !isGiven(dn) || !isGiven(password))
        return authentication = noAccess;
    try {
        return authentication = checkLogin(dn, password);
    } catch (...) {
        wrapAndThrow("System error in LDIF_File::setAuthentication()", [&](LDIF_Exception& failure) {
            if (failure.nested != nullptr && failure.entryDn.empty())
                failure.entryDn = configurationDn;
            failure.configFile = fileName;
        });
    }
}

LDIF_File::Authentication LDIF_File::checkLogin(const char* dn, const char* password)
{
    const auto found = findEntries(LDIF_DN(cisString(configurationDn)), LDIF_Scope::base, LDIF_Filter());
    if (found.empty())
        return noAccess;
    const LDIF_Entry account = tree.entry(found.front());
    const bool matches = matchesFirstValue(account, adminDn, dn) && matchesFirstValue(account, adminPassword, password);
    return matches ? administrator : noAccess;
}
