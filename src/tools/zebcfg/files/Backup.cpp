#include "files/Backup.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileName.h"
#include "files/FileSystem.h"

#include <new>
#include <utility>

#include <ldapNames.h>

namespace {

bool areSameFile(const std::string& left, const std::string& right)
{
    FileInfo one;
    FileInfo other;
    return readInfo(left, one) && readInfo(right, other) && isSameFile(one, other);
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
        (void)removeName(name);
}

// Two names of one file are left alone by a rename.
bool Backup::putBack() const noexcept
{
    const bool isBack = moveOver(aside, name);
    if (isBack)
        (void)removeName(aside);
    return isBack;
}

// A backup that holds the live text belongs to a change that was not made, and one that has two names was only about to
// be set aside.
void Backup::recover(const std::string& liveText) const
{
    if (name.empty())
        return;
    (void)removeName(siblingOf(name));
    if (!isThere(aside))
        return;
    if (isThere(name) && !areSameFile(name, aside) && readFile(name, name) != liveText)
        retire();
    else if (!putBack())
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot put " + aside + " back in place of " + name);
}

// Each older generation moves up by one, to the first number that is free; the last one goes. Where this ends in
// between, the backup stays aside, and the next time goes on.
void Backup::retire() const
{
    if (most == 1) {
        (void)removeName(aside);
        return;
    }
    int free = 2;
    while (free < most && isThere(generationName(name, free)))
        ++free;
    for (; free > 2; --free) {
        if (!moveOver(generationName(name, free - 1), generationName(name, free)))
            return;
    }
    (void)moveOver(aside, generationName(name, 2));
}

// A copy, for a link would be changed together with the file by programs that write in place.
void Backup::prepare(const LiveFile& file)
{
    if (name.empty())
        return;
    copy.emplace(siblingOf(name), Model{file.path(), file.info()});
    copy->write(file.text());
    copy->sync();
}

// Where there are no links, the backup's name is free for a moment.
void Backup::advance()
{
    if (name.empty())
        return;
    isSetAside = isThere(name);
    if (isSetAside && !addName(name, aside) && !moveOver(name, aside))
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
