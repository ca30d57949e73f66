#include "files/WorkFolder.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "terminal/Signals.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr char prefix[] = "zebcfg-";

bool isUsable(const std::string& directory)
{
    std::error_code ignored;
    return fs::is_directory(directory, ignored) && ::access(directory.c_str(), W_OK | X_OK) == 0;
}

fs::path baseDirectory()
{
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    for (const std::string& directory : {std::string(runtime != nullptr ? runtime : ""), std::string("/dev/shm")}) {
        if (isUsable(directory))
            return directory;
    }
    return fs::temp_directory_path();
}

// In ticks since the system was started; empty when there is no such process. The name in front of it may hold anything
// but ends with the last parenthesis.
std::string startTimeOf(long process)
{
    constexpr int fieldsBefore = 19;
    std::string start;
    try {
        const std::string name = "/proc/" + std::to_string(process) + "/stat";
        const std::string text = readFile(name, name);
        std::istringstream fields(text.substr(text.rfind(')') + 1));
        for (int i = 0; i <= fieldsBefore; ++i)
            fields >> start;
    } catch (const Failure&) {
        start.clear();
    }
    return start;
}

// The name of a folder has the process and its start time.
std::string nameStart(long process)
{
    return prefix + std::to_string(process) + '-' + startTimeOf(process) + '-';
}

// Whether the process in the name is gone, and nobody holds the folder.
bool isAbandoned(const fs::path& directory)
{
    const std::string name = directory.filename().string();
    const long process = name.rfind(prefix, 0) == 0 ? std::strtol(name.c_str() + sizeof prefix - 1, nullptr, 10) : 0;
    if (process <= 0 || name.rfind(nameStart(process), 0) == 0)
        return false;
    const Descriptor folder(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder.isOpen() && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

bool isOwnFolder(const std::string& directory)
{
    struct stat status = {};
    return ::lstat(directory.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & 077) == 0;
}

void removeAbandoned(const std::string& base)
{
    std::error_code ignored;
    for (const auto& item : fs::directory_iterator(base, ignored)) {
        if (isOwnFolder(item.path().string()) && isAbandoned(item.path()))
            fs::remove_all(item.path(), ignored);
    }
}

}  // namespace

WorkFolder::WorkFolder(const std::string& name)
{
    const std::string base = baseDirectory().string();
    removeAbandoned(base);
    std::string pattern = base + '/' + nameStart(::getpid()) + "XXXXXX";
    const BlockedSignals blocked;
    if (::mkdtemp(pattern.data()) == nullptr)
        throw systemFailure(0, "cannot create a directory for the editor");
    directory = pattern;
    path = directory + '/' + name;
    removeOnSignals(path);
    lock = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY);  // An editor inherits it.
    (void)::flock(lock, LOCK_EX | LOCK_NB);
}

WorkFolder::~WorkFolder()
{
    std::error_code ignored;
    fs::remove_all(directory, ignored);
    keepOnSignals(path);
    if (lock >= 0)
        ::close(lock);
}

std::vector<std::string> WorkFolder::otherPlaces()
{
    std::error_code ignored;
    return {(fs::temp_directory_path(ignored) / "").string(), (baseDirectory() / "").string()};
}
