// What a shell asks when the user wants a word completed: zebcfg __complete WORD... gives the words that the last one
// may become, one a line. Failures give none.
#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "files/LiveFile.h"
#include "files/MemoryFile.h"
#include "library/Outline.h"
#include "library/Session.h"

#include <algorithm>
#include <iostream>
#include <optional>

namespace {

// How much of the command line is understood: the words before the last.
struct Line {
    const Command* command = nullptr;
    std::vector<std::string> operands;
    const Option* pending = nullptr;  // waits for its value
    std::string file;                 // of -F

    // The value that the option waits for, if one does.
    void take(const std::string& value)
    {
        if (pending != nullptr && longName(*pending) == "--config")
            file = value;
        pending = nullptr;
    }
};

std::vector<std::string> namesOf(const Option& option)
{
    const std::string names = option.names;
    const auto comma = names.find(',');
    if (comma == std::string::npos)
        return {names};
    return {names.substr(0, comma), names.substr(comma + 1)};
}

std::vector<Option> optionsOf(const Command* command)
{
    std::vector<Option> options = command != nullptr ? command->options : std::vector<Option>();
    options.insert(options.end(), globalOptions().begin(), globalOptions().end());
    return options;
}

const Option* findOption(const std::vector<Option>& options, const std::string& word)
{
    const auto found = std::find_if(options.begin(), options.end(), [&](const Option& option) {
        const auto names = namesOf(option);
        return std::find(names.begin(), names.end(), word) != names.end();
    });
    return found != options.end() ? &*found : nullptr;
}

// Gives commands, and options of the whole tool, for the words before the last. The options live as long as options.
Line understand(const std::vector<std::string>& words, std::vector<Option>& options)
{
    Line line;
    options = optionsOf(nullptr);
    for (auto word = words.begin(); word + 1 < words.end(); ++word) {
        if (line.pending != nullptr) {
            line.take(*word);
        } else if (word->size() > 1 && word->front() == '-') {
            const auto equals = word->find('=');
            const Option* const option = findOption(options, word->substr(0, equals));
            if (option != nullptr && option->value != nullptr)
                line.pending = option;
            if (equals != std::string::npos)
                line.take(word->substr(equals + 1));
        } else if (line.command == nullptr) {
            line.command = findCommand(*word);
            options = optionsOf(line.command);
        } else {
            line.operands.push_back(*word);
        }
    }
    return line;
}

std::vector<std::string> dnsOf(const std::string& file)
{
    const std::string name = file.empty() ? unnamedFile() : file;
    const MemoryFile copy(LiveFile(name).text());
    const Session session(copy.name(), name);
    std::vector<std::string> dns;
    for (const Node& node : outlineOf(session)) {
        if (shownDn(node.dn) == node.dn)
            dns.push_back(node.dn);
    }
    return dns;
}

std::vector<std::string> candidatesOf(Kind kind, const Line& line)
{
    std::vector<std::string> candidates;
    if (kind == Kind::dn)
        return dnsOf(line.file);
    if (kind == Kind::command) {
        for (const Command& command : commands()) {
            if (!isHidden(command))
                candidates.emplace_back(command.name);
        }
    }
    if (kind == Kind::attribute || kind == Kind::assignment) {
        for (const AttributeType& type : attributeTypes())
            candidates.push_back(type.name);
    }
    for (std::string& candidate : candidates)
        candidate += kind == Kind::assignment ? "=" : "";
    return candidates;
}

// What the last word stands for. The last operand may repeat.
Kind kindOf(const Line& line)
{
    if (line.pending != nullptr)
        return line.pending->kind;
    if (line.command == nullptr)
        return Kind::command;
    const auto& operands = line.command->operands;
    if (operands.empty() || (line.operands.size() >= operands.size() && !operands.back().repeats))
        return Kind::other;
    return operands[std::min(line.operands.size(), operands.size() - 1)].kind;
}

// The values of an assignment that has its name already: the words of its attribute.
std::vector<std::string> assignmentsOf(const std::string& word)
{
    std::vector<std::string> candidates;
    const std::string name = word.substr(0, word.find('='));
    if (const AttributeType* const type = findAttributeType(name))
        candidates = type->words;
    for (std::string& candidate : candidates)
        candidate.insert(0, name + '=');
    return candidates;
}

std::vector<std::string> completionsOf(const std::vector<std::string>& words)
{
    std::vector<Option> options;
    const Line line = understand(words, options);
    const std::string last = words.empty() ? "" : words.back();
    if (line.pending == nullptr && !last.empty() && last.front() == '-') {
        std::vector<std::string> names(options.size());
        std::transform(options.begin(), options.end(), names.begin(), longName);
        return names;
    }
    if (line.pending != nullptr && !line.pending->words.empty())
        return line.pending->words;
    const Kind kind = kindOf(line);
    if (kind == Kind::file)
        return {"__files"};
    if (kind == Kind::assignment && last.find('=') != std::string::npos)
        return assignmentsOf(last);
    return candidatesOf(kind, line);
}

bool begins(const std::string& candidate, const std::string& word)
{
    return candidate.size() >= word.size() && isSameName(candidate.substr(0, word.size()), word);
}

// The candidate as the user writes DNs: without blanks after the commas where the word has none.
std::string writtenLike(const std::string& candidate, const std::string& word)
{
    const auto comma = word.find(',');
    const bool isDense = comma != std::string::npos && comma + 1 < word.size() && word[comma + 1] != ' ';
    return isDense ? replaced(candidate, ", ", ",") : candidate;
}

}  // namespace

int runComplete(const Call& call)
{
    const std::vector<std::string>& words = call.operands();
    const std::string last = words.empty() ? "" : words.back();
    try {
        for (const std::string& candidate : completionsOf(words)) {
            const std::string written = writtenLike(candidate, last);
            if (candidate == "__files" || begins(written, last))
                std::cout << written << '\n';
        }
    } catch (const Failure&) {
        return 1;  // A file that does not load has no DNs to offer.
    }
    return 0;
}
