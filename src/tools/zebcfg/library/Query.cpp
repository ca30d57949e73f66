#include "library/Query.h"

#include "base/Attributes.h"
#include "base/Text.h"
#include "library/Dn.h"
#include "library/Outline.h"
#include "library/Session.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

bool isIn(const std::vector<std::string>& names, const std::string& name)
{
    return std::any_of(names.begin(), names.end(), [&](const std::string& known) { return isSameName(known, name); });
}

// The DNs that the search may find, in the order of the tree.
std::vector<std::string> dnsInScope(const Session& session, const Query& query)
{
    const bool isRoot = isRootDn(query.base);
    std::vector<std::string> dns;
    if (isRoot && query.scope != LDAP_SCOPE_ONELEVEL)
        dns.emplace_back();
    const auto nodes = outlineOf(session);
    for (const Node& node : isRoot ? nodes : below(nodes, DnSpeller()(query.base))) {
        const std::size_t level = node.depth + (isRoot ? 1 : 0);
        if (query.scope == LDAP_SCOPE_SUBTREE || level == (query.scope == LDAP_SCOPE_BASE ? 0 : 1))
            dns.push_back(node.dn);
    }
    return dns;
}

// Those with an objectclass come from one search. Others, and the root, are found by each of their attributes.
std::vector<Entry> candidatesOf(const Session& session, const Query& query, const std::vector<std::string>& names)
{
    std::map<std::string, std::size_t> places;
    for (const std::string& dn : dnsInScope(session, query))
        places.emplace(lowerCase(dn), places.size());
    std::vector<Entry> found = session.search(query.base, query.scope, {}, names);
    std::set<std::string> seen;
    for (const Entry& entry : found)
        seen.insert(lowerCase(entry.dn));
    for (auto name = query.namesInUse.begin(); name != query.namesInUse.end() && seen.size() < places.size(); ++name) {
        for (Entry& entry : session.search(query.base, query.scope, *name + "=*", names)) {
            if (seen.insert(lowerCase(entry.dn)).second)
                found.push_back(std::move(entry));
        }
    }
    const auto placeOf = [&](const Entry& entry) { return places[lowerCase(entry.dn)]; };
    std::stable_sort(found.begin(), found.end(),
                     [&](const Entry& left, const Entry& right) { return placeOf(left) < placeOf(right); });
    return found;
}

}  // namespace

void project(std::vector<Entry>& entries, const std::vector<std::string>& names)
{
    for (Entry& entry : entries) {
        auto& attributes = entry.attributes;
        attributes.erase(std::remove_if(attributes.begin(), attributes.end(),
                                        [&](const Attribute& attribute) { return !isIn(names, attribute.name); }),
                         attributes.end());
    }
}

std::vector<Entry> find(const Session& session, const Query& query)
{
    if (query.filter.isSimple())
        return session.search(query.base, query.scope, query.filter.text, query.names);
    std::vector<std::string> names = query.names;
    if (!names.empty()) {
        for (const std::string& name : attributesOf(query.filter))
            names.push_back(name);
    }
    std::vector<Entry> entries = candidatesOf(session, query, names);
    const Holds holds = [&](const Entry& entry, const std::string& attribute, const std::string& value) {
        return session.holds(entry.dn, attribute, value);
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [&](const Entry& entry) { return !matches(query.filter, entry, holds); }),
                  entries.end());
    if (!query.names.empty())
        project(entries, query.names);
    return entries;
}
