// Entries as LDIF, RFC 2849.
#ifndef ZEBCFG_LDIFWRITER_H
#define ZEBCFG_LDIFWRITER_H

#include "base/Entry.h"

#include <cstddef>
#include <string>

// One entry with its line ends and a blank line after it. Values that are no plain text are in base64. wrap is the
// longest line, at least 2, or 0 for lines of any length; a name is not folded. Passwords are masked. In UTF-8.
std::string toLdif(const Entry& entry, bool namesOnly, std::size_t wrap);

// Whether LDIF can carry an attribute of that name, so that a reader finds the same again.
bool isLdifName(const std::string& name);

#endif
