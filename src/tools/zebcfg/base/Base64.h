// Base64, RFC 4648.
#ifndef ZEBCFG_BASE64_H
#define ZEBCFG_BASE64_H

#include <optional>
#include <string>
#include <string_view>

// In one line, with padding.
std::string toBase64(std::string_view bytes);
// Nothing for a text that is not base64 with its padding. Bits that are left over may have any value.
std::optional<std::string> fromBase64(std::string_view text);

#endif
