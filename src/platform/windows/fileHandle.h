// What the library and its tool ask of an open file.
#ifndef FILEHANDLE_H
#define FILEHANDLE_H

#include "system.h"

#include <cstdint>
#include <string>

#include <windows.h>

constexpr std::uint64_t joined(DWORD high, DWORD low) noexcept
{
    return std::uint64_t{high} << 32U | low;
}

// A time of the system in its units of 100 ns, counted from 1970, and back.
constexpr std::int64_t unitsOfSecond = 10'000'000;
std::int64_t unitsSince1970(const FILETIME& time) noexcept;
FILETIME fileTime(std::int64_t units) noexcept;

// The name by which a file has been opened, with all its links resolved; empty when it cannot be told.
std::wstring finalName(HANDLE file);

// The protection of a file with these attributes. Its descriptor is empty where the handle may not read it.
FileProtection protectionOf(HANDLE file, DWORD attributes);

// Makes a file that is protected so from its first moment; without a descriptor, as its directory has it. Another's
// file cannot be made: it becomes this user's, and the same have access. INVALID_HANDLE_VALUE, with the reason in
// GetLastError, where there is one already.
HANDLE createProtected(const std::wstring& name, DWORD access, DWORD share, const FileProtection& protection);

// The list of a descriptor that says who has access, as a text, and a descriptor with such a list alone; empty when it
// cannot be told.
std::wstring accessListOf(std::string descriptor);
std::string descriptorWith(const std::wstring& accessList);

#endif
