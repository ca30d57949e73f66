// Text in a code page.
#ifndef CODEPAGE_H
#define CODEPAGE_H

#include <string>
#include <string_view>

// The code page of the locale. That of the locale "C" has a character for each byte, of the same number.
unsigned int codePage() noexcept;

// Convert a text as a whole, strictly. False for what the code page does not know, or a text of 2 GB. A NUL is
// converted like any other character.
bool widen(unsigned int page, std::string_view text, std::wstring& wide);
bool narrow(unsigned int page, std::wstring_view text, std::string& out);

#endif
