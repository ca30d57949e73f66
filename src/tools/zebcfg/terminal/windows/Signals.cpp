#include "terminal/Signals.h"

#include "terminal/Progress.h"
#include "terminal/windows/Console.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <vector>

#include <fileName.h>

namespace {

// The system calls the handler on another thread.
std::recursive_mutex& working()
{
    static std::recursive_mutex mutex;
    return mutex;
}

std::vector<std::wstring>& namesToRemove()
{
    static std::vector<std::wstring> names;
    return names;
}

// The lock is never released: the process ends here, with the status that the system's own handler would give it.
BOOL WINAPI removeAndEnd(DWORD /*event*/)
{
    working().lock();
    for (std::wstring& name : namesToRemove()) {
        (void)DeleteFileW(name.c_str());
        name.resize(std::min(name.find_last_of(L"\\/"), name.size()));
        (void)RemoveDirectoryW(name.c_str());  // Only a folder for an editor is empty now.
    }
    eraseProgress();
    restoreConsole();
    TerminateProcess(GetCurrentProcess(), STATUS_CONTROL_C_EXIT);
    return FALSE;
}

}  // namespace

void handleSignals()
{
    (void)working();
    (void)namesToRemove();
    SetConsoleCtrlHandler(removeAndEnd, TRUE);
}

void removeOnSignals(const std::string& path)
{
    const BlockedSignals blocked;
    namesToRemove().push_back(wideName(path));
}

void keepOnSignals(const std::string& path)
{
    const BlockedSignals blocked;
    auto& names = namesToRemove();
    names.erase(std::remove(names.begin(), names.end(), wideName(path)), names.end());
}

BlockedSignals::BlockedSignals()
{
    working().lock();
}

BlockedSignals::~BlockedSignals()
{
    working().unlock();
}
