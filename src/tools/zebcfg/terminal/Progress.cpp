#include "terminal/Progress.h"

#include "terminal/StandardStreams.h"
#include "terminal/Timer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

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

    void write() const { writeError(std::string_view(bytes.data(), bytes.size())); }

private:
    std::array<char, 40> bytes = {};
    std::size_t end = 0;
};

void drawCurrent()
{
    const Progress* const work = current;
    if (work != nullptr)
        work->draw();
}

}  // namespace

void showProgress(bool isWanted)
{
    isShown = isWanted && isTerminal(errorStream);
}

Progress::Progress(const char* text, std::size_t steps) : what(text), total(steps), outer(current)
{
    current = this;
    if (isShown && outer == nullptr)
        startTimer(drawCurrent);
}

Progress::~Progress()
{
    current = outer;
    finishDraw();
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
    holdTimer();
    eraseProgress();
}

PausedProgress::~PausedProgress()
{
    releaseTimer();
}

void eraseProgress() noexcept
{
    if (isDrawn.exchange(false))
        Line().write();
}
