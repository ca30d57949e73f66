/*
 * zebldapcfg.h - the configuration file of an LDAP directory server as a small local directory.
 *
 * The server keeps its configuration in one text file, a dialect of LDIF (RFC 2849). A caller makes a handle, binds
 * it to the file, searches and updates entries with calls that mirror the synchronous calls of an LDAP client
 * (RFC 1823), and releases the handle:
 *
 *     CFG *cfg = cfg_init();
 *     cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, "zebslapd.conf");
 *     if (cfg_bind_s(cfg, NULL, NULL, LDAP_AUTH_SIMPLE) != LDAP_SUCCESS)
 *         fputs(cfg_err2string(cfg_get_exterror(cfg)), stderr);
 *     cfg_unbind(cfg);
 *
 * Text. All text is terminated by a NUL and is in the multibyte encoding of the C locale of the process. A DN is in
 * the string form of RFC 4514; white space and parentheses around its parts are dropped.
 *
 * Ownership. A "char *" or "char **" that a call gives back is a copy on the C heap which the caller releases with
 * the call named there. A "const char *" stays the library's and lives as long as its comment says. Arguments are
 * read during the call and neither changed nor kept.
 *
 * Results. A call that gives an int gives 0 (LDAP_SUCCESS), an LDAP result code of RFC 4511, one of the CFG_ result
 * codes below, 162 or 163 for text that the locale cannot convert, or a status of the password codec. No call lets
 * a C++ exception out. Most calls begin by clearing the failure that the call before left in the handle; the failure
 * accessors, the option calls and cfg_tree_view do not.
 *
 * The process. cfg_init sets the locale of the process from its environment. The report switches
 * CFG_OPT_SHOW_SOURCE and CFG_OPT_SHOW_STACK belong to the process, not to a handle. The library takes no lock, in
 * memory or on the file: one thread at a time may be inside it, and the later of two writing processes wins.
 *
 * Passwords. They are stored encoded and handed out in clear by cfg_search_s; the failure of a refused password
 * holds its clear text (cfg_get_value, cfg_dump_exception). Other copies of a clear text are overwritten before their
 * memory is released.
 */
#ifndef ZEBLDAPCFG_H
#define ZEBLDAPCFG_H

#ifdef _WIN32
#include <windows.h>

#include <winldap.h>
#else
#include <ldap.h>
#endif

#if defined(__GNUC__) && !defined(_WIN32)
#define ZEBLDAPCFG_API __attribute__((visibility("default")))
#else
#define ZEBLDAPCFG_API /* the linker's list of names says what is exported */
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The handle of one configuration file, from cfg_init to cfg_unbind. Opaque. */
typedef struct CFG CFG;

/* What a record of a search result stands for. */
enum { CFG_MSG_ENTRY = 0, CFG_MSG_ATTRIBUTE = 1, CFG_MSG_VALUE = 2 };

/*
 * A record of a search result: a list of entries, each with a list of attributes, each with a list of values. A
 * result shares nothing with its handle and outlives it. Each entry is one block of memory with all below it, texts
 * included: cfg_msgfree alone releases a result, and no record or text of it may be passed to free.
 */
typedef struct CFGMessage CFGMessage;
struct CFGMessage {
    int type;          /* CFG_MSG_ENTRY, CFG_MSG_ATTRIBUTE or CFG_MSG_VALUE */
    char* text;        /* the DN, the attribute's name or the value; null only for a value without text */
    CFGMessage* child; /* the first attribute of an entry, the first value of an attribute, or null */
    CFGMessage* next;  /* the next record of the same level, or null */
};

/* The options of cfg_get_option and cfg_set_option. A flag is 0 or 1. */
enum {
    CFG_OPT_STORED_FLAG_0 = 1000,     /* flag of the handle, at first 1: stored, and read by no call */
    CFG_OPT_STORED_FLAG_1 = 1001,     /* flag of the handle, at first 0: stored, and read by no call */
    CFG_OPT_SHOW_SOURCE = 1002,       /* flag of the process, at first 0: stored; no call shows an effect */
    CFG_OPT_SHOW_STACK = 1003,        /* flag of the process, at first 1: reports show the whole chain of a failure */
    CFG_OPT_DELETE_NON_LEAVES = 1004, /* flag of the handle, at first 0: cfg_delete_s takes entries with children */
    CFG_OPT_CONFIG_FILE = 1005,       /* name of the configuration file, 1 to 260 bytes, or null for the default */
    CFG_OPT_BACKUP_FILE = 1006        /* name of the backup file, 1 to 260 bytes, or null for no backup */
};

/*
 * Result codes whose usual names have other numbers in OpenLDAP's <ldap.h>. cfg_err2string knows their texts.
 */
enum {
    CFG_AUTH_UNKNOWN = 86,  /* the authentication method is not LDAP_AUTH_SIMPLE */
    CFG_PARAM_ERROR = 89,   /* an argument is missing, or the handle is not bound */
    CFG_NO_MEMORY = 90,     /* memory is exhausted */
    CFG_CONNECT_ERROR = 91, /* the configuration file cannot be found or read */
    CFG_NOT_SUPPORTED = 92  /* a value has no such form */
};

/*
 * Extended codes, given by cfg_get_exterror where more is known than the result code says. Those marked (reserved)
 * are raised by no call.
 */
enum {
    CFG_ERR_UNEXPECTED = 1000,       /* an unexpected failure inside the library */
    CFG_ERR_CONFIG_FILENAME = 1001,  /* the name of the configuration file is empty or cannot be made absolute */
    CFG_ERR_CONFIG_FORMAT = 1002,    /* the format of the configuration file is not valid (reserved) */
    CFG_ERR_CONFIG_NOT_FOUND = 1003, /* the configuration file is not there */
    CFG_ERR_CONFIG_OPEN = 1004,      /* the configuration file cannot be opened, or not moved to its backup */
    CFG_ERR_VALUE = 1005,            /* the value is not valid (reserved) */
    CFG_ERR_SINGLE_VALUED = 1006,    /* a second charset or version attribute (reserved) */
    CFG_ERR_NOT_IN_CLASS = 1007,     /* an attribute that may not stand outside an entry */
    CFG_ERR_NO_BINARY_FORM = 1008,   /* the syntax has no binary form (reserved) */
    CFG_ERR_NO_STRING_FORM = 1009,   /* the syntax has no string form (reserved) */
    CFG_ERR_MOD_OP = 1010,           /* an unknown operation in an LDAPMod */
    CFG_ERR_DN_NO_ATTRIBUTE = 1011,  /* a DN lacks an attribute name */
    CFG_ERR_DN_ATTRIBUTE = 1012,     /* an attribute name in a DN is not valid */
    CFG_ERR_DN_NO_VALUE = 1013,      /* a DN lacks a value */
    CFG_ERR_DN_VALUE = 1014,         /* a value in a DN is not valid */
    CFG_ERR_INT_RANGE = 1015,        /* an integer outside its range: see cfg_get_minimum, cfg_get_maximum */
    CFG_ERR_INT_SYNTAX = 1016,       /* a text that is no integer */
    CFG_ERR_ENUM = 1017,             /* none of the allowed values: see cfg_get_enum */
    CFG_ERR_LENGTH = 1018,           /* a length in bytes outside its range: see cfg_get_minimum, cfg_get_maximum */
    CFG_ERR_BITMASK = 1019,          /* bits outside the mask: see cfg_get_bitmask */
    CFG_ERR_OID = 1020,              /* not an OID (reserved) */
    CFG_ERR_DOMAIN = 1021,           /* not a domain component (reserved) */
    CFG_ERR_URL = 1022,              /* not a URL (reserved) */
    CFG_ERR_URL_PROTOCOL = 1023,     /* a URL of a protocol that is not allowed (reserved) */
    CFG_ERR_KRB_DN = 1024,           /* not a Kerberos DN (reserved) */
    CFG_ERR_ENV = 1025,              /* not an environment setting (reserved) */
    CFG_ERR_PATH = 1026,             /* not a path (reserved) */
    CFG_ERR_DIR_NOT_FOUND = 1027,    /* a directory of a path is not there (reserved) */
    CFG_ERR_DIR_ACCESS = 1028,       /* a directory may not be read (reserved) */
    CFG_ERR_FILE_NAME = 1029,        /* not a file name (reserved) */
    CFG_ERR_FILE_NOT_FOUND = 1030,   /* a file is not there (reserved) */
    CFG_ERR_FILE_ACCESS = 1031,      /* a file may not be read (reserved) */
    CFG_ERR_PLUGIN = 1032,           /* an error in a plug-in directive (reserved) */
    CFG_ERR_PLUGIN_NOT_FOUND = 1033, /* a plug-in library is not there (reserved) */
    CFG_ERR_PLUGIN_LOAD = 1034,      /* a plug-in library cannot be loaded (reserved) */
    CFG_ERR_PLUGIN_INIT = 1035       /* a plug-in library lacks its init function (reserved) */
};

/* --- Handle ----------------------------------------------------------------------------------------------------- */

/*
 * A new handle with the default options, or null when memory is exhausted; release it with cfg_unbind. Sets the
 * locale of the process from its environment, and the two report switches of the process back to their defaults.
 */
ZEBLDAPCFG_API CFG* cfg_init(void);

/* Clears the failure and the texts that the last call left in the handle. 0, or 89 for a null handle. */
ZEBLDAPCFG_API int cfg_reset(CFG* cfg);

/*
 * Releases the handle and all that it owns, without writing the file. 0, or 89 for a null handle; nothing can fail.
 * Search results stay.
 */
ZEBLDAPCFG_API int cfg_unbind(CFG* cfg);

/* --- Bind and configuration location ---------------------------------------------------------------------------- */

/*
 * Loads the configuration file and logs in. The file is that of CFG_OPT_CONFIG_FILE, else the default file, whose
 * name the handle then keeps. A null dn with a null password is an anonymous login; otherwise both have to match
 * zeb-slapdAdminDN and zeb-slapdAdminPW of the entry cn=Configuration. Both kinds of login may do everything. method
 * is LDAP_AUTH_SIMPLE. The encoded form of the password, as the file holds it, is accepted as well. The load may
 * rewrite the file, when it moves lines that it cannot understand into the attribute zeb-slapdInvalidLine.
 *
 * 0; 49 without further details for a refused login; 21 for a password of more than 46 bytes; 32 when a login finds no
 * cn=Configuration; the status of the password codec (202, 203) when it finds a password that cannot be decoded; 86 for
 * another method; 80 without a default file; 91 when the file cannot be found or read; 65 for an attribute outside an
 * entry; 34 for a bad DN; 162 for text that the locale cannot convert; 50 when a repaired file cannot be written back.
 * After a failure a handle that was bound stays bound to what it had.
 */
ZEBLDAPCFG_API int cfg_bind_s(CFG* cfg, const char* dn, const char* password, int method);

/*
 * The install location: the value LDAPHome of the registry key SOFTWARE\ZEB\LDAP\Client, or null when there is none
 * or when it takes more than 255 bytes. The text is static, and the next call overwrites it.
 */
ZEBLDAPCFG_API const char* getInstallPath(void);

/*
 * The default configuration file: etc/zebslapd.conf under the install location, or null when there is none or when
 * it takes more than 255 bytes. The text is static, and the next call overwrites it.
 */
ZEBLDAPCFG_API const char* getDefaultConfigFilename(void);

/* --- Codes and failures ----------------------------------------------------------------------------------------- */

/* The text of a result code or an extended code. Static, never null for a code of this header. */
ZEBLDAPCFG_API const char* cfg_err2string(int code);

/* The result code of the last call that clears the handle; 89 for a null handle. */
ZEBLDAPCFG_API int cfg_get_errno(CFG* cfg);

/* The most specific code of the last failure: an extended code, else the result code; 89 for a null handle. */
ZEBLDAPCFG_API int cfg_get_exterror(CFG* cfg);

/* Does nothing. It exists for programs that call it. */
ZEBLDAPCFG_API void cfg_perror(CFG* cfg, const char* text);

/*
 * The accessors of the last failure. They clear nothing and may be called in any order. A pointer lives until the
 * next call that clears the handle. Without a failure with details, as after an argument check (89) or a refused
 * login (49), and for a null handle, they give null or 0.
 */

/* The full report, several lines, one block for each link of the failure's chain while CFG_OPT_SHOW_STACK is 1. */
ZEBLDAPCFG_API const char* cfg_dump_exception(CFG* cfg);

/*
 * The configuration file that the failure concerns; else, also without a failure, the full path of the bound file, else
 * the name that is set, else the default name, else null. The first lives until the next call that clears the handle,
 * the path until the next bind that succeeds, the name until CFG_OPT_CONFIG_FILE is set, all until cfg_unbind; the
 * default name as getDefaultConfigFilename says.
 */
ZEBLDAPCFG_API const char* cfg_get_file_name(CFG* cfg);

/* The line of the configuration file that the failure concerns, counted from 1; 0 when no line applies. */
ZEBLDAPCFG_API int cfg_get_file_line(CFG* cfg);

/* The DN of the entry that the failure concerns; empty when no entry applies. */
ZEBLDAPCFG_API const char* cfg_get_entry(CFG* cfg);

/* The name of the attribute that the failure concerns; null when no attribute applies. */
ZEBLDAPCFG_API const char* cfg_get_attribute(CFG* cfg);

/* The text of the value that the failure concerns, which for a password is its clear text; empty when none applies. */
ZEBLDAPCFG_API const char* cfg_get_value(CFG* cfg);

/* The allowed values of the attribute type concerned, ended by a null; null when it has none. Static. */
ZEBLDAPCFG_API const char* const* cfg_get_enum(CFG* cfg);

/* The bits that a value of the attribute type concerned may set; 0 when it is no bit mask. */
ZEBLDAPCFG_API unsigned int cfg_get_bitmask(CFG* cfg);

/*
 * The least number, or the least length in bytes, for the attribute type concerned. For a number with a maximum 0 is a
 * limit as any other; else 0 means no limit.
 */
ZEBLDAPCFG_API int cfg_get_minimum(CFG* cfg);

/* The greatest number, or the greatest length in bytes, for the attribute type concerned; 0 means no limit. */
ZEBLDAPCFG_API int cfg_get_maximum(CFG* cfg);

/* 1 when the attribute type concerned is declared single-valued, else 0. No call enforces it. */
ZEBLDAPCFG_API int cfg_get_is_single(CFG* cfg);

/* --- Search ----------------------------------------------------------------------------------------------------- */

/*
 * Reads the file again if it has changed, and searches it.
 *
 * base: the DN of the base entry; the empty text is the root, which holds charset and version.
 * scope: LDAP_SCOPE_BASE, LDAP_SCOPE_ONELEVEL or LDAP_SCOPE_SUBTREE; any other number counts as LDAP_SCOPE_BASE.
 * filter: a test on one attribute, "name=value", "name=*" or "name", with or without parentheses around it, with the
 *     escapes \XX of RFC 4515 in the value; not the filter language of RFC 4515. The empty text is (objectclass=*).
 * attrs: the names of the attributes wanted, ended by a null; null or none for all.
 * attrsonly: taken for the sake of the LDAP client's interface; the values are given whatever it says.
 * result: receives the entries in the order of the tree, parents first, or null when none matches; release it with
 *     cfg_msgfree. Passwords are decoded in it.
 *
 * 0, also when nothing matches; 89 for a null result or a handle that is not bound; 32 when the base entry is not
 * there; 34 for a bad base, for a found entry whose DN has an empty value, and for a filter value of an attribute of
 * DNs that is no DN; 21 for a filter value that another syntax refuses; 90 when memory is exhausted; 80 for a null base
 * or filter; the status of the password codec for a password that cannot be decoded; what a load gives (cfg_bind_s).
 * After a failure *result is null, except after 89.
 */
ZEBLDAPCFG_API int cfg_search_s(CFG* cfg, const char* base, int scope, const char* filter, char** attrs, int attrsonly,
                                CFGMessage** result);

/* The first entry of a result: result itself. */
ZEBLDAPCFG_API CFGMessage* cfg_first_entry(CFG* cfg, CFGMessage* result);

/* The entry after this one, or null after the last one and for a null entry. */
ZEBLDAPCFG_API CFGMessage* cfg_next_entry(CFG* cfg, CFGMessage* entry);

/* The number of entries from this record on; 89 for a null handle. */
ZEBLDAPCFG_API int cfg_count_entries(CFG* cfg, CFGMessage* result);

/* The number of attributes of an entry; 89 for a null handle. */
ZEBLDAPCFG_API int cfg_count_attributes(CFG* cfg, CFGMessage* entry);

/*
 * A copy of an entry's DN; release it with cfg_memfree. Null with 89 in the handle for anything but an entry, null
 * with 90 when memory is exhausted.
 */
ZEBLDAPCFG_API char* cfg_get_dn(CFG* cfg, CFGMessage* entry);

/*
 * Starts a walk over the attributes of an entry, and gives a copy of the first name; release it with cfg_memfree.
 * *ber receives the state of the walk; release it with cfg_ber_free, also when the entry has no attributes and the
 * result is null. Null with 89 in the handle for a null entry or ber, null with 90 when memory is exhausted; *ber is
 * null then.
 */
ZEBLDAPCFG_API char* cfg_first_attribute(CFG* cfg, CFGMessage* entry, BerElement** ber);

/*
 * Moves the walk on, and gives a copy of the next name; release it with cfg_memfree. Null at the end of the walk;
 * null with 89 in the handle for a null ber, null with 90 when memory is exhausted. entry is not read.
 */
ZEBLDAPCFG_API char* cfg_next_attribute(CFG* cfg, CFGMessage* entry, BerElement* ber);

/*
 * Copies of the values of one attribute, whose name is taken without regard to case, ended by a null; release them
 * with cfg_value_free. Null when the attribute has no value or the handle is null; null with 16 in the handle when
 * the entry lacks the attribute, with 89 for a null entry or attribute, with 90 when memory is exhausted.
 */
ZEBLDAPCFG_API char** cfg_get_values(CFG* cfg, CFGMessage* entry, const char* attribute);

/* The number of texts before the closing null; 0 for null. */
ZEBLDAPCFG_API int cfg_count_values(char** values);

/* Releases what cfg_get_values gave. Null is allowed. */
ZEBLDAPCFG_API void cfg_value_free(char** values);

/*
 * Releases a result from this entry on. Null is allowed. The record of an attribute or a value belongs to its entry:
 * given one, the call does nothing. Always 0.
 */
ZEBLDAPCFG_API int cfg_msgfree(CFGMessage* message);

/* Releases the state of a walk over attributes. Null is allowed. */
ZEBLDAPCFG_API void cfg_ber_free(BerElement* ber);

/* Releases a text that this library gave as a char *. Null is allowed. */
ZEBLDAPCFG_API void cfg_memfree(void* memory);

/* --- Updates ---------------------------------------------------------------------------------------------------- */

/*
 * Each update reads the file again if it has changed, applies the change, and writes the file back as a whole, after
 * moving the old one to the backup name if CFG_OPT_BACKUP_FILE was set at the bind. All give 0; 89 for a handle that
 * is not bound; 34 for a bad DN; 80 for a null dn or mod_type; what a load gives (cfg_bind_s); 50 when the file cannot
 * be moved or opened for writing, and then the change stays in memory and reaches the file with the next successful
 * write. A disk that is full while the text is written is not noticed.
 *
 * An LDAPMod gives its values as texts, or with LDAP_MOD_BVALUES as berval records; of these the text up to the first
 * NUL byte counts and bv_len is not read. A value that its syntax refuses gives 21 or, for a DN, 34.
 */

/*
 * Adds an entry with the attributes of the array, which a null ends; mod_op is read only for LDAP_MOD_BVALUES. An
 * entry that exists takes the attributes on, and a parent need not exist. The empty DN is the root, where the next
 * load accepts no attributes but charset and version.
 */
ZEBLDAPCFG_API int cfg_add_s(CFG* cfg, const char* dn, LDAPMod** attrs);

/*
 * Applies the records of the array, which a null ends, to an entry, one after the other; those before a failing one
 * stay applied in memory. 32 for an entry that is not there, unless there is nothing to apply; 16 for the delete of
 * an attribute that is not there; 89 (1010) for an unknown operation.
 */
ZEBLDAPCFG_API int cfg_modify_s(CFG* cfg, const char* dn, LDAPMod** mods);

/*
 * Deletes an entry, with all below it when CFG_OPT_DELETE_NON_LEAVES is set. 32 for an entry that is not there, 66
 * for one that has children.
 */
ZEBLDAPCFG_API int cfg_delete_s(CFG* cfg, const char* dn);

/* Reads the file again if it has changed, and writes it back. */
ZEBLDAPCFG_API int cfg_flush_s(CFG* cfg);

/* --- Options and outline ---------------------------------------------------------------------------------------- */

/*
 * Reads an option. out points at an int for a flag, and at a char * for a file name, which receives a copy to be
 * released with cfg_memfree, or null when the option is unset or memory is exhausted. 0, also for an unknown option,
 * which leaves *out alone; 89 for a null cfg or out.
 */
ZEBLDAPCFG_API int cfg_get_option(CFG* cfg, int option, void* out);

/*
 * Sets an option. value is a text or null for a file name, which the next cfg_bind_s uses; for a flag the pointer
 * itself counts, null clears and all else sets. 0, also for an unknown option; 89 for a null handle; 21 for a name
 * that is empty or longer than 260 bytes; 90 when memory is exhausted. After a failure the option is as it was.
 */
ZEBLDAPCFG_API int cfg_set_option(CFG* cfg, int option, const void* value);

/*
 * The tree in memory as a printable outline, in ASCII, or with oem not 0 in the line-drawing characters of code page
 * 437. Null when the handle is null or not bound, or the outline cannot be made, as with an entry whose DN has an empty
 * value. The text lives until the next call that clears the handle; until then further calls give the same text,
 * whichever form they ask for.
 */
ZEBLDAPCFG_API const char* cfg_tree_view(CFG* cfg, int oem);

#ifdef __cplusplus
}
#endif

#endif
