#include "base/Filter.h"

#include "base/Failure.h"

#include <cctype>

namespace {

constexpr int filterError = 87;  // its usual name has another number in <ldap.h>
constexpr char blanks[] = " \t\r\n";

// The filter itself is not repeated: its value may be a password.
[[noreturn]] void refuse(const std::string& reason)
{
    throw Failure(filterError, "the filter cannot be used: " + reason);
}

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isHexPair(const std::string& text, std::size_t at)
{
    return at + 2 <= text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0 &&
           std::isxdigit(static_cast<unsigned char>(text[at + 1])) != 0;
}

void requirePlainValue(const std::string& value)
{
    if (value == "*")
        return;
    if (value.empty())
        refuse("a value or * is missing after the =");
    if (value.find('*') != std::string::npos)
        refuse("* stands for any value, not for a part of one (a * of the value is written \\2a)");
    if (value.find_first_of("()") != std::string::npos)
        refuse("one test is possible, and a parenthesis of its value is written \\28 or \\29");
    for (auto at = value.find('\\'); at != std::string::npos; at = value.find('\\', at + 1)) {
        if (!isHexPair(value, at + 1))
            refuse("two hex digits belong after a backslash");
    }
}

}  // namespace

std::string simpleFilter(const std::string& text)
{
    std::string rest = trimmed(text);
    if (!rest.empty() && rest.front() == '(') {
        if (rest.back() != ')')
            refuse("the closing parenthesis is missing");
        rest = trimmed(rest.substr(1, rest.size() - 2));
    }
    if (!rest.empty() && std::string("&|!(").find(rest.front()) != std::string::npos)
        refuse("one test on one attribute is possible, without &, | and !");
    const auto equals = rest.find('=');
    const std::string name = trimmed(rest.substr(0, equals));
    if (name.empty() || equals == std::string::npos)
        refuse("it has the form (attribute=value) or (attribute=*)");
    if (std::string("<>~:").find(name.back()) != std::string::npos)
        refuse("only = is possible, not >=, <=, ~= or :=");
    const std::string value = trimmed(rest.substr(equals + 1));
    requirePlainValue(value);
    return name + '=' + value;
}
