// What the locales of this layer ask of the system's.
#ifndef CONVERSION_H
#define CONVERSION_H

#include <cstddef>
#include <string_view>

// Whether each ASCII character but NUL is one byte, and the same number in wide text.
bool convertsAscii() noexcept;

// The length of the character at the front, in bytes, when each of them is beyond ASCII, and it converts to wide text
// and back to the same bytes; otherwise 0. isSpace says whether it is white space.
std::size_t transparentLength(std::string_view text, bool& isSpace) noexcept;

// Between these two the locale in use is not that of the process: what is known of the locale is dropped at both, and
// the name of the process's locale is not asked for.
void beginOtherLocale() noexcept;
void endOtherLocale() noexcept;

#endif
