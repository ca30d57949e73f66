// The install location and the default file, from a registry of this test's own.
#include "support.h"
#include "zebldapcfg.h"

#include <gtest/gtest.h>

static const TempDirectory directory;
static const std::string root = directory / "registry";

const char* registryRoot() noexcept
{
    return root.c_str();
}

TEST(Location, DefaultFileComesFromTheRegistry)
{
    const auto shown = [](const char* text) -> std::string { return text != nullptr ? text : "null"; };
    const std::string noName =
        "Unable to get default config filename. Either out of memory or ldaphome not in registry\n";
    CFG* const cfg = cfg_init();
    EXPECT_EQ(cfg_get_file_name(cfg), nullptr);
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), 80);
    EXPECT_NE(shown(cfg_dump_exception(cfg)).find("msg     " + noName), std::string::npos);
    const std::string key = root + "/SOFTWARE/ZEB/LDAP/Client";
    const std::string file = "/etc/zebslapd.conf";
    const std::string most(255 - file.size(), 'x');
    const std::string home = directory / "home";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"/x\n\n", "/x\n", "/x\n" + file},       {most, most, most + file},
        {most + 'x', most + 'x', "null"},        {std::string(255, 'x') + '\n', std::string(255, 'x'), "null"},
        {std::string(256, 'x'), "null", "null"}, {home, home, home + file},
    };
    std::filesystem::create_directories(key);
    for (const auto& [content, installPath, defaultFile] : cases) {
        writeText(key + "/LDAPHome", content);
        EXPECT_EQ(shown(getInstallPath()), installPath);
        EXPECT_EQ(shown(getDefaultConfigFilename()), defaultFile);
    }
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), CFG_AUTH_UNKNOWN);
    writeText(key + "/LDAPHome", "/none");  // the handle keeps the name that it has fetched
    std::filesystem::create_directories(home + "/etc");
    writeText(home + file, "dn: cn=a\n");
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE), 0);
    EXPECT_EQ(cfg_get_file_name(cfg), home + file);
    EXPECT_EQ(cfg_unbind(cfg), 0);
}
