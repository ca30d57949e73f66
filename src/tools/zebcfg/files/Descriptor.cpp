#include "files/Descriptor.h"

#include "base/Failure.h"
#include "files/FileSystem.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include <ldapNames.h>
#include <system.h>

namespace {

// Hands over what is left to read, piece by piece, until take gives false.
template <typename Take>
void readPieces(int file, const std::string& shownName, Take take)
{
    std::array<char, 65536> buffer = {};
    for (;;) {
        const std::ptrdiff_t count = readSome(file, buffer.data(), buffer.size());
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot read", shownName);
        if (count == 0 || (count > 0 && !take(std::string_view(buffer.data(), static_cast<std::size_t>(count)))))
            return;
    }
}

constexpr bool hasPlainLines = lineEnd == "\n";

// Text has lines that end with LF alone in memory; in files of the system they may have another end.
std::string withPlainLines(std::string text)
{
    if constexpr (!hasPlainLines) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text.compare(i, lineEnd.size(), lineEnd) != 0)
                text[kept++] = text[i];
            else
                text[kept++] = text[i += lineEnd.size() - 1];
        }
        text.resize(kept);
    }
    return text;
}

[[maybe_unused]] std::string withSystemLines(std::string_view text)
{
    std::string made;
    made.reserve(text.size() + text.size() / 16);
    for (const char character : text) {
        if (character == '\n')
            made += lineEnd;
        else
            made += character;
    }
    return made;
}

void writeBytes(int file, std::string_view bytes, const std::string& shownName)
{
    while (!bytes.empty()) {
        const std::ptrdiff_t count = writeSome(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            throw systemFailure(LDAP_OTHER, "cannot write " + shownName + ", and nothing is changed");
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

Descriptor openedFile(const std::string& name, const std::string& shownName)
{
    const int file = openForReading(name);
    if (file < 0)
        throw systemFailure(LDAP_OTHER, "cannot open", shownName);
    return Descriptor(file);
}

}  // namespace

Descriptor::~Descriptor()
{
    close();
}

void Descriptor::close() noexcept
{
    if (number >= 0)
        closeFile(number);
    number = -1;
}

std::string readAll(int file, const std::string& shownName)
{
    std::string text;
    FileInfo info;
    if (readInfo(file, info) && info.kind == FileKind::regular)
        text.reserve(static_cast<std::size_t>(info.size));
    readPieces(file, shownName, [&](std::string_view piece) {
        text += piece;
        return true;
    });
    return withPlainLines(std::move(text));
}

std::string readFile(const std::string& name, const std::string& shownName)
{
    return readAll(openedFile(name, shownName).get(), shownName);
}

bool holdsText(const std::string& name, const std::string& text, const std::string& shownName)
{
    if constexpr (!hasPlainLines)
        return readFile(name, shownName) == text;
    std::string_view rest = text;
    bool isSame = true;
    readPieces(openedFile(name, shownName).get(), shownName, [&](std::string_view piece) {
        isSame = rest.substr(0, piece.size()) == piece;
        rest.remove_prefix(std::min(piece.size(), rest.size()));
        return isSame;
    });
    return isSame && rest.empty();
}

void writeAll(int file, std::string_view text, const std::string& shownName)
{
    if constexpr (hasPlainLines)
        writeBytes(file, text, shownName);
    else
        writeBytes(file, withSystemLines(text), shownName);
}

void overwriteFile(const std::string& name, const std::string& text)
{
    const Descriptor file(openForOverwriting(name));
    if (!file.isOpen())
        throw systemFailure(LDAP_OTHER, "cannot write " + name);
    writeAll(file.get(), text, name);
}
