#include "terminal/windows/Console.h"

#include "base/Wipe.h"

#include <algorithm>
#include <array>

#include <codePage.h>

namespace {

constexpr wchar_t endKey = L'\x1A';  // Ctrl-Z

// What the console had before; 0 without one.
UINT formerOutputPage = 0;
UINT formerInputPage = 0;

// Null for a free place.
struct ChangedMode {
    HANDLE handle;
    DWORD before;
};
std::array<ChangedMode, 3> changedModes;  // of standard output and error, and of the input

HANDLE openConsole(const wchar_t* name) noexcept
{
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                       0, nullptr);
}

// The console takes no text of any length at once.
bool writeWide(HANDLE console, std::wstring_view text) noexcept
{
    constexpr std::size_t most = 8192;  // units
    while (!text.empty()) {
        DWORD count = 0;
        if (WriteConsoleW(console, text.data(), static_cast<DWORD>(std::min(text.size(), most)), &count, nullptr) ==
                FALSE ||
            count == 0)
            return false;
        text.remove_prefix(count);
    }
    return true;
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
    return widen(codePage(), text, wide) && writeWide(out, wide);
}

bool Console::readLine(std::string& line) const
{
    std::wstring wide;
    wchar_t units[256] = {};
    DWORD count = 0;
    while (wide.empty() || wide.back() != L'\n') {
        const bool isRead = ReadConsoleW(in, units, 256, &count, nullptr) != FALSE && count != 0;
        if (!isRead || (wide.empty() && units[0] == endKey))
            return false;
        wide.append(units, count);
    }
    wide.resize(wide.find_last_not_of(L"\r\n") + 1);
    return narrow(codePage(), wide, line);
}

ConsoleBuffer::ConsoleBuffer(std::ostream& stream, HANDLE handle)
    : shown(stream), former(stream.rdbuf(this)), console(handle)
{}

ConsoleBuffer::~ConsoleBuffer()
{
    (void)ConsoleBuffer::sync();
    shown.rdbuf(former);
}

ConsoleBuffer::int_type ConsoleBuffer::overflow(int_type character)
{
    if (traits_type::eq_int_type(character, traits_type::eof()))
        return sync() == 0 ? traits_type::not_eof(character) : character;
    text += traits_type::to_char_type(character);
    return text.back() == '\n' && sync() != 0 ? traits_type::eof() : character;
}

// What the locale does not know is shown as question marks.
int ConsoleBuffer::sync()
{
    std::wstring wide;
    if (!widen(codePage(), text, wide)) {
        wide.assign(text.begin(), text.end());
        std::replace_if(
            wide.begin(), wide.end(), [](wchar_t unit) { return unit >= 0x80; }, L'?');
    }
    const bool isWritten = writeWide(console, wide);
    wipeMemory(text.data(), text.size());
    text.clear();
    return isWritten ? 0 : -1;
}

void usePage(UINT page) noexcept
{
    formerOutputPage = GetConsoleOutputCP();
    formerInputPage = GetConsoleCP();
    SetConsoleOutputCP(page);
    SetConsoleCP(page);
}

bool changeMode(HANDLE handle, DWORD mode) noexcept
{
    DWORD before = 0;
    if (GetConsoleMode(handle, &before) == FALSE || SetConsoleMode(handle, mode) == FALSE)
        return false;
    auto* const free =
        std::find_if(changedModes.begin(), changedModes.end(), [](const auto& change) { return !change.handle; });
    if (free != changedModes.end())
        *free = {handle, before};
    return true;
}

void restoreMode(HANDLE handle) noexcept
{
    for (ChangedMode& change : changedModes) {
        if (change.handle == nullptr || change.handle != handle)
            continue;
        SetConsoleMode(handle, change.before);
        change = {};
    }
}

void restoreConsole() noexcept
{
    for (const ChangedMode& change : changedModes)
        restoreMode(change.handle);
    if (formerOutputPage != 0)
        SetConsoleOutputCP(formerOutputPage);
    if (formerInputPage != 0)
        SetConsoleCP(formerInputPage);
}

IgnoredKeys::IgnoredKeys() noexcept
{
    SetConsoleCtrlHandler(ignoreKey, TRUE);
}

IgnoredKeys::~IgnoredKeys()
{
    SetConsoleCtrlHandler(ignoreKey, FALSE);
}
