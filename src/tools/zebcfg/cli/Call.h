// One command line: the command, its options and operands, and what the global options say.
#ifndef ZEBCFG_CALL_H
#define ZEBCFG_CALL_H

#include "cli/Command.h"
#include "formats/Messages.h"
#include "update/Target.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

// The configuration file without -F: that of the environment or of the installation; empty for none.
std::string unnamedFile();

// A number from 0; any other text is refused with the message.
int wholeNumber(const std::string& text, const std::string& refusal);

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
    // The value as a number from 0. Throws Failure, with what it counts, for any other.
    int number(const std::string& key, int otherwise, const char* what) const;

    // The configuration file as the user calls it. Throws Failure (91) when none is named and there is no default.
    std::string fileName() const;
    // Whether the user is there to be asked: standard input and standard error are terminals, and --yes is not given. A
    // dry run has nothing to ask.
    bool mayAsk() const;
    // Empty for no backup.
    std::string backupName() const;
    // The same for another file, without the login.
    Target targetFor(const std::string& file) const;
    // The password that an option names, reads or asks for, if there is one. Throws Failure.
    std::optional<std::string> givenPassword() const;
    // The file with what the options say of it. Asks for the login's password, or reads it. Throws Failure.
    Target target() const;
    bool isQuiet() const { return has("quiet"); }
    bool isJson() const { return has("json"); }
    // Whether what goes to a terminal, standard output for one, is to be coloured.
    bool hasColor(int descriptor) const;
    Messages messages() const { return {isJson(), has("verbose"), isQuiet()}; }

private:
    std::string backupNameFor(const std::string& file) const;
    std::optional<Login> login() const;
    int generations() const;

    const Command* chosenCommand;
    std::map<std::string, std::vector<std::string>> options;
    std::vector<std::string> words;
};

#endif
