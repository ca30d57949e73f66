#include "terminal/Signals.h"

#include "terminal/Progress.h"

#include "terminal/posix/RestoredTerminal.h"

#include <array>
#include <cstring>

#include <unistd.h>

namespace {

constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// The names of the files that the handler removes; an empty one is a free place.
using NameBuffer = std::array<char, 4096>;
std::array<NameBuffer, 4> namesToRemove;

// The terminal that the handler restores; negative for none.
volatile std::sig_atomic_t changedTerminal = -1;
termios formerSettings;

extern "C" void tidyAndEnd(int signal)
{
    if (changedTerminal >= 0)
        (void)::tcsetattr(changedTerminal, TCSAFLUSH, &formerSettings);
    for (NameBuffer& name : namesToRemove) {
        if (name[0] == '\0')
            continue;
        (void)::unlink(name.data());
        if (char* const slash = std::strrchr(name.data(), '/')) {
            *slash = '\0';
            (void)::rmdir(name.data());  // Only a folder for an editor is empty now.
        }
    }
    eraseProgress();
    (void)std::signal(signal, SIG_DFL);
    (void)std::raise(signal);
}

}  // namespace

void handleSignals()
{
    for (const int signal : endingSignals) {
        struct sigaction action = {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action.sa_handler = tidyAndEnd;
        (void)::sigaction(signal, &action, nullptr);
    }
    (void)std::signal(SIGXFSZ, SIG_IGN);
}

// A name is there as a whole or not at all: its first character comes last.
void removeOnSignals(const std::string& path)
{
    for (NameBuffer& name : namesToRemove) {
        if (name[0] == '\0' && !path.empty() && path.size() < name.size()) {
            std::memcpy(&name[1], path.c_str() + 1, path.size());
            name[0] = path[0];
            return;
        }
    }
}

void keepOnSignals(const std::string& path)
{
    for (NameBuffer& name : namesToRemove) {
        if (path == name.data())
            name[0] = '\0';
    }
}

RestoredTerminal::RestoredTerminal(int terminal, const termios& settings) noexcept
{
    formerSettings = settings;
    changedTerminal = terminal;
}

RestoredTerminal::~RestoredTerminal()
{
    changedTerminal = -1;
}

BlockedSignals::BlockedSignals()
{
    sigset_t blocked;
    ::sigemptyset(&blocked);
    for (const int signal : endingSignals)
        ::sigaddset(&blocked, signal);
    (void)::sigprocmask(SIG_BLOCK, &blocked, &before);
}

BlockedSignals::~BlockedSignals()
{
    (void)::sigprocmask(SIG_SETMASK, &before, nullptr);
}
