#include "base/Masking.h"

#include "base/Attributes.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

namespace {

constexpr char blanks[] = " \t\v\f\r";
constexpr char marks[] = ":=";
bool passwordsAreShown = false;

bool isNameCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || std::isalnum(byte) != 0 || character == '-' || character == '_' || character == '.';
}

const std::vector<std::string>& passwordNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> found;
        for (const AttributeType& type : attributeTypes()) {
            if (type.syntax == Syntax::password)
                found.push_back(type.name);
        }
        return found;
    }();
    return names;
}

bool contains(std::string_view text, std::string_view name)
{
    return std::search(text.begin(), text.end(), name.begin(), name.end(), [](unsigned char a, unsigned char b) {
               return std::tolower(a) == std::tolower(b);
           }) != text.end();
}

// The name of an attribute for a password, with something around it, or one that is near to it.
bool isNearPassword(std::string_view word)
{
    const AttributeType* const type = findAttributeType(word);
    if (type != nullptr)
        return type->syntax == Syntax::password;
    const auto& names = passwordNames();
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) { return contains(word, name); }) ||
           !nearest(word, names).empty();
}

bool soundsSecret(std::string_view name)
{
    const auto endsWith = [&](std::string_view end) {
        return name.size() >= end.size() && isSameName(name.substr(name.size() - end.size()), end);
    };
    return contains(name, "passw") || endsWith("pw") || endsWith("pwd");
}

// The bytes of the first word from a place on.
std::string_view wordFrom(std::string_view text, std::size_t place)
{
    const auto* const begin = std::find_if(text.begin() + place, text.end(), isNameCharacter);
    const auto* const end = std::find_if_not(begin, text.end(), isNameCharacter);
    return text.substr(static_cast<std::size_t>(begin - text.begin()), static_cast<std::size_t>(end - begin));
}

}  // namespace

void showPasswords(bool areShown)
{
    passwordsAreShown = areShown;
}

// Options of the name and blanks around it do not count.
bool isSecret(std::string_view attribute)
{
    const std::string_view name = wordFrom(attribute, 0);
    const AttributeType* const type = findAttributeType(name);
    return type != nullptr ? type->syntax == Syntax::password : isNearPassword(name) || soundsSecret(name);
}

std::size_t secretOf(const std::string& line)
{
    if (passwordsAreShown)
        return std::string::npos;
    for (std::string_view word = wordFrom(line, 0); !word.empty();) {
        const auto end = static_cast<std::size_t>(word.data() + word.size() - line.data());
        const auto next = std::find_if(line.begin() + static_cast<std::ptrdiff_t>(end), line.end(), isNameCharacter);
        const auto value = line.find_first_not_of(std::string(blanks) + marks, end);
        const bool isNamed =
            line.substr(end, static_cast<std::size_t>(next - line.begin()) - end).find_first_of(marks) !=
            std::string::npos;
        if (value != std::string::npos && (isNearPassword(word) || (isNamed && isSecret(word))))
            return value;
        word = wordFrom(line, end);
    }
    return std::string::npos;
}

// The values of known attributes are what they are. Another may be a refused line, or the text that a failure without
// an attribute is about.
std::string shownValue(const std::string& attribute, const std::string& value)
{
    if (passwordsAreShown)
        return value;
    if (isSecret(attribute))
        return passwordMask;
    const AttributeType* const type = findAttributeType(attribute);
    return type != nullptr && !isSameName(attribute, invalidLine) ? value : shownLine(value);
}

std::string shownLine(const std::string& line)
{
    const auto secret = secretOf(line);
    return secret == std::string::npos ? line : line.substr(0, secret) + passwordMask;
}

std::string shownText(const std::string& text)
{
    std::istringstream in(text);
    std::string shown;
    for (std::string line; std::getline(in, line);)
        shown += shownLine(line) + '\n';
    return shown;
}

bool holdsMask(const std::string& value)
{
    constexpr std::size_t length = sizeof passwordMask - 1;
    return value.size() >= length && value.compare(value.size() - length, length, passwordMask) == 0;
}
