#include "files/FileName.h"

#include "files/FileSystem.h"

std::string resolvedName(const std::string& name)
{
    std::string path = realName(name);
    if (!path.empty())
        return path;
    const std::string directory = directoryOf(name);
    const std::string real = realName(directory.empty() ? "." : directory);
    return !real.empty() ? real + separators[0] + name.substr(directory.size()) : name;
}

std::string directoryOf(const std::string& name)
{
    return name.substr(0, name.find_last_of(separators) + 1);  // npos + 1 is 0: no directory
}

std::string siblingOf(const std::string& name)
{
    const std::string directory = directoryOf(name);
    return directory + '.' + name.substr(directory.size()) + ".zebcfg-new";
}
