// What the programs share that use the library under faults: a handle, and what is in use.
#ifndef SESSION_H
#define SESSION_H

#include "support.h"
#include "zebldapcfg.h"

#include <chrono>
#include <iterator>
#include <utility>

// A handle on a file, perhaps with a backup, the result of its last search, and a walk over that. It takes no memory
// but the library's.
struct Session {
    explicit Session(const char* name, const char* backupName = nullptr) : file(name), backup(backupName) {}
    Session(const Session&) = delete;
    ~Session() { close(); }

    int open()
    {
        cfg = cfg_init();
        if (cfg == nullptr)
            return CFG_NO_MEMORY;
        (void)cfg_set_option(cfg, CFG_OPT_DELETE_NON_LEAVES, cfg);
        int code = cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file);
        if (code == 0)
            code = cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, backup);
        return code != 0 ? code : cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE);
    }

    void close()
    {
        cfg_ber_free(walk);
        cfg_msgfree(found);
        cfg_unbind(cfg);
        cfg = nullptr;
        found = nullptr;
        walk = nullptr;
    }

    int search(const char* base, int scope, const char* filter, char** names = nullptr)
    {
        cfg_msgfree(found);
        return cfg_search_s(cfg, base, scope, filter, names, 0, &found);
    }

    // Calls cfg_add_s or cfg_modify_s with one value.
    int change(decltype(&cfg_add_s) call, const char* dn, int operation, const char* type, const char* value) const
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

inline long openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

// The times tell the writers of a file apart. All count from one, so that equal ages are equal times.
inline void setAge(const std::string& name, int hours)
{
    static const auto start = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(name, start - std::chrono::hours(hours));
}

#endif
