// The manual pages say what the library does: the table of attributes, and the codes with their texts.
#include "LDIF_AttrType.h"
#include "LDIF_Syntax.h"
#include "support.h"
#include "zebldapcfg.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>

// What the page says that a value of this type is.
static std::string valueOf(const _AttrType& type)
{
    const LDIF_Syntax* const family = &syntaxOf(type);
    std::ostringstream text;
    if (family == &syntax::enumerated) {
        for (const char* const* word = type.enumValues; *word != nullptr; ++word)
            text << (word == type.enumValues ? "" : "|") << *word;
    } else if (family == &syntax::mask) {
        text << "bits of 0x" << std::hex << std::uppercase << type.bitmask;
    } else if (family == &syntax::integer) {
        text << type.minimum << " to " << type.maximum;
    } else if (family == &syntax::dn) {
        text << "DN";
    } else {
        text << (family == &syntax::pw ? "password" : family == &syntax::cis ? "caseless text" : "text");
        if (type.maximum != 0)
            text << (type.minimum != 0 ? ", " + std::to_string(type.minimum) + " to " : ", at most ") << type.maximum
                 << " bytes";
    }
    return text.str();
}

TEST(Manual, ListsTheAttributeTypesWithTheirLimits)
{
    const std::string page = readText(SOURCE_DIRECTORY "/man/zebslapd.conf.5.scd");
    std::string table = "```\n";
    getAttrType(nullptr);  // sorts the types
    for (const _AttrType* type = _attrMapArray; type->name != nullptr; ++type) {
        std::string name = type->name + std::string(type->isSingle ? "" : " +");
        name.resize(38, ' ');
        table += name + valueOf(*type) + '\n';
        for (const char* const* word = type->enumValues; word != nullptr && *word != nullptr; ++word)
            EXPECT_NE(page.find(*word), std::string::npos) << *word;
    }
    const auto start = page.find("```\n");
    EXPECT_EQ(page.substr(start, page.find("```\n", start + 1) - start), table);
}

TEST(Manual, GivesTheTextOfEachCode)
{
    const std::string page = readText(SOURCE_DIRECTORY "/man/zebldapcfg.3.scd");
    std::set<int> codes;
    const std::regex row("\n\\*([0-9]+)\\* (.*)");
    for (std::sregex_iterator each(page.begin(), page.end(), row), end; each != end; ++each) {
        const int code = std::stoi((*each)[1]);
        codes.insert(code);
        if (namesLdapCodes || code >= CFG_ERR_UNEXPECTED) {
            EXPECT_STREQ((*each)[2].str().c_str(), cfg_err2string(code));
        }
    }
    const std::string header = readText(SOURCE_DIRECTORY "/include/zebldapcfg.h");
    const std::regex extended("CFG_ERR_[A-Z_]+ = ([0-9]+),? +/\\* (.*) \\*/");
    int count = 0;
    for (std::sregex_iterator each(header.begin(), header.end(), extended), end; each != end; ++each, ++count) {
        const bool isReserved = (*each)[2].str().find("(reserved)") != std::string::npos;
        EXPECT_EQ(codes.count(std::stoi((*each)[1])), isReserved ? 0 : 1) << each->str();
    }
    EXPECT_EQ(count, 36);
}
