// A filter, parsed and matched with entries of several kinds of values.
#include "LDIF_Search.h"
#include "fuzz.h"

namespace {

LDIF_Entry entryOf(const std::vector<std::pair<const char*, const char*>>& attributes)
{
    LDIF_Entry entry;
    for (const auto& [name, value] : attributes)
        entry += LDIF_Attribute(name, value);
    return entry;
}

// What a filter means: an attribute of its name is there, with some value or an equal one.
bool matchesPlainly(const LDIF_Entry& entry, const LDIF_Filter& filter)
{
    const auto isWanted = [&](const LDIF_Attribute& attribute) { return attribute.name == filter.attr; };
    const auto isEqual = [&](const LDIF_Value& value) { return value == filter.value; };
    const auto found = std::find_if(entry.attributes.begin(), entry.attributes.end(), isWanted);
    return found != entry.attributes.end() &&
           (filter.anyValue || std::any_of(found->values.begin(), found->values.end(), isEqual));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const LDIF_Entry entries[] = {
        entryOf({{"objectclass", "top"}, {"cn", "Z\u00fcrich"}, {"zeb-slapdPort", "389"}, {"x", "a (b)"}}),
        entryOf({{"OBJECTCLASS", "Top"}, {"zeb-slapdSuffix", "o=a"}, {"zeb-audit", "true"}, {"zeb-slapdPort", "636"}}),
        entryOf({{"zeb-slapdAdminPW", "secret"}, {"zeb-slapdSslCipherSpecs", "256"}, {"X", "*"}, {"description", ""}}),
        entryOf({}),
    };
    const std::string text = textOf(data, size);
    LDIF_Filter filter, enclosed;
    const Codes result = resultOf([&] { filter = text; });
    require(result == success || result.first == 162, "every text is a filter", text);
    require(result == resultOf([&] { enclosed = " ( " + text + " )"; }), "parentheses change no result", text);
    require(filter.attr == enclosed.attr, "parentheses change no attribute", text);
    require(filter.value == enclosed.value, "parentheses change no value", text);
    require(filter.anyValue == enclosed.anyValue, "parentheses change no presence", text);
    for (const LDIF_Entry& entry : entries) {
        bool matches = false, expected = false;
        const Codes found = resultOf([&] { matches = filter.match(entry); });
        require(found == resultOf([&] { expected = matchesPlainly(entry, filter); }), "the plain walk fails", text);
        require(matches == expected, "the plain walk finds the same", text);
    }
    return 0;
}
