#include "cli/Command.h"

#include <algorithm>

const std::vector<Option>& globalOptions()
{
    static const std::vector<Option> options = {
        {"-F,--config", "FILE", "the configuration file", Kind::file},
        {"-B,--backup", "FILE", "name of the backup of the old file (default: FILE.bak)", Kind::file},
        {"--keep", "N", "keep N backups: FILE.bak, FILE.bak.2 and so on (default: 1)"},
        {"--no-backup", nullptr, "keep no backup"},
        {"-D,--bind-dn", "DN", "log in as the administrator DN", Kind::dn},
        {"-w,--password", "PASSWORD", "the login's password; others can see it on the command line"},
        {"-W,--ask-password", nullptr, "ask for the login's password"},
        {"-y,--password-file", "FILE", "read the login's password from a file", Kind::file},
        {"-n,--dry-run", nullptr, "check the change, show it as a diff, and change nothing"},
        {"--force", nullptr, "make a change that is refused only because of what it may break"},
        {"--yes", nullptr, "answer yes to the questions of delete -r and restore"},
        {"--wait", "SECONDS", "wait at most this long for another update of the file (default: 60)"},
        {"-v,--verbose", nullptr, "print more; after a failure, the library's report"},
        {"-q,--quiet", nullptr, "print failures only"},
        {"-j,--json", nullptr, "write JSON"},
        {"--color", "WHEN", "colour: auto, always or never", Kind::other, {"auto", "always", "never"}},
        {"--show-passwords", nullptr, "show passwords instead of ********"},
        {"-V,--version", nullptr, "show the version"},
        {"-h,--help", nullptr, "show this help"},
    };
    return options;
}

const std::vector<Command>& commands()
{
    static const Option ldifFile = {"-f,--file", "FILE", "read LDIF from a file (default: standard input)", Kind::file};
    static const Option noParentCheck = {"--no-parent-check", nullptr,
                                         "add entries even if their parent does not exist"};
    static const std::vector<Command> table = {
        {"search",
         "search entries, and write them as LDIF",
         {{"-b,--base", "DN", "the entry to begin at (default: the root)", Kind::dn},
          {"-s,--scope",
           "SCOPE",
           "base, one, sub, or children: all below the base (default: sub)",
           Kind::other,
           {"base", "one", "sub", "children"}},
          {"-S,--sort", "ATTRIBUTE", "sort the entries by their lowest value of an attribute", Kind::attribute},
          {"-z,--size-limit", "N", "write at most N entries, and exit with 4 if there are more (0: no limit)"},
          {"-A,--names-only", nullptr, "write names of attributes, without values"},
          {"-L,--plain", nullptr, "write plain LDIF: -LL omits comments, and -LLL the version too"},
          {"-o,--option", "ldif_wrap=N", "fold lines at N characters (default: no)"}},
         {{"FILTER", Kind::other, false, false}, {"ATTRIBUTE", Kind::attribute, false, true}},
         "zebcfg search -LLL -b cn=Configuration -s base '(objectclass=*)' zeb-slapdPort",
         runSearch},
        {"get",
         "show the values of one attribute, one per line",
         {{"--default", "VALUE", "show this where the entry or the attribute is missing"}},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE", Kind::attribute, true, false}},
         "zebcfg get cn=Configuration zeb-slapdPort",
         runGet},
        {"compare",
         "test whether an entry has a value: exit with 6 if it does, and with 5 if not",
         {},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE=VALUE", Kind::assignment, true, false}},
         "zebcfg -q compare cn=Configuration zeb-slapdSecurity=none",
         runCompare},
        {"set",
         "set attributes of an entry to new values",
         {{"--add", nullptr, "add the values to the existing ones"}},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE=VALUE", Kind::assignment, true, true}},
         "zebcfg set cn=Configuration zeb-slapdPort=1389 zeb-slapdSizeLimit=1000",
         runSet},
        {"unset",
         "remove values, or all values, of attributes",
         {},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE[=VALUE]", Kind::assignment, true, true}},
         "zebcfg unset 'cn=Front End, cn=Configuration' zeb-slapdSetenv=TMPDIR=/var/lib/zebslapd/tmp",
         runUnset},
        {"add",
         "add entries, or apply changes, from LDIF",
         {ldifFile, {"--create", nullptr, "create the configuration file if it does not exist"}, noParentCheck},
         {},
         "zebcfg add -f entries.ldif",
         runAdd},
        {"apply",
         "make the configuration match LDIF, and leave alone what matches already",
         {ldifFile,
          {"--prune", nullptr, "also remove other attributes of the entries, and other entries below -b"},
          {"-b,--base", "DN", "with --prune: the entry below which entries are removed", Kind::dn},
          noParentCheck},
         {},
         "zebcfg -n apply -f wanted.ldif",
         runApply},
        {"modify",
         "apply changes from LDIF, as one step",
         {ldifFile,
          {"-a,--add", nullptr, "treat a record without a changetype as an entry to add"},
          {"-c,--continue", nullptr, "skip records that fail, and continue"},
          {"-S,--skipped", "FILE", "with -c: write the skipped records to a file", Kind::file},
          noParentCheck},
         {},
         "zebcfg modify -f changes.ldif",
         runModify},
        {"delete",
         "delete entries",
         {{"-r,--recursive", nullptr, "also delete all entries below them"}},
         {{"DN", Kind::dn, true, true}},
         "zebcfg delete -r 'cn=Archive, cn=RDBM, cn=Backends, cn=Configuration'",
         runDelete},
        {"move",
         "give an entry another DN, with all entries below it",
         {},
         {{"DN", Kind::dn, true, false}, {"NEWDN", Kind::dn, true, false}},
         "zebcfg move 'cn=Archive, cn=RDBM, cn=Backends, cn=Configuration' 'cn=Old, cn=Backends, cn=Configuration'",
         runMove},
        {"tree",
         "draw the tree of the entries",
         {{"--ascii", nullptr, "draw with plain characters"}},
         {{"DN", Kind::dn, false, false}},
         "zebcfg tree 'cn=Front End, cn=Configuration'",
         runTree},
        {"passwd",
         "set a password of an entry (default: zeb-slapdAdminPW), asking for it twice",
         {{"-y,--new-password-file", "FILE", "read it from a file; a line end after it does not count", Kind::file}},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE", Kind::attribute, false, false}},
         "zebcfg passwd cn=Configuration zeb-slapdAdminPW",
         runPasswd},
        {"check",
         "report what is wrong with a configuration file, without changing it",
         {},
         {{"FILE", Kind::file, false, false}},
         "zebcfg check zebslapd.conf",
         runCheck},
        {"edit",
         "edit the file, or one entry, and install the result if it loads",
         {},
         {{"DN", Kind::dn, false, false}},
         "EDITOR=nano zebcfg edit 'cn=SSL, cn=Configuration'",
         runEdit},
        {"restore",
         "replace the file with the last backup, or backup N; the file becomes the last backup",
         {},
         {{"N", Kind::other, false, false}},
         "zebcfg -n restore 2",
         runRestore},
        {"diff",
         "compare the last backup with the file, or any two backups or files, entry by entry",
         {},
         {{"A", Kind::file, false, false}, {"B", Kind::file, false, false}},
         "zebcfg diff 2",
         runDiff},
        {"describe",
         "show which values the known attributes take",
         {},
         {{"ATTRIBUTE", Kind::attribute, false, false}},
         "zebcfg describe zeb-slapdPort",
         runDescribe},
        {"init",
         "create a configuration file with the login of -D and -y, or ask for one",
         {},
         {{"FILE", Kind::file, true, false}},
         "zebcfg init zebslapd.conf",
         runInit},
        {"help",
         "show the help of zebcfg, or of one command",
         {},
         {{"COMMAND", Kind::command, false, false}},
         "zebcfg help search",
         nullptr},  // CommandLine shows it.
        {"__manual", "write the manual page", {}, {{"TEMPLATE", Kind::file, true, false}}, "", runManual},
        {"__complete",
         "give the words that the last one may become",
         {},
         {{"WORD", Kind::other, false, true}},
         "",
         runComplete},
    };
    return table;
}

bool isHidden(const Command& command)
{
    return std::string(command.name).rfind("__", 0) == 0;
}

const Command* findCommand(const std::string& name)
{
    const auto& table = commands();
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const Command& command) { return command.name == name; });
    return found != table.end() ? &*found : nullptr;
}

std::string longName(const Option& option)
{
    const std::string names = option.names;
    return names.substr(names.find_last_of(',') + 1);  // npos + 1 is 0: the whole name
}

std::string keyOf(const Option& option)
{
    const std::string name = longName(option);
    return name.substr(name.find_first_not_of('-'));
}
