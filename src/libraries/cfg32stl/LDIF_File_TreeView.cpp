// The outline of the tree.
#include "LDIF_File.h"

namespace {

// The pieces of one drawing.
struct Drawing {
    const char* suffix;      // in front of a child of the root
    const char* branch;      // in front of an entry that has a sibling behind it
    const char* lastBranch;  // in front of the last child
    const char* bar;         // added to the prefix below an entry that has a sibling behind it
    bool connects;           // a line of its own leads to each child
};

constexpr Drawing ia5 = {"- ", "+- ", "+- ", "    |", true};
constexpr Drawing oem437 = {"\xC4 ", "\xC3\xC4 ", "\xC0\xC4 ", "    \xB3", false};
constexpr char noBar[] = "     ";
constexpr std::size_t barSize = sizeof noBar - 1;

// One walk over the tree, in a loop, for a tree may be deep.
class Outline {
public:
    Outline(const Drawing& pieces, const LDIF_Tree& entries, std::set<LDIF_DN>& undefinedDns)
        : drawing(pieces), tree(entries), undefined(undefinedDns)
    {}

    // An entry and all below it. prefix stands in front of its line.
    void add(LDIF_Tree::Number top, bool isLast, const std::string& topPrefix)
    {
        prefix = topPrefix;
        if (top != LDIF_Tree::root)
            addLine(top, isLast);
        for (auto entry = top; entry != LDIF_Tree::none;) {
            if (tree.firstChild(entry) != LDIF_Tree::none) {
                entry = tree.firstChild(entry);
            } else {
                for (; entry != top && tree.nextSibling(entry) == LDIF_Tree::none; entry = tree.parent(entry))
                    leave(entry);
                if (entry == top)
                    return;
                leave(entry);
                entry = tree.nextSibling(entry);
            }
            enter(entry);
        }
    }

    std::string text;

private:
    void enter(LDIF_Tree::Number entry)
    {
        if (isSuffix(entry)) {
            text += '\n';
            return addLine(entry, false);
        }
        const bool isLast = tree.nextSibling(entry) == LDIF_Tree::none;
        if (drawing.connects)
            text.append(prefix).append(drawing.bar).append("\n");
        prefix += isLast ? noBar : drawing.bar;
        addLine(entry, isLast);
    }

    void leave(LDIF_Tree::Number entry)
    {
        if (!isSuffix(entry))
            prefix.resize(prefix.size() - barSize);
    }

    bool isSuffix(LDIF_Tree::Number entry) const { return tree.parent(entry) == LDIF_Tree::root; }

    void addLine(LDIF_Tree::Number entry, bool isLast)
    {
        const LDIF_DN dn = tree.dn(entry);
        LDIF_DN relative = dn;
        relative.removeLeading(tree.levels(tree.parent(entry)));
        if (prefix.empty()) {
            text.append(drawing.suffix).append(relative.str()).append(" (suffix)\n");
            return;
        }
        text.append(prefix, 0, prefix.size() - 1).append(isLast ? drawing.lastBranch : drawing.branch);
        text += relative.str();
        if (relative.size() > 1)
            text += " *";
        text += '\n';
        addUndefined(dn, relative.size());
    }

    // The levels between an entry and its parent in the tree.
    void addUndefined(LDIF_DN dn, std::size_t levels)
    {
        for (; levels > 1; --levels) {
            dn.pop_back();
            undefined.insert(dn);
        }
    }

    const Drawing& drawing;
    const LDIF_Tree& tree;
    std::set<LDIF_DN>& undefined;
    std::string prefix;
};

}  // namespace

std::string LDIF_File::treeView(bool oem)
{
    tree.followLocale();
    std::set<LDIF_DN> undefined;
    std::string outline =
        oem ? OEM_TreeView(LDIF_Tree::root, true, undefined, "") : IA5_TreeView(LDIF_Tree::root, undefined, "");
    if (undefined.empty())
        return outline;
    outline += "\n* the following entries are undefined:\n";
    for (const LDIF_DN& dn : undefined) {
        dn.appendTo(outline);
        outline += '\n';
    }
    return outline;
}

std::string LDIF_File::IA5_TreeView(LDIF_Tree::Number entry, std::set<LDIF_DN>& undefined,
                                    const std::string& prefix) const
{
    Outline outline(ia5, tree, undefined);
    outline.add(entry, false, prefix);
    return std::move(outline.text);
}

std::string LDIF_File::OEM_TreeView(LDIF_Tree::Number entry, bool last, std::set<LDIF_DN>& undefined,
                                    const std::string& prefix) const
{
    Outline outline(oem437, tree, undefined);
    outline.add(entry, last, prefix);
    return std::move(outline.text);
}
