#include "formats/ConfigText.h"

#include "base/Attributes.h"
#include "base/Text.h"

#include <algorithm>
#include <set>

namespace {

constexpr char whiteSpace[] = " \t\v\f";

// The physical lines, without line ends and carriage returns, which the library drops wherever they stand.
std::vector<std::string> physicalLines(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string& line = lines.emplace_back(text, begin, end - begin);
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        begin = end + 1;
    }
    return lines;
}

bool isBlank(const std::string& line)
{
    std::size_t place = 0;
    while (const std::size_t length = blankAt(line, place))
        place += length;
    return place == line.size();
}

ConfigLine readLine(const std::string& text)
{
    ConfigLine line;
    const auto colon = text.find(':');
    line.hasColon = colon != std::string::npos && colon != 0;
    line.name = line.hasColon ? text.substr(0, colon) : text;
    line.isDn = isSameName(line.hasColon ? line.name : line.name.substr(0, 2), "dn");
    const auto value = line.hasColon ? text.find_first_not_of(':', colon) : std::string::npos;
    line.value = value != std::string::npos ? text.substr(value) : "";
    return line;
}

}  // namespace

std::string trimmedValue(const std::string& value)
{
    const std::string dropped = std::string(whiteSpace) + "()";
    const auto first = value.find_first_not_of(dropped);
    return first == std::string::npos ? "" : value.substr(first, value.find_last_not_of(dropped) - first + 1);
}

std::vector<ConfigLine> linesOf(const std::string& text)
{
    const auto physical = physicalLines(text);
    std::vector<ConfigLine> lines;
    int entry = 0;
    for (std::size_t i = 0; i < physical.size(); ++i) {
        if (isBlank(physical[i]))
            entry = 0;
        if (isBlank(physical[i]) || physical[i].front() == '#')
            continue;
        ConfigLine line = readLine(physical[i]);
        line.first = static_cast<int>(i) + 1;
        for (; i + 1 < physical.size() && blankAt(physical[i + 1], 0) != 0; ++i)
            line.value += physical[i + 1].substr(blankAt(physical[i + 1], 0));
        line.last = static_cast<int>(i) + 1;
        line.value = trimmedValue(line.value);
        if (line.isDn)
            entry = line.first;
        line.entry = entry;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<int> linesWithNul(const std::string& text)
{
    std::vector<int> numbers;
    int number = 1;
    for (const char character : text) {
        if (character == '\0' && (numbers.empty() || numbers.back() != number))
            numbers.push_back(number);
        number += character == '\n' ? 1 : 0;
    }
    return numbers;
}

std::vector<std::string> namesIn(const std::string& text)
{
    std::set<std::string> names;
    for (const ConfigLine& line : linesOf(text)) {
        if (!line.isDn && !line.name.empty())
            names.insert(lowerCase(line.name));
    }
    std::vector<std::string> sorted(names.begin(), names.end());
    std::stable_partition(sorted.begin(), sorted.end(), [](const std::string& name) { return name == "charset"; });
    return sorted;
}
