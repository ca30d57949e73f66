// The install location and the default file, from a registry of this test's own.
#include "client.h"

#include <gtest/gtest.h>

TEST(Location, DefaultFileComesFromTheRegistry)
{
    const TempDirectory directory;
    registry = directory / "registry";
    const auto shown = [](const char* text) -> std::string { return text != nullptr ? text : "null"; };
    const std::string noName =
        "Unable to get default config filename. Either out of memory or ldaphome not in registry\n";
    Client client;
    CFG* const& cfg = client.cfg;
    EXPECT_EQ(client.make(), 0);
    EXPECT_EQ(cfg_get_file_name(cfg), nullptr);
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), 80);
    EXPECT_NE(shown(cfg_dump_exception(cfg)).find("msg     " + noName), std::string::npos);
    const std::string key = registry + "/SOFTWARE/ZEB/LDAP/Client";
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
        EXPECT_EQ(shown(getInstallPath()), installPath) << content;
        EXPECT_EQ(shown(getDefaultConfigFilename()), defaultFile) << content;
    }
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), CFG_AUTH_UNKNOWN);
    writeText(key + "/LDAPHome", "/none");  // the handle keeps the name that it has fetched
    std::filesystem::create_directories(home + "/etc");
    writeText(home + file, "dn: cn=a\n");
    EXPECT_EQ(client.bind(), 0);
    EXPECT_EQ(cfg_get_file_name(cfg), home + file);
}
