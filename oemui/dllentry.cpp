#include "oemui/intrface.h"

// Only records the instance handle; nothing else happens on any reason.
extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID)
{
    if (dwReason == DLL_PROCESS_ATTACH) ModuleInstance = hInstance;
    return TRUE;
}
