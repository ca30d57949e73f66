// The services of POSIX.
#include "LDIF_File.h"
#include "platform.h"
#include "support.h"

#include <gtest/gtest.h>
#include <tuple>
#include <unistd.h>

static const TempDirectory directory;

TEST(Platform, HasARegistryOfFiles)
{
    registry = directory.path;
    std::filesystem::create_directories(directory / "A/B/folder");
    writeText(directory / "A/B/one", "/opt\n\n");
    char data[9] = "";
    using Row = std::tuple<const char*, const char*, std::size_t, bool>;
    for (const auto& [key, name, size, isRead] : {Row{"A\\B", "one", 5, false},
                                                  {"A\\B", "one", 6, true},
                                                  {"A\\B", "gone", 9, false},
                                                  {"A\\B", "folder", 9, false},
                                                  {"A", "B/one", 9, false},
                                                  {"A\\B\\one", "one", 9, false}})
        EXPECT_EQ(readRegistry(key, name, data, size), isRead) << key << name << size;
    EXPECT_STREQ(data, "/opt\n");
}

static FileProtection ownFile(mode_t mode)
{
    return {mode, ::getuid(), ::getgid()};
}

TEST(Platform, GivesFullNamesThatFit)
{
    const std::string full = std::filesystem::current_path().string() + "/../f";
    char buffer[4096] = "";
    EXPECT_EQ(fullPathName("../f", buffer, full.size()), nameTooLong);  // no room for the NUL
    EXPECT_EQ(fullPathName("../f", buffer, full.size() + 1), 0);
    EXPECT_EQ(buffer, full);
    EXPECT_EQ(fullPathName("/x/../y", buffer, 8), 0);
    EXPECT_STREQ(buffer, "/x/../y");
}

TEST(Platform, WritesFilesWithTheirMode)
{
    const std::string name = directory / "mode";
    for (const mode_t mode : {0640U, 0600U, 0644U, 0604U}) {
        for (const mode_t given : {mode, 0666U}) {  // a file that is there keeps its mode
            FileStatus made;
            EXPECT_TRUE(writeFile(name, {"x"}, ownFile(given))) << given;
            EXPECT_EQ(readFileStatus(name, made), 0) << given;
            EXPECT_EQ(made.protection.mode, mode) << given;
        }
        removeFile(name);
    }
}

TEST(Platform, ReadsFilesAsTheyWereWritten)
{
    TextBuffer read;
    std::size_t size = 0;
    const FileProtection protection = ownFile(0600);
    for (const std::string& text : {std::string(100'000, 'x'), std::string("a\r\n\0b", 5), std::string(),
                                    std::string(5'000'000, 'y'), std::string(300'000, 'z')}) {
        EXPECT_TRUE(writeFile(directory / "file", {text, "", "+", text}, protection)) << text.size();
        EXPECT_TRUE(readFile(directory / "file", read, size)) << text.size();
        EXPECT_TRUE(std::string_view(read.data(), size) == text + '+' + text) << text.size();
    }
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    for (const char* name : {"", "fifo", "gone/file"}) {
        EXPECT_FALSE(readFile(directory / name, read, size)) << name;
        EXPECT_FALSE(writeFile(directory / name, {"x"}, protection)) << name;
    }
}

TEST(Platform, KnowsAFileByEachOfItsNamesButAHardLink)
{
    const TempDirectory folder;
    const auto isSame = [&](const char* name, const char* other) { return isSameFile(folder / name, folder / other); };
    writeText(folder / "file", "x");
    std::filesystem::create_symlink("file", folder / "link");
    EXPECT_TRUE(isSame("link", "file"));
    EXPECT_TRUE(isSame("link", "link"));
    std::filesystem::create_hard_link(folder / "file", folder / "second");
    EXPECT_TRUE(isSame("file", "./file"));
    for (const char* other : {"second", "link", "", "gone"})
        EXPECT_FALSE(isSame("file", other)) << other;
    EXPECT_FALSE(isSame("gone", "gone"));
}

TEST(Platform, FilesKeepTheModeThatTheyHaveNow)
{
    const std::string name = directory / "f";
    writeText(name, "dn: cn=a\n");
    LDIF_File file(name, name + ".bak");
    ASSERT_EQ(::chmod(name.c_str(), 0600), 0);
    file.flush();
    for (const std::string& each : {name, name + ".bak"}) {
        FileStatus status;
        ASSERT_EQ(readFileStatus(each, status), 0);
        EXPECT_EQ(status.protection.mode, mode_t{0600}) << each;
    }
}
