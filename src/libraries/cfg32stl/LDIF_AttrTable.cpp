// The table of attribute types.
#include "LDIF_AttrType.h"

#include "LDIF_Syntax.h"

namespace {

constexpr bool single = true;
constexpr bool multiple = false;
constexpr int longestPath = 260;
constexpr int highestNumber = 2147483647;

const char* const enumBoolean[] = {"true", "false", nullptr};
const char* const enumPwEncryption[] = {"none", "imask", "crypt", "sha", nullptr};
const char* const enumSchemaCheck[] = {"none", "V2", "V3", "V3_lenient", nullptr};
const char* const enumSecurity[] = {"none", "SSL", "SSLOnly", "TLS", "SSLTLS", nullptr};
const char* const enumSslAuth[] = {"ServerAuth", "ServerClientAuth", nullptr};
const char* const enumSysLogLevel[] = {"l", "m", "h", nullptr};
const char* const enumDerefAliases[] = {"never", "find", "search", "always", nullptr};
const char* const enumETStatCond[] = {"S", "T", "SOT", "SAT", nullptr};
const char* const urlLdap[] = {"ldap", "ldaps", nullptr};
const char* const oidACI[] = {"1.3.77.0.2.26.1", "1.3.77.0.2.26.2", nullptr};

constexpr _AttrType type(const LDIF_Syntax& family, const char* name, int minimum, int maximum, bool isSingle)
{
    return {name, family.compare, family.fromStr, family.fromBin, family.toStr, family.toBin, nullptr,
            0,    minimum,        maximum,        isSingle};
}

constexpr _AttrType enumType(const LDIF_Syntax& family, const char* name, const char* const* words, bool isSingle)
{
    _AttrType row = type(family, name, 0, 0, isSingle);
    row.enumValues = words;
    return row;
}

constexpr _AttrType maskType(const char* name, unsigned int bits, bool isSingle)
{
    _AttrType row = type(syntax::mask, name, 0, 0, isSingle);
    row.bitmask = bits;
    return row;
}

}  // namespace

_AttrType _attrMapArray[] = {
    // Texts: minimum and maximum length in bytes, 0 means no limit.
    type(syntax::ces, "charset", 0, 0, single),
    type(syntax::ces, "zeb-slapdSslCertificate", 0, 0, single),
    type(syntax::ces, "zeb-slapdServerID", 0, 1024, single),
    type(syntax::ces, "zeb-slapdDbInstance", 1, 8, single),
    type(syntax::ces, "zeb-slapdDbName", 1, 8, single),
    type(syntax::ces, "zeb-slapdDbUserID", 1, 8, single),
    type(syntax::cis, "objectclass", 0, 0, multiple),
    type(syntax::cis, "zeb-slapdCachedAttribute", 0, 0, multiple),
    type(syntax::cis, "cn", 0, 0, single),
    type(syntax::cis, "zeb-slapdDigestAdminUser", 0, 0, single),
    type(syntax::cis, "zeb-slapdSslCipherSpec", 0, 0, single),
    type(syntax::cis, "zeb-slapdSupportedWebAdmVersion", 0, 0, single),
    type(syntax::cis, "zeb-slapdTraceMessageLevel", 0, 0, single),
    type(syntax::cis, "zeb-slapdVersion", 0, 0, single),
    type(syntax::dc, "zeb-slapdIpAddress", 0, 0, single),
    type(syntax::dc, "zeb-slapdKrbRealm", 0, 0, single),
    type(syntax::dc, "zeb-slapdLdapCrlHost", 0, 0, single),
    type(syntax::env, "zeb-slapdSetenv", 0, 0, multiple),
    type(syntax::file, "zeb-slapdIncludeSchema", 1, longestPath, multiple),
    type(syntax::file, "zeb-slapdSchemaAdditions", 1, longestPath, single),
    type(syntax::krbdn, "zeb-slapdKrbAdminDN", 0, 0, single),
    type(syntax::path, "zeb-slapdKrbKeyTab", 0, longestPath, single),
    type(syntax::path, "zeb-slapdSslKeyDatabase", 0, longestPath, single),
    type(syntax::path, "zeb-slapdBulkloadErrors", 1, longestPath, single),
    type(syntax::path, "zeb-slapdCLIErrors", 1, longestPath, single),
    type(syntax::path, "zeb-slapdErrorLog", 1, longestPath, single),
    type(syntax::path, "zeb-slapdTraceMessageLog", 1, longestPath, single),
    type(syntax::plugin, "zeb-slapdPlugin", 0, 0, multiple),
    type(syntax::pw, "zeb-slapdAdminPW", 1, 46, single),
    type(syntax::pw, "zeb-slapdDbUserPW", 1, 46, single),
    type(syntax::pw, "zeb-slapdLdapCrlPassword", 1, 46, single),
    type(syntax::pw, "zeb-slapdMasterPW", 1, 46, single),
    type(syntax::pw, "zeb-slapdPeerPW", 1, 46, single),
    type(syntax::pw, "zeb-slapdSslKeyDatabasePW", 1, 46, single),

    // Distinguished names: no limit is read.
    type(syntax::dn, "zeb-slapdAdminDN", 0, 0, single),
    type(syntax::dn, "zeb-slapdLdapCrlUser", 0, 0, single),
    type(syntax::dn, "zeb-slapdMasterDN", 0, 0, single),
    type(syntax::dn, "zeb-slapdPeerDN", 0, 0, single),
    type(syntax::dn, "zeb-slapdReplicaSubtree", 0, 0, single),
    type(syntax::dn, "zeb-slapdSuffix", 1, 0, multiple),

    // Numbers: least and greatest.
    type(syntax::integer, "version", 1, 1, single),
    type(syntax::integer, "zeb-auditVersion", 1, 65535, single),
    type(syntax::integer, "zeb-slapdLdapCrlPort", 1, 65535, single),
    type(syntax::integer, "zeb-slapdPort", 1, 65535, single),
    type(syntax::integer, "zeb-slapdSecurePort", 1, 65535, single),
    type(syntax::integer, "zeb-slapdACLCacheSize", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdAllReapingThreshold", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdAnonReapingThreshold", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdAuthIntegration", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdBoundReapingThreshold", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdCachedAttributeSize", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdChangeLogMaxAge", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdChangeLogMaxEntries", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdDbConnections", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdEntryCacheSize", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdESizeThreshold", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdETimeThreshold", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdFilterCacheBypassLimit", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdFilterCacheSize", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdIdleTimeOut", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxEventsPerConnection", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxEventsTotal", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxNumOfTransactions", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxOpPerTransaction", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxPendingChangesDisplayed", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdMaxTimeLimitOfTransactions", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdPagedResLmt", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdQL3CP", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdReplDBConns", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdSizeLimit", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdSortKeyLimit", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdTimeLimit", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdWorkers", 0, highestNumber, single),
    type(syntax::integer, "zeb-slapdWriteTimeout", 0, highestNumber, single),

    // One of a list of words.
    enumType(syntax::enumerated, "zeb-slapdPwEncryption", enumPwEncryption, single),
    enumType(syntax::enumerated, "zeb-slapdSchemaCheck", enumSchemaCheck, single),
    enumType(syntax::enumerated, "zeb-slapdSecurity", enumSecurity, single),
    enumType(syntax::enumerated, "zeb-slapdSslAuth", enumSslAuth, single),
    enumType(syntax::enumerated, "zeb-slapdSysLogLevel", enumSysLogLevel, single),
    enumType(syntax::enumerated, "zeb-slapdDerefAliases", enumDerefAliases, single),
    enumType(syntax::enumerated, "zeb-slapdEThreadActivate", enumETStatCond, single),
    enumType(syntax::enumerated, "zeb-audit", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditAdd", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditAttributesOnGroupEvalOp", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditBind", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditCompare", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditDelete", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditExtOp", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditExtOpEvent", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditFailedOpOnly", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditGroupOnGroupControl", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditModify", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditModifyDN", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditSearch", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-auditUnBind", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdACLCache", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdAdminGroupEnabled", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdAllowAnon", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdConcurrentRW", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdEnableEventNotification", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdEThreadEnable", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdKrbEnable", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdKrbIdentityMap", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdLogMessages", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdPagedResAllowNonAdmin", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdReadOnly", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdSortSrchAllowNonAdmin", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdSslFIPSModeEnabled", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdStartupTraceEnabled", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdTransactionEnable", enumBoolean, single),
    enumType(syntax::enumerated, "zeb-slapdUseProcessIdPw", enumBoolean, single),

    // Texts with a list that is shown in reports and not enforced.
    enumType(syntax::oid, "zeb-slapdSupportedACIMechanisms", oidACI, single),
    enumType(syntax::url, "zeb-slapdReferral", urlLdap, multiple),
    enumType(syntax::url, "zeb-slapdMasterReferral", urlLdap, single),

    // A set of bits.
    maskType("zeb-slapdSslCipherSpecs", 0x3F00, single),

    // The default type closes the table: any text, any number of values.
    type(syntax::ces, nullptr, 0, 0, multiple),
};
