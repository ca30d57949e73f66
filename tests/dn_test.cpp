// Distinguished names: parsing, printing, comparing, and the arithmetic on them.
#include "LDIF_DN.h"
#include "LDIF_Exception.h"
#include "LDIF_Util.h"
#include "support.h"

#include <gtest/gtest.h>
#include <random>

static const ScopedLocale utf8;

const char* registryRoot() noexcept
{
    return "";
}

static LDIF_DN dn(const std::string& text)
{
    return LDIF_DN(cisString(text));
}

TEST(Dn, PrintsItsNormalForm)
{
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"", {"", "   ", "()", "\u3000"}},
        {"cn=a, ou=b, o=c", {"cn=a,ou=b ;o=c", "\u3000cn =\ta , ou = b, o=c ", "((cn=(a),(ou=b;)o=c)"}},
        {"CN=A + cn=b + ou=b", {"cn=b+CN=A+ou=b", R"(ou=b + CN=A+cn="a"+cn=#61+OU=B+cn=b)"}},
        {"x-1=#C3A900, 2.5.4.3=a(b", {"x-1=#c3A900,2.5.4.3=a(b", R"(x-1= #C3a900 ;2.5.4.3=a(b\29 \28\20)"}},
        {R"(cn=" a,=+<>#;\\\"")", {R"(cn=" a,=+<>#;\\\"")", R"(cn="\20a\,\=\+\<\>\#\;\5C\22)"}},
        {R"(cn=a\,\=\+\<\>\#\;\\\"b)", {R"(cn=a\2C\3D\2b\3C\3E\23\3B\5C\22b)"}},
        {R"(cn=\20\E3\80\80a  b)", {R"(cn=\20\E3\80\80a  b)", "cn= \\20\u3000a \\20b\\E3\\80\\80)"}},
        {"cn=\u00e9\U0001F600, o=\"\U0001F600\"", {R"(cn=\C3\A9\F0\9F\98\80;o="\f0\9f\98\80")"}},
    };
    for (const auto& [printed, texts] : cases)
        for (const std::string& text : texts)
            EXPECT_EQ(dn(text).str(), printed) << text;
}

TEST(Dn, RefusesWhatIsNone)
{
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"34/1011 Missing RDN attribute [2]", {"cn=a,", "cn=a; "}},
        {"34/1011 Missing RDN attribute [3]", {"cn=a+", "o=b,cn=a+"}},
        {"34/1012 Invalid attribute sytax: ,ou [4]", {",ou=a", "cn=a,,ou=b"}},
        {"34/1012 Invalid attribute sytax: _234567890123456789\xC3 [4]", {"_234567890123456789\u00e9_"}},
        {"34/1013 Missing RDN value: cn [4]", {"cn", " cn ", "o=a,cn"}},
        {"34/1012 Invalid character in RDN attribute: . [4]", {"OID.1=a", "cn.=a"}},
        {"34/1014 Invalid character in RDN value: 4 [3]", {"cn=#414", "cn=\"a\"4=", "o=c,cn=#4142+o=\"4\"4"}},
        {R"(34/1014 Invalid escape sequence: \ [5])", {R"(cn=a\)", R"(cn="a\)"}},
        {R"(34/1014 Invalid escape sequence: \zb [5])", {R"(cn=a\zbc)", R"(cn="\zb")"}},
        {"34/1014 Invalid escape sequence: \\\xF0\x9F [5]", {"cn=\\\U0001F600"}},
        {"162/162 mbstowcs( \xFF ) [5]", {R"(cn=\FF)"}},
    };
    for (const auto& [outcome, texts] : cases)
        for (const std::string& text : texts)
            EXPECT_EQ(outcomeOf([&] { return dn(text).str(); }) + failureOf([&] { dn(text); })->value, outcome + text);
    for (const char* empty : {"cn=", "cn=#", "cn=\"\"", "cn=\\20", "cn=()", "o=a,cn= ,ou=x"})  // legal until printed
        EXPECT_EQ(outcomeOf([&] { return dn(empty).str(); }), "34/1013 Missing RDN attribute value [1]") << empty;
}

TEST(Rdn, LeavesTheRestToItsCaller)
{
    cisString rest("cn=(a )+ou=b ) ;x"), bad("\xFF");
    EXPECT_TRUE(LDIF_RDN(rest).str() == "cn=a + ou=b" && rest == ";x") << rest;
    EXPECT_EQ(outcomeOf([&] { return LDIF_RDN_value(bad).str(); }), "162/162 mbstowcs( \xFF ) [2]");
}

TEST(Dn, SortsAncestorsFirstAndSiblingsDescending)
{
    const char* const ascending[] = {"", "o=d", "o=c", "cn=\u00e9,o=c", "cn=a,o=c", "cn=a+ou=a,o=c", "cn=_,o=c"};
    const char* const spelt[] = {"", "O=D", "o=C", "CN=\u00e9,O=c", "cn=A,O=c", "OU=a+cn=A,o=c", "cn=_,O=C"};
    for (int i = 0; i < 7; ++i)
        for (int j = 0; j < 7; ++j) {
            const LDIF_DN a = dn(ascending[i]), b = dn(spelt[j]);
            EXPECT_EQ(std::tuple(a == b, (a < b), a <= b), std::tuple(i == j, (i < j), i <= j)) << i << j;
            EXPECT_EQ(std::tuple(a != b, (a > b), a >= b), std::tuple(i != j, (i > j), i >= j)) << i << j;
        }
}

TEST(Dn, SharesAndLosesAncestors)
{
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [text, other, expected] : {Row{"cn=a, OU=B, o=c", "cn=x,ou=b,O=C", "OU=B, o=c|cn=a"},
                                                {"cn=a", "o=d", "|cn=a"},
                                                {"o=c", "cn=a,o=c", "o=c|"},
                                                {"cn=a + ou=b, o=c", "cn=a,O=c", "o=c|cn=a + ou=b"}})
        EXPECT_EQ(dn(text).intersection(dn(other)).str() + '|' + (dn(text) -= dn(other)).str(), expected);
}

// Whatever prints also parses, is the same DN then, and prints the same again.
TEST(Dn, SurvivesPrintingAndParsing)
{
    const std::wstring units = L"c=,;+#024CAE3\"\\\\\\ ()\u3000\u00e9\U0001F600";
    std::mt19937 random(20250101);
    int printed = 0;
    for (int round = 0; round < 100000; ++round) {
        std::wstring text = L"c=";
        for (auto count = random() % 16; count > 0; --count)
            text += units[random() % units.size()];
        const std::string once = outcomeOf([&] { return dn(wide2multibyte(text)).str(); });
        const bool isDn = once.find('/') == std::string::npos;  // and no failure
        ASSERT_TRUE(!isDn || (dn(once).str() == once && dn(once) == dn(wide2multibyte(text)))) << once;
        printed += isDn ? 1 : 0;
    }
    EXPECT_GT(printed, 10000);
}
