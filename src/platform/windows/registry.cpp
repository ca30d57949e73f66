#include "platform.h"

#include "codePage.h"
#include "fileName.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <type_traits>

#include <windows.h>

namespace {

// The value up to its first NUL, or to its end if it has none: a text in the code page of file names, or any bytes as
// they are. False when it cannot be had.
bool readValue(HKEY key, const std::wstring& name, std::string& value)
{
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExW(key, name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
        return false;
    std::wstring units(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(units.size() * sizeof(wchar_t));
    auto* const bytes = reinterpret_cast<BYTE*>(units.data());
    if (RegQueryValueExW(key, name.c_str(), nullptr, &type, bytes, &size) != ERROR_SUCCESS)
        return false;
    if (type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ)
        return narrow(namePage(), units.substr(0, size / sizeof(wchar_t)).c_str(), value);
    value.assign(bytes, std::find(bytes, bytes + size, BYTE{0}));
    return true;
}

}  // namespace

bool readRegistry(const char* key, const char* value, char* buffer, std::size_t size) noexcept
try {
    HKEY opened = nullptr;
    std::wstring name;
    if (!widen(namePage(), key, name) ||
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, name.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return false;
    const std::unique_ptr<std::remove_pointer_t<HKEY>, decltype(&RegCloseKey)> owner(opened, &RegCloseKey);
    std::string text;
    if (!widen(namePage(), value, name) || !readValue(opened, name, text) || text.size() >= size)
        return false;
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
    return true;
} catch (const std::exception&) {
    return false;  // for want of memory
}
