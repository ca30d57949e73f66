#include "files/Backup.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileName.h"

#include <new>
#include <utility>

#include <ldap.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isThere(const std::string& name)
{
    return ::access(name.c_str(), F_OK) == 0;
}

bool isSameFile(const std::string& left, const std::string& right)
{
    struct stat one = {};
    struct stat other = {};
    return ::stat(left.c_str(), &one) == 0 && ::stat(right.c_str(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

std::string asideName(const std::string& name)
{
    const std::string directory = directoryOf(name);
    return directory + '.' + name.substr(directory.size()) + ".zebcfg-old";
}

}  // namespace

std::string generationName(const std::string& backupName, int number)
{
    return number == 1 ? backupName : backupName + '.' + std::to_string(number);
}

Backup::Backup(std::string backupName, int generations)
    : name(std::move(backupName)), aside(asideName(name)), most(generations)
{}

// What cannot be put back stands under its other name, and the next update tries again.
Backup::~Backup()
{
    if (isAdvanced && isSetAside)
        (void)putBack();
    else if (isAdvanced)
        (void)::unlink(name.c_str());
}

// Two names of one file are left alone by a rename.
bool Backup::putBack() const noexcept
{
    const bool isBack = ::rename(aside.c_str(), name.c_str()) == 0;
    if (isBack)
        (void)::unlink(aside.c_str());
    return isBack;
}

// A backup that holds the live text belongs to a change that was not made, and one that has two names was only about to
// be set aside.
void Backup::recover(const std::string& liveText) const
{
    if (name.empty())
        return;
    (void)::unlink(siblingOf(name).c_str());
    if (!isThere(aside))
        return;
    if (isThere(name) && !isSameFile(name, aside) && readFile(name, name) != liveText)
        retire();
    else if (!putBack())
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot put " + aside + " back in place of " + name);
}

// Each older generation moves up by one, to the first number that is free; the last one goes. Where this ends in
// between, the backup stays aside, and the next time goes on.
void Backup::retire() const
{
    if (most == 1) {
        (void)::unlink(aside.c_str());
        return;
    }
    int free = 2;
    while (free < most && isThere(generationName(name, free)))
        ++free;
    for (; free > 2; --free) {
        if (::rename(generationName(name, free - 1).c_str(), generationName(name, free).c_str()) != 0)
            return;
    }
    (void)::rename(aside.c_str(), generationName(name, 2).c_str());
}

// A copy, for a link would be changed together with the file by programs that write in place.
void Backup::prepare(const LiveFile& file)
{
    if (name.empty())
        return;
    copy.emplace(siblingOf(name), Model{file.path(), file.status()});
    copy->write(file.text());
    copy->sync();
}

// Where there are no links, the backup's name is free for a moment.
void Backup::advance()
{
    if (name.empty())
        return;
    isSetAside = isThere(name);
    if (isSetAside && ::link(name.c_str(), aside.c_str()) != 0 && ::rename(name.c_str(), aside.c_str()) != 0)
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot set the backup " + name + " aside");
    isAdvanced = true;
    copy->moveTo(name);
    syncDirectory(directoryOf(name));
}

void Backup::finish() noexcept
{
    isAdvanced = false;
    try {
        if (isSetAside)
            retire();
    } catch (const std::bad_alloc&) {
        return;  // The backup stays aside.
    }
}
