// The C interface, seen through the shared library alone.
#include "support.h"
#include "zebldapcfg.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <regex>
#include <thread>

namespace {

enum Operation { add = LDAP_MOD_ADD, drop = LDAP_MOD_DELETE, replace = LDAP_MOD_REPLACE, binary = LDAP_MOD_BVALUES };
char text[] = "cn";
CFGMessage attribute = {CFG_MSG_ATTRIBUTE, text, nullptr, nullptr};
CFGMessage entry = {CFG_MSG_ENTRY, text, &attribute, nullptr};
CFGMessage* found = nullptr;
BerElement* noWalk = nullptr;

// One record of an update.
struct Mod {
    int operation;
    std::string type;
    std::vector<std::string> values;
    std::vector<berval> binaries = {};
    std::vector<void*> pointers = {};
    LDAPMod record = {};

    LDAPMod* made()
    {
        for (std::string& each : values)
            binaries.push_back({0, each.data()});  // bv_len is not read
        for (berval& each : binaries)
            pointers.push_back((operation & binary) != 0 ? static_cast<void*>(&each) : each.bv_val);
        pointers.push_back(nullptr);
        record = {operation, type.data(), {reinterpret_cast<char**>(pointers.data())}};
        return &record;
    }
};

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

class Api : public testing::Test {
protected:
    Api() { cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, name.c_str()); }
    ~Api() override { cfg_unbind(cfg); }

    int bind(const std::string& content, const char* dn = nullptr, const char* password = nullptr)
    {
        writeText(name, content);
        return cfg_bind_s(cfg, dn, password, LDAP_AUTH_SIMPLE);
    }

    const TempDirectory directory;
    const std::string name = directory / "zebslapd.conf";
    const std::string head = "charset: ISO-8859-1\nversion: 1\n";
    const std::string none = "0/0 0 [null|null|null] ";
    const int utf8 = setenv("LC_ALL", "C.UTF-8", 1);
    CFG* cfg = cfg_init();
};

}  // namespace

// What each call gives for a null handle and for an unbound one that holds the failure 86, and the code it leaves.
TEST_F(Api, EveryCallTakesANullAndAnUnboundHandle)
{
    const std::tuple<std::string (*)(CFG*), std::string, std::string, int> cases[] = {
        {[](CFG* c) { return std::to_string(cfg_reset(c)); }, "89", "0", 0},
        {[](CFG* c) { return std::to_string(cfg_search_s(c, "", 0, "", nullptr, 0, &entry.child)); }, "89", "89", 89},
        {[](CFG* c) { return std::to_string(cfg_add_s(c, text, nullptr)); }, "89", "89", 89},
        {[](CFG* c) { return std::to_string(cfg_modify_s(c, text, nullptr)); }, "89", "89", 89},
        {[](CFG* c) { return std::to_string(cfg_delete_s(c, text)); }, "89", "89", 89},
        {[](CFG* c) { return std::to_string(cfg_flush_s(c)); }, "89", "89", 89},
        {[](CFG* c) { return shown(cfg_first_entry(c, &entry)->text); }, "cn", "cn", 0},
        {[](CFG* c) { return std::to_string(cfg_next_entry(c, &entry) == nullptr); }, "1", "1", 0},
        {[](CFG* c) { return std::to_string(cfg_count_entries(c, &entry)); }, "89", "1", 0},
        {[](CFG* c) { return std::to_string(cfg_count_attributes(c, &entry)); }, "89", "1", 0},
        {[](CFG* c) { return taken(cfg_get_dn(c, &entry)); }, "cn", "cn", 0},
        {[](CFG* c) { return std::to_string(cfg_count_attributes(c, nullptr)); }, "89", "0", 0},
        {[](CFG* c) { return taken(cfg_get_dn(c, nullptr)); }, "null", "null", 89},
        {[](CFG* c) { return taken(cfg_get_dn(c, &attribute)); }, "null", "null", 89},
        {[](CFG* c) { return taken(cfg_first_attribute(c, &entry, nullptr)); }, "null", "null", 89},
        {[](CFG* c) { return taken(cfg_first_attribute(c, nullptr, &noWalk)); }, "null", "null", 89},
        {[](CFG* c) { return taken(cfg_next_attribute(c, &entry, nullptr)); }, "null", "null", 89},
        {[](CFG* c) { return std::to_string(cfg_get_values(c, nullptr, text) == nullptr); }, "1", "1", 89},
        {[](CFG* c) { return std::to_string(cfg_get_values(c, &entry, nullptr) == nullptr); }, "1", "1", 89},
        {[](CFG* c) { return std::to_string(cfg_get_values(c, &entry, "CN") == nullptr); }, "1", "1", 0},
        {[](CFG* c) { return std::to_string(cfg_get_values(c, &entry, "sn") == nullptr); }, "1", "1", 16},
        {report, "89/89 0 [null|null|null] ", "86/86 0 [|null|] Bind method must be one of { LDAP_AUTH_SIMPLE }", 86},
        {[](CFG* c) { return shown(cfg_tree_view(c, 0)); }, "null", "null", 86},
        {[](CFG* c) { return std::to_string(cfg_get_option(c, 0, text)); }, "89", "0", 86},
        {[](CFG* c) { return std::to_string(cfg_set_option(c, 0, text)); }, "89", "0", 86},
    };
    for (const auto& [call, withNull, withUnbound, left] : cases) {
        EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE + 1), CFG_AUTH_UNKNOWN);
        EXPECT_EQ(call(nullptr), withNull);
        EXPECT_EQ(call(cfg), withUnbound);
        EXPECT_EQ(cfg_get_errno(cfg), left);
    }
    EXPECT_EQ(entry.child, &attribute);
    EXPECT_EQ(cfg_bind_s(nullptr, nullptr, nullptr, LDAP_AUTH_SIMPLE) + cfg_unbind(nullptr), 2 * CFG_PARAM_ERROR);
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
        EXPECT_EQ(bind(content, dn, password), std::stoi(failure));
        EXPECT_EQ(report(cfg), failure);
        EXPECT_STREQ(cfg_tree_view(cfg, 0), "\n- cn=Configuration (suffix)\n");
    }
    EXPECT_EQ(bind("dn: cn=b\n"), 0);
    EXPECT_STREQ(cfg_tree_view(cfg, 1), "\n\xC4 cn=b (suffix)\n");
    EXPECT_STREQ(cfg_tree_view(cfg, 0), "\n\xC4 cn=b (suffix)\n");
}

// The flush behind each update writes what a failed one has left in the tree.
TEST_F(Api, UpdatesChangeTheTreeAsFarAsTheyGo)
{
    const std::string a = head + "\n# \U0001F600\ndn: cn=a\n";
    const std::string x = "# c\nx: 1\nx: 2\n";
    const std::string port = "zeb-slapdPort";
    const std::string p = port + ": 389\n";
    const std::string z = "\ndn: ou=z, o=y, cn=a\n\n";
    const std::string all = a + x + p + z;
    const std::string noInteger = "21/1016 0 [cn=a|zeb-slapdPort|no] 1-65535 0 - Value is not valid integer syntax";
    const std::string noWord = "21/1017 0 [cn=a|zeb-audit|x] 0-0 0 true value not one of attrType.enumValues";
    const std::string noBits =
        "21/1019 0 [cn=a|zeb-slapdSslCipherSpecs|1] 0-0 16128 - Bits in value are not within bitmask constraint";
    const std::string missing = "] Target attribute of MOD_DELETE not found";
    const std::string systemError = "80/1000 0 [|null|] System error in cfg_";
    const std::string noEntry = "|null|] Entry not found";
    const auto modify = cfg_modify_s;
    const auto search = [](CFG* c, const char* arg, LDAPMod**) {
        return cfg_search_s(c, arg, 0, arg == nullptr ? "" : nullptr, nullptr, 0, &found);
    };
    const auto deleteLeaf = [](CFG* c, const char* dn, LDAPMod**) { return cfg_delete_s(c, dn); };
    const auto deleteTree = [](CFG* c, const char* dn, LDAPMod**) {
        return cfg_set_option(c, CFG_OPT_DELETE_NON_LEAVES, dn) == 0 ? cfg_delete_s(c, dn) : -1;
    };
    const std::tuple<decltype(&cfg_modify_s), const char*, std::vector<Mod>, std::string, std::string> cases[] = {
        {modify, nullptr, {}, systemError + "modify_s()", all},
        {cfg_add_s, nullptr, {}, systemError + "add_s()", all},
        {deleteLeaf, nullptr, {}, systemError + "delete_s()", all},
        {search, nullptr, {}, systemError + "search_s()", all},
        {search, "", {}, systemError + "search_s()", all},
        {modify, "cn=no", {}, none, all},
        {modify, "cn=no", {{add, "x", {}}}, "32/32 0 [cn=no" + noEntry, all},
        {modify, "cn", {}, "34/1013 0 [|null|cn] Missing RDN value: cn", all},
        {modify, "cn=a", {{replace, "X", {"3", "3"}}, {add, "A", {"1"}}}, none, a + "A: 1\n# c\nx: 3\n" + p + z},
        {modify, "cn=a", {{replace, "x", {}}, {replace, "y", {}}, {add, "y", {}}}, none, a + p + z},
        {modify, "cn=a", {{add | binary, "X", {"2", "\U0001F600"}}}, none, a + x + "x: \U0001F600\n" + p + z},
        {modify, "cn=a", {{add, "y", {"1"}}, {replace, port, {"no"}}}, noInteger, a + x + "y: 1\n" + p + z},
        {modify, "cn=a", {{drop, "X", {"1", "9"}}}, none, a + "# c\nx: 2\n" + p + z},
        {modify, "cn=a", {{drop | binary, "x", {"2", "1"}}, {add, "x", {"1"}}}, none, a + "x: 1\n" + p + z},
        {modify, "cn=a", {{drop, port, {"0389", "no"}}, {drop, "x", {}}}, none, a + z},
        {modify, "cn=a", {{drop, "y", {}}}, "16/16 0 [cn=a|y|<NULL>" + missing, all},
        {modify, "cn=a", {{drop, "y", {"1", "2"}}}, "16/16 0 [cn=a|y|1" + missing, all},
        {modify, "cn=a", {{drop | binary, "y", {"1"}}}, "16/16 0 [cn=a|y|<binary>" + missing, all},
        {modify, "cn=a", {{7 | binary, "x", {}}}, "89/1010 0 [cn=a|null|] Unknown mod_op: 135", all},
        {modify, "cn=a", {{add, "zeb-audit", {"x"}}}, noWord, all},
        {modify, "cn=a", {{add, "zeb-slapdSslCipherSpecs", {"1"}}}, noBits, all},
        {cfg_add_s, "CN=A", {{7, "y", {"2"}}, {drop, "z", {}}}, none, a + x + "y: 2\n" + p + z},
        {cfg_add_s, "o=y, cn=a", {{binary, "x", {"1"}}}, none, a + x + p + "\ndn: o=y, cn=a\nx: 1\n" + z},
        {cfg_add_s, "cn=a", {{add, "y", {"1"}}, {add, port, {"no"}}}, noInteger, all},
        {deleteLeaf, "ou=z,o=y,cn=a", {}, none, a + x + p + "\n"},
        {deleteLeaf, "cn=a", {}, "66/66 0 [cn=a|null|] Use CFG_OPT_DELETE_NON_LEAVES to enable subtree delete", all},
        {deleteTree, "cn=a", {}, none, head},
        {deleteTree, "", {}, "32/32 0 [" + noEntry, all},
    };
    for (auto [call, dn, mods, failure, left] : cases) {
        std::vector<LDAPMod*> records;
        for (Mod& mod : mods)
            records.push_back(mod.made());
        records.push_back(nullptr);
        EXPECT_EQ(bind(all), 0);
        EXPECT_EQ(call(cfg, dn, records.data()), std::stoi(failure));
        EXPECT_EQ(report(cfg), failure);
        EXPECT_EQ(readText(name), failure == none ? left : all);
        EXPECT_EQ(cfg_flush_s(cfg), 0);
        EXPECT_EQ(readText(name), left);
    }
    writeText(name, "dn: cn=b\n");
    std::filesystem::last_write_time(name, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(cfg_add_s(cfg, "cn=\U0001F600", nullptr), 0);
    EXPECT_EQ(readText(name), head + "\ndn: cn=b\n\ndn: cn=\U0001F600\n\n");
    berval noText = {0, nullptr};
    berval* blocks[] = {&noText, nullptr};
    LDAPMod empty = {add | binary, text, {reinterpret_cast<char**>(blocks)}};
    LDAPMod noTexts = {add, text, {nullptr}}, noBlocks = {add | binary, text, {nullptr}};
    LDAPMod* records[] = {&empty, &noTexts, &noBlocks, nullptr};
    EXPECT_EQ(cfg_add_s(cfg, "cn=b", records), 0);
    EXPECT_EQ(readText(name), head + "\ndn: cn=b\ncn: \n\ndn: cn=\U0001F600\n\n");
    EXPECT_EQ(shown(cfg_get_file_name(cfg)) + shown(cfg_get_file_name(nullptr)), name + "null");
    EXPECT_EQ(cfg_delete_s(cfg, "cn=a"), 32);
    const std::string chain = shown(cfg_dump_exception(cfg));
    cfg_set_option(cfg, CFG_OPT_SHOW_STACK, nullptr);
    EXPECT_EQ(cfg_dump_exception(cfg), chain);  // the text is kept
    EXPECT_EQ(cfg_delete_s(cfg, "cn=a"), 32);
    EXPECT_EQ(chain.rfind(shown(cfg_dump_exception(cfg)) + "\n[", 0), 0U);
    std::filesystem::remove(name);
    EXPECT_EQ(cfg_search_s(cfg, "", 0, "", nullptr, 0, &found), CFG_CONNECT_ERROR);
    cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, nullptr);
    EXPECT_EQ(cfg_flush_s(cfg), CFG_PARAM_ERROR);
}

TEST_F(Api, SearchDecodesPasswordsIntoTheCallersResult)
{
    const std::string broken = '>' + std::string(498, 'A') + '<';
    EXPECT_EQ(bind("dn: cn=a\nx: 1\n\ndn: cn=c\nx: 1\nzeb-slapdPeerPW: " + broken + '\n'), 0);
    EXPECT_EQ(cfg_search_s(cfg, "", LDAP_SCOPE_SUBTREE, "x", nullptr, 0, &found), 202);
    EXPECT_EQ(report(cfg), "202/202 0 [cn=c|zeb-slapdPeerPW|" + broken + "] 1-46 0 - _pwcodec_decode_buffer();");
    EXPECT_EQ(found, nullptr);
    char* names[] = {text, nullptr};
    EXPECT_EQ(bind("dn: cn=a\nzeb-slapdAdminPW: secret\nx: >abc<\nx: d\ny:\n\ndn: cn=b, cn=a\nx: 1\n"), 0);
    EXPECT_EQ(cfg_search_s(cfg, "", LDAP_SCOPE_SUBTREE, "x", names, 0, &found), 0);
    EXPECT_EQ(cfg_count_entries(cfg, found) + 10 * cfg_count_attributes(cfg, found), 2);
    cfg_msgfree(found);
    EXPECT_EQ(cfg_search_s(cfg, "cn=a", 7, "x", nullptr, 1, &found), 0);
    EXPECT_TRUE(cfg_flush_s(cfg) == 0 && readText(name).find("secret") == std::string::npos);
    cfg_unbind(cfg);
    cfg = cfg_init();
    BerElement* walk = nullptr;
    std::string content = taken(cfg_get_dn(cfg, found)) + std::to_string(cfg_count_entries(cfg, found));
    for (auto each = taken(cfg_first_attribute(cfg, found, &walk)); each != "null";
         each = taken(cfg_next_attribute(cfg, nullptr, walk))) {
        char** const values = cfg_get_values(cfg, found, each == "x" ? "X" : each.c_str());
        content += ' ' + each;
        for (int at = 0; at < cfg_count_values(values); ++at)
            content.append("=").append(values[at]);
        cfg_value_free(values);
    }
    EXPECT_EQ(content, "cn=a1 x=>abc<=d y= zeb-slapdAdminPW=secret");
    cfg_ber_free(walk);
    cfg_msgfree(found);
}

TEST_F(Api, AMillionEntriesAreReleasedOnASmallStack)
{
    CFGMessage* chain = nullptr;
    for (int count = 0; count < 1'000'000; ++count)
        chain = new (std::calloc(1, sizeof(CFGMessage))) CFGMessage{CFG_MSG_ENTRY, nullptr, nullptr, chain};
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 256 * 1024);
    pthread_setattr_default_np(&small);
    int code = 1;
    std::thread([&] { code = cfg_msgfree(chain); }).join();
    EXPECT_EQ(code, 0);
}

TEST_F(Api, OptionsReadBackAsTheyWereSet)
{
    for (const auto& [option, initial] : {std::pair(999, 7), {1000, 1}, {1001, 0}, {1002, 0}, {1003, 1}, {1004, 0}}) {
        int flag = 7;  // stays for a number that is no option
        EXPECT_EQ(cfg_get_option(cfg, option, &flag), 0);
        EXPECT_EQ(flag, initial) << option;
        EXPECT_TRUE(cfg_set_option(cfg, option, text) == 0 && cfg_get_option(cfg, option, &flag) == 0);
        EXPECT_EQ(flag, initial == 7 ? 7 : 1) << option;
        EXPECT_TRUE(cfg_set_option(cfg, option, nullptr) == 0 && cfg_get_option(cfg, option, &flag) == 0);
        EXPECT_EQ(flag, initial == 7 ? 7 : 0) << option;
    }
    for (const int option : {CFG_OPT_CONFIG_FILE, CFG_OPT_BACKUP_FILE}) {
        char* copy = text;
        for (const auto& [size, code] : {std::pair(1, 0), {0, 21}, {260, 0}, {261, 21}}) {
            EXPECT_EQ(cfg_set_option(cfg, option, std::string(static_cast<std::size_t>(size), 'x').c_str()), code);
            EXPECT_EQ(cfg_get_option(cfg, option, &copy), 0);
            EXPECT_EQ(taken(copy).size(), size < 260 ? 1U : 260U);
        }
        EXPECT_TRUE(cfg_set_option(cfg, option, nullptr) == 0 && cfg_get_option(cfg, option, &copy) == 0);
        EXPECT_EQ(copy, nullptr);
    }
}
