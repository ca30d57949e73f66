#include "LDIF_TextStore.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

LDIF_TextStore::LDIF_TextStore(TextBuffer&& file, std::size_t fileSize)
    : size(fileSize), end(file.size()), taken(fileSize)
{
    pieces.push_back(std::move(file));
}

void LDIF_TextStore::declassifyFile() noexcept
{
    if (!pieces.empty())
        pieces.front().setSecret(false);
}

std::string_view LDIF_TextStore::add(std::string_view text)
{
    reserve(text.size());
    char* const start = pieces.back().data() + end;
    std::memcpy(start, text.data(), text.size());
    end += text.size();
    taken += text.size();
    alive += text.size();
    return {start, text.size()};
}

// Pieces grow with the store, so that there are few.
void LDIF_TextStore::reserve(std::size_t bytes)
{
    constexpr std::size_t smallest = std::size_t{4} << 10;
    constexpr std::size_t largest = std::size_t{1} << 20;
    if (!pieces.empty() && pieces.back().size() - end >= bytes)
        return;
    pieces.emplace_back(std::max(bytes, std::clamp(taken / 4, smallest, largest)));
    end = 0;
}

void LDIF_TextStore::keep(std::string_view text) noexcept
{
    alive += text.size();
    aliveInFile += isInFile(text) ? text.size() : 0;
}

void LDIF_TextStore::release(std::string_view text) noexcept
{
    alive -= text.size();
    aliveInFile -= isInFile(text) ? text.size() : 0;
}

bool LDIF_TextStore::isInFile(std::string_view text) const noexcept
{
    const std::less_equal<> isUpTo;
    const char* const file = pieces.front().data();
    return isUpTo(file, text.data()) && isUpTo(text.data() + text.size(), file + size);
}

void LDIF_TextStore::dropDeadFile() noexcept
{
    if (aliveInFile != 0 || pieces.size() < 2)
        return;
    pieces.front() = TextBuffer();
    taken -= std::exchange(size, 0);
}

bool LDIF_TextStore::isWasteful() const noexcept
{
    constexpr std::size_t little = std::size_t{64} << 10;
    return taken > 2 * alive + little;
}
