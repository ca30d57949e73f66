// How whole files are read and written.
#ifndef TRANSFER_H
#define TRANSFER_H

#include "platform.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

// Makes the buffer twice as large, and keeps what it holds, as a secret. Throws std::bad_alloc.
void enlarge(TextBuffer& content);

// Reads up to the end by read(bytes, size), which gives the number of bytes, 0 at the end, or a negative number when
// it fails; then the result is false. expected is the number of bytes to come, if nothing changes meanwhile. Throws
// std::bad_alloc.
template <typename Read>
bool readToEnd(TextBuffer& content, std::size_t& length, std::size_t expected, Read read)
{
    if (expected == SIZE_MAX)
        throw std::bad_alloc();
    content = TextBuffer(expected + 1);  // one more, to meet the end in the same read
    content.setSecret(true);
    for (length = 0;;) {
        if (length == content.size())
            enlarge(content);
        const std::ptrdiff_t count = read(content.data() + length, content.size() - length);
        if (count <= 0)
            return count == 0;
        length += static_cast<std::size_t>(count);
    }
}

// Writes the pieces by write(bytes), which is false when it fails; then the rest is left out. Small pieces are
// gathered, so that the system is called seldom.
template <typename Write>
void writeGathered(const std::vector<std::string_view>& pieces, std::string& buffer, Write write)
{
    for (const std::string_view piece : pieces) {
        if (buffer.size() + piece.size() > buffer.capacity()) {
            if (!write(buffer))
                return;
            buffer.clear();
        }
        if (piece.size() <= buffer.capacity())
            buffer += piece;
        else if (!write(piece))
            return;
    }
    (void)write(buffer);
}

// An empty text with room for what is gathered. Throws std::bad_alloc.
std::string gatheringBuffer();

#endif
