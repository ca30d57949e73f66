// The commands of the tool: one table, from which dispatch, help, completion and the list in the manual page come.
#ifndef ZEBCFG_COMMAND_H
#define ZEBCFG_COMMAND_H

#include <string>
#include <vector>

class Call;

// What a word on the command line stands for, so that a shell can complete it.
enum class Kind { other, file, dn, attribute, assignment, command };

struct Option {
    const char* names;  // "-b,--base"; the last one without its hyphens is the key in a Call
    const char* value;  // what it takes, for the help; null for a flag
    const char* help;
    Kind kind = Kind::other;
    std::vector<std::string> words = {};  // the values that it takes; none for any value
};

struct Operand {
    const char* name;
    Kind kind;
    bool isRequired;
    bool repeats;
};

struct Command {
    const char* name;  // one that begins with "__" is shown nowhere
    const char* summary;
    std::vector<Option> options;
    std::vector<Operand> operands;
    const char* example;
    int (*run)(const Call& call);  // the exit status; throws Failure
};

const std::vector<Command>& commands();
const std::vector<Option>& globalOptions();
// Whether it is for shells, not for people.
bool isHidden(const Command& command);
const Command* findCommand(const std::string& name);
// "--base" for "-b,--base": the name that is told in messages.
std::string longName(const Option& option);
std::string keyOf(const Option& option);

// Each in a file of its own below commands/.
int runAdd(const Call& call);
int runApply(const Call& call);
int runCheck(const Call& call);
int runCompare(const Call& call);
int runComplete(const Call& call);
int runDelete(const Call& call);
int runDescribe(const Call& call);
int runDiff(const Call& call);
int runEdit(const Call& call);
int runGet(const Call& call);
int runInit(const Call& call);
int runManual(const Call& call);
int runModify(const Call& call);
int runMove(const Call& call);
int runPasswd(const Call& call);
int runRestore(const Call& call);
int runSearch(const Call& call);
int runSet(const Call& call);
int runTree(const Call& call);
int runUnset(const Call& call);

#endif
