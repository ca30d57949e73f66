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

// A line, and how it may be shown.
struct Line {
    std::string text;
    std::string shown;
};

bool operator==(const Line& left, const Line& right)
{
    return left.text == right.text;
}

std::vector<Line> linesOf(const std::string& text)
{
    std::vector<Line> lines;
    std::istringstream in(text);
    bool isHidden = false;  // A line that continues a masked one is masked too.
    for (std::string line; std::getline(in, line);) {
        const bool isContinuation = !line.empty() && (line.front() == ' ' || line.front() == '\t');
        const std::string shown = isContinuation && isHidden ? std::string(" ") + passwordMask : shownLine(line);
        isHidden = shown != line;
        lines.push_back({line, shown});
    }
    if (!text.empty() && text.back() != '\n') {
        lines.back().text += '\n';
        lines.back().shown += "\n\\ No newline at end of file";
    }
    return lines;
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
    dtl::Diff<Line, std::vector<Line>> diff(linesOf(before), linesOf(after));
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
            for (const auto& [line, info] : *lines)
                writer.line(colorOf(info.type), markOf(info.type) + line.shown);
        }
    }
    return writer.out;
}
