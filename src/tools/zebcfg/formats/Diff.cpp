#include "formats/Diff.h"

#include "base/Attributes.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include <dtl/dtl.hpp>

namespace {

constexpr char red[] = "\033[31m";
constexpr char green[] = "\033[32m";
constexpr char cyan[] = "\033[36m";
constexpr char bold[] = "\033[1m";
constexpr char plain[] = "\033[0m";

// A line, and how it may be shown.
struct Line {
    std::string text;
    std::string shown;
};

bool operator==(const Line& left, const Line& right)
{
    return left.text == right.text;
}

// The bytes that a line which continues another has in front: a blank, and carriage returns, which do not count. 0 for
// any other line.
std::size_t leadOf(const std::string& line)
{
    const std::size_t place = std::min(line.find_first_not_of('\r'), line.size());
    const std::size_t length = blankAt(line, place);
    return length != 0 ? place + length : 0;
}

// A line may be broken anywhere, also within the name: what counts is the whole. It may also stand for itself, for some
// lines are continued by none. lead: the bytes in front that are no part of the whole, which has the rest at begin.
std::string shownPart(const std::string& line, std::size_t lead, std::size_t begin, std::size_t secret)
{
    if (secret == std::string::npos || secret >= begin + line.size() - lead)
        return shownLine(line);
    return line.substr(0, lead + (secret > begin ? secret - begin : 0)) + passwordMask;
}

std::vector<Line> linesOf(const std::string& text)
{
    std::vector<Line> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back({line, {}});
    for (auto first = lines.begin(); first != lines.end();) {
        std::string whole = first->text;
        auto end = std::next(first);
        for (; end != lines.end() && leadOf(end->text) != 0; ++end)
            whole += end->text.substr(leadOf(end->text));
        const std::size_t secret = secretOf(whole);
        std::size_t begin = 0;
        for (bool isFirst = true; first != end; ++first, isFirst = false) {
            const std::size_t lead = isFirst ? 0 : leadOf(first->text);
            first->shown = visible(shownPart(first->text, lead, begin, secret));
            begin += first->text.size() - lead;
        }
    }
    if (!text.empty() && text.back() != '\n') {
        lines.back().text += '\n';
        lines.back().shown += "\n\\ No newline at end of file";
    }
    return lines;
}

// Writes lines with a mark in front and, on a terminal, in a colour.
class Writer {
public:
    explicit Writer(bool colored) : isColored(colored) {}

    void line(const char* color, const std::string& text)
    {
        out += isColored && *color != '\0' ? color + text + plain : text;
        out += '\n';
    }

    std::string out;

private:
    const bool isColored;
};

// What differs, with some lines around it, as places in both texts: all in front of it and after it is the same.
struct Middle {
    std::size_t begin;
    std::size_t end;
    std::size_t otherEnd;
};

std::size_t lineStart(const std::string& text, std::size_t place)
{
    return place == 0 ? 0 : text.rfind('\n', place - 1) + 1;
}

std::size_t nextLine(const std::string& text, std::size_t place)
{
    return std::min(text.find('\n', place), text.size() - 1) + 1;
}

bool beginsLine(const std::string& text, std::size_t place)
{
    return place == 0 || text[place - 1] == '\n';
}

bool continues(const std::string& text, std::size_t place)
{
    return place < text.size() && leadOf(text.substr(place, text.find('\n', place) - place)) != 0;
}

// Lines that are joined stay together, for one may hide what another says.
Middle middleOf(const std::string& text, const std::string& other)
{
    constexpr int around = 12;  // lines; the last hunk takes in what is left when that is little
    const std::size_t shorter = std::min(text.size(), other.size());
    std::size_t begin = static_cast<std::size_t>(
        std::mismatch(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(shorter), other.begin()).first -
        text.begin());
    const auto most = static_cast<std::ptrdiff_t>(shorter - begin);
    const auto same = static_cast<std::size_t>(
        std::mismatch(text.rbegin(), text.rbegin() + most, other.rbegin()).first - text.rbegin());
    std::size_t end = text.size() - same;
    if (!beginsLine(text, end) || !beginsLine(other, other.size() - same))
        end = nextLine(text, end);
    for (int i = 0; end < text.size() && (i < around || continues(text, end)); ++i)
        end = nextLine(text, end);
    begin = lineStart(text, begin);
    for (int i = 0; begin > 0 && (i < around || continues(text, begin)); ++i)
        begin = lineStart(text, begin - 1);
    return {begin, end, other.size() - (text.size() - end)};
}

std::string rangeOf(long long begin, long long count)
{
    return std::to_string(begin) + (count == 1 ? "" : ',' + std::to_string(count));
}

char markOf(dtl::edit_t type)
{
    if (type == dtl::SES_DELETE)
        return '-';
    return type == dtl::SES_ADD ? '+' : ' ';
}

const char* colorOf(dtl::edit_t type)
{
    if (type == dtl::SES_DELETE)
        return red;
    return type == dtl::SES_ADD ? green : "";
}

// The entries by their DNs, in one spelling.
using EntriesByDn = std::map<std::string, const Entry*>;

EntriesByDn byDn(const std::vector<Entry>& entries)
{
    EntriesByDn found;
    for (const Entry& entry : entries)
        found.emplace(lowerCase(entry.dn), &entry);
    return found;
}

// Null where there is none.
const Entry* findIn(const EntriesByDn& entries, const std::string& dn)
{
    const auto found = entries.find(lowerCase(dn));
    return found != entries.end() ? found->second : nullptr;
}

// An attribute with that name, or without values where there is none.
Attribute attributeIn(const Entry& entry, const std::string& name)
{
    const auto found = std::find_if(entry.attributes.begin(), entry.attributes.end(),
                                    [&](const Attribute& attribute) { return isSameName(attribute.name, name); });
    return found != entry.attributes.end() ? *found : Attribute{name, {}};
}

// The values of one side that the other does not have.
void writeMissing(Writer& writer, dtl::edit_t type, const Attribute& attribute, const Attribute& other)
{
    std::multiset<std::string> others(other.values.begin(), other.values.end());
    for (const std::string& value : attribute.values) {
        const auto known = others.find(value);
        if (known != others.end())
            others.erase(known);
        else
            writer.line(colorOf(type),
                        markOf(type) + visible(shownLine(attribute.name) + ": " + shownValue(attribute.name, value)));
    }
}

// The values of each attribute that were removed and added, one after the other.
void writeAttributes(Writer& writer, const Entry& before, const Entry& after)
{
    for (const Attribute& old : before.attributes) {
        const Attribute present = attributeIn(after, old.name);
        writeMissing(writer, dtl::SES_DELETE, old, present);
        writeMissing(writer, dtl::SES_ADD, present, old);
    }
    for (const Attribute& present : after.attributes) {
        if (attributeIn(before, present.name).values.empty())
            writeMissing(writer, dtl::SES_ADD, present, {});
    }
}

// What an entry that either side may lack has become.
void writeEntry(Writer& writer, const Entry* before, const Entry* after)
{
    Writer attributes(writer);
    attributes.out.clear();
    writeAttributes(attributes, before != nullptr ? *before : Entry(), after != nullptr ? *after : Entry());
    if (before != nullptr && after != nullptr && attributes.out.empty())
        return;
    const dtl::edit_t type = before == nullptr ? dtl::SES_ADD : after == nullptr ? dtl::SES_DELETE : dtl::SES_COMMON;
    const std::string& dn = (before != nullptr ? before : after)->dn;
    if (!writer.out.empty())
        writer.line("", "");
    writer.line(colorOf(type), markOf(type) + visible(dn.empty() ? "dn:" : "dn: " + shownDn(dn)));
    writer.out += attributes.out;
}

}  // namespace

std::string unifiedDiff(const std::string& before, const std::string& after, const std::string& shownName,
                        bool isColored)
{
    if (before == after)
        return {};
    const Middle middle = middleOf(before, after);
    const auto linesBefore =
        std::count(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(middle.begin), '\n');
    dtl::Diff<Line, std::vector<Line>> diff(linesOf(before.substr(middle.begin, middle.end - middle.begin)),
                                            linesOf(after.substr(middle.begin, middle.otherEnd - middle.begin)));
    diff.onHuge();
    diff.compose();
    diff.composeUnifiedHunks();
    Writer writer(isColored);
    writer.line(bold, "--- " + visible(shownName));
    writer.line(bold, "+++ " + visible(shownName) + " (new)");
    for (const auto& hunk : diff.getUniHunks()) {
        writer.line(cyan, "@@ -" + rangeOf(hunk.b == 0 ? 0 : hunk.a + linesBefore, hunk.b) + " +" +
                              rangeOf(hunk.d == 0 ? 0 : hunk.c + linesBefore, hunk.d) + " @@");
        for (const auto* lines : {&hunk.common[0], &hunk.change, &hunk.common[1]}) {
            for (const auto& [line, info] : *lines)
                writer.line(colorOf(info.type), markOf(info.type) + line.shown);
        }
    }
    return writer.out;
}

std::string entryDiff(const NamedEntries& before, const NamedEntries& after, bool isColored)
{
    const EntriesByDn known = byDn(before.entries);
    const EntriesByDn wanted = byDn(after.entries);
    Writer entries(isColored);
    for (const Entry& entry : before.entries)
        writeEntry(entries, &entry, findIn(wanted, entry.dn));
    for (const Entry& entry : after.entries) {
        if (findIn(known, entry.dn) == nullptr)
            writeEntry(entries, nullptr, &entry);
    }
    if (entries.out.empty())
        return {};
    Writer head(isColored);
    head.line(bold, "--- " + before.name);
    head.line(bold, "+++ " + after.name);
    return head.out + entries.out;
}
