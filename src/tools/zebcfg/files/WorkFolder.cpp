#include "files/WorkFolder.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "terminal/Signals.h"

#include <cstdlib>
#include <filesystem>

#include <fcntl.h>

WorkFolder::WorkFolder(const std::string& name)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "zebcfg-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw systemFailure(0, "cannot make a directory for the editor");
    directory = pattern;
    path = directory + '/' + name;
    removeOnSignals(path);
}

WorkFolder::~WorkFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
    keepOnSignals(path);
}

void WorkFolder::write(const std::string& text)
{
    {
        const Descriptor made(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        if (!made.isOpen())
            throw systemFailure(0, "cannot make a file for the editor");
    }
    overwriteFile(path, text);
}

std::string WorkFolder::read() const
{
    return readFile(path, path);
}
