#include "terminal/Editor.h"

#include "base/Failure.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string editorName()
{
    for (const char* const variable : {"VISUAL", "EDITOR"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && value[std::strspn(value, " \t\n\v\f\r")] != '\0')
            return value;
    }
    return "vi";
}

// Whether the program takes +LINE in front of the file.
bool takesLine(const std::string& program)
{
    const std::set<std::string> known = {"vi",   "vim",    "nvim",  "nvi",   "vile",        "view", "elvis",
                                         "nano", "pico",   "joe",   "emacs", "emacsclient", "mg",   "zile",
                                         "jed",  "mcedit", "micro", "kak",   "ne",          "ee"};
    return known.count(program.substr(program.find_last_of('/') + 1)) != 0;
}

// Keys of the editor's user are not meant for this process, which waits.
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

void runEditor(std::string file, int line)
{
    const std::string editor = editorName();
    std::vector<std::string> words;
    std::istringstream in(editor);
    for (std::string word; in >> word;)
        words.push_back(word);
    if (line > 0 && takesLine(words.front()))
        words.push_back('+' + std::to_string(line));
    words.push_back(std::move(file));
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const IgnoredKeys ignored;
    const pid_t child = start(pointers);
    if (child < 0)
        throw systemFailure(0, "the editor " + editor + " cannot be started");
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Failure(0, "the editor " + editor + " failed, and nothing is changed");
}
