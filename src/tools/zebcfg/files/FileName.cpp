#include "files/FileName.h"

#include "files/Descriptor.h"

#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

std::string resolvedName(const std::string& name)
{
    const std::unique_ptr<char, decltype(&std::free)> path(::realpath(name.c_str(), nullptr), &std::free);
    if (path != nullptr)
        return path.get();
    const std::string directory = directoryOf(name);
    const std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(directory.empty() ? "." : directory.c_str(), nullptr), &std::free);
    return real != nullptr ? real.get() + ('/' + name.substr(directory.size())) : name;
}

std::string directoryOf(const std::string& name)
{
    return name.substr(0, name.find_last_of('/') + 1);  // npos + 1 is 0: no directory
}

std::string siblingOf(const std::string& name)
{
    const std::string directory = directoryOf(name);
    return directory + '.' + name.substr(directory.size()) + ".zebcfg-new";
}

void syncDirectory(const std::string& directory) noexcept
{
    const Descriptor opened(::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.isOpen())
        (void)::fsync(opened.get());  // Some file systems refuse it, and nothing can be done about that.
}
