// A scripted session over the whole C interface, again and again: each allocation and each call on a file fails in
// turn, once and from then on. Prints how many points it has tried; ends with 1 if one of them went wrong.
#include "client.h"
#include "faults.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

#ifdef __SANITIZE_ADDRESS__

// The sanitizer's own operator new never fails.
void* operator new(std::size_t size)
{
    void* const block = isMemoryMet() ? nullptr : std::malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

extern "C" [[gnu::visibility("default")]] const char* __asan_default_options()
{
    return "alloc_dealloc_mismatch=0";
}

#endif

namespace {

constexpr auto ownerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
constexpr auto groupReads = std::filesystem::perms::group_read;

long points = 0;
long violations = 0;

std::string configuration()
{
    std::string text = "charset: UTF-8\nversion: 1\n\n# top\ndn: cn=Configuration\nobjectclass: top\n"
                       "zeb-slapdAdminDN: cn=root, o=x\nzeb-slapdAdminPW: secret\nzeb-slapdPort: 389\n\n";
    for (int number = 0; number < 34; ++number)  // more than a family may have without an index
        text += "# \u00e9\ndn: cn=k" + std::to_string(number) + ", o=p\ncn: k\nzeb-slapdSuffix: o=\u00e9\n\n";
    return text;
}

// The salt of a password is new each time, so only the fact that it is there counts.
std::string withoutSalt(std::string text)
{
    for (auto open = text.find(": >"); open != std::string::npos; open = text.find(": >", open + 1))
        text.erase(open + 3, text.find("<\n", open) - open - 3);
    return text;
}

// The first code that is none of success.
int firstOf(std::initializer_list<int> codes)
{
    for (const int code : codes) {
        if (code != 0)
            return code;
    }
    return 0;
}

// The code for a call that gives a copy or null.
int taken(const Client& s, char* copy)
{
    cfg_memfree(copy);
    return copy != nullptr ? 0 : cfg_get_errno(s.cfg);
}

const struct Step {
    std::string name;
    std::string added;  // what another program adds to the file before the step
    int (*call)(Client&);
} steps[] = {
    {"init", "", [](Client& s) { return cfg_unbind(std::exchange(s.cfg, nullptr)) + Client(s.file).open(); }},
    {"options", "",
     [](Client& s) {
         char* name = nullptr;
         int flag = 0;
         return firstOf({cfg_set_option(s.cfg, CFG_OPT_BACKUP_FILE, "b"),
                         cfg_set_option(s.cfg, CFG_OPT_CONFIG_FILE, s.file),
                         cfg_get_option(s.cfg, CFG_OPT_SHOW_STACK, &flag),
                         cfg_get_option(s.cfg, CFG_OPT_CONFIG_FILE, &name), taken(s, name)});
     }},
    {"location", "",
     [](Client& s) {
         Client other(nullptr);
         const int code = other.open();
         return firstOf({code, std::strcmp(cfg_get_file_name(s.cfg), s.file), getInstallPath() == nullptr ? -1 : 0,
                         getDefaultConfigFilename() == nullptr ? -2 : 0});
     }},
    {"login", "", [](Client& s) { return cfg_bind_s(s.cfg, "cn=root, o=x", "secret", LDAP_AUTH_SIMPLE); }},
    {"mend", "\ndn: cn=last\nzeb-slapdPort: no\n\n",
     [](Client& s) { return cfg_bind_s(s.cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE); }},
    {"reload", "\ndn: cn=last\ncn:last\n\ndn: cn=odd\nö: x\n\n",
     [](Client& s) { return s.search("", LDAP_SCOPE_BASE, "version"); }},
    {"large reload", "# " + std::string(std::size_t{300} << 10, 'x') + '\n',  // in memory from the system
     [](Client& s) { return s.search("", LDAP_SCOPE_BASE, "version"); }},
    {"bad reload", "\ndn: cn\n\n", [](Client& s) { return s.search("", LDAP_SCOPE_BASE, "version"); }},
    {"search", "",
     [](Client& s) {
         char* names[] = {const_cast<char*>("cn"), nullptr};
         return firstOf({s.search("cn=Configuration", LDAP_SCOPE_BASE, ""),
                         s.search("", LDAP_SCOPE_ONELEVEL, "(zeb-slapdSuffix=o=\\c3\\a9)", names),
                         s.search("", LDAP_SCOPE_SUBTREE, "cn=*")});
     }},
    {"locale", "",
     [](Client& s) {
         setenv("LOCPATH", LOCALES, 1);
         const bool isThere = std::setlocale(LC_ALL, "de_CH.ISO-8859-1") != nullptr;
         unsetenv("LOCPATH");
         return isThere ? s.search("", LDAP_SCOPE_BASE, "version") : LDAP_OTHER;
     }},
    {"navigation", "",
     [](Client& s) {
         CFGMessage* const entry = cfg_next_entry(s.cfg, cfg_first_entry(s.cfg, s.found));
         const int code =
             firstOf({taken(s, cfg_get_dn(s.cfg, entry)), taken(s, cfg_first_attribute(s.cfg, entry, &s.walk)),
                      taken(s, s.walk != nullptr ? cfg_next_attribute(s.cfg, entry, s.walk) : nullptr)});
         char** const values = cfg_get_values(s.cfg, entry, "zeb-slapdSuffix");
         const int last = values != nullptr ? cfg_count_values(values) - 1 : cfg_get_errno(s.cfg);
         cfg_value_free(values);
         const int counts = cfg_count_entries(s.cfg, entry) - 33 + cfg_count_attributes(s.cfg, entry) - 2;
         return firstOf({code, last, counts});
     }},
    {"add", "", [](Client& s) { return s.change(cfg_add_s, "cn=n, cn=k7, o=p", LDAP_MOD_ADD, "zeb-slapdPort", "1"); }},
    {"adopt", "", [](Client& s) { return s.change(cfg_add_s, "o=p", LDAP_MOD_ADD, "description", "\u00e9"); }},
    {"modify", "",
     [](Client& s) { return s.change(cfg_modify_s, "cn=k1, o=p", LDAP_MOD_REPLACE, "zeb-slapdSuffix", "o=y"); }},
    {"encode", "",
     [](Client& s) { return s.change(cfg_modify_s, "cn=k7, o=p", LDAP_MOD_ADD, "zeb-slapdPeerPW", "a secret"); }},
    {"drop", "", [](Client& s) { return s.change(cfg_modify_s, "cn=k7, o=p", LDAP_MOD_DELETE, "CN", "k"); }},
    {"delete", "", [](Client& s) { return cfg_delete_s(s.cfg, "cn=k7, o=p"); }},
    {"flush", "", [](Client& s) { return cfg_flush_s(s.cfg); }},
    {"own backup", "",
     [](Client& s) {
         Client other(s.file, s.file);
         return firstOf({other.open(), cfg_flush_s(other.cfg)});
     }},
    {"failure", "",
     [](Client& s) {
         const int code = s.change(cfg_modify_s, "cn=k1, o=p", LDAP_MOD_ADD, "zeb-slapdPort", "70000");
         cfg_perror(s.cfg, cfg_err2string(code));
         for (const auto get : {&cfg_get_attribute, &cfg_get_entry, &cfg_get_value})
             (void)get(s.cfg);
         for (const auto get : {&cfg_get_exterror, &cfg_get_minimum, &cfg_get_maximum, &cfg_get_file_line})
             (void)get(s.cfg);
         return cfg_dump_exception(s.cfg) != nullptr ? code : static_cast<int>(CFG_NO_MEMORY);
     }},
    {"outline", "",
     [](Client& s) { return cfg_reset(s.cfg) + (cfg_tree_view(s.cfg, 1) != nullptr ? 0 : CFG_NO_MEMORY); }},
};

// What a step leaves when a call on a file fails, once and from then on: code/extended code, then what the file and the
// backup hold: the "old" text, the "new" one, the "backup" from before, "part" of a text, or "none".
const struct Row {
    std::string step;
    bool hasBackup;
    FaultCalls call;
    long number;
    std::string once;
    std::string lasting;
} rows[] = {
    {"modify", true, faultStat, 1, "91/1003 old backup", "91/1003 old backup"},
    {"modify", true, faultStat, 2, "0/0 new old", "50/1004 old backup"},  // for the mode of the file
    {"modify", true, faultStat, 3, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 4, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 5, "50/1004 old backup", "50/1004 old backup"},
    {"modify", true, faultStat, 6, "91/1003 new old", "91/1003 new old"},
    {"modify", true, faultUnlink, 1, "0/0 new old", "0/0 new old"},
    {"modify", true, faultRename, 1, "50/1004 old none", "50/1004 old none"},
    {"modify", true, faultOpen, 1, "50/1004 none old", "50/1004 none old"},
    {"modify", true, faultOwner, 1, "0/0 new old", "0/0 new old"},
    {"modify", true, faultMode, 1, "0/0 new old", "0/0 new old"},
    {"modify", true, faultWrite, 1, "0/0 part old", "0/0 part old"},
    {"modify", true, faultClose, 1, "0/0 new old", "0/0 new old"},
    {"modify", false, faultStat, 1, "91/1003 old none", "91/1003 old none"},
    {"modify", false, faultStat, 2, "0/0 new none", "50/1004 old none"},  // for the mode of the file
    {"modify", false, faultStat, 3, "50/1004 old none", "50/1004 old none"},
    {"modify", false, faultStat, 4, "91/1003 new none", "91/1003 new none"},
    {"modify", false, faultOpen, 1, "0/0 new none", "50/1004 old none"},  // for a file that is not there
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

// A step with its file, tried at one point after the other.
class Trial {
public:
    Trial(const Step& tried, bool withBackup) : step(tried), hasBackup(withBackup)
    {
        writeText(file, configuration());
        Client first(file.c_str());
        check(first.open() == 0, "no session", {});
        check(cfg_flush_s(first.cfg) == 0, "no text", {});
        old = readText(file);
        (void)run({});  // also makes what is made once in a process
    }

    // The number of the plan's calls that the step makes.
    long run(const FaultPlan& plan)
    {
        const long blocks = liveBlocks();
        const long descriptors = openDescriptors();
        const bool isFirst = !wanted;
        const long made = runStep(plan);
        check(isFirst || liveBlocks() == blocks, "memory leaked", plan);
        check(isFirst || openDescriptors() == descriptors, "files left open", plan);
        check(inheritedFiles() == 0, "open in other programs", plan);
        return made;
    }

private:
    long runStep(const FaultPlan& plan)
    {
        Client client(file.c_str(), hasBackup ? backup.c_str() : nullptr);
        start(client);
        armFaults(plan);
        const int code = step.call(client);
        const long made = disarmFaults();
        const int ext = cfg_get_exterror(client.cfg);
        const std::string left =
            std::to_string(code) + '/' + std::to_string(ext) + ' ' + state(file) + ' ' + state(backup);
        const int flushed = goOn(client);
        if (!wanted)
            wanted = {code, left, flushed, withoutSalt(readText(file))};
        else if (plan.first != 0)
            judge(plan, code, left);
        check(flushed == wanted->flushed, "then " + std::to_string(flushed), plan);
        check(withoutSalt(readText(file)) == wanted->text || (code != wanted->code && state(file) == "old"),
              "then another text", plan);
        return made;
    }

    void start(Client& client) const
    {
        writeText(file, old);
        std::filesystem::permissions(file, ownerOnly | groupReads);
        setTime(file, 1000);
        if (hasBackup)
            writeText(backup, "backup");
        check(client.open() == 0, "no start", {});
        check(client.search("", LDAP_SCOPE_SUBTREE, "cn") == 0, "no search at the start", {});
        writeText(file, old + step.added);
        setTime(file, step.added.empty() ? 1000 : 2000);
    }

    void judge(const FaultPlan& plan, int code, const std::string& left) const
    {
        ++points;
        check(!isOpened(plan), "open to others", plan);
        const bool isSafe = left.find(" old") != std::string::npos || left.find(" new") != std::string::npos;
        check(isSafe || plan.calls == faultWrite, "lost: " + left, plan);
        if (plan.calls == faultMemory)
            check(code == wanted->code || code == LDAP_OTHER || code == CFG_NO_MEMORY, left, plan);
        else if (plan.fault == Fault::half || plan.error == EINTR)
            check(left == wanted->left, left, plan);
        bool hasRows = false;
        const Row* row = nullptr;
        for (const Row& each : rows) {
            if (each.step == step.name && each.hasBackup == hasBackup) {
                hasRows = true;
                row = each.call == plan.calls && each.number == plan.first ? &each : row;
            }
        }
        if (hasRows && plan.calls != faultMemory && plan.fault == Fault::error && plan.error != EINTR)
            check(left == (row == nullptr ? "as its row says" : plan.lasts ? row->lasting : row->once), left, plan);
    }

    // Whether the file lets somebody in whom the old one did not. A group that it could not be given is another.
    bool isOpened(const FaultPlan& plan) const
    {
        const bool isOtherGroup = plan.calls == faultOwner && plan.lasts;
        const auto allowed = isOtherGroup ? ownerOnly : ownerOnly | groupReads;
        return std::filesystem::exists(file) &&
               (std::filesystem::status(file).permissions() & ~allowed) != std::filesystem::perms::none;
    }

    std::string state(const std::string& name) const
    {
        if (!std::filesystem::exists(name))
            return "none";
        const std::string text = withoutSalt(readText(name));
        if (text == withoutSalt(old + step.added))
            return "old";
        if (text == "backup")
            return text;
        return !wanted || text == wanted->text ? "new" : "part";
    }

    // The same handle again, when nothing fails any more: the code of a flush.
    int goOn(Client& client) const
    {
        if (hasBackup && !std::filesystem::exists(file))
            std::filesystem::rename(backup, file);
        if (client.cfg == nullptr)
            (void)client.open();
        (void)cfg_tree_view(client.cfg, 0);  // walks the tree that a failed load has left
        return cfg_flush_s(client.cfg);
    }

    void check(bool isRight, const std::string& what, const FaultPlan& plan) const
    {
        if (isRight)
            return;
        ++violations;
        std::printf("%s%s, call %ld of %x%s, fault %d, error %d: %s\n", step.name.c_str(),
                    hasBackup ? " with backup" : "", plan.first, plan.calls, plan.lasts ? " and on" : "",
                    static_cast<int>(plan.fault), plan.error, what.c_str());
    }

    // What the step gives and leaves when nothing fails, and then a flush behind it.
    struct Wanted {
        int code;
        std::string left;
        int flushed;
        std::string text;
    };

    const Step& step;
    const bool hasBackup;
    const TempDirectory directory;
    const std::string file = directory / "file";
    const std::string backup = hasBackup ? directory / "backup" : "";
    std::string old;
    std::optional<Wanted> wanted;
};

// Tries a step with its calls of one kind, and gives their number. Of stride allocations one is tried.
long tryCalls(Trial& trial, FaultCalls kind, long stride)
{
    static std::minstd_rand random;
    std::uniform_int_distribution<long> within(1, 2 * stride - 1);
    const long calls = trial.run({kind, 0, false, Fault::error, 0});
    for (long number = 1; number <= calls; number += kind == faultMemory ? within(random) : 1) {
        for (const bool lasts : {false, true}) {
            trial.run({kind, number, lasts, Fault::error, EIO});
            if (kind == faultRead || kind == faultWrite || kind == faultStat)
                trial.run({kind, number, lasts, Fault::half, 0});
            if ((kind == faultRead || kind == faultWrite) && !lasts)
                trial.run({kind, number, lasts, Fault::error, EINTR});
            for (const int error : {ENOSPC, EACCES, EMFILE}) {
                if (kind != faultMemory && stride == 1)
                    trial.run({kind, number, lasts, Fault::error, error});
            }
        }
    }
    return calls;
}

}  // namespace

// The argument: of so many allocations one is tried.
int main(int count, char** arguments)
{
    std::setbuf(stdout, nullptr);
    const long stride = count > 1 ? std::strtol(arguments[1], nullptr, 10) : 1;
    for (const FaultCalls kind : {faultMemory, faultOpen, faultRead, faultWrite, faultClose, faultRename, faultUnlink,
                                  faultStat, faultOwner, faultMode}) {
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
