/*
 * tour.c - a walk through the calls of zebldapcfg.
 *
 *     cp zebslapd.conf copy.conf
 *     LC_ALL=C.UTF-8 tour copy.conf
 *
 * It logs in as the administrator of the sample file, searches, changes values, adds and deletes an entry, and looks at
 * two failures. FILE is changed on the way; FILE.bak is what it was before the last change.
 */
#include "zebldapcfg.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char adminDn[] = "cn=admin, o=Example";
static const char adminPassword[] = "secret";
static const char serverDn[] = "cn=Configuration";
static const char frontEndDn[] = "cn=Front End, cn=Configuration";
static const char pluginsDn[] = "cn=Plug-ins, cn=Configuration";
static const char newDn[] = "cn=Tour, cn=Plug-ins, cn=Configuration";

static void heading(const char* text)
{
    printf("\n== %s ==\n", text);
}

/* Whether a call has succeeded. If not, says on stderr what was to be done and what the library has to say about it. */
static int succeeded(CFG* cfg, int code, const char* what)
{
    const char* report = cfg_dump_exception(cfg);

    if (code == LDAP_SUCCESS)
        return 1;
    fprintf(stderr, "tour: cannot %s: %d, %s\n%s", what, code, cfg_err2string(code), report != NULL ? report : "");
    return 0;
}

/* Names are equal whatever their case. */
static int isSameName(const char* left, const char* right)
{
    for (; *left != '\0' && tolower((unsigned char)*left) == tolower((unsigned char)*right); ++left)
        ++right;
    return *left == *right;
}

/* A search gives passwords in clear, so it is up to the caller not to show them. */
static int isPassword(const char* attribute)
{
    static const char* const names[] = {"zeb-slapdAdminPW",  "zeb-slapdDbUserPW", "zeb-slapdLdapCrlPassword",
                                        "zeb-slapdMasterPW", "zeb-slapdPeerPW",   "zeb-slapdSslKeyDatabasePW"};
    size_t i = 0;

    while (i < sizeof names / sizeof names[0] && !isSameName(attribute, names[i]))
        ++i;
    return i < sizeof names / sizeof names[0];
}

/* An attribute without values has no array either; the code in the handle distinguishes that from a failure. */
static int printAttribute(CFG* cfg, CFGMessage* entry, const char* name)
{
    char** values = cfg_get_values(cfg, entry, name);
    int i;

    for (i = 0; i < cfg_count_values(values); ++i)
        printf("  %s: %s\n", name, isPassword(name) ? "(password)" : values[i]);
    cfg_value_free(values);
    return succeeded(cfg, cfg_get_errno(cfg), "read the values of an attribute");
}

static int printEntry(CFG* cfg, CFGMessage* entry)
{
    BerElement* walk = NULL;
    char* dn = cfg_get_dn(cfg, entry);
    char* name;
    int ok = succeeded(cfg, cfg_get_errno(cfg), "read a DN");

    if (ok)
        printf("%s\n", dn);
    cfg_memfree(dn);
    for (name = cfg_first_attribute(cfg, entry, &walk); name != NULL; name = cfg_next_attribute(cfg, entry, walk)) {
        ok = ok && printAttribute(cfg, entry, name);
        cfg_memfree(name);
    }
    ok = ok && succeeded(cfg, cfg_get_errno(cfg), "walk over the attributes");
    cfg_ber_free(walk);
    return ok;
}

/* Prints the entries that match, with the attributes named, or with all of them for null. */
static int search(CFG* cfg, const char* base, int scope, const char* filter, char** attributes)
{
    CFGMessage* result = NULL;
    CFGMessage* entry;
    int ok = succeeded(cfg, cfg_search_s(cfg, base, scope, filter, attributes, 0, &result), "search");

    if (ok)
        printf("%s: %d found\n", filter, cfg_count_entries(cfg, result));
    for (entry = cfg_first_entry(cfg, result); entry != NULL; entry = cfg_next_entry(cfg, entry))
        ok = ok && printEntry(cfg, entry);
    cfg_msgfree(result);
    return ok;
}

/* The code of one change of one value. */
static int modify(CFG* cfg, const char* dn, int operation, char* attribute, char* value)
{
    char* values[2];
    LDAPMod mod;
    LDAPMod* mods[2];

    values[0] = value;
    values[1] = NULL;
    mod.mod_op = operation;
    mod.mod_type = attribute;
    mod.mod_values = values;
    mods[0] = &mod;
    mods[1] = NULL;
    return cfg_modify_s(cfg, dn, mods);
}

static int showLogin(CFG* cfg, const char* file)
{
    static const char ending[] = ".bak";
    char* backup = malloc(strlen(file) + sizeof ending);
    int ok;

    heading("Log in");
    if (backup == NULL)
        return succeeded(cfg, CFG_NO_MEMORY, "name the backup file");
    strcat(strcpy(backup, file), ending);
    ok = succeeded(cfg, cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file), "set the file name") &&
         succeeded(cfg, cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, backup), "set the backup name") &&
         succeeded(cfg, cfg_bind_s(cfg, adminDn, adminPassword, (int)LDAP_AUTH_SIMPLE), "log in");
    free(backup);
    if (ok)
        printf("%s is logged in to %s\n", adminDn, cfg_get_file_name(cfg));
    return ok;
}

static int showSearches(CFG* cfg)
{
    char* wanted[] = {"zeb-slapdSuffix", "zeb-slapdReadOnly", NULL};

    heading("Search: one entry with all its attributes");
    if (!search(cfg, serverDn, LDAP_SCOPE_BASE, "(objectclass=*)", NULL))
        return 0;
    heading("Search: the back ends with two attributes");
    return search(cfg, serverDn, LDAP_SCOPE_SUBTREE, "(objectclass=zeb-slapdBackend)", wanted);
}

static int showModify(CFG* cfg)
{
    char limit[] = "zeb-slapdSizeLimit";
    char setting[] = "zeb-slapdSetenv";
    char* wanted[] = {"zeb-slapdSizeLimit", "zeb-slapdSetenv", NULL};

    heading("Modify: replace a value");
    if (!succeeded(cfg, modify(cfg, serverDn, LDAP_MOD_REPLACE, limit, "1000"), "replace a value") ||
        !search(cfg, serverDn, LDAP_SCOPE_BASE, "(zeb-slapdSizeLimit=1000)", wanted))
        return 0;
    heading("Modify: add a value, and delete it again");
    return succeeded(cfg, modify(cfg, frontEndDn, LDAP_MOD_ADD, setting, "TOUR=yes"), "add a value") &&
           search(cfg, frontEndDn, LDAP_SCOPE_BASE, "(zeb-slapdSetenv=TOUR=yes)", wanted) &&
           succeeded(cfg, modify(cfg, frontEndDn, LDAP_MOD_DELETE, setting, "TOUR=yes"), "delete a value") &&
           search(cfg, frontEndDn, LDAP_SCOPE_BASE, "(zeb-slapdSetenv=TOUR=yes)", wanted);
}

static int showAddAndDelete(CFG* cfg)
{
    static char* classes[] = {"zeb-slapdPluginEntry", NULL};
    static char* names[] = {"Tour", NULL};
    static LDAPMod objectclass = {LDAP_MOD_ADD, "objectclass", {classes}};
    static LDAPMod cn = {LDAP_MOD_ADD, "cn", {names}};
    static LDAPMod* attributes[] = {&objectclass, &cn, NULL};

    heading("Add an entry, and delete it again");
    return succeeded(cfg, cfg_add_s(cfg, newDn, attributes), "add an entry") &&
           search(cfg, pluginsDn, LDAP_SCOPE_ONELEVEL, "(cn=Tour)", NULL) &&
           succeeded(cfg, cfg_delete_s(cfg, newDn), "delete an entry") &&
           search(cfg, pluginsDn, LDAP_SCOPE_ONELEVEL, "(cn=Tour)", NULL);
}

static const char* orNone(const char* text)
{
    return text != NULL && *text != '\0' ? text : "(none)";
}

/* Prints what the handle knows of a failure. Any other code than the one expected is a failure of the tour. */
static int showFailure(CFG* cfg, int code, int expected)
{
    if (code != expected) {
        fprintf(stderr, "tour: this should have failed: %d, %s\n", expected, cfg_err2string(expected));
        (void)succeeded(cfg, code, "fail in that way");
        return 0;
    }
    printf("result     %d, %s\n", cfg_get_errno(cfg), cfg_err2string(cfg_get_errno(cfg)));
    printf("extended   %d, %s\n", cfg_get_exterror(cfg), cfg_err2string(cfg_get_exterror(cfg)));
    printf("file       %s\n", orNone(cfg_get_file_name(cfg)));
    printf("entry      %s\n", orNone(cfg_get_entry(cfg)));
    printf("attribute  %s\n", orNone(cfg_get_attribute(cfg)));
    printf("value      %s\n", orNone(cfg_get_value(cfg)));
    printf("limits     %d to %d, where 0 means none\n", cfg_get_minimum(cfg), cfg_get_maximum(cfg));
    printf("\n%s", orNone(cfg_dump_exception(cfg)));
    return 1;
}

static int showFailures(CFG* cfg)
{
    heading("Failure: a value out of range, and its full report");
    if (!showFailure(cfg, modify(cfg, serverDn, LDAP_MOD_REPLACE, "zeb-slapdPort", "70000"), LDAP_INVALID_SYNTAX))
        return 0;
    heading("Failure: the delete of an entry with children, and its full report");
    return showFailure(cfg, cfg_delete_s(cfg, pluginsDn), LDAP_NOT_ALLOWED_ON_NONLEAF);
}

static int showTree(CFG* cfg)
{
    const char* outline = cfg_tree_view(cfg, 0);

    heading("Tree view");
    fputs(outline != NULL ? outline : "", stdout);
    return outline != NULL || succeeded(cfg, CFG_NO_MEMORY, "draw the tree");
}

int main(int argc, char** argv)
{
    CFG* cfg = argc == 2 ? cfg_init() : NULL;
    int ok;
    int result;

    if (cfg == NULL) {
        fprintf(stderr, "%s\n", argc == 2 ? cfg_err2string(CFG_NO_MEMORY) : "usage: tour FILE");
        return EXIT_FAILURE;
    }
    ok = showLogin(cfg, argv[1]) && showSearches(cfg) && showModify(cfg) && showAddAndDelete(cfg) &&
         showFailures(cfg) && showTree(cfg);
    result = cfg_unbind(cfg);
    if (result != LDAP_SUCCESS)
        fprintf(stderr, "tour: cannot unbind: %d, %s\n", result, cfg_err2string(result));
    return ok && result == LDAP_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
