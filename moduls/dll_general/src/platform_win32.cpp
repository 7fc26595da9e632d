// The operating system behind the library: Windows.
#include "platform.h"

#include "systemreport.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// Heap: movable blocks of the global heap, locked for as long as they live.

void *kar::platform::heapAcquire(std::size_t size)
{
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!handle)
        return nullptr;
    void *const block = GlobalLock(handle);
    if (!block)
        GlobalFree(handle);
    return block;
}

void kar::platform::heapRelease(void *block)
{
    const HGLOBAL handle = GlobalHandle(block);
    GlobalUnlock(handle);
    GlobalFree(handle);
}

// System information.

bool kar::platform::systemReport(SystemReport &report)
{
    OSVERSIONINFOA version = {};
    static_assert(sizeof version == 148, "the size tells the system which form of the structure is meant");
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExA(&version))
        return false;
    report = {version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber};
    return true;
}

bool kar::platform::computerName(char *name)
{
    DWORD size = nodeNameSize;
    return GetComputerNameA(name, &size) != 0;
}

// Entry of the library: threads come and go without a notice.

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID);

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(instance);
    return TRUE;
}
