// What is done again and again beside the work.
#ifndef ZEBCFG_TIMER_H
#define ZEBCFG_TIMER_H

// Calls draw after a second and then five times a second, while the process has the terminal: on POSIX between any
// two instructions, on Windows on another thread. draw allocates nothing.
void startTimer(void (*draw)());
void stopTimer() noexcept;
// Waits for a draw that is going on.
void finishDraw() noexcept;

// While it is held the timer is silent.
void holdTimer() noexcept;
void releaseTimer() noexcept;

#endif
