#include "Diff.h"

#include "Failure.h"

#include <sstream>
#include <vector>

#include <dtl/dtl.hpp>

namespace {

constexpr char red[] = "\033[31m";
constexpr char green[] = "\033[32m";
constexpr char cyan[] = "\033[36m";
constexpr char bold[] = "\033[1m";
constexpr char plain[] = "\033[0m";

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    if (!text.empty() && text.back() != '\n')
        lines.back() += "\n\\ No newline at end of file";
    return lines;
}

// A line of the file as it may be shown.
std::string masked(const std::string& line)
{
    const auto colon = line.find(':');
    if (colon == std::string::npos)
        return line;
    const auto value = line.find_first_not_of(": \t", colon);
    const std::string text = value == std::string::npos ? "" : line.substr(value);
    const std::string shown = shownValue(line.substr(0, colon), text);
    return shown == text ? line : line.substr(0, value) + shown;
}

// Writes lines with a mark in front and, on a terminal, in a colour.
class Writer {
public:
    explicit Writer(bool colored) : isColored(colored) {}

    void line(const char* color, const std::string& text)
    {
        out += isColored && *color != '\0' ? color + text + plain : text;
        out += '\n';
    }

    std::string out;

private:
    const bool isColored;
};

std::string rangeOf(long long begin, long long count)
{
    return std::to_string(begin) + (count == 1 ? "" : ',' + std::to_string(count));
}

char markOf(dtl::edit_t type)
{
    if (type == dtl::SES_DELETE)
        return '-';
    return type == dtl::SES_ADD ? '+' : ' ';
}

const char* colorOf(dtl::edit_t type)
{
    if (type == dtl::SES_DELETE)
        return red;
    return type == dtl::SES_ADD ? green : "";
}

}  // namespace

std::string unifiedDiff(const std::string& before, const std::string& after, const std::string& shownName,
                        bool isColored)
{
    if (before == after)
        return {};
    dtl::Diff<std::string> diff(linesOf(before), linesOf(after));
    diff.onHuge();
    diff.compose();
    diff.composeUnifiedHunks();
    Writer writer(isColored);
    writer.line(bold, "--- " + shownName);
    writer.line(bold, "+++ " + shownName + " (new)");
    for (const auto& hunk : diff.getUniHunks()) {
        writer.line(cyan, "@@ -" + rangeOf(hunk.b == 0 ? 0 : hunk.a, hunk.b) + " +" +
                              rangeOf(hunk.d == 0 ? 0 : hunk.c, hunk.d) + " @@");
        for (const auto* lines : {&hunk.common[0], &hunk.change, &hunk.common[1]}) {
            for (const auto& [text, info] : *lines)
                writer.line(colorOf(info.type), markOf(info.type) + masked(text));
        }
    }
    return writer.out;
}
