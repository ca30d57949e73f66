#include "library/Dn.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <algorithm>

namespace {

// Takes a hex pair, or else one character.
char takeByte(const std::string& text, std::size_t& at)
{
    const auto byte = byteAt(text, at);
    const char taken = byte.value_or(text[at]);
    at += byte ? 2 : 1;
    return taken;
}

// value = "#" *hexpair / quote quoted quote / plain, where an escape is a backslash and a hex pair or a character
std::string plainValue(const std::string& value)
{
    const char form = value.empty() ? '\0' : value.front();
    const std::size_t end = value.size() - (form == '"' && value.size() > 1 ? 1 : 0);
    std::string plain;
    for (std::size_t at = form == '#' || form == '"' ? 1 : 0; at < end;) {
        const bool isEscaped = value[at] == '\\' && at + 1 < end;
        at += isEscaped ? 1 : 0;
        plain += isEscaped || form == '#' ? takeByte(value, at) : value[at++];
    }
    return plain;
}

}  // namespace

DnSpeller::DnSpeller() : emptyFile(""), session(emptyFile.name(), "") {}

std::string DnSpeller::operator()(const std::string& dn) const
{
    requireNoNul(dn);
    return isRootDn(dn) ? std::string() : session.spellingIfMissing(dn).value_or(dn);
}

std::string DnSpeller::orNothing(const std::string& dn) const
{
    try {
        return (*this)(dn);
    } catch (const Failure&) {
        return {};
    }
}

bool isRootDn(const std::string& dn)
{
    return dn.find_first_not_of(" \t\r\n\v\f()") == std::string::npos;
}

std::string parentOf(const std::string& dn)
{
    // A blank follows each comma.
    const auto comma = findPlain(dn, ",");
    return comma == std::string::npos ? "" : dn.substr(std::min(comma + 2, dn.size()));
}

std::vector<std::string> ancestorsOf(const std::string& dn)
{
    std::vector<std::string> ancestors;
    for (std::string above = parentOf(dn); !above.empty(); above = parentOf(above))
        ancestors.push_back(above);
    return ancestors;
}

void requireNoNul(const std::string& dn)
{
    for (std::size_t at = dn.find('\\'); at < dn.size(); at = dn.find('\\', at + 2)) {
        if (byteAt(dn, at + 1) == '\0')
            throw Failure(LDAP_INVALID_DN_SYNTAX,
                          "the DN contains a NUL byte, and a write would drop the rest of the value");
    }
}

std::string nearestNote(const std::string& dn, const std::function<bool(const std::string& dn)>& exists)
{
    for (const std::string& above : ancestorsOf(dn)) {
        if (exists(above))
            return "; the nearest entry that exists is " + shownDn(above);
    }
    return {};
}

// rdn = name "=" value *( " + " name "=" value )
std::vector<Attribute> rdnOf(const std::string& dn)
{
    std::vector<Attribute> attributes;
    for (std::string rest = dn.substr(0, findPlain(dn, ",")); !rest.empty();) {
        const auto plus = findPlain(rest, "+");
        const std::string pair = rest.substr(0, plus == std::string::npos ? plus : plus - 1);
        const auto equals = pair.find('=');
        if (equals != std::string::npos)
            attributes.push_back({pair.substr(0, equals), {plainValue(pair.substr(equals + 1))}});
        rest = plus == std::string::npos ? "" : rest.substr(std::min(plus + 2, rest.size()));
    }
    return attributes;
}

// A length in front of each text keeps it apart from the next one.
std::string keyOf(const std::string& dn)
{
    std::string key;
    for (std::string rest = dn; !rest.empty(); rest = parentOf(rest)) {
        std::vector<std::string> parts;
        for (const Attribute& attribute : rdnOf(rest)) {
            const std::string& value = attribute.values.front();
            parts.push_back(lowerCase(attribute.name + '=' + std::to_string(value.size()) + ':' + value));
        }
        std::sort(parts.begin(), parts.end());
        for (const std::string& part : parts)
            key += part + '+';
        key += ',';
    }
    return key;
}
