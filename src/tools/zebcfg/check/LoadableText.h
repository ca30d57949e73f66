// A configuration text made to load, and to be written, by taking out one after the other the lines that prevent it.
#ifndef ZEBCFG_LOADABLETEXT_H
#define ZEBCFG_LOADABLETEXT_H

#include "base/Failure.h"
#include "files/MemoryFile.h"
#include "formats/ConfigText.h"
#include "library/Session.h"

#include <optional>
#include <string>
#include <vector>

// A text that the library has loaded, and written once.
class Loaded {
public:
    // Throws Failure.
    Loaded(const std::string& text, const std::string& shownName);

    const Session& session() const noexcept { return opened; }
    // What the library has written.
    const MemoryFile& file() const noexcept { return copy; }

private:
    const MemoryFile copy;
    Session opened;
};

class LoadableText {
public:
    LoadableText(const std::string& original, const std::string& shownName);

    // With the same number of lines as the original, whose numbers stay true.
    const std::string& text() const noexcept { return current; }
    // What ended the loads, with the first line of the text at fault. Ends with the last one that can be mended so.
    const std::vector<Failure>& failures() const noexcept { return found; }

    const Loaded& loaded() const noexcept { return *last; }

private:
    bool takeOut(Failure failure);

    std::string current;
    std::optional<Loaded> last;
    std::vector<Failure> found;
};

#endif
