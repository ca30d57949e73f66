// Names of files in the wide form that the system takes.
#ifndef FILENAME_H
#define FILENAME_H

#include <string>

// The code page of narrow names: as with the C runtime, that of the system, unless the locale is one of UTF-8.
unsigned int namePage() noexcept;

// The wide form of a name, made absolute where it is longer than the system takes otherwise; empty, which no file is
// called, when it cannot be converted.
std::wstring wideName(const std::string& name);

#endif
