#include "LDIF_Renderer.h"

#include <limits>
#include <utility>

const std::string& LDIF_Renderer::render(LDIF_Entry& root, const LDIF_Comment& behind)
{
    runStart = runEnd = 0;
    next.clear();
    next.reserve(text.size() + text.size() / 16);
    try {
        root.appendTo(next);
        for (LDIF_Entry& child : root.children)
            add(child);
        copyRun();
        behind.appendTo(next);
    } catch (...) {
        clear();
        throw;
    }
    text.swap(next);
    next = std::string();
    ++version;
    return text;
}

void LDIF_Renderer::clear() noexcept
{
    text = std::string();
    next = std::string();
    version += 2;  // past that of a text that was being made
}

// What stands side by side in both texts is copied at once.
void LDIF_Renderer::add(LDIF_Entry& entry)
{
    LDIF_Entry::FileText& known = entry.fileText();
    if (known.version == version) {
        if (known.offset != runEnd) {
            copyRun();
            runStart = runEnd = known.offset;
        }
        known.offset = next.size() + (runEnd - runStart);
        runEnd += known.length;
        known.version = version + 1;
    } else {
        copyRun();
        makeText(entry);
    }
    for (LDIF_Entry& child : entry.children)
        add(child);
}

void LDIF_Renderer::makeText(LDIF_Entry& entry)
{
    const std::size_t start = next.size();
    entry.appendTo(next);
    const std::size_t length = next.size() - start;
    const bool fits = length <= std::numeric_limits<std::uint32_t>::max();
    LDIF_Entry::FileText& known = entry.fileText();
    known.offset = start;
    known.length = static_cast<std::uint32_t>(length);
    known.version = fits ? version + 1 : 0;
}

void LDIF_Renderer::copyRun()
{
    next.append(text, runStart, runEnd - runStart);
    runStart = runEnd;
}
