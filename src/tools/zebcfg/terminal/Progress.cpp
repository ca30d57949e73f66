#include "terminal/Progress.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr timeval firstTime = {1, 0};
constexpr timeval interval = {0, 200000};

bool isShown = false;
std::atomic<const Progress*> current{nullptr};
std::atomic<bool> isDrawn{false};
static_assert(std::atomic<std::size_t>::is_always_lock_free, "a signal handler reads it");

// A line of fixed length, after which the cursor stands at its begin again. It allocates nothing.
class Line {
public:
    Line()
    {
        bytes.fill(' ');
        bytes.back() = '\r';
    }

    void add(const char* text)
    {
        const std::size_t length = std::min(std::strlen(text), bytes.size() - 1 - end);
        std::memcpy(&bytes.at(end), text, length);
        end += length;
    }

    // With a comma before each three digits.
    void add(std::size_t number)
    {
        std::array<char, 32> digits = {};  // from the last one on
        std::size_t count = 0;
        do {
            if (count % 4 == 3)
                digits.at(count++) = ',';
            digits.at(count++) = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0);
        while (count > 0) {
            const char character[] = {digits.at(--count), '\0'};
            add(character);
        }
    }

    void write() const { (void)!::write(STDERR_FILENO, bytes.data(), bytes.size()); }

private:
    std::array<char, 40> bytes = {};
    std::size_t end = 0;
};

extern "C" void drawCurrent(int /*signal*/)
{
    const int error = errno;
    const Progress* const work = current;
    if (work != nullptr && ::tcgetpgrp(STDERR_FILENO) == ::getpgrp())
        work->draw();
    errno = error;
}

void startTimer()
{
    struct sigaction action = {};
    action.sa_handler = drawCurrent;
    action.sa_flags = SA_RESTART;
    (void)::sigaction(SIGALRM, &action, nullptr);
    const itimerval times = {interval, firstTime};
    (void)::setitimer(ITIMER_REAL, &times, nullptr);
}

void stopTimer()
{
    const itimerval times = {};
    (void)::setitimer(ITIMER_REAL, &times, nullptr);
}

void mask(int how)
{
    sigset_t timer;
    ::sigemptyset(&timer);
    ::sigaddset(&timer, SIGALRM);
    (void)::sigprocmask(how, &timer, nullptr);
}

}  // namespace

void showProgress(bool isWanted)
{
    isShown = isWanted && ::isatty(STDERR_FILENO) == 1;
}

Progress::Progress(const char* text, std::size_t steps) : what(text), total(steps), outer(current)
{
    current = this;
    if (isShown && outer == nullptr)
        startTimer();
}

Progress::~Progress()
{
    current = outer;
    if (!isShown || outer != nullptr)
        return;
    stopTimer();
    eraseProgress();
}

void Progress::draw() const noexcept
{
    constexpr std::size_t whole = 100;
    const std::size_t steps = done;
    Line line;
    line.add(what);
    line.add(" ...");
    if (total != 0 || steps != 0) {
        line.add(" ");
        line.add(total != 0 ? steps * whole / total : steps);
    }
    line.add(total != 0 ? " %" : "");
    line.write();
    isDrawn = true;
}

PausedProgress::PausedProgress()
{
    mask(SIG_BLOCK);
    eraseProgress();
}

PausedProgress::~PausedProgress()
{
    mask(SIG_UNBLOCK);
}

void eraseProgress() noexcept
{
    if (isDrawn.exchange(false))
        Line().write();
}
