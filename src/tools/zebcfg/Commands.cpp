#include "Command.h"

#include <algorithm>

const std::vector<Option>& globalOptions()
{
    static const std::vector<Option> options = {
        {"-F,--config", "FILE", "the configuration file", Kind::file},
        {"-B,--backup", "FILE", "where the old file goes (default: the file's name with .bak behind it)", Kind::file},
        {"--no-backup", nullptr, "keep no backup"},
        {"-D,--bind-dn", "DN", "log in as the administrator DN", Kind::dn},
        {"-w,--password", "PASSWORD", "the login's password; others can see it on the command line"},
        {"-W,--ask-password", nullptr, "ask for the login's password"},
        {"-y,--password-file", "FILE", "read the login's password from a file", Kind::file},
        {"-n,--dry-run", nullptr, "check the change, show it as a diff, and change nothing"},
        {"-v,--verbose", nullptr, "tell more; behind a failure, the library's report"},
        {"-q,--quiet", nullptr, "tell only failures"},
        {"-j,--json", nullptr, "write JSON"},
        {"--color", "WHEN", "colour: auto, always or never"},
        {"--show-passwords", nullptr, "show passwords instead of ********"},
        {"-V,--version", nullptr, "show the version"},
        {"-h,--help", nullptr, "show this help"},
    };
    return options;
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {"get",
         "show the values of one attribute, one a line",
         {},
         {{"DN", Kind::dn, true, false}, {"ATTRIBUTE", Kind::attribute, true, false}},
         "zebcfg get cn=Configuration zeb-slapdPort",
         runGet},
    };
    return table;
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
