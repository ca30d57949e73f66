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

// As the C runtime of the program takes it apart: backslashes count only before a quotation mark.
std::string quoted(const std::string& word)
{
    if (!word.empty() && word.find_first_of(std::string(blanks) + '"') == std::string::npos)
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

// A handle of the process; null when it cannot be started. Scripts have to be named with their ending.
HANDLE start(const std::vector<std::string>& words)
{
    std::string rest;
    for (auto word = words.begin() + 1; word != words.end(); ++word)
        rest += ' ' + quoted(*word);
    for (const char* const ending : {"", ".cmd", ".bat"}) {
        std::wstring line;
        if (!widen(codePage(), quoted(words.front() + ending) + rest, line))
            return nullptr;
        STARTUPINFOW setup = {};
        setup.cb = sizeof setup;
        PROCESS_INFORMATION process = {};
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_DEFAULT_ERROR_MODE, nullptr, nullptr,
                           &setup, &process) != FALSE) {
            CloseHandle(process.hThread);
            return process.hProcess;
        }
    }
    errno = ENOENT;
    return nullptr;
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
