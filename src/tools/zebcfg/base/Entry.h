// Entries, attributes and changes as the commands pass them on: plain values.
#ifndef ZEBCFG_ENTRY_H
#define ZEBCFG_ENTRY_H

#include <string>
#include <vector>

#include <ldapNames.h>

struct Attribute {
    std::string name;
    std::vector<std::string> values;
};

inline bool operator==(const Attribute& left, const Attribute& right)
{
    return left.name == right.name && left.values == right.values;
}

struct Entry {
    std::string dn;
    std::vector<Attribute> attributes;
};

inline bool operator==(const Entry& left, const Entry& right)
{
    return left.dn == right.dn && left.attributes == right.attributes;
}

// One change of one attribute. A delete without values removes the whole attribute.
struct Change {
    int operation;  // LDAP_MOD_ADD, LDAP_MOD_DELETE or LDAP_MOD_REPLACE
    Attribute attribute;
    int line = 0;                      // of the input that it came with; 0 for none
    std::vector<int> valueLines = {};  // one for each value, or none
};

// The line of the input with that value, or where the change begins.
int lineOf(const Change& change, const std::string& value);

#endif
