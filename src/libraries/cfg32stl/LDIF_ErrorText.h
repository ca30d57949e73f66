// The texts of the result codes and the extended codes.
#ifndef LDIF_ERRORTEXT_H
#define LDIF_ERRORTEXT_H

// Static; "Unknown error" for a code without a text.
const char* errorText(int code) noexcept;

#endif
