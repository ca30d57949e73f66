#include "platform.h"

#include "lastError.h"

#include <cstdlib>
#include <cstring>

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

const struct {
    DWORD number;
    const char* text;
} messages[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {ERROR_ACCESS_DENIED, "Access is denied."},
    {ERROR_INVALID_HANDLE, "The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory resources are available to process this command."},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning."},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long."},
    {ERROR_MORE_DATA, "More data is available."},
};

}  // namespace

void setLastError(DWORD number) noexcept
{
    lastError = number;
}

DWORD GetLastError() noexcept
{
    return lastError;
}

DWORD FormatMessageA(DWORD /*flags*/, const void* /*source*/, DWORD number, DWORD /*language*/, char* buffer,
                     DWORD /*size*/, void* /*arguments*/)
{
    for (const auto& message : messages) {
        if (message.number != number)
            continue;
        char* const text = _strdup(message.text);
        std::memcpy(buffer, &text, sizeof text);
        return text != nullptr ? static_cast<DWORD>(std::strlen(text)) : 0;
    }
    return 0;
}

void* LocalFree(void* memory) noexcept
{
    std::free(memory);
    return nullptr;
}
