#include "formats/LdifWriter.h"

#include "base/Answers.h"
#include "base/Attributes.h"
#include "base/Base64.h"
#include "base/Encoding.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <algorithm>
#include <string_view>

namespace {

bool isPrintable(char character)
{
    return character >= ' ' && character <= '~';
}

// Whether the value, which is not empty, can stand as it is. Narrower than SAFE-STRING, which has control characters
// and a last blank.
bool isPlain(const std::string& value)
{
    return std::all_of(value.begin(), value.end(), isPrintable) && value.back() != ' ' &&
           std::string_view(" :<").find(value.front()) == std::string_view::npos;
}

// Those that LDAP servers hide from a passing eye.
bool isAlwaysInBase64(const std::string& name)
{
    return isSameName(name, "userPassword") || name == "2.5.4.35";
}

// Breaks the line that begins at a place of the text, but for its first characters.
void fold(std::string& text, std::size_t begin, std::size_t whole, std::size_t wrap)
{
    const std::string line = text.substr(begin);
    std::size_t at = std::min(std::max(whole, wrap), line.size());
    text.resize(begin + at);
    for (; at < line.size(); at += wrap - 1)
        text.append("\n ").append(line, at, wrap - 1);
}

void appendLine(std::string& out, const std::string& name, const std::string& value, std::size_t wrap)
{
    const std::size_t begin = out.size();
    out.append(name) += ':';
    std::size_t whole = out.size() - begin + 1;
    if (!value.empty() && isPlain(value) && !isAlwaysInBase64(name)) {
        out.append(1, ' ').append(value);
    } else if (!value.empty()) {
        out.append(": ").append(toBase64(value));
        ++whole;
    }
    if (wrap != 0)
        fold(out, begin, whole, wrap);
    out += '\n';
}

void appendInUtf8(std::string& out, const std::string& name, const std::string& value, std::size_t wrap)
{
    if (isUtf8Locale())
        appendLine(out, name, value, wrap);
    else
        appendLine(out, toUtf8(name), toUtf8(value), wrap);
}

bool canBeCarried(std::string_view name)
{
    constexpr std::string_view blanks = " \t\v\f\r";
    const auto isWord = [&](const char* word) { return isSameName(name, word); };
    return !name.empty() && blanks.find(name.front()) == std::string_view::npos &&
           blanks.find(name.back()) == std::string_view::npos && name.front() != '#' &&
           visible(std::string(name)) == name && !isWord("dn") && !isWord("changetype") && !isWord("control");
}

}  // namespace

std::string toLdif(const Entry& entry, bool namesOnly, std::size_t wrap)
{
    constexpr std::size_t usualSize = 500;
    std::string text;
    text.reserve(usualSize);
    appendInUtf8(text, "dn", shownDn(entry.dn), wrap);
    for (const Attribute& attribute : entry.attributes) {
        const bool isKnown = findAttributeType(attribute.name) != nullptr;
        const std::string name = isKnown ? attribute.name : shownLine(attribute.name);
        if (namesOnly)
            appendInUtf8(text, name, "", wrap);
        for (const std::string& value : attribute.values) {
            const auto masked = maskedValue(attribute.name, value);
            if (!namesOnly)
                appendInUtf8(text, name, masked ? *masked : value, wrap);
        }
    }
    text += '\n';
    return text;
}

bool isLdifName(const std::string& name)
{
    static Answers<bool> answers(&canBeCarried);
    return answers.of(name);
}
