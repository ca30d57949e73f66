#include "formats/ConfigText.h"

#include "base/Attributes.h"
#include "base/Text.h"

#include <algorithm>
#include <set>

namespace {

bool isBlank(std::string_view line)
{
    std::size_t place = 0;
    while (const std::size_t length = blankAt(line, place))
        place += length;
    return place == line.size();
}

ConfigLine readLine(std::string_view text)
{
    ConfigLine line;
    const auto colon = text.find(':');
    line.hasColon = colon != std::string_view::npos && colon != 0;
    line.name = line.hasColon ? text.substr(0, colon) : text;
    line.isDn = isSameName(line.hasColon ? line.name : line.name.substr(0, 2), "dn");
    const auto value = line.hasColon ? text.find_first_not_of(':', colon) : std::string_view::npos;
    line.value = value != std::string_view::npos ? text.substr(value) : "";
    return line;
}

}  // namespace

std::string_view trimmedValue(std::string_view value)
{
    constexpr std::string_view dropped = " \t\v\f()";
    const auto first = value.find_first_not_of(dropped);
    return first == std::string_view::npos ? "" : value.substr(first, value.find_last_not_of(dropped) - first + 1);
}

std::string_view ConfigLines::takeLine(std::string_view& rest)
{
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.find('\r') == std::string_view::npos)
        return line;
    std::string& cleaned = kept.emplace_back(line);
    cleaned.erase(std::remove(cleaned.begin(), cleaned.end(), '\r'), cleaned.end());
    return cleaned;
}

std::string_view ConfigLines::joined(std::string_view value, std::string_view& rest, int& number)
{
    if (rest.empty() || (rest.front() != '\r' && blankAt(rest, 0) == 0))
        return value;
    std::string& whole = kept.emplace_back(value);
    for (std::string_view after = rest; !rest.empty(); rest = after, ++number) {
        const std::string_view line = takeLine(after);
        const std::size_t lead = blankAt(line, 0);
        if (lead == 0)
            break;
        whole += line.substr(lead);
    }
    return whole;
}

ConfigLines::ConfigLines(const std::string& text)
{
    constexpr std::size_t usualLine = 32;
    lines.reserve(text.size() / usualLine);
    int entry = 0;
    int number = 1;
    for (std::string_view rest = text; !rest.empty(); ++number) {
        const std::string_view physical = takeLine(rest);
        const bool isEmpty = isBlank(physical);
        if (isEmpty)
            entry = 0;
        if (isEmpty || physical.front() == '#')
            continue;
        ConfigLine& line = lines.emplace_back(readLine(physical));
        line.first = number;
        line.value = trimmedValue(joined(line.value, rest, number));
        line.last = number;
        if (line.isDn)
            entry = line.first;
        line.entry = entry;
    }
}

std::vector<int> linesWithNul(const std::string& text)
{
    std::vector<int> numbers;
    int number = 1;
    std::size_t counted = 0;  // the bytes whose line ends are in the number
    for (auto place = text.find('\0'); place != std::string::npos; place = text.find('\0', place + 1)) {
        number += static_cast<int>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                              text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
        counted = place;
        if (numbers.empty() || numbers.back() != number)
            numbers.push_back(number);
    }
    return numbers;
}

std::vector<std::string> namesIn(const std::string& text)
{
    std::set<std::string> names;
    for (const ConfigLine& line : linesOf(text)) {
        if (!line.isDn && !line.name.empty())
            names.insert(lowerCase(std::string(line.name)));
    }
    std::vector<std::string> sorted(names.begin(), names.end());
    std::stable_partition(sorted.begin(), sorted.end(), [](const std::string& name) { return name == "charset"; });
    return sorted;
}
