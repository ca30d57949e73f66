// The standard streams of the process, by their numbers.
#ifndef ZEBCFG_STANDARDSTREAMS_H
#define ZEBCFG_STANDARDSTREAMS_H

#include <string_view>

constexpr int inputStream = 0;
constexpr int outputStream = 1;
constexpr int errorStream = 2;

bool isTerminal(int stream) noexcept;

// A stream that is closed would give its number to the next file that is opened, and messages would go into that file.
// What stands in for it can be read only, so that writing fails as before.
void occupyStandardStreams();

// Writes to standard error without a buffer. Asks for no memory, and a signal handler may call it.
void writeError(std::string_view text) noexcept;

#endif
