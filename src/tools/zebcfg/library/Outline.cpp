#include "library/Outline.h"

#include "base/Attributes.h"
#include "base/Masking.h"
#include "formats/JsonObject.h"
#include "library/Dn.h"
#include "library/Session.h"

#include <algorithm>
#include <sstream>

namespace {

// The library's outline has five columns for each level, and these marks around the names.
constexpr std::size_t levelWidth = 5;
constexpr std::string_view suffixMark = " (suffix)";
constexpr std::string_view gapMark = " *";

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// A line of the library's outline without its drawing, or false for a line that only connects.
bool readLine(const std::string& line, Node& node)
{
    const auto dash = line.find_first_not_of(" |+");
    if (dash == std::string::npos || line.compare(dash, 2, "- ") != 0)
        return false;
    node.depth = (dash + levelWidth - 1) / levelWidth;
    std::string_view name = std::string_view(line).substr(dash + 2);
    if (node.depth == 0 && endsWith(name, suffixMark))
        name.remove_suffix(suffixMark.size());
    else if (endsWith(name, gapMark) && name.find(',') != std::string_view::npos)
        name.remove_suffix(gapMark.size());
    node.relativeDn = name;
    return true;
}

// Whether another entry of the same level comes after this one.
bool hasSibling(const std::vector<Node>& nodes, std::size_t place)
{
    for (std::size_t i = place + 1; i < nodes.size() && nodes[i].depth >= nodes[place].depth; ++i) {
        if (nodes[i].depth == nodes[place].depth)
            return true;
    }
    return false;
}

struct Pieces {
    const char* branch;
    const char* lastBranch;
    const char* bar;
    const char* blank;
};
constexpr Pieces asciiPieces = {"+-- ", "`-- ", "|   ", "    "};
constexpr Pieces utf8Pieces = {"├── ", "└── ", "│   ", "    "};

// The node at place, which moves after the last one below it.
JsonObject treeOf(const std::vector<Node>& nodes, std::size_t& place)
{
    const Node& node = nodes[place++];
    JsonObject children = JsonObject::array();
    while (place < nodes.size() && nodes[place].depth > node.depth)
        children.push_back(treeOf(nodes, place));
    return {{"dn", shownDn(node.dn)}, {"children", children}};
}

}  // namespace

std::vector<Node> outlineOf(const Session& session)
{
    std::vector<Node> nodes;
    std::vector<std::string> path;
    std::istringstream lines(session.outline());
    Node node;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("* the following", 0) == 0)
            break;
        if (!readLine(line, node))
            continue;
        path.resize(std::min(node.depth, path.size()));
        node.dn = path.empty() ? node.relativeDn : node.relativeDn + ", " + path.back();
        path.push_back(node.dn);
        nodes.push_back(node);
    }
    return nodes;
}

std::vector<Node> below(const std::vector<Node>& nodes, const std::string& dn)
{
    const auto base =
        std::find_if(nodes.begin(), nodes.end(), [&](const Node& node) { return isSameName(node.dn, dn); });
    if (base == nodes.end())
        return {};
    const auto end = std::find_if(base + 1, nodes.end(), [&](const Node& node) { return node.depth <= base->depth; });
    std::vector<Node> part(base, end);
    for (Node& node : part)
        node.depth -= base->depth;
    part.front().relativeDn = part.front().dn;
    return part;
}

std::set<std::string> orphansOf(const std::vector<Node>& nodes)
{
    std::set<std::string> orphans;
    for (const Node& node : nodes) {
        if (!parentOf(node.relativeDn).empty())
            orphans.insert(node.dn);
    }
    return orphans;
}

std::string draw(const std::vector<Node>& nodes, Lines lines)
{
    const Pieces& pieces = lines == Lines::utf8 ? utf8Pieces : asciiPieces;
    std::string drawing;
    std::vector<bool> continues;  // for each level above, whether a sibling comes
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Node& node = nodes[i];
        continues.resize(node.depth);
        for (std::size_t level = 1; level < node.depth; ++level)
            drawing += continues[level] ? pieces.bar : pieces.blank;
        const bool isLast = !hasSibling(nodes, i);
        if (node.depth > 0)
            drawing += isLast ? pieces.lastBranch : pieces.branch;
        drawing += shownDn(node.relativeDn) + '\n';
        continues.push_back(!isLast);
    }
    return drawing;
}

std::string toJson(const std::vector<Node>& nodes)
{
    JsonObject list = JsonObject::array();
    for (std::size_t place = 0; place < nodes.size();)
        list.push_back(treeOf(nodes, place));
    return textOf(list, 2);
}
