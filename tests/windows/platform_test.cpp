// The services of Windows.
#include "LDIF_EntryReader.h"
#include "LDIF_File.h"
#include "LDIF_Util.h"
#include "common/transfer.h"
#include "platform.h"
#include "support.h"

#include <aclapi.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sddl.h>
#include <tuple>

static const TempDirectory directory;
static constexpr int accessDenied = ERROR_ACCESS_DENIED, noTranslation = ERROR_NO_UNICODE_TRANSLATION;

static constexpr std::string_view secret = "a clear password";
static int leaks = 0;  // of blocks that were released with it at their start

void* operator new[](std::size_t size)
{
    void* const block = std::malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete[](void* block) noexcept
{
    leaks +=
        block != nullptr && _msize(block) >= secret.size() && std::memcmp(block, secret.data(), secret.size()) == 0;
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    operator delete[](block);
}

static std::string bytesOf(const std::string& name)
{
    TextBuffer text;
    std::size_t size = 0;
    return readFile(name, text, size) ? std::string(text.data(), size) : "unreadable";
}

TEST(Platform, GivesFullNamesThatFit)
{
    const std::string full = (std::filesystem::current_path().parent_path() / "f").string();
    char buffer[4096] = "";
    EXPECT_EQ(fullPathName("../f", buffer, full.size()), nameTooLong);  // no room for the NUL
    EXPECT_EQ(fullPathName("../f", buffer, full.size() + 1), 0);
    EXPECT_EQ(buffer, full);
    const ScopedLocale utf8;
    EXPECT_EQ(fullPathName("C:\\x/./\u6771", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "C:\\x\\\u6771");
    EXPECT_EQ(fullPathName("\xFF", buffer, sizeof buffer), noTranslation);
}

// Goes red where the end is written twice, or the text after a place in the file is taken from elsewhere.
TEST(Platform, WritesEachLineEndOnce)
{
    const std::string name = directory / "ends";
    for (const std::string end : {"\n", "\r\n"}) {
        const std::string text = "# c" + end + "version: 1" + end + end + "dn: cn=b" + end + "x: 1" + end + end;
        writeText(name, text);
        LDIF_File file(name, "");
        file.erase(LDIF_DN(cisString("cn=b")), false);
        file.flush();
        EXPECT_EQ(bytesOf(name), "\r\ncharset: ISO-8859-1\r\n# c\r\nversion: 1\r\n");
    }
}

TEST(Platform, ReadsItsOwnLineEndsAsTheyStand)
{
    LDIF_EntryReader reader;
    EXPECT_EQ(reader.read("# c\r\ndn: cn=a\r\nx: 1\r\n\r\ndn: cn=b\r\n"), LDIF_EntryReader::asWritten);
    EXPECT_EQ(reader.length(), 23U);
    EXPECT_EQ(reader.entry().dn(), "cn=a");
    EXPECT_EQ(reader.entry().attributes(), "x: 1\r\n");
    EXPECT_EQ(reader.read("dn: cn=a\nx: 1\n\n"), LDIF_EntryReader::rearranged);
    EXPECT_EQ(reader.entry().text, "dn: cn=a\r\nx: 1\r\n\r\n");
}

TEST(Platform, OverwritesWhatItHasReadWhenTheBufferGrows)
{
    for (const bool isRead : {true, false}) {
        TextBuffer content;
        std::size_t length = 0, calls = 0;
        const auto readMore = [&](char* bytes, std::size_t size) -> std::ptrdiff_t {
            if (++calls == 3)
                return isRead ? 0 : -1;
            return static_cast<std::ptrdiff_t>(secret.copy(bytes, size));
        };
        EXPECT_EQ(readToEnd(content, length, secret.size(), readMore), isRead);
        EXPECT_EQ(length, secret.size() + 1);
    }
    EXPECT_EQ(leaks, 0);
    TextBuffer known(secret.size());
    secret.copy(known.data(), secret.size());
    known = TextBuffer();
    EXPECT_EQ(leaks, 1) << "this is no secret";
}

// The access that the list of a file gives everyone.
static ACCESS_MASK accessOfAll(const std::string& name)
{
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD code = GetNamedSecurityInfoA(name.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                             &list, nullptr, &descriptor);
    EXPECT_EQ(code, 0U);
    ACCESS_MASK access = 0;
    void* each = nullptr;
    for (DWORD place = 0; list != nullptr && GetAce(list, place, &each) != FALSE; ++place) {
        const auto& allowed = *static_cast<const ACCESS_ALLOWED_ACE*>(each);
        if (allowed.Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
            IsWellKnownSid(const_cast<DWORD*>(&allowed.SidStart), WinWorldSid) != FALSE)
            access |= allowed.Mask;
    }
    LocalFree(descriptor);
    return access;
}

// The list is that of a new file: wine has no other way to keep everyone out.
static void makeFile(const std::string& name, const char* list)
{
    SECURITY_ATTRIBUTES security = {sizeof security, nullptr, FALSE};
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(list, SDDL_REVISION_1,
                                                                     &security.lpSecurityDescriptor, nullptr));
    const HANDLE file = CreateFileA(name.c_str(), GENERIC_WRITE, 0, &security, CREATE_NEW, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);
    LocalFree(security.lpSecurityDescriptor);
}

TEST(Platform, FilesKeepTheirProtection)
{
    const std::string name = directory / "protected";
    for (const auto& [list, isOpen] : {std::pair("D:P(A;;FA;;;AU)", false), {"D:P(A;;FA;;;AU)(A;;FR;;;WD)", true}}) {
        makeFile(name, list);
        writeText(name, "dn: cn=a\n");
        const DWORD access = accessOfAll(name);
        EXPECT_EQ(access != 0, isOpen);
        LDIF_File(name, name + ".bak").flush();
        EXPECT_EQ(accessOfAll(name), access) << list;
        EXPECT_EQ(accessOfAll(name + ".bak"), access) << list;
        std::filesystem::remove(name);
    }
}

TEST(Platform, KnowsAFileByEachOfItsNamesButAHardLink)
{
    const TempDirectory folder;
    const std::string deep(200, 'd');
    const std::string distant = folder / (deep + '\\' + deep + "\\file");  // longer than MAX_PATH
    const std::string directories[] = {R"(\\?\)" + folder / deep, R"(\\?\)" + folder / (deep + '\\' + deep)};
    for (const std::string& each : directories)
        EXPECT_TRUE(CreateDirectoryW(std::wstring(each.begin(), each.end()).c_str(), nullptr));
    EXPECT_TRUE(writeFile(distant, {"x"}, {}));
    EXPECT_TRUE(isSameFile(distant, folder / (deep + "\\.\\" + deep + "\\FILE")));
    writeText(folder / "file", "x");
    EXPECT_TRUE(isSameFile(folder / "file", folder / "FILE"));
    EXPECT_TRUE(isSameFile(folder / "file", R"(\\?\)" + folder / "file"));
    EXPECT_TRUE(CreateHardLinkA((folder / "second").c_str(), (folder / "file").c_str(), nullptr));
    EXPECT_TRUE(isSameFile(folder / "file", folder / ".\\file"));
    EXPECT_TRUE(isSameFile(folder / "file", "NUL")) << "no file that can be identified";
    for (const char* other : {"second", "gone", "gone\\file", ""})
        EXPECT_FALSE(isSameFile(folder / "file", other[0] != '\0' ? folder / other : "")) << other;
    EXPECT_FALSE(isSameFile(folder / "gone", folder / "gone"));
    removeFile(distant);
    for (const std::string& each : {directories[1], directories[0]})
        EXPECT_TRUE(RemoveDirectoryW(std::wstring(each.begin(), each.end()).c_str()));
}

TEST(Platform, TimesOfFilesHave64Bits)
{
    FileStatus status;
    EXPECT_EQ(readFileStatus(directory / "none", status), ENOENT);
    writeText(directory / "late", "x");
    setTime(directory / "late", 5'000'000'000);
    EXPECT_EQ(readFileStatus(directory / "late", status), 0);
    EXPECT_EQ(status.time, 5'000'000'000);
    EXPECT_EQ(readFileStatus(directory.path, status), 0);
    EXPECT_FALSE(status.isRegular);
}

// A text of a code page, its wide form, whether it can be taken apart at its ASCII characters, and its lower case.
TEST(Platform, ConvertsTextByCodePage)
{
    using Row = std::tuple<const char*, std::string, std::wstring, bool, std::string>;
    const Row cases[] = {
        {"C", "A\xC4\x80", L"A\xC4\x80", true, "a\xC4\x80"},
        {germanLocale, "\xC4\x80", L"\xC4\u20AC", true, "\xE4\x80"},
        {turkishLocale, "I\xDD\xD0", L"I\u0130\u011E", true, "i\xDD\xF0"},
        {japaneseLocale, "\x95\\", L"\u8868", false, "\x95\\"},
        {japaneseLocale, "\x93\x8C\xB1", L"\u6771\uFF71", true, "\x93\x8C\xB1"},
        {utf8Locale, "\U0001F600\u00C4", L"\U0001F600\u00C4", true, "\U0001F600\u00C4"},
    };
    for (const auto& [locale, narrow, wide, isWhole, lower] : cases) {
        const ScopedLocale scoped(locale);
        bool hasSpace = false;
        std::string folded = narrow;
        std::transform(narrow.begin(), narrow.end(), folded.begin(), [](char each) { return char(foldCase(each)); });
        EXPECT_EQ(multibyte2wide(narrow), wide) << locale;
        EXPECT_EQ(wide2multibyte(wide), narrow) << locale;
        EXPECT_EQ(isTransparent(narrow, hasSpace), isWhole) << locale;
        EXPECT_EQ(folded, lower) << locale;
    }
    const std::pair<const char*, std::wstring> lost[] = {
        {"C", L"\u20AC"}, {germanLocale, L"\u6771"}, {japaneseLocale, L"\u00FC"}, {utf8Locale, L"\xD83D"}};
    for (const auto& [locale, wide] : lost) {
        const ScopedLocale scoped(locale);
        EXPECT_EQ(failureOf([text = wide] { wide2multibyte(text); })->ldapErr, 163) << locale;
    }
    for (const auto& [locale, narrow] : {std::pair(japaneseLocale, "\x95"), {utf8Locale, "\xED\xA0\xBD"}}) {
        const ScopedLocale scoped(locale);
        EXPECT_EQ(failureOf([text = narrow] { multibyte2wide(text); })->ldapErr, 162) << locale;
    }
}

TEST(Platform, KeepsTheTextsOfErrorsApart)
{
    const std::string noObject = ldapErrorText(32);
    EXPECT_STRNE(ldapErrorText(16), noObject.c_str());
    EXPECT_EQ(ldapErrorText(32), noObject);
    EXPECT_STREQ(ldapErrorText(999), ldapErrorText(-1));
    EXPECT_NE(systemErrorText(accessDenied), systemErrorText(nameTooLong));
    EXPECT_NE(systemErrorText(nameTooLong), "");
    EXPECT_EQ(systemErrorText(4242), "");
}
