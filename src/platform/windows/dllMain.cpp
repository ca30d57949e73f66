// What happens when the library is loaded.
#include <windows.h>

// The call fails, and nothing is lost, where the module has storage of its own for each thread.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(module);
    return TRUE;
}
