#include "LDIF_File.h"

#include "LDIF_Exception.h"
#include "LDIF_FormerTree.h"
#include "LDIF_Loader.h"
#include "zebldapcfg.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <utility>

namespace {

constexpr DWORD pathSize = 1023;  // in bytes, with the closing NUL

LDIF_Exception fileFailure(int ldapErr, int extErr, const std::string& text, const std::string& fileName,
                           SourcePos pos = SourcePos::here())
{
    LDIF_Exception failure(ldapErr, extErr, text, pos);
    failure.configFile = fileName;
    return failure;
}

std::string fullPathOf(const std::string& name)
{
    if (name.empty())
        throw fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_FILENAME, "Config filename is NULL!", "<NULL>");
    char path[pathSize];
    const DWORD length = GetFullPathNameA(name.c_str(), pathSize, path, nullptr);
    if (length > 0 && length < pathSize)
        return path;
    LDIF_Exception failure = fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_FILENAME, "GetFullPathName()", name);
    failure.sysErr = static_cast<int>(length == 0 ? GetLastError() : ERROR_FILENAME_EXCED_RANGE);
    failure.sysErrIsWin32 = 1;
    throw failure;
}

}  // namespace

LDIF_File::~LDIF_File()
{
    release(std::move(root));
}

LDIF_File::LDIF_File(const std::string& name, const std::string& backupName)
    : fileName(fullPathOf(name)), backupFileName(backupName)
{
    refresh();
}

void LDIF_File::readStatus(FileStatus& status) const
{
    if (_stat(fileName.c_str(), &status) == 0)
        return;
    const int error = errno;
    LDIF_Exception failure = fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_NOT_FOUND, "_stat()", fileName);
    failure.sysErr = error;
    throw failure;
}

bool LDIF_File::refresh()
{
    FileStatus status = {};
    readStatus(status);
    if (status.st_mtime == fileStat.st_mtime)
        return false;
    renderer.clear();  // now, so that its text and the new one are not held at once
    bool needsRewrite = false;
    readTree(readText(), needsRewrite);
    fileStat = status;
    if (needsRewrite)
        flush();
    return true;
}

std::string LDIF_File::readText() const
try {
    std::string text;
    if (!readFile(fileName, text))
        throw fileFailure(CFG_CONNECT_ERROR, CFG_ERR_CONFIG_OPEN, "ifstream()", fileName);
    return text;
} catch (...) {
    completeAndThrow("System error reading file", [&](LDIF_Exception& failure) { failure.configFile = fileName; });
}

// Leaves an empty tree, also when memory runs out. Text that is not ASCII may read otherwise in another locale.
LDIF_FormerTree LDIF_File::giveUpTree(const std::string& newText)
{
    LDIF_Entry tree = std::exchange(root, LDIF_Entry());
    const std::size_t oldSize = std::exchange(textSize, newText.size());
    const char* const locale = std::setlocale(LC_CTYPE, nullptr);
    if (std::exchange(textLocale, locale) == locale)
        return {std::move(tree), oldSize, newText};
    release(std::move(tree));
    return {};
}

void LDIF_File::readTree(std::string&& text, bool& needsRewrite)
{
    comment.clear();
    LDIF_Loader loader(root, comment);
    const auto addPosition = [&](LDIF_Exception& failure) {
        failure.configLine = loader.lineCount();
        failure.configFile = fileName;
    };
    try {
        LDIF_FormerTree former = giveUpTree(text);
        loader.load(std::move(text), std::move(former));
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
try {
    const std::string& text = renderer.render(root, comment);
    textSize = text.size();
    FileStatus before = fileStat;
    (void)_stat(fileName.c_str(), &before);  // Its mode may have changed without its time.
    if (!backupFileName.empty())
        moveToBackup();
    if (!writeFile(fileName, text, before))
        throw LDIF_Exception(LDAP_INSUFFICIENT_ACCESS, CFG_ERR_CONFIG_OPEN, "Unable to open: \"" + fileName + '"');
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
    if (isOwnName || std::rename(fileName.c_str(), backupFileName.c_str()) != 0)
        throw LDIF_Exception(LDAP_INSUFFICIENT_ACCESS, CFG_ERR_CONFIG_OPEN,
                             "Unable to rename: \"" + fileName + "\" to \"" + backupFileName + "\" ");
}
