// Updates under the rules that LDAP clients expect, where the library itself is lenient.
#ifndef ZEBCFG_CHANGES_H
#define ZEBCFG_CHANGES_H

#include "files/GuardedFile.h"
#include "formats/Ldif.h"
#include "library/Dn.h"
#include "library/Session.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class Move;

// Whether the login stands on it, in cn=Configuration.
bool isLoginAttribute(const std::string& name);

// Works on a copy of the configuration file. Each call is one step: when it throws Failure, all is as before.
//
// The library writes the file at the end of each change, as a whole. Until write() the copy refuses that: a change that
// cannot be written stays in the library's memory and goes with the next write, and as the modification time stays the
// same too, no call loads the file in between. So a batch takes one write.
class Changes {
public:
    // shown: what messages call the copy. force allows what is only refused for what it may break: a
    // second value of an attribute that takes one (19), and the end of the login (65).
    Changes(GuardedFile& workingCopy, std::string shown, const std::optional<Login>& login, bool force);

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

    // Writes the copy, with which the changes end. Says whether they have changed its text: the form that the library
    // gives it does not count.
    bool write();

    const Session& session() const noexcept { return *opened; }
    // What the user may want to change too.
    const std::vector<std::string>& notes() const noexcept { return noted; }
    // The names of attributes that have been used.
    const std::set<std::string>& names() const noexcept { return usedNames; }

private:
    using Text = std::shared_ptr<const std::string>;  // of the whole copy
    // A call of the library that changes the tree. One that fails has changed nothing.
    using Call = std::function<void(Session& session)>;

    void open(const std::optional<Login>& login);
    void addHead();
    void load(const std::string& text);
    void flush();
    Text text() const;
    void begin(Text text);
    void hold();
    void step(const std::function<void()>& body);
    void make(Call call);
    void goBack(std::size_t count);
    void advance();
    void requireNameAndValues(const std::string& dn, const Attribute& attribute);
    void requireParent(const std::string& dn, const std::string& advice) const;
    void requireNaming(const std::string& dn) const;
    std::string newDnOf(const LdifRecord& record) const;
    void requireMovable(const Move& move) const;
    std::vector<Entry> entries(const std::string& text) const;
    void requireMoved(const Move& move, const std::vector<Entry>& before) const;
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

    GuardedFile& copy;
    const std::string path;
    const std::string shownName;
    const bool isForced;
    std::unique_ptr<Session> opened;
    const DnSpeller spelled;
    std::set<std::string> usedNames;
    std::vector<std::string> noted;
    Text original;            // before the first step
    Text checkpoint;          // loads as the tree that the calls begin with
    std::vector<Call> calls;  // made since then
    bool isLost = false;      // a step that failed could not be undone
};

#endif
