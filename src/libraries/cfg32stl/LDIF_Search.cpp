#include "LDIF_Search.h"

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "platform.h"

#include <memory>
#include <optional>

namespace {

// A filter on its way over many entries: the value is made once, by the type of the attribute.
class Matcher {
public:
    explicit Matcher(const LDIF_Filter& test)
        : filter(test), isInText(test.attr[0] != '#' && test.attr.find_first_of(":\r\n") == std::string::npos)
    {}

    bool match(const LDIF_Entry& entry)
    {
        const LDIF_Attribute* const found = entry.attributes.find(filter.attr);
        if (found == entry.attributes.data() + entry.attributes.size() || filter.anyValue)
            return found != entry.attributes.data() + entry.attributes.size();
        return !found->values.empty() && found->values.contains(wanted());
    }

    // lines are those of an entry from the first of the attribute on.
    bool match(std::string_view lines)
    {
        if (lines.empty() || !isInText || filter.anyValue)
            return !lines.empty() && isInText;
        (void)wanted();
        std::size_t line = 0;
        do {
            const std::size_t start = line + filter.attr.size() + 2;
            line = lines.find('\n', start) + 1;
            if (isWanted(lines.substr(start, line - lineEnd.size() - start)))
                return true;
        } while (isNamed(lines.substr(line), filter.attr));
        return false;
    }

private:
    const LDIF_Value& wanted()
    {
        if (!value) {
            value.emplace(getAttrType(filter.attr.c_str()), filter.value);
            syntax = &syntaxOf(*value->attrType);
            isText = syntax != &syntax::pw && (syntax != &syntax::dn || isSimpleDn(value->stringValue));
        }
        return *value;
    }

    // Values of the same type are equal when their texts are, but for passwords, and DNs that are not simple.
    bool isWanted(std::string_view text) const
    {
        const std::string& other = value->stringValue;
        if (!isText || (syntax == &syntax::dn && !isSimpleDn(text)))
            return LDIF_Value(value->attrType, std::string(text)).compare(*value) == 0;
        return text.size() == other.size() && (syntax->foldsCase ? compareFolded(text, other) == 0 : text == other);
    }

    const LDIF_Filter& filter;
    const bool isInText;  // the name may be that of a line
    std::optional<LDIF_Value> value;
    const LDIF_Syntax* syntax = nullptr;  // of value
    bool isText = false;                  // the text of value is enough
};

// The walk of a search, in a loop, for a tree may be deep.
class Walk {
public:
    Walk(const LDIF_Tree& entries, LDIF_Tree::Number start, LDIF_Scope reach, const LDIF_Filter& test)
        : tree(entries), base(start), scope(reach), filter(test), matcher(test)
    {}

    std::vector<LDIF_Tree::Number> matches()
    {
        std::vector<LDIF_Tree::Number> found;
        for (auto entry = base; entry != LDIF_Tree::none; entry = next(entry)) {
            if (isMatch(entry) && (entry != base || scope != LDIF_Scope::oneLevel))
                found.push_back(entry);
        }
        return found;
    }

private:
    // The base of a one-level search is tested, though it is no result, and its test may fail.
    bool isMatch(LDIF_Tree::Number entry)
    try {
        const LDIF_Entry* const object = tree.object(entry);
        if (object != nullptr)
            return matcher.match(*object);
        return matcher.match(scope == LDIF_Scope::base
                                 ? linesFrom(tree.text(entry).attributes(), filter.attr)  // not worth remembering
                                 : tree.linesFrom(entry, filter.attr));
    } catch (...) {
        throw failureAt(entry);
    }

    LDIF_Tree::Number next(LDIF_Tree::Number entry) const
    {
        if (scope == LDIF_Scope::subtree)
            return tree.nextBelow(entry, base);
        if (scope == LDIF_Scope::base)
            return LDIF_Tree::none;
        return entry == base ? tree.firstChild(entry) : tree.nextSibling(entry);
    }

    // The failure being handled, with a link for each entry on the way up.
    LDIF_Exception failureAt(LDIF_Tree::Number entry, SourcePos pos = SourcePos::here()) const
    {
        auto failure =
            std::make_unique<LDIF_Exception>(wrapCurrent("System error in LDIF_Search_Results::addEntry()", pos));
        failure->entryDn = tree.dnText(entry);
        while (entry != base) {
            entry = tree.parent(entry);
            failure = std::make_unique<LDIF_Exception>(pos.file, pos.line, std::move(*failure));
            failure->entryDn = tree.dnText(entry);
        }
        return std::move(*failure);
    }

    const LDIF_Tree& tree;
    const LDIF_Tree::Number base;
    const LDIF_Scope scope;
    const LDIF_Filter& filter;
    Matcher matcher;
};

}  // namespace

LDIF_Filter::~LDIF_Filter()
{
    wipe(value);
}

LDIF_Filter::LDIF_Filter(const std::string& text)
{
    *this = text;
}

// filter = [ name ] [ "=" [ "*" / value ] ], with white space and parentheses around name, value and the whole
LDIF_Filter& LDIF_Filter::operator=(const std::string& text)
{
    std::string rest = text;
    const Wiper wiper(rest);
    *this = LDIF_Filter();
    stripLeading(rest);
    const auto equals = rest.find('=');
    if (equals == 0)
        return *this;
    std::string name = rest.substr(0, equals);
    stripTrailing(name);
    if (!name.empty())
        attr = cisString(name);
    if (equals == std::string::npos)
        return *this;
    rest.erase(0, equals + 1);
    stripLeading(rest);
    stripTrailing(rest);
    if (rest.empty() || rest[0] == '*')
        return *this;
    anyValue = false;
    readValue(rest);
    return *this;
}

// value = *( backslash 2hexChar / any other byte ); a bad escape ends it
void LDIF_Filter::readValue(const std::string& text)
{
    value.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        char byte = text[pos];
        if (byte != '\\') {
            ++pos;
        } else {
            if (!hexPair(text, pos + 1, byte))
                return;
            pos += 3;
        }
        value += byte;
    }
}

bool LDIF_Filter::match(const LDIF_Entry& entry) const
{
    return Matcher(*this).match(entry);
}

std::vector<LDIF_Tree::Number> findMatches(const LDIF_Tree& tree, LDIF_Tree::Number base, LDIF_Scope scope,
                                           const LDIF_Filter& filter)
{
    return Walk(tree, base, scope, filter).matches();
}
