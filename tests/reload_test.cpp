// A reload that takes over entries from the tree before, held against a load of the same text.
#include "LDIF_File.h"
#include "LDIF_Loader.h"
#include "support.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <utime.h>

const char* registryRoot() noexcept
{
    return "/dev/null";  // No test here reads the registry.
}

namespace {

// Lines that an entry may have, and lines that make trouble.
const std::vector<std::string> usual = {"cn: a", "cn: b", "description: b", "zeb-slapdPort: 389", "# note", " folded"};
const std::vector<std::string> odd = {"cn:  a", "zeb-slapdPort: 70000", "no colon", "cn: \u00e4\r", "dn: cn=\\28a",
                                      "dn=x",   "dn: cn=a, o=x"};
const std::vector<std::string> bad = {"\n\ncn: a", "dn: bad", "cn: \xff", "\n\nversion: 1"};

// A file of a few entries, some of them twice, that changes.
class Text {
public:
    explicit Text(unsigned seed) : random(seed)
    {
        for (int count = 0; count < 12; ++count)
            blocks.push_back(someBlock());
    }

    // Changes one place, or two.
    void change()
    {
        for (auto places = 1 + draw(2); places > 0; --places) {
            const auto at = blocks.begin() + draw(static_cast<unsigned>(blocks.size()));
            const unsigned kind = draw(4);
            if (kind == 0 && blocks.size() > 4)
                blocks.erase(at);
            else if (kind == 1)
                blocks.insert(draw(3) == 0 ? blocks.end() : at, someBlock());
            else
                *at = someBlock();
        }
    }

    std::string str()
    {
        std::string text = "charset: UTF-8\nversion: 1\n";
        for (const std::string& block : blocks)
            text += block;
        if (draw(8) == 0)
            text.erase(text.find_last_not_of('\n') + 1);
        return text;
    }

    unsigned draw(unsigned below) { return static_cast<unsigned>(random() % below); }
    std::string drawFrom(const std::vector<std::string>& texts)
    {
        return texts[draw(static_cast<unsigned>(texts.size()))];
    }

    std::string someDn()
    {
        const std::string name = "cn=" + std::string(1, static_cast<char>('a' + draw(12)));
        return name + drawFrom({"", ", o=x", ", cn=a, o=x"});
    }

private:
    // Blank lines, an entry with its blank line or, seldom, without, and more of them.
    std::string someBlock()
    {
        std::string block = (draw(6) == 0 ? "\n# note\n" : "\n") + ("dn: " + someDn()) + '\n';
        for (auto count = draw(5); count > 0; --count)
            block += (draw(120) == 0 ? drawFrom(bad) : draw(30) == 0 ? drawFrom(odd) : drawFrom(usual)) + '\n';
        return draw(30) == 0 ? block + "  " : block + (draw(10) == 0 ? "  \n" : draw(10) == 0 ? "\n" : "");
    }

    std::mt19937 random;
    std::vector<std::string> blocks;
};

class Reload : public testing::Test {
protected:
    // Puts a text in place, at a time that no file before had.
    void write(const std::string& text)
    {
        removeFile(name);  // A file that is cut and written again is slow to close on some file systems.
        writeText(name, text);
        const utimbuf times = {++seconds, seconds};
        ASSERT_EQ(utime(name.c_str(), &times), 0);
    }

    // What there is to see of a load: its outcome, the file behind it, and the tree.
    template <typename Load>
    std::array<std::string, 3> traceOf(const std::string& text, std::optional<LDIF_File>& file, Load load)
    {
        write(text);
        std::string failure = "none";
        try {
            load();
        } catch (const LDIF_Exception& caught) {
            failure = caught.dump();
        }
        const std::string afterwards = readText(name);
        return {failure, afterwards, file ? textOf(*file) : ""};
    }

    // Lets the kept file take a text in, or load it at first, beside a new one. Whether that could load it.
    bool isSameAsLoad(const std::string& text, std::optional<LDIF_File>& kept, const std::string& backup = "")
    {
        std::optional<LDIF_File> fresh;
        auto expected = traceOf(text, fresh, [&] { fresh.emplace(name, backup); });
        auto found = traceOf(text, kept, [&] { kept ? (void)kept->refresh() : (void)kept.emplace(name, backup); });
        if (!fresh)
            expected[2] = found[2];  // What a failed reload has read so far stays, which a failed load has not.
        EXPECT_EQ(found, expected) << text;
        return fresh.has_value();
    }

    // The whole tree, which a write would mark as written.
    static std::string textOf(LDIF_File& file)
    {
        std::ostringstream text;
        for (const LDIF_Entry* root : file.findEntries({}, LDIF_Search_Results::base, LDIF_Filter("(version=*)")))
            text << *root;
        return text.str();
    }

    // A change through the library, so that entries have been written after they were read.
    void update(LDIF_File& file, Text& text)
    {
        std::string type = text.draw(2) != 0 ? "cn" : "description";
        std::string value = text.draw(2) != 0 ? "new\n\nvalue" : "c";
        std::array<char*, 2> values = {value.data(), nullptr};
        LDAPMod record = {LDAP_MOD_ADD, type.data(), {values.data()}};
        std::array<LDAPMod*, 2> mods = {&record, nullptr};
        const LDIF_DN dn(cisString(text.someDn()));
        (void)outcomeOf([&] { return text.draw(4) == 0 ? file.erase(dn, true) : file.modify(dn, mods.data()), ""; });
        removeFile(name);
        (void)outcomeOf([&] { return text.draw(2) != 0 ? file.flush() : void(), ""; });
    }

    const ScopedLocale utf8;
    const TempDirectory directory;
    const std::string name = directory / "zebslapd.conf";
    time_t seconds = 1000;
};

}  // namespace

TEST_F(Reload, GivesWhatALoadGives)
{
    int loads = 0;
    for (unsigned seed = 0; seed < 25 && !HasFailure(); ++seed) {
        Text text(seed);
        const std::string backup = seed % 3 == 0 ? directory / "none/b" : "";  // Some writes fail.
        std::optional<LDIF_File> kept;
        for (int step = 0; step < 40; ++step) {
            text.change();
            loads += isSameAsLoad(text.str(), kept, backup) ? 1 : 0;
            if (kept && text.draw(8) == 0)
                update(*kept, text);
        }
    }
    EXPECT_GT(loads, 500);
}

TEST_F(Reload, KnowsWhatBelongsToAnEntry)
{
    const std::string start = "charset: UTF-8\nversion: 1\n\ndn: cn=a\n\ndn: cn=b\n";
    const std::pair<const char*, const char*> cases[] = {
        {"\r", "\rcn: b\n"},                     // the blank line at the end becomes a line of the entry
        {"# note\n\ndn: cn=c\n", "# note\n\n"},  // the note is the next entry's
        {"cn: b\n\n", "cn: b\n\n\n \ndn: cn=c"},
    };
    for (const auto& [before, after] : cases) {
        std::optional<LDIF_File> kept;
        EXPECT_TRUE(isSameAsLoad(start + before, kept));
        EXPECT_TRUE(isSameAsLoad(start + after, kept));
    }
}

TEST_F(Reload, TakesNothingFromAnotherLocale)
{
    const std::string text = "dn: cn=a\n\ndn: cn=b\ncn: \u00fc\n\n";
    std::optional<LDIF_File> kept;
    EXPECT_TRUE(isSameAsLoad(text, kept));
    const ScopedLocale ascii("C");
    EXPECT_FALSE(isSameAsLoad(text, kept));
}

// Goes red where entries are read again that could be taken over.
TEST(FormerTree, GivesWhatStandsAsFarFromEitherEnd)
{
    const std::string before = "dn: cn=a\n\ndn: cn=b\n\ndn: cn=c\n\ndn: cn=d\n\n";
    const std::string now = "dn: cn=a\n\ndn: cn=b\n\ndn: cn=new\n\ndn: cn=d\n\n";
    LDIF_Entry root;
    LDIF_Comment waiting;
    LDIF_Loader(root, waiting).load(std::string(before));
    LDIF_FormerTree former(std::move(root), before.size(), now);
    for (const auto& [offset, isKnown] : {std::pair(0U, false), {10U, true}, {20U, false}, {32U, true}})
        EXPECT_EQ(former.takeAt(offset).has_value(), isKnown) << offset;  // what stands first is always read
}

// A look-up makes an index of a family, which must not outlive it.
TEST_F(Reload, FindsTheNewChildOfAnEntryThatStays)
{
    std::string text = "\ndn: cn=a\n\ndn: o=x\n\n";
    for (const char child : std::string("abcdefghij"))
        text += std::string("dn: cn=") + child + ", o=x\n\n";
    std::optional<LDIF_File> kept;
    const auto lookUp = [&](const char* dn) { (void)kept->search(LDIF_DN(cisString(dn)), {}, {}, {}, false); };
    EXPECT_TRUE(isSameAsLoad(text, kept));
    lookUp("cn=j, o=x");
    text.replace(text.find("cn=j"), 4, "cn=k");
    EXPECT_TRUE(isSameAsLoad(text, kept));
    EXPECT_NO_THROW(lookUp("cn=k, o=x"));
}
