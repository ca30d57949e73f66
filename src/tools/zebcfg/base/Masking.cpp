#include "base/Masking.h"

#include "base/Answers.h"
#include "base/Attributes.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr char blanks[] = " \t\v\f\r";
constexpr char blanksAndMarks[] = " \t\v\f\r:=";
constexpr std::size_t longestEnd = 3;  // of what may be joined to a name
bool passwordsAreShown = false;

constexpr bool isLetterOrDigit(char character)
{
    const char lower = lowered(character);
    return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9');
}

constexpr auto nameCharacters = [] {
    std::array<bool, 256> table = {};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] =
            byte >= 0x80 || isLetterOrDigit(static_cast<char>(byte)) || byte == '-' || byte == '_' || byte == '.';
    return table;
}();

bool isNameCharacter(char character)
{
    return nameCharacters[static_cast<unsigned char>(character)];
}

// The letters and digits of a text in lower case.
std::string lettersOf(std::string_view text)
{
    std::string letters;
    letters.reserve(text.size());
    for (const char character : text) {
        if (isLetterOrDigit(character))
            letters += lowered(character);
    }
    return letters;
}

// Where that many letters and digits end.
std::size_t endOfLetters(std::string_view text, std::size_t count)
{
    std::size_t place = 0;
    for (; count > 0; ++place)
        count -= isLetterOrDigit(text[place]) ? 1 : 0;
    return place;
}

// Their letters alone.
const std::vector<std::string>& passwordNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> found;
        for (const AttributeType& type : attributeTypes()) {
            if (type.syntax == Syntax::password)
                found.push_back(lettersOf(type.name));
        }
        return found;
    }();
    return names;
}

// Of the names of attributes for passwords.
std::size_t shortestName()
{
    static const std::size_t length =
        std::min_element(passwordNames().begin(), passwordNames().end(), [](const auto& left, const auto& right) {
            return left.size() < right.size();
        })->size();
    return length;
}

// Where the name of an attribute for a password ends in the text, whatever joins its letters; npos for none.
std::size_t endOfPasswordName(std::string_view text)
{
    if (text.size() < shortestName())
        return std::string::npos;
    const auto& names = passwordNames();
    const std::string letters = lettersOf(text);
    std::size_t count = std::string::npos;
    for (const std::string& name : names) {
        const auto found = letters.find(name);
        if (found != std::string::npos)
            count = std::min(count, found + name.size());
    }
    return count != std::string::npos ? endOfLetters(text, count) : count;
}

bool contains(std::string_view text, std::string_view name)
{
    return std::search(text.begin(), text.end(), name.begin(), name.end(),
                       [](char a, char b) { return lowered(a) == lowered(b); }) != text.end();
}

bool isMisspeltPassword(std::string_view word)
{
    if (word.size() + mostSlips < shortestName())
        return false;  // as most words
    static Answers<bool> answers(
        [](std::string_view asked) { return !nearest(lettersOf(asked), passwordNames()).empty(); });
    return answers.of(word);
}

bool soundsSecret(std::string_view name)
{
    constexpr std::size_t lengthAndEnd = 2 + longestEnd;
    const std::string_view end = name.substr(name.size() - std::min(name.size(), lengthAndEnd));
    return contains(end, "pw") || contains(name, "passw");
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
    const auto end = line.begin() + static_cast<std::ptrdiff_t>(std::min(endOfPasswordName(line), line.size()));
    const auto rest = std::find_if(end, line.end(), [](char character) {
        return static_cast<unsigned char>(character) >= 0x80 || !isNameCharacter(character);
    });
    const bool isJoined = static_cast<std::size_t>(rest - end) <= longestEnd;
    const auto begin = (isJoined ? rest : end) - line.begin();
    return line.find_first_not_of(blanksAndMarks, static_cast<std::size_t>(begin));
}

// Whether a mark comes before the next word.
bool isMarked(const std::string& line, std::size_t place)
{
    const auto begin = line.begin() + static_cast<std::ptrdiff_t>(place);
    const auto next = std::find_if(begin, line.end(), isNameCharacter);
    return std::any_of(begin, next, [](char character) { return character == ':' || character == '='; });
}

// The same after a word that is near to such a name, or, with a mark after it, sounds like one.
std::size_t secretAfterWord(const std::string& line)
{
    for (std::string_view word = wordFrom(line, 0); !word.empty();) {
        const auto end = static_cast<std::size_t>(word.data() + word.size() - line.data());
        if ((isMisspeltPassword(word) || (isMarked(line, end) && soundsSecret(word))) &&
            findAttributeType(word) == nullptr)
            return line.find_first_not_of(blanksAndMarks, end);
        word = wordFrom(line, end);
    }
    return std::string::npos;
}

// Whether the name of no known attribute is near to that of a secret one.
bool isLikeSecret(std::string_view name)
{
    const std::string line = std::string(name) + ": value";
    return blankAt(line, 0) != 0 || std::min(secretAfterName(line), secretAfterWord(line)) != std::string::npos;
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
    if (!isSameName(name, invalidLine))
        return std::string::npos;
    const auto value =
        line.find_first_not_of(blanksAndMarks, static_cast<std::size_t>(name.data() + name.size() - line.data()));
    return value != std::string::npos && isFragment(line.substr(value)) ? value : std::string::npos;
}

}  // namespace

void showPasswords(bool areShown)
{
    passwordsAreShown = areShown;
}

// What stands around the name of a known attribute does not make another of it. A name that begins with a blank may
// continue a comment that has the true one.
bool isSecret(std::string_view attribute)
{
    const AttributeType* const type = findAttributeType(attribute);
    if (type != nullptr || attribute.empty())
        return type != nullptr && type->syntax == Syntax::password;
    static Answers<bool> answers(&isLikeSecret);
    return answers.of(attribute);
}

std::size_t secretOf(const std::string& line)
{
    return passwordsAreShown ? std::string::npos
                             : std::min({secretAfterName(line), secretAfterWord(line), fragmentIn(line)});
}

// Numbers and words are what they are. A text may be a refused line, one that a blank in front has joined to the
// line above it, or what a failure without an attribute is about.
std::optional<std::string> maskedValue(const std::string& attribute, const std::string& value)
{
    if (passwordsAreShown)
        return std::nullopt;
    const AttributeType* const type = findAttributeType(attribute);
    if (type == nullptr ? isSecret(attribute) : type->syntax == Syntax::password)
        return passwordMask;
    if (isSameName(attribute, invalidLine) && isFragment(value))
        return passwordMask;
    const bool isDn = type != nullptr && type->syntax == Syntax::dn;
    const bool isText = type == nullptr || type->syntax == Syntax::text;
    if ((!isDn && !isText) || secretOf(value) == std::string::npos)
        return std::nullopt;
    return isDn ? shownDn(value) : shownLine(value);
}

std::string shownValue(const std::string& attribute, const std::string& value)
{
    return maskedValue(attribute, value).value_or(value);
}

std::string shownLine(const std::string& line)
{
    const auto secret = secretOf(line);
    return secret == std::string::npos ? line : line.substr(0, secret) + passwordMask;
}

std::string shownText(const std::string& text)
{
    return eachLine(text, shownLine);
}

// A part without a name belongs to the value before it.
std::string shownDn(const std::string& dn)
{
    if (secretOf(dn) == std::string::npos)
        return dn;  // as most are
    std::string shown;
    bool isMasked = false;
    for (std::size_t begin = 0;;) {
        const std::size_t end = std::min(findPlain(dn, ",+", begin), dn.size());
        const std::string part = dn.substr(begin, end - begin);
        const std::string shownPart = isMasked && part.find('=') == std::string::npos ? "" : shownLine(part);
        isMasked = shownPart != part;
        shown += shownPart;
        if (end == dn.size())
            return shown;
        shown += dn[end];
        begin = end + 1;
    }
}

// At the end, or before the next part of a DN.
bool holdsMask(const std::string& value)
{
    constexpr std::size_t length = sizeof passwordMask - 1;
    for (auto place = value.find(passwordMask); place != std::string::npos;
         place = value.find(passwordMask, place + 1)) {
        const std::size_t end = place + length;
        if (end == value.size() || value[end] == ',' || value[end] == '+')
            return true;
    }
    return false;
}
