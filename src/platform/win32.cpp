// What the layer adds on Windows, where the rest of it is the system's own.
#include "platform.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <malloc.h>

bool readFile(const std::string& name, std::string& content)
{
    FileStatus status = {};
    if (_stat(name.c_str(), &status) != 0 || (status.st_mode & _S_IFREG) == 0)
        return false;
    std::ifstream file(name, std::ios::binary);
    if (!file)
        return false;
    content.assign(std::istreambuf_iterator<char>(file), {});
    return !file.bad();
}

bool writeFile(const std::string& name, const std::string& text, const FileStatus& /*before*/)
{
    std::ofstream file(name);
    if (!file)
        return false;
    file << text;
    return true;
}

void removeFile(const std::string& name) noexcept
{
    (void)std::remove(name.c_str());
}

bool isSameFile(const std::string& name, const std::string& other)
{
    char fullName[MAX_PATH];
    char fullOther[MAX_PATH];
    const DWORD nameLength = GetFullPathNameA(name.c_str(), MAX_PATH, fullName, nullptr);
    const DWORD otherLength = GetFullPathNameA(other.c_str(), MAX_PATH, fullOther, nullptr);
    return nameLength != 0 && nameLength < MAX_PATH && otherLength != 0 && otherLength < MAX_PATH &&
           _stricmp(fullName, fullOther) == 0;
}

void* allocateRegion(std::size_t size, bool /*isLarge*/) noexcept
{
    return _aligned_malloc(size, size);
}

void releaseRegion(void* region, std::size_t /*size*/) noexcept
{
    _aligned_free(region);
}

void offerRegion(void* region, std::size_t size) noexcept
{
    (void)VirtualAlloc(region, size, MEM_RESET, PAGE_READWRITE);
}

void wipe(void* memory, std::size_t size) noexcept
{
    SecureZeroMemory(memory, size);
}

void discard(void* memory, std::size_t size) noexcept
{
    wipe(memory, size);
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(module);
    return TRUE;
}
