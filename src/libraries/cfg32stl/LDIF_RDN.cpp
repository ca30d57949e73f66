#include "LDIF_RDN.h"

#include "LDIF_DnReader.h"
#include "LDIF_Exception.h"
#include "LDIF_Util.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <functional>

namespace {

constexpr wchar_t backslash = L'\\';
constexpr wchar_t quote = L'"';

LDIF_Exception dnFailure(int extErr, const std::string& text, SourcePos pos = SourcePos::here())
{
    return {LDAP_INVALID_DN_SYNTAX, extErr, text, pos};
}

// Parses an object from the front of input, and leaves the rest there.
template <typename Part>
Part takeFront(cisString& input)
{
    LDIF_DnReader reader(input);
    Part part(reader);
    input = cisString(reader.rest());
    return part;
}

// Does body, and wraps what it throws: a system error shows the text that is being parsed.
template <typename Text, typename Body>
void parsing(const char* part, Text text, Body body, SourcePos pos = SourcePos::here())
try {
    body();
} catch (...) {
    throw wrapCurrent((std::string("System error parsing ") + part + ": " + text()).c_str(), pos);
}

// The text from here on, when it is asked for.
auto textFromHere(const LDIF_DnReader& reader)
{
    return [&reader, start = reader.position()] { return reader.rest(start); };
}

// What a message shows of a text that does not begin with an attribute name.
std::string attributeExcerpt(const std::string& text)
{
    constexpr std::size_t longest = 20;
    const auto equals = text.find('=');
    return text.substr(0, equals != std::string::npos ? equals : longest);
}

// A backslash and two hex digits for each byte of the unit's narrow form.
std::wstring escapedBytes(wchar_t unit)
{
    std::string escaped;
    for (const char byte : wide2multibyte(std::wstring(1, unit)))
        byte2hex(static_cast<unsigned char>(byte), escaped += '\\');
    return multibyte2wide(escaped);
}

}  // namespace

LDIF_RDN_attribute::LDIF_RDN_attribute(cisString& input) : LDIF_RDN_attribute(takeFront<LDIF_RDN_attribute>(input)) {}

// attribute = ALPHA *keyChar / DIGIT *oidChar
LDIF_RDN_attribute::LDIF_RDN_attribute(LDIF_DnReader& reader)
{
    if (reader.atEnd())
        throw dnFailure(CFG_ERR_DN_NO_ATTRIBUTE, "Missing RDN attribute");
    if (reader.isAtOneOf(ALPHA))
        assign(reader.take(keyChar));
    else if (reader.isAtOneOf(DIGIT))
        assign(reader.take(oidChar));
    else
        throw dnFailure(CFG_ERR_DN_ATTRIBUTE, "Invalid attribute sytax: " + attributeExcerpt(reader.rest()));
    reader.skipEdges();
}

LDIF_RDN_value::LDIF_RDN_value(cisString& input)
{
    const auto text = [&] { return std::string(input); };
    parsing("rdn value", text, [&] {
        LDIF_DnReader reader(input);
        read(reader);
        input = cisString(reader.rest());
    });
}

LDIF_RDN_value::LDIF_RDN_value(LDIF_DnReader& reader)
{
    parsing("rdn value", textFromHere(reader), [&] { read(reader); });
}

// value = "#" *( 2hexChar )
//       / quote *( escape / any character but quote and backslash ) [ quote ]
//       / *( escape / any character but one of special )
// Nothing at all is an empty quoted value.
void LDIF_RDN_value::read(LDIF_DnReader& reader)
{
    if (reader.atEnd())
        return;
    if (reader.isAt(L'#')) {
        form = FORM_HEX;
        reader.advance();
        for (char byte = 0; reader.takeHexPair(byte);)
            push_back(byte);
    } else if (reader.isAt(quote)) {
        reader.advance();
        readUntil(reader, "\\\"");
        if (!reader.atEnd())
            reader.advance();
    } else {
        form = FORM_PLAIN;
        readUntil(reader, special);
        stripTrailing(*this);
    }
    reader.skipEdges();
}

// *( escape / any character but one of ends ), where a backslash is one of ends
void LDIF_RDN_value::readUntil(LDIF_DnReader& reader, const std::string& ends)
{
    append(reader.takeUntil(ends));
    while (reader.isAt(backslash)) {
        readEscape(reader);
        append(reader.takeUntil(ends));
    }
}

// escape = backslash ( 2hexChar / special )
void LDIF_RDN_value::readEscape(LDIF_DnReader& reader)
{
    const std::size_t start = reader.position();
    reader.advance();
    char byte = 0;
    if (reader.atEnd())
        throw dnFailure(CFG_ERR_DN_VALUE, "Invalid escape sequence: \\");
    if (reader.takeHexPair(byte)) {
        push_back(byte);
    } else if (reader.isAtOneOf(special)) {
        append(1, static_cast<char>(reader.peek()));
        reader.advance();
    } else {
        throw dnFailure(CFG_ERR_DN_VALUE, "Invalid escape sequence: " + reader.rest(start).substr(0, 3));
    }
}

void LDIF_RDN_value::appendTo(std::string& out) const
{
    if (empty())
        throw dnFailure(CFG_ERR_DN_NO_VALUE, "Missing RDN attribute value");
    switch (form) {
    case FORM_HEX:
        out += '#';
        for (const char byte : *this)
            byte2hex(static_cast<unsigned char>(byte), out);
        return;
    case FORM_QUOTED:
        return appendQuotedTo(out);
    case FORM_PLAIN:
        return appendPlainTo(out);
    }
}

void LDIF_RDN_value::appendQuotedTo(std::string& out) const
{
    std::wstring written;
    for (const wchar_t unit : multibyte2wide(*this)) {
        if (unit == backslash || unit == quote)
            written += backslash;
        written += unit;
    }
    out.append("\"").append(wide2multibyte(written)).append("\"");
}

void LDIF_RDN_value::appendPlainTo(std::string& out) const
{
    const std::wstring units = multibyte2wide(*this);
    const auto inner = std::find_if_not(units.begin(), units.end(), w_my_isspace);
    const auto tail = std::find_if_not(units.rbegin(), std::make_reverse_iterator(inner), w_my_isspace).base();
    std::wstring written;
    for (auto unit = units.begin(); unit != units.end(); ++unit) {
        if (unit < inner || unit >= tail) {
            written += escapedBytes(*unit);
            continue;
        }
        if (w_isOneOf(*unit, special))
            written += backslash;
        written += *unit;
    }
    out += wide2multibyte(written);
}

LDIF_RDN_pair::LDIF_RDN_pair(cisString& input) : LDIF_RDN_pair(takeFront<LDIF_RDN_pair>(input)) {}

LDIF_RDN_pair::LDIF_RDN_pair(LDIF_DnReader& reader)
{
    if (reader.atEnd())
        throw dnFailure(CFG_ERR_DN_NO_ATTRIBUTE, "Missing RDN attribute");
    parsing("rdn", textFromHere(reader), [&] { read(reader); });
}

// pair = attribute "=" value
void LDIF_RDN_pair::read(LDIF_DnReader& reader)
{
    first = LDIF_RDN_attribute(reader);
    if (reader.atEnd())
        throw dnFailure(CFG_ERR_DN_NO_VALUE, "Missing RDN value: " + first.str());
    if (!reader.isAt(L'='))
        throw dnFailure(CFG_ERR_DN_ATTRIBUTE, "Invalid character in RDN attribute: " + reader.rest().substr(0, 1));
    reader.advance();
    reader.skipEdges();
    second = LDIF_RDN_value(reader);
}

int LDIF_RDN_pair::compare(const LDIF_RDN_pair& other) const
{
    const int order = first.compare(other.first);
    return order != 0 ? order : second.compare(other.second);
}

void LDIF_RDN_pair::appendTo(std::string& out) const
{
    out.append(first.str()).append("=");
    second.appendTo(out);
}

LDIF_RDN::LDIF_RDN(cisString& input) : LDIF_RDN(takeFront<LDIF_RDN>(input)) {}

LDIF_RDN::LDIF_RDN(LDIF_DnReader& reader)
{
    if (reader.atEnd())
        throw dnFailure(CFG_ERR_DN_NO_ATTRIBUTE, "Missing RDN attribute");
    parsing("rdn", textFromHere(reader), [&] { read(reader); });
}

// RDN = pair *( "+" pair ), followed by "," or ";" or the end
void LDIF_RDN::read(LDIF_DnReader& reader)
{
    emplace_back(reader);
    while (!reader.atEnd() && !reader.isAt(L',') && !reader.isAt(L';')) {
        if (!reader.isAt(L'+'))
            throw dnFailure(CFG_ERR_DN_VALUE, "Invalid character in RDN value: " + reader.rest().substr(0, 1));
        reader.advance();
        reader.skipEdges();
        emplace_back(reader);
    }
    sort();
}

LDIF_RDN& LDIF_RDN::operator+=(const LDIF_RDN_pair& pair)
{
    push_back(pair);
    sort();
    return *this;
}

// Of equal pairs the first one stays.
void LDIF_RDN::sort()
{
    if (size() < 2)
        return;
    std::stable_sort(begin(), end(), std::greater<>());  // the operators turn the sign of compare round
    erase(std::unique(begin(), end()), end());
}

void LDIF_RDN::appendTo(std::string& out) const
{
    const char* separator = "";
    for (const LDIF_RDN_pair& pair : *this) {
        out += separator;
        pair.appendTo(out);
        separator = " + ";
    }
}

int LDIF_RDN::compare(const LDIF_RDN& other) const
{
    const auto [mine, its] = std::mismatch(begin(), end(), other.begin(), other.end());
    if (mine == end())
        return its == other.end() ? 0 : 1;
    return its == other.end() ? -1 : mine->compare(*its);
}

std::size_t LDIF_RDN::hash(std::size_t seed) const noexcept
{
    for (const LDIF_RDN_pair& pair : *this)
        seed = foldedHash(foldedHash(seed, pair.first), pair.second);
    return seed + 1;  // so that two pairs of one RDN are not two RDNs
}
