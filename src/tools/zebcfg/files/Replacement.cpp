#include "files/Replacement.h"

#include "base/Failure.h"
#include "files/FileName.h"
#include "terminal/Signals.h"

#include <ctime>

#include <ldapNames.h>

namespace {

// Programs notice a change by the modification time in whole seconds, so each is later than the one before. The lock is
// taken when that is at most 2 seconds ahead of the clock. A file that lies further ahead was not made so by the tool.
bool isDue(const std::string& path)
{
    constexpr std::time_t ahead = 2;
    FileInfo info;
    const std::time_t now = std::time(nullptr);
    return !readInfo(path, info) || info.time + 1 <= now + ahead || info.time > now + ahead;
}

void noteLost(const PrivateFile& copy, const Handling& handling)
{
    for (const std::string& attribute : copy.lostAttributes())
        handling.note("the extended attribute " + attribute + " of the file could not be kept");
}

// Whether an update of the file works under that name.
bool isTaken(const std::string& path, const std::string& name)
{
    const std::string lock = path + ".lock";
    return name == lock || name == siblingOf(lock) || name == siblingOf(path);
}

void requireUsableBackup(const std::string& name, const LiveFile& file)
{
    FileInfo info;
    if (resolvedName(name) == file.path())
        throw Failure(0, "the backup has the name of the file itself", file.shownName());
    if (isTaken(file.path(), resolvedName(name)))
        throw Failure(0, "the update itself needs " + name + "; name another backup with -B", file.shownName());
    if (readOwnInfo(name, info) && info.kind != FileKind::regular)
        throw Failure(0, "the backup would replace " + name + ", which is not a regular file; name another with -B",
                      file.shownName());
}

// The file as the model of what replaces it.
Model replaceableModel(const LiveFile& file, const Handling& handling)
{
    requireReplaceable(file, handling);
    return {file.path(), file.info()};
}

}  // namespace

bool isPartOfUpdate(const std::string& name, const std::string& file, const std::string& backup, int generations)
{
    const std::string wanted = resolvedName(name);
    const std::string path = resolvedName(file);
    bool isPart = wanted == path || isTaken(path, wanted);
    for (int i = 1; !backup.empty() && i <= generations; ++i)
        isPart = isPart || wanted == resolvedName(generationName(backup, i));
    return isPart;
}

void requireReplaceable(const LiveFile& file, const Handling& handling)
{
    for (int i = 1; !handling.backup.empty() && i <= handling.generations; ++i)
        requireUsableBackup(generationName(handling.backup, i), file);
    if (file.info().isFixed)
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "the file is read-only; attrib -r lets it be changed",
                      file.shownName());
    if (file.info().names > 1 && !handling.isForced)
        throw Failure(LDAP_UNWILLING_TO_PERFORM,
                      "the file has " + std::to_string(file.info().names) +
                          " names (hard links), and the others would keep the old text; --force replaces it anyway",
                      file.shownName());
}

Replacement::Replacement(const std::string& name, const Handling& wanted)
    : handling(wanted), lock(resolvedName(name), wanted.wait, &isDue, wanted.note), file(name, wanted.presence),
      backup(file.isMissing() ? "" : wanted.backup, wanted.generations),
      working(siblingOf(file.path()), replaceableModel(file, handling))
{
    backup.recover(file.text());
}

void Replacement::install()
{
    working.makeLaterThan(file.info());
    working.sync();
    backup.prepare(file);
    if (!file.isCurrent())
        throw Failure(LDAP_BUSY, "another program has changed the file in the meantime; try again", file.shownName());
    const std::string directory = directoryOf(file.path());
    const BlockedSignals blocked;
    backup.advance();
    working.moveTo(file.path());
    syncDirectory(directory);
    backup.finish();
    noteLost(working, handling);
}

void createLike(const LiveFile& model, const std::string& name, const Handling& handling)
{
    const std::string path = resolvedName(name);
    const FileLock lock(path, handling.wait, &isDue, handling.note);
    if (isThere(path))
        throw Failure(LDAP_BUSY, "another program has created the file in the meantime; try again", name);
    PrivateFile copy(siblingOf(path), {model.path(), model.info()});
    copy.write(model.text());
    copy.sync();
    copy.moveTo(path);
    syncDirectory(directoryOf(path));
    noteLost(copy, handling);
}
