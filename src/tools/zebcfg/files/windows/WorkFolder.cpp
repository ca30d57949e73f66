#include "files/WorkFolder.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"
#include "files/windows/Handle.h"
#include "terminal/Signals.h"

#include <codePage.h>
#include <fileName.h>

namespace {

constexpr char prefix[] = "zebcfg-";
constexpr char suffix[] = ".edit";

// The files go, and then the directory.
void removeFolder(const std::string& directory)
{
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(wideName(directory + "\\*").c_str(), &found);
    for (bool isFound = search != INVALID_HANDLE_VALUE; isFound; isFound = FindNextFileW(search, &found) != FALSE)
        (void)DeleteFileW((wideName(directory) + L'\\' + found.cFileName).c_str());
    if (search != INVALID_HANDLE_VALUE)
        FindClose(search);
    RemoveDirectoryW(wideName(directory).c_str());
}

// Whoever uses a folder keeps it from being deleted.
bool isAbandoned(const std::string& directory)
{
    return Descriptor(openFile(directory, DELETE, shareAll, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT))
        .isOpen();
}

void removeAbandoned(const std::string& base)
{
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(wideName(base + prefix + '*' + suffix).c_str(), &found);
    for (bool isFound = search != INVALID_HANDLE_VALUE; isFound; isFound = FindNextFileW(search, &found) != FALSE) {
        std::string name;
        const bool isFolder = (found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) ==
                              FILE_ATTRIBUTE_DIRECTORY;
        if (isFolder && narrow(namePage(), found.cFileName, name) && isAbandoned(base + name))
            removeFolder(base + name);
    }
    if (search != INVALID_HANDLE_VALUE)
        FindClose(search);
}

}  // namespace

WorkFolder::WorkFolder(const std::string& name)
{
    const std::string base = temporaryDirectory();
    removeAbandoned(base);
    directory = base + prefix + anyCharacters() + suffix;
    path = directory + '\\' + name;
    std::string descriptor = privateDescriptor();
    SECURITY_ATTRIBUTES security = {sizeof security, descriptor.empty() ? nullptr : descriptor.data(), FALSE};
    const BlockedSignals blocked;
    if (CreateDirectoryW(wideName(directory).c_str(), &security) == FALSE) {
        (void)failed();
        throw systemFailure(0, "cannot create a directory for the editor");
    }
    removeOnSignals(path);
    lock = openFile(directory, FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS);
    if (lock < 0) {
        const Failure failure = systemFailure(0, "cannot keep a directory for the editor");
        keepOnSignals(path);
        removeFolder(directory);
        throw failure;
    }
    SetHandleInformation(handleOf(lock), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);  // by an editor
}

WorkFolder::~WorkFolder()
{
    keepOnSignals(path);
    if (lock >= 0)
        closeFile(lock);
    removeFolder(directory);
}

std::vector<std::string> WorkFolder::otherPlaces()
{
    return {temporaryDirectory()};
}
