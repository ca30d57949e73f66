#include "LDIF_Search.h"

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"
#include "LDIF_File.h"
#include "LDIF_Util.h"

#include <algorithm>
#include <ostream>

namespace {

void write(std::ostream& stream, const LDIF_Attribute& attribute, bool nameOnly)
{
    if (nameOnly) {
        stream << attribute.name << std::endl;
        return;
    }
    for (const LDIF_Value& value : attribute.values)
        stream << attribute.name << ": " << value << std::endl;
}

// The walk of a search. Gives each entry that is found to take.
template <typename Take>
class Walk {
public:
    Walk(LDIF_Search_Results::Scope reach, const LDIF_Filter& test, Take taker)
        : scope(reach), filter(test), take(taker)
    {}

    // A failure gets a link for each entry on the way up.
    void visit(const LDIF_Entry& entry, bool isBase)
    {
        try {
            visitEntry(entry, isBase);
        } catch (...) {
            wrapAndThrow("System error in LDIF_Search_Results::addEntry()",
                         [&](LDIF_Exception& failure) { failure.entryDn = printable(entry.dn); });
        }
    }

private:
    // The base of a one-level search is tested, though it is no result, and its test may fail.
    void visitEntry(const LDIF_Entry& entry, bool isBase)
    {
        const bool matches = filter.match(entry);
        if (matches && !(isBase && scope == LDIF_Search_Results::oneLevel))
            take(entry);
        if (scope == LDIF_Search_Results::base || (scope == LDIF_Search_Results::oneLevel && !isBase))
            return;
        for (const LDIF_Entry& child : entry.children)
            visit(child, false);
    }

    const LDIF_Search_Results::Scope scope;
    const LDIF_Filter& filter;
    Take take;
};

}  // namespace

LDIF_Filter::~LDIF_Filter()
{
    wipe(value);
    wipe(memory->text);
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
    const LDIF_Attribute* const found = find(entry.attributes);
    if (found == nullptr || anyValue)
        return found != nullptr;
    if (found->values.empty())
        return false;
    auto& wanted = memory->value;
    if (wanted == nullptr || memory->text != value) {
        wanted = std::make_unique<LDIF_Value>(found->values.attrType, value);
        memory->text = value;
    }
    return found->values.contains(*wanted);
}

// A type with a name belongs to one name.
bool LDIF_Filter::isWanted(const LDIF_Attribute& attribute) const
{
    if (memory->type->name != nullptr)
        return attribute.values.attrType == memory->type;
    return attribute.name == attr;
}

const LDIF_Attribute* LDIF_Filter::find(const LDIF_Attributes& attributes) const
{
    if (memory->attr != attr.c_str())
        *memory = Memory();
    if (memory->type != nullptr && memory->place < attributes.size() && isWanted(attributes[memory->place]))
        return &attributes[memory->place];
    const LDIF_Attribute* const found = attributes.find(attr);
    if (found == attributes.data() + attributes.size())
        return nullptr;
    memory->place = static_cast<std::size_t>(found - attributes.data());
    memory->type = found->values.attrType;
    memory->attr = attr;
    return found;
}

LDIF_Search_Results::LDIF_Search_Results(const Scope& reach, const LDIF_Filter& test, const LDIF_AttrFilter& selection,
                                         bool namesOnly)
    : scope(reach), filter(test), attrFilter(selection), attrsOnly(namesOnly)
{}

LDIF_Search_Results& LDIF_Search_Results::operator+=(const LDIF_Entry& entry)
{
    return addEntry(entry, true);
}

LDIF_Search_Results& LDIF_Search_Results::addEntry(const LDIF_Entry& entry, const bool& isBase)
{
    Walk walk(scope, filter, [this](const LDIF_Entry& found) { take(found); });
    walk.visit(entry, isBase);
    return *this;
}

void LDIF_Search_Results::take(const LDIF_Entry& entry)
{
    LDIF_Entry copy;
    copy.name = entry.name;
    copy.dn = entry.dn;
    copy.relativeDn = entry.relativeDn;
    for (const LDIF_Attribute& attribute : entry.attributes) {
        if (attrFilter.selects(attribute))
            copy += attribute;
    }
    push_back(std::move(copy));
}

std::vector<const LDIF_Entry*> findMatches(const LDIF_Entry& base, LDIF_Search_Results::Scope scope,
                                           const LDIF_Filter& filter)
{
    std::vector<const LDIF_Entry*> matches;
    Walk walk(scope, filter, [&](const LDIF_Entry& found) { matches.push_back(&found); });
    walk.visit(base, true);
    return matches;
}

std::ostream& operator<<(std::ostream& stream, const LDIF_Search_Results& results)
{
    stream << results.size() << " entr" << (results.size() == 1 ? "y" : "ies") << " found." << std::endl;
    for (const LDIF_Entry& entry : results) {
        stream << std::endl << entry.name << ": " << entry.dn << std::endl;
        for (const LDIF_Attribute& attribute : entry.attributes)
            write(stream, attribute, results.attrsOnly);
    }
    return stream;
}

std::vector<const LDIF_Entry*> LDIF_File::findEntries(const LDIF_DN& base, LDIF_Search_Results::Scope scope,
                                                      const LDIF_Filter& filter)
try {
    const LDIF_Entry* const entry = root.find(base);
    if (entry == nullptr)
        throw LDIF_Exception(LDAP_NO_SUCH_OBJECT, LDAP_NO_SUCH_OBJECT, "Base entry not found");
    return findMatches(*entry, scope, filter);
} catch (...) {
    wrapAndThrow("System error in LDIF_File::search()", fieldsOf(base, fileName));
}

LDIF_Search_Results LDIF_File::search(const LDIF_DN& base, const LDIF_Search_Results::Scope& scope,
                                      const LDIF_Filter& filter, const LDIF_AttrFilter& attrs, bool attrsOnly)
{
    const std::vector<const LDIF_Entry*> found = findEntries(base, scope, filter);
    try {
        LDIF_Search_Results results(scope, filter, attrs, attrsOnly);
        for (const LDIF_Entry* entry : found)
            results.take(*entry);
        return results;
    } catch (...) {
        wrapAndThrow("System error in LDIF_File::search()", fieldsOf(base, fileName));
    }
}
