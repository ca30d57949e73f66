#include "library/ReadBack.h"

#include "files/Descriptor.h"
#include "library/Comparison.h"

namespace {

// The entries in a text that the library has written.
std::size_t entriesIn(const std::string& text)
{
    constexpr char begin[] = "\ndn: ";
    std::size_t count = text.rfind(begin + 1, 0) == 0 ? 1 : 0;
    for (auto place = text.find(begin); place != std::string::npos; place = text.find(begin, place + 1))
        ++count;
    return count;
}

}  // namespace

ReadBack::ReadBack(const std::string& text, const GuardedFile& written, const std::string& shownName)
    : copy(text), opened(copy.name(), shownName), count(entriesIn(text)),
      isStable(holdsText(written.name(), text, shownName) && holdsText(copy.name(), text, shownName))
{}

bool ReadBack::isPlainlySame(const Session& other) const
{
    return isStable && countSameEntries(other, opened) == count;
}

bool ReadBack::isSame(const Session& other, const std::vector<Entry>& wanted, const std::vector<Entry>& found) const
{
    return isStable && wanted == found && other.outline() == opened.outline();
}
