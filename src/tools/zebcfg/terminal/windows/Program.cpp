#include "terminal/Program.h"

#include "base/Failure.h"
#include "terminal/windows/Console.h"

#include <cerrno>
#include <memory>

#include <codePage.h>
#include <fileName.h>

const char* const usualEditor = "notepad";

namespace {

constexpr char blanks[] = " \t\n";

// As the C runtime of the program takes it apart: backslashes count only before a quotation mark. The shell that runs a
// script gives other characters a meaning, too, unless they are quoted.
std::string quoted(const std::string& word)
{
    if (!word.empty() && word.find_first_of(std::string(blanks) + "\"&|<>^()") == std::string::npos)
        return word;
    std::string made = "\"";
    std::size_t backslashes = 0;
    for (const char character : word) {
        if (character == '"')
            made.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        made += character;
    }
    return made.append(backslashes, '\\') + '"';
}

// Where programs are looked for: not in the current directory, where anybody may have put one.
std::wstring searchPath()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    const wchar_t* const others = ::_wgetenv(L"PATH");
    return others != nullptr ? path + L';' + others : path;
}

// The full name of a program, whose ending may be left out; empty when there is none.
std::wstring foundProgram(const std::wstring& name)
{
    const bool isPlain = name.find_first_of(L"\\/:") == std::wstring::npos;
    const std::wstring path = isPlain ? searchPath() : L".";
    for (const wchar_t* const ending : {L".exe", L".cmd", L".bat"}) {
        std::wstring found(32768, L'\0');
        found.resize(
            SearchPathW(path.c_str(), name.c_str(), ending, static_cast<DWORD>(found.size()), found.data(), nullptr));
        if (!found.empty())
            return found;
    }
    return {};
}

// A handle of the process; null when it cannot be started.
HANDLE start(const std::vector<std::string>& words)
{
    std::string all;
    for (const std::string& word : words)
        all += quoted(word) + ' ';
    std::wstring name;
    std::wstring line;
    const bool isKnown = widen(codePage(), words.front(), name) && widen(codePage(), all, line);
    const std::wstring program = isKnown ? foundProgram(name) : std::wstring();
    STARTUPINFOW setup = {};
    setup.cb = sizeof setup;
    PROCESS_INFORMATION process = {};
    if (program.empty() || CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                          CREATE_DEFAULT_ERROR_MODE, nullptr, nullptr, &setup, &process) == FALSE) {
        errno = ENOENT;
        return nullptr;
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

}  // namespace

// Quotation marks hold a word with blanks together. The name of a program needs none.
std::vector<std::string> wordsOf(const std::string& command)
{
    if (GetFileAttributesW(wideName(command).c_str()) != INVALID_FILE_ATTRIBUTES)
        return {command};
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isOpen = false;  // the last word
    for (const char character : command) {
        const bool isBlank = !isQuoted && std::string(blanks).find(character) != std::string::npos;
        if (character == '"')
            isQuoted = !isQuoted;
        if (!isBlank && !isOpen)
            words.emplace_back();
        if (!isBlank && character != '"')
            words.back() += character;
        isOpen = !isBlank;
    }
    return words;
}

std::string plainName(const std::string& program)
{
    const std::string name = program.substr(program.find_last_of("\\/:") + 1);
    return name.substr(0, name.rfind('.'));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): POSIX changes its words
bool runProgram(std::vector<std::string> words, const std::string& message)
{
    const IgnoredKeys ignored;
    const std::unique_ptr<void, decltype(&CloseHandle)> process(start(words), &CloseHandle);
    if (process == nullptr)
        throw systemFailure(0, message);
    DWORD status = 1;
    WaitForSingleObject(process.get(), INFINITE);
    return GetExitCodeProcess(process.get(), &status) != FALSE && status == 0;
}
