// The tree with its indexes and kept texts, held against the plain walk that they save.
#include "LDIF_Entry.h"
#include "LDIF_Loader.h"
#include "LDIF_Renderer.h"
#include "LDIF_TreeBuilder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

const char* registryRoot() noexcept
{
    return "";
}

namespace {

bool isAtOrAbove(const LDIF_DN& ancestor, const LDIF_DN& dn)
{
    return ancestor.intersection(dn) == ancestor;
}

// A tree of DNs alone, placed and found by walking.
struct Plain {
    LDIF_DN dn;
    std::vector<Plain> children;

    void place(Plain child)
    {
        for (Plain& each : children) {
            if (each.dn == child.dn)
                return;
            if (isAtOrAbove(each.dn, child.dn))
                return each.place(std::move(child));
        }
        const auto adopted = std::stable_partition(children.begin(), children.end(),
                                                   [&](const Plain& each) { return !isAtOrAbove(child.dn, each.dn); });
        child.children.assign(adopted, children.end());
        children.erase(adopted, children.end());
        children.push_back(std::move(child));
    }

    const Plain* find(const LDIF_DN& wanted) const
    {
        if (dn == wanted)
            return this;
        for (const Plain& each : children)
            if (const Plain* found = each.find(wanted))
                return found;
        return nullptr;
    }

    bool erase(const LDIF_DN& wanted)
    {
        for (auto each = children.begin(); each != children.end(); ++each) {
            if (each->dn == wanted) {
                children.erase(each);
                return true;
            }
            if (each->erase(wanted))
                return true;
        }
        return false;
    }

    std::string str(const LDIF_DN& parent = LDIF_DN()) const
    {
        LDIF_DN relative = dn;
        std::string text = (relative -= parent).str() + " {";
        for (const Plain& each : children)
            text += each.str(dn);
        return text + "} ";
    }
};

std::string shapeOf(const LDIF_Entry& entry)
{
    std::string text = entry.relativeDn.str() + " {";
    for (const LDIF_Entry& each : entry.children)
        text += shapeOf(each);
    return text + "} ";
}

// DNs that often meet: equal ones in another spelling, ancestors before and behind their descendants, large families.
LDIF_DN randomDn(std::mt19937& random)
{
    const char* const spellings[] = {"cn", "CN"};
    std::string text;
    for (auto levels = random() % 4; levels > 0; --levels)
        text += std::string(spellings[random() % 2]) + "=" + std::to_string(random() % 7 == 0 ? 0 : random() % 3) + ",";
    text += "ou=" + std::to_string(random() % 90) + (random() % 5 == 0 ? "+o=x" : "") + ",o=\u00dc";
    return LDIF_DN(cisString(text));
}

bool eraseFrom(LDIF_Entry& root, const LDIF_DN& dn)
{
    LDIF_DN above = dn;
    do
        above.pop_back();
    while (root.find(above) == nullptr);
    LDIF_Entry& parent = *root.find(above);
    LDIF_DN relative = dn;
    const auto child = parent.findChild(relative -= above, 0);
    if (child == parent.children.end() || child->relativeDn != relative)
        return false;
    parent.eraseChild(child);
    return true;
}

}  // namespace

TEST(Tree, IsTheSameAsByThePlainWalk)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    for (unsigned seed = 0; seed < 6; ++seed) {
        std::mt19937 random(seed);
        LDIF_Entry root;
        LDIF_Renderer renderer;
        Plain plain;
        for (int step = 0; step < 400; ++step) {
            const LDIF_DN dn = randomDn(random);
            LDIF_Entry entry(dn);
            entry += LDIF_Attribute("x", std::to_string(step));
            switch (random() % 4) {
            case 0:
                ASSERT_EQ(eraseFrom(root, dn), plain.erase(dn)) << dn;
                break;
            case 1:
                root += entry;
                plain.place({dn, {}});
                break;
            default:
                root.place(std::move(entry));
                plain.place({dn, {}});
            }
            const LDIF_DN wanted = randomDn(random);
            ASSERT_EQ(root.find(wanted) != nullptr, plain.find(wanted) != nullptr) << wanted;
            ASSERT_EQ(shapeOf(root), plain.str()) << "seed " << seed << " step " << step;
            std::ostringstream whole;
            whole << root;
            ASSERT_EQ(renderer.render(root, LDIF_Comment()), whole.str()) << "seed " << seed << " step " << step;
        }
    }
}

TEST(Tree, IsTheSameBuiltAtOnceAsEntryByEntry)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        LDIF_Entry placed;
        LDIF_Entry built;
        LDIF_TreeBuilder builder(built);
        for (auto count = random() % 300; count > 0; --count) {
            LDIF_Entry entry(random() % 50 == 0 ? LDIF_DN() : randomDn(random));
            entry += LDIF_Attribute("x", std::to_string(count));
            LDIF_Entry copy = entry;
            copy.relativeDn.clear();
            builder.add(std::move(copy));
            placed.place(std::move(entry));
        }
        builder.finish();
        ASSERT_EQ(shapeOf(built), shapeOf(placed)) << "seed " << seed;
        std::ostringstream one;
        std::ostringstream other;
        one << built;
        other << placed;
        ASSERT_EQ(one.str(), other.str()) << "seed " << seed;
    }
}

// Names in any order and case, some of them again, with comments: the loader keeps those of a large entry apart.
TEST(Tree, TakesTheAttributesOfALargeEntryInAnyOrder)
{
    std::mt19937 random(4);
    std::string text;
    for (int number = 0; number < 3000; ++number)
        text += "# " + std::to_string(number) + (number % 2 != 0 ? "\nX" : "\nx") + std::to_string(random() % 1500) +
                ": " + std::to_string(random() % 3) + '\n';
    std::istringstream lines(text);
    LDIF_Attributes plain;
    LDIF_Comment before;
    for (LDIF_Line line; line.next(lines, 0) > 0 && line.type != LDIF_Line::endOfFile;) {
        if (line.type == LDIF_Line::attribute)
            plain.add(line, before);
        else
            before += line;
    }
    LDIF_Entry root;
    LDIF_Loader(root, before).load("dn: cn=a\n" + text);
    ASSERT_EQ(root.children.size(), 1U);
    EXPECT_GT(plain.size(), 1000U);
    EXPECT_EQ(root.children.front().attributes.str(), plain.str());
}
