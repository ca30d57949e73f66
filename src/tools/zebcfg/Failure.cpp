#include "Failure.h"

#include "Attributes.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr int otherCode = 80;
bool passwordsAreShown = false;

}  // namespace

Failure::Failure(int resultCode, std::string message, std::string shownFile)
    : code(resultCode), text(std::move(message)), file(std::move(shownFile))
{}

int Failure::exitStatus() const noexcept
{
    if (code == 0)
        return 1;
    return code > 0 && code <= 255 ? code : otherCode;
}

std::string Failure::codes() const
{
    if (code == 0)
        return {};
    return std::to_string(code) + (extended != 0 && extended != code ? ", " + std::to_string(extended) : "");
}

std::string Failure::line() const
{
    std::string result = attribute.empty() ? text : attribute + ": " + text;
    if (code != 0)
        result += " (" + codes() + ')';
    if (!file.empty())
        result += " at " + file + (fileLine > 0 ? ':' + std::to_string(fileLine) : "");
    return result;
}

Failure systemFailure(int resultCode, const std::string& message, const std::string& shownFile)
{
    const int error = errno;
    return {resultCode, message + ": " + std::strerror(error), shownFile};
}

void showPasswords(bool areShown)
{
    passwordsAreShown = areShown;
}

bool arePasswordsShown()
{
    return passwordsAreShown;
}

// A name may have blanks behind it, as the library takes all up to the colon. A quarantined line may hold the password
// that was refused, and so may the text that a failure without an attribute is about.
std::string shownValue(const std::string& attribute, const std::string& value)
{
    if (passwordsAreShown)
        return value;
    if (isPassword(attribute.substr(0, attribute.find_first_of(" \t"))))
        return passwordMask;
    return attribute.empty() || isSameName(attribute, invalidLine) ? shownLine(value) : value;
}

std::string shownLine(const std::string& line)
{
    constexpr char separators[] = ":= \t";
    const auto begin = line.find_first_not_of("# \t");  // A line may have been commented out.
    const auto end = line.find_first_of(separators, begin);
    const auto value = line.find_first_not_of(separators, end);
    if (value == std::string::npos)
        return line;
    return line.substr(0, value) + shownValue(line.substr(begin, end - begin), line.substr(value));
}

std::string replaced(std::string text, const std::string& word, const std::string& replacement)
{
    for (auto at = word.empty() ? std::string::npos : text.find(word); at != std::string::npos;
         at = text.find(word, at + replacement.size()))
        text.replace(at, word.size(), replacement);
    return text;
}
