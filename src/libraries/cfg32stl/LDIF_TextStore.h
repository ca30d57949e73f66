// The memory in which the texts of a tree's entries stand.
#ifndef LDIF_TEXTSTORE_H
#define LDIF_TEXTSTORE_H

#include "platform.h"

#include <string_view>
#include <vector>

// Owns the text of the file, read once, and the texts that entries have got since. A text that is given up stays where
// it is until what is dead outweighs what is alive; then the owner moves the living texts to a new store.
class LDIF_TextStore {
public:
    LDIF_TextStore() = default;
    // Takes the text of a file over, which is that many bytes long.
    LDIF_TextStore(TextBuffer&& file, std::size_t fileSize);

    // The text of the file. What no entry has kept may be overwritten.
    char* file() noexcept { return pieces.empty() ? nullptr : pieces.front().data(); }
    std::size_t fileSize() const noexcept { return size; }
    // What the file held besides the texts of entries has been overwritten.
    void declassifyFile() noexcept;

    // A copy of a text, which stays where it is. Throws std::bad_alloc.
    std::string_view add(std::string_view text);
    // A text of the store counts as used, or as used no more.
    void keep(std::string_view text) noexcept;
    void release(std::string_view text) noexcept;
    std::size_t used() const noexcept { return alive; }
    // Whether more of the store is dead than alive, and enough to be worth the move.
    bool isWasteful() const noexcept;
    // Gives the text of the file back when none of it is in use.
    void dropDeadFile() noexcept;
    // Makes room for texts of that size together. Throws std::bad_alloc.
    void reserve(std::size_t bytes);

private:
    bool isInFile(std::string_view text) const noexcept;

    std::vector<TextBuffer> pieces;  // the file first
    std::size_t size = 0;            // of the text of the file
    std::size_t end = 0;             // of what is used in the last piece
    std::size_t taken = 0;           // bytes of all pieces that hold text, dead or alive
    std::size_t alive = 0;
    std::size_t aliveInFile = 0;
};

#endif
