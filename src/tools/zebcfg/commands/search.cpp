#include "base/Attributes.h"
#include "base/Encoding.h"
#include "base/Failure.h"
#include "base/Filter.h"
#include "base/Masking.h"
#include "base/Value.h"
#include "cli/Call.h"
#include "formats/ConfigText.h"
#include "formats/Json.h"
#include "formats/LdifWriter.h"
#include "library/Dn.h"
#include "library/Query.h"
#include "terminal/Progress.h"
#include "update/Reading.h"

#include <algorithm>
#include <charconv>
#include <iostream>

namespace {

constexpr char anyEntry[] = "objectclass=*";

int scopeOf(const std::string& word)
{
    if (word == "base")
        return LDAP_SCOPE_BASE;
    if (word == "one")
        return LDAP_SCOPE_ONELEVEL;
    return LDAP_SCOPE_SUBTREE;  // also for the children, and the base is left out
}

// The length of lines that -o ldif_wrap=N asks for; 0 for any length.
std::size_t wrapOf(const std::string& option)
{
    const std::string name = "ldif_wrap=";
    if (option.empty() || option == name + "no")
        return 0;
    std::size_t width = 0;
    const char* const end = option.data() + option.size();
    if (option.rfind(name, 0) == 0 && std::from_chars(option.data() + name.size(), end, width).ptr == end && width > 2)
        return width;
    throw Failure(0, "-o takes ldif_wrap=N, a length of at least 3, or ldif_wrap=no");
}

// What the operands ask for, as in ldapsearch: a first one with a "=" is the filter, and one that begins with "(".
struct Request {
    explicit Request(std::vector<std::string> operands) : names(std::move(operands))
    {
        if (names.empty() || (names.front().find('=') == std::string::npos && names.front().rfind('(', 0) != 0))
            return;
        filter = parseFilter(names.front());
        names.erase(names.begin());
    }

    std::string shownFilter() const { return shownLine(filter.text); }

    bool wants(const char* name) const { return std::find(names.begin(), names.end(), name) != names.end(); }

    Filter filter = parseFilter(anyEntry);
    std::vector<std::string> names;
};

void removeBase(std::vector<Entry>& entries, const std::string& base)
{
    const std::string dn = DnSpeller()(base);
    entries.erase(
        std::remove_if(entries.begin(), entries.end(), [&](const Entry& entry) { return isSameName(entry.dn, dn); }),
        entries.end());
}

// The lowest value of the attribute, or null.
const std::string* lowestOf(const Entry& entry, const std::string& name, const AttributeType* type)
{
    for (const Attribute& attribute : entry.attributes) {
        if (isSameName(attribute.name, name) && !attribute.values.empty())
            return &*std::min_element(
                attribute.values.begin(), attribute.values.end(),
                [&](const std::string& a, const std::string& b) { return compareValues(type, a, b) < 0; });
    }
    return nullptr;
}

// Entries without the attribute come last.
void sortBy(const std::string& name, std::vector<Entry>& entries)
{
    const AttributeType* const type = findAttributeType(name);
    std::stable_sort(entries.begin(), entries.end(), [&](const Entry& left, const Entry& right) {
        const std::string* const one = lowestOf(left, name, type);
        const std::string* const other = lowestOf(right, name, type);
        return one != nullptr && (other == nullptr || compareValues(type, *one, *other) < 0);
    });
}

std::vector<Entry> entriesFor(const Call& call, Reading& reading, const Request& request)
{
    const Progress progress("Searching");
    Query query{call.value("base"), scopeOf(call.value("scope", "sub")), request.filter, {}, {}};
    if (!request.wants("*"))
        query.names = request.names;
    if (!query.filter.isSimple())
        query.namesInUse = namesIn(reading.live().text());
    const std::string sort = call.value("sort");
    const bool addsName = !sort.empty() && !query.names.empty();
    if (addsName)
        query.names.push_back(sort);
    auto entries = find(reading.session(), query);
    if (call.value("scope") == "children")
        removeBase(entries, query.base);
    if (!sort.empty())
        sortBy(sort, entries);
    if (addsName)
        project(entries, request.names);
    return entries;
}

// Leaves the first entries that -z allows. True when there are more.
bool cut(const Call& call, std::vector<Entry>& entries)
{
    const auto most = static_cast<std::size_t>(call.number("size-limit", 0, "entries"));
    if (most == 0 || entries.size() <= most)
        return false;
    entries.resize(most);
    return true;
}

// Removes what LDIF cannot carry. True when there was anything.
bool removeUnwritable(const Call& call, std::vector<Entry>& entries)
{
    bool isAny = false;
    for (Entry& entry : entries) {
        auto& attributes = entry.attributes;
        const auto end = std::stable_partition(attributes.begin(), attributes.end(),
                                               [](const Attribute& attribute) { return isLdifName(attribute.name); });
        for (auto attribute = end; attribute != attributes.end(); ++attribute)
            call.messages().warn("LDIF cannot represent the attribute \"" + shownLine(attribute->name) + "\" of " +
                                 shownDn(entry.dn) + ", which is left out");
        isAny = isAny || end != attributes.end();
        attributes.erase(end, attributes.end());
    }
    return isAny;
}

void writeLdif(const Call& call, const Request& request, const std::vector<Entry>& entries)
{
    const std::size_t wrap = wrapOf(call.value("option"));
    const std::size_t plainness = call.count("plain");
    if (plainness < 3)
        std::cout << "version: 1\n\n";
    if (plainness < 2)
        std::cout << "# base <" << toUtf8(shownDn(call.value("base"))) << "> with scope " << call.value("scope", "sub")
                  << "\n# filter: (" << toUtf8(request.shownFilter()) << ")\n\n";
    for (const Entry& entry : entries)
        std::cout << toLdif(entry, call.has("names-only"), wrap);
    if (plainness < 2)
        std::cout << "# numEntries: " << entries.size() << '\n';
}

}  // namespace

int runSearch(const Call& call)
{
    const Request request(call.operands());
    Reading reading(call.target());
    auto entries = entriesFor(call, reading, request);
    const bool isCut = cut(call, entries);
    for (Entry& entry : entries) {
        if (request.wants("1.1"))
            entry.attributes.clear();
        for (Attribute& attribute : entry.attributes) {
            if (call.has("names-only"))
                attribute.values.clear();
        }
    }
    const bool isIncomplete = !call.isJson() && removeUnwritable(call, entries);
    if (call.isJson())
        std::cout << toJson(entries) << '\n';
    else
        writeLdif(call, request, entries);
    if (isCut)
        throw Failure(LDAP_SIZELIMIT_EXCEEDED, "there are more entries than --size-limit allows");
    return isIncomplete ? LDAP_UNDEFINED_TYPE : 0;
}
