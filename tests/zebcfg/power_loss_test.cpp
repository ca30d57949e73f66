// What a file system may hold when the power fails at any moment of an update: what is not synced may be lost, in part
// and in any order. The file is the old or the new one all the same.
#include "Process.h"

#include <iostream>
#include <map>
#include <optional>
#include <set>

#include <sys/stat.h>
#include <sys/syscall.h>

namespace {

// A directory and its files as programs see them after a call.
struct Moment {
    std::map<std::string, ino_t> names;
    std::map<ino_t, std::string> contents;
    std::optional<ino_t> synced;  // by that call
};

class Recording {
public:
    Recording(const ConfigDirectory& recorded, const std::vector<std::string>& words) : directory(recorded)
    {
        moments.push_back(look());
        const pid_t child = start(directory.file, words, [] {
            ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // It does not work under a tracer.
            ::ptrace(PTRACE_TRACEME);
        });
        __ptrace_syscall_info call = {};
        status = trace(child, [&](const __ptrace_syscall_info& info) {
            if (info.op == PTRACE_SYSCALL_INFO_ENTRY)
                call = info;
            else if (info.op == PTRACE_SYSCALL_INFO_EXIT)
                take(child, call);
        });
    }

    // What may stand under the name when the power fails after that moment; nothing for no file.
    std::set<std::optional<std::string>> possible(const std::string& name, std::size_t end) const
    {
        std::set<std::optional<std::string>> found;
        for (std::size_t at = lastSync(idOf(directory.path), end); at <= end; ++at) {
            const auto entry = moments[at].names.find(name);
            if (entry == moments[at].names.end())
                found.insert(std::nullopt);
            else
                addContents(entry->second, at, end, found);
        }
        return found;
    }

    std::size_t size() const { return moments.size(); }

    int status = -1;

private:
    static ino_t idOf(const std::string& path)
    {
        struct stat found = {};
        return ::stat(path.c_str(), &found) == 0 ? found.st_ino : 0;
    }

    Moment look() const
    {
        Moment now;
        for (const std::string& name : directory.names()) {
            const ino_t id = idOf(directory / name);
            now.names[name] = id;
            now.contents[id] = readText(directory / name);
        }
        return now;
    }

    void take(pid_t child, const __ptrace_syscall_info& call)
    {
        Moment now = look();
        if (call.entry.nr == SYS_fsync)
            now.synced = idOf("/proc/" + std::to_string(child) + "/fd/" + std::to_string(call.entry.args[0]));
        const Moment& last = moments.back();
        if (now.synced || now.names != last.names || now.contents != last.contents)
            moments.push_back(std::move(now));
    }

    // The last moment that has it synced; all is at first.
    std::size_t lastSync(ino_t id, std::size_t end) const
    {
        while (end > 0 && moments[end].synced != id)
            --end;
        return end;
    }

    // What the file of a name at a moment may hold later on.
    void addContents(ino_t id, std::size_t at, std::size_t end, std::set<std::optional<std::string>>& found) const
    {
        std::size_t born = at;
        while (born > 0 && moments[born - 1].contents.count(id) != 0)
            --born;
        const std::size_t synced = lastSync(id, end);
        const bool isSynced = synced > born || born == 0;
        std::string last = isSynced ? moments[synced].contents.at(id) : "";
        found.insert(last);
        for (std::size_t i = isSynced ? synced : born; i <= end && moments[i].contents.count(id) != 0; ++i) {
            const std::string& content = moments[i].contents.at(id);
            if (content == last)
                continue;
            found.insert(content);
            found.insert(content.substr(0, content.size() / 2));
            last = content;
        }
    }

    const ConfigDirectory& directory;
    std::vector<Moment> moments;
};

TEST(PowerLoss, LeavesTheOldOrTheNewFile)
{
    std::size_t states = 0;
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"set", "cn=Configuration", "zeb-slapdPort=2"},
             {"--keep", "3", "delete", "cn=Front End,cn=Configuration"},
             {"move", "cn=Front End,cn=Configuration", "cn=x,cn=Configuration"},
             {"restore", "--yes"},
         }) {
        const ConfigDirectory directory;
        ASSERT_EQ(run(directory.file, {"set", "cn=Configuration", "zeb-slapdPort=1"}), 0);
        const std::string before = readText(directory.file);
        const Recording recording(directory, words);
        ASSERT_EQ(recording.status, 0) << words.front();
        const std::string after = readText(directory.file);
        for (std::size_t moment = 0; moment < recording.size(); ++moment) {
            for (const auto& content : recording.possible("zebslapd.conf", moment)) {
                EXPECT_TRUE(content == before || content == after) << words.front() << ": " << content.value_or("none");
                ++states;
            }
        }
        const std::size_t end = recording.size() - 1;
        using Contents = std::set<std::optional<std::string>>;
        EXPECT_EQ(recording.possible("zebslapd.conf", end), Contents{after}) << words.front() << ": not for good";
        if (after != before) {
            EXPECT_EQ(recording.possible("zebslapd.conf.bak", end), Contents{before})
                << words.front() << ": its backup";
        }
    }
    std::cout << states << " states of the file\n";
    EXPECT_GT(states, 0U);
}

}  // namespace
