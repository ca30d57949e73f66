// The reader of whole entries held against the classes: the same text, the same failures, in locales of every kind.
#include "plainTree.h"
#include "support.h"

#include <gtest/gtest.h>
#include <random>
#include <regex>

namespace {

using Texts = std::vector<std::string>;

// A clear password gets another form each time.
std::string withoutEncodings(const std::string& text)
{
    static const std::regex encoded(">1[-A-Za-z0-9_]{6,}<");
    return std::regex_replace(text, encoded, ">...<");
}

// What there is to see of a file after a load and after each change.
template <typename File>
std::string outcomeOfLoad(File& file, const std::string& text)
{
    const auto failure = failureOf([&] { file.load(text); });
    if (!failure)
        return withoutEncodings(outcomeOf([&] { return file.str(); }));
    return std::to_string(failure->ldapErr) + '/' + std::to_string(failure->extErr) + " line " +
           std::to_string(file.lastLine);
}

void expectSame(const std::string& text)
{
    LoadedFile file;
    PlainFile plain;
    const std::string expected = outcomeOfLoad(plain, text);
    EXPECT_EQ(outcomeOfLoad(file, text), expected) << testing::PrintToString(text);
}

// Files of a few entries, mostly as they are written, with something odd here and there.
class RandomText {
public:
    explicit RandomText(unsigned seed) : random(seed) {}

    std::string str()
    {
        const std::string end = draw(10) == 0 ? "\r\n" : "\n";
        std::string text = draw(8) == 0 ? "" : "charset: UTF-8" + end + "version: 1" + end;
        for (auto blocks = draw(10); blocks > 0; --blocks)
            text += (draw(6) == 0 ? "# note" + end : "") + (draw(5) == 0 ? "" : end) + block(end);
        if (draw(8) == 0)
            text.resize(text.find_last_not_of("\r\n") + 1);
        if (draw(12) == 0 && !text.empty())
            text[draw(text.size())] = static_cast<char>(random());
        return inLocale(text).first;
    }

private:
    std::string block(const std::string& end)
    {
        std::string text = (draw(20) == 0 ? "DN:" : "dn: ") + dn() + end;
        Texts lines;
        for (auto count = draw(7); count > 0; --count)
            lines.push_back(line());
        if (draw(3) != 0)
            std::sort(lines.begin(), lines.end(),
                      [](const auto& one, const auto& other) { return cisString(one) < cisString(other); });
        for (const std::string& each : lines)
            text += (draw(12) == 0 ? "# c\u00e4 " + drawFrom(values) + end : "") + each + end;
        return text;
    }

    std::string line()
    {
        if (draw(40) == 0)
            return drawFrom(odd);
        const std::string name = drawFrom(names);
        const bool isDn = name == "zeb-slapdSuffix" || name == "zeb-slapdMasterDN";
        return name + (draw(12) == 0 ? drawFrom({":", ":: ", ":  ", ":("}) : ": ") +
               (isDn && draw(15) != 0 ? dn() : drawFrom(values)) + (draw(40) == 0 ? ") " : "");
    }

    std::string dn()
    {
        std::string text = drawFrom(draw(8) == 0 ? oddRdns : rdns);
        for (auto levels = draw(3); levels > 0; --levels)
            text += (draw(12) == 0 ? drawFrom({",", " ; ", ",  "}) : ", ") + drawFrom(draw(20) == 0 ? oddRdns : rdns);
        return text;
    }

    std::size_t draw(std::size_t below) { return static_cast<std::size_t>(random() % below); }
    std::string drawFrom(const Texts& texts) { return texts[draw(texts.size())]; }

    const Texts rdns{"cn=a", "cn=b", "CN=A", "o=x", "cn=Z\u00fcrich", "cn=z\u00dcrich", "2.5.4.3=q", "l=\u6771\u4eac"};
    const Texts oddRdns{"cn=a+o=b",   "o=b + cn=a",       "cn=d\\, e", "cn=\"d, e\"", "cn=#41",
                        "cn=\\20a",   "cn=\\28a",         "cn=",       "cn=(a)",      "cn=a\\00",
                        "cn=\u3000x", R"(cn=\E3\80\80y)", "cn = a ",   "cn"};
    const Texts names{"cn",     "description",   "zeb-slapdSuffix",   "zeb-slapdSslCipherSpecs",
                      "CN",     "objectclass",   "zeb-slapdMasterDN", "zeb-slapdPwEncryption",
                      "_x",     "zeb-auditBind", "zeb-slapdSetenv",   "zeb-slapdTimeLimit",
                      "a b",    "zeb-slapdPort", "zeb-slapdDbName",   "zeb-slapdAdminPW",
                      "version"};
    const Texts values{
        "a",       "A",       "b",     "389", "007",   "0",    "-1",          "70000",       "16128",
        "255",     "true",    "TRUE",  "sha", ">abc<", "",     "Z\u00fcrich", "z\u00dcrich", "\u6771\u3000\u4eac",
        "\u3000x", "x\u2003", "a (b)", ":a",  "TZ=x",  "tz=X", "secret",      "123456789"};
    const Texts odd{"no colon", ": x",       " folded", "\tfolded",   "dn=x",   "  ",
                    "x: a\rb",  "\u00fc: x", "#",       "x\ty: \x01", "dnx: y", "x"};
    std::mt19937 random;
};

}  // namespace

// Each failure shows the text that was read differently.
class Reader : public testing::TestWithParam<const char*> {};

TEST_P(Reader, ReadsWhatTheClassesRead)
{
    const ScopedLocale scoped(GetParam());
    ASSERT_NE(std::setlocale(LC_CTYPE, GetParam()), nullptr);
    for (unsigned seed = 0; seed < 3000 && !HasFailure(); ++seed)
        expectSame(RandomText(seed).str());
}

TEST_P(Reader, ReadsTheSamplesAsTheClassesDo)
{
    const ScopedLocale scoped(GetParam());
    int count = 0;
    for (const char* const samples : {"/fuzz/corpus/file", "/data/bad-input", "/../examples"})
        for (const auto& each : std::filesystem::directory_iterator(std::string(TESTS) + samples)) {
            expectSame(readText(each.path().string()));
            ++count;
        }
    EXPECT_GT(count, 150);
}

INSTANTIATE_TEST_SUITE_P(Locales, Reader, testing::Values("C", utf8Locale, germanLocale, japaneseLocale),
                         [](const auto& each) {
                             return std::regex_replace(each.param, std::regex("[^A-Za-z0-9]"), "_");
                         });
