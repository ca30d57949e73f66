#include "files/Replacement.h"

#include "base/Failure.h"
#include "files/FileName.h"

#include <ldap.h>

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

void createLike(const LiveFile& model, const std::string& name)
{
    const std::string path = resolvedName(name);
    const FileLock lock(path);
    PrivateFile copy(siblingOf(path), {model.path(), model.status()});
    copy.write(model.text());
    copy.sync();
    copy.moveTo(path);
    syncDirectoryOf(path);
}
