#include "terminal/StandardStreams.h"

#include "terminal/windows/Console.h"

#include <cstdlib>
#include <iostream>
#include <optional>

#include <codePage.h>
#include <fcntl.h>
#include <io.h>

namespace {

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
    if (GetConsoleMode(handleOf(stream), &mode) == FALSE)
        return false;
    if ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0)
        return true;
    return changeMode(handleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void occupyStandardStreams() {}  // The C runtime gives their numbers to no other file.

// Text on standard output has the line ends of the system. On standard input either kind is taken, and no character
// ends it.
void prepareStandardStreams() noexcept
{
    (void)std::atexit(restoreConsole);
    usePage(codePage());
    static std::optional<ConsoleBuffer> shownOutput;
    static std::optional<ConsoleBuffer> shownErrors;
    if (isTerminal(outputStream))
        shownOutput.emplace(std::cout, handleOf(outputStream));
    if (isTerminal(errorStream))
        shownErrors.emplace(std::cerr, handleOf(errorStream));
    if (!isTerminal(inputStream))
        (void)::_setmode(inputStream, _O_BINARY);
}

void writeError(std::string_view text) noexcept
{
    (void)!::_write(errorStream, text.data(), static_cast<unsigned int>(text.size()));
}
