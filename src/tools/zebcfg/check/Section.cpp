#include "check/Section.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "formats/ConfigText.h"
#include "library/Dn.h"

#include <algorithm>

namespace {

// The byte after that many lines.
std::size_t afterLines(const std::string& text, int count)
{
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count)
        at = std::min(text.find('\n', at), text.size() - 1) + 1;
    return at;
}

}  // namespace

Section::Section(const std::string& text, const std::string& dn) : whole(text), end(text.size())
{
    if (dn.empty())
        return;
    const DnSpeller spelled;
    int first = 0;
    int last = 0;
    std::vector<std::string> known;
    for (const ConfigLine& line : linesOf(text)) {
        if (line.isDn)
            known.push_back(spelled.orNothing(std::string(line.value)));
        if (first == 0 && line.isDn && isSameName(known.back(), dn))
            first = line.first;
        if (first != 0 && line.entry == first)
            last = line.last;
    }
    if (first == 0)
        throw Failure(LDAP_NO_SUCH_OBJECT,
                      "there is no entry " + shownDn(dn) + nearestNote(dn, [&](const std::string& above) {
                          return std::any_of(known.begin(), known.end(),
                                             [&](const std::string& name) { return isSameName(name, above); });
                      }));
    begin = afterLines(text, first - 1);
    end = afterLines(text, last);
}

int Section::firstLine() const
{
    return 1 + static_cast<int>(std::count(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(begin), '\n'));
}

// What follows begins with a line of its own, and a text without an end would be taken for one that is cut off.
std::string Section::with(const std::string& replacement) const
{
    if (replacement == part())
        return whole;
    const bool lacksEnd = !replacement.empty() && replacement.back() != '\n';
    return whole.substr(0, begin) + replacement + (lacksEnd ? "\n" : "") + whole.substr(end);
}
