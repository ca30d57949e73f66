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

// One walk over the tree.
class Outline {
public:
    Outline(const Drawing& pieces, std::set<LDIF_DN>& undefinedDns) : drawing(pieces), undefined(undefinedDns) {}

    void add(const LDIF_Entry& entry, bool isLast, const std::string& prefix)
    {
        const bool isRoot = entry.relativeDn.empty();
        if (!isRoot)
            addLine(entry, isLast, prefix);
        for (const LDIF_Entry& child : entry.children) {
            const bool isLastChild = &child == &entry.children.back();
            if (isRoot) {
                text += '\n';
                add(child, false, prefix);
                continue;
            }
            if (drawing.connects)
                text.append(prefix).append(drawing.bar).append("\n");
            add(child, isLastChild, prefix + (isLastChild ? noBar : drawing.bar));
        }
    }

    std::string text;

private:
    void addLine(const LDIF_Entry& entry, bool isLast, const std::string& prefix)
    {
        if (prefix.empty()) {
            text.append(drawing.suffix).append(entry.relativeDn.str()).append(" (suffix)\n");
            return;
        }
        text.append(prefix, 0, prefix.size() - 1).append(isLast ? drawing.lastBranch : drawing.branch);
        text += entry.relativeDn.str();
        if (entry.relativeDn.size() > 1)
            text += " *";
        text += '\n';
        addUndefined(entry);
    }

    // The levels between the entry and its parent in the tree.
    void addUndefined(const LDIF_Entry& entry)
    {
        LDIF_DN missing = entry.dn;
        for (auto levels = entry.relativeDn.size(); levels > 1; --levels) {
            missing.pop_back();
            undefined.insert(missing);
        }
    }

    const Drawing& drawing;
    std::set<LDIF_DN>& undefined;
};

std::string drawn(const Drawing& drawing, const LDIF_Entry& entry, bool isLast, std::set<LDIF_DN>& undefined,
                  const std::string& prefix)
{
    Outline outline(drawing, undefined);
    outline.add(entry, isLast, prefix);
    return std::move(outline.text);
}

}  // namespace

std::string LDIF_File::treeView(bool oem)
{
    std::set<LDIF_DN> undefined;
    std::string outline = oem ? OEM_TreeView(root, true, undefined, "") : IA5_TreeView(root, undefined, "");
    if (undefined.empty())
        return outline;
    outline += "\n* the following entries are undefined:\n";
    for (const LDIF_DN& dn : undefined) {
        dn.appendTo(outline);
        outline += '\n';
    }
    return outline;
}

std::string LDIF_File::IA5_TreeView(const LDIF_Entry& entry, std::set<LDIF_DN>& undefined, const std::string& prefix)
{
    return drawn(ia5, entry, false, undefined, prefix);
}

std::string LDIF_File::OEM_TreeView(const LDIF_Entry& entry, bool last, std::set<LDIF_DN>& undefined,
                                    const std::string& prefix)
{
    return drawn(oem437, entry, last, undefined, prefix);
}
