// A scripted session over the whole C interface, again and again: each allocation and each call on a file fails in
// turn, once and from then on. Prints how many points it has tried; ends with 1 if one of them went wrong.
#include "faults.h"
#include "support.h"
#include "zebldapcfg.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <optional>
#include <vector>

#ifdef __SANITIZE_ADDRESS__

void* operator new(std::size_t size)
{
    if (!isMemoryMet())
        if (void* const block = std::malloc(size != 0 ? size : 1))
            return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

#endif

namespace {

long points = 0;
long violations = 0;

// The salt of a password is new each time, so only the fact that it is there counts.
std::string withoutPasswords(std::string text)
{
    for (auto open = text.find(": >"); open != std::string::npos; open = text.find(": >", open + 1))
        text.erase(open + 3, text.find("<\n", open) - open - 3);
    return text;
}

std::string configuration()
{
    std::string text = "charset: UTF-8\nversion: 1\n\n# top\ndn: cn=Configuration\nobjectclass: top\n"
                       "zeb-slapdAdminDN: cn=root, o=x\nzeb-slapdAdminPW: secret\nzeb-slapdPort: 389\n\n";
    for (int number = 0; number < 34; ++number)  // more than a family may have without an index
        text += "# \u00e9\ndn: cn=k" + std::to_string(number) + ", o=p\ncn: k\nzeb-slapdSuffix: o=\u00e9\n\n";
    return text;
}

LDAPMod** changes(int operation, const char* type, const char* text)
{
    static char* values[2] = {};
    static LDAPMod record = {};
    static LDAPMod* records[2] = {&record, nullptr};
    values[0] = const_cast<char*>(text);
    record = {operation, const_cast<char*>(type), {values}};
    return records;
}

// What a step works on: a file, perhaps with an older backup, and a bound handle with a result and a walk over it.
struct Session {
    explicit Session(const TempDirectory& directory, bool withBackup)
        : file(directory / "file"), backup(withBackup ? directory / "backup" : "")
    {}
    Session(const Session&) = delete;
    ~Session() { std::remove(backup.c_str()); }

    int open()
    {
        cfg = cfg_init();
        (void)cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file.c_str());
        (void)cfg_set_option(cfg, CFG_OPT_DELETE_NON_LEAVES, cfg);
        if (!backup.empty())
            (void)cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, backup.c_str());
        return cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE);
    }

    void close()
    {
        cfg_ber_free(walk);
        walk = nullptr;
        cfg_msgfree(found);
        found = nullptr;
        cfg_unbind(cfg);
        cfg = nullptr;
    }

    int search(const char* base, int scope, const char* filter, char** attributes = nullptr)
    {
        cfg_msgfree(found);
        return cfg_search_s(cfg, base, scope, filter, attributes, 0, &found);
    }

    // The code of a call that gives a copy or null.
    int taken(char* copy) const
    {
        cfg_memfree(copy);
        return copy != nullptr ? 0 : cfg_get_errno(cfg);
    }

    const std::string file;
    const std::string backup;
    CFG* cfg = nullptr;
    CFGMessage* found = nullptr;
    BerElement* walk = nullptr;
};

// The first code that is none of success.
int firstOf(std::initializer_list<int> codes)
{
    for (const int code : codes) {
        if (code != 0)
            return code;
    }
    return 0;
}

int nullIsMemory(const void* given)
{
    return given != nullptr ? 0 : CFG_NO_MEMORY;
}

// The text that the step finds in the file, when it is not the session's own: what another program has written there.
const char badLine[] = "\ndn: cn=last\nobjectclass: top\nzeb-slapdPort: no\n\n";
const char badDn[] = "\ndn: cn\n\n";
const char another[] = "\ndn: cn=last\nobjectclass: top\n\n";

struct Step {
    const char* name;
    const char* added;  // what another program adds to the file before the step; null for none
    int (*call)(Session&);
};

const Step steps[] = {
    {"init", nullptr,
     [](Session&) {
         CFG* const made = cfg_init();
         return made != nullptr ? cfg_unbind(made) : CFG_NO_MEMORY;
     }},
    {"options", nullptr,
     [](Session& s) {
         char* name = nullptr;
         int flag = 0;
         const int code = firstOf({cfg_set_option(s.cfg, CFG_OPT_BACKUP_FILE, "b"),
                                   cfg_set_option(s.cfg, CFG_OPT_CONFIG_FILE, s.file.c_str()),
                                   cfg_get_option(s.cfg, CFG_OPT_SHOW_STACK, &flag),
                                   cfg_get_option(s.cfg, CFG_OPT_CONFIG_FILE, &name)});
         cfg_memfree(name);
         return code != 0 ? code : nullIsMemory(name);
     }},
    {"location", nullptr,
     [](Session& s) {
         CFG* const made = cfg_init();
         const char* const name = cfg_get_file_name(made);
         const bool isSame = name == getDefaultConfigFilename() && getInstallPath() != nullptr;
         const int code = made != nullptr ? cfg_bind_s(made, nullptr, nullptr, LDAP_AUTH_SIMPLE) : CFG_NO_MEMORY;
         cfg_unbind(made);
         return isSame && cfg_get_file_name(s.cfg) != nullptr ? code : LDAP_OTHER;
     }},
    {"login", nullptr,
     [](Session& s) { return cfg_bind_s(s.cfg, "cn=root, o=x", "secret", static_cast<int>(LDAP_AUTH_SIMPLE)); }},
    {"mend", badLine,
     [](Session& s) { return cfg_bind_s(s.cfg, nullptr, nullptr, static_cast<int>(LDAP_AUTH_SIMPLE)); }},
    {"reload", another, [](Session& s) { return s.search("", LDAP_SCOPE_BASE, "version"); }},
    {"bad reload", badDn, [](Session& s) { return s.search("", LDAP_SCOPE_BASE, "version"); }},
    {"search", nullptr,
     [](Session& s) {
         char name[] = "cn";
         char* names[] = {name, nullptr};
         return firstOf({s.search("cn=Configuration", LDAP_SCOPE_BASE, ""),
                         s.search("", LDAP_SCOPE_ONELEVEL, "(zeb-slapdSuffix=o=\\c3\\a9)", names),
                         s.search("", LDAP_SCOPE_SUBTREE, "cn=*")});
     }},
    {"navigation", nullptr,
     [](Session& s) {
         CFGMessage* const entry = cfg_next_entry(s.cfg, cfg_first_entry(s.cfg, s.found));
         int code = s.taken(cfg_get_dn(s.cfg, entry));
         code = firstOf({code, s.taken(cfg_first_attribute(s.cfg, entry, &s.walk))});
         if (s.walk != nullptr)
             code = firstOf({code, s.taken(cfg_next_attribute(s.cfg, entry, s.walk))});
         char** const values = cfg_get_values(s.cfg, entry, "zeb-slapdSuffix");
         code = firstOf({code, values != nullptr ? cfg_count_values(values) - 1 : cfg_get_errno(s.cfg)});
         cfg_value_free(values);
         return code != 0 ? code : cfg_count_entries(s.cfg, entry) - 33 + cfg_count_attributes(s.cfg, entry) - 2;
     }},
    {"add", nullptr,
     [](Session& s) { return cfg_add_s(s.cfg, "cn=new, cn=k7, o=p", changes(LDAP_MOD_ADD, "zeb-slapdPort", "1")); }},
    {"adopt", nullptr,
     [](Session& s) { return cfg_add_s(s.cfg, "o=p", changes(LDAP_MOD_ADD, "description", "\u00e9")); }},
    {"modify", nullptr,
     [](Session& s) {
         return cfg_modify_s(s.cfg, "cn=Configuration", changes(LDAP_MOD_REPLACE, "zeb-slapdPort", "1389"));
     }},
    {"encode", nullptr,
     [](Session& s) {
         return cfg_modify_s(s.cfg, "cn=k7, o=p", changes(LDAP_MOD_ADD, "zeb-slapdPeerPW", "a secret"));
     }},
    {"drop", nullptr,
     [](Session& s) { return cfg_modify_s(s.cfg, "cn=k7, o=p", changes(LDAP_MOD_DELETE, "CN", "k")); }},
    {"delete", nullptr, [](Session& s) { return cfg_delete_s(s.cfg, "cn=k7, o=p"); }},
    {"flush", nullptr, [](Session& s) { return cfg_flush_s(s.cfg); }},
    {"own backup", nullptr,
     [](Session& s) {
         CFG* const made = cfg_init();
         const int code =
             firstOf({made != nullptr ? 0 : CFG_NO_MEMORY, cfg_set_option(made, CFG_OPT_CONFIG_FILE, s.file.c_str()),
                      cfg_set_option(made, CFG_OPT_BACKUP_FILE, s.file.c_str()),
                      cfg_bind_s(made, nullptr, nullptr, LDAP_AUTH_SIMPLE), cfg_flush_s(made)});
         cfg_unbind(made);
         return code;
     }},
    {"failure", nullptr,
     [](Session& s) {
         const int code = cfg_modify_s(s.cfg, "cn=k1,o=p", changes(LDAP_MOD_ADD, "zeb-slapdPort", "70000"));
         const bool isWhole = cfg_get_exterror(s.cfg) == CFG_ERR_INT_RANGE && cfg_get_enum(s.cfg) == nullptr &&
                              cfg_get_bitmask(s.cfg) == 0 && cfg_get_minimum(s.cfg) == 1 &&
                              cfg_get_maximum(s.cfg) == 65535 && cfg_get_is_single(s.cfg) == 1 &&
                              cfg_get_file_line(s.cfg) == 0 && cfg_get_attribute(s.cfg) != nullptr &&
                              cfg_get_entry(s.cfg) != nullptr && cfg_get_value(s.cfg) != nullptr;
         cfg_perror(s.cfg, cfg_err2string(code));
         if (isWhole && cfg_dump_exception(s.cfg) == nullptr)
             return static_cast<int>(CFG_NO_MEMORY);
         return isWhole ? code : cfg_get_errno(s.cfg);
     }},
    {"outline", nullptr, [](Session& s) { return cfg_reset(s.cfg) + nullIsMemory(cfg_tree_view(s.cfg, 1)); }},
    {"unbind", nullptr,
     [](Session& s) {
         const int code = cfg_unbind(s.cfg);
         s.cfg = nullptr;
         return code;
     }},
};

// What a step leaves when each call on a file fails: code/extended code, then what the file and the backup hold, the
// "old" text, the "new" one, the "backup" from before, "part" of a text, or "none".
const struct Row {
    const char* step;
    bool hasBackup;
    FaultCalls call;
    long number;
    const char* once;
    const char* lasting;
} rows[] = {
    {"modify", true, faultStat, 1, "91/1003 old backup", "91/1003 old backup"},
    {"modify", true, faultStat, 2, "0/0 new old", "50/1004 old backup"},
    {"modify", true, faultStat, 3, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 4, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 5, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 6, "91/1003 new old", "91/1003 new old"},
    {"modify", true, faultUnlink, 1, "0/0 new old", "0/0 new old"},
    {"modify", true, faultRename, 1, "50/1004 old none", "50/1004 old none"},
    {"modify", true, faultOpen, 1, "50/1004 none old", "50/1004 none old"},
    {"modify", true, faultOwner, 1, "0/0 new old", "0/0 new old"},
    {"modify", true, faultOwner, 2, "0/0 new old", "0/0 new old"},
    {"modify", true, faultWrite, 1, "0/0 part old", "0/0 part old"},
    {"modify", true, faultClose, 1, "0/0 new old", "0/0 new old"},
    {"modify", false, faultStat, 1, "91/1003 old none", "91/1003 old none"},
    {"modify", false, faultStat, 2, "0/0 new none", "91/1003 new none"},
    {"modify", false, faultStat, 3, "91/1003 new none", "91/1003 new none"},
    {"modify", false, faultOpen, 1, "0/0 new none", "50/1004 old none"},
    {"modify", false, faultOpen, 2, "50/1004 old none", "50/1004 old none"},
    {"modify", false, faultWrite, 1, "0/0 part none", "0/0 part none"},
    {"modify", false, faultClose, 1, "0/0 new none", "0/0 new none"},
    {"reload", true, faultStat, 1, "91/1003 old backup", "91/1003 old backup"},
    {"reload", true, faultOpen, 1, "91/1004 old backup", "91/1004 old backup"},
    {"reload", true, faultStat, 2, "91/1004 old backup", "91/1004 old backup"},
    {"reload", true, faultRead, 1, "91/1004 old backup", "91/1004 old backup"},
    {"reload", true, faultRead, 2, "91/1004 old backup", "91/1004 old backup"},
    {"reload", true, faultClose, 1, "0/0 old backup", "0/0 old backup"},
};

const Row* rowOf(const Step& step, bool hasBackup, const FaultPlan& plan)
{
    for (const Row& row : rows) {
        if (std::string(row.step) == step.name && row.hasBackup == hasBackup && row.call == plan.calls &&
            row.number == plan.first)
            return &row;
    }
    return nullptr;
}

// A step with its file, tried at one point after the other.
class Trial {
public:
    Trial(const Step& tried, bool withBackup) : step(tried), hasBackup(withBackup)
    {
        Session first(directory, false);
        writeText(first.file, configuration());
        if (first.open() != 0 || cfg_flush_s(first.cfg) != 0)
            complain("no session", {});
        first.close();
        old = readText(first.file) + (step.added != nullptr ? step.added : "");
        (void)run({});  // also makes what is made once in a process
    }

    // The number of the plan's calls that the step makes.
    long run(const FaultPlan& plan)
    {
        const bool isFirst = !wanted;
        const long blocks = liveBlocks();
        const long descriptors = openDescriptors();
        long made = 0;
        {
            Session session(directory, hasBackup);
            start(session);
            armFaults(plan);
            const int code = step.call(session);
            made = disarmFaults();
            if (plan.first != 0)
                judge(session, code, plan);
            const std::string left = isFirst ? stateOf(session.file) : "";
            const auto [flushed, text] = goOn(session);
            if (isFirst)
                wanted = Wanted{code, left, flushed, text};
            else if (flushed != wanted->flushed)
                complain("then " + std::to_string(flushed), plan);
            else if (text != wanted->text && (code == wanted->code || text != withoutPasswords(old)))
                complain("then another text", plan);
        }
        if (!isFirst && (liveBlocks() != blocks || openDescriptors() != descriptors))
            complain("leaked " + std::to_string(liveBlocks() - blocks) + " blocks, " +
                         std::to_string(openDescriptors() - descriptors) + " descriptors",
                     plan);
        return made;
    }

private:
    static long openDescriptors()
    {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    }

    // The times tell the writers apart.
    static void writeAt(const std::string& name, const std::string& text, std::chrono::hours age)
    {
        writeText(name, text);
        std::filesystem::last_write_time(name, std::filesystem::file_time_type::clock::now() - age);
    }

    void start(Session& session)
    {
        const std::size_t added = step.added != nullptr ? std::strlen(step.added) : 0;
        writeAt(session.file, old.substr(0, old.size() - added), std::chrono::hours(2));
        if (hasBackup)
            writeText(session.backup, "backup");
        if (session.open() != 0 || session.search("", LDAP_SCOPE_SUBTREE, "cn") != 0)
            complain("no start", {});
        if (added != 0)
            writeAt(session.file, old, std::chrono::hours(1));
    }

    void judge(const Session& session, int code, const FaultPlan& plan)
    {
        ++points;
        const std::string file = stateOf(session.file);
        const std::string backup = stateOf(session.backup);
        const std::string ext = std::to_string(session.cfg != nullptr ? cfg_get_exterror(session.cfg) : 0);
        const std::string outcome = std::to_string(code) + '/' + ext + ' ' + file + ' ' + backup;
        if (plan.calls == faultMemory && code != wanted->code && code != LDAP_OTHER && code != CFG_NO_MEMORY)
            complain(outcome, plan);
        if (file != "old" && file != "new" && backup != "old" && plan.calls != faultWrite)
            complain("lost: " + outcome, plan);
        const Row* const row = rowOf(step, hasBackup, plan);
        const bool isListed = step.name == std::string("modify") || (step.name == std::string("reload") && hasBackup);
        if (plan.calls != faultMemory && plan.fault == Fault::error && isListed &&
            (row == nullptr || outcome != (plan.lasts ? row->lasting : row->once)))
            complain("is " + outcome, plan);
        if (plan.fault == Fault::half && (code != wanted->code || file != wanted->file))
            complain("short: " + outcome, plan);
    }

    std::string stateOf(const std::string& name) const
    {
        if (name.empty() || !std::filesystem::exists(name))
            return "none";
        const std::string text = withoutPasswords(readText(name));
        if (text == withoutPasswords(old))
            return "old";
        if (!wanted || text == wanted->text)
            return "new";
        return text == "backup" ? text : "part";
    }

    // The same handle again, when nothing fails any more: the code and the text of a flush.
    std::pair<int, std::string> goOn(Session& session) const
    {
        if (!std::filesystem::exists(session.file) && hasBackup)
            std::filesystem::rename(session.backup, session.file);
        if (session.cfg == nullptr)
            (void)session.open();
        const int flushed = cfg_flush_s(session.cfg);
        session.close();
        return {flushed, withoutPasswords(readText(session.file))};
    }

    void complain(const std::string& what, const FaultPlan& plan) const
    {
        ++violations;
        std::printf("%s%s, call %ld of %x%s, fault %d, error %d: %s\n", step.name, hasBackup ? " with backup" : "",
                    plan.first, plan.calls, plan.lasts ? " and on" : "", static_cast<int>(plan.fault), plan.error,
                    what.c_str());
    }

    // What the step gives and leaves when nothing fails, and then a flush behind it.
    struct Wanted {
        int code;
        std::string file;
        int flushed;
        std::string text;
    };

    const Step& step;
    const bool hasBackup;
    const TempDirectory directory;
    std::string old;
    std::optional<Wanted> wanted;
};

// The ways in which a call may fail.
std::vector<FaultPlan> plansFor(FaultCalls kind, long number, bool withAllErrors)
{
    std::vector<FaultPlan> plans;
    for (const bool lasts : {false, true}) {
        plans.push_back({kind, number, lasts, Fault::error, EIO});
        if (kind == faultRead || kind == faultWrite)
            plans.push_back({kind, number, lasts, Fault::half, 0});
        for (const int error : {ENOSPC, EACCES, EMFILE}) {
            if (kind != faultMemory && withAllErrors)
                plans.push_back({kind, number, lasts, Fault::error, error});
        }
    }
    return plans;
}

// Tries a step with its calls of one kind, and gives their number. Of stride allocations one is tried.
long tryCalls(Trial& trial, FaultCalls kind, long stride)
{
    static std::minstd_rand random;
    std::uniform_int_distribution<long> within(1, 2 * stride - 1);
    const long calls = trial.run({kind, 0, false, Fault::error, 0});
    for (long number = 1; number <= calls; number += kind == faultMemory ? within(random) : 1) {
        for (const FaultPlan& plan : plansFor(kind, number, stride == 1))
            trial.run(plan);
    }
    return calls;
}

}  // namespace

// The argument: of so many allocations one is tried.
int main(int count, char** arguments)
{
    std::setbuf(stdout, nullptr);
    setenv("LC_ALL", "C.UTF-8", 1);
    const long stride = count > 1 ? std::strtol(arguments[1], nullptr, 10) : 1;
    for (const FaultCalls kind :
         {faultMemory, faultOpen, faultRead, faultWrite, faultClose, faultRename, faultUnlink, faultStat, faultOwner}) {
        long calls = 0;
        for (const Step& step : steps) {
            for (const bool hasBackup : {false, true}) {
                Trial trial(step, hasBackup);
                calls += tryCalls(trial, kind, stride);
            }
        }
        violations += calls == 0 ? 1 : 0;  // They do not come through the library of faults.
    }
    std::printf("%ld points, %ld violations\n", points, violations);
    return violations == 0 ? 0 : 1;
}
