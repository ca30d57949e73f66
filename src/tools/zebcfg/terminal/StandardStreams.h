// The standard streams of the process, by their numbers.
#ifndef ZEBCFG_STANDARDSTREAMS_H
#define ZEBCFG_STANDARDSTREAMS_H

#include <string_view>

constexpr int inputStream = 0;
constexpr int outputStream = 1;
constexpr int errorStream = 2;

bool isTerminal(int stream) noexcept;
// Whether it is a terminal that shows colours, once it has been told to where it needs that.
bool showsColor(int stream) noexcept;

// A stream that is closed would give its number to the next file that is opened, and messages would go into that file.
// What stands in for it can be read only, so that writing fails as before.
void occupyStandardStreams();
// Lets the streams carry text in the encoding of the locale.
void prepareStandardStreams() noexcept;

// Writes to standard error without a buffer. Asks for no memory, and a signal handler may call it.
void writeError(std::string_view text) noexcept;

#endif
