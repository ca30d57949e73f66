// What the tool promises whatever happens: the file is the old or the new one, and nothing is left beside it.
#include "Process.h"

#include <chrono>
#include <map>
#include <set>
#include <thread>

#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using namespace std::chrono_literals;

constexpr char frontEnd[] = "cn=Front End,cn=Configuration";

std::vector<std::string> setPort(int port)
{
    return {"set", "cn=Configuration", "zeb-slapdPort=" + std::to_string(port)};
}

std::string withPort(std::string text, int port)
{
    const auto at = text.find("zeb-slapdPort: ");
    return text.replace(at, text.find('\n', at) - at, "zeb-slapdPort: " + std::to_string(port));
}

mode_t modeOf(const std::string& name)
{
    struct stat status = {};
    EXPECT_EQ(::stat(name.c_str(), &status), 0) << name;
    return status.st_mode & 07777;
}

// Ends updates with a signal at random moments, from the start to about the end of an undisturbed run. Each leaves the
// old or the new text; check looks at what else is there.
void interrupt(const ConfigDirectory& directory, int signal, int times, const std::function<void()>& check)
{
    ::chmod(directory.file.c_str(), 0640);
    long longest = 0;  // of three undisturbed runs, in microseconds
    for (int port = 1; port < 4; ++port) {
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_EQ(run(directory.file, setPort(port)), 0);
        const auto duration = std::chrono::steady_clock::now() - begin;
        longest = std::max<long>(longest, std::chrono::duration_cast<std::chrono::microseconds>(duration).count());
    }
    std::mt19937 random(static_cast<unsigned int>(signal));
    std::uniform_int_distribution<long> moment(0, longest * 3 / 2);
    std::map<bool, int> outcomes;
    for (int port = 4; port < times + 4; ++port) {
        const std::string before = readText(directory.file);
        const pid_t child = start(directory.file, setPort(port));
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        ::kill(child, signal);
        const int status = finish(child);
        const std::string after = readText(directory.file);
        ASSERT_TRUE(after == before || after == withPort(before, port)) << after;
        ASSERT_TRUE(status != 0 || after == withPort(before, port));
        ASSERT_EQ(modeOf(directory.file), 0640U);
        ++outcomes[after == before];
        check();
    }
    EXPECT_GT(outcomes[true], 0) << "no run was stopped in time";
    EXPECT_GT(outcomes[false], 0) << "no run came to its end";
}

const std::vector<std::string> fileAndBackup = {"zebslapd.conf", "zebslapd.conf.bak"};

TEST(Safety, AKillLeavesTheOldOrTheNewFile)
{
    const ConfigDirectory directory;
    interrupt(directory, SIGKILL, 300, [] {});
    EXPECT_EQ(run(directory.file, setPort(9999)), 0);
    EXPECT_EQ(directory.names(), fileAndBackup) << "the next run clears away what a killed one has left";
}

TEST(Safety, ASignalLeavesNothingBesideTheFile)
{
    const ConfigDirectory directory;
    interrupt(directory, SIGTERM, 100, [&] { ASSERT_EQ(directory.names(), fileAndBackup); });
}

// A limit on the size of files stands for a disk that is full at each byte of the new text in turn.
TEST(Safety, AFullDiskLeavesTheOldFile)
{
    const ConfigDirectory directory;
    const std::string before = readText(directory.file);
    const std::string longText(300, 'x');
    int refused = 0;
    for (rlim_t limit = 0; limit < before.size() + 400; limit += 23) {
        const pid_t child = start(directory.file, {"set", frontEnd, "description=" + longText}, [&] {
            const rlimit size = {limit, limit};
            ::setrlimit(RLIMIT_FSIZE, &size);
        });
        const int status = finish(child);
        refused += static_cast<int>(status == 80);
        if (status == 0)
            break;
        ASSERT_EQ(readText(directory.file), before) << limit;
        ASSERT_EQ(directory.names(), std::vector<std::string>{"zebslapd.conf"}) << limit;
    }
    EXPECT_GT(refused, 25);
    EXPECT_NE(readText(directory.file).find(longText), std::string::npos) << "the last limit is none";
}

TEST(Safety, TwoWritersLoseNoUpdate)
{
    constexpr int updates = 30;
    const ConfigDirectory directory;
    const auto write = [&](const std::string& name) {
        for (int i = 0; i < updates; ++i)
            EXPECT_EQ(
                run(directory.file, {"set", "--add", frontEnd, "zeb-slapdSetenv=" + name + std::to_string(i) + '='}),
                0);
    };
    std::thread other(write, "B");
    write("A");
    other.join();
    const std::string text = readText(directory.file);
    for (int i = 0; i < updates; ++i) {
        for (const char* const name : {"A", "B"})
            EXPECT_NE(text.find("zeb-slapdSetenv: " + (name + std::to_string(i)) + "=\n"), std::string::npos)
                << name << i;
    }
    EXPECT_EQ(directory.names(), fileAndBackup);
}

// What happens to the file itself while a command runs, as the kernel tells it.
std::uint32_t eventsOf(const ConfigDirectory& directory, const std::vector<std::string>& words)
{
    const int watch = ::inotify_init1(IN_NONBLOCK);
    EXPECT_GE(::inotify_add_watch(watch, directory.path.c_str(), IN_ALL_EVENTS), 0);
    EXPECT_EQ(run(directory.file, words), 0) << words.front();
    std::uint32_t events = 0;
    alignas(inotify_event) char buffer[65536];
    for (ssize_t size = 0; (size = ::read(watch, buffer, sizeof buffer)) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
            events |= event->len > 0 && std::string(event->name) == "zebslapd.conf" ? event->mask : 0U;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    ::close(watch);
    return events;
}

TEST(Safety, TheFileIsOnlyReadAndReplaced)
{
    constexpr std::uint32_t reading = IN_OPEN | IN_ACCESS | IN_CLOSE_NOWRITE;
    const ConfigDirectory directory;
    // A line that the library would quarantine, and write back at once.
    writeText(directory.file, readText(directory.file) + "dn: cn=Odd\nobjectclass: top\nzeb-slapdPort: x\n");
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"search"}, {"get", "cn=Odd", "objectclass"}, {"tree"}, {"describe"}, {"-n", "set", "cn=Odd", "cn=x"}})
        EXPECT_EQ(eventsOf(directory, words) & ~reading, 0U) << words.front();
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{setPort(2), {"delete", "cn=Odd"}, {"restore"}})
        EXPECT_EQ(eventsOf(directory, words) & ~reading, static_cast<std::uint32_t>(IN_MOVED_TO)) << words.front();
}

}  // namespace
