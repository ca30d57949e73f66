// What one record of LDIF asks for.
#ifndef ZEBCFG_LDIFRECORD_H
#define ZEBCFG_LDIFRECORD_H

#include "base/Entry.h"

#include <optional>
#include <string>
#include <vector>

struct LdifRecord {
    enum Type { add, modify, erase, move };
    Type type = add;
    int line = 0;  // of its dn
    std::string dn;
    std::vector<Change> changes;  // for add, the attributes
    std::string newRdn;           // for move, and whether the entry keeps the values of the old one
    bool keepsOldRdn = false;
    std::optional<std::string> newSuperior = {};
    std::string text;  // as it was read, without carriage returns
};

#endif
