// The client of the tests. It sees the C interface alone.
#ifndef CLIENT_H
#define CLIENT_H

#include "support.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

// One record of an update. Its values are binary ones where the operation has LDAP_MOD_BVALUES.
struct Mod {
    decltype(LDAPMod::mod_op) operation;
    std::string type;
    std::vector<std::string> values;
    std::vector<berval> binaries = {};
    std::vector<void*> pointers = {};
    LDAPMod record = {};

    // Valid as long as this object stays where it is.
    LDAPMod* made()
    {
        for (std::string& each : values)
            binaries.push_back({0, each.data()});  // bv_len is not read
        for (berval& each : binaries)
            pointers.push_back((operation & LDAP_MOD_BVALUES) != 0 ? static_cast<void*>(&each) : each.bv_val);
        pointers.push_back(nullptr);
        record = {operation, type.data(), {reinterpret_cast<char**>(pointers.data())}};
        return &record;
    }
};

// A handle on a file, perhaps with a backup, the result of its last search, and a walk over that. Takes no memory but
// the library's, except in update.
struct Client {
    using Update = decltype(&cfg_modify_s);  // or cfg_add_s

    explicit Client(const char* name = nullptr, const char* backupName = nullptr) : file(name), backup(backupName) {}
    Client(const Client&) = delete;
    ~Client()
    {
        cfg_ber_free(walk);
        cfg_msgfree(found);
        cfg_unbind(cfg);
    }

    // Makes a handle that is not bound.
    int make()
    {
        cfg = cfg_init();
        useUtf8();
        const int code = cfg == nullptr ? CFG_NO_MEMORY : cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file);
        return code != 0 ? code : cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, backup);
    }

    int open()
    {
        const int code = make();
        return code != 0 ? code : bind();
    }

    int bind(const char* dn = nullptr, const char* password = nullptr) const
    {
        return cfg_bind_s(cfg, dn, password, LDAP_AUTH_SIMPLE);
    }

    // The flag is that which no search heeds.
    int search(const char* base, int scope, const char* filter, char** names = nullptr, int flag = 0)
    {
        cfg_msgfree(found);
        return cfg_search_s(cfg, base, scope, filter, names, flag, &found);
    }

    int update(Update call, const char* dn, std::vector<Mod> mods) const
    {
        std::vector<LDAPMod*> records(mods.size() + 1);
        std::transform(mods.begin(), mods.end(), records.begin(), [](Mod& each) { return each.made(); });
        return call(cfg, dn, records.data());
    }

    // An update with one value.
    int change(Update call, const char* dn, decltype(LDAPMod::mod_op) operation, const char* type,
               const char* value) const
    {
        char* values[] = {const_cast<char*>(value), nullptr};
        LDAPMod record = {operation, const_cast<char*>(type), {values}};
        LDAPMod* records[] = {&record, nullptr};
        return call(cfg, dn, records);
    }

    const char* const file;
    const char* const backup;
    CFG* cfg = nullptr;
    CFGMessage* found = nullptr;
    BerElement* walk = nullptr;
};

struct OwnFile : TempDirectory {
    const std::string name = *this / "zebslapd.conf";
};

// A client with a file of its own, not bound at first.
struct FileClient : OwnFile, Client {
    FileClient() : Client(name.c_str()) { make(); }

    // Binds to a file of that text.
    int load(const std::string& text, const char* dn = nullptr, const char* password = nullptr) const
    {
        writeText(name, text);
        return bind(dn, password);
    }
};

#endif
