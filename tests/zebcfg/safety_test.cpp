// What the tool promises whatever happens: the file is the old or the new one, and nothing is left beside it.
#include "Process.h"
#include "faults/faults.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/xattr.h>

namespace {

using namespace std::chrono_literals;

// Quick changes would have to wait, so that the time of the file does not run ahead.
constexpr timeval longAgo[] = {{1000000000, 0}, {1000000000, 0}};

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
        ASSERT_EQ(::utimes(directory.file.c_str(), longAgo), 0);
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
        ASSERT_EQ(::utimes(directory.file.c_str(), longAgo), 0);
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

constexpr uid_t nobody = 65534;

void becomeNobody()
{
    ASSERT_EQ(::setgid(nobody), 0);
    ASSERT_EQ(::setuid(nobody), 0);
}

std::string textOf(const FaultPlan& plan)
{
    std::ostringstream text;
    text << plan.calls << ' ' << plan.first << ' ' << plan.lasts << ' ' << static_cast<int>(plan.fault) << ' '
         << plan.error;
    return text.str();
}

// Lets calls of the process fail.
void plan(const FaultPlan& plan, const std::string& report = {})
{
    ::setenv("LD_PRELOAD", ZEBCFG_FAULTS, 1);
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    ::setenv("FAULT_PLAN", textOf(plan).c_str(), 1);
    ::setenv("FAULT_REPORT", report.c_str(), 1);
}

// Whether the call to the kernel may change a file, a directory or a lock.
bool mayChange(std::uint64_t call)
{
    static const std::set<std::uint64_t> calls = {
        SYS_openat,    SYS_close,  SYS_write,    SYS_pwrite64,   SYS_ftruncate, SYS_flock,
        SYS_fsync,     SYS_fchmod, SYS_fchown,   SYS_fsetxattr,  SYS_utimensat, SYS_fremovexattr,
        SYS_renameat2, SYS_linkat, SYS_unlinkat, SYS_exit_group,
#ifdef SYS_rename
        SYS_rename,    SYS_link,   SYS_unlink,
#endif
    };
    return calls.count(call) != 0;
}

// Starts a change of the port that is traced. prepare runs in the new process.
pid_t startTraced(
    const std::string& file, const std::function<void()>& prepare = [] {})
{
    return start(file, setPort(2), [&] {
        prepare();
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // It does not work under a tracer.
        ::ptrace(PTRACE_TRACEME);
    });
}

// Kills a traced process in front of the Nth such call. Gives its status, which is 0 when it has fewer.
int killAt(pid_t child, int number)
{
    return trace(child, [&](const __ptrace_syscall_info& info) {
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY && mayChange(info.entry.nr) && --number == 0)
            ::kill(child, SIGKILL);
    });
}

// The file and its backup after one change, and a further change that meets refusals and kills. All of it as root, or
// as another user.
class Generations : public testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        if (GetParam() && ::geteuid() != 0)
            GTEST_SKIP() << "only root can be two users";
        for (const std::string& name : {directory.path, directory.file, reports.path})
            own(name);
        ASSERT_EQ(change(1), 0);
        backup = readText(directory.backup);
        live = readText(directory.file);
        next = withPort(live, 2);
    }

    int change(int port) const
    {
        return finish(start(directory.file, setPort(port), [&] { become(); }));
    }

    int changeUnder(const FaultPlan& faults) const
    {
        return finish(start(directory.file, setPort(2), [&] {
            become();
            plan(faults, report);
        }));
    }

    // How many calls of a kind a change makes.
    long count(FaultCalls kind) const
    {
        reset();
        EXPECT_EQ(changeUnder({kind, 0, false, Fault::error, 0}), 0);
        return std::stol(readText(report));
    }

    int killed(int call) const
    {
        return killAt(startTraced(directory.file, [&] { become(); }), call);
    }

    // Puts everything back as it was before the change.
    void reset() const
    {
        for (const std::string& name : directory.names())
            std::filesystem::remove(directory / name);
        writeText(directory.file, live);
        writeText(directory.backup, backup);
        own(directory.file);
        own(directory.backup);
        ASSERT_EQ(::utimes(directory.file.c_str(), longAgo), 0);
    }

    void expect(const std::string& wantedFile, const std::string& wantedBackup, const std::string& label) const
    {
        EXPECT_EQ(readText(directory.file), wantedFile) << label;
        EXPECT_EQ(readText(directory.backup), wantedBackup) << label;
    }

    static void own(const std::string& name)
    {
        if (GetParam()) {
            ASSERT_EQ(::chown(name.c_str(), nobody, nobody), 0);
        }
    }

    const ConfigDirectory directory;
    std::string backup;
    std::string live;
    std::string next;

private:
    const TempDirectory reports;
    const std::string report = reports / "report";

    static void become()
    {
        if (GetParam())
            becomeNobody();
    }
};

INSTANTIATE_TEST_SUITE_P(Users, Generations, testing::Bool(),
                         [](const auto& user) { return user.param ? "Nobody" : "Self"; });

struct Calls {
    const char* name;
    FaultCalls kind;
};

TEST_P(Generations, ARefusedStepUndoesThoseBeforeIt)
{
    int refusals = 0;
    for (const auto& [name, kind] : std::vector<Calls>{{"rename", faultRename},
                                                       {"link", faultLink},
                                                       {"fsync", faultSync},
                                                       {"fchmod", faultMode},
                                                       {"fchown", faultOwner},
                                                       {"ftruncate", faultCut}}) {
        const long calls = count(kind);
        for (long call = 1; call <= calls; ++call) {
            const std::string label = name + std::to_string(call);
            reset();
            const int status = changeUnder({kind, call, false, Fault::error, EPERM});
            refusals += static_cast<int>(status == 50 || status == 80);
            expect(status == 0 ? next : live, status == 0 ? live : backup, label);
            EXPECT_EQ(directory.names(), fileAndBackup) << label;
        }
    }
    EXPECT_GT(refusals, 8) << "of some fifteen calls";
}

// Memory and calls on files fail once and from then on, and reading and writing fall short or are interrupted.
TEST_P(Generations, AFaultLeavesTheOldOrTheNewFile)
{
    long points = 0;
    const auto tryPlan = [&](const char* name, const FaultPlan& faults) {
        const std::string label = name + (": " + textOf(faults));
        reset();
        const int status = changeUnder(faults);
        ++points;
        const bool isNew = readText(directory.file) == next;
        EXPECT_EQ(readText(directory.file), isNew ? next : live) << label;
        EXPECT_LT(status, 128) << label;
        EXPECT_TRUE(isNew || status != 0) << label;
        if (faults.fault == Fault::half || faults.error == EINTR) {
            EXPECT_EQ(status, 0) << label;
        }
    };
    for (const auto& [name, kind] : std::vector<Calls>{{"memory", faultMemory},
                                                       {"open", faultOpen},
                                                       {"read", faultRead},
                                                       {"write", faultWrite},
                                                       {"close", faultClose},
                                                       {"unlink", faultUnlink},
                                                       {"stat", faultStat},
                                                       {"futimens", faultTime},
                                                       {"memfd_create", faultNameless}}) {
        if (kind == faultMemory && GetParam())
            continue;  // It is the same for each user.
        const long calls = count(kind);
        for (long call = 1; call <= calls; ++call) {
            tryPlan(name, {kind, call, false, Fault::error, EIO});
            if (kind != faultMemory || call % 10 == 0)
                tryPlan(name, {kind, call, true, Fault::error, EIO});
            if (kind == faultRead || kind == faultWrite) {
                tryPlan(name, {kind, call, false, Fault::half, 0});
                tryPlan(name, {kind, call, true, Fault::half, 0});
                tryPlan(name, {kind, call, false, Fault::error, EINTR});
            }
        }
    }
    std::cout << points << " points\n";
    EXPECT_GT(points, 100);
}

TEST_P(Generations, AfterAKillAllStandWholeAndTheNextUpdateTidiesUp)
{
    int status = 1;
    int call = 1;
    for (; status != 0; ++call) {
        const std::string label = "kill:" + std::to_string(call);
        ASSERT_LT(call, 1000);
        reset();
        status = killed(call);
        const bool isNew = readText(directory.file) == next;
        for (const std::string& name : directory.names()) {
            const bool isLock = name.find(".lock") != std::string::npos;
            EXPECT_TRUE(!isLock || modeOf(directory / name) == 0644U) << name << label;
        }
        const std::string before = directory / ".zebslapd.conf.bak.zebcfg-old";
        if (isNew)
            EXPECT_EQ(readText(directory.backup), live) << label;
        else if (readText(directory.backup) == live)
            EXPECT_EQ(readText(before), backup) << label;
        else
            expect(live, backup, label);
        ASSERT_EQ(change(isNew ? 2 : 1), 0) << label << ": nothing is left to change";
        expect(isNew ? next : live, isNew ? live : backup, label);
        EXPECT_EQ(directory.names(), fileAndBackup) << label;
    }
    EXPECT_GT(call, 50) << "so many calls a change has at least";
}

TEST_P(Generations, AKillLosesNoOlderGeneration)
{
    const std::string second = directory.backup + ".2";
    const std::string third = directory.backup + ".3";
    ::setenv("ZEBCFG_BACKUPS", "3", 1);
    int status = 1;
    for (int call = 1; status != 0; ++call) {
        const std::string label = "kill:" + std::to_string(call);
        ASSERT_LT(call, 1000);
        reset();
        writeText(second, "older");
        own(second);
        status = killed(call);
        const bool isNew = readText(directory.file) == next;
        ASSERT_EQ(change(isNew ? 2 : 1), 0) << label << ": nothing is left to change";
        expect(isNew ? next : live, isNew ? live : backup, label);
        EXPECT_EQ(readText(second), isNew ? backup : "older") << label;
        EXPECT_EQ(std::filesystem::exists(third), isNew) << label;
        EXPECT_EQ(directory.names().size(), isNew ? 4U : 3U) << label;
    }
    EXPECT_EQ(readText(third), "older");
    ::unsetenv("ZEBCFG_BACKUPS");
}

TEST(Safety, ALockThatRootHasLeftDoesNotKeepTheOwnerOut)
{
    const ConfigDirectory directory;
    const std::string lock = directory.file + ".lock";
    if (::chown(directory.path.c_str(), nobody, nobody) != 0 || ::chown(directory.file.c_str(), nobody, nobody) != 0)
        GTEST_SKIP() << "only root can be two users";
    writeText(lock, "zebcfg lock\nprocess 1 of root since 2026-01-31 12:00:00\n");
    EXPECT_EQ(finish(start(directory.file, setPort(2), &becomeNobody)), 0);
    EXPECT_EQ(directory.names(), fileAndBackup);
}

TEST(Safety, NoPasswordIsLeftInMemory)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer has the memory to itself";
#endif
    constexpr char password[] = "a secret of some length";
    const ConfigDirectory directory;
    const std::string input = directory / "password";
    const std::string report = directory / "report";
    writeText(input, password);
    writeText(directory / "clear",
              std::string("dn: cn=Configuration\nobjectclass: top\nzeb-slapdAdminPW: ") + password + '\n');
    const std::string record = directory / "record";
    writeText(record, std::string("dn: cn=n,cn=Configuration\nzeb-slapdPeerPW: ") + password + '\n');
    const std::vector<std::string> login = {"-D", "cn=admin,o=Example", "-y", input, "--show-passwords"};
    const auto afterLogin = [&](std::vector<std::string> words) {
        words.insert(words.begin(), login.begin(), login.end());
        return words;
    };
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"passwd", "cn=Configuration", "-y", input},
             afterLogin({"search"}),
             afterLogin({"-j", "search"}),
             afterLogin({"get", "cn=Configuration", "zeb-slapdAdminPW"}),
             afterLogin({"compare", "cn=Configuration", "zeb-slapdAdminPW", password}),
             {"add", "-f", record},
             {"-F", directory / "clear", "check"},
             {"-F", directory / "clear", "set", "cn=Configuration", "zeb-slapdPort=5"},
         }) {
        std::filesystem::remove(report);  // of the one before
        const pid_t child = start(directory.file, words, [&] {
            plan({faultFiles, 0, false, Fault::error, 0}, report);
            ::setenv("FAULT_WATCH", password, 1);
        });
        EXPECT_LT(finish(child), 2) << words.front();
        const std::string result = readText(report);
        EXPECT_EQ(result.substr(result.find(' ')), " 0\n") << ::testing::PrintToString(words);
    }
}

// The kernel gives the files below /proc/PID of a process that may not be dumped to root.
TEST(Safety, TheMemoryIsHiddenFromTheSameUser)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer has to see the memory";
#endif
    const ConfigDirectory directory;
    if (::chown(directory.path.c_str(), nobody, nobody) != 0 || ::chown(directory.file.c_str(), nobody, nobody) != 0)
        GTEST_SKIP() << "only root can be two users";
    writeText(directory / "editor", "stat -c %u /proc/$PPID/environ >'" + directory / "owner" + "'\n");
    const std::string editor = "VISUAL=sh " + directory / "editor";
    EXPECT_EQ(finish(start(directory.file, {"edit"},
                           [&] {
                               becomeNobody();
                               ::putenv(const_cast<char*>(editor.c_str()));
                           })),
              0);
    EXPECT_EQ(readText(directory / "owner"), "0\n");
}

// Also what has the same size and the same second.
TEST(Safety, WhatSomebodyElseHasWrittenStays)
{
    for (const bool isLonger : {true, false}) {
        const ConfigDirectory directory;
        const std::string text = readText(directory.file);
        const std::string other = isLonger ? text + "# by somebody else\n" : '!' + text.substr(1);
        const std::string lock = directory.file + ".lock";
        struct stat before = {};
        EXPECT_EQ(::stat(directory.file.c_str(), &before), 0);
        const timespec times[] = {before.st_atim, {before.st_mtim.tv_sec, before.st_mtim.tv_nsec ^ 1}};
        const int status = trace(startTraced(directory.file), [&](const __ptrace_syscall_info& info) {
            if (info.op == PTRACE_SYSCALL_INFO_ENTRY && info.entry.nr == SYS_fsync) {
                writeText(directory.file, other);
                ::utimensat(AT_FDCWD, directory.file.c_str(), times, 0);
                std::filesystem::remove(lock);
                writeText(lock, other);
            }
        });
        EXPECT_EQ(status, 51) << isLonger;
        EXPECT_EQ(readText(directory.file), other);
        EXPECT_EQ(readText(lock), other) << "the lock of somebody else";
    }
}

TEST(Safety, NoFileIsOpenToOthersForAMoment)
{
    const ConfigDirectory directory;
    ASSERT_EQ(run(directory.file, setPort(1)), 0);
    ::chmod(directory.file.c_str(), 0600);
    ::chmod(directory.backup.c_str(), 0600);
    std::set<std::string> open;
    const auto look = [&](const __ptrace_syscall_info&) {
        for (const std::string& name : directory.names()) {
            struct stat status = {};
            if (::stat((directory / name).c_str(), &status) == 0 && (status.st_mode & 077) != 0)
                open.insert(name);
        }
    };
    EXPECT_EQ(trace(startTraced(directory.file), look), 0);
    open.erase("zebslapd.conf.lock");
    open.erase(".zebslapd.conf.lock.zebcfg-new");
    EXPECT_TRUE(open.empty()) << *open.begin();
}

TEST(Safety, ExtendedAttributesAreKept)
{
    const ConfigDirectory directory;
    const std::string value = "a value";
    if (::setxattr(directory.file.c_str(), "user.note", value.data(), value.size(), 0) != 0)
        GTEST_SKIP() << "the file system has no extended attributes";
    ASSERT_EQ(run(directory.file, setPort(2)), 0);
    std::array<char, 100> kept = {};
    EXPECT_EQ(::getxattr(directory.file.c_str(), "user.note", kept.data(), kept.size()),
              static_cast<ssize_t>(value.size()));
    EXPECT_STREQ(kept.data(), value.c_str());

    const std::string errors = directory / "errors";
    const pid_t child = start(directory.file, setPort(3), [&] {
        plan({faultExtended, 1, false, Fault::error, EPERM});
        ::dup2(::open(errors.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
    });
    EXPECT_EQ(finish(child), 0);
    EXPECT_EQ(readText(errors), "zebcfg: the extended attribute user.note of the file could not be kept\n");
}

TEST(Safety, AnAccessListOfTheDirectoryIsNotTakenOver)
{
    // The version, then kind, permissions and user: the owner, nobody, the group, the mask and others.
    const std::string list("\2\0\0\0\1\0\6\0\377\377\377\377\2\0\4\0\376\377\0\0\4\0\4\0\377\377\377\377"
                           "\20\0\4\0\377\377\377\377\40\0\0\0\377\377\377\377",
                           44);
    const ConfigDirectory directory;
    if (::setxattr(directory.path.c_str(), "system.posix_acl_default", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "the file system has no access lists";
    ASSERT_EQ(run(directory.file, setPort(2)), 0);
    EXPECT_EQ(::getxattr(directory.file.c_str(), "system.posix_acl_access", nullptr, 0), -1) << "nobody may read it";
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
    constexpr int updates = 6;  // a second each
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
