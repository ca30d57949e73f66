// Files that people get wrong or that are damaged, over the C interface: the answer is sensible, and what cannot be
// loaded stays as it is.
#include "client.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>

namespace {

const std::string invalidLine = "\nzeb-slapdInvalidLine: ";

class BadInput : public testing::Test, protected FileClient {
protected:
    // Loads a text. The file changes only when a line of it is moved to another attribute.
    int loadText(const std::string& text)
    {
        const int code = load(text);
        left = readText(name);
        const bool isRepaired = code == 0 && left.find(invalidLine) != std::string::npos;
        EXPECT_EQ(left != text, isRepaired) << text;
        return code;
    }

    // The number of entries that have an object class, or minus the code of a failure.
    int entries()
    {
        const int code = search("", LDAP_SCOPE_SUBTREE, "");
        return code != 0 ? -code : cfg_count_entries(cfg, found);
    }

    std::string left;
};

auto occurrences(const std::string& text, const std::string& part)
{
    const std::regex wanted(part);
    return std::distance(std::sregex_iterator(text.begin(), text.end(), wanted), {});
}

}  // namespace

TEST_F(BadInput, IsAnsweredAsTheTableSays)
{
    std::set<std::string> unused;
    for (const auto& each : std::filesystem::directory_iterator(DATA "/bad-input"))
        unused.insert(each.path().filename().string());
    std::istringstream table(readText(DATA "/bad-input.txt"));
    for (std::string row; std::getline(table, row);) {
        if (row.empty() || row[0] == '#')
            continue;
        int code = -1, extended = -1, line = -1, count = -1, bad = -1;
        std::string input;
        std::istringstream(row) >> code >> extended >> line >> count >> bad >> input;
        EXPECT_EQ(unused.erase(input), 1U) << row;
        if (noBreakSpaceIsSpace && input == "nbsp-value")
            continue;
        EXPECT_EQ(loadText(readText(DATA "/bad-input/" + input)), code) << row;
        EXPECT_EQ(cfg_get_exterror(cfg), extended) << row;
        EXPECT_EQ(cfg_get_file_line(cfg), line) << row;
        EXPECT_EQ(occurrences(left, invalidLine), bad) << row;
        EXPECT_EQ(code == 0 ? entries() : 0, count) << row;
    }
    EXPECT_EQ(unused, std::set<std::string>()) << "these have no row";
}

// Each bind ends with one of these codes, and each load that succeeds can be searched. The sample is cut and changed
// entry by entry, each behind the one before it: the whole file twenty thousand times would take minutes. Where a load
// is slow, some bytes are left out.
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
        for (std::size_t at = 0; at < parts[part].size(); at += byteStep) {
            std::string changed = parts[part];
            changed[at] = static_cast<char>(changed[at] ^ masks[at % sizeof masks]);
            for (const std::string& text : {context + parts[part].substr(0, at), context + changed}) {
                const int code = loadText(text);
                ++codes[code];
                EXPECT_TRUE(code == 0 ? entries() >= 0 : cfg_get_file_line(cfg) > 0) << text;
            }
        }
    }
    EXPECT_EQ(codes.size(), 4U);
    for (const int code : std::initializer_list<int>{0, LDAP_INVALID_DN_SYNTAX, LDAP_OBJECT_CLASS_VIOLATION, 162})
        EXPECT_GT(codes[code], 0) << code;
}
