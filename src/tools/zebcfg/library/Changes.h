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
#include <string>
#include <vector>

// Works on a copy of the configuration file. Each call is one step: when it throws Failure, the copy is as before.
class Changes {
public:
    // shown: what messages call the copy. force allows what is only refused for what it may break: a
    // second value of an attribute that takes one (19), and the end of the login (65).
    Changes(GuardedFile& workingCopy, std::string shown, std::optional<Login> wanted, bool force);

    // 68 for an entry that exists, 32 without a parent, 20 for a value that is given twice.
    void add(const std::string& dn, const std::vector<Change>& attributes, bool needsParent);
    // 32 for a missing entry, 20 for a value that is there, 16 for one that is not, 65 for the head.
    void modify(const std::string& dn, const std::vector<Change>& changes);
    void erase(const std::string& dn, bool withChildren);
    void apply(const LdifRecord& record, bool needsParent);

    // Writes the copy, which is closed for writing until then.
    void write();

    const Session& session() const noexcept { return *opened; }
    // The names of attributes that have been used.
    const std::vector<std::string>& names() const noexcept { return usedNames; }

private:
    // A call of the library that changes the copy.
    using Call = std::function<void(Session& session)>;

    void open();
    void make(Call call);
    void keepCheckpoint();
    void holdBack();
    void goBack(std::size_t count);
    void step(const std::function<void()>& body);
    void requireNameAndValues(const std::string& dn, const Attribute& attribute);
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
    const std::optional<Login> login;
    const bool isForced;
    std::unique_ptr<Session> opened;
    const DnSpeller spelled;
    std::vector<std::string> usedNames;
    std::string lastParent;   // of an entry that was added: it exists, and often is the next one's too
    std::string checkpoint;   // the copy as it was at one time
    std::vector<Call> calls;  // since then
};

#endif
