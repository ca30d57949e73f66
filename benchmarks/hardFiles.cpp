#include "hardFiles.h"

#include "firstLoad.h"
#include "references.h"
#include "table.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <iterator>

namespace {

constexpr char listEntry[] = "dn: cn=List\nobjectclass: list\n";

constexpr std::size_t highest = 999999;

// Of six digits, so that the texts sort as the numbers.
std::string digits(std::size_t number)
{
    char text[32];
    (void)std::snprintf(text, sizeof text, "%06zu", number);
    return text;
}

// The text that begins with start and goes on with part(0), part(1) ... until it has that many bytes.
template <typename Part>
std::string textOf(std::size_t bytes, std::string text, Part part)
{
    for (std::size_t i = 0; text.size() < bytes; ++i)
        text += part(i);
    return text;
}

std::string commentedValues(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "#\na: " + digits(i) + '\n'; });
}

std::string sameDn(std::size_t bytes)
{
    return textOf(bytes, "", [](std::size_t) { return "#\ndn: cn=A\n\n"; });
}

// The names of the second block come before those of the first, in falling order.
std::string twoBlocks(std::size_t bytes)
{
    const auto block = [&](const char* initial) {
        return textOf(bytes / 2, "dn: cn=List\n",
                      [&](std::size_t i) { return initial + digits(highest - i) + ": x\n"; }) +
               '\n';
    };
    return block("b") + block("a");
}

std::string clearPasswords(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "zeb-slapdPeerPW: p" + digits(i) + '\n'; });
}

// In falling order, so that each goes before all others.
std::string pairsOfRdn(std::size_t bytes)
{
    return textOf(bytes, "dn: cn=List", [](std::size_t i) { return "+a" + digits(highest - i) + "=x"; }) +
           "\ncn: List\n";
}

std::string risingNames(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "öl" + digits(i) + ": x\n"; });
}

std::string fallingNames(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "öl" + digits(highest - i) + ": x\n"; });
}

// Texts that collide in a hash without a key, which begins with 0 and goes on for each byte with
// hash = (hash ^ byte) * 0x100000001B3 and hash ^= hash >> 29. After "cn" and a NUL either word of a pair leads to the
// same 64 bits, and so do all texts of one word from each pair; the words of the last pair agree in the lower 32 bits,
// with a NUL after them. A search through some 2^31 words gives a pair. Under a hash with a key these texts are like
// any others.
constexpr struct {
    const char* words[2];
} collidingPairs[] = {
    {{"x8iu7zb", "8bglxu9"}}, {{"hrsrdep", "h8n7v03"}}, {{"euwlv2e", "vrgcwgz"}}, {{"faer0qa", "urmyya9"}},
    {{"tkgbi2a", "3vkpyz9"}}, {{"an2tjfa", "ms6fom9"}}, {{"h0ensfd", "m2jf1ay"}}, {{"dab7sia", "x56dn53"}},
    {{"qtgwvra", "5kw00ct"}}, {{"oe46eaa", "60z1i8i"}}, {{"eo3fyta", "kjseg10"}}, {{"r3tkf9a", "9xaa868"}},
    {{"kpqu5kp", "npafot8"}}, {{"b4kaaaa", "3raaaaa"}},
};

// There are 2^14 of them.
std::string collidingText(std::size_t number)
{
    std::string text;
    for (const auto& pair : collidingPairs) {
        text += pair.words[number % 2];
        number /= 2;
    }
    return text;
}

std::string collidingValues(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "zeb-slapdSuffix: cn=" + collidingText(i) + '\n'; });
}

std::string collidingDns(std::size_t bytes)
{
    return textOf(bytes, "", [](std::size_t i) { return "dn: cn=" + collidingText(i) + "\n\n"; });
}

// The size in bytes is the smallest of three.
const struct Kind {
    const char* name;
    std::string (*make)(std::size_t bytes);
    std::size_t bytes;
} kinds[] = {
    {"comment before each value", commentedValues, 69000},
    {"same DN, with comments", sameDn, 62000},
    {"two blocks of many names", twoBlocks, 156000},
    {"clear passwords", clearPasswords, 20000},
    {"pairs of one RDN", pairsOfRdn, 84000},
    {"names beyond ASCII, rising", risingNames, 171000},
    {"names beyond ASCII, falling", fallingNames, 171000},
    {"colliding values", collidingValues, 270000},
    {"colliding DNs", collidingDns, 270000},
};

std::pair<double, double> measureFile(const std::string& file, const std::string& text, const Effort& effort)
{
    writeBytes(file, text);
    Samples samples;
    repeat(effort, [&] { samples.add(firstLoad(file).load); });
    require(readText(file) == text, "a load that leaves the file alone");
    return {static_cast<double>(text.size()), samples.median()};
}

}  // namespace

double HardFile::usPerByte() const
{
    double most = 0;
    for (const auto& [bytes, time] : points)
        most = std::max(most, time * 1e6 / bytes);
    return most;
}

std::vector<HardFile> measureHardFiles(const Effort& effort)
{
    const TempDirectory directory;
    std::vector<HardFile> files;
    for (const Kind& kind : kinds) {
        files.push_back({kind.name, {}});
        for (std::size_t bytes = kind.bytes; bytes <= 4 * kind.bytes; bytes *= 2)
            files.back().points.push_back(
                measureFile(directory / "hard.conf", "charset: UTF-8\nversion: 1\n\n" + kind.make(bytes), effort));
    }
    return files;
}

void printHardFiles(const std::vector<HardFile>& files)
{
    std::vector<std::vector<std::string>> lines{
        {"first load of", "KB", "ms", "ms, 2 x KB", "ms, 4 x KB", "us/B", "exponent"}};
    for (const HardFile& each : files) {
        lines.push_back({each.kind, shown(each.points.front().first / 1e3)});
        for (const auto& [bytes, time] : each.points)
            lines.back().push_back(shown(time * 1e3));
        lines.back().push_back(shown(each.usPerByte()));
        lines.back().push_back(shown(each.exponent()));
    }
    printTable("Hard files: us/B is that of the worst size", lines);
}
