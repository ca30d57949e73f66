// Writes the manual page: the file named, with lists out of the tables of commands and options in their places.
#include "base/Failure.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "files/Descriptor.h"

#include <iostream>

namespace {

// The text with its characters taken literally by scdoc.
std::string literal(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (std::string("\\*_~<>#[]-.").find(character) != std::string::npos)
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string synopsisOf(const Command& command)
{
    std::string synopsis = "*zebcfg* [_options_] *" + literal(command.name) + '*';
    for (const Operand& operand : command.operands) {
        const std::string name = '_' + literal(operand.name) + '_' + (operand.repeats ? "..." : "");
        synopsis += operand.isRequired ? ' ' + name : " [" + name + ']';
    }
    return synopsis;
}

std::string listOf(const std::vector<Option>& options)
{
    std::string list;
    for (const Option& option : options) {
        const std::string value = option.value != nullptr ? " _" + literal(option.value) + '_' : "";
        list +=
            '*' + replaced(literal(option.names), ",", "*, *") + '*' + value + "\n\t" + literal(option.help) + "\n\n";
    }
    return list;
}

std::string listOf(const std::vector<Command>& table)
{
    std::string list;
    for (const Command& command : table) {
        if (isHidden(command))
            continue;
        list += "## " + std::string(command.name) + "\n\n" + synopsisOf(command) + "\n\n" + literal(command.summary) +
                "\n\n" + listOf(command.options) + "```\n" + command.example + "\n```\n\n";
    }
    return list;
}

}  // namespace

int runManual(const Call& call)
{
    std::string page = readFile(call.operand(0), call.operand(0));
    page = replaced(page, "@OPTIONS@\n", listOf(globalOptions()));
    std::cout << replaced(page, "@COMMANDS@\n", listOf(commands()));
    return 0;
}
