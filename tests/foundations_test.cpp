// Failures and their reports, the codes, strings.
#include "LDIF_AttrType.h"
#include "LDIF_ErrorText.h"
#include "LDIF_Exception.h"
#include "LDIF_HashIndex.h"
#include "LDIF_Util.h"
#include "cisString.h"
#include "platform.h"
#include "support.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

static const ScopedLocale utf8;

TEST(Failure, DumpsEachFieldInItsPlace)
{
    const std::string msg = "]\nmsg     bad", ext = "\nextErr 1014: Attribute value in DN is not valid.";
    const std::tuple<void (*)(LDIF_Exception&), std::string, std::string> cases[] = {
        {[](auto& f) { f.msg.clear(); }, "", ext},
        {[](auto& f) { f.extErr = f.ldapErr; }, msg, ""},
        {[](auto& f) { f.extErr = 0; }, msg, ""},
        {[](auto& f) { f.sysErr = 2; }, msg + "\nerrno 2: No such file or directory", ext},
        {[](auto& f) { f.sysErr = 4242, f.sysErrIsWin32 = 1; }, msg + "\nWin32 error 4242: ", ext},
        {[](auto& f) { f.configLine = f.sysErrIsWin32 = 1; }, msg, ext},
        {[](auto& f) { f.configFile = "c.conf"; }, msg, ext + "\nConfig file: c.conf"},
        {[](auto& f) { f.attrType = getAttrType(""); }, msg,
         ext + "\nConstraints for UNKNOWN ATTRIBUTE TYPE\n  Multi-valued"},
    };
    for (const auto& [change, head, tail] : cases) {
        LDIF_Exception failure("dir/a.cpp", 7, 34, 1014, "bad");
        change(failure);
        EXPECT_EQ(failure.dump(), "[dir/a.cpp:7" + head + "\nldapErr 34: " + errorText(34) + tail + '\n');
    }
    EXPECT_EQ(LDIF_Exception("", 7, 1, 1, "").fileStr(), "file?");
    EXPECT_EQ(LDIF_Exception("/\\a", 7, 1, 1, "").fileStr(), "a:7");
}

TEST(Failure, IsCopiedAndWrappedWhole)
{
    const char* const words[] = {"on", "Off", nullptr};
    const _AttrType type = {"size", nullptr, nullptr, nullptr, nullptr, nullptr, words, 0xF0A, -2, 0, false};
    const LDIF_Exception first("a.cpp", 7, 34, 1014, "bad");
    auto cause = std::make_unique<LDIF_Exception>("dir/a.cpp", 7, first);
    std::tie(cause->sysErr, cause->sysErrIsWin32, cause->configLine, cause->attrType) = std::tuple(5, 1, 3, &type);
    std::tie(cause->configFile, cause->entryDn, cause->attribute, cause->value) = std::tuple("f", "cn=x", "at", "9");
    const std::string link = "]\nmsg     bad\nWin32 error 5: " + systemErrorText(5) + "\nldapErr 34: " + errorText(34) +
                             "\nextErr 1014: Attribute value in DN is not valid.\nLine 3 of f\nentry dn: cn=x\n"
                             "attribute: at\nvalue: 9\nConstraints for size\n  Multi-valued\n  min: -2\n  max: 0\n"
                             "  bit mask: 0xF0A\n  enumeration: { on, Off }\n";
    const LDIF_Exception copy(*cause), wrapper("b.cpp", 9, *cause), taken("b.cpp", 9, LDIF_Exception(*cause));
    cause.reset();
    EXPECT_EQ(copy.dump(), "[dir/a.cpp:7" + link + '\n' + first.dump());
    EXPECT_EQ(wrapper.dump(), "[b.cpp:9" + link + '\n' + copy.dump());
    EXPECT_EQ(taken.dump(), wrapper.dump());
    EXPECT_EQ(wrapper.str(), "5: bad\n5: bad\nbad\n");
    std::tie(LDIF_Exception::showSource, LDIF_Exception::showStack) = std::pair(true, false);
    EXPECT_EQ(wrapper.str(), "[b.cpp:9] 5: bad\n");
    EXPECT_EQ(wrapper.dump(), "[b.cpp:9" + link);
    std::tie(LDIF_Exception::showSource, LDIF_Exception::showStack) = std::pair(false, true);
    // A link that destroyed, copied or printed the next by a call of its own would exhaust the stack.
    cause = std::make_unique<LDIF_Exception>(first);
    for (int line = 1; line < 100000; ++line)
        cause = std::make_unique<LDIF_Exception>("a.cpp", line, std::move(*cause));
    const std::string report = LDIF_Exception(*cause).str() + cause->dump();
    EXPECT_EQ(std::count(report.begin(), report.end(), 'm'), 100000);
}

// The manual page has the texts of the other codes; its test compares them.
TEST(Codes, HaveTheirTexts)
{
    std::string reserved;
    for (const int code : {1002, 1005, 1006, 1008, 1009, 1020, 1021, 1022, 1023, 1024, 1025,
                           1026, 1027, 1028, 1029, 1030, 1031, 1032, 1033, 1034, 1035, 1036})
        reserved += cfg_err2string(code) + std::string("\n");
    EXPECT_EQ(
        reserved,
        "Configuration file format is not valid.\nValue is not valid.\nAttribute may not have multiple values.\n"
        "No binary representation is defined for attribute.\n"
        "No string representation is defined for attribute.\nValue is not a valid OID.\n"
        "Value is not a valid tcp/ip domain component.\nValue is not a valid URL.\n"
        "URL protocol is not one of allowable values.\nValue is not a valid kerberos DN.\n"
        "Value is not a valid environment string.\nValue is not a valid filesystem path.\n"
        "One or more directories in path not found.\nDirectory access denied.\nValue is not a valid file name.\n"
        "File not found.\nFile access denied.\nError in plugin directive.\nPlugin library not found.\n"
        "Plugin library could not be loaded.\nCould not load init function from plugin library.\nUnknown error\n");
    for (int code = firstLdapCode; code <= lastLdapCode; ++code) {
        const std::string expected = ldap_err2string(libraryCode(code));  // from a buffer that it may share
        EXPECT_EQ(cfg_err2string(code), expected) << code;
    }
}

TEST(Strings, AreComparedTrimmedAndConverted)
{
    using Row = std::pair<std::string, const char*>;
    for (auto [text, expected] : {Row{"()", ""}, {"\u3000(\u00e9 ", "\u00e9 "}, {"a ", "a "}, {"\t \u3000", ""}})
        EXPECT_EQ(stripLeading(text), expected) << text;
    for (auto [text, expected] : {Row{"()", "("}, {" (", ""}, {"", ""}, {" a b\u00e9)\u3000", " a b\u00e9"}})
        EXPECT_EQ(stripTrailing(text), expected) << text;
    EXPECT_TRUE(cisString("\u00e9") != "\u00c9");
    using Pair = std::tuple<const char*, const char*, const char*>;
    for (const auto& [left, right, digits] : {Pair{"aB", "Ab", "100011"}, {"_", "A", "011010"}, {"b", "A", "010101"}}) {
        EXPECT_EQ(relationsOf(cisString(left), cisString(right)), digits) << left;
        EXPECT_EQ(relationsOf(cisString(left), std::string(right)), digits) << left;
        EXPECT_EQ(relationsOf(cisString(left), right), digits) << left;
    }
    EXPECT_EQ(cisString("a").append(L"xb\u00e9y", 1, 2), "ab\u00e9");
    for (const auto& [text, isExpected] : {std::pair("", true), {" \t\u3000", true}, {"(", false}, {" x", false}})
        EXPECT_EQ(isBlank(text), isExpected) << text;
    EXPECT_EQ(multibyte2wide("a\u00e9\U0001F600" + std::string("\0b", 2)), L"a\u00e9\U0001F600");
    EXPECT_EQ(wide2multibyte(L"a\u00e9\U0001F600" + std::wstring(L"\0b", 2)), "a\u00e9\U0001F600");
    EXPECT_EQ(outcomeOf([] { return wide2multibyte({wchar_t(0xD800)}); }), "163/163 wcstombs() [1]");
    for (std::string bad : {"\xFF", "a\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF0\x9F\x98"})
        EXPECT_EQ(outcomeOf([&] { return stripTrailing(bad); }), "162/162 mbstowcs( " + bad + " ) [1]");
    char byte = 1;
    std::string hex = "2cAbaF09\u0132\u0133";  // whose end is "23" when cut to bytes
    for (const int expected : {0x2C, 0xAB, 0xAF, 0x09})
        EXPECT_EQ(hex2byte(hex, byte) ? static_cast<unsigned char>(byte) : -1, expected);
    for (std::string bad : {hex.c_str(), "", "2", "2g", "G2"})
        EXPECT_EQ(hex2byte(bad, byte) ? -1 : byte, 9) << bad;  // as it was
    EXPECT_EQ(byte2hex(0x0A, byte2hex(0xBF, hex = "x")), "xBF0A");
}

// Few hashes, so that positions stand far from where their hash says and across the end of the table.
TEST(HashIndex, FindsWhatWasAddedAndNotRemoved)
{
    LDIF_HashIndex index;
    std::vector<std::size_t> hashes;  // by position; 0 where it was removed
    std::mt19937 random(1);
    const auto isPresent = [&](std::size_t at) { return hashes[at] != 0; };
    for (int step = 0; step < 1000; ++step) {
        const std::size_t at = hashes.empty() ? 0 : random() % hashes.size();
        if (hashes.size() < 20 || step % 3 == 0) {
            hashes.push_back(~std::size_t{random() % 8});
            index.add(hashes.back(), hashes.size() - 1);
        } else if (isPresent(at) && step % 3 == 1) {
            index.remove(std::exchange(hashes[at], 0), at);
        } else if (isPresent(at) && hashes.size() > 30) {
            index.erase(at);
            hashes.erase(hashes.begin() + static_cast<std::ptrdiff_t>(at));
        }
        for (std::size_t each = 0; each < hashes.size(); ++each) {
            const auto is = [&](std::size_t position) { return position == each; };
            const std::size_t hash = isPresent(each) ? hashes[each] : ~std::size_t{each % 8};
            ASSERT_EQ(index.find(hash, is), isPresent(each) ? each : LDIF_HashIndex::npos) << step;
        }
    }
}
