#include "files/PrivateFile.h"

#include "base/Failure.h"
#include "terminal/Signals.h"

#include <ldapNames.h>

namespace {

constexpr std::int64_t mostAhead = 2;  // seconds

int createFresh(const std::string& path, const Protection& like)
{
    (void)removeName(path);
    removeOnSignals(path);
    return createFile(path, like);
}

}  // namespace

PrivateFile::PrivateFile(const std::string& fileName, const Model& model)
    : path(fileName), file(createFresh(fileName, model.info.protection))
{
    if (file.isOpen() && takeOver(file.get(), model)) {
        lost = copyAttributes(file.get(), model.name);
        return;
    }
    const Failure failure = systemFailure(
        LDAP_INSUFFICIENT_ACCESS, file.isOpen() ? "cannot keep the owner and mode of the file, so nothing is changed"
                                                : "cannot create the file " + path);
    if (file.isOpen())
        (void)removeName(path);
    keepOnSignals(path);
    throw failure;
}

PrivateFile::~PrivateFile()
{
    if (!isMoved)
        (void)removeName(path);
    keepOnSignals(path);
}

void PrivateFile::write(const std::string& text)
{
    if (!cutToNothing(file.get()))
        throw systemFailure(LDAP_OTHER, "cannot write " + path);
    writeAll(file.get(), text, path);
}

std::string PrivateFile::text() const
{
    return readFile(file.name(), path);
}

void PrivateFile::sync()
{
    if (!syncFile(file.get()))
        throw systemFailure(LDAP_OTHER, "cannot sync the new file, and nothing is changed");
}

void PrivateFile::makeLaterThan(const FileInfo& other)
{
    FileInfo own;
    const std::int64_t later = other.time + 1;
    if (readInfo(file.get(), own) && own.time < later && own.time + mostAhead >= later)
        (void)setTime(file.get(), later);
}

void PrivateFile::moveTo(const std::string& target)
{
    file.close();
    if (!moveOver(path, target))
        throw systemFailure(LDAP_INSUFFICIENT_ACCESS, "cannot put a new file in place of " + target);
    isMoved = true;
}
