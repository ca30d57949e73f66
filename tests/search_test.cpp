// Searches: filter texts, and the walk over the tree with its results and failures.
#include "LDIF_File.h"
#include "support.h"

#include <gtest/gtest.h>
#include <sstream>

TEST(Search, FilterIsOneTestOnOneAttribute)
{
    const ScopedLocale utf8;
    const std::pair<const char*, const char*> cases[] = {
        {"()", "objectclass?"},     {"=a", "objectclass?"},         {"( name )", "name?"},
        {"name=", "name?"},         {"(name = *)", "name?"},        {"name=*x", "name?"},
        {"name=a", "name=a"},       {"(name = (a b))", "name=a b"}, {"name=a*", "name=a*"},
        {"name=a\\2", "name=a"},    {"name=\\41b", "name=Ab"},      {"name=\\5c", "name=\\"},
        {"name=\\zz", "name="},     {"name=a\\zzb", "name=a"},      {"n=a\\29\\20 ", "n=a) "},
        {"name=\\2A", "name=*"},    {"name=a\\2ab", "name=a*b"},    {"(&(a=b)(c))", "&(a=b)(c"},
        {"name>=a=b", "name>=a=b"}, {"\u2003name ", "name?"},       {" (", "objectclass?"},
    };
    LDIF_Filter filter("sn=old");
    for (const auto& [text, meaning] : cases) {
        filter = text;
        EXPECT_EQ(filter.attr + (filter.anyValue ? "?" : "=") + filter.value, meaning) << text;
    }
}

// What is found, or the codes and the entries that the links of the failure name, from the outermost on.
TEST(Search, ScopeAndFilterDecideTheResults)
{
    const std::tuple<const char*, LDIF_Scope, const char*, const char*> cases[] = {
        {"O=A", LDIF_Scope::base, "", "o=a;"},
        {"o=a", LDIF_Scope::base, "objectclass=Top=", ""},
        {"o=a", LDIF_Scope::oneLevel, "", "ou=d, o=a;"},
        {"o=a", LDIF_Scope::subtree, "X=C", "cn=c, ou=b, o=a;"},
        {"o=a", LDIF_Scope::subtree, "zeb-slapdQL3CP=01", "o=a;cn=c, ou=b, o=a;"},
        {"", LDIF_Scope::subtree, "version=01", ";"},
        {"o=a", LDIF_Scope::subtree, "zeb-slapdAdminDN=CN=\"s\"", "ou=d, o=a;"},
        {"o=a", LDIF_Scope::subtree, "zeb-slapdPort=x", "21/1016 o=a;o=a;ou=b, o=a;cn=c, ou=b, o=a;;;"},
        {"o=a", LDIF_Scope::oneLevel, "zeb-slapdQL3CP=x", "21/1016 o=a;o=a;;;"},
        {"cn=no", LDIF_Scope::base, "", "32/32 cn=no;;"},
    };
    const TempDirectory directory;
    writeText(directory / "f",
              "dn: o=a\nobjectclass: t\nzeb-slapdQL3CP: 1\n\ndn: ou=b, o=a\n\n# c\ndn: cn=c, ou=b, o=a\nx: C\n"
              "OBJECTCLASS: c\nzeb-slapdQL3CP: 1\nzeb-slapdPort: 1\n\ndn: ou=d, o=a\nobjectclass: d\nou: d\n"
              "zeb-slapdAdminDN: cn=s\n");
    LDIF_File file(directory / "f", "");
    for (const auto& [base, scope, filter, expected] : cases) {
        std::ostringstream found;
        try {
            for (const auto entry : file.findEntries(LDIF_DN(cisString(base)), scope, LDIF_Filter(filter)))
                found << file.entries().dn(entry) << ';';
        } catch (const LDIF_Exception& failure) {
            found << failure.ldapErr << '/' << failure.extErr << ' ';
            for (const LDIF_Exception* link = &failure; link != nullptr; link = link->nested.get())
                found << link->entryDn << ';';
        }
        EXPECT_EQ(found.str(), expected) << base << ' ' << filter;
    }
}

TEST(Search, SelectionTakesNamesInAnyCase)
{
    const LDIF_AttrFilter selection{{cisString("ou"), cisString("X")}};
    EXPECT_TRUE(LDIF_AttrFilter().selects("cn"));
    for (const auto& [name, isSelected] : {std::pair("OU", true), {"x", true}, {"o", false}, {"", false}})
        EXPECT_EQ(selection.selects(name), isSelected) << name;
}

// Goes red where the text of a line is taken for a name.
TEST(Search, TakesNoPartOfALineForAName)
{
    const TempDirectory directory;
    writeText(directory / "f", "dn: o=a\n# c: d\ndescription: foo: bar\nx: 1\n\ndn: o=b\n: v\n");
    LDIF_File file(directory / "f", "");
    for (const auto& [filter, count] : {std::pair("description: foo=bar", 0U),
                                        {"description: foo", 0U},
                                        {"# c=d", 0U},
                                        {"# c: d\ndescription", 0U},
                                        {"description=foo: bar", 1U}})
        for (const LDIF_Scope scope : {LDIF_Scope::base, LDIF_Scope::subtree})
            EXPECT_EQ(file.findEntries(LDIF_DN(cisString("o=a")), scope, LDIF_Filter(filter)).size(), count) << filter;
}

// An entry that text cannot carry is searched as it stands.
TEST(Search, FindsWhatIsNoText)
{
    const TempDirectory directory;
    writeText(directory / "f", "dn: cn=\nobjectclass: t\nx: 1\nzeb-slapdQL3CP: 7\n");
    LDIF_File file(directory / "f", "");
    for (const auto& [filter, count] :
         {std::pair("x", 1U), {"X=1", 1U}, {"x=2", 0U}, {"zeb-slapdql3cp=07", 1U}, {"y", 0U}})
        EXPECT_EQ(file.findEntries({}, LDIF_Scope::subtree, LDIF_Filter(filter)).size(), count) << filter;
}

TEST(Search, FindsTheLastLineOfALargeEntry)
{
    const TempDirectory directory;
    writeText(directory / "f", "dn: o=a\na: " + std::string(70'000, 'x') + "\nb: 1\nc: 2\n");
    LDIF_File file(directory / "f", "");
    for (int time = 1; time <= 3; ++time)  // from the second one on it is known where lines begin
        EXPECT_EQ(file.findEntries({}, LDIF_Scope::subtree, LDIF_Filter("c=2")).size(), 1U) << time;
}
