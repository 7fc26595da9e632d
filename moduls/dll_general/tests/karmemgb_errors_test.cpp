// Memory errors made on purpose: damaged guards, double releases, releases of what is no block. Each has a stated
// outcome, and none touches memory that isn't the allocator's.
#include "karmemgb.h"

#include "mempeek.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

void setGuard(void *place, unsigned value) { std::memcpy(place, &value, sizeof value); }
void setHeader(void *p, unsigned value) { setGuard(static_cast<char *>(p) - 4, value); }
void setFooter(void *p, unsigned total, unsigned value) { setGuard(static_cast<char *>(p) + total - 8, value); }
unsigned header(const void *p)
{
    unsigned value;
    std::memcpy(&value, static_cast<const char *>(p) - 4, sizeof value);
    return value;
}

karPageMemory &pool(int number) { return AllocatorPeek::pool(*globalMemList, number); }

/// All that a release can change.
struct State {
    long blocks = globalMemList->getCurAnzNew();
    long bytes = globalMemList->getCurSizeNew();
    long tracked = globalMemList->curr_used_memory();
    std::vector<int> elements = counts();

    static std::vector<int> counts()
    {
        std::vector<int> result;
        for (int number = 0; number < 11; ++number)
            result.push_back(pool(number).getAnzElem());
        return result;
    }
    bool operator==(const State &other) const
    {
        return blocks == other.blocks && bytes == other.bytes && tracked == other.tracked && elements == other.elements;
    }
};

/// The total of the largest request of each pool in `usedPools`.
constexpr unsigned classes[] = {10, 100, 200, 500, 1000};

} // namespace

TEST(DamagedGuards, FooterOfAPoolBlockIsNotRead)
{
    for (int mark : {0, 1})
        for (int i = 0; i < 5; ++i) {
            void *const p = KarAllocMemory(usedPools[i].request);
            setFooter(p, classes[i], 0xdeadbeef);
            const Mark during(mark);
            KarDellocMemory(p);
            EXPECT_EQ(pool(usedPools[i].pool).getAnzElem(), 0);
        }
}

TEST(DamagedGuards, HeaderOfAnotherClassReleasesNothing)
{
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j) {
            if (i == j)
                continue;
            void *const p = KarAllocMemory(usedPools[i].request);
            void *const other = KarAllocMemory(usedPools[j].request); // the other class has a page
            setHeader(p, classes[j]);
            const State before;
            for (int mark : {1, 0}) {
                const Mark during(mark);
                KarDellocMemory(p);
                EXPECT_TRUE(State() == before);
            }
            setHeader(p, classes[i]);
            KarDellocMemory(p);
            KarDellocMemory(other);
        }
}

TEST(DamagedGuards, HeaderWithinTheRangeOfItsClassStillReleases)
{
    void *const p = KarAllocMemory(50);
    setHeader(p, 11);
    KarDellocMemory(p);
    EXPECT_EQ(pool(7).getAnzElem(), 0);
}

TEST(DamagedGuards, HeaderAbove1000OnAPoolBlockReleasesNothing)
{
    void *const p = KarAllocMemory(50);
    const State before;
    for (unsigned value : {1001u, 5000u, 0x7fffffffu, 0x80000000u, 0xffffffffu})
        for (int mark : {1, 0}) {
            setHeader(p, value);
            const Mark during(mark);
            KarDellocMemory(p);
            EXPECT_TRUE(State() == before);
        }
    setHeader(p, 100);
    KarDellocMemory(p);
}

TEST(DamagedGuards, TrackedBlockWithADamagedFooterLosesItsRecordAndStays)
{
    void *const keeper = KarAllocMemory(3000);
    void *const p = KarAllocMemory(5000);
    setFooter(p, 5008, 5007);
    const State before;
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks);
    EXPECT_EQ(globalMemList->curr_used_memory(), before.tracked - 5008);
    EXPECT_EQ(header(p), 5008u); // neither freed nor changed
    setFooter(p, 5008, 5008);
    KarDellocMemory(p); // has no record any more
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks);
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks - 1);
    KarDellocMemory(keeper);
}

TEST(DamagedGuards, TrackedBlockWithADamagedHeaderStays)
{
    void *const p = KarAllocMemory(5000);
    const State before;
    for (unsigned value : {0u, 10u, 1000u, 0x80000000u, 0xffffffffu}) { // looks like a pool block, or none
        setHeader(p, value);
        KarDellocMemory(p);
        EXPECT_TRUE(State() == before) << value;
    }
    setHeader(p, 4000); // above 1000: the record goes, the sizes differ, so the block stays
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks - 2); // the records' page
    EXPECT_EQ(globalMemList->curr_used_memory(), 0);
    setHeader(p, 5008);
    const Mark direct(0);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks - 3);
}

TEST(DamagedGuards, LargestHeaderThatIsPositiveTakesTheRecordAway)
{
    void *const keeper = KarAllocMemory(3000);
    void *const p = KarAllocMemory(5000);
    const State before;
    setHeader(p, 0x7fffffff);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks);
    EXPECT_EQ(globalMemList->curr_used_memory(), before.tracked - 5008);
    setHeader(p, 5008);
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    KarDellocMemory(keeper);
    EXPECT_EQ(globalMemList->getCurAnzNew(), 0);
}

TEST(DamagedGuards, UntrackedBlockWithADamagedGuardStays)
{
    const Mark direct(0);
    for (unsigned size : {16u, 5000u}) {
        void *const p = KarAllocMemory(size);
        const State before;
        for (unsigned value : {0u, 1u, 7u, 10u, 1000u, 2000u, 0x7fffffffu, 0xffffffffu}) {
            setHeader(p, value);
            KarDellocMemory(p);
            EXPECT_TRUE(State() == before) << value;
        }
        setHeader(p, size + 8);
        setFooter(p, size + 8, 0);
        KarDellocMemory(p);
        EXPECT_TRUE(State() == before);
        setFooter(p, size + 8, size + 8);
        KarDellocMemory(p);
        EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks - 1);
    }
}

TEST(DoubleRelease, OfAPoolBlockChangesNothing)
{
    for (int mark : {1, 0})
        for (int i = 0; i < 5; ++i) {
            void *blocks[6];
            for (void *&block : blocks)
                block = KarAllocMemory(usedPools[i].request);
            for (int j = 1; j < 5; ++j) { // at the head of the free list, in the middle and at its end
                KarDellocMemory(blocks[j]);
                for (int k = 1; k <= j; ++k) {
                    const State before;
                    const Mark during(mark);
                    KarDellocMemory(blocks[k]);
                    EXPECT_TRUE(State() == before) << usedPools[i].request << ' ' << j << ' ' << k;
                    EXPECT_TRUE(globalMemList->isValid());
                }
            }
            KarDellocMemory(blocks[0]);
            KarDellocMemory(blocks[5]);
        }
}

TEST(DoubleRelease, WithItsHeaderRestoredEndsInTheGuardOfThePool)
{
    for (int i = 0; i < 5; ++i) {
        void *blocks[3];
        for (void *&block : blocks)
            block = KarAllocMemory(usedPools[i].request);
        KarDellocMemory(blocks[1]);
        void *element = static_cast<char *>(blocks[1]) - 4 - blockShift;
        const State before;
        pool(usedPools[i].pool).deleteElement(element); // as deleteMem does for a header of the class
        EXPECT_EQ(element, nullptr);
        EXPECT_TRUE(State() == before);
        EXPECT_TRUE(globalMemList->isValid());
        KarDellocMemory(blocks[0]);
        KarDellocMemory(blocks[2]);
    }
}

TEST(ForeignAddresses, WithAnyHeaderReleaseNothing)
{
    // Memory of the test's own with a header in front of it.
    alignas(16) static char memory[16384];
    void *const p = memory + 64;
    void *const keeper = KarAllocMemory(50);
    const State before;
    for (int mark : {1, 0}) {
        const Mark during(mark);
        for (unsigned value : {0u, 4u, 8u, 10u, 100u, 1000u, 1001u, 2000u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
            setHeader(p, value);
            if (value >= 8 && value <= 2000)
                setFooter(p, value, value);
            KarDellocMemory(p);
            EXPECT_TRUE(State() == before) << value;
        }
    }
    KarDellocMemory(reinterpret_cast<void *>(std::uintptr_t(4))); // a null block
    EXPECT_TRUE(State() == before);
    KarDellocMemory(keeper);
}

TEST(ForeignAddresses, InAHeapBlockTooShortForGuardsReleaseNothing)
{
    auto *const block = static_cast<char *>(__AllocMemory(6));
    const unsigned header = 6; // as a block of the allocator would have it
    std::memcpy(block, &header, sizeof header);
    const State before;
    {
        const Mark cleared(0);
        KarDellocMemory(block + 4);
    }
    EXPECT_TRUE(State() == before);
    EXPECT_EQ(__MemorySize(block, 0), 6u);
    __FreeMemory(block);
}

TEST(ForeignAddresses, InAHeapBlockOfGuardsAloneReleaseIt)
{
    for (const unsigned size : {8u, 4u}) { // two guards, and one that is both
        auto *const block = static_cast<char *>(__AllocMemory(size));
        std::memcpy(block, &size, 4);
        std::memcpy(block + size - 4, &size, 4);
        const State before;
        const Mark cleared(0);
        KarDellocMemory(block + 4);
        EXPECT_EQ(__MemorySize(block, 0), 0u);
        EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks - 1);
        EXPECT_EQ(globalMemList->getCurSizeNew(), before.bytes - static_cast<long>(size));
        globalMemList->setCurAnzNew(static_cast<int>(before.blocks)); // __AllocMemory doesn't count
        globalMemList->setCurSizeNew(static_cast<int>(before.bytes));
    }
}

TEST(ForeignAddresses, InsideAPoolBlockCountAsAReleaseAndDoNotBecomeFree)
{
    char *const a = static_cast<char *>(KarAllocMemory(500));
    void *const b = KarAllocMemory(500);
    void *const c = KarAllocMemory(500);
    std::memset(a, 0x22, 500);
    setHeader(a + 64, 1000); // what lies there reads as a header
    KarDellocMemory(a + 64);
    EXPECT_EQ(pool(10).getAnzElem(), 2);
    for (int i = 0; i < 500; ++i)
        if (i < 60 || i >= 64) {
            EXPECT_EQ(a[i], 0x22);
        }
    KarDellocMemory(b);
    EXPECT_EQ(pool(10).getAnzElem(), 1);
    KarDellocMemory(c); // the count reaches 0 and the page goes, with the block that is still in use
    EXPECT_EQ(PoolPeek::firstOf(pool(10)), nullptr);
}

TEST(Records, OfABlockThatWasReleasedElsewhereAreNotFollowed)
{
    // The block goes with the mark cleared, another takes its address, and both stand in the records.
    void *const p = KarAllocMemory(5000);
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    std::vector<void *> others;
    void *again = nullptr;
    for (int i = 0; i < 50 && !again; ++i) {
        void *const block = KarAllocMemory(5000);
        if (block == p)
            again = block;
        else
            others.push_back(block);
    }
    const long tracked = globalMemList->curr_used_memory();
    if (again) {
        KarDellocMemory(again);
        EXPECT_EQ(globalMemList->curr_used_memory(), tracked - 5008);
    }
    for (void *block : others)
        KarDellocMemory(block);
    EXPECT_EQ(globalMemList->curr_used_memory(), 5008); // what is left is the record of the first
    KarDellocMemory(KarAllocMemory(2000));
    EXPECT_EQ(globalMemList->curr_used_memory(), 5008);
    void *known = p;
    AllocatorPeek::records(*globalMemList).dxdelete(&known);
    EXPECT_EQ(globalMemList->curr_used_memory(), 0);
}

TEST(Records, DeleteAllSkipsBlocksThatTheHeapNoLongerKnows)
{
    // Freed memory is never touched; the sanitizer watches.
    class Memory : public karMemory {
    public:
        using karMemory::delete_all;
    };
    Memory memory;
    std::vector<void *> blocks;
    for (int i = 0; i < 40; ++i) {
        blocks.push_back(KarAllocMemory(3000));
        memory.dxnew(blocks.back(), 1);
        memory.dxnew(blocks.back(), 1); // twice
    }
    for (int i = 0; i < 40; i += 2)
        KarDellocMemory(blocks[static_cast<std::size_t>(i)]);
    EXPECT_EQ(memory.delete_all(), 1);
    EXPECT_EQ(memory.curr_used_memory(), 80);
    EXPECT_EQ(globalMemList->curr_used_memory(), 0);
    EXPECT_EQ(globalMemList->getCurAnzNew(), 2); // the records' page of `memory`
}

TEST(Records, GlobalOnesAreReleasedNewestFirstPastThoseOfFreedBlocks)
{
    // The global allocator's own list at its end, played on a copy's place in the same object.
    std::vector<void *> blocks;
    for (int i = 0; i < 30; ++i)
        blocks.push_back(KarAllocMemory(2000 + static_cast<unsigned>(i)));
    {
        const Mark direct(0);
        for (int i = 0; i < 30; i += 3)
            KarDellocMemory(blocks[static_cast<std::size_t>(i)]);
        KarDellocMemory(blocks[29]);
    }
    struct Memory : karMemory {
        static int deleteAll(karMemory &memory) { return (memory.*&Memory::delete_all)(); }
    };
    EXPECT_EQ(Memory::deleteAll(AllocatorPeek::records(*globalMemList)), 1); // the freed ones stay in the sum
    long expected = 2029 + 8;
    for (int i = 0; i < 30; i += 3)
        expected += 2000 + i + 8;
    EXPECT_EQ(globalMemList->curr_used_memory(), expected);
    EXPECT_EQ(globalMemList->getCurAnzNew(), 2); // their page
    AllocatorPeek::dropRecords(*globalMemList);
}

TEST(Records, OfAnAllocatorThatEndsReleaseWhatIsStillABlockOfTheHeap)
{
    karGlobalMemory *const before = globalMemList;
    void *live, *damaged;
    {
        karGlobalMemory ending;
        globalMemList = &ending;
        void *const freed = KarAllocMemory(5000);
        live = KarAllocMemory(6000);
        damaged = KarAllocMemory(7000);
        {
            const Mark direct(0);
            KarDellocMemory(freed);
        }
        setHeader(damaged, 50); // as if it stood in a pool, and the pools have ended
    }                           // freed memory is never touched: the sanitizer watches
    globalMemList = before;
    EXPECT_EQ(__MemorySize(static_cast<char *>(live) - 4, 0), 0u);
    EXPECT_EQ(__MemorySize(static_cast<char *>(damaged) - 4, 0), 7008u);
    __FreeMemory(static_cast<char *>(damaged) - 4);
}
