#include "LDIF_File.h"

#include "LDIF_Exception.h"
#include "LDIF_Loader.h"
#include "zebldapcfg.h"

#include <utility>

namespace {

constexpr std::size_t pathSize = 1023;  // in bytes, with the closing NUL

LDIF_Exception fileFailure(int ldapErr, int extErr, const std::string& text, const std::string& fileName,
                           SourcePos pos = SourcePos::here())
{
    LDIF_Exception failure(ldapErr, extErr, text, pos);
    failure.configFile = fileName;
    return failure;
}

LDIF_Exception cannotOpen(const std::string& fileName, SourcePos pos = SourcePos::here())
{
    return fileFailure(LDAP_INSUFFICIENT_ACCESS, CFG_ERR_CONFIG_OPEN, "Unable to open: \"" + fileName + '"', fileName,
                       pos);
}

std::string fullPathOf(const std::string& name)
{
    if (name.empty())
        throw fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_FILENAME, "Config filename is NULL!", "<NULL>");
    char path[pathSize];
    const int error = fullPathName(name.c_str(), path, pathSize);
    if (error == 0)
        return path;
    LDIF_Exception failure = fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_FILENAME, "GetFullPathName()", name);
    failure.sysErr = error;
    failure.sysErrIsWin32 = 1;
    throw failure;
}

}  // namespace

LDIF_File::LDIF_File(const std::string& name, const std::string& backupName)
    : fileName(fullPathOf(name)), backupFileName(backupName)
{
    refresh();
}

void LDIF_File::readStatus(FileStatus& status) const
{
    const int error = readFileStatus(fileName, status);
    if (error == 0)
        return;
    LDIF_Exception failure = fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_NOT_FOUND, "_stat()", fileName);
    failure.sysErr = error;
    throw failure;
}

bool LDIF_File::refresh()
{
    tree.followLocale();
    FileStatus status;
    readStatus(status);
    if (!mustRead && status.time == fileStat.time)
        return false;
    LDIF_Tree emptyTree = readText();
    mustRead = true;
    bool needsRewrite = false;
    readTree(std::move(emptyTree), needsRewrite);
    mustRead = false;
    fileStat = status;
    if (needsRewrite)
        flush();
    return true;
}

// A tree that has the text of the file, and no entries yet.
LDIF_Tree LDIF_File::readText() const
try {
    TextBuffer text;
    std::size_t size = 0;
    if (!readFile(fileName, text, size))
        throw fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_OPEN, "ifstream()", fileName);
    return {std::move(text), size};
} catch (...) {
    completeAndThrow("System error reading file", [&](LDIF_Exception& failure) { failure.configFile = fileName; });
}

void LDIF_File::readTree(LDIF_Tree&& emptyTree, bool& needsRewrite)
{
    comment.clear();
    tree = std::move(emptyTree);
    LDIF_Loader loader(tree, comment);
    const auto addPosition = [&](LDIF_Exception& failure) {
        failure.configLine = loader.lineCount();
        failure.configFile = fileName;
    };
    try {
        loader.load();
    } catch (LDIF_Exception& failure) {
        addPosition(failure);
        failure.entryDn = loader.currentDn();
        throw;
    } catch (...) {
        completeAndThrow("System error reading file", addPosition);
    }
    needsRewrite = loader.hasQuarantined();
}

void LDIF_File::flush()
{
    FileStatus before = fileStat;
    (void)readFileStatus(fileName, before);  // Its protection may have changed without its time.
    if (!before.isRegular)
        throw cannotOpen(fileName);
    write(before.protection);
}

void LDIF_File::write(const FileProtection& before)
try {
    std::string printed;
    const std::vector<std::string_view> text = tree.pieces(comment, printed);
    if (!backupFileName.empty())
        moveToBackup();
    if (!writeFile(fileName, text, before))
        throw cannotOpen(fileName);
    readStatus(fileStat);
} catch (...) {
    completeAndThrow("System error writing file", [&](LDIF_Exception& failure) { failure.configFile = fileName; });
}

// A backup name that is the file's own would lose the file: it counts as a rename that fails.
void LDIF_File::moveToBackup()
{
    const bool isOwnName = isSameFile(fileName, backupFileName);
    if (!isOwnName)
        removeFile(backupFileName);
    if (isOwnName || !renameFile(fileName, backupFileName))
        throw LDIF_Exception(LDAP_INSUFFICIENT_ACCESS, CFG_ERR_CONFIG_OPEN,
                             "Unable to rename: \"" + fileName + "\" to \"" + backupFileName + "\" ");
}

std::vector<LDIF_Tree::Number> LDIF_File::findEntries(const LDIF_DN& base, LDIF_Scope scope, const LDIF_Filter& filter)
{
    LDIF_DnKey key;
    key.assign(base);
    return findEntries(key, scope, filter);
}

// A base that is not there is no rare failure: it is thrown once.
std::vector<LDIF_Tree::Number> LDIF_File::findEntries(LDIF_DnKey& base, LDIF_Scope scope, const LDIF_Filter& filter)
{
    const char* const systemError = "System error in LDIF_File::search()";
    const auto addFields = [&](LDIF_Exception& failure) {
        failure.entryDn = base.str();
        failure.configFile = fileName;
    };
    const LDIF_Tree::Number entry = wrapping(systemError, addFields, [&] { return tree.find(base); });
    if (entry != LDIF_Tree::none)
        return wrapping(systemError, addFields, [&] { return findMatches(tree, entry, scope, filter); });
    const SourcePos pos = SourcePos::here();
    LDIF_Exception failure(pos.file, pos.line,
                           LDIF_Exception(LDAP_NO_SUCH_OBJECT, LDAP_NO_SUCH_OBJECT, "Base entry not found"));
    addFields(failure);
    throw failure;
}
