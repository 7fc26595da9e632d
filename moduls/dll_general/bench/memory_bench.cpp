// The allocator beside the C library's and mimalloc: small blocks, many pages, tracked blocks, an alternating pool.
#include "allocators.h"

#include <algorithm>

namespace {

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

using Churn = void (*)(benchmark::State &, const Allocator &, unsigned, unsigned, std::size_t);

/// `count` live blocks of `low` to `high` bytes; about `pairs` releases and allocations in all.
void addChurn(const std::string &name, const Allocator &allocator, const char *rule, const char *limit, Churn churn,
              unsigned low, unsigned high, std::size_t count, std::size_t pairs)
{
    const std::size_t perIteration = churn == replaceNewest ? count - count / 2 : batch;
    benchmark::RegisterBenchmark(rowOf(name, count, allocator).c_str(), [=](benchmark::State &state) {
        churn(state, allocator, low, high, count);
        labelOurs(state, allocator, rule, limit);
    })->Iterations(static_cast<benchmark::IterationCount>(std::max<std::size_t>(pairs / perIteration, 1)));
}

int registerAll()
{
    const std::vector<Allocator> allocators = allAllocators();
    std::vector<Allocator> small = allocators;
    small.push_back({"limit", classAllocate, classRelease});
    std::vector<Allocator> large = allocators;
    large.push_back({"limit", heapAllocate, heapRelease});
    const char *const smallRule = "size classes, guards at both ends, the first one read at the release";
    const char *const smallLimit = "mimalloc with these classes and guards";
    for (const Allocator &allocator : small) {
        for (const std::size_t count : {1000u, 100000u, 1000000u}) {
            addChurn("Small/random", allocator, smallRule, smallLimit, replaceAny, 1, 992, count, 2000000);
            addChurn("Small/fifo", allocator, smallRule, smallLimit, replaceOldest, 1, 992, count, 2000000);
            addChurn("Small/lifo", allocator, smallRule, smallLimit, replaceNewest, 1, 992, count, 2000000);
        }
        for (const std::size_t count : {1000u, 1000000u}) // 10 and 10,000 pages
            addChurn("Pages/random", allocator, smallRule, smallLimit, replaceAny, 992, 992, count, 2000000);
    }
    for (const Allocator &allocator : large)
        for (const std::size_t count : {1000u, 10000u, 60000u})
            addChurn("Tracked/random", allocator, "the C library's heap below, guards at both ends, a record",
                     "malloc with these guards", replaceAny, 1024, 65536, count, 200000);
    std::vector<Allocator> alternating = allocators;
    alternating.push_back({"limit", pageAllocate, std::free});
    for (const Allocator &allocator : alternating)
        benchmark::RegisterBenchmark(rowOf("Alternating", 1, allocator).c_str(), [=](benchmark::State &state) {
            alternate(state, allocator);
            labelOurs(state, allocator, "an empty page is released at once",
                      "malloc and free of the page, its free list written");
        });
    return 0;
}

const int registered = registerAll();

} // namespace
