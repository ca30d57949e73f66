// What the tool does, on a terminal, while it takes longer than a second.
#ifndef ZEBCFG_PROGRESS_H
#define ZEBCFG_PROGRESS_H

#include <atomic>
#include <cstddef>

// Progress is shown where that is wanted and standard error is a terminal.
void showProgress(bool isWanted);

// Shows one line, "Applying entries ... 45 %", from a second on, rewrites it in place, and erases it at the end. A
// timer draws it, so that a long call into the library is no obstacle and a step costs next to nothing. An object that
// is made while another one lives takes its place on the line, and the time goes on.
class Progress {
public:
    // text: a literal of at most 20 characters. steps: how many there will be; with 0 the line counts them.
    explicit Progress(const char* text, std::size_t steps = 0);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void step() noexcept { done.store(done.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed); }
    // What is done from now on.
    void turnTo(const char* next) noexcept { what = next; }
    // Called by the timer.
    void draw() const noexcept;

private:
    std::atomic<const char*> what;
    const std::size_t total;
    std::atomic<std::size_t> done{0};
    const Progress* const outer;
};

// Keeps the line of the terminal free as long as it lives.
class PausedProgress {
public:
    PausedProgress();
    PausedProgress(const PausedProgress&) = delete;
    PausedProgress& operator=(const PausedProgress&) = delete;
    ~PausedProgress();
};

// Leaves a clean line. May be called by a signal handler.
void eraseProgress() noexcept;

#endif
