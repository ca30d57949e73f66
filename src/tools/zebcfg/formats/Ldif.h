// LDIF, RFC 2849: entries to text, and text to records.
#ifndef ZEBCFG_LDIF_H
#define ZEBCFG_LDIF_H

#include "base/Entry.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// One entry with its line ends and a blank line after it. Values that are no plain text are in base64. wrap is the
// longest line, 0 for lines of any length. Passwords are masked. In UTF-8.
std::string toLdif(const Entry& entry, bool namesOnly, std::size_t wrap);

// Whether LDIF can carry an attribute of that name, so that a reader finds the same again.
bool isLdifName(const std::string& name);

// What one record of LDIF asks for.
struct LdifRecord {
    enum Type { add, modify, erase, move };
    Type type = add;
    int line = 0;  // of its dn
    std::string dn;
    std::vector<Change> changes;  // for add, the attributes
    std::string newRdn;           // for move, and whether the entry keeps the values of the old one
    bool keepsOldRdn = false;
    std::optional<std::string> newSuperior = {};
    std::string text;  // as it was read
};

// Reads records through the LDAP client library's reader. File URLs and includes are refused.
class LdifReader {
public:
    // shown is what messages call the text.
    LdifReader(std::string ldif, std::string shown);
    LdifReader(const LdifReader&) = delete;
    LdifReader& operator=(const LdifReader&) = delete;
    ~LdifReader();

    // The next record into record, false at the end. A record without changetype is taken for type. Throws Failure
    // with the line at fault; the record after it can be read then.
    bool next(LdifRecord& record, LdifRecord::Type type);

    // The text of the record that was read last.
    const std::string& record() const;

private:
    class Stream;
    class Parser;

    std::string text;
    const std::string shownName;
    std::unique_ptr<Stream> stream;
};

#endif
