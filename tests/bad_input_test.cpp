// Files that people get wrong or that are damaged, over the C interface: the answer is sensible, and what cannot be
// loaded stays as it is.
#include "support.h"
#include "zebldapcfg.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

class BadInput : public testing::Test {
protected:
    BadInput() { cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, name.c_str()); }
    ~BadInput() override { cfg_unbind(cfg); }

    // Binds to a file of that text. The file changes only when a line of it is moved to another attribute.
    int bind(const std::string& text)
    {
        writeText(name, text);
        const int code = cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE);
        left = readText(name);
        EXPECT_EQ(left != text, code == 0 && left.find(invalidLine) != std::string::npos) << text;
        return code;
    }

    // The number of entries that have an object class, or minus the code of a failure.
    int entries()
    {
        CFGMessage* found = nullptr;
        const int code = cfg_search_s(cfg, "", LDAP_SCOPE_SUBTREE, "", nullptr, 0, &found);
        const int count = cfg_count_entries(cfg, found);
        cfg_msgfree(found);
        return code != 0 ? -code : count;
    }

    const std::string invalidLine = "\nzeb-slapdInvalidLine: ";
    const TempDirectory directory;
    const std::string name = directory / "zebslapd.conf";
    const int utf8 = setenv("LC_ALL", "C.UTF-8", 1);
    CFG* cfg = cfg_init();
    std::string left;
};

std::size_t count(const std::string& text, const std::string& part)
{
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

}  // namespace

TEST_F(BadInput, IsAnsweredAsTheTableSays)
{
    std::set<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(DATA "/bad-input"))
        files.insert(file.path().filename());
    std::istringstream table(readText(DATA "/bad-input.txt"));
    for (std::string row; std::getline(table, row);) {
        if (row.empty() || row[0] == '#')
            continue;
        int code = -1, extended = -1, line = -1, found = -1;
        std::size_t bad = 0;
        std::string file;
        std::istringstream(row) >> code >> extended >> line >> found >> bad >> file;
        EXPECT_EQ(files.erase(file), 1U) << row;
        EXPECT_EQ(bind(readText(DATA "/bad-input/" + file)), code) << row;
        EXPECT_EQ(cfg_get_exterror(cfg), extended) << row;
        EXPECT_EQ(cfg_get_file_line(cfg), line) << row;
        EXPECT_EQ(count(left, invalidLine), bad) << row;
        EXPECT_EQ(code == 0 ? entries() : 0, found) << row;
    }
    EXPECT_EQ(files, std::set<std::string>()) << "these have no row";
}

// Each bind ends with one of these codes, and each load that succeeds can be searched. The sample is cut and changed
// entry by entry, each behind the one before it: the whole file twenty thousand times would take minutes.
TEST_F(BadInput, IsTheSampleCutOrChangedAtAnyByte)
{
    std::vector<std::string> parts(1);  // the head, then the entries
    std::istringstream sample(readText(SAMPLE));
    for (std::string line; std::getline(sample, line);) {
        if (line.rfind("dn:", 0) == 0)
            parts.emplace_back();
        parts.back() += line + '\n';
    }
    const char masks[] = {0x01, 0x20, char(0x80)};
    std::map<int, int> codes;
    for (std::size_t part = 0; part < parts.size(); ++part) {
        const std::string context = (part > 1 ? "version: 1\n\n" : "") + (part > 0 ? parts[part - 1] : "");
        for (std::size_t at = 0; at < parts[part].size(); ++at) {
            std::string changed = parts[part];
            changed[at] = static_cast<char>(changed[at] ^ masks[at % sizeof masks]);
            for (const std::string& text : {context + parts[part].substr(0, at), context + changed}) {
                const int code = bind(text);
                ++codes[code];
                EXPECT_TRUE(code == 0 ? entries() >= 0 : cfg_get_file_line(cfg) > 0) << text;
            }
        }
    }
    EXPECT_EQ(codes.size(), 4U);
    for (const int code : {0, LDAP_INVALID_DN_SYNTAX, LDAP_OBJECT_CLASS_VIOLATION, 162})
        EXPECT_GT(codes[code], 0) << code;
}
