// The tool as a process of its own, with pipes or on a pseudo-terminal.
#ifndef ZEBCFG_PROCESS_H
#define ZEBCFG_PROCESS_H

#include "support.h"

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

// A directory with a small configuration file in it.
struct ConfigDirectory : TempDirectory {
    ConfigDirectory() { std::filesystem::copy_file(ZEBCFG_SMALL_CONF, file); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& item : std::filesystem::directory_iterator(path))
            found.push_back(item.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }

    const std::string file = *this / "zebslapd.conf";
    const std::string backup = file + ".bak";
};

inline void execTool(const std::string& file, std::vector<std::string> words)
{
    words.insert(words.begin(), {ZEBCFG_TOOL, "-F", file});
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::execv(ZEBCFG_TOOL, pointers.data());
    ::_exit(127);
}

// Starts the tool quietly. prepare runs in the new process.
inline pid_t start(
    const std::string& file, const std::vector<std::string>& words, const std::function<void()>& prepare = [] {})
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int descriptor : {0, 1, 2})
        ::dup2(nowhere, descriptor);
    prepare();
    execTool(file, words);
    return -1;
}

// The exit status, or 128 and the signal.
inline int finish(pid_t child)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

inline int run(const std::string& file, const std::vector<std::string>& words)
{
    return finish(start(file, words));
}

// Follows a process that has asked to be traced, to its end. at is called with what is known of each call into the
// kernel, before and after it. Gives the status as finish does.
inline int trace(pid_t child, const std::function<void(const __ptrace_syscall_info&)>& at)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (WIFSTOPPED(status)) {
        __ptrace_syscall_info info = {};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
        at(info);
        const int signal = WSTOPSIG(status);
        ::ptrace(PTRACE_SYSCALL, child, nullptr, signal < SIGTRAP ? signal : 0);
        ::waitpid(child, &status, 0);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// The tool on a terminal of its own.
class Terminal {
public:
    // environment: settings of the form NAME=VALUE.
    Terminal(const std::string& file, const std::vector<std::string>& words,
             const std::vector<const char*>& environment = {})
    {
        child = ::forkpty(&side, nullptr, nullptr, nullptr);
        if (child != 0)
            return;
        ::setenv("TERM", "xterm", 1);
        for (const char* const setting : environment)
            ::putenv(const_cast<char*>(setting));
        execTool(file, words);
    }
    Terminal(const Terminal&) = delete;
    ~Terminal() { ::close(side); }

    // Reads until the text comes, and types the answer.
    void answer(const std::string& text, const std::string& typed)
    {
        const std::size_t from = seen;
        while (output.find(text, from) == std::string::npos && readMore()) {
        }
        ASSERT_NE(output.find(text, from), std::string::npos) << output;
        seen = output.find(text, from) + text.size();
        ASSERT_EQ(::write(side, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    }

    // Reads to the end, and gives the exit status.
    int finish()
    {
        while (readMore()) {
        }
        EXPECT_TRUE(hasEcho()) << "the terminal shows what is typed again";
        return ::finish(child);
    }

    bool hasEcho() const
    {
        termios settings = {};
        EXPECT_EQ(::tcgetattr(side, &settings), 0);
        return (settings.c_lflag & ECHO) != 0;
    }

    void end(int signal) const
    {
        ::kill(child, signal);
        EXPECT_EQ(::finish(child), 128 + signal);
    }

    std::string output;

private:
    bool readMore()
    {
        char buffer[4096];
        const ssize_t count = ::read(side, buffer, sizeof buffer);
        output.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        return count > 0;
    }

    int side = -1;
    pid_t child = -1;
    std::size_t seen = 0;
};

#endif
