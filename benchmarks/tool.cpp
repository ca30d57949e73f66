// What the commands of zebcfg cost: each in fresh processes on generated files, beside libldap's LDIF reader over the
// same file in a process of its own.
#include "generate.h"
#include "measure.h"
#include "program.h"
#include "references.h"
#include "table.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;  // NOLINT(readability-redundant-declaration): only GNU's headers declare it

namespace {

constexpr char usage[] = R"(usage: benchmark_tool [OPTION]...

  --tool FILE   the zebcfg to run (the one beside this program)
  --quick       few repetitions

The files lie in TMPDIR. The locale is C.UTF-8 unless LC_ALL says otherwise.
)";

constexpr std::size_t manyLeaves = 30000;
constexpr std::size_t mostLeaves = 100000;
constexpr std::size_t fewLeaves = 300;
constexpr std::size_t addedLeaves = 1500;
constexpr char someDn[] = "cn=Group 10, cn=Configuration";

struct Options {
    std::string tool = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zebcfg").string();
    Effort effort{7, 2};
};

// --- Children ---------------------------------------------------------------------------------------------------

// This process stays small, for the peak memory of a child begins with that of its parent: files are made by children.
void makeFile(const std::string& file, std::size_t leaves)
{
    writeBytes(file, generateInput({Shape::containers, leaves}).text);
}

// A small file, and the records that follow in a larger one of the same kind.
void makeBatch(const std::string& file, const std::string& records)
{
    writeBytes(file, generateInput({Shape::flat, fewLeaves}).text);
    std::string text;
    std::size_t leaves = 0;
    generateEntries({Shape::flat, fewLeaves + addedLeaves}, [&](const GeneratedEntry& entry) {
        if (!entry.isLeaf || leaves++ < fewLeaves)
            return;
        text += "dn: " + entry.dn + '\n';
        for (const auto& [name, value] : entry.attributes)
            text.append(name).append(": ").append(value).append("\n");
        text += '\n';
    });
    writeBytes(records, text);
}

void runChild(const Words& words)
{
    if (words.at(0) == "lex")
        (void)countLdifLines(words.at(1));
    else if (words.at(0) == "make")
        makeFile(words.at(1), std::stoul(words.at(2)));
    else
        makeBatch(words.at(1), words.at(2));
}

// What one process has used.
struct Cost {
    double time;  // of the processor, in seconds
    double peak;  // resident memory, in bytes
};

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Runs a program without its output.
Cost costOf(const std::string& program, const Words& words, int wantedStatus = 0)
{
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage used = {};
    require(error == 0 && wait4(child, &status, 0, &used) == child, "start a process");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != wantedStatus)
        fail(program + " " + words.at(words.size() > 2 ? 2 : 0) + ", status " + std::to_string(status));
    return {secondsOf(used.ru_utime) + secondsOf(used.ru_stime), static_cast<double>(used.ru_maxrss) * 1024};
}

Cost costOfChild(Words words)
{
    words.insert(words.begin(), childOption);
    return costOf("/proc/self/exe", words);
}

// --- The commands -----------------------------------------------------------------------------------------------

struct Command {
    const char* name;
    Words words;
    double target;         // times the lexer, of which the file has its number
    bool changes = false;  // and so gets a copy of the file each time
    int status = 0;
};

const std::vector<Command> commands = {
    {"get", {"get", someDn, "cn"}, 2.5},
    {"search", {"search", "-LLL"}, 8},
    {"set", {"set", someDn, "description=of other kinds"}, 10, true},
    {"-n set", {"-n", "set", someDn, "description=of other kinds"}, 14},
    {"check", {"check"}, 10, false, 1},  // there is no login
    {"edit, unchanged", {"edit"}, 12},
};

class Measurement {
public:
    explicit Measurement(const Options& wanted) : options(wanted) {}

    // The commands beside the lexer, over the same entries.
    void measureCommands()
    {
        (void)costOfChild({"make", file, std::to_string(manyLeaves)});
        Samples lexer;
        std::vector<Samples> times(commands.size());
        std::vector<Samples> peaks(commands.size());
        repeat(options.effort, [&] {
            lexer.add(costOfChild({"lex", file}).time);
            for (std::size_t i = 0; i < commands.size(); ++i) {
                const Cost cost = run(commands[i]);
                times[i].add(cost.time);
                peaks[i].add(cost.peak);
            }
        });
        const double unit = lexer.median();
        const auto bytes = static_cast<double>(std::filesystem::file_size(file));
        std::vector<Words> lines{{"command", "ms", "/lexer", "target", "", "MB", "B/B"}};
        lines.push_back({"the lexer", shown(unit * 1e3), "1.00"});
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const double ratio = times[i].median() / unit;
            lines.push_back({commands[i].name, shown(times[i].median() * 1e3), shown(ratio), shown(commands[i].target),
                             verdict(ratio, commands[i].target), shown(peaks[i].median() / 1e6),
                             shown(peaks[i].median() / bytes)});
        }
        printTable("zebcfg, " + shown(manyLeaves) + " entries, " + shown(bytes / 1e6) + " MB", lines);
    }

    void measureBatch()
    {
        constexpr double target = 100;  // milliseconds
        const std::string records = directory / "records.ldif";
        (void)costOfChild({"batch", file, records});
        const Command batch = {"add", {"add", "-f", records}, target, true};
        Samples time;
        repeat(options.effort, [&] { time.add(run(batch).time * 1e3); });
        printTable("zebcfg, " + shown(addedLeaves) + " entries added to " + shown(fewLeaves),
                   {{"command", "ms", "target", ""},
                    {batch.name, shown(time.median()), shown(target), verdict(time.median(), target)}});
    }

    void measureMemory()
    {
        constexpr double target = 5;  // bytes for each byte of the file
        (void)costOfChild({"make", file, std::to_string(mostLeaves)});
        const auto bytes = static_cast<double>(std::filesystem::file_size(file));
        std::vector<Words> lines{{"command", "ms", "MB", "B/B", "target", ""}};
        for (const Command& command : commands) {
            const bool isJudged = command.name == std::string("set");
            const Cost cost = run(command);
            const double ratio = cost.peak / bytes;
            lines.push_back({command.name, shown(cost.time * 1e3), shown(cost.peak / 1e6), shown(ratio),
                             isJudged ? shown(target) : "-", isJudged ? verdict(ratio, target) : ""});
        }
        printTable("zebcfg, " + shown(mostLeaves) + " entries, " + shown(bytes / 1e6) + " MB", lines);
    }

private:
    Cost run(const Command& command) const
    {
        const std::string copy = directory / "copy.conf";
        if (command.changes)
            std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        Words words = {"-F", command.changes ? copy : file};
        words.insert(words.end(), command.words.begin(), command.words.end());
        return costOf(options.tool, words, command.status);
    }

    static std::string verdict(double figure, double target) { return figure <= target ? "met" : "missed"; }

    const Options& options;
    const TempDirectory directory;
    const std::string file = directory / "generated.conf";
};

Options parse(const Words& words)
{
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--quick")
            options.effort = {3, 0};
        else if (words[i] == "--tool" && i + 1 < words.size())
            options.tool = words[++i];
        else
            fail(words[i] + '\n' + usage);
    }
    return options;
}

void run(const Words& words)
{
    const Options options = parse(words);
    (void)setenv("VISUAL", "true", 1);  // an editor that changes nothing
    std::printf("CPU time of whole processes, medians, and their greatest resident memory\n");
    Measurement measurement(options);
    measurement.measureCommands();
    measurement.measureBatch();
    measurement.measureMemory();
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram({"benchmark_tool", usage, &run, &runChild}, argc, argv);
}
