#include "LiveFile.h"

#include "Failure.h"
#include "Signals.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <zebldapcfg.h>

namespace {

bool isSameFile(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isSameTime(const struct timespec& left, const struct timespec& right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

Failure fileFailure(int extended, Failure failure)
{
    failure.extended = extended;
    return failure;
}

bool endsWhole(const std::string& text)
{
    return !text.empty() && text.back() == '\n';
}

}  // namespace

std::string resolvedName(const std::string& name)
{
    const std::unique_ptr<char, decltype(&std::free)> path(::realpath(name.c_str(), nullptr), &std::free);
    return path != nullptr ? path.get() : name;
}

LiveFile::LiveFile(const std::string& name) : shown(name), resolved(resolvedName(name))
{
    if (::stat(resolved.c_str(), &read) != 0)
        throw fileFailure(CFG_ERR_CONFIG_NOT_FOUND,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be found", shown));
    if (!S_ISREG(read.st_mode))
        throw fileFailure(
            CFG_ERR_CONFIG_OPEN,
            Failure(CFG_CONNECT_ERROR, "this is no regular file; name the configuration file with -F", shown));
    const Descriptor file(openForReading(resolved));
    if (!file.isOpen() || ::fstat(file.get(), &read) != 0)
        throw fileFailure(CFG_ERR_CONFIG_OPEN,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be read", shown));
    content = readAll(file.get(), shown);
}

bool LiveFile::isCurrent() const
{
    struct stat now = {};
    return ::stat(resolved.c_str(), &now) == 0 && isSameFile(now, read) && now.st_size == read.st_size &&
           isSameTime(now.st_mtim, read.st_mtim);
}

std::string LiveFile::damage(const std::string& backupName) const
{
    if (read.st_mtime == 0)
        return "the file has the modification time 0, with which every program takes it for empty; run: touch " + shown;
    if (endsWhole(content) || backupName.empty() || ::access(backupName.c_str(), R_OK) != 0)
        return {};
    const std::string kept = readFile(backupName, backupName);
    if (!endsWhole(kept) || kept.size() <= content.size())
        return {};
    return std::string(content.empty() ? "the file is empty" : "the file breaks off in its last line") +
           ", while the backup " + backupName + " is whole; run: zebcfg restore" +
           (content.empty() ? ", or remove the backup" : ", or put a line end behind the last line");
}

void LiveFile::requireUsable(const std::string& backupName) const
{
    const std::string found = damage(backupName);
    if (!found.empty())
        throw Failure(CFG_CONNECT_ERROR, found, shown);
}

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
        isSameFile(own, there)) {
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

Replacement::Replacement(const std::string& name, std::string backupName)
    : lock(resolvedName(name)), file(name), backup(std::move(backupName)),
      working(siblingOf(file.path()), {file.path(), file.status()})
{
    if (!backup.empty() && resolvedName(backup) == file.path())
        throw Failure(0, "the backup has the name of the file itself", file.shownName());
    working.write(file.text());
}

void Replacement::install()
{
    working.makeLaterThan(file.status());
    working.sync();
    if (!file.isCurrent())
        throw Failure(LDAP_BUSY, "another program has changed the file in the meantime; try again", file.shownName());
    if (!backup.empty())
        keepBackup();
    working.moveTo(file.path());
    syncDirectoryOf(file.path());
}

// A copy, for a link would be changed together with the file by programs that write in place.
void Replacement::keepBackup()
{
    PrivateFile kept(siblingOf(backup), {file.path(), file.status()});
    kept.write(file.text());
    kept.sync();
    kept.moveTo(backup);
    syncDirectoryOf(backup);
}
