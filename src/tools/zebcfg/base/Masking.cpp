#include "base/Masking.h"

#include "base/Attributes.h"

namespace {

bool passwordsAreShown = false;

}  // namespace

void showPasswords(bool areShown)
{
    passwordsAreShown = areShown;
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
