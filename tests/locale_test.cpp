// The locale of the process: text that it knows gives the same results in each, and other text is refused clearly. The
// locales are made for this test, below LOCPATH.
#include "LDIF_File.h"
#include "LDIF_HashIndex.h"
#include "LDIF_Util.h"
#include "platform.h"
#include "support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <langinfo.h>
#include <random>

static const TempDirectory directory;
static const std::string name = directory / "f";
static const int path = setenv("LOCPATH", LOCALES, 1);

static LDIF_File load(const std::string& text)
{
    writeText(name, text);
    return {name, ""};
}

// Goes red where case or white space is the locale's own: a Turkish "I" has another small letter.
TEST(Locale, ChangesNoResult)
{
    int valid = 0;
    for (const std::string locale : {"C.UTF-8", "de_CH.UTF-8", "tr_TR.UTF-8", "ja_JP.UTF-8", "de_CH.ISO-8859-1",
                                     "tr_TR.ISO-8859-9", "ja_JP.EUC-JP"}) {
        const ScopedLocale scoped(locale.c_str());
        const char* const encoding = nl_langinfo(CODESET);
        EXPECT_EQ(locale.substr(locale.find('.') + 1), encoding);
        using Row = std::pair<std::string, std::string>;
        for (const auto& [w, blank] : {Row{"Iris", " "}, {"Z\u00fcrich", "\t"}, {"\u6771\u4eac", "\u3000"}}) {
            const std::string text = "# " + w + "\nDN:" + blank + "cn" + blank + "=" + w +
                                     ";O=ISTANBUL\nTITLE:" + blank + "(" + w + ")" + blank + "\ntitle: " + w +
                                     "\ntitle: I\nZEB-SLAPDIDLETIMEOUT: 07\n" +
                                     "zeb-slapdIdleTimeOut: I\nzeb-slapdIdleTimeOut: 7\n" + blank +
                                     "\nzeb-slapdDigestAdminUser: INGE\nZEB-SLAPDDIGESTADMINUSER: inge\n\n" +
                                     "dn: CN=CONFIGURATION\nobjectclass: t\nzeb-slapdAdminDN: CN=" + w + "I\n" +
                                     "zeb-slapdAdminPW: " + w + "\n";
            const std::string expected = "# " + w + "\ncharset: ISO-8859-1\nversion: 1\n\nDN: cn=" + w +
                                         ", O=ISTANBUL\nTITLE: " + w + "\nTITLE: I\nzeb-slapdDigestAdminUser: INGE\n" +
                                         "ZEB-SLAPDIDLETIMEOUT: 7\nzeb-slapdInvalidLine: zeb-slapdIdleTimeOut: I\n";
            const auto [own, isWhole] = converted(w, encoding, "UTF-8");
            if (!isWhole)
                continue;
            ++valid;
            LDIF_File file = load(converted(text, encoding, "UTF-8").first);
            const std::string left = converted(readText(name), "UTF-8", encoding).first;
            EXPECT_EQ(left.substr(0, left.find("\ndn: ")), expected) << locale;
            const LDIF_DN base(cisString("CN=" + own + ",o=istanbul"));
            EXPECT_EQ(file.findEntries(base, LDIF_Scope::base, LDIF_Filter("(title=" + own + ")")).size(), 1U)
                << locale;
            const std::string dn = "cn=" + own + "i";
            EXPECT_EQ(file.setAuthentication(dn.c_str(), own.c_str(), LDAP_AUTH_SIMPLE), LDIF_File::administrator)
                << locale;
        }
    }
    EXPECT_EQ(valid, 19);
}

// Each byte at each place of a word of eight, alone and behind a word, beside letters and beside another such byte.
TEST(Locale, HashesEqualTextsAlike)
{
    int equal = 0;
    for (const char* locale : {"C", "de_CH.ISO-8859-1", "tr_TR.ISO-8859-9"}) {
        const ScopedLocale scoped(locale);
        for (const std::string around : {"", "Ab", "Abcdefg", "AbcdefgH\xC9jk", "AbcdefgHijklmno"})
            for (std::size_t at = 0; at <= around.size(); ++at)
                for (int one = 1; one < 256; ++one)
                    for (const int other : {one, one ^ 0x20, one ^ 0x80}) {
                        std::string left = around, right = around;
                        left.insert(at, 1, static_cast<char>(one));
                        right.insert(at, 1, static_cast<char>(other));
                        const bool isEqual = _stricmp(left.c_str(), right.c_str()) == 0;
                        ASSERT_EQ(exactHash(7, left) == exactHash(7, right), one == other) << left;
                        right.append("\0x", 2);
                        ASSERT_EQ(foldedHash(7, left) == foldedHash(7, right), isEqual) << locale << left << right;
                        equal += isEqual && one != other ? 1 : 0;
                    }
    }
    EXPECT_GT(equal, 0);
}

// What is one name in one locale may be two in another, at other places of the list.
TEST(Locale, MayChangeWhileAttributesAreFound)
{
    std::mt19937 random(1);
    LDIF_Attributes list;
    for (int step = 0; step < 4000; ++step) {
        const ScopedLocale scoped(step / 50 % 2 == 0 ? "C" : "de_CH.ISO-8859-1");
        const cisString attribute(std::string{'x', static_cast<char>(0xC0 + random() % 60)});
        const auto place = std::find(list.begin(), list.end(), attribute);
        const bool isFound = list.find(attribute) != list.data() + list.size();
        ASSERT_EQ(isFound, place != list.end()) << step;
        if (random() % 2 == 0)
            list += LDIF_Attribute(attribute, "x");
        else if (isFound)
            list -= LDIF_Attribute(attribute, "");
    }
}

TEST(Locale, RefusesTextThatItDoesNotKnow)
{
    const std::tuple<const char*, std::string, int, int> cases[] = {
        {"C", "dn: cn=a\n", 0, 0},
        {"C", "dn: cn=a\nx: Z\u00fcrich\n", 162, 1},  // it may go on behind the dn line, which is named
        {"tr_TR.UTF-8", "dn: cn=a\n\n# Z\xFC\n", 162, 3},
        {"ja_JP.EUC-JP", "dn: cn=a\n\n# Z\xFC\n", 162, 3},
        {"ja_JP.EUC-JP", "# \xA4\ndn: cn=a\n", 162, 1},  // half of a character
        {"de_CH.ISO-8859-1", "dn: cn=a\nx: \xFC\xA4\x80\n", 0, 0},
    };
    for (const auto& [locale, text, code, line] : cases) {
        const ScopedLocale scoped(locale);
        const auto failure = failureOf([content = text] { load(content); });
        EXPECT_EQ(failure ? failure->ldapErr : 0, code) << locale;
        EXPECT_EQ(failure ? failure->configLine : 0, line) << locale;
        EXPECT_EQ(readText(name), text) << locale;
    }
    const ScopedLocale scoped("de_CH.ISO-8859-1");
    EXPECT_EQ(outcomeOf([] { return wide2multibyte(L"\u6771"); }), "163/163 wcstombs() [1]");
    EXPECT_EQ(wide2multibyte(L"\u00fc"), "\xFC");
}

// What an entry was under the locale of its load, it stays; what the present one cannot convert is not written.
TEST(Locale, MayChangeWhileAFileIsLoaded)
{
    const std::string start = "charset: UTF-8\nversion: 1\n\ndn: cn=Z\u00fcrich\nx: \u00fc\n\n";
    const std::string hidden = "dn: cn=\\E3\\80\\80a\nx: 1\n\n";  // an ideographic space
    const std::string noText = "charset: UTF-8\nversion: 1\n\ndn: cn=z\u00fcrich\nx: 1\n\u00fc: 2\n\n";
    for (const std::string& text : {start, noText, "charset: UTF-8\nversion: 1\n\n" + hidden}) {
        const ScopedLocale utf8;
        LDIF_File file = load(text);
        const LDIF_DN dn(cisString(text.find(hidden) == std::string::npos ? "cn=z\u00fcrich" : R"(cn=\E3\80\80a)"));
        const auto find = [&] { return file.findEntries(dn, LDIF_Scope::base, LDIF_Filter("x")).size(); };
        const auto flush = [&] { return file.flush(), std::string(); };
        {
            const ScopedLocale other("C");
            for (int time = 0; time < 2; ++time) {
                EXPECT_FALSE(file.refresh());
                EXPECT_EQ(outcomeOf(flush).substr(0, 7), "162/162") << time;
                EXPECT_EQ(readText(name), text);
            }
            EXPECT_EQ(find(), 1U);
        }
        EXPECT_FALSE(file.refresh());
        EXPECT_EQ(find(), 1U);
        EXPECT_EQ(outcomeOf(flush), "");
        EXPECT_EQ(readText(name), text);
    }
}
