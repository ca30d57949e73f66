#include "hardFiles.h"

#include "firstLoad.h"
#include "references.h"
#include "table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <random>

namespace {

constexpr std::uint64_t seed = 509;
constexpr char listEntry[] = "dn: cn=List\nobjectclass: list\n";

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
    return textOf(bytes, listEntry, [](std::size_t i) { return "# note " + digits(i) + "\na: " + digits(i) + '\n'; });
}

std::string sameDn(std::size_t bytes)
{
    return textOf(bytes, "", [](std::size_t i) { return "# note " + digits(i) + "\ndn: cn=Same\n\n"; });
}

// The names of the second block come before those of the first, in falling order.
std::string twoBlocks(std::size_t bytes)
{
    const auto block = [&](const char* initial) {
        std::vector<std::string> names;
        std::string text = "dn: cn=List\n";
        return textOf(bytes / 2, "dn: cn=List\n",
                      [&](std::size_t i) { return initial + digits(999999 - i) + ": x\n"; }) +
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
    return textOf(bytes, "dn: cn=List", [](std::size_t i) { return "+a" + digits(999999 - i) + "=x"; }) +
           "\ncn: List\n";
}

std::string namesBeyondAscii(std::size_t bytes)
{
    return textOf(bytes, listEntry, [](std::size_t i) { return "größe" + digits(999999 - i) + ": x\n"; });
}

std::string collidingText(std::size_t number)
{
    return digits(number);
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
    {"names beyond ASCII", namesBeyondAscii, 171000},
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
        for (const std::size_t times : {1, 2, 4})
            files.back().points.push_back(measureFile(
                directory / "hard.conf", "charset: UTF-8\nversion: 1\n\n" + kind.make(times * kind.bytes), effort));
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
