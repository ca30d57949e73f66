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

// The letters and digits of a text in lower case, and where they stand.
struct Letters {
    explicit Letters(std::string_view text)
    {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if (byte >= 0x80 || std::isalnum(byte) == 0)
                continue;
            joined += static_cast<char>(std::tolower(byte));
            places.push_back(i);
        }
    }

    std::string joined;
    std::vector<std::size_t> places;
};

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

// Where the name of an attribute for a password ends in the text, whatever joins its letters; npos for none.
std::size_t endOfPasswordName(std::string_view text)
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> joined;
        for (const std::string& name : passwordNames())
            joined.push_back(Letters(name).joined);
        return joined;
    }();
    const Letters letters(text);
    std::size_t end = std::string::npos;
    for (const std::string& name : names) {
        const auto found = letters.joined.find(name);
        if (found != std::string::npos)
            end = std::min(end, letters.places[found + name.size() - 1] + 1);
    }
    return end;
}

bool contains(std::string_view text, std::string_view name)
{
    return std::search(text.begin(), text.end(), name.begin(), name.end(), [](unsigned char a, unsigned char b) {
               return std::tolower(a) == std::tolower(b);
           }) != text.end();
}

// The name of an attribute for a password, with something in it or around it, or one that is near to it.
bool isNearPassword(std::string_view word)
{
    const AttributeType* const type = findAttributeType(word);
    if (type != nullptr)
        return type->syntax == Syntax::password;
    return endOfPasswordName(word) != std::string::npos || !nearest(word, passwordNames()).empty();
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

// What is joined to the name ends it, as long as it is short.
std::size_t secretAfterName(const std::string& line)
{
    constexpr std::ptrdiff_t longestEnd = 3;
    const auto end = line.begin() + static_cast<std::ptrdiff_t>(std::min(endOfPasswordName(line), line.size()));
    const auto rest = std::find_if(end, line.end(), [](char character) {
        return static_cast<unsigned char>(character) >= 0x80 || !isNameCharacter(character);
    });
    const auto begin = (rest - end > longestEnd ? end : rest) - line.begin();
    return line.find_first_not_of(std::string(blanks) + marks, static_cast<std::size_t>(begin));
}

// The same after a word that is near to such a name, or, with a mark after it, sounds like one.
std::size_t secretAfterWord(const std::string& line)
{
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

// Whether a refused line may be the rest of one that was broken: it has no value, and no name like a known one.
bool isFragment(const std::string& refused)
{
    const auto colon = refused.find(':');
    const std::string_view name = wordFrom(refused, 0);
    return refused.find_first_not_of(blanks, colon + 1) == std::string::npos && findAttributeType(name) == nullptr &&
           attributeHint(name).empty();
}

std::size_t fragmentIn(const std::string& line)
{
    const std::string_view name = wordFrom(line, 0);
    const auto value = line.find_first_not_of(std::string(blanks) + marks,
                                              static_cast<std::size_t>(name.data() + name.size() - line.data()));
    return isSameName(name, invalidLine) && value != std::string::npos && isFragment(line.substr(value))
               ? value
               : std::string::npos;
}

}  // namespace

void showPasswords(bool areShown)
{
    passwordsAreShown = areShown;
}

// Options of the name do not count. One that begins with a blank may continue a comment that has the true one.
bool isSecret(std::string_view attribute)
{
    const std::string_view name = wordFrom(attribute, 0);
    const AttributeType* const type = findAttributeType(name);
    if (type != nullptr)
        return type->syntax == Syntax::password;
    return (!attribute.empty() && attribute.data() != name.data()) || isNearPassword(attribute) ||
           isNearPassword(name) || soundsSecret(name);
}

std::size_t secretOf(const std::string& line)
{
    return passwordsAreShown ? std::string::npos
                             : std::min({secretAfterName(line), secretAfterWord(line), fragmentIn(line)});
}

// Numbers, words and DNs are what they are. A text may be a refused line, one that a blank in front has joined to the
// line above it, or what a failure without an attribute is about.
std::string shownValue(const std::string& attribute, const std::string& value)
{
    if (passwordsAreShown)
        return value;
    if (isSecret(attribute))
        return passwordMask;
    if (isSameName(attribute, invalidLine) && isFragment(value))
        return passwordMask;
    const AttributeType* const type = findAttributeType(attribute);
    return type != nullptr && type->syntax != Syntax::text ? value : shownLine(value);
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
