// Many operations on one handle, and many handles: neither memory nor descriptors may grow. Prints what was in use
// after a first round and at the end; ends with 1 if that differs.
#include "faults.h"
#include "support.h"
#include "zebldapcfg.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <malloc.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/allocator_interface.h>
#endif

namespace {

constexpr long bytesOfChance = 16384;  // texts of several lengths, and what the C library keeps at hand

struct Use {
    long blocks;
    long bytes;
    long descriptors;
};

long bytesInUse()
{
#ifdef __SANITIZE_ADDRESS__
    return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    return static_cast<long>(::mallinfo2().uordblks);
#endif
}

Use usedNow()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    const long descriptors = std::distance(begin(all), end(all));
    return {liveBlocks(), bytesInUse(), descriptors};
}

const TempDirectory directory;
const std::string file = directory / "file";
int unexpected = 0;

void expect(int code, int wanted)
{
    unexpected += code != wanted ? 1 : 0;
}

CFG* bound()
{
    CFG* const cfg = cfg_init();
    expect(cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file.c_str()), 0);
    expect(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE), 0);
    return cfg;
}

int modify(CFG* cfg, int operation, std::string type, std::string text)
{
    char* values[] = {text.data(), nullptr};
    LDAPMod record = {operation, type.data(), {values}};
    LDAPMod* records[] = {&record, nullptr};
    return cfg_modify_s(cfg, "cn=k0", records);
}

void search(CFG* cfg, const char* base, int scope, const char* filter)
{
    CFGMessage* found = nullptr;
    expect(cfg_search_s(cfg, base, scope, filter, nullptr, 0, &found), 0);
    BerElement* walk = nullptr;
    char* const name = cfg_first_attribute(cfg, found, &walk);
    char** const values = cfg_get_values(cfg, found, name);
    expect(values != nullptr ? 0 : 1, 0);
    cfg_value_free(values);
    cfg_memfree(name);
    cfg_ber_free(walk);
    cfg_msgfree(found);
}

// Another program writes the same content, at another time than all before.
void writeFromOutside()
{
    static int hours = 0;
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(file, now - std::chrono::hours(++hours));
}

// A hundred operations, behind which the file is as it was.
void mixedOperations(CFG* cfg)
{
    constexpr int shares = 10;
    for (int share = 0; share < shares; ++share) {
        const std::string dn = "cn=new" + std::to_string(share) + ", cn=k7";
        search(cfg, "", LDAP_SCOPE_SUBTREE, "cn=k");
        expect(cfg_add_s(cfg, dn.c_str(), nullptr), 0);
        expect(modify(cfg, LDAP_MOD_REPLACE, "zeb-slapdPort", std::to_string(1000 + share)), 0);
        expect(modify(cfg, LDAP_MOD_ADD, "zeb-slapdPort", "no"), 21);
        expect(cfg_dump_exception(cfg) != nullptr && cfg_tree_view(cfg, 0) != nullptr ? 0 : 1, 0);
        search(cfg, "cn=k0", LDAP_SCOPE_BASE, "");
        expect(modify(cfg, LDAP_MOD_ADD, "zeb-slapdAdminPW", "secret"), 0);
        expect(modify(cfg, LDAP_MOD_DELETE, "zeb-slapdAdminPW", "secret"), 0);
        expect(cfg_delete_s(cfg, "cn=k7"), 66);
        expect(cfg_delete_s(cfg, dn.c_str()), 0);
        expect(cfg_flush_s(cfg), 0);
    }
    writeFromOutside();
    search(cfg, "", LDAP_SCOPE_SUBTREE, "cn=k");
}

// The use after the first tenth, which sees all that is made once, and at the end.
template <typename Round>
bool isFlat(const char* what, long rounds, Round round)
{
    Use first = {};
    for (long number = 0; number < rounds; ++number) {
        if (number == rounds / 10)
            first = usedNow();
        round();
    }
    const Use last = usedNow();
    std::printf("%s: %ld to %ld blocks, %ld to %ld bytes, %ld to %ld descriptors\n", what, first.blocks, last.blocks,
                first.bytes, last.bytes, first.descriptors, last.descriptors);
    return first.blocks == last.blocks && std::abs(first.bytes - last.bytes) < bytesOfChance &&
           first.descriptors == last.descriptors;
}

}  // namespace

// The number of operations on one handle, and that of handles.
int main(int count, char** arguments)
{
    const long operations = count > 1 ? std::strtol(arguments[1], nullptr, 10) : 100000;
    const long handles = count > 2 ? std::strtol(arguments[2], nullptr, 10) : 10000;
    std::string text;
    for (int number = 0; number < 40; ++number)
        text += "dn: cn=k" + std::to_string(number) + "\nobjectclass: top\ncn: k\n\n";
    writeText(file, text);
    std::setbuf(stdout, nullptr);
    CFG* const cfg = bound();
    const bool isOneFlat = isFlat("operations", operations / 100, [&] { mixedOperations(cfg); });
    cfg_unbind(cfg);
    const bool areAllFlat = isFlat("handles", handles, [] { cfg_unbind(bound()); });
    std::printf("%d unexpected results\n", unexpected);
    return isOneFlat && areAllFlat && unexpected == 0 ? 0 : 1;
}
