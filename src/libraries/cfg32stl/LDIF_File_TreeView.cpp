// The outline of the tree.
#include "LDIF_File.h"

#include <set>
#include <string>
#include <utility>

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
    Outline(const Drawing& pieces, const LDIF_Tree& entries) : drawing(pieces), tree(entries)
    {
        auto above = LDIF_Tree::root;
        for (auto entry = next(above); entry != LDIF_Tree::none; entry = next(entry)) {
            for (; above != tree.parent(entry); above = tree.parent(above))
                leave(above);
            enter(entry);
            above = entry;
        }
    }

    std::string text;
    std::set<LDIF_DN> undefined;  // the levels between an entry and its parent in the tree

private:
    LDIF_Tree::Number next(LDIF_Tree::Number entry) const { return tree.nextBelow(entry, LDIF_Tree::root); }

    bool isSuffix(LDIF_Tree::Number entry) const { return tree.parent(entry) == LDIF_Tree::root; }

    void enter(LDIF_Tree::Number entry)
    {
        const LDIF_DN dn = tree.dn(entry);
        LDIF_DN relative = dn;
        relative.removeLeading(tree.levels(tree.parent(entry)));
        if (isSuffix(entry)) {
            text.append("\n").append(drawing.suffix).append(relative.str()).append(" (suffix)\n");
            return;
        }
        const bool isLast = tree.nextSibling(entry) == LDIF_Tree::none;
        if (drawing.connects)
            text.append(prefix).append(drawing.bar).append("\n");
        prefix += isLast ? noBar : drawing.bar;
        text.append(prefix, 0, prefix.size() - 1).append(isLast ? drawing.lastBranch : drawing.branch);
        text.append(relative.str()).append(relative.size() > 1 ? " *\n" : "\n");
        addUndefined(dn, relative.size());
    }

    void leave(LDIF_Tree::Number entry)
    {
        if (!isSuffix(entry))
            prefix.resize(prefix.size() - barSize);
    }

    void addUndefined(LDIF_DN dn, std::size_t levels)
    {
        for (; levels > 1; --levels) {
            dn.pop_back();
            undefined.insert(dn);
        }
    }

    const Drawing& drawing;
    const LDIF_Tree& tree;
    std::string prefix;  // of the lines below the entry at hand
};

}  // namespace

std::string LDIF_File::treeView(bool oem)
{
    tree.followLocale();
    Outline outline(oem ? oem437 : ia5, tree);
    std::string& text = outline.text;
    if (!outline.undefined.empty())
        text += "\n* the following entries are undefined:\n";
    for (const LDIF_DN& dn : outline.undefined) {
        dn.appendTo(text);
        text += '\n';
    }
    return std::move(text);
}
