#include "files/LiveFile.h"

#include "base/Failure.h"
#include "base/Text.h"
#include "files/Descriptor.h"
#include "files/FileName.h"

#include <cerrno>

#include <ldapNames.h>
#include <zebldapcfg.h>

namespace {

Failure fileFailure(int extended, Failure failure)
{
    failure.extended = extended;
    return failure;
}

bool isReadableFile(const std::string& name)
{
    FileInfo info;
    return readInfo(name, info) && info.kind == FileKind::regular && isReadable(name);
}

bool endsWhole(const std::string& text)
{
    return !text.empty() && text.back() == '\n';
}

// A link that leads nowhere is there too.
bool isInUse(const std::string& name)
{
    FileInfo info;
    return readOwnInfo(name, info) || errno != ENOENT;
}

}  // namespace

void requireMissing(const std::string& name)
{
    if (isInUse(name))
        throw Failure(LDAP_ALREADY_EXISTS, "the file already exists", name);
}

LiveFile::LiveFile(const std::string& name, Presence presence) : shown(name), resolved(resolvedName(name))
{
    if (presence == Presence::isMissing)
        requireMissing(name);
    isAbsent = presence != Presence::isThere && !isInUse(name);
    if (isAbsent) {
        read = infoOfNewFile();
        return;
    }
    if (!readInfo(resolved, read))
        throw fileFailure(CFG_ERR_CONFIG_NOT_FOUND,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be found", shown));
    if (read.kind != FileKind::regular)
        throw fileFailure(
            CFG_ERR_CONFIG_OPEN,
            Failure(CFG_CONNECT_ERROR, "this is not a regular file; name the configuration file with -F", shown));
    const Descriptor file(openForReading(resolved));
    if (!file.isOpen() || !readInfo(file.get(), read))
        throw fileFailure(CFG_ERR_CONFIG_OPEN,
                          systemFailure(CFG_CONNECT_ERROR, "the configuration file cannot be read", shown));
    content = readAll(file.get(), shown);
}

bool LiveFile::isCurrent() const
{
    if (isAbsent)
        return !isInUse(shown);
    FileInfo now;
    return readInfo(resolved, now) && isSameFile(now, read) && now.size == read.size && now.time == read.time &&
           now.nanoseconds == read.nanoseconds;
}

std::string LiveFile::damage(const std::string& backupName) const
{
    if (read.time == 0)
        return "the file has the modification time 0, so every program treats it as empty; run: " + touchCommand(shown);
    if (endsWhole(content) || !isReadableFile(backupName))
        return {};
    const std::string kept = readFile(backupName, backupName);
    if (!endsWhole(kept) || kept.size() <= content.size())
        return {};
    return std::string(isAbsent          ? "the file is missing"
                       : content.empty() ? "the file is empty"
                                         : "the last line of the file is incomplete") +
           ", while the backup " + backupName + " is complete; run: zebcfg restore" +
           (content.empty() ? ", or remove the backup" : ", or put a line end after the last line");
}

void LiveFile::requireUsable(const std::string& backupName) const
{
    const std::string found = damage(backupName);
    if (!found.empty())
        throw Failure(CFG_CONNECT_ERROR, found, shown);
    if (hasByteOrderMark(content))
        throw Failure(CFG_CONNECT_ERROR, "the file begins with a byte order mark; save it without one", shown);
}
