// The configuration file in memory.
#ifndef LDIF_FILE_H
#define LDIF_FILE_H

#include "LDIF_Comment.h"
#include "LDIF_Exception.h"
#include "LDIF_Search.h"
#include "LDIF_Tree.h"
#include "ldapNames.h"
#include "platform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The configuration file as a tree of entries. An object that is made holds a loaded file, and nothing stays open.
//
// Loading is forgiving inside entries: a line that cannot be understood, or a value that its syntax refuses, becomes a
// value of the attribute zeb-slapdInvalidLine, and the file is written back. It is strict outside of them: there only
// charset and version may stand, once each, before the first entry.
//
// No lock is held on the file. Another process's change is noticed by the modification time, in seconds.
class LDIF_File {
public:
    enum Authentication { noAccess = 0, anonymous = 1, administrator = 2 };

    // Loads the file. name may be relative and its full path takes up to 1022 bytes; an empty backup name means no
    // backup. Throws LDIF_Exception: 91 when the file cannot be found or read, else what refresh throws.
    LDIF_File(const std::string& name, const std::string& backupName);
    LDIF_File(const LDIF_File&) = delete;
    LDIF_File& operator=(const LDIF_File&) = delete;
    ~LDIF_File() = default;

    // Loads the file again if its modification time has changed or the last load has failed; says whether it did.
    // Throws LDIF_Exception: 91 when the file cannot be found or read; then the tree stays. 65, 34 or 162 for a file
    // that breaks the rules above; then the tree holds what was read so far, and the next call reads again. What flush
    // throws, when it writes a repaired file back.
    bool refresh();

    // Writes the file, after moving the old one to the backup name. Throws LDIF_Exception: 50 when it cannot be moved
    // or opened or is no regular file, 91 when it is gone afterwards, 34, 162 or 163 for a tree that cannot be printed.
    // The text is complete before any file is touched. A write that fails, for lack of space on the disk say, is not
    // noticed.
    void flush();

    // Change the tree, not the file. All throw LDIF_Exception with entryDn and configFile.
    // Applies the records in order; those before a failing one stay applied. 32 without the entry, 16 for the delete
    // of an attribute that is not there, 89 for an unknown operation.
    void modify(const LDIF_DN& dn, LDAPMod** mods);
    // Adds an entry, or its attributes to the one that has the DN. A refused value leaves the tree unchanged; a merge
    // that fails midway keeps what it has merged.
    void add(const LDIF_DN& dn, LDAPMod** mods);
    // Removes an entry. 32 without the entry, 66 for one with children unless deleteNonLeaves is set.
    void erase(const LDIF_DN& dn, bool deleteNonLeaves);

    // The entries that match, by their numbers in the tree, until that changes. Throws LDIF_Exception (32) without the
    // base entry.
    std::vector<LDIF_Tree::Number> findEntries(LDIF_DnKey& base, LDIF_Scope scope, const LDIF_Filter& filter);
    std::vector<LDIF_Tree::Number> findEntries(const LDIF_DN& base, LDIF_Scope scope, const LDIF_Filter& filter);
    const LDIF_Tree& entries() const noexcept { return tree; }

    // Checks a login against the entry cn=Configuration; a refused one is noAccess. Null and null is anonymous. Throws
    // LDIF_Exception (32) without that entry, and for a name or password that its syntax refuses.
    Authentication setAuthentication(const char* dn, const char* password, int method);
    Authentication getAuthentication() const noexcept { return authentication; }

    // The tree as an outline, in ASCII or in the line-drawing characters of code page 437, followed by a list of the
    // levels that no entry defines. Throws LDIF_Exception (34) for a DN that cannot be printed.
    std::string treeView(bool oem);

    const char* getFileName() const noexcept { return fileName.c_str(); }  // the full path
    const char* getBackupFileName() const noexcept { return backupFileName.c_str(); }
    std::int64_t getModTime() const noexcept { return fileStat.time; }  // seconds

private:
    Authentication checkLogin(const char* dn, const char* password);
    LDIF_Tree readText() const;
    void readTree(LDIF_Tree&& emptyTree, bool& needsRewrite);
    void write(const FileProtection& before);
    void moveToBackup();
    void readStatus(FileStatus& status) const;

    std::string fileName;
    std::string backupFileName;
    FileStatus fileStat;   // as of the last load or write
    LDIF_Comment comment;  // the lines after the last entry
    LDIF_Tree tree;
    bool mustRead = false;  // the last load has failed after it had given up the tree before
    Authentication authentication = noAccess;
};

#endif
