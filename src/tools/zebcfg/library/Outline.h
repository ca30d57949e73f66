// The tree of the entries: all of them, also those that no search finds for want of an attribute.
#ifndef ZEBCFG_OUTLINE_H
#define ZEBCFG_OUTLINE_H

#include <set>
#include <string>
#include <vector>

class Session;

struct Node {
    std::string dn;
    std::string relativeDn;  // to the nearest entry above it
    std::size_t depth;       // 0 for an entry without another above it
};

// In the order of the tree, parents first.
std::vector<Node> outlineOf(const Session& session);
// The node with that DN, written as the library writes it but in any case, and those below it, with depths from 0.
std::vector<Node> below(const std::vector<Node>& nodes, const std::string& dn);

// The DNs of entries whose parent is missing.
std::set<std::string> orphansOf(const std::vector<Node>& nodes);

enum class Lines { ascii, utf8 };
std::string draw(const std::vector<Node>& nodes, Lines lines);
// As JSON: the trees, each node with its children.
std::string toJson(const std::vector<Node>& nodes);

#endif
