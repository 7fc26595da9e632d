// Which of the largest sizes are asked of the system. It refuses them, so that no machine needs 4 GB.
#include "karalloc.h"
#include "refusedheap.h"

#include <gtest/gtest.h>

namespace {

template <class Allocate>
unsigned requestsOf(Allocate allocate)
{
    refusedHeap.start(1, true, RefusedHeap::blocks);
    refusedHeap.armed = true;
    void *const p = allocate();
    refusedHeap.armed = false;
    EXPECT_EQ(p, nullptr);
    return refusedHeap.requests;
}

} // namespace

TEST(KarAlloc, TheLargestObjectIsAskedFor)
{
    EXPECT_EQ(requestsOf([] { return kar::allocObject(0xfffffff7u); }), 1u); // with both guards 2^32 - 1 bytes
    EXPECT_EQ(requestsOf([] { return kar::allocObject(0xfffffff8u); }), 0u);
}

TEST(KarAlloc, TheLargestArrayIsAskedFor)
{
    EXPECT_EQ(requestsOf([] { return kar::allocArray(1, 0xfffffff7u); }), 1u);
    EXPECT_EQ(requestsOf([] { return kar::allocArray(0x1ffffffe, 8); }), 1u); // 0xfffffff0
    EXPECT_EQ(requestsOf([] { return kar::allocArray(0x1fffffff, 8); }), 0u);
}
