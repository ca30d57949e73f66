#include "terminal/Timer.h"

#include <cerrno>
#include <csignal>

#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr timeval firstTime = {1, 0};
constexpr timeval interval = {0, 200000};

void (*drawNow)() = nullptr;

extern "C" void drawInForeground(int /*signal*/)
{
    const int error = errno;
    if (::tcgetpgrp(STDERR_FILENO) == ::getpgrp())
        drawNow();
    errno = error;
}

void mask(int how)
{
    sigset_t timer;
    ::sigemptyset(&timer);
    ::sigaddset(&timer, SIGALRM);
    (void)::sigprocmask(how, &timer, nullptr);
}

}  // namespace

void startTimer(void (*draw)())
{
    drawNow = draw;
    struct sigaction action = {};
    action.sa_handler = drawInForeground;
    action.sa_flags = SA_RESTART;
    (void)::sigaction(SIGALRM, &action, nullptr);
    const itimerval times = {interval, firstTime};
    (void)::setitimer(ITIMER_REAL, &times, nullptr);
}

void stopTimer() noexcept
{
    const itimerval times = {};
    (void)::setitimer(ITIMER_REAL, &times, nullptr);
}

void finishDraw() noexcept {}  // It has interrupted this thread, and is done.

void holdTimer() noexcept
{
    mask(SIG_BLOCK);
}

void releaseTimer() noexcept
{
    mask(SIG_UNBLOCK);
}
