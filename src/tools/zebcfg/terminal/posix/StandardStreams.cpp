#include "terminal/StandardStreams.h"

#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

bool isTerminal(int stream) noexcept
{
    return ::isatty(stream) == 1;
}

bool showsColor(int stream) noexcept
{
    const char* const terminal = std::getenv("TERM");
    return isTerminal(stream) && terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

void occupyStandardStreams()
{
    int file = 0;
    do
        file = ::open("/dev/null", O_RDONLY);
    while (file >= 0 && file <= errorStream);
    if (file >= 0)
        ::close(file);
}

void prepareStandardStreams() noexcept {}

void writeError(std::string_view text) noexcept
{
    (void)!::write(errorStream, text.data(), text.size());
}
