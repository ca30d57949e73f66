#include "Editor.h"

#include "Failure.h"
#include "PrivateFile.h"
#include "Signals.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string editorName()
{
    for (const char* const variable : {"VISUAL", "EDITOR"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && value[std::strspn(value, " \t\n")] != '\0')
            return value;
    }
    return "vi";
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

void run(const std::string& editor, std::string file)
{
    std::vector<std::string> words;
    std::istringstream in(editor);
    for (std::string word; in >> word;)
        words.push_back(word);
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
        throw Failure(0, "the editor " + editor + " has failed, and nothing is changed");
}

}  // namespace

Editor::Editor(const std::string& name)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "zebcfg-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw systemFailure(0, "cannot make a directory for the editor");
    directory = pattern;
    file = directory + '/' + name;
    removeOnSignals(file);
}

Editor::~Editor()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
    keepOnSignals(file);
}

std::string Editor::edit(const std::string& text)
{
    {
        const Descriptor made(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        if (!made.isOpen())
            throw systemFailure(0, "cannot make a file for the editor");
    }
    overwriteFile(file, text);
    run(editorName(), file);
    return readFile(file, file);
}
