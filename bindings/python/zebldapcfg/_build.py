"""Generates the extension module zebldapcfg._native, which calls the C library."""

from cffi import FFI  # type: ignore[import]

ffibuilder = FFI()

ffibuilder.cdef(
    """
    typedef struct CFG CFG;
    typedef struct BerElement BerElement;
    typedef struct CFGMessage CFGMessage;
    struct CFGMessage {
        int type;
        char *text;
        CFGMessage *child;
        CFGMessage *next;
        ...;
    };
    struct berval {
        char *bv_val;
        ...;
    };
    union mod_vals_u {
        char **modv_strvals;
        struct berval **modv_bvals;
    };
    typedef struct ldapmod {
        int mod_op;
        char *mod_type;
        union mod_vals_u mod_vals;
        ...;
    } LDAPMod;

    #define LDAP_AUTH_SIMPLE ...
    #define LDAP_SCOPE_BASE ...
    #define LDAP_SCOPE_ONELEVEL ...
    #define LDAP_SCOPE_SUBTREE ...
    #define LDAP_MOD_ADD ...
    #define LDAP_MOD_DELETE ...
    #define LDAP_MOD_REPLACE ...
    #define LDAP_MOD_BVALUES ...
    enum {
        CFG_OPT_STORED_FLAG_0, CFG_OPT_STORED_FLAG_1, CFG_OPT_SHOW_SOURCE, CFG_OPT_SHOW_STACK,
        CFG_OPT_DELETE_NON_LEAVES, CFG_OPT_CONFIG_FILE, CFG_OPT_BACKUP_FILE, ...
    };

    CFG *initInOwnLocale(void);
    char *dnsOf(const CFGMessage *result, size_t *size);
    char *textsBelow(const CFGMessage *entry, size_t *size);
    void free(void *memory);

    CFG *cfg_init(void);
    int cfg_reset(CFG *cfg);
    int cfg_unbind(CFG *cfg);
    int cfg_bind_s(CFG *cfg, const char *dn, const char *password, int method);
    const char *getInstallPath(void);
    const char *getDefaultConfigFilename(void);
    const char *cfg_err2string(int code);
    int cfg_get_errno(CFG *cfg);
    int cfg_get_exterror(CFG *cfg);
    void cfg_perror(CFG *cfg, const char *text);
    const char *cfg_dump_exception(CFG *cfg);
    const char *cfg_get_file_name(CFG *cfg);
    int cfg_get_file_line(CFG *cfg);
    const char *cfg_get_entry(CFG *cfg);
    const char *cfg_get_attribute(CFG *cfg);
    const char *cfg_get_value(CFG *cfg);
    const char *const *cfg_get_enum(CFG *cfg);
    unsigned int cfg_get_bitmask(CFG *cfg);
    int cfg_get_minimum(CFG *cfg);
    int cfg_get_maximum(CFG *cfg);
    int cfg_get_is_single(CFG *cfg);
    int cfg_search_s(CFG *cfg, const char *base, int scope, const char *filter, char **attrs, int attrsonly,
                     CFGMessage **result);
    CFGMessage *cfg_first_entry(CFG *cfg, CFGMessage *result);
    CFGMessage *cfg_next_entry(CFG *cfg, CFGMessage *entry);
    int cfg_count_entries(CFG *cfg, CFGMessage *result);
    int cfg_count_attributes(CFG *cfg, CFGMessage *entry);
    char *cfg_get_dn(CFG *cfg, CFGMessage *entry);
    char *cfg_first_attribute(CFG *cfg, CFGMessage *entry, BerElement **ber);
    char *cfg_next_attribute(CFG *cfg, CFGMessage *entry, BerElement *ber);
    char **cfg_get_values(CFG *cfg, CFGMessage *entry, const char *attribute);
    int cfg_count_values(char **values);
    void cfg_value_free(char **values);
    int cfg_msgfree(CFGMessage *message);
    void cfg_ber_free(BerElement *ber);
    void cfg_memfree(void *memory);
    int cfg_add_s(CFG *cfg, const char *dn, LDAPMod **attrs);
    int cfg_modify_s(CFG *cfg, const char *dn, LDAPMod **mods);
    int cfg_delete_s(CFG *cfg, const char *dn);
    int cfg_flush_s(CFG *cfg);
    int cfg_get_option(CFG *cfg, int option, void *out);
    int cfg_set_option(CFG *cfg, int option, const void *value);
    const char *cfg_tree_view(CFG *cfg, int oem);
    """
)

ffibuilder.set_source(
    "zebldapcfg._native",
    r"""
    #include <locale.h>
    #include <stdio.h>
    #include <stdlib.h>
    #include <string.h>
    #include <zebldapcfg.h>

    /* A new handle, which sets the encoding of the process and no other part of its locale. */
    static CFG *initInOwnLocale(void)
    {
        char *before = strdup(setlocale(LC_ALL, NULL));
        CFG *cfg = before != NULL ? cfg_init() : NULL;
        char *encoding = cfg != NULL ? strdup(setlocale(LC_CTYPE, NULL)) : NULL;
        if (encoding != NULL) {
            setlocale(LC_ALL, before);
            setlocale(LC_CTYPE, encoding);
        } else {
            cfg_unbind(cfg);
            cfg = NULL;
        }
        free(encoding);
        free(before);
        return cfg;
    }

    /* The DNs of all entries, each with a NUL. In C heap; null when memory is exhausted. */
    static char *dnsOf(const CFGMessage *result, size_t *size)
    {
        const CFGMessage *entry;
        char *texts;
        char *end;
        *size = 0;
        for (entry = result; entry != NULL; entry = entry->next)
            *size += strlen(entry->text) + 1;
        texts = end = malloc(*size + 1);
        for (entry = result; texts != NULL && entry != NULL; entry = entry->next)
            end = stpcpy(end, entry->text) + 1;
        return texts;
    }

    /* The texts of the attributes of an entry, each with a NUL: the name, the number of values, the values. In C heap;
       null when memory is exhausted. */
    static char *textsBelow(const CFGMessage *entry, size_t *size)
    {
        const CFGMessage *attribute;
        const CFGMessage *value;
        char *texts;
        char *end;
        *size = 0;
        for (attribute = entry->child; attribute != NULL; attribute = attribute->next) {
            *size += strlen(attribute->text) + 1 + sizeof "2147483647";
            for (value = attribute->child; value != NULL; value = value->next)
                *size += value->text != NULL ? strlen(value->text) + 1 : 0;
        }
        texts = end = malloc(*size + 1);
        for (attribute = entry->child; texts != NULL && attribute != NULL; attribute = attribute->next) {
            int count = 0;
            for (value = attribute->child; value != NULL; value = value->next)
                count += value->text != NULL;
            end = stpcpy(end, attribute->text) + 1;
            end += sprintf(end, "%d", count) + 1;
            for (value = attribute->child; value != NULL; value = value->next)
                end = value->text != NULL ? stpcpy(end, value->text) + 1 : end;
        }
        *size = (size_t)(end - texts);
        return texts;
    }
    """,
    libraries=["zebldapcfg"],
)

if __name__ == "__main__":
    ffibuilder.compile(verbose=True)
