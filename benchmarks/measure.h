// What every measurement uses: the clock, samples and their median, repetition, growth, peak memory, and files.
#ifndef MEASURE_H
#define MEASURE_H

#include <chrono>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// The CPU time of the process so far, in user and system mode, in seconds.
double cpuTime();

template <typename Work>
double cpuTimeOf(Work work)
{
    const double start = cpuTime();
    work();
    return cpuTime() - start;
}

class Samples {
public:
    void add(double sample) { samples.push_back(sample); }
    double median() const;  // unknown without samples

private:
    std::vector<double> samples;
};

// How often to measure.
struct Effort {
    std::size_t leastRounds = 5;
    double seconds = 2;  // after which no further round starts
};

// Calls round, in which each contender has its turn, as often as effort says.
template <typename Round>
void repeat(const Effort& effort, Round round)
{
    constexpr std::size_t mostRounds = 201;
    const auto start = std::chrono::steady_clock::now();
    const auto isTimeLeft = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() < effort.seconds;
    };
    for (std::size_t i = 0; i < effort.leastRounds || (i < mostRounds && isTimeLeft()); ++i)
        round();
}

// The exponent k of the power of size, size^k, that fits the points (size, figure) best. Figures that are not finite
// are left out; unknown for less than two others.
double growthExponent(const std::vector<std::pair<double, double>>& points);

// Runs this program again, with those arguments, and gives the numbers that it prints; none when SIGALRM has ended it.
// Throws std::runtime_error when that fails.
std::vector<double> resultsOfChild(const std::vector<std::string>& arguments);

// The greatest resident memory that this process has had, in bytes.
double peakMemory();

// A new directory below TMPDIR, removed at the end with all that is in it.
class TempDirectory {
public:
    TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;
    ~TempDirectory();
    // The full name of a file in it.
    std::string operator/(const std::string& file) const { return path + '/' + file; }

private:
    std::string path;
};

std::string readText(const std::string& file);

// Throws std::runtime_error, which ends the benchmark.
[[noreturn]] void fail(const std::string& what);

inline void require(bool condition, const char* what)
{
    if (!condition)
        fail(what);
}

#endif
