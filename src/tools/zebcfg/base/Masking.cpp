#include "base/Masking.h"

#include "base/Answers.h"
#include "base/Attributes.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <vector>

namespace {

constexpr char blanks[] = " \t\v\f\r";
constexpr char marks[] = ":=";
bool passwordsAreShown = false;

// A letter or digit of ASCII.
constexpr bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9');
}

constexpr auto nameCharacters = [] {
    std::array<bool, 256> table = {};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = byte >= 0x80 || isLetter(static_cast<char>(byte)) || byte == '-' || byte == '_' || byte == '.';
    return table;
}();

bool isNameCharacter(char character)
{
    return nameCharacters[static_cast<unsigned char>(character)];
}

bool hasMark(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char character) { return character == ':' || character == '='; });
}

// The letters and digits of a text in lower case.
std::string lettersOf(std::string_view text)
{
    std::string letters;
    letters.reserve(text.size());
    for (const char character : text) {
        if (isLetter(character))
            letters += static_cast<char>(character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character);
    }
    return letters;
}

// The place after that many letters and digits.
std::size_t placeAfterLetters(std::string_view text, std::size_t count)
{
    std::size_t place = 0;
    for (; count > 0; ++place)
        count -= isLetter(text[place]) ? 1 : 0;
    return place;
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

// Their letters alone.
const std::vector<std::string>& joinedNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> joined;
        for (const std::string& name : passwordNames())
            joined.push_back(lettersOf(name));
        return joined;
    }();
    return names;
}

// In letters. What is shorter cannot be or hold such a name, which spares most words of a file a comparison.
std::size_t shortestName()
{
    static const std::size_t length =
        std::min_element(joinedNames().begin(), joinedNames().end(), [](const auto& left, const auto& right) {
            return left.size() < right.size();
        })->size();
    return length;
}

// Where the name of an attribute for a password ends in the text, whatever joins its letters; npos for none.
std::size_t endOfPasswordName(std::string_view text)
{
    std::size_t end = std::string::npos;
    if (text.size() < shortestName())
        return end;
    const std::string letters = lettersOf(text);
    for (const std::string& name : joinedNames()) {
        const auto found = letters.find(name);
        if (found != std::string::npos)
            end = std::min(end, placeAfterLetters(text, found + name.size()));
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
    if (word.size() + mostSlips < shortestName())
        return false;
    const AttributeType* const type = findAttributeType(word);
    if (type != nullptr)
        return type->syntax == Syntax::password;
    if (endOfPasswordName(word) != std::string::npos)
        return true;
    static Answers<bool> answers([](std::string_view asked) { return !nearest(asked, passwordNames()).empty(); });
    return answers.of(word);
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
    const bool mayBeNamed = hasMark(line);
    for (std::string_view word = wordFrom(line, 0); !word.empty();) {
        const auto end = static_cast<std::size_t>(word.data() + word.size() - line.data());
        if (!mayBeNamed && !isNearPassword(word)) {
            word = wordFrom(line, end);
            continue;
        }
        const auto next = std::find_if(line.begin() + static_cast<std::ptrdiff_t>(end), line.end(), isNameCharacter);
        const auto value = line.find_first_not_of(std::string(blanks) + marks, end);
        const bool isNamed =
            hasMark(std::string_view(line).substr(end, static_cast<std::size_t>(next - line.begin()) - end));
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
    const bool isShort = line.size() + mostSlips < shortestName();
    if (passwordsAreShown || (isShort && !hasMark(line)))
        return std::string::npos;
    return std::min({secretAfterName(line), secretAfterWord(line), fragmentIn(line)});
}

// Numbers, words and DNs are what they are. A text may be a refused line, one that a blank in front has joined to the
// line above it, or what a failure without an attribute is about.
std::string shownValue(const std::string& attribute, const std::string& value)
{
    if (passwordsAreShown)
        return value;
    const AttributeType* const type = findAttributeType(attribute);
    if (type == nullptr ? isSecret(attribute) : type->syntax == Syntax::password)
        return passwordMask;
    if (isSameName(attribute, invalidLine) && isFragment(value))
        return passwordMask;
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
