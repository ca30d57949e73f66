// What is left when memory runs out: each allocation of a call fails in turn, and the file holds the old or the new.
#include "support.h"
#include "zebldapcfg.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <new>

static const ScopedLocale utf8;

const char* registryRoot() noexcept
{
    return "";
}

// --- The allocations of this program, one of which may fail
// -----------------------------------------------------------

static long untilFailure = -1;  // allocations; negative: none fails

void* operator new(std::size_t size)
{
    if (untilFailure >= 0 && untilFailure-- == 0)
        throw std::bad_alloc();
    if (void* block = std::malloc(size != 0 ? size : 1))
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

namespace {

// Runs call with its n-th allocation failing, and says whether there was one.
bool failsAt(long n, const std::function<void()>& call)
{
    untilFailure = n;
    call();
    const bool reached = untilFailure < 0;
    untilFailure = -1;
    return reached;
}

std::string family(int size)
{
    std::string text = "charset: UTF-8\nversion: 1\n\n# top\ndn: cn=Configuration\nobjectclass: top\n"
                       "zeb-slapdAdminPW: secret\nzeb-slapdPort: 389\n\n";
    for (int number = 0; number < size; ++number)
        text += "# \u00e9\ndn: cn=k" + std::to_string(number) +
                ", o=p\ncn: k\ndescription: a text that is long enough\n"
                "zeb-slapdSuffix: o=" +
                std::to_string(number) + "\n\n";
    return text;
}

class OutOfMemory : public testing::Test {
protected:
    void start(const std::string& text)
    {
        ::setenv("LC_ALL", "C.UTF-8", 1);
        writeText(name, text);
        cfg = cfg_init();
        ASSERT_EQ(cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, name.c_str()), 0);
        ASSERT_EQ(cfg_set_option(cfg, CFG_OPT_DELETE_NON_LEAVES, cfg), 0);
    }

    TempDirectory directory;
    const std::string name = directory / "f";
    CFG* cfg = nullptr;
};

}  // namespace

TEST_F(OutOfMemory, LeavesTheFileAsItWasOrAsItShouldBe)
{
    char* values[] = {const_cast<char*>("1389"), nullptr};
    LDAPMod mod = {};
    mod.mod_op = LDAP_MOD_REPLACE;
    mod.mod_type = const_cast<char*>("zeb-slapdPort");
    mod.mod_values = values;
    LDAPMod* mods[] = {&mod, nullptr};
    const std::function<int(CFG*)> calls[] = {
        [&](CFG* handle) { return cfg_modify_s(handle, "cn=Configuration", mods); },
        [&](CFG* handle) { return cfg_add_s(handle, "o=p", mods); },  // adopts the family
        [&](CFG* handle) { return cfg_add_s(handle, "cn=new, cn=k7, o=p", mods); },
        [&](CFG* handle) { return cfg_delete_s(handle, "cn=k7, o=p"); },
        [&](CFG* handle) { return cfg_flush_s(handle); },
        [&](CFG* handle) {
            CFGMessage* result = nullptr;
            const int code = cfg_search_s(handle, "", LDAP_SCOPE_SUBTREE, "cn=k", nullptr, 0, &result);
            EXPECT_EQ(cfg_count_entries(handle, result), code == 0 ? 60 : 0);
            return cfg_msgfree(result) + code;
        },
    };
    start(family(60));
    ASSERT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE), 0);
    ASSERT_EQ(cfg_flush_s(cfg), 0);
    const std::string before = readText(name);
    cfg_unbind(cfg);
    for (const auto& call : calls) {
        std::string after;
        int failures = 0;
        for (long n = -1, reached = 1; reached != 0; ++n) {
            start(before);
            ASSERT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE), 0);
            int code = 0;
            if (n < 0)
                code = call(cfg);
            else
                reached = failsAt(n, [&] { code = call(cfg); }) ? 1 : 0;
            EXPECT_TRUE(code == 0 || code == LDAP_OTHER || code == CFG_NO_MEMORY) << code;
            failures += code != 0 ? 1 : 0;
            ASSERT_EQ(cfg_flush_s(cfg), 0);
            const std::string left = readText(name);
            after = n < 0 ? left : after;
            EXPECT_TRUE(left == after || (code != 0 && left == before)) << &call - calls << " at " << n << '\n' << left;
            EXPECT_EQ(cfg_unbind(cfg), 0);
        }
        EXPECT_GT(failures, 0) << &call - calls << ": no allocation has failed";
    }
}

TEST_F(OutOfMemory, EndsALoadWithoutAChange)
{
    const std::string text = family(60);
    long failures = 0;
    for (long n = 0, reached = 1; reached != 0; ++n) {
        start(text);
        int code = 0;
        reached = failsAt(n, [&] { code = cfg_bind_s(cfg, "cn=nobody", "secret", LDAP_AUTH_SIMPLE); }) ? 1 : 0;
        EXPECT_TRUE(code == LDAP_INVALID_CREDENTIALS || code == LDAP_OTHER || code == CFG_NO_MEMORY ||
                    (code == CFG_CONNECT_ERROR && cfg_get_exterror(cfg) == CFG_ERR_CONFIG_FILENAME))
            << code;
        failures += code == LDAP_INVALID_CREDENTIALS ? 0 : 1;
        EXPECT_EQ(readText(name), text) << n;
        EXPECT_EQ(cfg_unbind(cfg), 0);
    }
    EXPECT_GT(failures, 100);
}
