// What the locales of this layer ask of the system's.
#ifndef CONVERSION_H
#define CONVERSION_H

#include <cstddef>
#include <string_view>

// Whether the characters of ASCII, without NUL, are single bytes and the same units in wide text.
bool convertsAscii() noexcept;

// The length of the character at the front, in bytes, when each of them is beyond ASCII, and it converts to wide text
// and back to the same bytes; otherwise 0. isSpace says whether it is white space.
std::size_t transparentLength(std::string_view text, bool& isSpace) noexcept;

// Forget what is known of the locale, and ask for it no more, or ask again.
void beginOtherLocale() noexcept;
void endOtherLocale() noexcept;

#endif
