// The operating system behind the library: Windows.
#include "platform.h"

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
