#include "LDIF_Search.h"

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "platform.h"

#include <memory>

namespace {

// The walk of a search, in a loop, for a tree may be deep.
class Walk {
public:
    Walk(const LDIF_Tree& entries, LDIF_Tree::Number start, LDIF_Scope reach, const LDIF_Filter& test)
        : tree(entries), base(start), scope(reach), filter(test)
    {}

    std::vector<LDIF_Tree::Number> matches() const
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
    bool isMatch(LDIF_Tree::Number entry) const
    try {
        const LDIF_Entry* const object = tree.object(entry);
        return object != nullptr ? filter.match(*object) : filter.match(tree.text(entry));
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
        failure->entryDn = printable(tree.dn(entry));
        while (entry != base) {
            entry = tree.parent(entry);
            failure = std::make_unique<LDIF_Exception>(pos.file, pos.line, std::move(*failure));
            failure->entryDn = printable(tree.dn(entry));
        }
        return std::move(*failure);
    }

    const LDIF_Tree& tree;
    const LDIF_Tree::Number base;
    const LDIF_Scope scope;
    const LDIF_Filter& filter;
};

// Whether a value in its canonical text equals another one of its type.
bool isEqual(std::string_view text, const LDIF_Value& value)
{
    const LDIF_Syntax& syntax = syntaxOf(*value.attrType);
    const std::string& other = value.stringValue;
    if (&syntax == &syntax::pw || (&syntax == &syntax::dn && !(isSimpleDn(text) && isSimpleDn(other))))
        return LDIF_Value(value.attrType, std::string(text)).compare(value) == 0;
    return text.size() == other.size() && (syntax.foldsCase ? compareFolded(text, other) == 0 : text == other);
}

}  // namespace

LDIF_Filter::~LDIF_Filter()
{
    wipe(value);
    wipe(wanted->text);
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
    const LDIF_Attributes& attributes = entry.attributes;
    const LDIF_Attribute* const found = attributes.find(attr);
    if (found == attributes.data() + attributes.size() || anyValue)
        return found != attributes.data() + attributes.size();
    return !found->values.empty() && found->values.contains(wantedValue());
}

bool LDIF_Filter::match(const LDIF_EntryText& entry) const
{
    std::string_view lines = entry.attributes();
    const bool hasAttribute = skipTo(lines, attr);
    if (!hasAttribute || anyValue)
        return hasAttribute;
    const LDIF_Value& other = wantedValue();
    while (!lines.empty()) {
        const LDIF_TextLine line = takeLine(lines);
        if (compareFolded(line.name, attr) != 0)
            return false;
        if (isEqual(line.value, other))
            return true;
    }
    return false;
}

const LDIF_Value& LDIF_Filter::wantedValue() const
{
    if (wanted->value == nullptr || wanted->text != value || wanted->attr != attr.c_str()) {
        wanted->value = std::make_unique<LDIF_Value>(getAttrType(attr.c_str()), value);
        wanted->text = value;
        wanted->attr = attr;
    }
    return *wanted->value;
}

std::vector<LDIF_Tree::Number> findMatches(const LDIF_Tree& tree, LDIF_Tree::Number base, LDIF_Scope scope,
                                           const LDIF_Filter& filter)
{
    return Walk(tree, base, scope, filter).matches();
}
