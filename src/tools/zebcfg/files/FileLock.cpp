#include "files/FileLock.h"

#include "base/Failure.h"
#include "files/FileName.h"
#include "files/FileSystem.h"

#include <array>
#include <ctime>
#include <thread>

#include <ldapNames.h>

namespace {

// The first line of a lock file.
constexpr char mark[] = "zebcfg lock\n";

}  // namespace

FileLock::FileLock(const std::string& path, std::chrono::seconds wait,
                   const std::function<bool(const std::string&)>& isDue,
                   const std::function<void(const std::string&)>& note)
    : name(path + ".lock"), fresh(siblingOf(name))
{
    using namespace std::chrono_literals;
    const auto begin = std::chrono::steady_clock::now();
    for (bool isNoted = false;; std::this_thread::sleep_for(20ms)) {
        if (!isDue(path))
            continue;
        if (tryLock()) {
            if (isDue(path))
                return;
            release();
            continue;
        }
        const auto waited = std::chrono::steady_clock::now() - begin;
        if (waited > wait)
            throw Failure(LDAP_BUSY,
                          "the file is being updated by " + holder + ", which holds " + name + "; try again later");
        if (waited > 1s && !isNoted) {
            note("waiting for " + holder + ", which holds " + name);
            isNoted = true;
        }
    }
}

FileLock::~FileLock()
{
    release();
}

std::string FileLock::content()
{
    std::array<char, 32> when = {};
    const std::tm now = localTime(std::time(nullptr));
    (void)std::strftime(when.data(), when.size(), "%Y-%m-%d %H:%M:%S", &now);
    return mark + processName() + " since " + when.data() + '\n';
}

bool FileLock::readHolder(const std::string& text)
{
    const bool isMarked = text.rfind(mark, 0) == 0;
    if (isMarked)
        holder = text.substr(sizeof mark - 1, text.find('\n', sizeof mark - 1) - (sizeof mark - 1));
    return isMarked;
}

Failure FileLock::foreign() const
{
    return {LDAP_BUSY, name + " is not a lock of zebcfg; remove it if nothing else needs it"};
}
