// What the tool tells of the attributes is what the library enforces and reports.
#include "base/Attributes.h"
#include "client.h"

#include <gtest/gtest.h>

namespace {

// A value that the attribute must refuse, or the empty text when it takes any.
std::string refusedValue(const AttributeType& type)
{
    switch (type.syntax) {
    case Syntax::number:
        return std::to_string(static_cast<long long>(type.maximum) + 1);
    case Syntax::word:
        return "no such word";
    case Syntax::bits:
        return std::to_string(~type.bits & 0xFFU);
    case Syntax::dn:
        return "no DN";
    default:
        return std::string(type.maximum == 0 ? 0 : static_cast<std::size_t>(type.maximum) + 1, 'x');
    }
}

struct Attributes : testing::Test, FileClient {};

TEST_F(Attributes, TheTableIsTheLibrarys)
{
    EXPECT_EQ(load("dn: cn=a\n"), LDAP_SUCCESS);
    EXPECT_EQ(attributeTypes().size(), 115U);
    for (const AttributeType& type : attributeTypes()) {
        const std::string refused = refusedValue(type);
        const std::string value = refused.empty() ? std::string(5000, 'x') : refused;
        const int code = change(cfg_modify_s, "cn=a", LDAP_MOD_REPLACE, type.name.c_str(), value.c_str());
        EXPECT_EQ(code == LDAP_SUCCESS, refused.empty()) << type.name;
        if (refused.empty())
            continue;
        EXPECT_STREQ(cfg_get_attribute(cfg), type.name.c_str());
        EXPECT_EQ(cfg_get_minimum(cfg), type.minimum) << type.name;
        EXPECT_EQ(cfg_get_maximum(cfg), type.maximum) << type.name;
        EXPECT_EQ(cfg_get_bitmask(cfg), type.bits) << type.name;
        EXPECT_EQ(cfg_get_is_single(cfg) == 1, type.isSingle) << type.name;
        const char* const* word = cfg_get_enum(cfg);
        for (const std::string& each : type.words)
            ASSERT_STREQ(*word++, each.c_str());
        EXPECT_TRUE(word == nullptr || *word == nullptr) << type.name;
    }
}

}  // namespace
