// A configuration file, loaded and written three times, and held against the plain steps.
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "fuzz.h"
#include "plainTree.h"

#include <sstream>

namespace {

// A text on its way through a tree.
template <typename File>
struct Round {
    explicit Round(const std::string& text)
    {
        loaded = resultOf([&] { file.load(text); });
        if (loaded == success)
            rendered = resultOf([&] { written = file.str(); });
    }

    File file;
    Codes loaded = success;
    Codes rendered = success;
    std::string written;
};

// Checks that the lines are the same from a stream as from memory, and says whether a line without a colon opens an
// entry, as a line that begins with "dn" does.
bool opensEntryWithoutColon(const std::string& text)
{
    std::istringstream stream(text);
    LDIF_TextSource memory(text);
    LDIF_Line one, other;
    one.type = LDIF_Line::blankLine;
    bool found = false;
    for (int last = 0, otherLast = 0; one.type != LDIF_Line::endOfFile;) {
        const Codes result = resultOf([&] { last = one.next(stream, last); });
        require(result == resultOf([&] { otherLast = other.next(memory, otherLast); }), "both sources fail", text);
        if (result != success)
            break;
        require(last == otherLast, "lines have the same number", text);
        require(one.type == other.type, "lines are of the same type", text);
        require(one.str() == other.str(), "lines are the same", text);
        found = found || (one.type == LDIF_Line::dn && !one.wellFormed);
    }
    return found;
}

template <typename Test>
bool anyEntry(const PlainTree& tree, const Test& test)
{
    const auto below = [&](const PlainTree& child) { return anyEntry(child, test); };
    return test(tree.entry) || std::any_of(tree.children.begin(), tree.children.end(), below);
}

template <typename Test>
bool anyDn(const PlainTree& root, const Test& test)
{
    return anyEntry(root, [&](const LDIF_Entry& entry) {
        bool found = test(entry.dn);
        for (const LDIF_Attribute& attribute : entry.attributes)
            for (const LDIF_Value& value : attribute.values)
                found = found || (value.dnValue != nullptr && test(*value.dnValue));
        return found;
    });
}

template <typename Test>
bool anyAttribute(const LDIF_Entry& entry, const Test& test)
{
    return std::any_of(entry.attributes.begin(), entry.attributes.end(), test);
}

// Two values of a name that begins with a blank: the second line is read as a part of the first.
bool joinsValues(const LDIF_Attribute& attribute)
{
    return attribute.values.size() > 1 && w_my_isspace(multibyte2wide(attribute.name)[0]);
}

// In the head, where the attributes of an entry with the empty DN come to stand, the next load refuses it.
bool isStrangeInHead(const LDIF_Attribute& attribute)
{
    return attribute.values.size() != 1 || !(attribute == "charset" || attribute == "version");
}

// A clear password gets another form each time.
bool hasPassword(const LDIF_Attribute& attribute)
{
    return &syntaxOf(*attribute.values.attrType) == &syntax::pw;
}

// Checks that the reader and the classes agree, and gives what the plain steps make of the text.
PlainTree requireSame(const Round<LoadedFile>& fast, const std::string& text)
{
    Round<PlainFile> plain(text);
    const bool mayDiffer =
        anyEntry(plain.file.tree, [](const auto& entry) { return anyAttribute(entry, hasPassword); });
    require(fast.loaded == plain.loaded, "both ways load alike", text);
    require(fast.loaded == success || fast.file.lastLine == plain.file.lastLine, "both ways fail at one line", text);
    require(mayDiffer || fast.rendered == plain.rendered, "both ways render alike", text);
    require(mayDiffer || fast.written == plain.written, "both ways write alike", text);
    return std::move(plain.file.tree);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = textOf(data, size);
    const bool opensWithoutColon = opensEntryWithoutColon(text);
    const Round<LoadedFile> first(text);
    const PlainTree tree = requireSame(first, text);
    const auto [code, detail] = first.loaded;
    require(first.loaded == success || first.loaded == Codes(65, 1007) || code == 162 || code == 202 || code == 203 ||
                (code == 34 && detail >= 1011 && detail <= 1014),
            "a load ends with a documented code", text);
    // An escaped line end in a DN is written as it is, and breaks the line.
    const auto holdsLineEnd = [](const LDIF_DN& dn) {
        return printable(dn).find_first_of("\r\n") != std::string::npos;
    };
    if (first.loaded != success || anyDn(tree, holdsLineEnd))
        return 0;
    const bool isNoText = first.rendered.first == 162 && text.find('\\') != std::string::npos;  // a quoted DN value
    require(first.rendered == success || first.rendered == Codes(34, 1013) || isNoText, "a tree is rendered", text);
    if (first.rendered != success)
        return 0;
    const Round<LoadedFile> second(first.written);
    const bool mayBeRefused = opensWithoutColon || anyAttribute(tree.entry, isStrangeInHead);
    require(second.loaded == success || (mayBeRefused && second.loaded == Codes(65, 1007)), "it loads again", text);
    const bool mayChange = anyEntry(tree, [](const auto& entry) { return anyAttribute(entry, joinsValues); });
    if (second.loaded != success || mayChange)
        return 0;
    require(second.rendered == success || anyDn(tree, losesByPrinting), "it is rendered again", text);
    require(second.rendered != success || Round<LoadedFile>(second.written).written == second.written,
            "it changes once", text);
    return 0;
}
