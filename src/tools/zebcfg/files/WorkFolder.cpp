#include "files/WorkFolder.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"

#include <cerrno>

namespace {

// Makes a file with a name that is still free, for this user alone. False with the reason in errno.
bool makeFile(std::string& pattern, const std::string& text)
{
    pattern += ".edited-XXXXXX";
    const Descriptor file(createUnique(pattern));
    try {
        if (file.isOpen())
            writeAll(file.get(), text, pattern);
        return file.isOpen();
    } catch (const Failure&) {
        const int error = errno;
        (void)removeName(pattern);
        errno = error;
        return false;
    }
}

}  // namespace

void WorkFolder::write(const std::string& text)
{
    {
        const Descriptor made(openOrCreate(path));
        if (!made.isOpen())
            throw systemFailure(0, "cannot create a file for the editor");
    }
    overwriteFile(path, text);
}

std::string WorkFolder::read() const
{
    return readFile(path, path);
}

std::string keepText(const std::string& text, const std::string& beside)
{
    std::vector<std::string> names = {beside};
    for (const std::string& directory : WorkFolder::otherPlaces())
        names.push_back(directory + "zebslapd.conf");
    for (std::string& name : names) {
        if (makeFile(name, text))
            return name;
    }
    throw systemFailure(0, "cannot keep the edited text");
}
