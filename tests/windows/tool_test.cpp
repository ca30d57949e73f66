// The tool as a process of Windows: its lock, files in use, protection, editors and control events.
#include "support.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include <sddl.h>

namespace {

using namespace std::chrono_literals;

constexpr SECURITY_INFORMATION accessList = DACL_SECURITY_INFORMATION;

struct ToolTest : testing::Test {
    ToolTest() { std::filesystem::copy_file(ZEBCFG_SMALL_CONF, file); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& item : std::filesystem::directory_iterator(directory.path))
            found.push_back(item.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }
    bool holds(const std::string& line) const { return readText(file).find('\n' + line + '\n') != std::string::npos; }
    static std::string access(const std::string& name)
    {
        alignas(SECURITY_DESCRIPTOR) char descriptor[4096] = {};
        DWORD size = sizeof descriptor;
        char* text = nullptr;
        EXPECT_NE(GetFileSecurityA(name.c_str(), accessList, descriptor, size, &size), FALSE);
        EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1, accessList, &text,
                                                                       nullptr),
                  FALSE);
        return text != nullptr ? text : "";
    }

    const TempDirectory directory;
    const std::string file = directory / "zebslapd.conf";
};

const std::vector<std::string> fileAndBackup = {"zebslapd.conf", "zebslapd.conf.bak"};
const std::string setPort = "set cn=Configuration zeb-slapdPort=";

// A file that is open, and that others may only read meanwhile.
struct OpenFile {
    explicit OpenFile(const std::string& name, DWORD access = GENERIC_READ)
        : handle(CreateFileA(name.c_str(), access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
        EXPECT_NE(handle, INVALID_HANDLE_VALUE) << name;
    }
    OpenFile(const OpenFile&) = delete;
    ~OpenFile() { CloseHandle(handle); }
    const HANDLE handle;
};

// A process without a console: one that is killed would leave its own behind. An editor needs one, which nobody sees.
class Tool {
public:
    Tool(const std::string& file, const std::string& words, DWORD flags = DETACHED_PROCESS)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE out =
            CreateFileA(log.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
        STARTUPINFOW setup = {};
        setup.cb = sizeof setup;
        setup.dwFlags = STARTF_USESTDHANDLES;
        setup.hStdOutput = setup.hStdError = out;
        const std::string line = "\"" ZEBCFG_TOOL "\" -F \"" + file + "\" " + words;
        std::wstring wide = std::filesystem::u8path(line).wstring();
        EXPECT_NE(
            CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &setup, &process),
            FALSE);
        CloseHandle(out);
    }
    Tool(const Tool&) = delete;
    ~Tool()
    {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    DWORD status() const
    {
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), WAIT_OBJECT_0);
        EXPECT_NE(GetExitCodeProcess(process.hProcess, &code), FALSE);
        return code;
    }
    void kill() const { TerminateProcess(process.hProcess, 99); }
    // As the system tells of a control event: by a thread that begins in its routine, whose address all processes
    // share.
    void interrupt(DWORD event) const
    {
        auto* const routine = GetProcAddress(GetModuleHandleA("kernelbase"), "CtrlRoutine");
        const HANDLE thread = CreateRemoteThread(
            process.hProcess, nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine)),
            reinterpret_cast<void*>(std::uintptr_t{event}),  // NOLINT(performance-no-int-to-ptr)
            0, nullptr);
        EXPECT_NE(thread, nullptr);
        CloseHandle(thread);
    }
    std::string output() const { return readText(log); }
    bool says(const std::string& text) const
    {
        for (int i = 0; i < 600 && output().find(text) == std::string::npos; ++i)
            std::this_thread::sleep_for(50ms);
        return output().find(text) != std::string::npos;
    }

private:
    const TempDirectory directory;
    const std::string log = directory / "log";
    PROCESS_INFORMATION process = {};
};

TEST_F(ToolTest, TwoWritersLoseNoUpdate)
{
    const auto line = [](const char* name, int i) { return "zeb-slapdSetenv: " + (name + std::to_string(i)) + '='; };
    const auto write = [&](const char* name) {
        for (int i = 0; i < 5; ++i) {
            const Tool tool(file,
                            R"(set --add "cn=Front End,cn=Configuration" ")" + line(name, i).replace(15, 2, "=") + '"');
            EXPECT_EQ(tool.status(), 0U) << tool.output();
        }
    };
    std::thread other(write, "B");
    write("A");
    other.join();
    for (const char* const name : {"A", "B"})
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(holds(line(name, i))) << name << i;
    EXPECT_EQ(names(), fileAndBackup);
}

TEST_F(ToolTest, AKillLeavesTheOldOrTheNewFileAndNoLock)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Tool(file, setPort + "1").status(), 0U);
    const auto whole = std::chrono::steady_clock::now() - begin;
    for (int i = 2; i < 14; ++i) {
        const std::string old = readText(file);
        const Tool tool(file, setPort + std::to_string(i));
        std::this_thread::sleep_for(whole * i / 14);
        tool.kill();
        const DWORD status = tool.status();
        const bool isNew = holds("zeb-slapdPort: " + std::to_string(i));
        EXPECT_TRUE(isNew || readText(file) == old) << readText(file);
        EXPECT_TRUE(isNew || status == 99) << tool.output();
        EXPECT_FALSE(std::filesystem::exists(file + ".lock"));
    }
    EXPECT_EQ(Tool(file, setPort + "99").status(), 0U);
    EXPECT_EQ(names(), fileAndBackup) << "the next run clears away what a killed one has left";
}

// A reader does not keep the tool from reading, but from putting another file in its place.
TEST_F(ToolTest, AFileInUseIsWaitedForButNotForEver)
{
    std::thread reader([&] {
        const OpenFile open(file);
        std::this_thread::sleep_for(1500ms);
    });
    const Tool patient(file, setPort + "1");
    EXPECT_EQ(patient.status(), 0U) << patient.output();
    reader.join();
    const std::string before = readText(file);
    const OpenFile open(file);
    const Tool refused(file, setPort + "2");
    EXPECT_EQ(refused.status(), 50U);
    EXPECT_NE(refused.output().find("another program has it open (50)"), std::string::npos) << refused.output();
    EXPECT_EQ(readText(file), before);
    EXPECT_EQ(names(), fileAndBackup);
}

TEST_F(ToolTest, ProtectionStays)
{
    int port = 0;
    for (const std::string& list : {access(file), std::string("D:P(A;;FA;;;BA)(A;;FA;;;OW)")}) {
        PSECURITY_DESCRIPTOR wanted = nullptr;
        ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorA(list.c_str(), SDDL_REVISION_1, &wanted, nullptr),
                  FALSE);
        ASSERT_NE(SetFileSecurityA(file.c_str(), accessList, wanted), FALSE);
        const std::string before = access(file);
        EXPECT_EQ(Tool(file, setPort + std::to_string(++port)).status(), 0U);
        EXPECT_EQ(access(file), before);
        EXPECT_EQ(access(file + ".bak"), before);
    }
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY);
    const Tool refused(file, setPort + "2");
    EXPECT_EQ(refused.status(), 53U) << refused.output();
    EXPECT_EQ(names(), fileAndBackup);
    SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ToolTest, AnEditorIsAProgramWithArguments)
{
    const TempDirectory programs;
    const std::string left = directory / "left";
    writeText(programs / "e d.cmd", "@echo zeb-slapdSetenv: %1=>>%2\r\n@echo %2>" + left);
    SetEnvironmentVariableA("EDITOR", ('"' + (programs / "e d.cmd") + "\" EDITED").c_str());
    const Tool tool(file, R"(edit "cn=Front End,cn=Configuration")", CREATE_NO_WINDOW);
    EXPECT_EQ(tool.status(), 0U) << tool.output();
    EXPECT_TRUE(holds("zeb-slapdSetenv: EDITED=")) << readText(file);
    const std::filesystem::path copy = readText(left).substr(0, readText(left).find_first_of("\r\n"));
    EXPECT_NE(copy.string(), "");
    EXPECT_FALSE(exists(copy.parent_path())) << copy;
}

TEST_F(ToolTest, APasswordComesFromAPipeAndTextInAnyScript)
{
    const std::string name = R"(\\.\pipe\zebcfg-)" + std::to_string(GetCurrentProcessId());
    const HANDLE pipe = CreateNamedPipeA(name.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 64, 64, 0, nullptr);
    const Tool tool(file, "-D cn=admin,o=Example -y " + name + u8" set cn=Configuration description=Zürich€東");
    ConnectNamedPipe(pipe, nullptr);
    DWORD count = 0;
    WriteFile(pipe, "secret\r\n", 8, &count, nullptr);
    CloseHandle(pipe);
    EXPECT_EQ(tool.status(), 0U) << tool.output();
    EXPECT_TRUE(holds(u8"description: Zürich€東")) << readText(file);
}

TEST_F(ToolTest, ABreakDuringAWaitLeavesNoFile)
{
    const std::string holder = "process 1 of root since 2026-01-31 12:00:00";
    writeText(file + ".lock", "zebcfg lock\n" + holder + '\n');
    const OpenFile lock(file + ".lock", GENERIC_WRITE);
    const Tool tool(file, "--wait 60 " + setPort + "1");
    EXPECT_TRUE(tool.says("waiting for " + holder)) << tool.output();
    tool.interrupt(CTRL_BREAK_EVENT);
    EXPECT_EQ(tool.status(), static_cast<DWORD>(STATUS_CONTROL_C_EXIT)) << tool.output();
    EXPECT_EQ(names(), (std::vector<std::string>{"zebslapd.conf", "zebslapd.conf.lock"}));
}

}  // namespace
