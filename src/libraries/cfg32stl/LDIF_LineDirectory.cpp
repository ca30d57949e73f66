#include "LDIF_LineDirectory.h"

#include "LDIF_EntryText.h"

#include <algorithm>
#include <limits>
#include <new>

namespace {

std::string_view nameAt(std::string_view attributes, std::size_t start) noexcept
{
    return attributes.substr(start, attributes.find(':', start) - start);
}

}  // namespace

std::string_view LDIF_LineDirectory::find(std::uint32_t entry, std::string_view attributes,
                                          std::string_view name) noexcept
{
    if ((entry >= starts.size() || starts[entry] == 0) && !learn(entry, attributes))
        return linesFrom(attributes, name);
    const std::uint16_t* const first = lines.data() + starts[entry];
    const std::uint16_t* const last = first + first[-1];
    const auto isThere = [&](const std::uint16_t* at) { return at != last && isNamed(attributes.substr(*at), name); };
    const std::uint16_t* place = first + std::min<std::size_t>(likely, first[-1]);
    if (!isThere(place)) {
        const auto isBefore = [&](std::uint16_t start, std::string_view wanted) {
            return compareFolded(nameAt(attributes, start), wanted) < 0;
        };
        place = std::lower_bound(first, last, name, isBefore);
        if (!isThere(place))
            return {};
        likely = static_cast<std::size_t>(place - first);
    }
    return attributes.substr(*place);
}

// False for an entry that is too large.
bool LDIF_LineDirectory::learn(std::uint32_t entry, std::string_view attributes) noexcept
try {
    if (attributes.size() > std::numeric_limits<std::uint16_t>::max())
        return false;
    if (entry >= starts.size())
        starts.resize(entry + 1 + entry / 4);
    const std::size_t count = lines.size();
    lines.push_back(0);
    std::string_view name;
    for (std::string_view rest = attributes; !rest.empty();) {
        const std::size_t start = attributes.size() - rest.size();
        const LDIF_TextLine line = takeLine(rest);
        if (!line.name.empty() && line.name != name)
            lines.push_back(static_cast<std::uint16_t>(start));
        name = line.name;
    }
    lines[count] = static_cast<std::uint16_t>(lines.size() - count - 1);
    starts[entry] = static_cast<std::uint32_t>(count + 1);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void LDIF_LineDirectory::forget(std::uint32_t entry) noexcept
{
    if (entry >= starts.size() || starts[entry] == 0)
        return;
    constexpr std::size_t little = 4096;
    forgotten += lines[starts[entry] - 1] + std::size_t{1};
    starts[entry] = 0;
    if (forgotten > lines.size() / 2 + little)
        clear();
}
