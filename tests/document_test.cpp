// The configuration file as a document: its lines, load, write, refresh and outline.
#include "LDIF_File.h"
#include "support.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

const std::string invalid = "zeb-slapdInvalidLine";
const std::string head = "charset: ISO-8859-1\nversion: 1\n";
const std::string a = head + "\ndn: cn=a\n";

using Row = std::pair<std::string, std::string>;

// Each logical line as "last line:type name|value", with "!" for one that is not well formed, up to the end's count.
std::string linesOf(const std::string& text)
{
    std::istringstream in(text);
    std::ostringstream lines;
    LDIF_Line line;
    int last = 0;
    int first = 1;
    for (; last = line.next(in, last), line.type != LDIF_Line::endOfFile; first = last + 1)
        lines << last << "EB#DA"[line.type] << (line.wellFormed && line.lineNumber == first ? " " : "! ") << line.name
              << '|' << line.value << ';';
    return lines.str() + std::to_string(line.next(in, last));
}

class Document : public testing::Test {
protected:
    void write(const std::string& text, time_t seconds) const
    {
        writeText(name, text);
        setTime(name, seconds);
    }

    LDIF_File load(const std::string& text, const std::string& backup = "", time_t seconds = 1000) const
    {
        write(text, seconds);
        return {name, backup};
    }

    const ScopedLocale utf8;
    const TempDirectory directory;
    const std::string folder = directory / "";
    const std::string name = folder + "zebslapd.conf";
    const std::string noRename = "50/1004 Unable to rename: \"" + name + "\" to \"";
};

}  // namespace

TEST_F(Document, LineReaderSplitsTextIntoLogicalLines)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\n\n", "1B |;2B |;3B |;3"},     {"# c \r\n", "1# |# c ;2B |;2"},
        {"dn: cn=a\n", "1D dn|cn=a;1"},   {"DN:cn=abc", "1D DN|cn=abc;1"},
        {"dn\ndn", "1D! dn|;2D! dn|;2"},  {"dnfoobar", "1D! dnfoobar|;1"},
        {"dnfoo: x", "1A dnfoo|x;1"},     {": xyz\n", "1A! : xyz|;1"},
        {"abc\n def", "2A! abc|def;2"},   {"a:::xyz\na:", "1A a|xyz;2A a|;2"},
        {"abc:: <xyz", "1A abc|<xyz;1"},  {"a: (bcd) ", "1A a|bcd;1"},
        {"a:((b) cd)", "1A a|b) cd;1"},   {"  a: b:c\n", "1A   a|b:c;1"},
        {"a: x\n y\n  z", "3A a|xy z;3"}, {"a: x\n  \nb:", "2A a|x;3A b|;3"},
        {"a:\r\n y\r\n", "2A a|y;2"},     {"a: b\rcde\n", "1A a|bcde;1"},
        {"a: x\n # c\n", "2A a|x# c;2"},  {"a: x\n# c", "1A a|x;2# |# c;2"},
        {"# c\n m", "1# |# c;2A!  m|;2"}, {"a: x\n\ny", "1A a|x;2B |;3A! y|;3"},
        {"a: x\n\u2003y", "2A a|xy;2"},   {"\t\n\u2003\na", "1B |;2B |;3A! a|;3"},
    };
    for (const auto& [text, lines] : cases)
        EXPECT_EQ(linesOf(text), lines) << testing::PrintToString(text);
    EXPECT_EQ(linesOf(std::string("a: b\0c\nd: e", 11)), "1A a|b;2A d|e;2");
}

// A load writes a repaired file back; the next one drops the blank behind a line that had no colon.
TEST_F(Document, LoadAndWriteGiveTheCanonicalFile)
{
    const std::string bad = a + invalid + ": zeb-slapdAdminDN: cn\n" + invalid + ": garbage:";
    const Row cases[] = {
        {"", ""},
        {"\n# only\n\n# comments\n\n\n", "\n# only\n\n# comments\n"},
        {"version: 1\n\n# c\ndn: cn=a", "\n# c\n" + a + "\n"},
        {"# v\nVersion: 1\n# c\nCHARSET:x\ndn: cn=a", "# c\nCHARSET: x\n# v\nVersion: 1\n\ndn: cn=a\n\n"},
        {"# c\ndn:\nversion: 1\n", "# c\n" + head},
        {head + "\n\n# c\ndn: cn=a\n\n\n\ndn: cn=b\n\n\n\n", head + "\n\n# c\ndn: cn=a\n\n\n\ndn: cn=b\n\n"},
        {"# c\ndn: cn=a\nx: 1\ndn: cn=b\n# e\n\n", "# c\n" + a + "x: 1\n\ndn: cn=b\n\n# e\n"},
        {"dn: cn=a\nx: 1\n# moves\n\ndn: cn=b\n", a + "x: 1\n\n# moves\ndn: cn=b\n\n"},
        {a + "x: 1\n# stays", a + "x: 1\n\n# stays\n"},
        {"dn: cn=a\n# 1\nb: 2\n# 2\nB: 1\na:\nb: 2\n", a + "a: \n# 1\n# 2\nb: 2\nb: 1\n\n"},
        {"dn: cn=a\r\nx:b\r\ny:: (b c) \r\nz: lo\r\n ng\r\n", a + "x: b\ny: b c\nz: long\n\n"},
        {"DN: CN = A ; o=b+O=a\nversion: 01\n", head + "\nDN: CN=A, O=a + o=b\nversion: 1\n\n"},
        {"dn: cn=a\nx: 1\n\n# 2\ndn: CN=A\nx: 1\ny: 2\n", head + "\n# 2\ndn: cn=a\nx: 1\ny: 2\n\n"},
        {"dn: cn=a\n# c\nzeb-slapdPort: x\na: 1\n", a + "a: 1\n# c\n" + invalid + ": zeb-slapdPort: x\n\n"},
        {"dn: cn=a\nzeb-slapdAdminDN: cn\nzeb-slapdAdminDN: cn\ngarbage\n", bad + " \n\n"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        LDIF_File file = load(text);
        EXPECT_EQ(readText(name), expected.find(invalid) != std::string::npos ? expected : withoutReturns(text));
        file.flush();
        EXPECT_EQ(readText(name), expected);
        LDIF_File(name, "").flush();
        EXPECT_EQ(readText(name), expected == bad + " \n\n" ? bad + "\n\n" : expected);
    }
}

TEST_F(Document, NamesThatAreNoReadableFileFailAtOnce)
{
    const std::string irregular = folder + "irregular";
    const std::string longest = folder + std::string(1022 - folder.size(), 'x');
    const Row cases[] = {
        {"", "91/1001 Config filename is NULL! [1]"},
        {folder + "none", "91/1003 _stat() [1]"},
        {irregular, "91/1004 ifstream() [1]"},
        {longest, "91/1003 _stat() [1]"},
        {longest + 'x', "91/1001 GetFullPathName() [1]"},
    };
    EXPECT_TRUE(makeIrregular(irregular));
    for (const auto& c : cases)
        EXPECT_EQ(outcomeOf([&] { return LDIF_File(c.first, "").getFileName(); }), c.second) << c.first;
}

TEST_F(Document, EveryPrefixLoadsOrFails)
{
    const std::string sample = "# h\r\nversion: 1\r\n\r\ndn: cn=\u00e4+o=\"\\\"\", c=#41\r\nzeb-slapdPort: 3\r\n 89\r\n"
                               "nonsense\n(x): (\U0001F600)\n\n# c\ndn: ou=a\\2C\\,b, c=A\nzeb-slapdAdminPW: secret\n";
    std::set<std::string> codes;
    for (std::size_t size = 0; size <= sample.size(); ++size)
        codes.insert(outcomeOf([&]() -> std::string { return load(sample.substr(0, size)).flush(), ""; }).substr(0, 3));
    EXPECT_EQ(codes, (std::set<std::string>{"", "34/", "65/", "162"}));
}

TEST_F(Document, RefreshFollowsTheModificationTime)
{
    LDIF_File file = load("dn: cn=a\n", folder + "none/b", 0);
    EXPECT_EQ(file.treeView(false), "");  // the stored time starts at 0
    const std::tuple<time_t, std::string, std::string, std::string> steps[] = {
        {1000, "dn: cn=a\n", "yes", "a"}, {1000, "dn: cn=b\n", "no", "a"},
        {999, "dn: cn=b\n", "yes", "b"},  {1001, "dn: cn=c\n\ndn: x\n", "34/1013 Missing RDN value: x [4]", "c"},
        {999, "dn: cn=b\n", "yes", "b"},  {1003, "dn: cn=e\nx\n", noRename + folder + "none/b\"  [1]", "e"},
        {1003, "dn: cn=b\n", "no", "e"},
    };
    for (const auto& [time, text, result, suffix] : steps) {
        SCOPED_TRACE(std::to_string(time) + ": " + text);
        write(text, time);
        EXPECT_EQ(outcomeOf([&] { return file.refresh() ? "yes" : "no"; }), result);
        EXPECT_EQ(file.treeView(false), "\n- cn=" + suffix + " (suffix)\n");
    }
}

TEST_F(Document, FailedWriteLosesNothing)
{
    const std::string noOpen = "50/1004 Unable to open: \"" + name + "\" [1]";
    const std::tuple<const char*, std::string, bool, std::string, std::string, std::string> cases[] = {
        {"nothing", folder + "b", true, "", head, a},
        {"no directory of the backup", folder + "no/b", true, noRename + folder + "no/b\"  [1]", a, ""},
        {"the file as backup", name, true, noRename + name + "\"  [1]", a, a},
        {"no descriptor", folder + "b", false, noOpen, "", a},
        {"no descriptor, no backup", "", false, noOpen, a, ""},
    };
    for (const auto& [obstacle, backup, opens, failure, left, backupLeft] : cases) {
        SCOPED_TRACE(obstacle);
        writeText(folder + "b", "previous");
        LDIF_File file = load(a, backup);
        file.erase(LDIF_DN(cisString("cn=a")), false);
        if (!letFilesOpen(opens))  // Windows has no limit that would forbid it.
            continue;
        EXPECT_EQ(outcomeOf([&]() -> std::string { return file.flush(), ""; }), failure);
        letFilesOpen(true);
        EXPECT_EQ(readText(name), left);
        EXPECT_EQ(readText(backup), backupLeft);
        EXPECT_EQ(file.treeView(false), "");
        EXPECT_EQ(file.getModTime() == 1000, !failure.empty());
    }
    LDIF_File unprintable = load("dn: cn=\n", folder + "b");
    EXPECT_EQ(failureOf([&] { unprintable.flush(); })->extErr, 1013);
    EXPECT_EQ(readText(name), "dn: cn=\n");
    const std::string kept = readText(folder + "b");
    LDIF_File replaced = load(a, folder + "b");
    std::filesystem::remove(name);
    EXPECT_TRUE(makeIrregular(name));
    EXPECT_EQ(outcomeOf([&]() -> std::string { return replaced.flush(), ""; }), noOpen);
    ASSERT_TRUE(std::filesystem::is_regular_file(folder + "b"));
    EXPECT_EQ(readText(folder + "b"), kept);
}

TEST_F(Document, OutlineShowsEachEntryUnderItsNearestAncestor)
{
    LDIF_File file = load("dn: cn=z,ou=y,o=b,c=us\n\ndn: ou=x,o=a,c=us\n\ndn: o=d, c=de\n\ndn: c=us\n\n"
                          "dn: cn=w,ou=y,o=b,c=us\n\ndn: l=v,cn=w,ou=y,o=b,c=us\n\ndn: o=a,c=us\n");
    EXPECT_EQ(file.treeView(false),
              "\n- o=d, c=de (suffix)\n\n- c=us (suffix)\n    |\n    +- cn=z, ou=y, o=b *\n    |\n"
              "    +- cn=w, ou=y, o=b *\n    |    |\n    |    +- l=v\n    |\n    +- o=a\n"
              "         |\n         +- ou=x\n\n* the following entries are undefined:\no=b, c=us\nou=y, o=b, c=us\n");
    EXPECT_EQ(file.treeView(true),
              "\n\xC4 o=d, c=de (suffix)\n\n\xC4 c=us (suffix)\n    \xC3\xC4 cn=z, ou=y, o=b *\n"
              "    \xC3\xC4 cn=w, ou=y, o=b *\n    \xB3    \xC0\xC4 l=v\n    \xC0\xC4 o=a\n"
              "         \xC0\xC4 ou=x\n\n* the following entries are undefined:\no=b, c=us\nou=y, o=b, c=us\n");
}

TEST_F(Document, LoginDependsOnItsMethod)
{
    LDIF_File file = load("dn: cn=Configuration\nobjectclass: t\nzeb-slapdAdminDN: o=x\nzeb-slapdAdminPW: s\n");
    const int simple = LDAP_AUTH_SIMPLE;
    using Case = std::tuple<const char*, const char*, const char*, int, LDIF_File::Authentication>;
    for (const auto& [label, dn, password, method, level] :
         {Case{"nobody", nullptr, nullptr, simple, LDIF_File::anonymous},
          {"administrator", "o=x", "s", simple, LDIF_File::administrator},
          {"method of anonymous", "o=x", "s", 0, LDIF_File::anonymous},
          {"other method", "o=x", "s", simple + 1, LDIF_File::noAccess},
          {"other method, nobody", nullptr, nullptr, simple + 1, LDIF_File::noAccess},
          {"no password", "o=x", nullptr, simple, LDIF_File::noAccess},
          {"empty DN", "", "s", simple, LDIF_File::noAccess},
          {"password in capitals", "o=x", "S", simple, LDIF_File::noAccess}}) {
        EXPECT_EQ(file.setAuthentication(dn, password, method), level) << label;
        EXPECT_EQ(file.getAuthentication(), level) << label;
    }
}

TEST(Objects, AreMadeOfTheirOwnKindOfLine)
{
    for (const auto& [type, word] : {std::pair(LDIF_Line::endOfFile, "endOfFile"),
                                     {LDIF_Line::blankLine, "blankLine"},
                                     {LDIF_Line::comment, "comment"},
                                     {LDIF_Line::dn, "dn"},
                                     {LDIF_Line::attribute, "attribute"}}) {
        SCOPED_TRACE(word);
        LDIF_Line line;
        line.type = type;
        line.name = "cn";
        line.value = "cn=a";
        const auto refused = [label = word](const std::string& object) {
            return "80/1000 Illegal constructor " + object + "( LDIF_Line::" + label + " ); [1]";
        };
        EXPECT_EQ(outcomeOf([&] { return LDIF_Attribute(line, LDIF_Comment()).str(); }),
                  type == LDIF_Line::attribute ? "cn: cn=a\n" : refused("LDIF_Attribute"));
        EXPECT_EQ(outcomeOf([&] { return LDIF_Entry(line, LDIF_Comment()).str(); }),
                  type == LDIF_Line::dn ? "cn: cn=a\n\n" : refused("LDIF_Entry"));
        LDIF_Comment comment;
        comment += line;
        EXPECT_EQ(comment.lines.size(), type == LDIF_Line::comment || type == LDIF_Line::blankLine ? 1U : 0U);
    }
}

TEST(Objects, KeepAttributesFoundAndRemovedByName)
{
    LDIF_Attributes list;
    const auto namesOf = [&] {
        std::string names;
        for (const LDIF_Attribute& each : list)
            names += each.name + ' ';
        return names;
    };
    EXPECT_EQ(list.find(cisString("a")), list.data());
    for (const char* name : {"b", "D", "a", "_", "B", "\u00e9"})
        list += LDIF_Attribute(name, std::string("1") + name);
    EXPECT_EQ(namesOf(), "_ a b D \u00e9 ");
    for (const char* name : {"_", "A", "b", "d", "\u00e9"})
        EXPECT_TRUE(*list.find(cisString(name)) == name) << name;
    for (const char* name : {"", "ab", "c", "z", "\u00ea"})
        EXPECT_EQ(list.find(cisString(name)), list.data() + list.size()) << name;
    EXPECT_EQ(list.find(cisString("b"))->str(), "b: 1b\nb: 1B\n");
    LDIF_Attributes other;
    other += LDIF_Attribute("B", "2");
    other += LDIF_Attribute("c", "3");
    list += other;
    list += list;
    for (const char* name : {"A", "missing", "\u00e9"})
        list -= LDIF_Attribute(name, "any");
    EXPECT_EQ(list.str(), "_: 1_\nb: 1b\nb: 1B\nb: 2\nc: 3\nD: 1D\n");
}

TEST(Objects, EntriesAreReadFromTheirText)
{
    const ScopedLocale utf8;
    for (const std::string text : {"dn: cn=a\n\n", "\n# c\n\nDN: cn=\u00fc, o=b\n# d\nx: 1\nx: \ny: 2\n\n"}) {
        SCOPED_TRACE(text);
        LDIF_Entry entry(text);
        EXPECT_EQ(entry.str(), text);
        EXPECT_TRUE(entry.isSameAs(LDIF_Entry(text)));
        EXPECT_FALSE((entry += LDIF_Attribute("y", "3")).isSameAs(LDIF_Entry(text)));
        EXPECT_EQ(entry.clear().str(), "");
    }
    const char* const others[] = {"",        "dn: cn=a\n",        "x: 1\n\n",        "dn: cn=a\n\nx: 1\n\n",
                                  "# c\n\n", "dn: cn=a\n# c\n\n", "dn: cn=a\nx\n\n", "dn: cn=a\ndn: cn=b\n\n"};
    for (const char* text : others)
        EXPECT_EQ(outcomeOf([&] { return LDIF_Entry(std::string_view(text)).str(); }).substr(0, 3), "80/") << text;
}
