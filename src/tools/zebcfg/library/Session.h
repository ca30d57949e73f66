// One configuration file in the library: loaded, logged in, and released at the end. Calls throw Failure.
#ifndef ZEBCFG_SESSION_H
#define ZEBCFG_SESSION_H

#include "base/Entry.h"
#include "base/Failure.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zebldapcfg.h>

// The entry that the login stands in.
constexpr char configurationDn[] = "cn=Configuration";

// Wipes the values, which may be clear passwords.
struct ResultRelease {
    void operator()(CFGMessage* result) const noexcept;
};
// The library's records of what a search has found.
using SearchResult = std::unique_ptr<CFGMessage, ResultRelease>;

struct Login {
    std::string dn;
    std::string password;
};

class Session {
public:
    // Loads a file, which messages call shown. The load may write the file, so it is never the live one.
    Session(const std::string& fileName, const std::string& shown, const std::optional<Login>& login = std::nullopt);

    // An empty filter stands for (objectclass=*); no names means all attributes.
    std::vector<Entry> search(const std::string& base, int scope, const std::string& filter = {},
                              const std::vector<std::string>& names = {}) const;
    // The same as it comes from the library. Null when nothing is found.
    SearchResult records(const std::string& base, int scope, const std::string& filter = {},
                         const std::vector<std::string>& names = {}) const;
    bool exists(const std::string& dn) const;
    // Whether the entry has a value of the attribute that is not empty. No password is decoded.
    bool has(const std::string& dn, const std::string& attribute) const;
    // Failure (32) for a DN in the library's spelling that does not exist.
    Failure missingEntry(const std::string& dn) const;
    // The values of one attribute of an entry; none when it has no such attribute. Throws Failure (32) without the
    // entry.
    std::vector<std::string> values(const std::string& dn, const std::string& attribute) const;
    // Whether the entry holds the value, as the library compares values of that attribute.
    bool holds(const std::string& dn, const std::string& attribute, const std::string& value) const;
    // The root and every entry that has one of the attributes. Those with an objectclass come first, and only while
    // fewer than count entries have been found are the others looked for.
    std::vector<Entry> entriesWith(const std::vector<std::string>& names, std::size_t count) const;
    // The library's spelling of a DN, or nothing when the entry exists. Throws Failure (34) for a text that is no DN.
    std::optional<std::string> spellingIfMissing(const std::string& dn) const;

    // Whether a change counts as made when the library may not write the file: it is in memory then, and goes with the
    // next write.
    void deferWrites(bool areDeferred) noexcept { isDeferring = areDeferred; }
    void add(const std::string& dn, const std::vector<Change>& attributes);
    void modify(const std::string& dn, const std::vector<Change>& changes);
    void erase(const std::string& dn, bool withChildren);
    void flush();
    std::string outline() const;

private:
    struct Release {
        void operator()(CFG* handle) const noexcept { cfg_unbind(handle); }
    };

    // Throws what the handle knows of a call that has not given 0.
    void require(int code) const;
    // The same for a change, which may be one that is not written yet.
    void requireMade(int code) const;
    std::string explain(int code) const;

    std::unique_ptr<CFG, Release> cfg;
    std::string path;
    std::string shownName;
    bool isDeferring = false;
};

// The configuration file of the installation; empty when there is none.
std::string defaultFileName();

// Whether the code stands for text that the locale cannot convert.
bool isTextFailure(int code);

// A filter value with the bytes escaped that the library would take for more than themselves.
std::string escapedForFilter(const std::string& value);

#endif
