// The tree held against the plain steps: how entries hang, and what becomes of their texts.
#include "LDIF_Search.h"
#include "LDIF_TextStore.h"
#include "plainTree.h"
#include "support.h"

#include <gtest/gtest.h>
#include <random>

namespace {

// DNs that often meet: equal ones in another spelling or form, ancestors before and after their descendants, large
// families, levels that are missing.
LDIF_DN randomDn(std::mt19937& random)
{
    const char* const names[] = {"cn=", "CN=", "cn=#3", "cn=\""};
    std::string text;
    for (auto levels = random() % 4; levels > 0; --levels)
        text += names[random() % 2 + (random() % 9 == 0 ? 2 : 0)] +
                std::to_string(random() % 7 == 0 ? 0 : random() % 3) + ',';
    text += "ou=" + std::to_string(random() % 90) + (random() % 5 == 0 ? "+o=x" : "") + ",o=\u00dc";
    for (std::size_t quote = 0; (quote = text.find('"', quote)) != std::string::npos; quote += 3)
        text.insert(quote + 2, 1, '"');
    return LDIF_DN(cisString(text));
}

bool eraseFrom(LDIF_Tree& tree, const LDIF_DN& dn)
{
    const LDIF_Tree::Number entry = tree.find(dn);
    if (entry == LDIF_Tree::none)
        return false;
    tree.erase(entry);
    return true;
}

// The DN and value of an entry that has many lines of text, so that dead text is given back now and then.
LDIF_Entry someEntry(const LDIF_DN& dn, int step)
{
    LDIF_Entry entry(dn);
    if (step % 3 == 0)
        entry += LDIF_Attribute("V", "before the others");
    entry += LDIF_Attribute("x", step % 50 == 0 ? "a\nline end" : std::to_string(step));
    entry += LDIF_Attribute("y", std::string(static_cast<std::size_t>(step) % 7 * 300, 'y'));
    return entry;
}

// What a search finds is what matches entry by entry, also where lines have been found before.
void expectSameMatches(const LDIF_Tree& tree)
{
    for (const char* const text : {"v", "x", "y=yyy", "z", "xx", "X=line"}) {
        const LDIF_Filter filter(text);
        std::vector<LDIF_Tree::Number> matches;
        for (auto entry = LDIF_Tree::root; entry != LDIF_Tree::none; entry = tree.nextBelow(entry, LDIF_Tree::root)) {
            if (filter.match(tree.entry(entry)))
                matches.push_back(entry);
        }
        EXPECT_EQ(findMatches(tree, LDIF_Tree::root, LDIF_Scope::subtree, filter), matches) << text;
    }
}

}  // namespace

TEST(Tree, IsTheSameAsByThePlainSteps)
{
    const ScopedLocale utf8;
    for (unsigned seed = 0; seed < 6; ++seed) {
        std::mt19937 random(seed);
        LoadedFile file;
        PlainFile plain;
        file.tree.finish();
        for (int step = 0; step < 400; ++step) {
            const LDIF_DN dn = randomDn(random);
            if (random() % 4 == 0) {
                ASSERT_EQ(eraseFrom(file.tree, dn), plain.tree.erase(dn)) << dn;
            } else {
                const LDIF_Entry entry = someEntry(dn, step);
                plain.tree.place({entry, dn, {}});
                file.tree.add(LDIF_Entry(entry));
            }
            const LDIF_DN wanted = randomDn(random);
            ASSERT_EQ(file.tree.find(wanted) != LDIF_Tree::none, plain.tree.find(wanted) != nullptr) << wanted;
            ASSERT_EQ(file.str(), plain.str()) << "seed " << seed << " step " << step;
            if (step % 20 == 0)
                expectSameMatches(file.tree);
        }
    }
}

// Goes red where an entry that is read as a whole hangs elsewhere than one that comes alone.
TEST(Tree, IsTheSameReadAtOnceAsEntryByEntry)
{
    const ScopedLocale utf8;
    for (unsigned seed = 0; seed < 100; ++seed) {
        std::mt19937 random(seed);
        std::string text = "charset: x\nversion: 1\n\n";
        for (auto count = random() % 200; count > 0; --count)
            text += LDIF_Entry(random() % 50 == 0 ? LDIF_DN() : randomDn(random)).str();
        LoadedFile file;
        PlainFile plain;
        file.load(text);
        plain.load(text);
        ASSERT_EQ(file.str(), plain.str()) << "seed " << seed;
    }
}

// Entries stay the text of the file, and are text again after a change, unless text cannot carry them.
TEST(Tree, KeepsEntriesAsText)
{
    const ScopedLocale utf8;
    LoadedFile file;
    file.load(
        "charset: x\nversion: 1\n\ndn: cn=a\nx: 1\n\ndn: cn=\\28b\nx: 1\n\ndn: cn=c\ny: 2\nx:1\n\ndn: cn=d\\, e\n\n");
    const auto isText = [&](const char* dn) {
        return file.tree.object(file.tree.find(LDIF_DN(cisString(dn)))) == nullptr;
    };
    const char* const start = file.tree.fileText();
    const auto isSlice = [&](const char* dn) {
        const char* const text = file.tree.text(file.tree.find(LDIF_DN(cisString(dn)))).text.data();
        return text >= start && text < start + file.tree.fileSize();
    };
    EXPECT_TRUE(isSlice("cn=a"));
    EXPECT_FALSE(isText("cn=\\28b")) << "the parenthesis would be lost";
    EXPECT_TRUE(isText("cn=c")) << "rearranged";
    EXPECT_FALSE(isSlice("cn=c")) << "rearranged";
    EXPECT_TRUE(isSlice("cn=\"d, e\""));
    for (const auto& [value, staysText] : {std::pair("2", true), {"two\nlines", false}, {" edge", false}}) {
        {
            (*LDIF_Tree::Opened(file.tree, file.tree.find(LDIF_DN(cisString("cn=a"))))) += LDIF_Attribute("z", value);
        }
        EXPECT_EQ(isText("cn=a"), staysText) << value;
    }
}

// Names in any order and case, some of them again, with comments: a large entry keeps those apart that come late.
TEST(Tree, TakesTheAttributesOfALargeEntryInAnyOrder)
{
    for (const char* const fold : {"", "z:\n folded\n"}) {
        std::mt19937 random(4);
        std::string text = std::string("dn: cn=a\n") + fold;
        for (int number = 0; number < 3000; ++number)
            text += "# " + std::to_string(number) + (number % 2 != 0 ? "\nX" : "\nx") +
                    std::to_string(random() % 1500) + ": " + std::to_string(random() % 3) + '\n';
        LoadedFile file;
        PlainFile plain;
        file.load(text);
        plain.load(text);
        EXPECT_EQ(file.str(), plain.str()) << fold;
    }
}

TEST(TextStore, IsWastefulOnceMoreIsDeadThanAlive)
{
    LDIF_TextStore store;
    store.release(store.add(std::string(100'000, 'x')));
    EXPECT_TRUE(store.isWasteful());
}
