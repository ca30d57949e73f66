// The configuration file by the plain steps: each entry an object that owns its children, found by walking. What
// LDIF_Tree with its reader and its loader is held against.
#ifndef PLAINTREE_H
#define PLAINTREE_H

#include "LDIF_Entry.h"
#include "LDIF_Exception.h"
#include "LDIF_LineSource.h"
#include "LDIF_Loader.h"
#include "LDIF_Tree.h"
#include "support.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct PlainTree {
    LDIF_Entry entry;
    LDIF_DN relativeDn;  // below the parent
    std::vector<PlainTree> children;

    static bool isAtOrAbove(const LDIF_DN& ancestor, const LDIF_DN& dn)
    {
        return ancestor.intersection(dn) == ancestor;
    }

    // Hangs a child where it belongs; its relativeDn is relative to the parent of this one.
    void place(PlainTree child)
    {
        child.relativeDn -= relativeDn;
        if (child.relativeDn.empty())
            return merge(std::move(child));
        for (PlainTree& each : children)
            if (isAtOrAbove(each.relativeDn, child.relativeDn))
                return each.place(std::move(child));
        const auto stays = [&](const PlainTree& each) { return !isAtOrAbove(child.relativeDn, each.relativeDn); };
        const auto adopted = std::stable_partition(children.begin(), children.end(), stays);
        for (auto each = adopted; each != children.end(); ++each) {
            each->relativeDn -= child.relativeDn;
            child.children.push_back(*each);
        }
        children.erase(adopted, children.end());
        children.push_back(std::move(child));
    }

    void merge(PlainTree&& other)
    {
        entry.comment += other.entry.comment;
        for (const LDIF_Attribute& attribute : other.entry.attributes)
            entry += attribute;
    }

    PlainTree* find(LDIF_DN dn)
    {
        if (relativeDn == dn)
            return this;
        if (!isAtOrAbove(relativeDn, dn))
            return nullptr;
        dn -= relativeDn;
        for (PlainTree& each : children)
            if (PlainTree* const found = each.find(dn))
                return found;
        return nullptr;
    }

    bool erase(const LDIF_DN& dn)
    {
        const auto gone =
            std::find_if(children.begin(), children.end(), [&](const PlainTree& each) { return each.entry.dn == dn; });
        if (gone == children.end())
            return std::any_of(children.begin(), children.end(), [&](PlainTree& each) { return each.erase(dn); });
        children.erase(gone);
        return true;
    }

    std::string str() const
    {
        std::string text = entry.str();
        const auto opensWithBlank = [](const LDIF_Comment& comment) {
            return !comment.lines.empty() && comment.lines[0].type == LDIF_Line::blankLine;
        };
        if (entry.name.empty() && !children.empty() && !opensWithBlank(children[0].entry.comment))
            text += '\n';
        for (const PlainTree& each : children)
            text += each.str();
        return text;
    }
};

struct PlainFile {
    PlainTree tree;
    LDIF_Comment comment;
    int lastLine = 0;

    // Throws LDIF_Exception as a load does.
    void load(const std::string& text)
    {
        LDIF_TextSource source(text);
        LDIF_Line line;
        while (next(source, line))
            take(line);
        close();
        while (!comment.lines.empty() && comment.lines.back().type == LDIF_Line::blankLine)
            comment.lines.pop_back();
    }

    std::string str() const { return tree.str() + comment.str(); }

private:
    bool next(LDIF_TextSource& source, LDIF_Line& line)
    {
        ++lastLine;
        lastLine = line.next(source, lastLine - 1);
        if (!line.wellFormed)
            line.changeToInvalidAttr();
        return line.type != LDIF_Line::endOfFile;
    }

    void take(LDIF_Line& line)
    {
        if (line.type == LDIF_Line::dn) {
            close();
            addDefault("charset", "ISO-8859-1", seenCharset);
            addDefault("version", "1", seenVersion);
            current.emplace(line, std::exchange(comment, LDIF_Comment()));
        } else if (line.type == LDIF_Line::attribute) {
            takeAttribute(line);
        } else if (line.type == LDIF_Line::blankLine && current) {
            close();
        } else {
            comment += line;
        }
    }

    // A refused line leaves the comment to the attribute that it becomes.
    void takeAttribute(LDIF_Line& line)
    try {
        const LDIF_Attribute attribute(line, comment);
        if (current)
            addToEntry(attribute);
        else if (attribute == "version" || attribute == "charset")
            addOnce(attribute, attribute == "version" ? seenVersion : seenCharset);
        else
            throw LDIF_Exception(65, 1007, "not allowed");
        comment.clear();
    } catch (const LDIF_Exception& failure) {
        if (failure.ldapErr == 65)
            throw;
        line.changeToInvalidAttr();
        takeAttribute(line);
    }

    // All of it, or nothing.
    void addToEntry(const LDIF_Attribute& attribute)
    {
        LDIF_Entry changed = *current;
        changed += attribute;
        current.emplace(std::move(changed));
    }

    void addOnce(const LDIF_Attribute& attribute, bool& seen)
    {
        if (std::exchange(seen, true))
            throw LDIF_Exception(19, 1006, "twice");
        tree.entry += attribute;
    }

    void addDefault(const char* name, const char* value, bool& seen)
    {
        if (std::exchange(seen, true))
            return;
        LDIF_Attribute attribute(name, value);
        attribute += std::exchange(comment, LDIF_Comment());
        tree.entry += attribute;
    }

    void close()
    {
        if (current)
            tree.place({*current, current->dn, {}});
        current.reset();
    }

    std::optional<LDIF_Entry> current;
    bool seenVersion = false;
    bool seenCharset = false;
};

// The same by the library, up to the file.
struct LoadedFile {
    LDIF_Tree tree;
    LDIF_Comment comment;
    int lastLine = 0;

    void load(const std::string& text)
    {
        TextBuffer buffer(text.size() + 1);
        std::memcpy(buffer.data(), text.data(), text.size());
        tree = LDIF_Tree(std::move(buffer), text.size());
        LDIF_Loader loader(tree, comment);
        try {
            loader.load();
        } catch (...) {
            lastLine = loader.lineCount();
            throw;
        }
    }

    std::string str()
    {
        std::string text;
        std::string buffer;
        for (const std::string_view piece : tree.pieces(comment, buffer))
            text += piece;
        return withoutReturns(text);
    }
};

#endif
