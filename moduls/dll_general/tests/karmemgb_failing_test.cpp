// Allocations that fail: every point at which the allocator itself needs memory, and the helper that makes them fail.
#include "failalloc.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

/// What every test leaves as it found it.
struct State {
    long blocks = globalMemList->getCurAnzNew();
    long bytes = globalMemList->getCurSizeNew();
    int records = AllocatorPeek::pool(*globalMemList, 7).getAnzElem();
    bool operator==(const State &other) const
    {
        return blocks == other.blocks && bytes == other.bytes && records == other.records;
    }
};

} // namespace

TEST(AllAllocationsFail, RefusesEverySizeAndPutsTheCountBack)
{
    const long count = globalMemList->getCurAnzNew();
    void *const large = KarAllocMemory(5000); // with its record's page three heap blocks
    EXPECT_EQ(globalMemList->getCurAnzNew(), count + 3);
    {
        AllAllocationsFail failing;
        for (unsigned size : {1u, 2u, 3u, 92u, 192u, 492u, 992u, 993u, 5000u})
            EXPECT_EQ(KarAllocMemory(size), nullptr) << size;
        KarDellocMemory(large);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), count);
    void *const small = KarAllocMemory(10);
    EXPECT_NE(small, nullptr);
    KarDellocMemory(small);
}

TEST(NthAllocationFails, LetsExactlyNMinusOneAllocationsOfAClassPass)
{
    for (unsigned size : {2u, 92u, 192u, 492u, 992u})
        for (unsigned n : {1u, 2u, 3u, 100u, 101u, 250u}) {
            std::vector<void *> blocks;
            {
                NthAllocationFails failing(n);
                while (void *const block = KarAllocMemory(size)) {
                    EXPECT_FALSE(failing.happened());
                    blocks.push_back(block);
                }
                EXPECT_TRUE(failing.happened());
                EXPECT_EQ(KarAllocMemory(20), nullptr);
            }
            EXPECT_EQ(blocks.size(), n - 1) << size;
            for (void *block : blocks)
                KarDellocMemory(block);
            EXPECT_TRUE(globalMemList->isValid());
        }
}

TEST(NthHeapBlockFails, NewMemOfEachClassNeedsTwoBlocksForItsPage)
{
    for (const auto &[number, request] : usedPools) {
        karPageMemory &pool = AllocatorPeek::pool(*globalMemList, number);
        pool.delete_all();
        for (unsigned n = 1; n <= 3; ++n) {
            SCOPED_TRACE(request + n * 10000);
            const State before;
            const long allocations = globalMemList->getAnzNew();
            void *p;
            {
                const NthHeapBlockFails failing(n);
                p = KarAllocMemory(request);
            }
            EXPECT_EQ(p != nullptr, n == 3);
            // 1: refused at once. 2: the page stands without storage. 3: page object, storage and the block.
            EXPECT_EQ(globalMemList->getAnzNew() - allocations, n == 1 ? 0 : n == 2 ? 1 : 3);
            EXPECT_EQ(PoolPeek::pages(pool), n == 1 ? 0 : 1);
            EXPECT_EQ(pool.getAnzElem(), n == 3 ? 1 : 0);
            EXPECT_TRUE(globalMemList->isValid());
            void *const next = KarAllocMemory(request); // there is memory again
            EXPECT_NE(next, nullptr);
            EXPECT_EQ(PoolPeek::pages(pool), n == 2 ? 2 : 1);
            KarDellocMemory(p);
            KarDellocMemory(next);
            pool.delete_all();
            EXPECT_TRUE(State() == before);
        }
    }
}

TEST(NthHeapBlockFails, LargeBlockIsHadWithOrWithoutItsRecord)
{
    const State before;
    for (unsigned n = 1; n <= 3; ++n) {
        SCOPED_TRACE(n);
        void *p;
        {
            const NthHeapBlockFails failing(n);
            p = KarAllocMemory(5000);
        }
        EXPECT_EQ(p != nullptr, n > 1); // the first test comes before the block and its record
        EXPECT_EQ(MemoryPeek::tailOf(AllocatorPeek::records(*globalMemList)) != nullptr, n == 3);
        EXPECT_EQ(globalMemList->curr_used_memory(), p ? 5008 : 0); // counts without a record too
        if (p) {
            const int mark = globalMemList->setMarkMemListGlobal(n == 3);
            KarDellocMemory(p);
            globalMemList->setMarkMemListGlobal(mark);
        }
        if (n == 2)
            AllocatorPeek::dropRecords(*globalMemList);
        EXPECT_TRUE(State() == before);
        EXPECT_TRUE(globalMemList->isValid());
    }
}

TEST(NthHeapBlockFails, ElementOfAFixedPoolNeedsTwoBlocksForItsPage)
{
    for (int older : {0, 2}) // alone, and behind a full page
        for (unsigned n = 1; n <= 3; ++n) {
            SCOPED_TRACE(n);
            const State before;
            {
                karPageMemory pool(40, 2);
                for (int i = 0; i < older; ++i)
                    pool.newElement();
                karPage *const first = PoolPeek::firstOf(pool);
                void *p;
                {
                    const NthHeapBlockFails failing(n);
                    p = pool.newElement();
                }
                EXPECT_EQ(p != nullptr, n == 3);
                EXPECT_EQ(PoolPeek::pages(pool), (older ? 1 : 0) + (n > 1 ? 1 : 0));
                EXPECT_EQ(PoolPeek::lastOf(pool) != nullptr, n > 1);
                EXPECT_EQ(PoolPeek::currentOf(pool), PoolPeek::lastOf(pool));
                if (older) {
                    EXPECT_EQ(PoolPeek::firstOf(pool), first);
                }
                EXPECT_EQ(pool.getAnzElem(), older + (n == 3 ? 1 : 0));
                EXPECT_TRUE(pool.isValid());
                EXPECT_NE(pool.newElement(), nullptr); // behind a missing page object in a chain of its own
                EXPECT_TRUE(pool.isValid());
            }
            EXPECT_TRUE(State() == before);
        }
}

TEST(NthHeapBlockFails, RecordOfABlockNeedsAPageOfRecords)
{
    static char places[8];
    for (unsigned n = 1; n <= 3; ++n) {
        SCOPED_TRACE(n);
        const State before;
        {
            karMemory memory;
            {
                const NthHeapBlockFails failing(n);
                EXPECT_EQ(memory.dxnew(places, 5), places);
            }
            EXPECT_EQ(memory.curr_used_memory(), 5);
            EXPECT_EQ(MemoryPeek::tailOf(memory) != nullptr, n == 3);
            EXPECT_EQ(memory.dxnew(places + 1, 7), places + 1);
            EXPECT_EQ(MemoryPeek::tailOf(memory)->listLength(), n == 3 ? 2 : 1);
            void *p = places;
            memory.dxdelete(&p);
            EXPECT_EQ(p != nullptr, n == 3);
            EXPECT_TRUE(memory.isValid());
        }
        EXPECT_TRUE(State() == before);
    }
}

TEST(NthAllocationFails, FileIsOpenedWithOrWithoutItsRecord)
{
    const char *const name = "karmemgb_failing_test.tmp";
    std::fclose(std::fopen(name, "wb"));
    for (unsigned n = 1;; ++n) {
        const int records = AllocatorPeek::pool(*globalMemList, 7).getAnzElem();
        bool happened;
        {
            karMemory memory;
            std::FILE *file;
            {
                const NthAllocationFails failing(n);
                file = memory.xfopen(name, "rb");
                happened = failing.happened();
            }
            ASSERT_NE(file, nullptr);
            EXPECT_EQ(MemoryPeek::filesOf(memory) == nullptr, happened);
            EXPECT_EQ(memory.xfclose(file), happened ? 1 : 0);
            if (happened)
                std::fclose(file);
        }
        EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), records);
        if (!happened) {
            EXPECT_EQ(n, 2u);
            break;
        }
    }
    std::remove(name);
}
