#include "terminal/Program.h"

#include "base/Failure.h"

#include <cerrno>
#include <csignal>
#include <iterator>
#include <sstream>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

const char* const usualEditor = "vi";

namespace {

// Keys of the program's user are not meant for this process, which waits.
class IgnoredKeys {
public:
    IgnoredKeys() : interrupt(std::signal(SIGINT, SIG_IGN)), quit(std::signal(SIGQUIT, SIG_IGN)) {}
    IgnoredKeys(const IgnoredKeys&) = delete;
    IgnoredKeys& operator=(const IgnoredKeys&) = delete;
    ~IgnoredKeys()
    {
        (void)std::signal(SIGINT, interrupt);
        (void)std::signal(SIGQUIT, quit);
    }

private:
    void (*const interrupt)(int);
    void (*const quit)(int);
};

// Starts the program with the signals as a shell would give them.
pid_t start(std::vector<char*>& words)
{
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t defaults;
    ::sigemptyset(&defaults);
    for (const int signal : {SIGINT, SIGQUIT, SIGXFSZ})
        ::sigaddset(&defaults, signal);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t child = -1;
    const int error = ::posix_spawnp(&child, words.front(), nullptr, &attributes, words.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    errno = error;
    return error == 0 ? child : -1;
}

}  // namespace

std::vector<std::string> wordsOf(const std::string& command)
{
    std::istringstream in(command);
    return {std::istream_iterator<std::string>(in), {}};
}

std::string plainName(const std::string& program)
{
    return program.substr(program.find_last_of('/') + 1);
}

bool runProgram(std::vector<std::string> words, const std::string& message)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const IgnoredKeys ignored;
    const pid_t child = start(pointers);
    if (child < 0)
        throw systemFailure(0, message);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
