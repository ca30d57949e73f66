#include "terminal/Password.h"

#include "Console.h"
#include "base/Failure.h"

namespace {

// The interrupt key ends the line instead of the process, so that the echo comes back.
class SilentConsole : public Console {
public:
    SilentConsole()
    {
        if (!isOpen())
            throw Failure(0, "there is no terminal to ask for a password; use -y FILE");
        setEcho(false);
    }
    SilentConsole(const SilentConsole&) = delete;
    SilentConsole& operator=(const SilentConsole&) = delete;
    ~SilentConsole()
    {
        setEcho(true);
        (void)write("\n");
    }

private:
    const IgnoredKeys ignored;
};

}  // namespace

std::string askPassword(const std::string& prompt)
{
    const SilentConsole console;
    std::string password;
    if (!console.write(prompt))
        throw Failure(0, "cannot ask for a password");
    if (!console.readLine(password))
        throw Failure(0, "no password was given");
    return password;
}
