// The C interface, seen through the shared library alone.
#include "client.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <regex>

namespace {

enum Operation { add = LDAP_MOD_ADD, drop = LDAP_MOD_DELETE, replace = LDAP_MOD_REPLACE, binary = LDAP_MOD_BVALUES };
char text[] = "cn";
CFGMessage attribute = {CFG_MSG_ATTRIBUTE, text, nullptr, nullptr};
CFGMessage entry = {CFG_MSG_ENTRY, text, &attribute, nullptr};
BerElement* noWalk = nullptr;

std::string shown(const char* given)
{
    return given != nullptr ? given : "null";
}

// The text of a copy, which is released.
std::string taken(char* copy)
{
    const std::string given = shown(copy);
    cfg_memfree(copy);
    return given;
}

// "errno/exterror line [entry|attribute|value] limits message" of a failure, with the limits of a type that has some.
std::string report(CFG* cfg)
{
    std::smatch message;
    std::ostringstream fields;
    const std::string dump = shown(cfg_dump_exception(cfg));
    std::regex_search(dump, message, std::regex("msg     (.*)"));
    fields << cfg_get_errno(cfg) << '/' << cfg_get_exterror(cfg) << ' ' << cfg_get_file_line(cfg) << " ["
           << shown(cfg_get_entry(cfg)) << '|' << shown(cfg_get_attribute(cfg)) << '|' << shown(cfg_get_value(cfg))
           << "] ";
    if (cfg_get_is_single(cfg) != 0)
        fields << cfg_get_minimum(cfg) << '-' << cfg_get_maximum(cfg) << ' ' << cfg_get_bitmask(cfg) << ' '
               << (cfg_get_enum(cfg) != nullptr ? *cfg_get_enum(cfg) : "-") << ' ';
    return fields.str() + message[1].str();
}

// The DN of an entry, then each attribute of a walk over it with its values, which are asked for in capitals.
std::string contentOf(CFG* cfg, CFGMessage* given)
{
    BerElement* walk = nullptr;
    std::string content = taken(cfg_get_dn(cfg, given));
    for (auto name = taken(cfg_first_attribute(cfg, given, &walk)); name != "null";
         name = taken(cfg_next_attribute(cfg, nullptr, walk))) {
        content += ' ' + name;
        std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        char** const values = cfg_get_values(cfg, given, name.c_str());
        for (int at = 0; at < cfg_count_values(values); ++at)
            content.append("=").append(values[at]);
        cfg_value_free(values);
    }
    cfg_ber_free(walk);
    return content;
}

const std::string head = "charset: ISO-8859-1\nversion: 1\n";
const std::string none = "0/0 0 [null|null|null] ";

using Call = int (*)(FileClient&, const char* dn, const std::vector<Mod>& mods);

// An update of a file, its failure or none, and what the tree holds behind it.
struct UpdateRow {
    const char* label;
    Call call;
    const char* dn;
    std::vector<Mod> mods;
    std::string failure;
    std::string left;
};

class Api : public testing::Test, protected FileClient {
protected:
    void expectUpdates(const std::vector<UpdateRow>& rows)
    {
        for (const auto& [label, call, dn, mods, failure, left] : rows) {
            SCOPED_TRACE(label);
            EXPECT_EQ(load(all), 0);
            EXPECT_EQ(call(*this, dn, mods), std::stoi(failure));
            EXPECT_EQ(report(cfg), failure);
            EXPECT_EQ(readText(name), failure == none ? left : all);
            EXPECT_EQ(cfg_flush_s(cfg), 0);  // writes what a failed update has left in the tree
            EXPECT_EQ(readText(name), left);
        }
    }

    const Call modify = [](auto& c, auto* dn, auto& mods) { return c.update(cfg_modify_s, dn, mods); };
    const Call addEntry = [](auto& c, auto* dn, auto& mods) { return c.update(cfg_add_s, dn, mods); };
    const Call deleteLeaf = [](auto& c, auto* dn, auto& /*mods*/) { return cfg_delete_s(c.cfg, dn); };
    const Call deleteTree = [](auto& c, auto* dn, auto& /*mods*/) {
        return cfg_set_option(c.cfg, CFG_OPT_DELETE_NON_LEAVES, dn) == 0 ? cfg_delete_s(c.cfg, dn) : -1;
    };
    const std::string a = head + "\n# \U0001F600\ndn: cn=a\n";
    const std::string x = "# c\nx: 1\nx: 2\n";
    const std::string port = "zeb-slapdPort";
    const std::string p = port + ": 389\n";
    const std::string z = "\ndn: ou=z, o=y, cn=a\n\n";
    const std::string all = a + x + p + z;
    const std::string noInteger = "21/1016 0 [cn=a|zeb-slapdPort|no] 1-65535 0 - Value is not valid integer syntax";
    const std::string systemError = "80/1000 0 [|null|] System error in cfg_";
    const std::string noEntry = "|null|] Entry not found";
};

}  // namespace

// What each call gives for a null handle and for an unbound one that holds the failure 86, and the code it leaves.
TEST_F(Api, EveryCallTakesANullAndAnUnboundHandle)
{
    const auto code = [](int number) { return std::to_string(number); };
    const auto isNull = [](const auto* pointer) { return std::string(pointer == nullptr ? "null" : "something"); };
    const std::string noMethod = "86/86 0 [|null|] Bind method must be one of { LDAP_AUTH_SIMPLE }";
    const std::tuple<const char*, std::function<std::string(CFG*)>, std::string, std::string, int> cases[] = {
        {"reset", [&](CFG* c) { return code(cfg_reset(c)); }, "89", "0", 0},
        {"search", [&](CFG* c) { return code(cfg_search_s(c, "", 0, "", nullptr, 0, &entry.child)); }, "89", "89", 89},
        {"add", [&](CFG* c) { return code(cfg_add_s(c, text, nullptr)); }, "89", "89", 89},
        {"modify", [&](CFG* c) { return code(cfg_modify_s(c, text, nullptr)); }, "89", "89", 89},
        {"delete", [&](CFG* c) { return code(cfg_delete_s(c, text)); }, "89", "89", 89},
        {"flush", [&](CFG* c) { return code(cfg_flush_s(c)); }, "89", "89", 89},
        {"first entry", [&](CFG* c) { return shown(cfg_first_entry(c, &entry)->text); }, "cn", "cn", 0},
        {"next entry", [&](CFG* c) { return isNull(cfg_next_entry(c, &entry)); }, "null", "null", 0},
        {"count entries", [&](CFG* c) { return code(cfg_count_entries(c, &entry)); }, "89", "1", 0},
        {"count attributes", [&](CFG* c) { return code(cfg_count_attributes(c, &entry)); }, "89", "1", 0},
        {"count of no entry", [&](CFG* c) { return code(cfg_count_attributes(c, nullptr)); }, "89", "0", 0},
        {"DN", [&](CFG* c) { return taken(cfg_get_dn(c, &entry)); }, "cn", "cn", 0},
        {"DN of no entry", [&](CFG* c) { return taken(cfg_get_dn(c, nullptr)); }, "null", "null", 89},
        {"DN of an attribute", [&](CFG* c) { return taken(cfg_get_dn(c, &attribute)); }, "null", "null", 89},
        {"walk nowhere", [&](CFG* c) { return taken(cfg_first_attribute(c, &entry, nullptr)); }, "null", "null", 89},
        {"walk of none", [&](CFG* c) { return taken(cfg_first_attribute(c, nullptr, &noWalk)); }, "null", "null", 89},
        {"next of no walk", [&](CFG* c) { return taken(cfg_next_attribute(c, &entry, nullptr)); }, "null", "null", 89},
        {"values of no entry", [&](CFG* c) { return isNull(cfg_get_values(c, nullptr, text)); }, "null", "null", 89},
        {"values of no name", [&](CFG* c) { return isNull(cfg_get_values(c, &entry, nullptr)); }, "null", "null", 89},
        {"no values", [&](CFG* c) { return isNull(cfg_get_values(c, &entry, "CN")); }, "null", "null", 0},
        {"no attribute", [&](CFG* c) { return isNull(cfg_get_values(c, &entry, "sn")); }, "null", "null", 16},
        {"file name", [&](CFG* c) { return isNull(cfg_get_file_name(c)); }, "null", "something", 86},
        {"report", report, "89/89 0 [null|null|null] ", noMethod, 86},
        {"tree view", [&](CFG* c) { return shown(cfg_tree_view(c, 0)); }, "null", "null", 86},
        {"get option", [&](CFG* c) { return code(cfg_get_option(c, 0, text)); }, "89", "0", 86},
        {"set option", [&](CFG* c) { return code(cfg_set_option(c, 0, text)); }, "89", "0", 86},
    };
    for (const auto& [label, call, withNull, withUnbound, left] : cases) {
        SCOPED_TRACE(label);
        EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE + 1), CFG_AUTH_UNKNOWN);
        EXPECT_EQ(call(nullptr), withNull);
        EXPECT_EQ(call(cfg), withUnbound);
        EXPECT_EQ(cfg_get_errno(cfg), left);
    }
    EXPECT_EQ(entry.child, &attribute);
    EXPECT_EQ(cfg_bind_s(nullptr, nullptr, nullptr, LDAP_AUTH_SIMPLE), CFG_PARAM_ERROR);
    EXPECT_EQ(cfg_unbind(nullptr), CFG_PARAM_ERROR);
}

// A failed bind leaves the handle to the file that it had, here the first one.
TEST_F(Api, BindLoadsTheFileAndChecksTheLogin)
{
    const std::string marked = "dn: cn=Configuration\nobjectclass: top\n";
    const std::string account = marked + "zeb-slapdAdminDN: cn=root, o=x\nzeb-slapdAdminPW: secret\n";
    const std::string unmarked = "dn: cn=Configuration\nzeb-slapdAdminDN: o=x\nzeb-slapdAdminPW: s\n";
    const std::string refused = "49/49 0 [null|null|null] ";
    const std::string invalid = "65/1007 2 [<root>|zeb-slapdInvalidLine|";
    const std::string notAllowed = "] \"zeb-slapdInvalidLine\" attribute not allowed in <root> object";
    const std::tuple<std::string, const char*, const char*, std::string> cases[] = {
        {account, "CN=Root ; O=x", "secret", none},
        {account, "cn=root,o=x", "Secret", refused},
        {account, "cn=root,o=x", "", refused},
        {account, nullptr, "secret", refused},
        {account + "zeb-slapdAdminPW: second\n", "cn=root,o=x", "second", refused},
        {marked + "zeb-slapdAdminDN: o=x\n", "o=x", "secret", refused},
        {unmarked, "o=x", "s", refused},
        {"", "o=x", "s", "32/32 0 [cn=Configuration|null|] Base entry not found"},
        {account, "o", "s", "34/1013 0 [cn=Configuration|zeb-slapdAdminDN|o] 0-0 0 - Missing RDN value: o"},
        {marked + "zeb-slapdAdminDN: o=x\nzeb-slapdAdminPW: >?<\n", "o=x", "p",
         "202/202 0 [cn=Configuration|zeb-slapdAdminPW|>?<] 1-46 0 - _pwcodec_decode_buffer( left );"},
        {"version: 1\nVERSION: 1\n", nullptr, nullptr, invalid + "VERSION: 1" + notAllowed},
        {"charset: a\nCharset: b\n", nullptr, nullptr, invalid + "Charset: b" + notAllowed},
        {"# c\nversion: 2\n", nullptr, nullptr, invalid + "version: 2" + notAllowed},
        {"CN: a\n b\n", nullptr, nullptr, "65/1007 2 [<root>|CN|ab] \"CN\" attribute not allowed in <root> object"},
        {"dn: cn=b\n =c\n", nullptr, nullptr, "34/1014 2 [<root>|null|cn=b=c] Invalid character in RDN value: ="},
        {"dnfoo\n", nullptr, nullptr, "34/1012 1 [<root>|null|dnfoo: ] Invalid character in RDN attribute: :"},
        {"dn: cn=a\n# c\n\xff\n", nullptr, nullptr, "162/162 3 [cn=a|null|\xff] mbstowcs( \xff )"},
    };
    for (const auto& [content, dn, password, failure] : cases) {
        SCOPED_TRACE(testing::PrintToString(content) + " for " + shown(dn) + " with " + shown(password));
        EXPECT_EQ(load(content, dn, password), std::stoi(failure));
        EXPECT_EQ(report(cfg), failure);
        EXPECT_STREQ(cfg_tree_view(cfg, 0), "\n- cn=Configuration (suffix)\n");
    }
    EXPECT_EQ(load("dn: cn=b\n"), 0);
    EXPECT_STREQ(cfg_tree_view(cfg, 1), "\n\xC4 cn=b (suffix)\n");
    EXPECT_STREQ(cfg_tree_view(cfg, 0), "\n\xC4 cn=b (suffix)\n");
}

TEST_F(Api, ModifyGoesAsFarAsItSucceeds)
{
    const std::string noWord = "21/1017 0 [cn=a|zeb-audit|x] 0-0 0 true value not one of attrType.enumValues";
    const std::string noBits =
        "21/1019 0 [cn=a|zeb-slapdSslCipherSpecs|1] 0-0 16128 - Bits in value are not within bitmask constraint";
    const std::string missing = "] Target attribute of MOD_DELETE not found";
    const std::string smile = "\U0001F600";
    expectUpdates({
        {"nothing", modify, "cn=no", {}, none, all},
        {"no entry", modify, "cn=no", {{add, "x", {}}}, "32/32 0 [cn=no" + noEntry, all},
        {"null", modify, nullptr, {}, systemError + "modify_s()", all},
        {"no DN", modify, "cn", {}, "34/1013 0 [|null|cn] Missing RDN value: cn", all},
        {"replace", modify, "cn=a", {{replace, "X", {"3", "3"}}}, none, a + "# c\nx: 3\n" + p + z},
        {"add before", modify, "cn=a", {{add, "A", {"1"}}}, none, a + "A: 1\n" + x + p + z},
        {"by nothing", modify, "cn=a", {{replace, "x", {}}, {replace, "y", {}}, {add, "y", {}}}, none, a + p + z},
        {"binary", modify, "cn=a", {{add | binary, "X", {"2", smile}}}, none, a + x + "x: " + smile + "\n" + p + z},
        {"half", modify, "cn=a", {{add, "y", {"1"}}, {replace, port, {"no"}}}, noInteger, a + x + "y: 1\n" + p + z},
        {"drop one of two", modify, "cn=a", {{drop, "X", {"1", "9"}}}, none, a + "# c\nx: 2\n" + p + z},
        {"drop and add",
         modify,
         "cn=a",
         {{drop | binary, "x", {"2", "1"}}, {add, "x", {"1"}}},
         none,
         a + "x: 1\n" + p + z},
        {"drop a number", modify, "cn=a", {{drop, port, {"0389", "no"}}, {drop, "x", {}}}, none, a + z},
        {"drop none", modify, "cn=a", {{drop, "y", {}}}, "16/16 0 [cn=a|y|<NULL>" + missing, all},
        {"drop none of two", modify, "cn=a", {{drop, "y", {"1", "2"}}}, "16/16 0 [cn=a|y|1" + missing, all},
        {"drop no binary", modify, "cn=a", {{drop | binary, "y", {"1"}}}, "16/16 0 [cn=a|y|<binary>" + missing, all},
        {"no operation", modify, "cn=a", {{7 | binary, "x", {}}}, "89/1010 0 [cn=a|null|] Unknown mod_op: 135", all},
        {"no word", modify, "cn=a", {{add, "zeb-audit", {"x"}}}, noWord, all},
        {"no bits", modify, "cn=a", {{add, "zeb-slapdSslCipherSpecs", {"1"}}}, noBits, all},
    });
}

TEST_F(Api, OtherCallsDoAllOrNothing)
{
    const Call find = [](auto& c, auto* base, auto& /*mods*/) {
        return cfg_search_s(c.cfg, base, 0, base == nullptr ? "" : nullptr, nullptr, 0, &c.found);
    };
    const std::string notEmpty = "66/66 0 [cn=a|null|] Use CFG_OPT_DELETE_NON_LEAVES to enable subtree delete";
    expectUpdates({
        {"any operation adds", addEntry, "CN=A", {{7, "y", {"2"}}, {drop, "z", {}}}, none, a + x + "y: 2\n" + p + z},
        {"above", addEntry, "o=y, cn=a", {{binary, "x", {"1"}}}, none, a + x + p + "\ndn: o=y, cn=a\nx: 1\n" + z},
        {"half", addEntry, "cn=a", {{add, "y", {"1"}}, {add, port, {"no"}}}, noInteger, all},
        {"delete", deleteLeaf, "ou=z,o=y,cn=a", {}, none, a + x + p + "\n"},
        {"delete no leaf", deleteLeaf, "cn=a", {}, notEmpty, all},
        {"delete a tree", deleteTree, "cn=a", {}, none, head},
        {"delete the root", deleteTree, "", {}, "32/32 0 [" + noEntry, all},
        {"add null", addEntry, nullptr, {}, systemError + "add_s()", all},
        {"delete null", deleteLeaf, nullptr, {}, systemError + "delete_s()", all},
        {"search null", find, nullptr, {}, systemError + "search_s()", all},
        {"search without a filter", find, "", {}, systemError + "search_s()", all},
    });
}

TEST_F(Api, ValuesWithoutTextAreEmptyOrNone)
{
    EXPECT_EQ(load("dn: cn=b\n"), 0);
    berval noText = {0, nullptr};
    berval* blocks[] = {&noText, nullptr};
    LDAPMod empty = {add | binary, text, {reinterpret_cast<char**>(blocks)}};
    LDAPMod noTexts = {add, text, {nullptr}}, noBlocks = {add | binary, text, {nullptr}};
    LDAPMod* records[] = {&empty, &noTexts, &noBlocks, nullptr};
    EXPECT_EQ(cfg_add_s(cfg, "cn=b", records), 0);
    EXPECT_EQ(readText(name), head + "\ndn: cn=b\ncn: \n\n");
}

TEST_F(Api, UpdatesReadAFileThatHasChanged)
{
    EXPECT_EQ(load("dn: cn=a\n"), 0);
    EXPECT_EQ(shown(cfg_get_file_name(cfg)), name);
    writeText(name, "dn: cn=b\n");
    setTime(name, 1000);
    EXPECT_EQ(cfg_add_s(cfg, "cn=\U0001F600", nullptr), 0);
    EXPECT_EQ(readText(name), head + "\ndn: cn=b\n\ndn: cn=\U0001F600\n\n");
    std::filesystem::remove(name);
    EXPECT_EQ(search("", LDAP_SCOPE_BASE, ""), CFG_CONNECT_ERROR);
}

TEST_F(Api, ReportsShowTheWholeChainOrItsFirstLink)
{
    EXPECT_EQ(load(""), 0);
    EXPECT_EQ(cfg_delete_s(cfg, "cn=a"), LDAP_NO_SUCH_OBJECT);
    const std::string chain = shown(cfg_dump_exception(cfg));
    cfg_set_option(cfg, CFG_OPT_SHOW_STACK, nullptr);
    EXPECT_EQ(cfg_dump_exception(cfg), chain) << "the text is kept";
    EXPECT_EQ(cfg_delete_s(cfg, "cn=a"), LDAP_NO_SUCH_OBJECT);
    EXPECT_EQ(shown(cfg_dump_exception(cfg)), chain.substr(0, chain.find("\n[")));
    cfg_set_option(cfg, CFG_OPT_SHOW_STACK, text);
}

TEST_F(Api, SearchFailsAtAPasswordThatCannotBeDecoded)
{
    const std::string broken = '>' + std::string(498, 'A') + '<';
    EXPECT_EQ(load("dn: cn=a\nx: 1\n\ndn: cn=c\nx: 1\nzeb-slapdPeerPW: " + broken + '\n'), 0);
    EXPECT_EQ(search("", LDAP_SCOPE_SUBTREE, "x"), 202);
    EXPECT_EQ(report(cfg), "202/202 0 [cn=c|zeb-slapdPeerPW|" + broken + "] 1-46 0 - _pwcodec_decode_buffer();");
    EXPECT_EQ(found, nullptr);
}

TEST_F(Api, SearchDecodesPasswordsIntoTheCallersResult)
{
    EXPECT_EQ(load("dn: cn=a\nzeb-slapdAdminPW: secret\nx: >abc<\nx: d\ny:\n\ndn: cn=b, cn=a\nx: 1\n"), 0);
    char* names[] = {text, nullptr};
    EXPECT_EQ(search("", LDAP_SCOPE_SUBTREE, "x", names), 0);
    EXPECT_EQ(cfg_count_entries(cfg, found), 2);
    EXPECT_EQ(cfg_count_attributes(cfg, found), 0) << "none has that name";
    EXPECT_EQ(search("cn=a", 7, "x", nullptr, 1), 0);
    EXPECT_EQ(cfg_flush_s(cfg), 0);
    EXPECT_EQ(readText(name).find("secret"), std::string::npos);
    cfg_unbind(cfg);
    cfg = cfg_init();
    EXPECT_EQ(cfg_count_entries(cfg, found), 1);
    EXPECT_EQ(contentOf(cfg, found), "cn=a x=>abc<=d y= zeb-slapdAdminPW=secret") << "of a handle that is gone";
}

TEST_F(Api, AMillionEntriesAreReleasedOnASmallStack)
{
    CFGMessage* chain = nullptr;
    for (int count = 0; count < 1'000'000; ++count)
        chain = new (std::calloc(1, sizeof(CFGMessage))) CFGMessage{CFG_MSG_ENTRY, nullptr, nullptr, chain};
    int code = 1;
    onStack(256 * 1024, [&] { code = cfg_msgfree(chain); });
    EXPECT_EQ(code, 0);
}

TEST_F(Api, FlagsReadBackAsTheyWereSet)
{
    for (const auto& [option, initial] : {std::pair(999, 7), {1000, 1}, {1001, 0}, {1002, 0}, {1003, 1}, {1004, 0}}) {
        SCOPED_TRACE(option);
        int flag = 7;  // stays for a number that is no option
        EXPECT_EQ(cfg_get_option(cfg, option, &flag), 0);
        EXPECT_EQ(flag, initial);
        for (const auto& [value, set] : {std::pair(text, 1), {nullptr, 0}}) {
            EXPECT_EQ(cfg_set_option(cfg, option, value), 0);
            EXPECT_EQ(cfg_get_option(cfg, option, &flag), 0);
            EXPECT_EQ(flag, initial == 7 ? 7 : set);
        }
        cfg_set_option(cfg, option, initial == 1 ? text : nullptr);
    }
}

TEST_F(Api, NamesReadBackAsTheyWereSet)
{
    for (const int option : {CFG_OPT_CONFIG_FILE, CFG_OPT_BACKUP_FILE}) {
        char* copy = text;
        for (const auto& [size, code, kept] : {std::tuple(1, 0, 1), {0, 21, 1}, {260, 0, 260}, {261, 21, 260}}) {
            SCOPED_TRACE(std::to_string(option) + " of " + std::to_string(size));
            EXPECT_EQ(cfg_set_option(cfg, option, std::string(static_cast<std::size_t>(size), 'x').c_str()), code);
            EXPECT_EQ(cfg_get_option(cfg, option, &copy), 0);
            EXPECT_EQ(taken(copy).size(), static_cast<std::size_t>(kept));
        }
        EXPECT_EQ(cfg_set_option(cfg, option, nullptr), 0);
        EXPECT_EQ(cfg_get_option(cfg, option, &copy), 0);
        EXPECT_EQ(copy, nullptr) << option;
    }
    EXPECT_EQ(cfg_flush_s(cfg), CFG_PARAM_ERROR) << "no file";
}
