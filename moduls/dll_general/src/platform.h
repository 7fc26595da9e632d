// The seam to the operating system: everything that the library asks of it, one source per system.
#ifndef KAR_PLATFORM_H
#define KAR_PLATFORM_H

#include <cstddef>

namespace kar {
struct SystemReport;
}

namespace kar::platform {

/// \name Heap
/// \{

/// What every address of `heapAcquire` is a multiple of.
#if defined(_WIN32)
constexpr std::size_t heapAlignment = 2 * sizeof(void *);
#else
constexpr std::size_t heapAlignment = alignof(std::max_align_t);
#endif

/// A block of the system's heap.
/// Requires: `size` > 0.
/// Ensures: null, and nothing changed, if the heap is exhausted; otherwise `size` bytes or more, aligned to
/// `heapAlignment`, which overlap no other live block and belong to the caller until `heapRelease`.
void *heapAcquire(std::size_t size);

/// Gives a block back.
/// Requires: `block` came from `heapAcquire` and hasn't been given back since.
/// Ensures: the bytes belong to the system; no other block is touched.
void heapRelease(void *block);

/// \}

/// \name System information
/// \{

/// Asks for version, platform and build number.
/// Ensures: false, and nothing written, if the system doesn't answer.
bool systemReport(SystemReport &report);

/// Asks for the computer's name.
/// Requires: `name` has room for `nodeNameSize` characters.
/// Ensures: a terminated name and true; false if there is none or it has more than 15 characters, and `name` may hold
/// anything then.
bool computerName(char *name);

/// \}

} // namespace kar::platform

#endif
