#include "LDIF_Tree.h"

#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::uint32_t mostLevels = (std::uint32_t{1} << 30) - 1;  // of a DN

constexpr std::uint32_t entriesAhead = 16;

// Lets a line come that will be needed soon: the memory of a large tree is slow to come. Entries mostly have the
// numbers in the order in which they are looked at.
void fetch(const char* line) noexcept
{
    constexpr std::size_t usualSize = 48;
    __builtin_prefetch(line);
    __builtin_prefetch(line + usualSize);
}

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

// Prints an entry to buffer.
LDIF_EntryText printed(const LDIF_Entry& entry, std::string& buffer)
{
    buffer = inFileForm(entry.comment.str());
    buffer.append(entry.name).append(": ");
    LDIF_EntryText text;
    text.dnStart = buffer.size();
    entry.dn.appendTo(buffer);
    text.dnSize = buffer.size() - text.dnStart;
    buffer.append(lineEnd).append(inFileForm(entry.attributes.str())).append(lineEnd);
    text.text = buffer;
    return text;
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
    const auto isOdd = [](const LDIF_Value& value) {
        return !value.stringValue.empty() && !isSimpleDn(value.stringValue);
    };
    return &syntaxOf(*attribute.values.attrType) == &syntax::dn &&
           std::any_of(attribute.values.begin(), attribute.values.end(), isOdd);
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

LDIF_Tree::LDIF_Tree() : LDIF_Tree(TextBuffer(), 0) {}

LDIF_Tree::LDIF_Tree(TextBuffer&& file, std::size_t size)
    : store(std::move(file), size), locale(std::make_unique<LocaleCopy>())
{
    constexpr std::size_t usualSize = 128;  // of an entry, or more
    nodes.reserve(size / usualSize + 1);
    nodes.push_back({});
}

bool LDIF_Tree::load(const LDIF_EntryText& entry, bool isFileText)
{
    if (entry.isLocaleBound)
        key.assign(entry.dn());
    else
        key.assignSimple(entry.dn());
    if (find(key) != none)
        return false;
    place(append([&](Number number) { setText(number, isFileText ? kept(entry) : copied(entry)); }));
    return true;
}

bool LDIF_Tree::load(LDIF_Entry&& entry, std::string_view text)
{
    if (mergeWithPresent(entry))
        return false;
    const Number made = append([&](Number number) { objects.emplace(number, Object{std::move(entry), {}}); });
    place(made);
    return becomeText(made, text, std::numeric_limits<std::size_t>::max());
}

// False when no entry has the DN. The attributes of one that has wait in a map until the load is over: many more may
// come, in any order.
bool LDIF_Tree::mergeWithPresent(LDIF_Entry& entry)
{
    key.assign(entry.dn);
    const Number present = find(key);
    if (present == none)
        return false;
    LDIF_Entry& target = open(present);
    auto& attributes = merged[present];
    const auto take = [&](LDIF_Attributes& source) {
        for (LDIF_Attribute& attribute : source) {
            const auto known = attributes.find(attribute.name);
            if (known == attributes.end())
                attributes.emplace(attribute.name, std::move(attribute));
            else
                known->second += std::move(attribute);
        }
        source.clear();
    };
    take(target.attributes);
    target.comment += std::move(entry.comment);
    take(entry.attributes);
    return true;
}

void LDIF_Tree::finishMerged()
{
    for (auto& [number, attributes] : merged) {
        LDIF_Entry& entry = open(number);
        entry.attributes.reserve(attributes.size());
        for (auto& each : attributes)
            entry.attributes.push_back(std::move(each.second));
        if (number != root)
            (void)becomeText(number, {}, std::numeric_limits<std::size_t>::max());
    }
    merged.clear();
}

// A node for the entry of the key, which fill gives its text or object.
template <typename Fill>
LDIF_Tree::Number LDIF_Tree::append(Fill fill)
{
    const Number number = appendNode();
    try {
        fill(number);
    } catch (...) {
        takeBack(number);
        throw;
    }
    return number;
}

LDIF_Tree::Number LDIF_Tree::appendNode()
{
    if (key.levels() > mostLevels || (firstVacant == none && nodes.size() >= none))
        throw std::length_error("too many entries or levels");
    if (firstVacant == none) {
        nodes.push_back({});
        vacate(static_cast<Number>(nodes.size() - 1));
    }
    byDn.add(key.hash(), firstVacant);
    Node& node = nodes[firstVacant];
    node.tag = static_cast<std::uint32_t>(key.hash());
    node.levels = static_cast<std::uint32_t>(key.levels()) & mostLevels;
    return std::exchange(firstVacant, node.next);
}

// A text that stands in the store already.
LDIF_EntryText LDIF_Tree::kept(const LDIF_EntryText& entry) noexcept
{
    store.keep(entry.text);
    return entry;
}

LDIF_EntryText LDIF_Tree::copied(LDIF_EntryText entry)
{
    entry.text = store.add(entry.text);
    return entry;
}

void LDIF_Tree::vacate(Number entry) noexcept
{
    nodes[entry] = {};
    nodes[entry].next = std::exchange(firstVacant, entry);
}

// Removes what nothing is linked to.
void LDIF_Tree::takeBack(Number entry) noexcept
{
    const Node& node = nodes[entry];
    byDn.remove(node.tag, entry);
    if (node.text != nullptr)
        store.release({node.text, node.size});
    else
        objects.erase(entry);
    directory.forget(entry);
    vacate(entry);
}

void LDIF_Tree::setText(Number entry, const LDIF_EntryText& text) noexcept
{
    Node& node = nodes[entry];
    node.text = text.text.data();
    node.size = static_cast<std::uint32_t>(text.text.size());
    node.dnStart = static_cast<std::uint32_t>(text.dnStart);
    node.dnSize = static_cast<std::uint32_t>(text.dnSize);
    node.isLocaleBound = text.isLocaleBound ? 1 : 0;
}

// During a load: where the entry hangs, if that is settled already. An entry right above it is nearest.
void LDIF_Tree::place(Number entry)
{
    nodes[entry].parent = key.levels() == 1 ? root : find(key, key.levels() - 1);
}

void LDIF_Tree::finish()
try {
    for (Number number = 1; number < nodes.size(); ++number) {
        if (nodes[number].parent != none)
            continue;
        if (number + entriesAhead < nodes.size())
            fetch(text(number + entriesAhead).dn().data());
        assignKey(number, key);
        nodes[number].parent = nearestAncestor(key);
    }
    for (Number number = 1; number < nodes.size(); ++number) {
        if (!isVacant(number))
            link(number, nodes[number].parent);
    }
    finishMerged();
    store.declassifyFile();
    store.dropDeadFile();
    if (store.isWasteful())
        compact();
} catch (...) {
    dropEntries();
    throw;
}

void LDIF_Tree::dropEntries() noexcept
{
    nodes.resize(1);
    nodes[root] = {};
    firstVacant = none;
    objects.clear();
    directory.clear();
    byDn = LDIF_HashIndex();
    merged.clear();
}

void LDIF_Tree::link(Number entry, Number above) noexcept
{
    Node& node = nodes[entry];
    Node& parentNode = nodes[above];
    if (node.levels > parentNode.levels + 1)
        parentNode.hasGaps = 1;
    node.parent = above;
    node.next = none;
    node.previous = parentNode.lastChild;
    (node.previous == none ? parentNode.firstChild : nodes[node.previous].next) = entry;
    parentNode.lastChild = entry;
}

void LDIF_Tree::unlink(Number entry) noexcept
{
    const Node& node = nodes[entry];
    Node& parentNode = nodes[node.parent];
    (node.previous == none ? parentNode.firstChild : nodes[node.previous].next) = node.next;
    (node.next == none ? parentNode.lastChild : nodes[node.next].previous) = node.previous;
}

LDIF_Tree::Number LDIF_Tree::nextBelow(Number entry, Number top) const noexcept
{
    if (firstChild(entry) != none)
        return firstChild(entry);
    while (entry != top && nextSibling(entry) == none)
        entry = parent(entry);
    return entry == top ? none : nextSibling(entry);
}

const LDIF_Entry* LDIF_Tree::object(Number entry) const noexcept
{
    if (entry == root)
        return &rootObject;
    return nodes[entry].text == nullptr ? &objects.find(entry)->second.entry : nullptr;
}

LDIF_EntryText LDIF_Tree::text(Number entry) const noexcept
{
    const Node& node = nodes[entry];
    return {{node.text, node.size}, node.dnStart, node.dnSize, node.isLocaleBound != 0};
}

std::string_view LDIF_Tree::linesFrom(Number entry, std::string_view name) const noexcept
{
    const Number ahead = entry + entriesAhead;
    const std::size_t start = directory.start(ahead);
    if (start != LDIF_LineDirectory::nowhere)
        fetch(text(ahead).attributes().data() + start);
    return directory.find(entry, text(entry).attributes(), name);
}

LDIF_Entry LDIF_Tree::entry(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? *known : LDIF_Entry(text(number).text);
}

std::string LDIF_Tree::dnText(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? printable(known->dn) : std::string(text(number).dn());
}

LDIF_DN LDIF_Tree::dn(Number number) const
{
    const LDIF_Entry* const known = object(number);
    return known != nullptr ? known->dn : LDIF_DN(cisString(std::string(text(number).dn())));
}

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
    std::string buffer;
    LDIF_EntryText text;
    try {
        text = printed(known, buffer);
    } catch (const LDIF_Exception&) {
        return false;  // It has no text.
    }
    if (!readsBack(text, known))
        return false;
    text.isLocaleBound = !isPlain(text.text) || !isSimpleDn(text.dn()) ||
                         std::any_of(known.attributes.begin(), known.attributes.end(), hasOddDn);
    const bool isSource = text.text == source;
    if (isSource)
        text.text = source;
    setText(entry, isSource ? kept(text) : copied(text));
    objects.erase(entry);
    return isSource;
}

void LDIF_Tree::add(LDIF_Entry&& entry)
{
    key.assign(entry.dn);
    const Number present = find(key, key.levels());
    if (present != none) {
        const Opened opened(*this, present);
        opened->merge(std::move(entry));
        return;
    }
    const Number above = nearestAncestor(key);
    std::vector<Number> below;
    const Number made = append([&](Number number) {
        objects.emplace(number, Object{std::move(entry), {}});
        below = childrenBelow(above, number);
    });
    link(made, above);
    for (const Number each : below) {
        unlink(each);
        link(each, made);
    }
    close(made);
}

// Leaf by leaf, for a tree may be deep.
void LDIF_Tree::erase(Number entry) noexcept
{
    for (Number each = entry, gone = none; gone != entry;) {
        while (firstChild(each) != none)
            each = firstChild(each);
        gone = std::exchange(each, parent(each));
        unlink(gone);
        takeBack(gone);
    }
    if (store.isWasteful())
        compact();
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
