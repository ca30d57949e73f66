// The install location and the default file, from a registry of this test's own.
#include "client.h"

#include <gtest/gtest.h>

TEST(Location, DefaultFileComesFromTheRegistry)
{
    const TempDirectory directory;
    useRegistry(directory / "registry");
    const auto shown = [](const char* text) -> std::string { return text != nullptr ? text : "null"; };
    const std::string noName =
        "Unable to get default config filename. Either out of memory or ldaphome not in registry\n";
    Client client;
    CFG* const& cfg = client.cfg;
    EXPECT_EQ(client.make(), 0);
    EXPECT_EQ(cfg_get_file_name(cfg), nullptr);
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), 80);
    EXPECT_NE(shown(cfg_dump_exception(cfg)).find("msg     " + noName), std::string::npos);
    const std::string file = std::filesystem::path("/etc/zebslapd.conf").make_preferred().string();
    const std::string most(255 - file.size(), 'x');
    const std::string home = directory / "home";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"/x\n", "/x\n", "/x\n" + file},         {most, most, most + file},
        {most + 'x', most + 'x', "null"},        {std::string(255, 'x'), std::string(255, 'x'), "null"},
        {std::string(256, 'x'), "null", "null"}, {home, home, home + file},
    };
    for (const auto& [text, installPath, defaultFile] : cases) {
        for (const bool hasEnd : {true, false}) {
            if (!hasEnd && text.back() == '\n')
                continue;
            setHome(text, hasEnd);
            EXPECT_EQ(shown(getInstallPath()), installPath) << text;
            EXPECT_EQ(shown(getDefaultConfigFilename()), defaultFile) << text;
        }
    }
    EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, 1), CFG_AUTH_UNKNOWN);
    setHome("/none", true);  // the handle keeps the name that it has fetched
    std::filesystem::create_directories(home + "/etc");
    writeText(home + file, "dn: cn=a\n");
    EXPECT_EQ(client.bind(), 0);
    EXPECT_EQ(cfg_get_file_name(cfg), home + file);
}
