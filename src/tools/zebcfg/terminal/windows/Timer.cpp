#include "terminal/Timer.h"

#include <mutex>

#include <windows.h>

namespace {

constexpr DWORD firstTime = 1000;  // milliseconds
constexpr DWORD interval = 200;

HANDLE timer = nullptr;
void (*drawNow)() = nullptr;

std::recursive_mutex& drawing()
{
    static std::recursive_mutex mutex;
    return mutex;
}

// The system calls it on another thread.
void CALLBACK drawOnce(void* /*context*/, BOOLEAN /*hasFired*/)
{
    const std::lock_guard<std::recursive_mutex> lock(drawing());
    drawNow();
}

}  // namespace

void startTimer(void (*draw)())
{
    drawNow = draw;
    (void)CreateTimerQueueTimer(&timer, nullptr, drawOnce, nullptr, firstTime, interval, WT_EXECUTEDEFAULT);
}

void stopTimer() noexcept
{
    if (timer != nullptr)
        (void)DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);  // It waits for one that is called.
    timer = nullptr;
}

void finishDraw() noexcept
{
    holdTimer();
    releaseTimer();
}

void holdTimer() noexcept
{
    drawing().lock();
}

void releaseTimer() noexcept
{
    drawing().unlock();
}
