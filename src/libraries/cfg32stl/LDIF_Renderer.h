// The text of the file, made again with what has not changed.
#ifndef LDIF_RENDERER_H
#define LDIF_RENDERER_H

#include "LDIF_Entry.h"

#include <cstdint>
#include <string>

// The text of a tree as appendTreeTo gives it. The entries that have not changed since the last text are copied from
// that, so that a small change costs little more than the copy: a tree of many entries is slow to walk to its leaves. A
// DN that the locale can no longer convert is so still written, as it was read.
class LDIF_Renderer {
public:
    // The text of the tree and what stands behind it. Lives until the next call. After an exception nothing is copied
    // from texts before.
    const std::string& render(LDIF_Entry& root, const LDIF_Comment& behind);
    // Gives the memory of the last text back.
    void clear() noexcept;

private:
    void add(LDIF_Entry& entry);
    void makeText(LDIF_Entry& entry);
    void copyRun();

    std::string text;           // of the last call
    std::uint32_t version = 1;  // of text
    std::string next;           // the text that is being made
    std::size_t runStart = 0;   // the part of text that is to be copied next
    std::size_t runEnd = 0;
};

#endif
