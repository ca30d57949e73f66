#include "measure.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;  // NOLINT(readability-redundant-declaration): only GNU's headers declare it

namespace {

std::string textFrom(int descriptor)
{
    std::string text;
    char buffer[256];
    for (ssize_t count = 0; (count = read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    return text;
}

}  // namespace

double cpuTime()
{
    timespec time = {};
    require(clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) == 0, "clock_gettime");
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double Samples::median() const
{
    if (samples.empty())
        return unknown;
    std::vector<double> sorted = samples;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 != 0 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

// Least squares on the logarithms.
double growthExponent(const std::vector<std::pair<double, double>>& points)
{
    double count = 0;
    double sumX = 0;
    double sumY = 0;
    double sumXX = 0;
    double sumXY = 0;
    for (const auto& [size, figure] : points) {
        if (!std::isfinite(figure))
            continue;
        const double x = std::log(size);
        const double y = std::log(figure);
        count += 1;
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
    }
    return count < 2 ? unknown : (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

// A new program image: its memory owes nothing to what this process holds or has held.
std::vector<double> resultsOfChild(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv{const_cast<char*>("child")};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    int ends[2];
    require(pipe(ends) == 0, "pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    pid_t child = 0;
    const int error = posix_spawn(&child, "/proc/self/exe", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const std::string text = error == 0 ? textFrom(ends[0]) : "";
    close(ends[0]);
    int status = 0;
    require(error == 0 && waitpid(child, &status, 0) == child, "a child process");
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM)
        return {};
    std::istringstream numbers(text);
    std::vector<double> results(std::istream_iterator<double>(numbers), {});
    require(status == 0 && !results.empty(), "a child process");
    return results;
}

double peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes)
            return kibibytes * 1024;
    }
    fail("VmHWM in /proc/self/status");
}

TempDirectory::TempDirectory() : path((std::filesystem::temp_directory_path() / "zebldapcfg-XXXXXX").string())
{
    require(mkdtemp(path.data()) != nullptr, "mkdtemp");
}

TempDirectory::~TempDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string readText(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        fail("read " + file);
    return {std::istreambuf_iterator<char>(in), {}};
}

void fail(const std::string& what)
{
    throw std::runtime_error("failed: " + what);
}
