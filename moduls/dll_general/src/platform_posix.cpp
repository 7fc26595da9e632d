// The operating system behind the library: POSIX.
#include "platform.h"

#include <cstdlib>

// Heap: that of the C library.

void *kar::platform::heapAcquire(std::size_t size) { return std::malloc(size); }
void kar::platform::heapRelease(void *block) { std::free(block); }
