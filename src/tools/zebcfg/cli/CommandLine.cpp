// The one place that knows the library for command lines.
#include "cli/CommandLine.h"

#include "base/Attributes.h"
#include "base/Failure.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <iterator>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

namespace {

using Values = std::map<std::string, std::vector<std::string>>;

// The rest of the help, after the list of options.
std::string footerOf(const Command& command)
{
    return std::string("Example:\n  ") + command.example + "\n\nThe options of all commands: zebcfg --help";
}

std::string usageOf(const Command& command)
{
    std::string usage = std::string("Usage: zebcfg [OPTIONS] ") + command.name;
    for (const Operand& operand : command.operands) {
        const std::string name = std::string(operand.name) + (operand.repeats ? "..." : "");
        usage += operand.isRequired ? ' ' + name : " [" + name + ']';
    }
    return usage + '\n';
}

class HelpFormatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        const Command* const command = findCommand(app->get_name());
        return command != nullptr ? usageOf(*command) : CLI::Formatter::make_usage(app, name);
    }
};

// The table as a parser. The values that it reads live in its slots.
class Parser {
public:
    Parser() : app("The command line tool for the configuration file of the directory server.", "zebcfg")
    {
        app.formatter(std::make_shared<HelpFormatter>());
        app.get_formatter()->label("SUBCOMMAND", "COMMAND");
        app.set_help_flag();
        app.fallthrough();
        app.allow_extras();
        app.footer("Each command has its own help: zebcfg COMMAND --help");
        addOptions(app, globalOptions());
        app.require_subcommand(0, 1);
        for (const Command& command : commands()) {
            if (!isHidden(command))
                addCommand(command);
        }
    }

    // messages is set also when the line is refused, by the options up to the fault.
    Call parse(int argc, char** argv, Messages& messages)
    {
        char** const end = argv + argc;
        char** const mark = std::find_if(argv, end, [](const char* word) { return std::strcmp(word, "--") == 0; });
        std::string fault;
        try {
            app.parse(static_cast<int>(mark - argv), argv);
        } catch (const CLI::ParseError& error) {
            fault = error.what();
        }
        // Words after the mark are operands, whatever they look like.
        words.insert(words.end(), mark == end ? end : mark + 1, end);
        messages = {isGiven("json"), isGiven("verbose"), isGiven("quiet")};
        if (!fault.empty())
            throw Failure(0, fault + "; see zebcfg --help");
        const auto chosen = app.get_subcommands();
        const CLI::App& used = chosen.empty() ? app : *chosen.front();
        const Command* const command = chosen.empty() ? nullptr : findCommand(used.get_name());
        Values given = valuesOf(used);
        if (given.count("help") != 0 || given.count("version") != 0)
            return told(used, std::move(given));
        requireAllKnown(command);
        requireWords(command);
        requireOperands(command);
        if (command->run == nullptr)
            return help(std::move(given));
        return {command, std::move(given), words};
    }

private:
    struct Slot {
        const Option& source;
        CLI::App* app;
        std::string key;
        std::string value;
        CLI::Option* option = nullptr;
    };

    void addOptions(CLI::App& to, const std::vector<Option>& options)
    {
        for (const Option& option : options) {
            Slot& slot = *slots.emplace_back(std::make_unique<Slot>(Slot{option, &to, keyOf(option), {}}));
            if (option.value == nullptr) {
                slot.option = to.add_flag(option.names, option.help);
                continue;
            }
            slot.option = to.add_option(option.names, slot.value, option.help)->type_name(option.value);
            slot.option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        }
    }

    void addCommand(const Command& command)
    {
        CLI::App* const sub = app.add_subcommand(command.name, command.summary);
        sub->set_help_flag();
        sub->group("Commands");
        sub->footer(footerOf(command));
        addOptions(*sub, command.options);
        if (!command.operands.empty())
            sub->add_option("operands", words)->group("")->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    bool isGiven(const char* key) const
    {
        return std::any_of(slots.begin(), slots.end(),
                           [&](const auto& slot) { return slot->key == key && slot->option->count() != 0; });
    }

    // Options of the command come first where a key is used twice.
    Values valuesOf(const CLI::App& used) const
    {
        Values given;
        for (const auto& slot : slots) {
            if (slot->option->count() == 0 || (slot->app != &app && slot->app != &used))
                continue;
            given[slot->key].assign(slot->option->count(), slot->value);
        }
        return given;
    }

    Call help(Values given)
    {
        if (!words.empty())
            requireCommand(words.front());
        given["help"] = {""};
        app.clear();  // It would show the help of the command that was given: help.
        return told(words.empty() ? app : *app.get_subcommand(words.front()), std::move(given));
    }

    static void requireCommand(const std::string& name)
    {
        const Command* const command = findCommand(name);
        if (command != nullptr && !isHidden(*command))
            return;
        std::vector<std::string> names;
        for (const Command& known : commands()) {
            if (!isHidden(known))
                names.emplace_back(known.name);
        }
        const std::string hint = nearest(name, names);
        throw Failure(0, "there is no command " + name +
                             (hint.empty() ? "; see zebcfg --help" : " (did you mean " + hint + "?)"));
    }

    static Call told(const CLI::App& used, Values given)
    {
        if (given.count("help") != 0)
            std::cout << used.help();
        else
            std::cout << "zebcfg " ZEBCFG_VERSION "\n";
        return {nullptr, std::move(given), {}};
    }

    void requireAllKnown(const Command* command) const
    {
        const auto extras = app.remaining(true);
        if (command == nullptr && extras.empty())
            throw Failure(0, "a command is missing; see zebcfg --help");
        if (command == nullptr && extras.front().front() != '-')
            requireCommand(extras.front());
        if (extras.empty())
            return;
        const bool isOption = extras.front().front() == '-';
        refuse(command,
               isOption ? "there is no option " + extras.front().substr(0, extras.front().find('=')) : tooMany);
    }

    // The words themselves are not repeated: one may be a password.
    [[noreturn]] static void refuse(const Command* command, const std::string& reason)
    {
        throw Failure(0, reason + "; see zebcfg " + (command != nullptr ? command->name + std::string(" ") : "") +
                             "--help");
    }

    static std::string listOf(const std::vector<std::string>& words)
    {
        std::string list;
        for (const std::string& word : words)
            list += (list.empty() ? "" : word == words.back() ? " or " : ", ") + word;
        return list;
    }

    void requireWords(const Command* command) const
    {
        for (const auto& slot : slots) {
            const auto& known = slot->source.words;
            if (slot->option->count() != 0 && !known.empty() &&
                std::find(known.begin(), known.end(), slot->value) == known.end())
                refuse(command, longName(slot->source) + " takes " + listOf(known) + ", not " + slot->value);
        }
    }

    void requireOperands(const Command* command) const
    {
        std::size_t most = 0;
        for (const Operand& operand : command->operands) {
            if (operand.isRequired && words.size() <= most)
                refuse(command, std::string(operand.name) + " is missing");
            most = operand.repeats ? words.size() : most + 1;
        }
        if (words.size() > most)
            refuse(command, tooMany);
    }

    static constexpr char tooMany[] = "there are too many arguments";

    CLI::App app;
    std::vector<std::unique_ptr<Slot>> slots;
    std::vector<std::string> words;
};

}  // namespace

Call readCommandLine(int argc, char** argv, Messages& messages)
{
    // The words after the hidden command are another command line, and no options of this one.
    const Command* const hidden = argc > 1 ? findCommand(argv[1]) : nullptr;
    if (hidden != nullptr && isHidden(*hidden))
        return {hidden, {}, std::vector<std::string>(argv + 2, argv + argc)};
    return Parser().parse(argc, argv, messages);
}
