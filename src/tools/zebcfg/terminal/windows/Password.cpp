#include "terminal/Password.h"

#include "base/Failure.h"
#include "base/Wipe.h"
#include "terminal/Signals.h"
#include "terminal/windows/Console.h"

#include <codePage.h>

namespace {

constexpr wchar_t interruptKey = L'\x03';
constexpr wchar_t endKey = L'\x1A';
constexpr wchar_t eraseKey = L'\b';

// Without echo, and each key as it is typed: the interrupt key ends the line, and not the process.
class SilentConsole : public Console {
public:
    SilentConsole()
    {
        if (!isOpen())
            throw Failure(0, "there is no terminal to ask for a password; use -y FILE");
        const BlockedSignals blocked;
        if (!changeMode(input(), 0))
            throw Failure(0, "cannot ask for a password without showing it; use -y FILE");
    }
    SilentConsole(const SilentConsole&) = delete;
    SilentConsole& operator=(const SilentConsole&) = delete;
    ~SilentConsole()
    {
        const BlockedSignals blocked;
        restoreMode(input());
        (void)write("\n");
    }
    // False at the end.
    bool readKey(wchar_t& key) const noexcept
    {
        DWORD count = 0;
        return ReadConsoleW(input(), &key, 1, &count, nullptr) != FALSE && count == 1;
    }
};

void eraseLast(std::wstring& text)
{
    if (!text.empty() && IS_LOW_SURROGATE(text.back()))
        text.pop_back();
    if (!text.empty())
        text.pop_back();
}

}  // namespace

std::string askPassword(const std::string& prompt)
{
    const SilentConsole console;
    if (!console.write(prompt))
        throw Failure(0, "cannot ask for a password");
    std::wstring typed;
    std::string password;
    for (wchar_t key = 0;;) {
        if (!console.readKey(key) || key == interruptKey || (key == endKey && typed.empty()))
            throw Failure(0, "no password was given");
        if (key == L'\r' || key == L'\n')
            break;
        if (key == eraseKey)
            eraseLast(typed);
        else
            typed += key;
    }
    const bool isKnown = narrow(codePage(), typed, password);
    wipeMemory(typed.data(), typed.size() * sizeof(wchar_t));
    if (!isKnown)
        throw Failure(0, "the password has characters that the locale lacks");
    return password;
}
