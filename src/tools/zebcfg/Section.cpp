#include "Section.h"

#include "Attributes.h"
#include "ConfigText.h"
#include "Dn.h"
#include "Failure.h"

#include <algorithm>

namespace {

// The byte behind that many lines.
std::size_t behindLines(const std::string& text, int count)
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
    for (const ConfigLine& line : linesOf(text)) {
        if (first == 0 && line.isDn && isSameName(spelled.orNothing(line.value), dn))
            first = line.first;
        if (first != 0 && line.entry == first)
            last = line.last;
    }
    if (first == 0)
        throw Failure(LDAP_NO_SUCH_OBJECT, "there is no entry " + dn);
    begin = behindLines(text, first - 1);
    end = behindLines(text, last);
}

// What follows begins with a line of its own, and a text without an end would be taken for one that is cut off.
std::string Section::with(const std::string& replacement) const
{
    if (replacement == part())
        return whole;
    const bool lacksEnd = !replacement.empty() && replacement.back() != '\n';
    return whole.substr(0, begin) + replacement + (lacksEnd ? "\n" : "") + whole.substr(end);
}
