// Entries as the text of a file: which become text, and what a write takes.
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Tree.h"
#include "LDIF_Util.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

// Text with the line ends of a file.
std::string inFileForm(std::string text)
{
    if (lineEnd.size() == 1)
        return text;
    std::string changed;
    changed.reserve(text.size() + text.size() / 16);
    for (const char byte : text)
        byte == '\n' ? changed += lineEnd : changed += byte;
    return changed;
}

// Whether its values alone take more bytes than that when they are printed.
bool isLonger(const LDIF_Entry& entry, std::size_t longest)
{
    std::size_t size = 0;
    for (const LDIF_Attribute& attribute : entry.attributes) {
        for (const LDIF_Value& value : attribute.values) {
            size += attribute.name.size() + value.stringValue.size() + lineEnd.size() + 2;
            if (size > longest)
                return true;
        }
    }
    return false;
}

bool hasOddName(const LDIF_Entry& entry)
{
    return std::any_of(entry.attributes.begin(), entry.attributes.end(),
                       [](const LDIF_Attribute& attribute) { return !isPlain(attribute.name); });
}

// Whether an attribute has a DN with escapes or quotes.
bool hasOddDn(const LDIF_Attribute& attribute)
{
    const _AttrType& type = *attribute.values.attrType;
    const auto isOdd = [&](const LDIF_Value& value) { return !syntax::dn.isCanonical(type, value.stringValue); };
    return &syntaxOf(type) == &syntax::dn && std::any_of(attribute.values.begin(), attribute.values.end(), isOdd);
}

// Whether reading the text gives the entry again.
bool readsBack(const LDIF_EntryText& text, const LDIF_Entry& entry)
try {
    return text.text.size() <= std::numeric_limits<std::uint32_t>::max() && !hasOddName(entry) &&
           LDIF_Entry(text.text).isSameAs(entry);
} catch (const LDIF_Exception&) {
    return false;
}

}  // namespace

// Texts that lie apart are moved together, so that the next write costs less.
std::vector<std::string_view> LDIF_Tree::pieces(const LDIF_Comment& after, std::string& buffer)
{
    constexpr std::size_t few = 64;
    constexpr std::size_t most = 8;  // of so many entries one may stand apart
    std::vector<std::string_view> found = gatherPieces(after, buffer);
    if (found.size() <= few + nodes.size() / most + objects.size())
        return found;
    compact();
    return gatherPieces(after, buffer);
}

std::vector<std::string_view> LDIF_Tree::gatherPieces(const LDIF_Comment& after, std::string& buffer)
{
    buffer = inFileForm(rootObject.str() + (needsBlankLine() ? "\n" : ""));
    const std::size_t head = buffer.size();
    buffer += inFileForm(after.str());
    std::vector<std::string_view> found{{buffer.data(), head}};
    for (Number each = nextBelow(root, root); each != none; each = nextBelow(each, root)) {
        const std::string_view piece =
            nodes[each].text != nullptr ? text(each).text : std::string_view(printedObject(each));
        std::string_view& last = found.back();
        if (last.data() + last.size() == piece.data())
            last = {last.data(), last.size() + piece.size()};
        else
            found.push_back(piece);
    }
    found.emplace_back(buffer.data() + head, buffer.size() - head);
    return found;
}

const std::string& LDIF_Tree::printedObject(Number entry)
{
    auto& [object, printed] = objects.at(entry);
    if (!printed.empty())
        return printed;
    try {
        object.appendTo(printed);
        printed = inFileForm(std::move(printed));
        return printed;
    } catch (...) {
        printed.clear();
        throw;
    }
}

// The blank lines after the root's attributes are comment lines of the first entry, if the file had any.
bool LDIF_Tree::needsBlankLine() const noexcept
{
    const Number first = firstChild(root);
    if (first == none)
        return false;
    if (nodes[first].text != nullptr)
        return text(first).text.substr(0, lineEnd.size()) != lineEnd;
    const auto& lines = object(first)->comment.lines;
    return lines.empty() || lines.front().type != LDIF_Line::blankLine;
}

LDIF_Entry& LDIF_Tree::open(Number entry)
{
    if (entry == root)
        return rootObject;
    Node& node = nodes[entry];
    if (node.text == nullptr) {
        Object& known = objects.at(entry);
        known.printed.clear();
        return known.entry;
    }
    LDIF_Entry& made = objects.emplace(entry, Object{LDIF_Entry(text(entry).text), {}}).first->second.entry;
    store.release({node.text, node.size});
    directory.forget(entry);
    node.text = nullptr;
    return made;
}

// A large entry stays an object: it would be read and printed anew with each change.
void LDIF_Tree::close(Number entry) noexcept
try {
    constexpr std::size_t largeEntry = std::size_t{4} << 10;
    if (entry != root && nodes[entry].text == nullptr)
        (void)becomeText(entry, {}, largeEntry);
    if (store.isWasteful())
        compact();
} catch (...) {
    return;  // It stays an object, which is the same to all others.
}

// Whether it has become that part of the text of the file.
bool LDIF_Tree::becomeText(Number entry, std::string_view source, std::size_t longest)
{
    const LDIF_Entry& known = objects.at(entry).entry;
    if (isLonger(known, longest))
        return false;
    LDIF_EntryText text;
    try {
        text.text = printedObject(entry);
    } catch (const LDIF_Exception&) {
        return false;  // It has no text.
    }
    text.dnStart = inFileForm(known.comment.str()).size() + known.name.size() + 2;
    text.dnSize = text.text.find(lineEnd, text.dnStart) - text.dnStart;
    if (!readsBack(text, known))
        return false;
    text.isLocaleBound = !isPlain(text.text) || !isSimpleDn(text.dn()) ||
                         std::any_of(known.attributes.begin(), known.attributes.end(), hasOddDn);
    const bool isSource = text.text == source;
    if (isSource)
        text.text = source;
    setText(entry, text, isSource);
    objects.erase(entry);
    return isSource;
}

// Moves all texts side by side, in the order in which they are written.
void LDIF_Tree::compact() noexcept
try {
    LDIF_TextStore living;
    living.reserve(store.used());
    for (Number each = nextBelow(root, root); each != none; each = nextBelow(each, root)) {
        Node& node = nodes[each];
        if (node.text != nullptr)
            node.text = living.add({node.text, node.size}).data();
    }
    store = std::move(living);
} catch (...) {
    return;  // Until there is memory for it, the store stays as it is.
}
