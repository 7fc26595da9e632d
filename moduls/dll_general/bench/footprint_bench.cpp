// Memory used per live byte, beside the C library's allocator and mimalloc. A program of its own: a child process
// begins with the heap of its parent, which is small only here.
#include "allocators.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

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

void addMemory(const std::string &name, const Allocator &allocator, unsigned low, unsigned high, std::size_t count)
{
    benchmark::RegisterBenchmark(rowOf(name, count, allocator).c_str(), [=](benchmark::State &state) {
        for (auto _ : state)
            state.counters["value"] = memoryPerLiveByte(allocator, low, high, count);
        labelOurs(state, allocator, "the size classes");
    })->Iterations(1);
}

int registerAll()
{
    for (const Allocator &allocator : allAllocators()) {
        addMemory("MemoryPerByte/1to992", allocator, 1, 992, 1000000);
        addMemory("MemoryPerByte/16to64", allocator, 16, 64, 1000000);
    }
    return 0;
}

const int registered = registerAll();

} // namespace
