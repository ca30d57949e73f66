#include "terminal/Password.h"

#include "base/Failure.h"

#include "terminal/posix/RestoredTerminal.h"

#include <cerrno>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr char interruptKey = '\3';

// The terminal of the process without echo, and as it was at the end. The interrupt key ends the line, and not the
// process.
class SilentTerminal {
public:
    SilentTerminal() : terminal(opened()), before(settingsOf(terminal)), restored(terminal, before)
    {
        struct termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
        silent.c_lflag |= ECHONL | ICANON;
        silent.c_cc[VEOL] = interruptKey;
        (void)::tcsetattr(terminal, TCSAFLUSH, &silent);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    ~SilentTerminal()
    {
        (void)::tcsetattr(terminal, TCSAFLUSH, &before);
        ::close(terminal);
    }
    int get() const noexcept { return terminal; }

private:
    static int opened()
    {
        const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
        if (terminal < 0)
            throw Failure(0, "there is no terminal to ask for a password; use -y FILE");
        return terminal;
    }
    static struct termios settingsOf(int terminal)
    {
        struct termios settings = {};
        (void)::tcgetattr(terminal, &settings);
        return settings;
    }

    const int terminal;
    const struct termios before;
    const RestoredTerminal restored;
};

}  // namespace

std::string askPassword(const std::string& prompt)
{
    const SilentTerminal terminal;
    if (::write(terminal.get(), prompt.data(), prompt.size()) < 0)
        throw systemFailure(0, "cannot ask for a password");
    std::string password;
    char character = '\0';
    for (;;) {
        const ssize_t count = ::read(terminal.get(), &character, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 1 && character == '\n')
            return password;
        if (count != 1 || character == interruptKey)
            throw Failure(0, "no password was given");
        password += character;
    }
}
