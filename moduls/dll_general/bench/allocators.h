// The allocators that stand beside each other in the benchmarks of memory.
#ifndef KAR_BENCH_ALLOCATORS_H
#define KAR_BENCH_ALLOCATORS_H

#include "karmemgb.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

struct Allocator {
    const char *name;
    void *(*allocate)(std::size_t);
    void (*release)(void *);
};

inline void *oursAllocate(std::size_t size) { return KarAllocMemory(static_cast<unsigned>(size)); }

// mimalloc replaces malloc where it is linked, so it is opened apart, with names of its own.
struct Mimalloc {
    void *(*allocate)(std::size_t);
    void (*release)(void *);
};

inline const Mimalloc &mimalloc()
{
    static const Mimalloc functions = [] {
        void *const library = dlopen("libmimalloc.so.2", RTLD_NOW | RTLD_LOCAL);
        void *const allocate = library ? dlsym(library, "mi_malloc") : nullptr;
        void *const release = library ? dlsym(library, "mi_free") : nullptr;
        if (!allocate || !release) {
            std::fprintf(stderr, "%s\n", dlerror());
            std::exit(1);
        }
        return Mimalloc{reinterpret_cast<void *(*)(std::size_t)>(allocate),
                        reinterpret_cast<void (*)(void *)>(release)};
    }();
    return functions;
}

/// The limits: the heap below, and nothing done but what a caller of ours sees in each block, a guard at both ends that
/// is read at the release.
constexpr unsigned lead = 16; // the first guard ends where an aligned block begins

inline void *guarded(void *block, unsigned total)
{
    char *const start = static_cast<char *>(block) + lead;
    std::memcpy(start - 4, &total, sizeof total);
    std::memcpy(start - 4 + total - 4, &total, sizeof total);
    return start;
}

inline void *checkedStart(void *block, bool both)
{
    char *const start = static_cast<char *>(block);
    unsigned total;
    std::memcpy(&total, start - 4, sizeof total);
    unsigned last = total;
    if (both)
        std::memcpy(&last, start - 4 + total - 4, sizeof last);
    if (total < 8 || last != total)
        std::abort();
    return start - lead;
}

/// mimalloc with our five size classes.
inline void *classAllocate(std::size_t size)
{
    const unsigned needed = static_cast<unsigned>(size) + 8;
    const unsigned total = needed <= 10 ? 10 : needed <= 100 ? 100 : needed <= 200 ? 200 : needed <= 500 ? 500 : 1000;
    return guarded(mimalloc().allocate((lead - 4 + total + 15) / 16 * 16), total);
}
inline void classRelease(void *block) { mimalloc().release(checkedStart(block, false)); }

/// The C library's heap.
inline void *heapAllocate(std::size_t size)
{
    const unsigned total = static_cast<unsigned>(size) + 8;
    return guarded(std::malloc(lead - 4 + total), total);
}
inline void heapRelease(void *block) { std::free(checkedStart(block, true)); }

/// A page for one block: the C library gives 200 elements of 500 bytes, whose free list is written.
inline void *pageAllocate(std::size_t)
{
    constexpr std::size_t stride = 512, count = 200;
    char *const page = static_cast<char *>(std::malloc(stride * count));
    for (std::size_t i = 0; i < count; ++i) {
        char *const links[2] = {i > 0 ? page + (i - 1) * stride : nullptr,
                                i + 1 < count ? page + (i + 1) * stride : nullptr};
        std::memcpy(page + i * stride, links, sizeof links);
    }
    return page;
}

class Random { // xorshift64*
public:
    std::size_t below(std::size_t n) { return static_cast<std::size_t>((next() >> 11) % n); }

private:
    std::uint64_t next()
    {
        state ^= state >> 12;
        state ^= state << 25;
        state ^= state >> 27;
        return state * 0x2545f4914f6cdd1du;
    }
    std::uint64_t state = 0x9e3779b97f4a7c15u;
};

/// Sizes drawn beforehand, so that drawing isn't measured. A power of two of them.
inline std::vector<unsigned> sizesBetween(unsigned low, unsigned high)
{
    Random random;
    std::vector<unsigned> sizes(1u << 16);
    for (unsigned &size : sizes)
        size = low + static_cast<unsigned>(random.below(high - low + 1));
    return sizes;
}

/// Ours and its peers, ours first.
inline std::vector<Allocator> allAllocators()
{
    return {{"ours", oursAllocate, KarDellocMemory},
            {"malloc", std::malloc, std::free},
            {"mimalloc", mimalloc().allocate, mimalloc().release}};
}

/// A row's name; the label of ours names the stated rule that bounds it, that of the limit what it is.
inline std::string rowOf(const std::string &name, std::size_t count, const Allocator &allocator)
{
    return name + "/" + std::to_string(count) + "/" + allocator.name;
}

inline void labelOurs(benchmark::State &state, const Allocator &allocator, const char *rule,
                      const char *limit = nullptr)
{
    if (rule && std::strcmp(allocator.name, "ours") == 0)
        state.SetLabel(rule);
    if (limit && std::strcmp(allocator.name, "limit") == 0)
        state.SetLabel(limit);
}

#endif
