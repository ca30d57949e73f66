#include "fileName.h"

#include "codePage.h"
#include "platform.h"

#include <windows.h>

namespace {

constexpr std::size_t longestDirectory = 247;  // in units: a longer name needs another form

// The full form of a name; empty on failure, with the reason in GetLastError.
std::wstring fullName(const std::wstring& name)
{
    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool fits = length < full.size();
        full.resize(length);
        if (fits)
            return full;
    }
}

}  // namespace

unsigned int namePage() noexcept
{
    return codePage() == CP_UTF8 ? CP_UTF8 : GetACP();
}

std::wstring wideName(const std::string& name)
{
    std::wstring wide;
    if (!widen(namePage(), name.c_str(), wide))
        return {};
    const bool isPlain = wide.size() <= longestDirectory || wide.compare(0, 4, LR"(\\?\)") == 0;
    if (isPlain)
        return wide;
    wide = fullName(wide);
    return wide.compare(0, 2, LR"(\\)") == 0 ? LR"(\\?\UNC)" + wide.substr(1) : LR"(\\?\)" + wide;
}

int fullPathName(const char* name, char* buffer, std::size_t size)
{
    std::wstring wide;
    std::string full;
    if (!widen(namePage(), name, wide))
        return ERROR_NO_UNICODE_TRANSLATION;
    wide = fullName(wide);
    if (wide.empty())
        return static_cast<int>(GetLastError());
    if (!narrow(namePage(), wide, full))
        return ERROR_NO_UNICODE_TRANSLATION;
    if (full.size() >= size)
        return nameTooLong;
    full.copy(buffer, full.size());
    buffer[full.size()] = '\0';
    return 0;
}
