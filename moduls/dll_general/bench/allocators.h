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
inline Allocator openMimalloc()
{
    void *const library = dlopen("libmimalloc.so.2", RTLD_NOW | RTLD_LOCAL);
    void *const allocate = library ? dlsym(library, "mi_malloc") : nullptr;
    void *const release = library ? dlsym(library, "mi_free") : nullptr;
    if (!allocate || !release) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    return {"mimalloc", reinterpret_cast<void *(*)(std::size_t)>(allocate),
            reinterpret_cast<void (*)(void *)>(release)};
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
    return {{"ours", oursAllocate, KarDellocMemory}, {"malloc", std::malloc, std::free}, openMimalloc()};
}

/// A row's name; the label of ours names the stated rule that bounds it.
inline std::string rowOf(const std::string &name, std::size_t count, const Allocator &allocator)
{
    return name + "/" + std::to_string(count) + "/" + allocator.name;
}

inline void labelOurs(benchmark::State &state, const Allocator &allocator, const char *rule)
{
    if (rule && std::strcmp(allocator.name, "ours") == 0)
        state.SetLabel(rule);
}

#endif
