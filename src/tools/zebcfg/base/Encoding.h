// Between the encoding of the locale, which the file and the terminal have, and UTF-8, which LDIF (RFC 2849) and JSON
// (RFC 8259) have.
#ifndef ZEBCFG_ENCODING_H
#define ZEBCFG_ENCODING_H

#include <string>

bool isUtf8Locale();
// Text that is not in the locale's encoding comes back as it is.
std::string toUtf8(const std::string& text);
// Throws Failure (21) for a text that is no UTF-8, or has characters that the locale's encoding does not have.
std::string fromUtf8(std::string text);

#endif
