// One command line: the command, its options and operands, and what the global options say.
#ifndef ZEBCFG_CALL_H
#define ZEBCFG_CALL_H

#include "Command.h"
#include "Failure.h"
#include "Session.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

// How failures and notes are written to standard error.
struct Telling {
    bool isJson = false;
    bool isVerbose = false;
};

void report(const Failure& failure, const Telling& telling);

class Call {
public:
    // given: for each option that was given, by its key, its last value for each time; a flag has empty ones.
    Call(const Command* chosen, std::map<std::string, std::vector<std::string>> given,
         std::vector<std::string> operandsGiven);

    const Command* command() const noexcept { return chosenCommand; }
    const std::vector<std::string>& operands() const noexcept { return words; }
    // The operand at that place, or the empty text.
    std::string operand(std::size_t place) const;
    bool has(const std::string& key) const { return options.count(key) != 0; }
    std::size_t count(const std::string& key) const;
    // The last value that was given.
    std::string value(const std::string& key, const std::string& otherwise = {}) const;

    // The configuration file as the user calls it. Throws Failure (91) when none is named and there is no default.
    std::string fileName() const;
    // Empty for no backup.
    std::string backupName() const;
    // Asks or reads the password at the first time. Throws Failure.
    const std::optional<Login>& login() const;
    bool isDryRun() const { return has("dry-run"); }
    bool isVerbose() const { return has("verbose"); }
    bool isQuiet() const { return has("quiet"); }
    bool isJson() const { return has("json"); }
    // Whether what goes to a terminal, standard output for one, is to be coloured.
    bool hasColor(int descriptor) const;

    Telling telling() const { return {isJson(), isVerbose()}; }
    // One note on standard error; say() keeps still under --quiet.
    void say(const std::string& text) const;
    void warn(const std::string& text) const;

private:
    const Command* chosenCommand;
    std::map<std::string, std::vector<std::string>> options;
    std::vector<std::string> words;
    mutable std::optional<Login> loginOnce;
    mutable bool isLoginKnown = false;
};

#endif
