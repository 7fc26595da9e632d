// The allocator beside the C library's and mimalloc: small blocks, tracked blocks, memory per live byte.
#include "karmemgb.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Allocator {
    const char *name;
    void *(*allocate)(std::size_t);
    void (*release)(void *);
};

void *oursAllocate(std::size_t size) { return KarAllocMemory(static_cast<unsigned>(size)); }

// mimalloc replaces malloc where it is linked, so it is opened apart, with names of its own.
Allocator openMimalloc()
{
    void *const library = dlopen("libmimalloc.so.2", RTLD_NOW | RTLD_LOCAL);
    void *const allocate = library ? dlsym(library, "mi_malloc") : nullptr;
    void *const release = library ? dlsym(library, "mi_free") : nullptr;
    if (!allocate || !release) {
        std::fprintf(stderr, "memory_bench: %s\n", dlerror());
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
std::vector<unsigned> sizesBetween(unsigned low, unsigned high)
{
    Random random;
    std::vector<unsigned> sizes(1u << 16);
    for (unsigned &size : sizes)
        size = low + static_cast<unsigned>(random.below(high - low + 1));
    return sizes;
}

/// Live blocks; a request takes the next size and touches the block's first byte, as its owner would.
class Blocks {
public:
    Blocks(const Allocator &used, unsigned low, unsigned high, std::size_t count)
        : allocator(used), sizes(sizesBetween(low, high)), live(count)
    {
        for (char *&block : live)
            block = request();
    }
    ~Blocks()
    {
        for (char *block : live)
            allocator.release(block);
    }
    Blocks(const Blocks &) = delete;
    Blocks &operator=(const Blocks &) = delete;

    std::size_t count() const { return live.size(); }
    void release(std::size_t index) { allocator.release(live[index]); }
    void allocate(std::size_t index) { live[index] = request(); }

private:
    char *request()
    {
        const unsigned size = sizes[nextSize++ & 0xffff];
        char *const block = static_cast<char *>(allocator.allocate(size));
        if (!block) {
            std::fprintf(stderr, "memory_bench: %s gives no block of %u bytes\n", allocator.name, size);
            std::exit(1);
        }
        *block = 1;
        return block;
    }

    const Allocator &allocator;
    const std::vector<unsigned> sizes;
    std::vector<char *> live;
    std::size_t nextSize = 0;
};

constexpr std::size_t batch = 1000; // pairs of release and allocation in one timed iteration

/// A block chosen by chance is replaced.
void replaceAny(benchmark::State &state, const Allocator &allocator, unsigned low, unsigned high, std::size_t count)
{
    Blocks blocks(allocator, low, high, count);
    Random random;
    std::vector<std::uint32_t> chosen(1u << 20);
    for (std::uint32_t &index : chosen)
        index = static_cast<std::uint32_t>(random.below(count));
    std::size_t next = 0;
    for (auto _ : state)
        for (std::size_t i = 0; i < batch; ++i) {
            const std::size_t index = chosen[next++ & 0xfffff];
            blocks.release(index);
            blocks.allocate(index);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(batch));
}

/// The oldest block is replaced.
void replaceOldest(benchmark::State &state, const Allocator &allocator, unsigned low, unsigned high, std::size_t count)
{
    Blocks blocks(allocator, low, high, count);
    std::size_t oldest = 0;
    for (auto _ : state)
        for (std::size_t i = 0; i < batch; ++i) {
            blocks.release(oldest);
            blocks.allocate(oldest);
            oldest = oldest + 1 == count ? 0 : oldest + 1;
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(batch));
}

/// The newer half is released from the newest on, then allocated again.
void replaceNewest(benchmark::State &state, const Allocator &allocator, unsigned low, unsigned high, std::size_t count)
{
    Blocks blocks(allocator, low, high, count);
    for (auto _ : state) {
        for (std::size_t i = count; i > count / 2; --i)
            blocks.release(i - 1);
        for (std::size_t i = count / 2; i < count; ++i)
            blocks.allocate(i);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count - count / 2));
}

/// A pool that alternates between 0 and 1 element.
void alternate(benchmark::State &state, const Allocator &allocator)
{
    for (auto _ : state) {
        char *const block = static_cast<char *>(allocator.allocate(400));
        *block = 1;
        benchmark::DoNotOptimize(block);
        allocator.release(block);
    }
    state.SetItemsProcessed(state.iterations());
}

/// Resident bytes of this process.
double residentBytes()
{
    long total = 0;
    long resident = 0;
    if (std::FILE *const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &total, &resident) != 2)
            resident = 0;
        std::fclose(file);
    }
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Resident bytes for each byte that is asked for and written, with `count` live blocks, in a process of its own.
double memoryPerLiveByte(const Allocator &allocator, unsigned low, unsigned high, std::size_t count)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    const pid_t child = fork();
    if (child == 0) {
        double result = 0;
        const std::vector<unsigned> sizes = sizesBetween(low, high);
        const double before = residentBytes();
        double asked = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned size = sizes[i & 0xffff];
            if (void *const block = allocator.allocate(size)) {
                std::memset(block, 1, size);
                asked += size;
            }
        }
        result = (residentBytes() - before) / asked;
        const bool written = write(ends[1], &result, sizeof result) == sizeof result;
        _exit(written ? 0 : 1);
    }
    double result = 0;
    if (child < 0 || read(ends[0], &result, sizeof result) != sizeof result)
        result = 0;
    close(ends[0]);
    close(ends[1]);
    waitpid(child, nullptr, 0);
    return result;
}

using Churn = void (*)(benchmark::State &, const Allocator &, unsigned, unsigned, std::size_t);

/// `count` live blocks of `low` to `high` bytes; about `pairs` releases and allocations in all.
void addChurn(const std::string &name, const Allocator &allocator, const char *rule, Churn churn, unsigned low,
              unsigned high, std::size_t count, std::size_t pairs)
{
    const std::size_t perIteration = churn == replaceNewest ? count - count / 2 : batch;
    const std::string row = name + "/" + std::to_string(count) + "/" + allocator.name;
    benchmark::RegisterBenchmark(row.c_str(), [=](benchmark::State &state) {
        churn(state, allocator, low, high, count);
        if (rule && std::strcmp(allocator.name, "ours") == 0)
            state.SetLabel(rule);
    })->Iterations(static_cast<benchmark::IterationCount>(std::max<std::size_t>(pairs / perIteration, 1)));
}

void addMemory(const std::string &name, const Allocator &allocator, const char *rule, unsigned low, unsigned high,
               std::size_t count)
{
    // Measured now: a child process begins with the heap of its parent, which is small only here.
    const double measured = memoryPerLiveByte(allocator, low, high, count);
    const std::string row = name + "/" + std::to_string(count) + "/" + allocator.name;
    benchmark::RegisterBenchmark(row.c_str(), [=](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(state.iterations());
        state.counters["value"] = measured;
        if (rule && std::strcmp(allocator.name, "ours") == 0)
            state.SetLabel(rule);
    })->Iterations(1);
}

} // namespace

int main(int argc, char **argv)
{
    const Allocator allocators[] = {
        {"ours", oursAllocate, KarDellocMemory}, {"malloc", std::malloc, std::free}, openMimalloc()};
    const char *const classes = "size classes of 100 to 1000 bytes";
    for (const Allocator &allocator : allocators) {
        addMemory("MemoryPerByte/1to992", allocator, classes, 1, 992, 1000000);
        addMemory("MemoryPerByte/16to64", allocator, classes, 16, 64, 1000000);
    }
    for (const Allocator &allocator : allocators)
        for (const std::size_t count : {1000u, 100000u, 1000000u}) {
            addChurn("Small/random", allocator, nullptr, replaceAny, 1, 992, count, 2000000);
            addChurn("Small/fifo", allocator, nullptr, replaceOldest, 1, 992, count, 2000000);
            addChurn("Small/lifo", allocator, nullptr, replaceNewest, 1, 992, count, 2000000);
        }
    for (const Allocator &allocator : allocators)
        for (const std::size_t count : {1000u, 1000000u}) // 10 and 10,000 pages
            addChurn("Pages/random", allocator, nullptr, replaceAny, 992, 992, count, 2000000);
    for (const Allocator &allocator : allocators)
        for (const std::size_t count : {1000u, 10000u, 60000u})
            addChurn("Tracked/random", allocator, "guards at both ends", replaceAny, 1024, 65536, count, 200000);
    for (const Allocator &allocator : allocators)
        benchmark::RegisterBenchmark((std::string("Alternating/400/") + allocator.name).c_str(),
                                     [=](benchmark::State &state) {
                                         alternate(state, allocator);
                                         if (std::strcmp(allocator.name, "ours") == 0)
                                             state.SetLabel("an empty page is released at once");
                                     });

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
