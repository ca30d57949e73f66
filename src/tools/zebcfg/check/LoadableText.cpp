#include "check/LoadableText.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <sstream>

namespace {

// A file with more is better looked at once these are mended: each takes a load.
constexpr std::size_t mostFailures = 200;

// Loads a text in place of another. One that loads may still hold what keeps it from being written.
std::optional<Failure> load(std::optional<Loaded>& loaded, const std::string& text, const std::string& shownName)
try {
    loaded.emplace(text, shownName);
    return std::nullopt;
} catch (const Failure& failure) {
    return failure;
}

// The line of the first DN that keeps any file from being written, or 0.
int lineOfUnwritableDn(const std::string& text, const std::string& shownName)
{
    for (const ConfigLine& line : linesOf(text)) {
        std::optional<Loaded> alone;
        if (line.isDn && load(alone, "dn: " + std::string(line.value) + '\n', shownName))
            return line.first;
    }
    return 0;
}

// The bytes of the lines first to last, counted from 1.
std::pair<std::size_t, std::size_t> rangeOf(const std::string& text, int first, int last)
{
    std::size_t begin = 0;
    std::size_t end = 0;
    for (int number = 1; number <= last; ++number) {
        begin = number == first ? end : begin;
        end = std::min(text.find('\n', end), text.size() - 1) + 1;
    }
    return {begin, end};
}

// The first line from number on with bytes that the locale does not know: the library has read on to see whether a
// line is continued, and names the one before.
int lineOfForeignBytes(const std::string& text, int number)
{
    std::istringstream lines(text);
    std::string line;
    for (int i = 1; std::getline(lines, line); ++i) {
        if (i >= number && std::mbstowcs(nullptr, line.c_str(), 0) == static_cast<std::size_t>(-1))
            return i;
    }
    return number;
}

}  // namespace

Loaded::Loaded(const std::string& text, const std::string& shownName) : copy(text), opened(copy.name(), shownName)
{
    opened.flush();
}

LoadableText::LoadableText(const std::string& original, const std::string& shownName) : current(original)
{
    while (std::optional<Failure> failure = load(last, current, shownName)) {
        if (isTextFailure(failure->code))
            failure->fileLine = lineOfForeignBytes(current, failure->fileLine);
        if (failure->fileLine == 0)
            failure->fileLine = lineOfUnwritableDn(current, shownName);
        if (found.size() == mostFailures || !takeOut(*failure)) {
            found.push_back(*failure);
            current.clear();
            last.emplace(current, shownName);
            return;
        }
    }
}

// A dn line keeps its entry together under a name of its own, any other line becomes a comment. False when the line is
// one that has been taken out already.
bool LoadableText::takeOut(Failure failure)
{
    ConfigLine wanted;
    wanted.first = wanted.last = failure.fileLine;
    for (const ConfigLine& line : linesOf(current)) {
        if (line.first <= failure.fileLine && failure.fileLine <= line.last)
            wanted = line;
    }
    const auto [begin, end] = rangeOf(current, wanted.first, wanted.last);
    const auto lineEnds = std::count(current.begin() + static_cast<std::ptrdiff_t>(begin),
                                     current.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    const std::string number = std::to_string(wanted.first);
    std::string replacement = wanted.isDn ? "dn: cn=line " + number + "\n" : "#\n";
    for (auto i = lineEnds; i > 1; --i)
        replacement += "#\n";
    if (failure.fileLine == 0 || current.substr(begin, end - begin) == replacement)
        return false;
    current.replace(begin, end - begin, replacement);
    failure.fileLine = wanted.first;
    found.push_back(failure);
    return true;
}
