#include "LDIF_EntryReader.h"

#include "LDIF_AttrType.h"
#include "LDIF_DnKey.h"
#include "LDIF_Exception.h"
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "LDIF_Value.h"
#include "cisString.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

// Whether some byte is no printable ASCII character. Eight bytes at a time: such a byte sets its high bit.
bool hasOddBytes(std::string_view text) noexcept
{
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    constexpr std::uint64_t blanks = 0x2020202020202020U;
    std::uint64_t found = 0;
    std::size_t pos = 0;
    for (; pos + sizeof found <= text.size(); pos += sizeof found) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + pos, sizeof bytes);
        found |= bytes | (bytes - blanks);
    }
    for (; pos < text.size(); ++pos)
        found |= static_cast<signed char>(text[pos]) < ' ' ? highBits : 0;
    return (found & highBits) != 0;
}

constexpr std::size_t usualNames = 1000;  // of attributes in a file

}  // namespace

LDIF_EntryReader::Form LDIF_EntryReader::read(std::string_view text)
{
    begin(text);
    if (!localeHasAscii() || !readLines() || !checkValues())
        return unknown;
    consumed = whole.size() - rest.size();
    if (!isExact) {
        write();
    } else {
        found.text = whole.substr(0, consumed);
        found.dnStart = static_cast<std::size_t>(dn.data() - whole.data());
    }
    found.dnSize = dn.size();
    found.isLocaleBound = isLocaleBound;
    if (found.text.size() > std::numeric_limits<std::uint32_t>::max())
        return unknown;
    return isExact ? asWritten : rearranged;
}

void LDIF_EntryReader::begin(std::string_view text)
{
    if (names.size() > usualNames) {
        names.clear();
        namesByText = LDIF_HashIndex();
        sortedNames.clear();
        front.likely = nullptr;
    }
    whole = rest = text;
    comment = entryComment = dn = {};
    values.clear();
    lastName = &front;
    isExact = true;
    isLocaleBound = hasOddDn = hasForeignEnds = hasRepeats = false;
    madeCount = 0;
    lines = 0;
}

// entry = *( comment / blank ) dn-line *( *comment attribute-line ) ( blank / end of the text )
bool LDIF_EntryReader::readLines()
{
    while (!rest.empty()) {
        const std::string_view before = rest;
        std::string_view line;
        if (!takePhysicalLine(line))
            return false;
        if (line.empty() && !dn.empty())
            return comment.empty();
        if (line.empty() || line[0] == '#')
            comment = {comment.empty() ? before.data() : comment.data(), comment.size() + before.size() - rest.size()};
        else if (!takeLogicalLine(line))
            return false;
    }
    isExact = false;
    return !dn.empty() && comment.empty();
}

// False for a line that is left to the classes; so is one that continues the line before.
bool LDIF_EntryReader::takeLogicalLine(std::string_view line)
{
    if (hasWideSpace || isEdge(line[0]))
        return false;
    const bool isTaken = dn.empty() ? takeDn(line) : takeAttribute(line);
    comment = {};
    return isTaken;
}

// False for a line that is left to the classes.
bool LDIF_EntryReader::takePhysicalLine(std::string_view& line)
{
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos)
        isExact = false;
    line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    ++lines;
    const bool hasReturn = !line.empty() && line.back() == '\r';
    if (hasReturn)
        line.remove_suffix(1);
    if (hasReturn != (lineEnd.size() > 1)) {
        hasForeignEnds = true;
        isExact = false;
    }
    hasWideSpace = false;
    return !hasOddBytes(line) || isReadable(line);
}

bool LDIF_EntryReader::isReadable(std::string_view line)
{
    if (line.find('\r') != std::string_view::npos || line.find('\0') != std::string_view::npos)
        return false;
    if (isPlain(line))
        return true;
    isLocaleBound = true;
    return isTransparent(line, hasWideSpace);
}

// dn-line = ( "d" / "D" ) ( "n" / "N" ) ":" DN
bool LDIF_EntryReader::takeDn(std::string_view line)
{
    constexpr std::size_t wordSize = 2;
    if (line.size() <= wordSize || compareFolded(line.substr(0, wordSize), "dn") != 0 || line[wordSize] != ':')
        return false;
    word = line.substr(0, wordSize);
    dn = valueAfter(line, wordSize);
    entryComment = comment;
    return canonicaliseDn(dn) && !dn.empty();
}

// attribute-line = name ":" value. Tries the names first that mostly come here.
bool LDIF_EntryReader::takeAttribute(std::string_view line)
{
    const Name* const before = lastName;
    Name* const next = lastName->likely;
    if (next != nullptr && line.compare(0, next->start.size(), next->start) == 0) {
        lastName = next;
    } else if (lastName == &front || line.compare(0, lastName->start.size(), lastName->start) != 0) {
        if (!takeName(line))
            return false;
    }
    if (lastName == before) {
        hasRepeats = true;
        isExact = isExact && comment.empty();
    }
    std::string_view value = valueAfter(line, lastName->text().size());
    if (!canonicalise(*lastName, value))
        return false;
    values.push_back({lastName, value, comment, false});
    return true;
}

// False at a line without a name, or with one that is left to the classes, and at the dn line of another entry. An
// entry of very many names would spend its time on their ranks.
bool LDIF_EntryReader::takeName(std::string_view line)
{
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0 || !isPlain(line.substr(0, colon)))
        return false;
    const std::string_view text = line.substr(0, colon);
    if (compareFolded(text, "dn") == 0 || names.size() > 2 * usualNames)
        return false;
    Name& name = nameOf(text);
    if (lastName->rank < name.rank)
        lastName->likely = &name;
    else
        isExact = isExact && &name == lastName;
    lastName = &name;
    return true;
}

LDIF_EntryReader::Name& LDIF_EntryReader::nameOf(std::string_view text)
{
    const std::size_t hash = exactHash(0, text);
    const std::size_t place = namesByText.find(hash, [&](std::size_t at) { return names[at].text() == text; });
    return place != LDIF_HashIndex::npos ? names[place] : makeName(text, hash);
}

LDIF_EntryReader::Name& LDIF_EntryReader::makeName(std::string_view text, std::size_t hash)
{
    const _AttrType* const type = getAttrType(text);
    names.push_back({std::string(text) + ": ", type, &syntaxOf(*type)});
    namesByText.add(hash, names.size() - 1);
    const auto isBefore = [](const Name* name, std::string_view other) {
        return compareFolded(name->text(), other) < 0;
    };
    auto place = std::lower_bound(sortedNames.begin(), sortedNames.end(), text, isBefore);
    place = sortedNames.insert(place, &names.back());
    const bool isKnown = place + 1 != sortedNames.end() && compareFolded(place[1]->text(), text) == 0;
    const std::size_t rank = isKnown ? place[1]->rank : place == sortedNames.begin() ? 1 : place[-1]->rank + 1;
    names.back().rank = rank;
    for (++place; !isKnown && place != sortedNames.end(); ++place)
        ++(*place)->rank;
    return names.back();
}

// What stands after the colon and those that follow it, without edges.
std::string_view LDIF_EntryReader::valueAfter(std::string_view line, std::size_t colon) noexcept
{
    std::string_view value = line.substr(colon + 1);
    if (!value.empty() && value[0] == ' ' && (value.size() == 1 || !(isEdge(value[1]) || isEdge(value.back()))))
        return value.substr(1);
    isExact = false;
    value.remove_prefix(std::min(value.find_first_not_of(':'), value.size()));
    return withoutTrailing(withoutLeading(value));
}

// False for a value that its syntax refuses or that only the classes understand.
bool LDIF_EntryReader::canonicalise(const Name& name, std::string_view& value)
{
    if (name.syntax->isCanonical(*name.type, value))
        return true;
    if (name.syntax == &syntax::dn)
        return canonicaliseDn(value);
    return (name.syntax == &syntax::integer || name.syntax == &syntax::mask) && canonicaliseNumber(*name.type, value);
}

bool LDIF_EntryReader::canonicaliseNumber(const _AttrType& type, std::string_view& value)
try {
    isExact = false;
    std::string& number = nextMade();
    number = LDIF_Value(&type, std::string(value)).str();
    value = number;
    return true;
} catch (const LDIF_Exception&) {
    return false;  // The classes meet it again, and report it.
}

// A DN that is not simple has to be in canonical form: another might be printed as a third one.
bool LDIF_EntryReader::canonicaliseDn(std::string_view& text)
try {
    if (isSimpleDn(text))
        return true;
    std::string& simple = nextMade();
    if (simplifyDn(text, simple)) {
        isExact = false;
        text = simple;
        return true;
    }
    hasOddDn = isLocaleBound = true;
    return LDIF_DN(cisString(std::string(text))).str() == text;
} catch (const LDIF_Exception&) {
    return false;  // as above
}

std::string& LDIF_EntryReader::nextMade()
{
    if (madeCount == made.size())
        made.emplace_back();
    return made[madeCount++];
}

// Sorts the values by name where they are not, and finds those that are there already.
bool LDIF_EntryReader::checkValues()
{
    const auto isBefore = [](const Value& left, const Value& right) { return left.name->rank < right.name->rank; };
    if (!isExact)
        std::stable_sort(values.begin(), values.end(), isBefore);
    if (isExact && !hasRepeats)
        return true;
    for (auto first = values.begin(); first != values.end();) {
        const auto last = std::find_if(first, values.end(), [&](const Value& each) { return isBefore(*first, each); });
        if (last - first > 1 && !markRepeated(first, last))
            return false;
        first = last;
    }
    return true;
}

// False where only the classes can compare.
bool LDIF_EntryReader::markRepeated(Values::iterator first, Values::iterator last)
{
    const LDIF_Syntax& syntax = *first->name->syntax;
    if (&syntax == &syntax::pw || (&syntax == &syntax::dn && hasOddDn))
        return false;
    LDIF_HashIndex known;
    known.reserve(static_cast<std::size_t>(last - first));
    for (auto value = first; value != last; ++value) {
        const auto isSame = [&](std::size_t at) {
            const std::string_view other = first[static_cast<std::ptrdiff_t>(at)].text;
            return value->text.size() == other.size() &&
                   (syntax.foldsCase ? compareFolded(value->text, other) == 0 : value->text == other);
        };
        const std::size_t hash = syntax.foldsCase ? foldedHash(0, value->text) : exactHash(0, value->text);
        value->isRepeated = known.find(hash, isSame) != LDIF_HashIndex::npos;
        if (value->isRepeated)
            isExact = false;
        else
            known.add(hash, static_cast<std::size_t>(value - first));
    }
    return true;
}

// The comments of all lines of an attribute stand before its values.
void LDIF_EntryReader::write()
{
    written.clear();
    writeComment(entryComment);
    written.append(word).append(": ");
    found.dnStart = written.size();
    written.append(dn).append(lineEnd);
    for (auto first = values.begin(); first != values.end();) {
        const Name& name = *first->name;
        const auto last =
            std::find_if(first, values.end(), [&](const Value& each) { return each.name->rank != name.rank; });
        std::for_each(first, last, [&](const Value& each) { writeComment(each.comment); });
        for (; first != last; ++first) {
            if (!first->isRepeated)
                written.append(name.start).append(first->text).append(lineEnd);
        }
    }
    written.append(lineEnd);
    found.text = written;
}

void LDIF_EntryReader::writeComment(std::string_view text)
{
    if (!hasForeignEnds) {
        written.append(text);
        return;
    }
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        written.append(line).append(lineEnd);
    }
}
