#include "LDIF_LineDirectory.h"

#include "LDIF_EntryText.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace {

constexpr std::size_t mostForms = std::numeric_limits<std::uint16_t>::max();
constexpr std::size_t mostBytes = std::numeric_limits<std::uint16_t>::max();  // of the attributes of an entry
constexpr std::uint16_t unknownPlace = std::numeric_limits<std::uint16_t>::max();

}  // namespace

std::string_view LDIF_LineDirectory::find(std::uint32_t entry, std::string_view attributes,
                                          std::string_view name) noexcept
try {
    if (!isKnown(entry) && !learn(entry, attributes))
        return linesFrom(attributes, name);
    if (name != asked)
        ask(name);
    const std::uint16_t* const first = startsOf(entry);
    Form& form = forms[first[-1]];
    if (form.place == unknownPlace)
        form.place = placeOf(attributes, first, form.count);
    return form.place == form.count ? std::string_view() : attributes.substr(first[form.place]);
} catch (const std::bad_alloc&) {
    return linesFrom(attributes, name);
}

std::size_t LDIF_LineDirectory::start(std::uint32_t entry) const noexcept
{
    if (!isKnown(entry))
        return nowhere;
    const std::uint16_t* const first = startsOf(entry);
    const Form& form = forms[first[-1]];
    return form.place < form.count ? first[form.place] : nowhere;
}

void LDIF_LineDirectory::ask(std::string_view name)
{
    asked = name;
    for (Form& form : forms)
        form.place = unknownPlace;
}

// Which of the attributes, in order of their names, has the name that is asked for.
std::uint16_t LDIF_LineDirectory::placeOf(std::string_view attributes, const std::uint16_t* first,
                                          std::size_t count) const noexcept
{
    const auto isBefore = [&](std::uint16_t start, std::string_view wanted) {
        const std::string_view line = attributes.substr(start);
        return compareFolded(line.substr(0, line.find(':')), wanted) < 0;
    };
    const std::uint16_t* const found = std::lower_bound(first, first + count, std::string_view(asked), isBefore);
    const bool isThere = found != first + count && isNamed(attributes.substr(*found), asked);
    return isThere ? static_cast<std::uint16_t>(found - first) : static_cast<std::uint16_t>(count);
}

// False for an entry that was not asked for before, is too large, or of one form too many.
bool LDIF_LineDirectory::learn(std::uint32_t entry, std::string_view attributes)
{
    if (entry >= parts.size())
        parts.resize(entry + 1 + entry / 4);
    if (std::exchange(parts[entry], askedOnce) == 0 || attributes.size() >= mostBytes)
        return false;
    names.clear();
    part.assign(1, 0);  // the form comes last
    std::string_view name;
    for (std::string_view rest = attributes; !rest.empty();) {
        const std::size_t start = attributes.size() - rest.size();
        const LDIF_TextLine line = takeLine(rest);
        if (line.name.empty() || line.name == name)
            continue;
        name = line.name;
        names.append(name).append(1, ':');
        part.push_back(static_cast<std::uint16_t>(start));
    }
    const auto known = formsByNames.find(names);
    if (known != formsByNames.end()) {
        part.front() = known->second;
    } else {
        if (forms.size() == mostForms)
            return false;
        part.front() = static_cast<std::uint16_t>(forms.size());
        forms.push_back({static_cast<std::uint16_t>(part.size() - 1), unknownPlace});
        formsByNames.emplace(names, part.front());
    }
    lines.insert(lines.end(), part.begin(), part.end());
    parts[entry] = static_cast<std::uint32_t>(lines.size() - part.size() + 1 + askedOnce);
    return true;
}

void LDIF_LineDirectory::forget(std::uint32_t entry) noexcept
{
    if (!isKnown(entry))
        return;
    constexpr std::size_t little = 4096;
    forgotten += forms[startsOf(entry)[-1]].count + std::size_t{1};
    parts[entry] = 0;
    if (forgotten > lines.size() / 2 + little)
        clear();
}
