// The tool on a terminal: prompts, colour, line drawing and the editor.
#include "Process.h"
#include "terminal/Progress.h"

#include <chrono>
#include <deque>
#include <iterator>
#include <regex>
#include <thread>

#include <sys/stat.h>

namespace {

std::string passwordIn(const ConfigDirectory& directory)
{
    Terminal terminal(directory.file, {"--show-passwords", "get", "cn=Configuration", "zeb-slapdAdminPW"});
    EXPECT_EQ(terminal.finish(), 0);
    return terminal.output;
}

TEST(Prompts, ANewPasswordIsAskedForTwiceAndNotShown)
{
    const ConfigDirectory directory;
    Terminal terminal(directory.file, {"passwd", "cn=Configuration"});
    terminal.answer("New password: ", "geheim\n");
    terminal.answer("New password again: ", "geheim\n");
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_EQ(terminal.output.find("geheim"), std::string::npos) << terminal.output;
    EXPECT_EQ(passwordIn(directory), "geheim\r\n");

    Terminal other(directory.file, {"passwd", "cn=Configuration"});
    other.answer("New password: ", "one\n");
    other.answer("New password again: ", "two\n");
    EXPECT_EQ(other.finish(), 1);
    EXPECT_NE(other.output.find("differ"), std::string::npos);
    EXPECT_EQ(passwordIn(directory), "geheim\r\n");
}

TEST(Prompts, ALoginAsksAndAnInterruptEndsIt)
{
    const ConfigDirectory directory;
    const std::vector<std::string> words = {"-D",  "cn=admin,o=Example", "-W",
                                            "get", "cn=Configuration",   "zeb-slapdPort"};
    const struct {
        const char* typed;
        int status;
        const char* output;
    } cases[] = {
        {"secret\n", 0, "389"}, {"wrong\n", 49, "is refused"}, {"\3", 1, "no password"}, {"\4", 1, "no password"}};
    for (const auto& c : cases) {
        Terminal terminal(directory.file, words);
        terminal.answer("Password for cn=admin,o=Example: ", c.typed);
        EXPECT_EQ(terminal.finish(), c.status) << c.typed;
        EXPECT_NE(terminal.output.find(c.output), std::string::npos) << terminal.output;
        EXPECT_EQ(terminal.output.find("secret"), std::string::npos) << terminal.output;
    }
}

TEST(Prompts, ASignalBringsTheEchoBack)
{
    const ConfigDirectory directory;
    Terminal terminal(directory.file, {"passwd", "cn=Configuration"});
    terminal.answer("New password: ", "");
    EXPECT_FALSE(terminal.hasEcho());
    terminal.end(SIGTERM);
    EXPECT_TRUE(terminal.hasEcho());
}

TEST(Appearance, ColourAndLinesAreForTerminalsThatShowThem)
{
    const ConfigDirectory directory;
    const std::vector<std::string> dryRun = {"-n", "set", "cn=Configuration", "zeb-slapdPort=1"};
    const struct {
        std::vector<std::string> words;
        std::vector<const char*> environment;
        const char* text;
        bool isThere;
    } cases[] = {
        {dryRun, {}, "\033[32m+zeb-slapdPort: 1", true},
        {dryRun, {"NO_COLOR=1"}, "\033[", false},
        {dryRun, {"TERM=dumb"}, "\033[", false},
        {{"--color=never", "-n", "set", "cn=Configuration", "zeb-slapdPort=1"}, {}, "\033[", false},
        {{"tree"}, {}, "└── cn=Front End", true},
        {{"tree", "--ascii"}, {}, "`-- cn=Front End", true},
    };
    for (const auto& c : cases) {
        Terminal terminal(directory.file, c.words, c.environment);
        EXPECT_EQ(terminal.finish(), 0);
        EXPECT_EQ(terminal.output.find(c.text) != std::string::npos, c.isThere) << terminal.output;
    }
}

// Every file in memory takes its time, of which a check makes several.
TEST(Progress, ShowsWhatTakesLongerThanASecond)
{
    const ConfigDirectory directory;
    const std::string records = directory / "records";
    writeText(records, "dn: cn=a\ncn: a\n\ndn: cn=(b)\ncn: (b)\n");
    const struct {
        std::vector<std::string> words;
        const char* slowness;
        const char* text;  // a pattern
        bool isShown;
    } cases[] = {
        {{"check"}, "FAULT_SLOWNESS=600", "Checking [.]{3}", true},
        {{"tree"}, "FAULT_SLOWNESS=600", "[.]{3}", false},
        {{"-q", "check"}, "FAULT_SLOWNESS=600", "[.]{3}", false},
        {{"-j", "check"}, "FAULT_SLOWNESS=600", "[.]{3}", false},
        {{"check"}, "FAULT_SLOWNESS=0", "[.]{3}", false},
        {{"-n", "add", "-f", records}, "FAULT_SLOWNESS=1100", "Verifying [.]{3}", true},
    };
    const std::string preload = std::string("LD_PRELOAD=") + ZEBCFG_FAULTS;
    std::deque<Terminal> terminals;  // all at the same time
    for (const auto& c : cases)
        terminals.emplace_back(
            directory.file, c.words,
            std::vector<const char*>{preload.c_str(), "ASAN_OPTIONS=verify_asan_link_order=0", c.slowness});
    for (const auto& c : cases) {
        Terminal& terminal = terminals.front();
        (void)terminal.finish();
        EXPECT_EQ(std::regex_search(terminal.output, std::regex(c.text)), c.isShown) << terminal.output;
        const auto last = terminal.output.rfind("...");
        EXPECT_TRUE(!c.isShown || terminal.output.find(std::string(39, ' ') + '\r', last) != std::string::npos)
            << terminal.output << ": the line is erased";
        terminals.pop_front();
    }
}

TEST(Progress, CountsSteps)
{
    int side = -1;
    const pid_t child = ::forkpty(&side, nullptr, nullptr, nullptr);
    if (child == 0) {
        showProgress(true);
        Progress progress("Reading");
        for (int i = 0; i < 1020034; ++i)
            progress.step();
        std::this_thread::sleep_for(std::chrono::milliseconds(1300));
        ::_exit(0);
    }
    char buffer[100] = {};
    EXPECT_GT(::read(side, buffer, sizeof buffer - 1), 0);
    EXPECT_EQ(std::string(buffer).rfind("Reading ... 1,020,034 ", 0), 0U) << buffer;
    EXPECT_EQ(::finish(child), 0);
    ::close(side);
}

TEST(Questions, InitAsksForTheLogin)
{
    const ConfigDirectory directory;
    const std::string made = directory / "new.conf";
    Terminal terminal(directory.file, {"init", made});
    terminal.answer("DN of the administrator: ", "\n");
    terminal.answer("DN of the administrator: ", "cn=me\n");
    terminal.answer("New password: ", "geheim\n");
    terminal.answer("New password again: ", "geheim\n");
    EXPECT_EQ(terminal.finish(), 0) << terminal.output;
    EXPECT_EQ(run(made, {"-D", "cn=me", "-w", "geheim", "tree"}), 0);
}

TEST(Questions, DeleteAndRestoreAskOnATerminalAlone)
{
    const std::vector<std::string> erase = {"delete", "-r", "cn=Configuration", "--force"};
    const std::vector<std::string> restore = {"restore"};
    const struct {
        std::vector<std::string> words;
        const char* option;  // before the words
        const char* question;
        const char* answer;
        int status;
    } cases[] = {
        {erase, "-q", "delete 2 entries? ", "n\n", 1},
        {erase, "-q", "delete 2 entries? ", "y\n", 0},
        {erase, "-q", "delete 2 entries? ", "\4", 1},
        {erase, "--yes", nullptr, nullptr, 0},
        {erase, "-n", nullptr, nullptr, 0},
        {{"delete", "cn=Gone"}, "-q", nullptr, nullptr, 32},
        {restore, "-v", "+zeb-slapdPort: 389", "", 1},
        {restore, "-q", ".bak? (y)es", "n\n", 1},
        {restore, "-q", ".bak? (y)es or (n)o: ", "y\n", 0},
        {restore, "--yes", nullptr, nullptr, 0},
    };
    for (const auto& c : cases) {
        const ConfigDirectory directory;
        ASSERT_EQ(run(directory.file, {"set", "cn=Configuration", "zeb-slapdPort=1"}), 0);
        const std::string before = readText(directory.file);
        std::vector<std::string> words = c.words;
        words.insert(words.begin(), c.option);
        Terminal terminal(directory.file, words);
        if (c.question != nullptr)
            terminal.answer(c.question, *c.answer != '\0' ? c.answer : "\4");
        EXPECT_EQ(terminal.finish(), c.status) << terminal.output;
        EXPECT_EQ(c.question == nullptr, terminal.output.find("(y)es") == std::string::npos) << terminal.output;
        const bool isChanged = c.status == 0 && std::string(c.option) != "-n";
        EXPECT_EQ(readText(directory.file) != before, isChanged) << terminal.output;
    }
}

// A fake editor, which makes a port of 70000 at first, and of 391 when it is started again.
class Edit : public testing::Test {
protected:
    Edit()
    {
        writeText(directory / "editor", "if [ -e '" + directory / "again" +
                                            "' ]; then sed -i s/70000/391/ \"$1\"; else touch '" + directory / "again" +
                                            "'; sed -i s/389/70000/ \"$1\"; fi\n");
        setting = "VISUAL=sh " + directory / "editor";
    }

    const ConfigDirectory directory;
    const std::string before = readText(directory.file);
    std::string setting;
};

TEST_F(Edit, EditsAgainAfterAFinding)
{
    Terminal terminal(directory.file, {"edit"}, {setting.c_str()});
    terminal.answer("(s)how them? ", "s\n");
    terminal.answer("(s)how them? ", "x\n");
    terminal.answer("(s)how them? ", "e\n");
    EXPECT_EQ(terminal.finish(), 0) << terminal.output;
    EXPECT_NE(terminal.output.find(":10: error: zeb-slapdPort: 70000 is not in the range"), std::string::npos)
        << terminal.output;
    EXPECT_NE(terminal.output.find("+zeb-slapdPort: 70000"), std::string::npos) << terminal.output;
    EXPECT_NE(readText(directory.file).find("zeb-slapdPort: 391"), std::string::npos);
    EXPECT_EQ(readText(directory.backup), before);
}

TEST_F(Edit, BeginsAgainAtTheLineOfTheFinding)
{
    const std::string editor = directory / "vi";
    writeText(editor, "#!/bin/sh\necho \"$*\" >>'" + directory / "words" + "'\nfor file; do :; done\nsh '" +
                          directory / "editor" + "' \"$file\"\n");
    ::chmod(editor.c_str(), 0700);
    setting = "VISUAL=" + editor;
    Terminal terminal(directory.file, {"edit", "cn=Configuration"}, {setting.c_str()});
    terminal.answer("(s)how them? ", "e\n");
    EXPECT_EQ(terminal.finish(), 0) << terminal.output;
    const std::string words = readText(directory / "words");
    EXPECT_EQ(words.find('+'), words.find('\n') + 1) << words;
    EXPECT_NE(words.find("+7 "), std::string::npos) << words;
}

TEST_F(Edit, AsksBeforeItDeletesAnEntry)
{
    for (const char* const answer : {"n\n", "y\n"}) {
        Terminal terminal(directory.file, {"edit", "cn=Front End,cn=Configuration"}, {"VISUAL=truncate -s 0"});
        terminal.answer("(n)o: ", answer);
        if (*answer == 'n')
            terminal.answer("(s)how them? ", "d\n");
        EXPECT_EQ(terminal.finish(), *answer == 'n' ? 1 : 0) << terminal.output;
        EXPECT_EQ(readText(directory.file).find("Front End") == std::string::npos, *answer == 'y');
    }
    Terminal terminal(directory.file, {"edit", "cn=Configuration"}, {"VISUAL=truncate -s 0"});
    terminal.answer("(n)o: ", "y\n");
    terminal.answer("nobody can log in", "");
    terminal.answer("(s)how them? ", "d\n");
    EXPECT_EQ(terminal.finish(), 1) << terminal.output;
}

// The editor ends the tool, and goes on for a while.
TEST_F(Edit, WorkInMemoryIsRemovedOnceNobodyUsesIt)
{
    const std::string runtime = directory / "runtime";
    std::filesystem::create_directories(runtime + "/zebcfg-mine");
    const auto edit = [&](const std::string& editor) {
        return finish(start(directory.file, {"edit"}, [&] {
            ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
            ::setenv("VISUAL", editor.c_str(), 1);
        }));
    };
    const auto folders = [&] {
        return std::distance(std::filesystem::directory_iterator(runtime), std::filesystem::directory_iterator());
    };
    for (const char* const signal : {"KILL", "TERM"}) {
        const std::string done = directory / "done-" + signal;
        writeText(directory / "editor", std::string("touch \"$1.swap\"; kill -") + signal +
                                            " $PPID; sleep 1; while kill -0 $PPID; do sleep 1; done; ls \"$1\" >'" +
                                            done + "'\n");
        EXPECT_NE(edit("sh " + directory / "editor"), 0);
        EXPECT_EQ(edit("true"), 0);
        EXPECT_EQ(folders(), 2) << signal << ": the editor still works in it";
        for (int i = 0; i < 500 && !std::filesystem::exists(done); ++i)
            ::usleep(10000);
        ::usleep(100000);
        EXPECT_TRUE(readText(done).empty() || *signal == 'K') << "the text is left";
        EXPECT_EQ(edit("true"), 0);
        EXPECT_EQ(folders(), 1) << signal << ": another's folder stays";
    }
}

TEST_F(Edit, DropsTheChanges)
{
    Terminal terminal(directory.file, {"edit", "cn=Configuration"}, {setting.c_str()});
    terminal.answer("(s)how them? ", "d\n");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_EQ(readText(directory.file), before);
    EXPECT_FALSE(std::filesystem::exists(directory.backup));
}

}  // namespace
