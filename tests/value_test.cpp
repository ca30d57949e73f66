// The attribute types, the value syntaxes, values, lists of values, and the password codec.
#include "LDIF_AttrType.h"
#include "LDIF_Attribute.h"
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Values.h"
#include "PasswordCodec.h"
#include "support.h"

#include <algorithm>
#include <future>
#include <gtest/gtest.h>
#include <random>
#include <regex>

static const ScopedLocale utf8;

static LDIF_Value slapdValue(const std::string& name, const std::string& text)
{
    return LDIF_Value(getAttrType(("zeb-slapd" + name).c_str()), text.c_str());
}

// The manual page of the file holds the limits; its test compares them.
TEST(AttrTypes, AreFoundByNameInAnyCase)
{
    const _AttrType* const otherwise = getAttrType(nullptr);
    EXPECT_EQ(otherwise - _attrMapArray, 115);
    EXPECT_EQ(&syntaxOf(*otherwise), &syntax::ces);
    EXPECT_FALSE(otherwise->isSingle);
    EXPECT_EQ(otherwise->maximum, 0);
    for (const _AttrType* type = _attrMapArray; type != otherwise; ++type) {
        std::string name = type->name;
        EXPECT_EQ(getAttrType(name.c_str()), type);
        std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        EXPECT_EQ(getAttrType(name.c_str()), type) << name;
        EXPECT_EQ(getAttrType(type->name), type);  // as it was found before
    }
    for (const char* unknown : {"", "a", "cn ", "c", "zeb-slapdPorts", "zzz", otherwise->name})
        EXPECT_EQ(getAttrType(unknown), otherwise) << unknown;
}

TEST(AttrTypesDeathTest, MayBeLookedUpByManyThreadsAtFirst)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";  // a process of its own, without a look-up before
    const auto lookUp = [] {
        std::vector<std::future<const _AttrType*>> found(32);
        std::generate(found.begin(), found.end(),
                      [] { return std::async(std::launch::async, [] { return getAttrType("CN"); }); });
        std::exit(std::all_of(found.begin(), found.end(), [](auto& each) { return each.get()->isSingle; }) ? 0 : 1);
    };
    EXPECT_EXIT(lookUp(), testing::ExitedWithCode(0), "");
}

TEST(Value, HoldsWhatItsSyntaxMakesOfTheText)
{
    const std::string badRange = "21/1015 Integer value out of range [2]";
    const std::tuple<std::string, std::string, std::vector<std::string>> cases[] = {
        {"DbName", "", {"A", "ABCDEFGH", " (x) "}},
        {"DbName", "21/1018 zeb-slapdDbName length must be 1 to 8 characters [2]", {"", "ABCDEFG\u00e9"}},
        {"ServerID", "", {"", std::string(1024, 'x')}},
        {"ServerID", "21/1018 zeb-slapdServerID length must be 0 to 1024 characters [2]", {std::string(1025, 'x')}},
        {"SchemaCheck", "", {"none", "v3_LENIENT"}},
        {"ReadOnly", "21/1017 value not one of attrType.enumValues [2]", {"", " true", "tru", "truee"}},
        {"Port", "7", {"  +007\t", "(7)", "( 7 )", "+0000000000000000000000000000007"}},
        {"Port", badRange, {"0", "65536", "-1", "4294967297", "99999999999"}},
        {"Port", "21/1016 Value is not valid integer syntax [2]", {"", "()", "+", "+-5", "- 5", "0x10", "\u0665"}},
        {"SizeLimit", badRange, {"-1", "2147483648"}},
        {"SslCipherSpecs", "", {"0", "256", "16128"}},
        {"SslCipherSpecs", "21/1019 Bits in value are not within bitmask constraint [2]", {"255", "16384", "-1"}},
        {"Suffix", "CN=a, o=c", {"CN=a;o=c", "(CN = a,o=c)"}},
        {"Suffix", "34/1013 Missing RDN value: cn [6]", {"cn"}},
        {"AdminPW", "", {"><", '>' + std::string(500, ' ') + '<'}},
        {"AdminPW", "21/1018 Password length must be 1 to 46 characters [2]", {"", std::string(47, 'x')}},
    };
    for (const auto& [name, outcome, texts] : cases)
        for (const std::string& text : texts) {
            const auto build = [&, type = name] { return slapdValue(type, text).str(); };
            const std::string named = "zeb-slapd" + name + ": " + text;
            SCOPED_TRACE(name + ": " + text);
            EXPECT_EQ(outcomeOf(build), outcome.empty() ? text : outcome);
            const auto failure = failureOf(build);
            EXPECT_EQ(failure ? failure->attribute + ": " + failure->value : "", failure ? named : "");
        }
    _AttrType free = *getAttrType("version");
    free.minimum = free.maximum = 0;
    for (const char* number : {"-2147483648", "2147483647"})
        EXPECT_EQ(LDIF_Value(&free, number).str(), number);
    for (const char* number : {"2147483648", "-2147483649"})
        EXPECT_EQ(outcomeOf([&] { return LDIF_Value(&free, number).str(); }), badRange);
}

// 0 means no limit, and so does a maximum below the minimum; a password keeps its own limits then.
TEST(Value, KeepsTheLimitsOfItsType)
{
    using Row = std::tuple<const char*, const char*, int, int, int, const char*>;
    for (const auto& [name, label, minimum, maximum, size, failure] :
         {Row{"cn", nullptr, 3, 2, 2, "length must be 3 to 0 characters"},
          {"cn", "x", 3, 2, 99, ""},
          {"cn", "x", -1, 0, 0, ""},
          {"cn", nullptr, 0, 2, 3, "length must be 0 to 2 characters"},
          {"zeb-slapdPeerPW", "x", 0, 0, 47, "Password length must be 1 to 46 characters"},
          {"zeb-slapdPeerPW", "x", 3, 2, 2, "Password length must be 3 to 46 characters"},
          {"zeb-slapdPeerPW", "x", 3, 60, 60, ""}}) {
        _AttrType type = *getAttrType(name);
        std::tie(type.name, type.minimum, type.maximum) = std::tuple(label, minimum, maximum);
        const std::string text(static_cast<std::size_t>(size), 'x');
        const auto thrown = failureOf([&] { LDIF_Value(&type, text); });
        EXPECT_EQ(thrown ? thrown->msg : "", failure) << name << size;
    }
    EXPECT_EQ(LDIF_Value(getAttrType("cn"), std::string("a\0b", 3)).str(), "a");
}

TEST(Value, HasABinaryFormWhenItIsANumber)
{
    const std::int32_t seven = 7, bits = 256, strange = 255;
    const std::string noForm = "92/1008 Binary representation undefined for syntax: ces ";
    const std::tuple<const char*, const void*, std::string> cases[] = {
        {"Port", &seven, "7"},
        {"Port", nullptr, "21/1015 Integer value out of range [2]"},
        {"SizeLimit", nullptr, "0"},
        {"SslCipherSpecs", &bits, "256"},
        {"SslCipherSpecs", &strange, "21/1019 Bits in value are not within bitmask constraint [2]"},
        {"DbName", "x", noForm + "[2]"},
        {"DbName", nullptr, ""},
        {"Suffix", "x", noForm + "[3]"},
        {"Suffix", nullptr, ""},
    };
    for (const auto& [name, data, expected] : cases) {
        const auto build = [block = data, type = getAttrType((std::string("zeb-slapd") + name).c_str())] {
            return LDIF_Value(type, block, block != nullptr ? 4 : 0).str();
        };
        EXPECT_EQ(outcomeOf(build), expected) << name;
    }
    int length = 0;
    const LDIF_Value port = slapdValue("Port", "7"), text = slapdValue("DbName", "x");
    EXPECT_EQ(*static_cast<const std::int32_t*>(port.attrType->toBin(port, length)), 7);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(outcomeOf([&]() -> std::string { return text.attrType->toBin(text, length), ""; }), noForm + "[1]");
    EXPECT_EQ(outcomeOf([]() -> std::string { StringSyntaxNotImplemented("x", nullptr, ""); }),
              "92/1009 String representation undefined for syntax: x [1]");
}

TEST(Value, TellsOfATypeThatLacksWhatItNeeds)
{
    const std::int32_t number = 7;
    _AttrType type = *getAttrType("cn");
    const auto built = [&] { return LDIF_Value(&type, "7").str(); };
    const auto builtFrom = [&](const _AttrType* row) { return LDIF_Value(row, &number, 4).str(); };
    type.fromStr = enumFromStr;
    EXPECT_EQ(outcomeOf(built), "80/1000 Enumerated values undefined [2]");
    type.fromStr = maskFromStr;
    type.fromBin = maskFromBin;
    EXPECT_EQ(outcomeOf(built), "80/1000 Bitmask undefined [2]");
    EXPECT_EQ(outcomeOf([&] { return builtFrom(&type); }), "80/1000 Bitmask undefined [2]");
    type.fromStr = cesFromStr;
    type.match = intCompare;
    const LDIF_Value value(&type, "7");
    const auto compared = [&]() -> std::string { return value.compare(value), value.compare("7"), ""; };
    EXPECT_EQ(outcomeOf(compared), "18/1000 integer compare on non-integer value [1]");
    type.match = nullptr;
    EXPECT_EQ(outcomeOf(compared), "80/1000 Invalid LDIF_Value detected: attrType->match == NULL [1]");
    EXPECT_EQ(outcomeOf([&] { return value.compare("7"), ""; }), outcomeOf(compared));
    type.toStr = nullptr;
    EXPECT_EQ(outcomeOf(built), "80/1000 Invalid LDIF_Value detected: attrType->toStr == NULL [1]");
    const std::string illegal = " ) constructor: attrType undefined [1]";
    EXPECT_EQ(outcomeOf([&] { return LDIF_Value(nullptr, "7").str(); }),
              "80/1000 Illegal LDIF_Value( string" + illegal);
    EXPECT_EQ(outcomeOf([&] { return builtFrom(nullptr); }), "80/1000 Illegal LDIF_Value( binary" + illegal);
}

TEST(Value, SharesNothingWithItsCopiesAndCopiesNothingBroken)
{
    LDIF_Value number = slapdValue("Port", "7"), dn = slapdValue("Suffix", "cn=a,o=c");
    const LDIF_Value sameDn(dn), sameNumber(number);
    const auto copied = [&] { return LDIF_Value(number).str(); };
    number.binaryLength = 0;
    EXPECT_EQ(outcomeOf(copied), "80/1000 Invalid LDIF_Value detected: binaryLength < 1 [1]");
    number.binaryValue.reset();
    number.binaryLength = 4;
    EXPECT_EQ(outcomeOf(copied), "80/1000 Invalid LDIF_Value detected: binaryLength != 0 [1]");
    EXPECT_EQ(failureOf(copied)->attribute + failureOf(copied)->value, "zeb-slapdPort7");
    number = dn;
    dn.dnValue.reset();  // as a copy without memory leaves it
    EXPECT_EQ(sameDn.compare(dn), 0);
    EXPECT_EQ(number.compare("CN=a,O=c"), 0);
    EXPECT_EQ(number.binaryLength, 0);
    number = sameNumber;
    EXPECT_EQ(number.compare("07"), 0);
    EXPECT_EQ(sameNumber.compare(number), 0);
    EXPECT_EQ(number.dnValue, nullptr);
}

TEST(Values, HoldNoTwoThatAreEqual)
{
    const std::tuple<const char*, std::vector<std::string>, std::string> cases[] = {
        {"CN", {"ABC", "abc", "", "\u00e9", ""}, "CN: ABC\nCN: \nCN: \u00e9\n"},
        {"x-any", {"abc", "ABC", "abc"}, "x-any: abc\nx-any: ABC\n"},
        {"zeb-slapdAdminDN", {"CN=a;O=b", "cn=A, o=B", "o=b"}, "zeb-slapdAdminDN: CN=a, O=b\nzeb-slapdAdminDN: o=b\n"}};
    for (const auto& [name, texts, expected] : cases) {
        LDIF_Values list(name), copy("");
        for (const std::string& text : texts)
            list += text;
        EXPECT_EQ(((copy = list = std::as_const(list)) += list).str(), expected) << name;
        EXPECT_EQ((copy += LDIF_Values(list)).str(), expected) << name;
        EXPECT_EQ(((list -= texts[0]) -= texts[0]).str(), expected.substr(expected.find('\n') + 1)) << name;
    }
    EXPECT_EQ(slapdValue("Version", "").compare("a"), -1);
    EXPECT_EQ(slapdValue("Version", "a").compare(""), 1);
}

TEST(Values, StayAsTheyWereBeforeTheFailure)
{
    LDIF_Values list("version"), others("cn");
    const auto add = [&](const auto& what) { return outcomeOf([&] { return (list += what).str(); }); };
    const std::string range = "21/1015 Integer value out of range ";
    list -= "9";  // an empty list takes any text
    EXPECT_EQ(add("9"), range + "[3]");
    EXPECT_EQ(add("01"), "version: 1\n");
    EXPECT_EQ(outcomeOf([&] { return (list -= "9").str(); }), range + "[3]");
    EXPECT_EQ(add((others += "1") += "9"), range + "[4]");
    EXPECT_EQ(outcomeOf([&] { return (list += LDIF_Values(others)).str(); }), range + "[4]");
    EXPECT_EQ(list.str(), "version: 1\n");
    others.attrType = list.attrType;
    EXPECT_EQ(outcomeOf([&] { return (list = others).str(); }), range + "[5]");
    EXPECT_EQ(list.str(), "cn: 1\n");
}

TEST(Values, FindTheSameInLongListsAsOneByOne)
{
    for (const char* name : {"x", "zeb-slapdReferral", "zeb-slapdSizeLimit", "zeb-slapdSuffix"}) {
        std::mt19937 random(1);
        LDIF_Values list(name);
        std::vector<std::string> plain;
        for (int step = 0; step < 2700; ++step) {  // at the end the list is long
            const auto number = std::to_string(random() % (step % 600 < 300 ? 90 : 40));
            const std::string text = name == std::string("zeb-slapdSizeLimit") ? "0" + number : "cn=" + number;
            const std::string kept = name == std::string("zeb-slapdSizeLimit") ? number : text;
            const auto present = std::find(plain.begin(), plain.end(), kept);
            ASSERT_EQ(list.find(text) == list.data() + (present - plain.begin()), true) << name << step;
            if (random() % 2 == 0) {
                list += text;
                if (present == plain.end())
                    plain.push_back(kept);
            } else {
                list -= text;
                if (present != plain.end())
                    plain.erase(present);
            }
            ASSERT_EQ(list.size(), plain.size()) << name << step;
        }
        std::vector<std::string> gone = {"cn=0", "7", "cn=5", "07", "7", "cn=0", "no, DN", "cn=8", "9"};
        LDIF_Values atOnce = list;
        const std::string refused = outcomeOf([&] { return (atOnce -= gone).str(); });
        EXPECT_EQ(refused, outcomeOf([&] {
                      for (const std::string& text : gone)
                          list -= text;
                      return list.str();
                  }));
        EXPECT_EQ(atOnce.str(), list.str());
        for (const LDIF_Value& value : atOnce)
            ASSERT_EQ(atOnce.find(value.str()), &value) << value.str();
    }
}

TEST(Values, KnowNoShortCutForATypeMadeByHand)
{
    _AttrType type = *getAttrType("cn");
    type.match = [](const LDIF_Value& left, const LDIF_Value& right) {
        return static_cast<int>(left.str().size()) - static_cast<int>(right.str().size());
    };
    LDIF_Values list("cn");
    list.attrType = &type;
    for (int number = 0; number < 100; ++number)
        list += std::string(static_cast<std::size_t>(number % 50), number < 50 ? 'a' : 'b');
    EXPECT_EQ(list.size(), 50U);
}

// A value that cannot be decoded fails what looks behind it, and nothing else.
TEST(Values, FindPasswordsInLongListsAsOneByOne)
{
    LDIF_Values list("zeb-slapdAdminPW");
    for (int number = 0; number < 80; ++number)
        list.emplace_back(list.attrType, number == 60 ? ">x<" : std::to_string(number));
    for (const char* text : {"0", "59", ">x<", "61", "79", "80", "0000000000000000000000000000000000000000000000"}) {
        const auto oneByOne = [&] {
            const LDIF_Value value(list.attrType, text);
            const auto isEqual = [&](const LDIF_Value& each) { return each.compare(value) == 0; };
            return std::to_string(std::find_if(list.begin(), list.end(), isEqual) - list.begin());
        };
        EXPECT_EQ(outcomeOf([&] { return std::to_string(list.find(text) - list.data()); }), outcomeOf(oneByOne))
            << text;
    }
    list -= "7";
    EXPECT_EQ(outcomeOf([&] { return (list -= ">x<").str(); }), "202/202 _pwcodec_decode_buffer( right ); [2]");
    list.erase(list.begin() + 59);
    list += "8";
    EXPECT_EQ(list.find("79") - list.data(), 77);
    EXPECT_EQ((list += "7").size(), 79U);
}

// Blocks of one entry with few names and with many, before, between and beyond those that are there.
TEST(Attributes, AreMergedAsOneByOne)
{
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 60; ++size) {
        LDIF_Attributes merged, oneByOne, other;
        for (auto* list : {&merged, &other})
            for (std::size_t count = 0; count < size; ++count) {
                const std::string number = std::to_string(random() % 50);
                const std::string name = (random() % 2 == 0 ? "a" : random() % 2 == 0 ? "A" : "\u00e9") + number;
                LDIF_Attribute attribute(name, number);
                attribute.comment.lines.emplace_back().value = "# " + name;
                *list += attribute;
            }
        oneByOne = merged;
        for (const LDIF_Attribute& attribute : other)
            oneByOne += attribute;
        EXPECT_EQ((merged += other).str(), oneByOne.str()) << size;
        EXPECT_EQ((merged += merged).str(), oneByOne.str()) << size;
    }
}

TEST(Values, MoveInAsTheyAre)
{
    LDIF_Values list("zeb-slapdAdminPW"), others("zeb-slapdAdminPW");
    list += "a";
    (others += "a") += "b";
    const std::string kept = list[0].str(), moved = others[1].str();
    list += std::move(others);
    EXPECT_EQ(list.str(), "zeb-slapdAdminPW: " + kept + "\nzeb-slapdAdminPW: " + moved + '\n');
    LDIF_Values undecodable("zeb-slapdAdminPW");
    undecodable += ">x<";
    const auto failure = failureOf([&] { list += std::move(undecodable); });
    EXPECT_EQ(failure->msg + failure->value, "_pwcodec_decode_buffer( right );>x<");
    EXPECT_EQ(list.size(), 2U);
}

TEST(Password, IsComparedInClearAndDecodedOnlyAsItWasEncoded)
{
    const LDIF_Value value = slapdValue("AdminPW", "Secret"), empty(value.attrType, nullptr, 0);
    for (const auto& [text, isEqual] : {std::pair(std::string("Secret"), true), {"secret", false}, {value.str(), true}})
        EXPECT_EQ(value == text, isEqual) << text;
    EXPECT_EQ(empty.compare(empty), 0);
    EXPECT_EQ(empty.compare(value), -1);
    EXPECT_EQ(value.compare(empty), 1);
    EXPECT_EQ(failureOf([&] { value.compare(">x<"); })->msg, "_pwcodec_decode_buffer( right );");
    ClearText decoded;
    for (const std::string& clear : {std::string("a <\u00e9>\n"), std::string(46, '\xFF')}) {
        std::string text, again;
        EXPECT_EQ(encodePassword(clear, text), 0);
        EXPECT_EQ(encodePassword(clear, again), 0);
        EXPECT_NE(text, again);
        EXPECT_EQ(decodePassword(text, decoded), 0) << text;
        EXPECT_EQ(decoded.get(), clear) << text;
        EXPECT_LE(text.size(), 200U);
        EXPECT_TRUE(std::regex_match(text, std::regex(">[^ ]*<"))) << text;
        ++again[again.size() - 2];  // now with bits that belong to no byte
        EXPECT_EQ(decodePassword(again, decoded), PWCODEC_FORMAT) << again;
        for (std::size_t at = 0; at + 2 < text.size(); ++at) {
            EXPECT_EQ(decodePassword(text.substr(0, at), decoded), PWCODEC_FORMAT) << at;
            again = text.substr(0, at) + (text[at] == 'A' ? 'B' : 'A') + text.substr(at + 1);
            EXPECT_EQ(decodePassword(again, decoded), at < 2 ? PWCODEC_FORMAT : PWCODEC_CHECKSUM) << again;
        }
    }
    for (const char* foreign : {"><", ">1<", ">1AAAA<", ">1AAAAAAAAAAAAAAA<", ">1AAAAAAAAAAAAAAAA AAAA<"})
        EXPECT_EQ(decodePassword(foreign, decoded), PWCODEC_FORMAT) << foreign;
}
