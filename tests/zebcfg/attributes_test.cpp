// What the tool tells of the attributes is what the library enforces and reports.
#include "base/Attributes.h"
#include "support.h"

#include <gtest/gtest.h>
#include <zebldapcfg.h>

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

class Attributes : public testing::Test {
protected:
    Attributes()
    {
        writeText(directory / "file", "dn: cn=a\n");
        cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, (directory / "file").c_str());
        EXPECT_EQ(cfg_bind_s(cfg, nullptr, nullptr, static_cast<int>(LDAP_AUTH_SIMPLE)), LDAP_SUCCESS);
    }
    ~Attributes() override { cfg_unbind(cfg); }

    int replace(std::string name, std::string value)
    {
        char* values[] = {value.data(), nullptr};
        LDAPMod mod = {LDAP_MOD_REPLACE, name.data(), {values}};
        LDAPMod* mods[] = {&mod, nullptr};
        return cfg_modify_s(cfg, "cn=a", mods);
    }

    std::vector<std::string> reportedWords()
    {
        std::vector<std::string> words;
        for (const char* const* word = cfg_get_enum(cfg); word != nullptr && *word != nullptr; ++word)
            words.emplace_back(*word);
        return words;
    }

    const TempDirectory directory;
    CFG* const cfg = cfg_init();
};

TEST_F(Attributes, TheTableIsTheLibrarys)
{
    EXPECT_EQ(attributeTypes().size(), 115U);
    for (const AttributeType& type : attributeTypes()) {
        const std::string refused = refusedValue(type);
        if (refused.empty()) {
            EXPECT_EQ(replace(type.name, std::string(5000, 'x')), LDAP_SUCCESS) << type.name;
            continue;
        }
        EXPECT_NE(replace(type.name, refused), LDAP_SUCCESS) << type.name;
        EXPECT_STREQ(cfg_get_attribute(cfg), type.name.c_str());
        EXPECT_EQ(cfg_get_minimum(cfg), type.minimum) << type.name;
        EXPECT_EQ(cfg_get_maximum(cfg), type.maximum) << type.name;
        EXPECT_EQ(cfg_get_bitmask(cfg), type.bits) << type.name;
        EXPECT_EQ(cfg_get_is_single(cfg) == 1, type.isSingle) << type.name;
        EXPECT_EQ(reportedWords(), type.words) << type.name;
    }
}

}  // namespace
