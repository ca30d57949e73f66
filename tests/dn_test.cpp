// Distinguished names: parsing, printing, comparing, and the arithmetic on them.
#include "LDIF_DN.h"
#include "LDIF_Exception.h"
#include "LDIF_Util.h"
#include "support.h"

#include <gtest/gtest.h>
#include <random>
#include <sstream>

static const ScopedLocale utf8;

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

// What a part takes from the front of a text, and what it leaves.
template <typename Part>
static std::string taken(const std::string& text)
{
    return outcomeOf([&] {
        cisString rest(text);
        const std::string part = Part(rest).str();
        return part + '|' + rest;
    });
}

TEST(Rdn, LeavesTheRestToItsCaller)
{
    const std::tuple<std::string (*)(const std::string&), const char*, const char*> cases[] = {
        {taken<LDIF_RDN>, "cn=(a )+ou=b ) ;x", "cn=a + ou=b|;x"},
        {taken<LDIF_RDN>, "", "34/1011 Missing RDN attribute [1]"},
        {taken<LDIF_RDN_pair>, "CN = (a)+b", "CN=a|+b"},
        {taken<LDIF_RDN_pair>, "", "34/1011 Missing RDN attribute [1]"},
        {taken<LDIF_RDN_pair>, "cn", "34/1013 Missing RDN value: cn [2]"},
        {taken<LDIF_RDN_attribute>, "CN (=a", "CN|=a"},
        {taken<LDIF_RDN_attribute>, "2-5=a", "2|-5=a"},
        {taken<LDIF_RDN_attribute>, "", "34/1011 Missing RDN attribute [1]"},
        {taken<LDIF_RDN_value>, "\"a\"  ,b", "\"a\"|,b"},
        {taken<LDIF_RDN_value>, "\xFF", "162/162 mbstowcs( \xFF ) [2]"},
    };
    for (const auto& [take, text, expected] : cases)
        EXPECT_EQ(take(text), expected) << text;
}

// As DNs do: what stands first by its text is the greater, but a leading part is less than the whole.
TEST(Rdn, ComparesByPairsInTheirOrder)
{
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [one, other, digits] : {Row{"cn=a", "CN=A", "100011"},
                                             {"cn=a", "cn=b", "010101"},
                                             {"o=a", "cn=b", "011010"},
                                             {"cn=a", "cn=a+o=b", "011010"},
                                             {"cn=a+o=b", "cn=a", "010101"}}) {
        const LDIF_RDN left = dn(one).front(), right = dn(other).front();
        EXPECT_EQ(relationsOf(left, right), digits) << one;
        const bool isPair = left.size() == right.size();
        EXPECT_EQ(isPair ? relationsOf(left.front(), right.front()) : digits, digits) << one;
    }
    LDIF_RDN sum = dn("cn=b").front();
    for (const char* pair : {"ou=x", "CN=B", "cn=A"})
        sum += dn(pair).front().front();
    std::ostringstream text;
    text << sum << '|' << sum.front();
    EXPECT_EQ(text.str(), "cn=A + cn=b + ou=x|cn=A");
}

TEST(Dn, SortsAncestorsFirstAndSiblingsDescending)
{
    const char* const ascending[] = {"", "o=d", "o=c", "cn=\u00e9,o=c", "cn=a,o=c", "cn=a+ou=a,o=c", "cn=_,o=c"};
    const char* const spelt[] = {"", "O=D", "o=C", "CN=\u00e9,O=c", "cn=A,O=c", "OU=a+cn=A,o=c", "cn=_,O=C"};
    for (int i = 0; i < 7; ++i)
        for (int j = 0; j < 7; ++j) {
            const char* const digits = i < j ? "011010" : i > j ? "010101" : "100011";
            EXPECT_EQ(relationsOf(dn(ascending[i]), dn(spelt[j])), digits) << i << j;
        }
}

TEST(Dn, SharesAndLosesAncestors)
{
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [text, other, expected] : {Row{"cn=a, OU=B, o=c", "cn=x,ou=b,O=C", "OU=B, o=c|cn=a"},
                                                {"cn=a", "o=d", "|cn=a"},
                                                {"o=c", "cn=a,o=c", "o=c|"},
                                                {"cn=a + ou=b, o=c", "cn=a,O=c", "o=c|cn=a + ou=b"}})
        EXPECT_EQ(dn(text).intersection(dn(other)).str() + '|' + (dn(text) -= dn(other)).str(), expected) << text;
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
        if (!isDn)
            continue;
        ASSERT_EQ(dn(once).str(), once);
        ASSERT_EQ(dn(once), dn(wide2multibyte(text)));
        ++printed;
    }
    EXPECT_GT(printed, sizeof(wchar_t) == 4 ? 10000 : 9000);  // halves of a surrogate pair are no text
}
