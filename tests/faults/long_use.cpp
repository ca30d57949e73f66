// Many operations on one handle, and many handles: neither memory nor descriptors may grow. Prints what was in use
// after a tenth and at the end; ends with 1 if that differs.
#include "client.h"
#include "faults.h"

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr long bytesOfChance = 16384;  // texts of several lengths, and what the C library keeps at hand

long unexpected = 0;

void expect(bool isRight)
{
    unexpected += isRight ? 0 : 1;
}

struct Use {
    long blocks = liveBlocks();
#ifdef __SANITIZE_ADDRESS__
    long bytes = static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    long bytes = static_cast<long>(::mallinfo2().uordblks);
#endif
    long descriptors = openDescriptors();
};

// Takes a walk over the first entry that is found.
void search(Client& client, const char* base, int scope, const char* filter)
{
    expect(client.search(base, scope, filter) == 0);
    char* const name = cfg_first_attribute(client.cfg, client.found, &client.walk);
    char** const values = cfg_get_values(client.cfg, client.found, name);
    expect(cfg_count_values(values) > 0);
    cfg_value_free(values);
    cfg_memfree(name);
    cfg_ber_free(std::exchange(client.walk, nullptr));
}

// Ten operations, behind which the file is as it was, at a time that another program seems to have given it.
void mixedOperations(Client& client, int number)
{
    const std::string port = std::to_string(1000 + number % 1000);
    const std::string dn = "cn=" + port + ", cn=k7";
    const auto modify = [&](int operation, const char* type, const char* value) {
        return client.change(cfg_modify_s, "cn=k0", operation, type, value);
    };
    search(client, "", LDAP_SCOPE_SUBTREE, "cn=k");
    expect(cfg_add_s(client.cfg, dn.c_str(), nullptr) == 0);
    expect(modify(LDAP_MOD_REPLACE, "zeb-slapdPort", port.c_str()) == 0);
    expect(modify(LDAP_MOD_ADD, "zeb-slapdPort", "no") == LDAP_INVALID_SYNTAX);
    expect(cfg_dump_exception(client.cfg) != nullptr && cfg_tree_view(client.cfg, 0) != nullptr);
    search(client, "cn=k0", LDAP_SCOPE_BASE, "");
    expect(modify(LDAP_MOD_ADD, "zeb-slapdAdminPW", "secret") == 0);
    expect(modify(LDAP_MOD_DELETE, "zeb-slapdAdminPW", "secret") == 0);
    expect(cfg_delete_s(client.cfg, dn.c_str()) == 0);
    expect(cfg_flush_s(client.cfg) == 0);
    if (number % 10 == 0)
        setTime(client.file, 1 + number / 10);
    search(client, "", LDAP_SCOPE_SUBTREE, "cn=k");
}

template <typename Round>
bool isFlat(const char* what, int rounds, Round round)
{
    Use first;
    for (int number = 0; number < rounds; ++number) {
        if (number == rounds / 10)
            first = Use();
        round(number);
    }
    const Use last;
    std::printf("%s: %ld to %ld blocks, %ld to %ld bytes, %ld to %ld descriptors\n", what, first.blocks, last.blocks,
                first.bytes, last.bytes, first.descriptors, last.descriptors);
    return first.blocks == last.blocks && std::abs(first.bytes - last.bytes) < bytesOfChance &&
           first.descriptors == last.descriptors;
}

}  // namespace

// The arguments: the number of operations on one handle, and that of handles.
int main(int count, char** arguments)
{
    const auto operations = static_cast<int>(count > 1 ? std::strtol(arguments[1], nullptr, 10) : 100000);
    const auto handles = static_cast<int>(count > 2 ? std::strtol(arguments[2], nullptr, 10) : 10000);
    std::setbuf(stdout, nullptr);
    const TempDirectory directory;
    const std::string file = directory / "file";
    std::string text;
    for (int number = 0; number < 40; ++number)
        text += "dn: cn=k" + std::to_string(number) + "\nobjectclass: top\ncn: k\n\n";
    writeText(file, text);
    Client client(file.c_str());
    expect(client.open() == 0);
    const bool isOneFlat = isFlat("operations", operations / 10, [&](int number) { mixedOperations(client, number); });
    const bool areAllFlat = isFlat("handles", handles, [&](int) { expect(Client(file.c_str()).open() == 0); });
    std::printf("%ld unexpected results\n", unexpected);
    return isOneFlat && areAllFlat && unexpected == 0 ? 0 : 1;
}
