#include "base/Filter.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "base/Value.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr int filterError = 87;  // its usual name has another number in <ldap.h>
constexpr int deepest = 100;     // Each level takes some of the stack.
constexpr char blanks[] = " \t\r\n";

// What is left of the text. A rule moves it past what it has read, and leaves it where it was when it throws.
using Rest = std::string_view;

// The filter itself is not repeated: its value may be a password.
[[noreturn]] void refuse(const std::string& reason)
{
    throw Failure(filterError, "the filter cannot be used: " + reason);
}

Rest trimmed(Rest text)
{
    const auto first = text.find_first_not_of(blanks);
    return first == Rest::npos ? Rest() : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Takes the character, with the blanks before it.
bool take(Rest& rest, char character)
{
    const auto first = rest.find_first_not_of(blanks);
    if (first == Rest::npos || rest[first] != character)
        return false;
    rest.remove_prefix(first + 1);
    return true;
}

// escaped = "\" HEX HEX
char readEscaped(Rest& rest)
{
    const auto byte = byteAt(rest, 1);
    if (!byte)
        refuse("a backslash must be followed by two hex digits");
    rest.remove_prefix(3);
    return *byte;
}

// assertionvalue = *(normal / escaped)
std::string readValue(Rest& rest)
{
    Rest inner = rest;
    std::string value;
    while (!inner.empty() && inner.front() != '*') {
        if (inner.front() == '\\') {
            value += readEscaped(inner);
        } else {
            value += inner.front();
            inner.remove_prefix(1);
        }
    }
    rest = inner;
    return value;
}

// [initial] any [final], with any = "*" *(assertionvalue "*"); without a star it is one value.
std::vector<std::string> readPieces(Rest& rest)
{
    Rest inner = rest;
    std::vector<std::string> pieces = {readValue(inner)};
    while (!inner.empty()) {
        inner.remove_prefix(1);
        pieces.push_back(readValue(inner));
    }
    rest = inner;
    return pieces;
}

// filtertype = "=" / ">=" / "<=", which is cut off the end of the attribute. RFC 4515 has "~=" and ":=" too.
Filter::Kind cutType(Rest& name)
{
    const char last = name.empty() ? '\0' : name.back();
    if (last == '~' || last == ':')
        refuse("=, >= and <= are possible, not ~= or :=");
    if (last != '>' && last != '<')
        return Filter::equal;
    name.remove_suffix(1);
    return last == '>' ? Filter::atLeast : Filter::atMost;
}

void requireOrder(const Filter& filter)
{
    const AttributeType* const type = findAttributeType(filter.attribute);
    if (type == nullptr)
        return;
    if (type->syntax == Syntax::dn || type->syntax == Syntax::password)
        refuse("values of " + type->name + " have no order");
    const bool isNumber = type->syntax == Syntax::number || type->syntax == Syntax::bits;
    if (!isNumber || isWholeNumber(filter.values.front()))
        return;
    Failure failure(LDAP_INVALID_SYNTAX, '"' + filter.values.front() + "\" is not a whole number");
    failure.attribute = type->name;
    throw failure;
}

// item = attr filtertype assertionvalue / attr "=" "*" / attr "=" [initial] any [final]
Filter readItem(Rest& rest)
{
    const Rest item = rest.substr(0, rest.find_first_of("()"));
    const auto equals = item.find('=');
    Rest name = trimmed(item.substr(0, equals));
    Filter filter;
    filter.kind = equals == Rest::npos ? Filter::equal : cutType(name);
    filter.attribute = trimmed(name);
    if (filter.attribute.empty() || equals == Rest::npos)
        refuse("a test has the form (attribute=value) or (attribute=*)");
    const Rest value = trimmed(item.substr(equals + 1));
    if (value.empty())
        refuse("a value or * is missing after the =");
    Rest pieces = value;
    filter.values = readPieces(pieces);
    if (filter.kind == Filter::equal && filter.values.size() > 1)
        filter.kind = value == "*" ? Filter::present : Filter::substrings;
    else if (filter.values.size() > 1)
        refuse("a * in a value is written \\2a");
    if (filter.kind == Filter::atLeast || filter.kind == Filter::atMost)
        requireOrder(filter);
    filter.text = filter.isSimple() ? filter.attribute + '=' + std::string(value) : std::string(trimmed(item));
    rest.remove_prefix(item.size());
    return filter;
}

Filter readFilter(Rest& rest, int depth);

// filterlist = 1*filter
std::vector<Filter> readList(Rest& rest, int depth)
{
    Rest inner = rest;
    std::vector<Filter> filters;
    do
        filters.push_back(readFilter(inner, depth));
    while (trimmed(inner).substr(0, 1) == "(");
    rest = inner;
    return filters;
}

// filtercomp = "&" filterlist / "|" filterlist / "!" filter / item
Filter readComponent(Rest& rest, int depth)
{
    Rest inner = rest;
    Filter filter;
    if (take(inner, '&')) {
        filter.kind = Filter::all;
        filter.parts = readList(inner, depth);
    } else if (take(inner, '|')) {
        filter.kind = Filter::any;
        filter.parts = readList(inner, depth);
    } else if (take(inner, '!')) {
        filter.kind = Filter::none;
        filter.parts.push_back(readFilter(inner, depth));
    } else {
        filter = readItem(inner);
    }
    if (!filter.parts.empty())
        filter.text = trimmed(rest.substr(0, rest.size() - inner.size()));
    rest = inner;
    return filter;
}

// filter = "(" filtercomp ")"
Filter readFilter(Rest& rest, int depth)
{
    if (depth >= deepest)
        refuse("it is nested more than " + std::to_string(deepest) + " levels deep");
    Rest inner = rest;
    if (!take(inner, '('))
        refuse("a filter within parentheses is missing after &, | or !");
    Filter filter = readComponent(inner, depth + 1);
    if (!take(inner, ')'))
        refuse(trimmed(inner).empty() ? "the closing parenthesis is missing"
                                      : "a parenthesis in a value is written \\28 or \\29");
    rest = inner;
    return filter;
}

// Whether the pieces follow each other in the value: the first at its begin, the last at its end.
bool holdsPieces(const std::string& value, const std::vector<std::string>& pieces)
{
    const std::string& last = pieces.back();
    if (value.compare(0, pieces.front().size(), pieces.front()) != 0)
        return false;
    std::size_t at = pieces.front().size();
    for (auto piece = pieces.begin() + 1; piece + 1 != pieces.end(); ++piece) {
        at = value.find(*piece, at);
        if (at == std::string::npos)
            return false;
        at += piece->size();
    }
    return value.size() >= at + last.size() && value.compare(value.size() - last.size(), last.size(), last) == 0;
}

bool passes(const Filter& filter, const std::string& value)
{
    const AttributeType* const type = findAttributeType(filter.attribute);
    if (filter.kind == Filter::atLeast)
        return compareValues(type, value, filter.values.front()) >= 0;
    if (filter.kind == Filter::atMost)
        return compareValues(type, value, filter.values.front()) <= 0;
    std::vector<std::string> pieces = filter.values;
    std::transform(pieces.begin(), pieces.end(), pieces.begin(),
                   [&](const std::string& piece) { return comparableText(type, piece); });
    return holdsPieces(comparableText(type, value), pieces);
}

bool passesTest(const Filter& filter, const Entry& entry, const Holds& holds)
{
    const auto attribute =
        std::find_if(entry.attributes.begin(), entry.attributes.end(),
                     [&](const Attribute& candidate) { return isSameName(candidate.name, filter.attribute); });
    if (attribute == entry.attributes.end())
        return false;
    if (filter.kind == Filter::present)
        return true;
    if (filter.kind == Filter::equal)
        return holds(entry, filter.attribute, filter.values.front());
    return std::any_of(attribute->values.begin(), attribute->values.end(),
                       [&](const std::string& value) { return passes(filter, value); });
}

}  // namespace

Filter parseFilter(const std::string& text)
{
    Rest rest = trimmed(text);
    Filter filter = rest.substr(0, 1) == "(" ? readFilter(rest, 0) : readItem(rest);
    if (!trimmed(rest).empty())
        refuse(
            "there is text after its end; &, | and ! combine filters, and a parenthesis in a value is written \\28 or "
            "\\29");
    return filter;
}

std::vector<std::string> attributesOf(const Filter& filter)
{
    std::vector<std::string> names;
    if (filter.parts.empty())
        names.push_back(filter.attribute);
    for (const Filter& part : filter.parts) {
        const auto more = attributesOf(part);
        names.insert(names.end(), more.begin(), more.end());
    }
    return names;
}

bool matches(const Filter& filter, const Entry& entry, const Holds& holds)
{
    const auto part = [&](const Filter& each) { return matches(each, entry, holds); };
    switch (filter.kind) {
    case Filter::all:
        return std::all_of(filter.parts.begin(), filter.parts.end(), part);
    case Filter::any:
        return std::any_of(filter.parts.begin(), filter.parts.end(), part);
    case Filter::none:
        return std::none_of(filter.parts.begin(), filter.parts.end(), part);
    default:
        return passesTest(filter, entry, holds);
    }
}
