// Deep and large files through the C interface, on a stack of 8 MB. A step that grows with the square of the size runs
// into the time limit of the test.
#include "support.h"
#include "zebldapcfg.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>
#include <vector>

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int share = 10;  // of the sizes that do not matter to the stack: checked memory costs time and room
#else
constexpr int share = 1;
#endif
constexpr std::size_t stackSize = std::size_t{8} << 20;

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

// Finds so many entries.
void search(CFG* cfg, const std::string& base, int scope, int entries)
{
    CFGMessage* found = nullptr;
    EXPECT_EQ(cfg_search_s(cfg, base.c_str(), scope, "cn=x", nullptr, 0, &found), 0);
    EXPECT_EQ(cfg_count_entries(cfg, found), entries);
    cfg_msgfree(found);
}

void useFile(const Case& tried)
{
    const TempDirectory directory;
    const std::string name = directory / "file";
    const std::string text = "version: 1\n" + tried.content();
    writeText(name, text);
    const auto start = text.rfind("dn: ") + 4;
    const std::string dn = text.substr(start, text.find('\n', start) - start);
    CFG* const cfg = cfg_init();
    EXPECT_EQ(cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, name.c_str()), 0);
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE), 0);
    search(cfg, dn, LDAP_SCOPE_BASE, 1);
    search(cfg, "", LDAP_SCOPE_SUBTREE, tried.entries);
    char type[] = "zeb-slapdPort";
    char value[] = "1";
    char* values[] = {value, nullptr};
    LDAPMod record = {LDAP_MOD_ADD, type, {values}};
    char gone[] = "description";
    std::vector<std::string> numbers(tried.goneValues);
    std::vector<char*> goneValues(tried.goneValues + 1);
    for (std::size_t number = 0; number < numbers.size(); ++number) {
        numbers[number] = std::to_string(number);
        goneValues[number] = numbers[number].data();
    }
    LDAPMod removal = {LDAP_MOD_DELETE, gone, {goneValues.data()}};
    LDAPMod* records[] = {&record, numbers.empty() ? nullptr : &removal, nullptr};
    EXPECT_EQ(cfg_modify_s(cfg, dn.c_str(), records), 0);
    const std::string written = readText(name);
    EXPECT_NE(written.find("zeb-slapdPort: 1\n"), std::string::npos);
    std::filesystem::last_write_time(name, {});
    EXPECT_EQ(cfg_flush_s(cfg), 0);  // reads it again
    EXPECT_TRUE(readText(name) == written);
    search(cfg, "", LDAP_SCOPE_SUBTREE, tried.entries);
    CFGMessage* none = nullptr;  // a failure at the end of the tree, which has a link for each level
    EXPECT_EQ(cfg_search_s(cfg, "", LDAP_SCOPE_SUBTREE, "zeb-slapdPort=no", nullptr, 0, &none), LDAP_INVALID_SYNTAX);
    EXPECT_NE(cfg_dump_exception(cfg), nullptr);
    EXPECT_EQ(cfg_unbind(cfg), 0);
}

}  // namespace

TEST_P(Size, IsLoadedSearchedChangedAndReleased)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    pthread_setattr_default_np(&attributes);
    std::thread([&] { useFile(GetParam()); }).join();
}

std::string nameOf(const testing::TestParamInfo<Case>& each)
{
    return each.param.name;
}

INSTANTIATE_TEST_SUITE_P(Files, Size, testing::ValuesIn(cases), nameOf);
