// What happens when the library is loaded.
#include <windows.h>

// The call fails where the module has thread-local storage, and nothing depends on it.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(module);
    return TRUE;
}
