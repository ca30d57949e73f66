#include "LDIF_DnKey.h"

#include "LDIF_Util.h"
#include "platform.h"

#include <algorithm>
#include <array>

namespace {

enum Kind : unsigned char { ordinary = 0, letter = 1, digit = 2, hyphen = 4, dot = 8, delimiter = 16 };

// What a byte of a DN may be; the sets are those of LDIF_Util.
constexpr std::array<unsigned char, 256> kinds = [] {
    std::array<unsigned char, 256> table = {};
    for (unsigned char byte = 'A'; byte <= 'Z'; ++byte)
        table[byte] = table[byte + ('a' - 'A')] = letter;
    for (unsigned char byte = '0'; byte <= '9'; ++byte)
        table[byte] = digit;
    for (const char byte : {',', '=', '+', '<', '>', '#', ';', '\\', '"'})
        table[static_cast<unsigned char>(byte)] = delimiter;
    table['-'] = hyphen;
    table['.'] = dot;
    return table;
}();

constexpr bool isA(char byte, unsigned char kind) noexcept
{
    return (kinds[static_cast<unsigned char>(byte)] & kind) != 0;
}

// The length of what has one of these kinds at the front, or of what has none of them.
std::size_t lengthOf(std::string_view text, unsigned char kind, bool has) noexcept
{
    std::size_t length = 0;
    while (length < text.size() && isA(text[length], kind) == has)
        ++length;
    return length;
}

std::size_t nameLength(std::string_view text) noexcept
{
    if (text.empty() || !isA(text[0], letter | digit))
        return 0;
    return lengthOf(text, isA(text[0], letter) ? letter | digit | hyphen : digit | dot, true);
}

std::string_view takeFront(std::string_view& text, std::size_t length) noexcept
{
    const std::string_view front = text.substr(0, length);
    text.remove_prefix(length);
    return front;
}

std::size_t hashOfRdn(std::size_t seed, std::string_view rdn) noexcept
{
    const std::size_t equals = rdn.find('=');
    return foldedHash(foldedHash(seed, rdn.substr(0, equals)), rdn.substr(equals + 1)) + 1;
}

constexpr std::string_view separator = ", ";
constexpr std::size_t usualLevels = 8;

}  // namespace

// DN = name "=" value *( ", " name "=" value ), with no edge at either end of a value
bool isSimpleDn(std::string_view text) noexcept
{
    for (;;) {
        const std::size_t name = nameLength(text);
        if (name == 0 || name == text.size() || text[name] != '=')
            return false;
        text.remove_prefix(name + 1);
        const std::string_view value = takeFront(text, lengthOf(text, delimiter, false));
        if (value.empty() || isEdge(value.front()) || isEdge(value.back()))
            return false;
        if (text.empty())
            return true;
        if (text.substr(0, separator.size()) != separator)
            return false;
        text.remove_prefix(separator.size());
    }
}

bool simplifyDn(std::string_view text, std::string& out)
{
    out.clear();
    out.reserve(text.size());
    for (;;) {
        text = withoutLeading(text);
        const std::string_view name = takeFront(text, nameLength(text));
        text = withoutLeading(text);
        if (name.empty() || text.empty() || text.front() != '=')
            return false;
        text = withoutLeading(text.substr(1));
        const std::string_view value = withoutTrailing(takeFront(text, lengthOf(text, delimiter, false)));
        if (value.empty())
            return false;
        out.append(name).append("=").append(value);
        if (text.empty())
            return true;
        if (text.front() != ',' && text.front() != ';')
            return false;
        text.remove_prefix(1);
        out += separator;
    }
}

// Most DNs that are looked up are simple.
void LDIF_DnKey::parse(const std::string& anyForm)
{
    if (isPlain(anyForm) && simplifyDn(anyForm, printed))
        assignSimple(printed);
    else
        assign(LDIF_DN(cisString(anyForm)));
}

void LDIF_DnKey::assign(std::string_view canonical)
{
    if (isSimpleDn(canonical))
        assignSimple(canonical);
    else
        assign(LDIF_DN(cisString(std::string(canonical))));
}

void LDIF_DnKey::assignSimple(std::string_view canonical)
{
    parsed.reset();
    text = canonical;
    ancestors.clear();
    ancestors.reserve(usualLevels);
    for (std::size_t end = text.size(); end != 0;) {
        const std::size_t comma = text.substr(0, end).rfind(',');
        const std::size_t start = comma == std::string_view::npos ? 0 : comma + separator.size();
        ancestors.push_back({hashOfRdn(hash(), text.substr(start, end - start)), start});
        end = comma == std::string_view::npos ? 0 : comma;
    }
}

void LDIF_DnKey::assign(const LDIF_DN& dn)
{
    printed = printable(dn);
    if (isSimpleDn(printed) && isPlain(printed))
        return assignSimple(printed);
    text = {};
    parsed = dn;
    ancestors.clear();
    for (const LDIF_RDN& rdn : dn)
        ancestors.push_back({rdn.hash(hash()), 0});
}

std::string_view LDIF_DnKey::simpleText(std::size_t level) const noexcept
{
    return text.empty() || level == 0 ? std::string_view() : text.substr(ancestors[level - 1].start);
}

const LDIF_DN& LDIF_DnKey::dn()
{
    if (!parsed)
        parsed = LDIF_DN(cisString(std::string(text)));
    return *parsed;
}
