#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

std::string shown(double number)
{
    if (std::isnan(number))
        return "-";
    if (std::isinf(number))
        return "inf";
    const int magnitude = number < 1 ? 0 : std::min(static_cast<int>(std::log10(number)) + 1, 3);
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.*f", 3 - magnitude, number);
    return text;
}

std::string shown(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t pos = text.size(); pos > 3;)
        text.insert(pos -= 3, ",");
    return text;
}

void printTable(const std::string& title, const std::vector<std::vector<std::string>>& lines)
{
    std::size_t width = 0;
    for (const auto& line : lines)
        width = std::max(width, line.front().size());
    std::printf("\n%s\n", title.c_str());
    for (const auto& line : lines) {
        std::printf("%-*s", static_cast<int>(width), line.front().c_str());
        for (std::size_t i = 1; i < line.size(); ++i)
            std::printf("  %*s", static_cast<int>(std::max<std::size_t>(lines.front()[i].size(), 6)), line[i].c_str());
        std::printf("\n");
    }
    (void)std::fflush(stdout);
}
