// The operating system behind the library: POSIX.
#include "platform.h"

#include "systemreport.h"

#include <cstdlib>
#include <cstring>

#include <sys/utsname.h>

// Heap: that of the C library.

void *kar::platform::heapAcquire(std::size_t size) { return std::malloc(size); }
void kar::platform::heapRelease(void *block) { std::free(block); }

// System information: what `uname` says of the kernel.

bool kar::platform::systemReport(SystemReport &report)
{
    utsname system = {};
    return uname(&system) == 0 && readRelease(system.release, report);
}

bool kar::platform::computerName(char *name)
{
    utsname system = {};
    if (uname(&system) != 0)
        return false;
    const std::size_t length = std::strlen(system.nodename);
    if (length >= nodeNameSize)
        return false;
    std::memcpy(name, system.nodename, length + 1);
    return true;
}
