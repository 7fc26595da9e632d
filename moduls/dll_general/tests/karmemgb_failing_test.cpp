// Allocations that fail: every point at which the allocator itself needs memory, and the helper that makes them fail.
#include "failalloc.h"

#include <gtest/gtest.h>

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
