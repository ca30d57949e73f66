#include "formats/LdifLines.h"

#include "base/Base64.h"
#include "base/Encoding.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

#include <ldapNames.h>

namespace {

constexpr char blanks[] = " \t\v\f";

std::string_view withoutFirst(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

std::string_view withoutLast(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

int linesIn(std::string_view text)
{
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// A line end and a blank go on with the line.
std::string unfolded(std::string_view folded)
{
    constexpr std::string_view mark = "\n ";
    std::string line;
    for (auto end = folded.find(mark); end != std::string_view::npos; end = folded.find(mark)) {
        line += folded.substr(0, end);
        folded.remove_prefix(end + mark.size());
    }
    return line.append(folded);
}

}  // namespace

LdifLines::LdifLines(std::string ldif, std::string shown) : text(std::move(ldif)), shownName(std::move(shown))
{
    number = 1;
    if (hasByteOrderMark(text))
        throw failure(0, "the text begins with a byte order mark; save it without one");
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    text += "\n\n";
}

bool LdifLines::nextRecord()
{
    recordBegin = std::min(text.find_first_not_of('\n', recordEnd), text.size());
    recordEnd = std::min(text.find("\n\n", recordBegin), text.size() - 1) + 1;
    const std::string_view all = text;
    nextNumber += linesIn(all.substr(place, recordBegin - place));
    place = recordBegin;
    const auto nul = all.substr(recordBegin, recordEnd - recordBegin).find('\0');
    if (nul != std::string_view::npos) {
        number = nextNumber + linesIn(all.substr(recordBegin, nul));
        throw failure(0, "there is a NUL byte in the line");
    }
    return recordBegin < text.size();
}

bool LdifLines::next(LdifLine& line)
{
    while (place < recordEnd) {
        const std::string_view folded = nextFolded();
        if (folded.front() == '#')
            continue;
        const bool isFolded = nextNumber - number > 1;
        line = isFolded ? parse(unfolded(folded)) : parse(folded);
        return true;
    }
    number = nextNumber;
    line = {};
    return false;
}

Failure LdifLines::failure(int code, const std::string& reason) const
{
    Failure made(code, reason, shownName);
    made.fileLine = number;
    return made;
}

// Goes past the line and those that continue it.
std::string_view LdifLines::nextFolded()
{
    number = nextNumber;
    const std::size_t begin = place;
    do {
        place = text.find('\n', place) + 1;
        ++nextNumber;
    } while (place < recordEnd && text[place] == ' ');
    return std::string_view(text).substr(begin, place - 1 - begin);
}

// attrval-spec = name ":" [":"] [value], or "-"
LdifLine LdifLines::parse(std::string_view line) const
{
    if (line == "-")
        return {true, {}, {}};
    const auto colon = line.find(':');
    if (colon == std::string_view::npos)
        throw failure(0, "the line has no colon");
    const std::string_view name = withoutFirst(withoutLast(line.substr(0, colon)));
    const std::string_view value = line.substr(colon + 1);
    const char form = value.empty() ? '\0' : value.front();
    if (form == '<')
        throw failure(LDAP_UNWILLING_TO_PERFORM, "values are not fetched from URLs");
    LdifLine parsed = {false, inLocale(std::string(name)), {}};
    parsed.value = form == ':' ? decoded(value.substr(1)) : std::string(withoutFirst(value));
    if (parsed.value.find('\0') != std::string::npos)
        throw failure(LDAP_INVALID_SYNTAX, shownLine(parsed.name) + ": the value contains a NUL byte");
    parsed.value = inLocale(std::move(parsed.value));
    return parsed;
}

std::string LdifLines::decoded(std::string_view value) const
{
    const auto bytes = fromBase64(withoutFirst(withoutLast(value)));
    if (!bytes)
        throw failure(0, "the value is not valid base64");
    return *bytes;
}

std::string LdifLines::inLocale(std::string utf8) const
{
    try {
        return fromUtf8(std::move(utf8));
    } catch (const Failure& refusal) {
        throw failure(refusal.code, refusal.text);
    }
}
