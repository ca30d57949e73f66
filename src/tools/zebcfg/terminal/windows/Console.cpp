#include "Console.h"

#include "base/Wipe.h"

#include <codePage.h>

namespace {

HANDLE openConsole(const wchar_t* name) noexcept
{
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                       0, nullptr);
}

BOOL WINAPI ignoreKey(DWORD event)
{
    return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? TRUE : FALSE;
}

}  // namespace

Console::Console() noexcept : in(openConsole(L"CONIN$")), out(openConsole(L"CONOUT$")) {}

Console::~Console()
{
    for (const HANDLE handle : {in, out}) {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
}

bool Console::write(const std::string& text) const
{
    std::wstring wide;
    DWORD count = 0;
    return widen(codePage(), text, wide) &&
           WriteConsoleW(out, wide.data(), static_cast<DWORD>(wide.size()), &count, nullptr) != FALSE;
}

bool Console::readLine(std::string& line) const
{
    std::wstring wide;
    wchar_t units[256] = {};
    DWORD count = 0;
    while (wide.empty() || wide.back() != L'\n') {
        if (ReadConsoleW(in, units, 256, &count, nullptr) == FALSE || count == 0)
            return false;
        wide.append(units, count);
    }
    wide.resize(wide.find_last_not_of(L"\r\n") + 1);
    const bool isRead = narrow(codePage(), wide, line);
    wipeMemory(units, sizeof units);
    return isRead;
}

void Console::setEcho(bool isShown) const noexcept
{
    DWORD mode = 0;
    if (GetConsoleMode(in, &mode) == FALSE)
        return;
    mode |= ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT;
    SetConsoleMode(in, isShown ? mode | ENABLE_ECHO_INPUT : mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
}

IgnoredKeys::IgnoredKeys() noexcept
{
    SetConsoleCtrlHandler(ignoreKey, TRUE);
}

IgnoredKeys::~IgnoredKeys()
{
    SetConsoleCtrlHandler(ignoreKey, FALSE);
}
