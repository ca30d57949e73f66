#include "LDIF_Search.h"

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

}  // namespace

LDIF_Filter::LDIF_Filter(const std::string& text)
{
    *this = text;
}

// filter = [ name ] [ "=" [ "*" / value ] ], with white space and parentheses around name, value and the whole
LDIF_Filter& LDIF_Filter::operator=(const std::string& text)
{
    std::string rest = text;
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
    const auto& attributes = entry.attributes;
    const auto found = std::find(attributes.begin(), attributes.end(), attr);
    if (found == attributes.end())
        return false;
    if (anyValue)
        return true;
    const LDIF_Values& values = found->values;
    return values.find(value) != values.data() + values.size();
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
    try {
        visit(entry, isBase);
    } catch (...) {
        wrapAndThrow("System error in LDIF_Search_Results::addEntry()",
                     [&](LDIF_Exception& failure) { failure.entryDn = printable(entry.dn); });
    }
    return *this;
}

// The base of a one-level search is tested, though it is no result, and its test may fail.
void LDIF_Search_Results::visit(const LDIF_Entry& entry, bool isBase)
{
    const bool matches = filter.match(entry);
    if (matches && !(isBase && scope == oneLevel))
        push_back(selected(entry));
    if (scope == base || (scope == oneLevel && !isBase))
        return;
    for (const LDIF_Entry& child : entry.children)
        addEntry(child, false);
}

LDIF_Entry LDIF_Search_Results::selected(const LDIF_Entry& entry) const
{
    LDIF_Entry copy;
    copy.name = entry.name;
    copy.dn = entry.dn;
    copy.relativeDn = entry.relativeDn;
    for (const LDIF_Attribute& attribute : entry.attributes) {
        if (attrFilter.empty() || attrFilter.count(attribute.name) != 0)
            copy += attribute;
    }
    return copy;
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

LDIF_Search_Results LDIF_File::search(const LDIF_DN& base, const LDIF_Search_Results::Scope& scope,
                                      const LDIF_Filter& filter, const LDIF_AttrFilter& attrs, bool attrsOnly)
try {
    LDIF_Search_Results results(scope, filter, attrs, attrsOnly);
    const LDIF_Entry* const entry = root.find(base);
    if (entry == nullptr)
        throw LDIF_Exception(LDAP_NO_SUCH_OBJECT, LDAP_NO_SUCH_OBJECT, "Base entry not found");
    results += *entry;
    return results;
} catch (...) {
    wrapAndThrow("System error in LDIF_File::search()", [&](LDIF_Exception& failure) {
        failure.entryDn = printable(base);
        failure.configFile = fileName;
    });
}
