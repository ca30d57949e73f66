#include "files/FileLock.h"

#include "base/Failure.h"
#include "terminal/Signals.h"

#include <chrono>
#include <iostream>
#include <thread>

#include <fcntl.h>
#include <ldap.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

FileLock::FileLock(const std::string& path) : name(path + ".lock")
{
    using namespace std::chrono_literals;
    constexpr auto pause = 20ms;
    const auto begin = std::chrono::steady_clock::now();
    for (bool isTold = false; !tryLock();) {
        const auto waited = std::chrono::steady_clock::now() - begin;
        if (waited > 60s)
            throw Failure(LDAP_BUSY, "another zebcfg is updating the file (it holds " + name + "); try again later");
        if (waited > 1s && !isTold)
            std::cerr << "zebcfg: waiting for another zebcfg, which holds " << name << '\n';
        isTold = waited > 1s;
        std::this_thread::sleep_for(pause);
    }
}

// The holder removes the name before it lets go, so a lock counts only while the name stands for the file locked.
bool FileLock::tryLock()
{
    const BlockedSignals blocked;
    file = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot make the lock file " + name);
    struct stat own = {};
    struct stat there = {};
    if (::flock(file, LOCK_EX | LOCK_NB) == 0 && ::fstat(file, &own) == 0 && ::stat(name.c_str(), &there) == 0 &&
        own.st_dev == there.st_dev && own.st_ino == there.st_ino) {
        removeOnSignals(name);
        return true;
    }
    ::close(file);
    return false;
}

FileLock::~FileLock()
{
    const BlockedSignals blocked;
    (void)::unlink(name.c_str());
    keepOnSignals(name);
    ::close(file);
}
