// Deep and large files through the C interface, on a stack as small as that of a thread on Windows. A step that grows
// with the square of the size runs into the time limit of the test.
#include "client.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int share = 10;  // of the sizes that do not matter to the stack: checked memory costs time and room
constexpr std::size_t stackSize = std::size_t{8} << 20;
#else
constexpr int share = 1;
constexpr std::size_t stackSize = std::size_t{1} << 20;
#endif

std::string repeated(int count, const char* before, const char* behind, int factor = 1)
{
    std::string text;
    for (int number = 0; number < count; ++number)
        text.append(before).append(std::to_string(number * std::int64_t{factor} % 100'003)).append(behind);
    return text;
}

// A chain as deep as that, from the root downwards.
std::string chain(int depth)
{
    std::string text;
    std::string dn;
    for (int level = 0; level < depth; ++level) {
        dn.insert(0, "cn=" + std::to_string(level) + (level == 0 ? "" : ", "));
        text += "\ndn: " + dn + "\ncn: x\n";
    }
    return text;
}

const std::string entry = "\ndn: cn=a\ncn: x\n";

// A file, whose last entry is changed.
const struct Case {
    const char* name;
    std::string (*content)();
    int entries;
    std::size_t goneValues = 0;  // of the attribute description, by number
} cases[] = {
    {"Chain", [] { return chain(2000); }, 2000},
    {"LongDn", [] { return "\ndn: " + repeated(9999, "cn=", ", ") + "o=x\ncn: x\n"; }, 1},
    {"LongLine", [] { return entry + "description: " + std::string(100'000'000 / share, 'x') + '\n'; }, 1},
    {"Values", [] { return entry + repeated(100'000 / share, "description: ", "\n"); }, 1, 90'000 / share},
    {"Attributes", [] { return entry + repeated(100'000 / share, "x", ": 1\n", 7919); }, 1},
    {"Comments", [] { return repeated(1'000'000 / share, "# ", "\n") + entry; }, 1},
};

void PrintTo(const Case& each, std::ostream* stream)
{
    *stream << each.name;
}

class Size : public testing::TestWithParam<Case> {};

// The DN of the last entry.
std::string lastDn(const std::string& text)
{
    const auto start = text.rfind("dn: ") + 4;
    return text.substr(start, text.find('\n', start) - start);
}

// Adds a port to an entry, and removes as many values as that from it.
int change(const Client& client, const std::string& dn, std::size_t goneValues)
{
    std::vector<Mod> mods = {{LDAP_MOD_ADD, "zeb-slapdPort", {"1"}}, {LDAP_MOD_DELETE, "description", {}}};
    for (std::size_t number = 0; number < goneValues; ++number)
        mods[1].values.push_back(std::to_string(number));
    mods.resize(goneValues == 0 ? 1 : 2);
    return client.update(cfg_modify_s, dn.c_str(), mods);
}

void expectFound(Client& client, const std::string& base, int scope, int entries)
{
    EXPECT_EQ(client.search(base.c_str(), scope, "cn=x"), 0);
    EXPECT_EQ(cfg_count_entries(client.cfg, client.found), entries);
}

void useFile(const Case& tried)
{
    FileClient client;
    const std::string text = "version: 1\n" + tried.content();
    const std::string dn = lastDn(text);
    EXPECT_EQ(client.load(text), 0);
    expectFound(client, dn, LDAP_SCOPE_BASE, 1);
    expectFound(client, "", LDAP_SCOPE_SUBTREE, tried.entries);
    EXPECT_EQ(change(client, dn, tried.goneValues), 0);
    const std::string written = readText(client.name);
    EXPECT_NE(written.find("zeb-slapdPort: 1\n"), std::string::npos);
    setTime(client.name, 1000);
    EXPECT_EQ(cfg_flush_s(client.cfg), 0);  // reads it again
    EXPECT_TRUE(readText(client.name) == written);
    expectFound(client, "", LDAP_SCOPE_SUBTREE, tried.entries);
    // A failure at the end of the tree has a link for each level.
    EXPECT_EQ(client.search("", LDAP_SCOPE_SUBTREE, "zeb-slapdPort=no"), LDAP_INVALID_SYNTAX);
    EXPECT_NE(cfg_dump_exception(client.cfg), nullptr);
}

}  // namespace

TEST_P(Size, IsLoadedSearchedChangedAndReleased)
{
    onStack(stackSize, [] { useFile(GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(Files, Size, testing::ValuesIn(cases), testing::PrintToStringParamName());
