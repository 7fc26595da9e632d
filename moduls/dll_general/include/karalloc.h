/// \file
/// The allocation pair behind every object of the library, and `new` and `delete` over it.
#ifndef KAR_ALLOC_H
#define KAR_ALLOC_H

#include "karexport.h"

#include <cstddef>

/// \name Allocation
/// \{

/// A guarded block of `size` bytes for the caller, null on failure or for size 0.
KAR_API void *KarAllocMemory(unsigned size);
/// `p` if it isn't null, otherwise `KarAllocMemory(size)`.
KAR_API void *KarAllocMemory(unsigned size, void *p);
/// Releases a block of `KarAllocMemory`; null is ignored.
KAR_API void KarDellocMemory(void *p);

/// \}

namespace kar {

/// Largest size whose block, with its two guards, has a length in 32 bits.
constexpr std::size_t largestObject = 0xfffffff7u;

/// A block for an object of `size` bytes; null on failure and for a size above `largestObject`.
inline void *allocObject(std::size_t size) noexcept
{
    return size > largestObject ? nullptr : KarAllocMemory(static_cast<unsigned>(size));
}

/// An array of `count` elements; null on failure, which a product of sizes beyond 32 bits counts as.
inline void *allocArray(unsigned count, std::size_t size) noexcept
{
    return size != 0 && count > largestObject / size ? nullptr : KarAllocMemory(static_cast<unsigned>(count * size));
}

} // namespace kar

/// Declares `new`, placement `new` and `delete` of a class over the library's allocator, so that a host's `new` of a
/// derived class and the library's own `delete` agree. `new` gives null on failure and throws nothing; the placement
/// form with a null address allocates.
#define KAR_LIBRARY_NEW                                                                                                \
    static void *operator new(std::size_t size) noexcept { return kar::allocObject(size); }                            \
    static void *operator new(std::size_t size, void *place) noexcept                                                  \
    {                                                                                                                  \
        return place ? place : kar::allocObject(size);                                                                 \
    }                                                                                                                  \
    static void operator delete(void *object) noexcept { KarDellocMemory(object); }                                    \
    static void operator delete(void *, void *) noexcept {}

#endif
