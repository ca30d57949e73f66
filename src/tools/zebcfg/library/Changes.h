// Updates under the rules that LDAP clients expect, where the library itself is lenient.
#ifndef ZEBCFG_CHANGES_H
#define ZEBCFG_CHANGES_H

#include "formats/LdifRecord.h"
#include "library/Dn.h"
#include "library/Session.h"
#include "library/WorkingCopy.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

class Move;

// Whether the login stands on it, in cn=Configuration.
bool isLoginAttribute(const std::string& name);

// Each call is one step: when it throws Failure, all is as before.
class Changes {
public:
    // The file, a copy of the configuration, has to outlive this object. shown: what messages call it. force allows
    // what is only refused for what it may break: a second value of an attribute that takes one (19), a mask as a value
    // (19), the end of the login (65), and a new DN with a password (64).
    Changes(GuardedFile& file, std::string shown, const std::optional<Login>& login, bool force);

    // A new DN takes no attribute for the library's own use, and none for passwords unless that is forced: 64.
    // 68 for an entry that exists, 32 without a parent, 20 for a value that is given twice.
    void add(const std::string& dn, const std::vector<Change>& attributes, bool needsParent);
    // 32 for a missing entry, 20 for a value that is there, 16 for one that is not, 65 for the head.
    void modify(const std::string& dn, const std::vector<Change>& changes);
    void erase(const std::string& dn, bool withChildren);
    // With all that lies below it, comments too. 32 for a missing entry or new parent, 68 for a new DN that exists, 53
    // into itself. The values of the old RDN leave the entry unless they are kept. References are noted.
    void move(const std::string& dn, const std::string& newDn, bool keepsOldRdn);
    void apply(const LdifRecord& record, bool needsParent);

    // Writes the file, with which the changes end. Says whether they have changed more than its form.
    bool write() { return copy.write(); }

    const Session& session() const noexcept { return copy.session(); }
    // What the user may want to change too.
    const std::vector<std::string>& notes() const noexcept { return noted; }
    // The names of attributes that have been used.
    const std::set<std::string>& names() const noexcept { return usedNames; }

private:
    void requireNameAndValues(const std::string& dn, const Attribute& attribute);
    void requireParent(const std::string& dn, const std::string& advice) const;
    void requireNaming(const std::string& dn) const;
    std::string newDnOf(const LdifRecord& record) const;
    void requireMovable(const Move& move) const;
    static void requireMoved(const Move& move, const std::vector<Entry>& before, const std::vector<Entry>& after);
    void followRdn(const Move& move, bool keepsOld);
    void noteReferences(const Move& move, const std::vector<Entry>& before);
    void addEntry(const std::string& dn, const std::vector<Change>& attributes);
    bool hasPlainly(const std::string& dn, const std::vector<Change>& attributes) const;
    void applyChange(const std::string& dn, const Change& change);
    void replaceValues(const std::string& dn, const Change& change);
    void requireEachOnce(const std::string& dn, const Change& change) const;
    void requireSingle(const std::string& dn, const Change& change) const;
    std::vector<std::string> loginAttributes(const std::string& dn) const;
    void requireLogin(const std::string& dn, const std::vector<std::string>& before,
                      const std::vector<Change>& changes) const;

    WorkingCopy copy;
    const bool isForced;
    const DnSpeller spelled;
    std::set<std::string> usedNames;
    std::vector<std::string> noted;
};

#endif
