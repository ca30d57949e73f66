#include "terminal/StandardStreams.h"

#include <cstdlib>

#include <codePage.h>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace {

// What the console had before.
UINT outputPage = 0;
UINT inputPage = 0;

void restorePages()
{
    SetConsoleOutputCP(outputPage);
    SetConsoleCP(inputPage);
}

HANDLE handleOf(int stream) noexcept
{
    return reinterpret_cast<HANDLE>(::_get_osfhandle(stream));  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

bool isTerminal(int stream) noexcept
{
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != FALSE;
}

bool showsColor(int stream) noexcept
{
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != FALSE &&
           SetConsoleMode(handleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

void occupyStandardStreams() {}  // The C runtime gives their numbers to no other file.

// Text on standard output has the line ends of the system. On standard input either kind is taken, and no character
// ends it.
void prepareStandardStreams() noexcept
{
    outputPage = GetConsoleOutputCP();
    inputPage = GetConsoleCP();
    SetConsoleOutputCP(codePage());
    SetConsoleCP(codePage());
    (void)std::atexit(restorePages);
    if (!isTerminal(inputStream))
        (void)::_setmode(inputStream, _O_BINARY);
}

void writeError(std::string_view text) noexcept
{
    (void)!::_write(errorStream, text.data(), static_cast<unsigned int>(text.size()));
}
