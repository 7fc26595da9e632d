// Tries an operation with each of its allocations failing: a table of operations, each with what is read after it.
#ifndef KAR_TEST_EVERY_ALLOCATION_H
#define KAR_TEST_EVERY_ALLOCATION_H

#include "failalloc.h"
#include "refusedheap.h"
#include "textprobe.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// The part of a scenario in which allocations fail.
class Span {
public:
    enum Way {
        asPlanned,    ///< as `refusedHeap` is set
        allFail,      ///< the count of heap blocks stands above its limit
        smallNthFails ///< the n-th small allocation and all after it
    };
    explicit Span(Way failing = asPlanned, unsigned nth = 0) : way(failing), n(nth) {}

    void begin()
    {
        if (way == allFail)
            all = std::make_unique<AllAllocationsFail>();
        if (way == smallNthFails)
            small = std::make_unique<NthAllocationFails>(n);
        refusedHeap.armed = true;
    }
    void end()
    {
        refusedHeap.armed = false;
        happened = refusedHeap.refused > 0 || (small && small->happened());
        all.reset();
        small.reset();
    }

    bool happened = false; ///< Whether an allocation has failed.

private:
    Way way;
    unsigned n;
    std::unique_ptr<AllAllocationsFail> all;
    std::unique_ptr<NthAllocationFails> small;
};

/// An operation and what a caller reads after it.
struct Operation {
    const char *name;
    /// Prepares, runs the operation between `begin` and `end` of the span, and gives what can be read then.
    std::string (*run)(Span &span);
    const char *normal;
    std::vector<const char *> oneFails; ///< By the allocation that fails: one entry for each that the operation makes.
    /// By the first of the allocations that fail, where that differs; the first entry is that of all failing.
    std::vector<const char *> restFails;
    enum Kind {
        usual,
        large,  ///< Blocks above 992 bytes and fixed pages, which come from the heap. Once a large block has lost its
                ///< record, it stays allocated when it is released.
        record, ///< A record, which never goes back if the pool of records had no room for it.
        direct  ///< Blocks of the system's heap, which no count of blocks limits.
    } kind = usual;

    std::string withAll() const { return oneFails.empty() ? normal : withRest(1); }
    std::string withRest(unsigned n) const { return (restFails.empty() ? oneFails : restFails)[n - 1]; }
};

inline bool takesFromHeap(const Operation &operation)
{
    return operation.kind == Operation::large || operation.kind == Operation::record;
}

inline std::string nameOf(const ::testing::TestParamInfo<Operation> &info) { return info.param.name; }
inline void PrintTo(const Operation &operation, std::ostream *out) { *out << operation.name; }

/// What is held from the allocator and the system when everything has been released. Pages that have no storage stand
/// in their pool until it is destroyed.
struct Holdings {
    long blocks = globalMemList->getCurAnzNew();
    long bytes = globalMemList->getCurSizeNew();
    long tracked = globalMemList->curr_used_memory();
    int small = 0;

    Holdings()
    {
        for (int number = 0; number < 11; ++number)
            small += AllocatorPeek::pool(*globalMemList, number).getAnzElem();
    }
    bool operator==(const Holdings &other) const
    {
        return blocks == other.blocks && bytes == other.bytes && tracked == other.tracked && small == other.small;
    }
};

inline void PrintTo(const Holdings &holdings, std::ostream *out)
{
    *out << holdings.blocks << " blocks of " << holdings.bytes << " bytes, " << holdings.tracked << " tracked, "
         << holdings.small << " small";
}

/// Blocks of each size class with a free place between them, so that an operation's blocks have neighbours on both
/// sides.
class Neighbours {
public:
    Neighbours()
    {
        for (const unsigned size : {2u, 92u, 192u, 492u, 992u})
            for (int i = 0; i < 9; ++i)
                blocks.push_back({KarAllocMemory(size), size, {}});
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            Block &block = blocks[i];
            if (i % 2 == 1) {
                KarDellocMemory(block.p);
                block.p = nullptr;
            } else {
                std::memset(block.p, 0xa5, block.size);
                block.bytes = bytesOf(block);
            }
        }
    }
    ~Neighbours()
    {
        for (const Block &block : blocks)
            KarDellocMemory(block.p);
    }
    Neighbours(const Neighbours &) = delete;
    Neighbours &operator=(const Neighbours &) = delete;

    bool untouched() const
    {
        for (const Block &block : blocks)
            if (block.p && bytesOf(block) != block.bytes)
                return false;
        return true;
    }

private:
    struct Block {
        void *p;
        unsigned size;
        std::string bytes;
    };
    static std::string bytesOf(const Block &block) // with both guards
    {
        return std::string(static_cast<const char *>(block.p) - 4, block.size + 8);
    }

    std::vector<Block> blocks;
};

class EveryAllocation : public ::testing::TestWithParam<Operation> {
protected:
    /// What the operation gives on the way, and what is left as it was.
    std::string tried(Span &span)
    {
        const Holdings before;
        refusedHeap.grantedCount = 0;
        const std::string outcome = GetParam().run(span);
        const bool valid = globalMemList->isValid();
        cleanUp(span.happened, before.small == 0);
        EXPECT_TRUE(valid);
        EXPECT_TRUE(globalMemList->isValid());
        EXPECT_EQ(Holdings(), before);
        return outcome;
    }

    std::string triedNormally()
    {
        refusedHeap.start(0, false, RefusedHeap::blocks);
        Span span;
        return tried(span);
    }

    // What stays as the headers tell: pages without storage and, after a record that couldn't be had, large blocks and
    // records from the general allocator.
    static void cleanUp(bool refused, bool nothingSmall)
    {
        const bool tracked = globalMemList->getMarkMemListGlobal() != 0;
        const bool losesBlocks = refused && GetParam().kind == Operation::large && tracked;
        const bool losesRecords = refused && (losesBlocks || GetParam().kind == Operation::record);
        if (losesBlocks)
            AllocatorPeek::dropRecords(*globalMemList);
        for (int number = 0; number < 11; ++number) {
            karPageMemory &pool = AllocatorPeek::pool(*globalMemList, number);
            if (pool.getAnzElem() == 0 || (losesRecords && nothingSmall && number == 7))
                pool.delete_all();
        }
        if (losesBlocks)
            releaseLost(1001, 0xffffffff);
        if (losesRecords && !tracked)
            releaseLost(sizeof(karMemory_Entry) + 8, sizeof(karMemory_Entry) + 8);
    }

    static void releaseLost(unsigned smallest, unsigned largest)
    {
        const Mark direct(0);
        for (unsigned i = 0; i < refusedHeap.grantedCount; ++i)
            for (unsigned offset = 0; offset < 32; ++offset) {
                char *const block = static_cast<char *>(refusedHeap.granted[i]) + offset;
                const unsigned size = __MemorySize(block, 0);
                if (size >= smallest && size <= largest)
                    KarDellocMemory(block + 4);
            }
    }
};

TEST_P(EveryAllocation, FailsAloneOrWithThoseAfterIt)
{
    const Operation &operation = GetParam();
    const Mark direct(0); // an allocation is one request
    EXPECT_EQ(triedNormally(), operation.normal);
    EXPECT_EQ(refusedHeap.requests, operation.oneFails.size());
    for (unsigned n = 1; n <= operation.oneFails.size(); ++n)
        for (const bool onwards : {false, true}) {
            SCOPED_TRACE(std::to_string(n) + (onwards ? " and all after it" : " alone"));
            refusedHeap.start(n, onwards, RefusedHeap::blocks);
            Span span;
            EXPECT_EQ(tried(span), onwards ? operation.withRest(n) : operation.oneFails[n - 1]);
            EXPECT_TRUE(span.happened);
            EXPECT_EQ(triedNormally(), operation.normal);
        }
}

TEST_P(EveryAllocation, FailsForWantOfPagesTablesAndRecords)
{
    const Operation &operation = GetParam();
    EXPECT_EQ(triedNormally(), operation.normal);
    for (const bool onwards : {false, true}) {
        bool happened = true;
        for (unsigned n = 1; happened; ++n) {
            SCOPED_TRACE(std::to_string(n) + (onwards ? " and all after it" : " alone"));
            refusedHeap.start(n, onwards, RefusedHeap::everything);
            Span span;
            const std::string outcome = tried(span);
            happened = span.happened;
            if (!happened) {
                EXPECT_EQ(outcome, operation.normal);
            }
            EXPECT_EQ(triedNormally(), operation.normal);
        }
    }
}

TEST_P(EveryAllocation, FailsInAFullSizeClass)
{
    const Operation &operation = GetParam();
    const unsigned last = takesFromHeap(operation) ? 6 : 100; // such a block reaches the limit itself
    bool happened = true;
    for (unsigned n = 1; happened && n <= last; ++n) {
        SCOPED_TRACE(n);
        refusedHeap.start(0, false, RefusedHeap::everything);
        Span span(Span::smallNthFails, n);
        const std::string outcome = tried(span);
        happened = span.happened;
        if (!happened) {
            EXPECT_EQ(outcome, operation.normal);
        }
        EXPECT_EQ(triedNormally(), operation.normal);
    }
    EXPECT_TRUE(!happened || takesFromHeap(operation));
}

TEST_P(EveryAllocation, LeavesItsNeighboursAlone)
{
    const Operation &operation = GetParam();
    refusedHeap.start(0, false, RefusedHeap::everything);
    for (const Span::Way way : {Span::asPlanned, Span::allFail}) {
        const Neighbours neighbours;
        Span span(way);
        const std::string outcome = tried(span);
        if (operation.kind != Operation::direct) {
            EXPECT_EQ(outcome, way == Span::allFail ? operation.withAll() : operation.normal);
        }
        EXPECT_TRUE(neighbours.untouched());
        EXPECT_EQ(triedNormally(), operation.normal);
    }
}

/// Text, cached length and size, and a text without a buffer is asked for everything that it can tell.
inline std::string read(const karString &s)
{
    const char *const bytes = TextProbe::bytes(s);
    if (!bytes) {
        unsigned index = 77;
        EXPECT_EQ(s.vstrlen(), 0u);
        EXPECT_TRUE(s.isNull());
        EXPECT_EQ(s.getChar(0), 0);
        EXPECT_EQ(s.vstrchr('x'), nullptr);
        EXPECT_EQ(s.vstrrchr(index, 'x'), 0);
        EXPECT_EQ(index, 77u);
        EXPECT_EQ(s.vstrstr("x"), nullptr);
        EXPECT_EQ(s.karstrchr('x', 0), -1);
        EXPECT_EQ(s.countchar('x'), 0);
        EXPECT_TRUE(s == "");
    }
    std::string text = bytes ? '\'' + std::string(bytes) + '\'' : std::string("none");
    if (text.size() > 100)
        text = std::to_string(text.size() - 2) + " characters";
    return text + ' ' + std::to_string(s.length()) + '/' + std::to_string(s.size());
}

#endif
