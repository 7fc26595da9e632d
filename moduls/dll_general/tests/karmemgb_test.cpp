// The global allocator: classes, guards, counters, the mark, entry points, heap blocks.
#include "karmemgb.h"

#include "failalloc.h"
#include "mempeek.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace {

unsigned guardAt(const void *place)
{
    unsigned value;
    std::memcpy(&value, place, sizeof value);
    return value;
}
unsigned header(const void *p) { return guardAt(static_cast<const char *>(p) - 4); }
unsigned footer(const void *p) { return guardAt(static_cast<const char *>(p) + header(p) - 8); }

karPageMemory &pool(int number) { return AllocatorPeek::pool(*globalMemList, number); }

/// Number of the pool that holds the block, -1 for none.
int poolOf(void *p)
{
    void *const element = static_cast<char *>(p) - 4 - blockShift;
    for (int number = 0; number < 11; ++number)
        if (karPage *const first = PoolPeek::firstOf(pool(number)))
            if (first->search(element))
                return number;
    return -1;
}

class Allocator : public karGlobalMemory {
public:
    std::vector<std::ptrdiff_t> offsets() const
    {
        return {offsetIn(*this, memory),     offsetIn(*this, pools),  offsetIn(*this, curAnzNew),
                offsetIn(*this, curSizeNew), offsetIn(*this, anzNew), offsetIn(*this, markMemListGlobal)};
    }
    const karPageMemory &member(int number) const { return pools[number]; }
};

} // namespace

TEST(KarGlobalMemory, FieldsStandInTheirOrder)
{
    const Allocator allocator;
    const std::ptrdiff_t counters = sizeof(karMemory) + 11 * sizeof(karPageMemory);
    const std::ptrdiff_t word = sizeof(long);
    EXPECT_EQ(allocator.offsets(), (std::vector<std::ptrdiff_t>{0, sizeof(karMemory), counters, counters + word,
                                                                counters + 2 * word, counters + 3 * word}));
}

TEST(KarGlobalMemory, StartsWithZeroCountersAMarkAndElevenPools)
{
    const Allocator allocator;
    EXPECT_EQ(allocator.getCurAnzNew(), 0);
    EXPECT_EQ(allocator.getCurSizeNew(), 0);
    EXPECT_EQ(allocator.getAnzNew(), 0);
    EXPECT_EQ(allocator.getMarkMemListGlobal(), 1);
    EXPECT_EQ(allocator.curr_used_memory(), 0);
    EXPECT_EQ(allocator.max_used_memory(), 0);
    const int sizes[] = {10, 20, 30, 40, 50, 60, 80, 100, 200, 500, 1000};
    const int counts[] = {5000, 5000, 4000, 3000, 3000, 2000, 1000, 1000, 500, 200, 100};
    for (int number = 0; number < 11; ++number) {
        EXPECT_EQ(allocator.member(number).elementSize(), sizes[number]);
        EXPECT_EQ(allocator.member(number).elementCount(), counts[number]);
    }
}

TEST(KarGlobalMemory, RoutesEverySizeToItsClass)
{
    struct {
        unsigned largest;
        int number;
        unsigned classSize;
        int stride; // on 64-bit targets
    } const classes[] = {
        {2, 0, 10, 32}, {92, 7, 100, 112}, {192, 8, 200, 224}, {492, 9, 500, 512}, {992, 10, 1000, 1024}};
    unsigned size = 1;
    for (const auto &sizeClass : classes)
        for (; size <= sizeClass.largest; ++size) {
            const long heapBlocks = globalMemList->getCurAnzNew();
            const long allocations = globalMemList->getAnzNew();
            void *const p = KarAllocMemory(size);
            ASSERT_NE(p, nullptr);
            EXPECT_EQ(poolOf(p), sizeClass.number) << size;
            EXPECT_EQ(header(p), sizeClass.classSize);
            EXPECT_EQ(footer(p), sizeClass.classSize);
            EXPECT_EQ(globalMemList->getAnzNew(), allocations + 3); // with the two blocks of the page
            EXPECT_EQ(globalMemList->getCurAnzNew(), heapBlocks + 2);
            karPage &page = *PoolPeek::firstOf(pool(sizeClass.number));
            EXPECT_EQ(PagePeek::stride(page), wide ? sizeClass.stride : static_cast<int>(sizeClass.classSize));
            // The element at the page's top, and the block in it.
            EXPECT_EQ(at(p) - 4 - blockShift, at(page.PageEnd()) + 1 - static_cast<unsigned>(PagePeek::stride(page)));
            if (wide) {
                EXPECT_EQ(at(p) % 16, 0u);
            }
            std::memset(p, 0xff, size);
            EXPECT_EQ(footer(p), sizeClass.classSize);
            KarDellocMemory(p);
            EXPECT_EQ(globalMemList->getCurAnzNew(), heapBlocks);
            EXPECT_EQ(PoolPeek::firstOf(pool(sizeClass.number)), nullptr);
        }
    EXPECT_EQ(size, 993u);
    for (; size < 1100; ++size) {
        const long tracked = globalMemList->curr_used_memory();
        void *const p = KarAllocMemory(size);
        EXPECT_EQ(poolOf(p), -1);
        EXPECT_EQ(header(p), size + 8);
        EXPECT_EQ(footer(p), size + 8);
        EXPECT_EQ(globalMemList->curr_used_memory(), tracked + static_cast<long>(size) + 8);
        if (wide) {
            EXPECT_EQ(at(p) % 16, 0u);
        }
        KarDellocMemory(p);
        EXPECT_EQ(globalMemList->curr_used_memory(), tracked);
    }
}

TEST(KarGlobalMemory, PoolsBetweenStayEmptyUnderEveryLoad)
{
    std::vector<void *> blocks;
    for (unsigned size = 1; size < 1200; ++size)
        blocks.push_back(KarAllocMemory(size));
    for (int number = 1; number <= 6; ++number)
        EXPECT_EQ(PoolPeek::firstOf(pool(number)), nullptr);
    EXPECT_EQ(pool(0).getAnzElem(), 2);
    EXPECT_EQ(pool(7).getAnzElem(), 90);
    EXPECT_EQ(pool(8).getAnzElem(), 100);
    EXPECT_EQ(pool(9).getAnzElem(), 300);
    EXPECT_EQ(pool(10).getAnzElem(), 500);
    globalMemList->testDeleteAll();
    EXPECT_TRUE(globalMemList->isValid());
    for (void *block : blocks)
        KarDellocMemory(block);
    for (int number = 0; number <= 10; ++number)
        EXPECT_EQ(PoolPeek::firstOf(pool(number)), nullptr);
}

TEST(KarGlobalMemory, NeighboursInAPageStandOneStrideApart)
{
    const unsigned sizes[] = {2, 92, 192, 492, 992};
    const unsigned strides[] = {10, 100, 200, 500, 1000};
    const unsigned wideStrides[] = {32, 112, 224, 512, 1024};
    for (int i = 0; i < 5; ++i) {
        void *const a = KarAllocMemory(sizes[i]);
        void *const b = KarAllocMemory(sizes[i]);
        EXPECT_EQ(at(a) - at(b), wide ? wideStrides[i] : strides[i]);
        KarDellocMemory(a);
        EXPECT_EQ(KarAllocMemory(sizes[i]), a);
        KarDellocMemory(a);
        KarDellocMemory(b);
    }
}

TEST(KarGlobalMemory, TestDeleteAllMendsTheWayInUpToTheFirstPoolInUse)
{
    void *const small = KarAllocMemory(20);
    void *const large = KarAllocMemory(900);
    PoolPeek::firstOf(pool(7)) = nullptr;
    PoolPeek::firstOf(pool(10)) = nullptr;
    globalMemList->testDeleteAll();
    EXPECT_EQ(PoolPeek::firstOf(pool(7)), PoolPeek::lastOf(pool(7)));
    EXPECT_EQ(PoolPeek::firstOf(pool(10)), nullptr); // isn't reached
    KarDellocMemory(small);
    globalMemList->testDeleteAll();
    EXPECT_EQ(PoolPeek::firstOf(pool(10)), PoolPeek::lastOf(pool(10)));
    KarDellocMemory(large);
}

TEST(KarGlobalMemory, PoolsBetweenAreReadyForTheirSizes)
{
    const int strides[] = {20, 30, 40, 50, 60, 80};
    const int wideStrides[] = {32, 48, 64, 64, 80, 96}; // the size behind the first 12 bytes, up to a multiple of 16
    for (int number = 1; number <= 6; ++number) {
        void *p = pool(number).newElement();
        EXPECT_EQ(PagePeek::stride(*PoolPeek::firstOf(pool(number))), (wide ? wideStrides : strides)[number - 1]);
        pool(number).deleteElement(p);
    }
}

TEST(KarGlobalMemory, ZeroSizeChangesNoCounter)
{
    const long allocations = globalMemList->getAnzNew();
    EXPECT_EQ(KarAllocMemory(0u), nullptr);
    EXPECT_EQ(globalMemList->newMem(0), nullptr);
    EXPECT_EQ(globalMemList->getAnzNew(), allocations);
    KarDellocMemory(nullptr);
    globalMemList->deleteMem(nullptr);
}

TEST(KarGlobalMemory, CountersFollowHeapBlocksAndTheirSizes)
{
    void *const keeper = KarAllocMemory(4000); // keeps the page of records
    const long blocks = globalMemList->getCurAnzNew();
    const long bytes = globalMemList->getCurSizeNew();
    const long allocations = globalMemList->getAnzNew();
    const long tracked = globalMemList->curr_used_memory();
    void *const p = KarAllocMemory(5000);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks + 1);
    EXPECT_EQ(globalMemList->getCurSizeNew(), bytes + 5008);
    EXPECT_EQ(globalMemList->getAnzNew(), allocations + 1);
    EXPECT_EQ(globalMemList->curr_used_memory(), tracked + 5008);
    EXPECT_GE(globalMemList->max_used_memory(), tracked + 5008);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
    EXPECT_EQ(globalMemList->getCurSizeNew(), bytes);
    EXPECT_EQ(globalMemList->getAnzNew(), allocations + 1);
    EXPECT_EQ(globalMemList->curr_used_memory(), tracked);
    KarDellocMemory(keeper);
}

TEST(KarGlobalMemory, CountersAreStoredAndAddedTo)
{
    Allocator allocator;
    allocator.setCurAnzNew(-5);
    allocator.setCurSizeNew(17);
    allocator.setAnzNew(2147483647);
    EXPECT_EQ(allocator.getCurAnzNew(), -5);
    EXPECT_EQ(allocator.getCurSizeNew(), 17);
    EXPECT_EQ(allocator.getAnzNew(), 2147483647);
    allocator.addCurAnzNew(-3);
    allocator.addCurSizeNew(100);
    allocator.addAnzNew(-1);
    EXPECT_EQ(allocator.getCurAnzNew(), -8);
    EXPECT_EQ(allocator.getCurSizeNew(), 117);
    EXPECT_EQ(allocator.getAnzNew(), 2147483646);
    EXPECT_EQ(allocator.setMarkMemListGlobal(9), 1);
    EXPECT_EQ(allocator.getMarkMemListGlobal(), 9);
    EXPECT_EQ(allocator.setMarkMemListGlobal(0), 9);
    if (sizeof(long) == 4) {
        allocator.setAnzNew(2147483647);
        allocator.addAnzNew(1);
        EXPECT_EQ(allocator.getAnzNew(), -2147483647L - 1);
    }
}

TEST(KarGlobalMemory, ClearedMarkSendsEverythingToTheHeapWithoutARecord)
{
    const Mark direct(0);
    const long blocks = globalMemList->getCurAnzNew();
    const long bytes = globalMemList->getCurSizeNew();
    const long tracked = globalMemList->curr_used_memory();
    for (unsigned size : {1u, 16u, 992u, 993u, 100000u}) {
        void *const p = KarAllocMemory(size);
        EXPECT_EQ(header(p), size + 8);
        EXPECT_EQ(footer(p), size + 8);
        EXPECT_EQ(globalMemList->getCurAnzNew(), blocks + 1);
        EXPECT_EQ(globalMemList->getCurSizeNew(), bytes + static_cast<long>(size) + 8);
        EXPECT_EQ(globalMemList->curr_used_memory(), tracked);
        EXPECT_EQ(poolOf(p), -1);
        if (wide) {
            EXPECT_EQ(at(p) % 16, 0u);
        }
        KarDellocMemory(p);
        EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
        EXPECT_EQ(globalMemList->getCurSizeNew(), bytes);
    }
}

TEST(KarGlobalMemory, PoolBlockIsReleasedUnderEitherMark)
{
    for (unsigned size : {2u, 20u, 150u, 400u, 900u}) {
        void *const p = KarAllocMemory(size);
        const Mark direct(0);
        KarDellocMemory(p);
        EXPECT_EQ(poolOf(p), -1) << size; // the page went with it
    }
}

TEST(KarGlobalMemory, SmallHeapBlockReleasedUnderTheMarkStaysAllocated)
{
    void *const keeper = KarAllocMemory(50); // a page of the class that its size suggests
    void *p;
    {
        const Mark direct(0);
        p = KarAllocMemory(50);
    }
    const long blocks = globalMemList->getCurAnzNew();
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
    EXPECT_EQ(header(p), 58u);
    EXPECT_EQ(pool(7).getAnzElem(), 1);
    const Mark direct(0);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks - 1);
    KarDellocMemory(keeper);
}

TEST(KarGlobalMemory, LargeUntrackedBlockReleasedUnderTheMarkStaysAllocated)
{
    void *p;
    {
        const Mark direct(0);
        p = KarAllocMemory(5000);
    }
    const long blocks = globalMemList->getCurAnzNew();
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
    EXPECT_EQ(header(p), 5008u);
    const Mark direct(0);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks - 1);
}

TEST(KarGlobalMemory, TrackedBlockReleasedWithTheMarkClearedLeavesItsRecord)
{
    void *const p = KarAllocMemory(5000);
    const long blocks = globalMemList->getCurAnzNew();
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks - 1);
    EXPECT_EQ(globalMemList->curr_used_memory(), 5008);
    void *known = p;
    AllocatorPeek::records(*globalMemList).dxdelete(&known); // tidy up
    EXPECT_EQ(known, p);
}

TEST(KarGlobalMemory, LimitOf64000HeapBlocksRefusesSmallRequestsToo)
{
    void *const keeper = KarAllocMemory(20);
    const int before = static_cast<int>(globalMemList->getCurAnzNew());
    const Mark direct(0);
    std::vector<void *> blocks;
    for (int i = before; i <= 64000; ++i) {
        blocks.push_back(KarAllocMemory(1));
        ASSERT_NE(blocks.back(), nullptr) << i;
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), 64001);
    const long allocations = globalMemList->getAnzNew();
    EXPECT_EQ(KarAllocMemory(1), nullptr);
    globalMemList->setMarkMemListGlobal(1);
    EXPECT_EQ(KarAllocMemory(20), nullptr); // its pool has room
    globalMemList->setMarkMemListGlobal(0);
    EXPECT_EQ(globalMemList->getAnzNew(), allocations);
    KarDellocMemory(blocks.back());
    blocks.back() = KarAllocMemory(1);
    EXPECT_NE(blocks.back(), nullptr);
    for (void *block : blocks)
        KarDellocMemory(block);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before);
    globalMemList->setMarkMemListGlobal(1);
    KarDellocMemory(keeper);
}

TEST(KarGlobalMemory, RecordPagesCountAsHeapBlocksAndMayPassTheLimit)
{
    const int before = static_cast<int>(globalMemList->getCurAnzNew());
    globalMemList->setCurAnzNew(64000);
    void *const p = KarAllocMemory(5000); // its record's page object counts 64001, so that the block counts 64002
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(globalMemList->getCurAnzNew(), 64002);
    EXPECT_EQ(globalMemList->curr_used_memory(), 5008);
    EXPECT_EQ(MemoryPeek::tailOf(AllocatorPeek::records(*globalMemList)), nullptr);
    KarDellocMemory(p); // has no record
    EXPECT_EQ(globalMemList->getCurAnzNew(), 64002);
    globalMemList->setCurAnzNew(before + 2);
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), before + 1); // the page object without storage
    AllocatorPeek::dropRecords(*globalMemList);           // its sum counts the lost record
    EXPECT_EQ(globalMemList->getCurAnzNew(), before);
    EXPECT_EQ(globalMemList->curr_used_memory(), 0);
}

TEST(KarGlobalMemory, SizesThatWrapComeFromTheSmallestClass)
{
    for (unsigned size : {0xfffffff8u, 0xfffffff9u, 0xffffffffu}) {
        void *const p = KarAllocMemory(size);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(header(p), 10u);
        EXPECT_EQ(poolOf(p), 0);
        KarDellocMemory(p);
        const long allocations = globalMemList->getAnzNew();
        const Mark direct(0);
        EXPECT_EQ(KarAllocMemory(size), nullptr);
        EXPECT_EQ(globalMemList->getAnzNew(), allocations);
    }
}

TEST(KarGlobalMemory, BlockOf2GigabytesIsReleasedWithTheMarkClearedOnly)
{
    if (!wide)
        return; // there may be no room for it
    const long before = globalMemList->getCurAnzNew();
    void *const p = KarAllocMemory(0x80000000u);
    if (!p)
        return; // nor here
    const long with = globalMemList->getCurAnzNew();
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), with);
    EXPECT_EQ(header(p), 0x80000008u);
    {
        const Mark direct(0);
        KarDellocMemory(p);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), with - 1);
    void *known = p;
    AllocatorPeek::records(*globalMemList).dxdelete(&known);
    EXPECT_EQ(globalMemList->getCurAnzNew(), before);
}

TEST(KarGlobalMemory, CopySharesPagesRecordsAndCounters)
{
    void *small = KarAllocMemory(20);
    void *large = KarAllocMemory(2000);
    alignas(karGlobalMemory) static unsigned char room[sizeof(karGlobalMemory)];
    karGlobalMemory *const copy = ::new (static_cast<void *>(room)) karGlobalMemory(*globalMemList);
    EXPECT_EQ(copy->getCurAnzNew(), globalMemList->getCurAnzNew());
    EXPECT_EQ(copy->curr_used_memory(), 2008);
    EXPECT_TRUE(copy->isValid());
    EXPECT_EQ(PoolPeek::firstOf(AllocatorPeek::pool(*copy, 7)), PoolPeek::firstOf(pool(7)));
    void *const second = copy->newMem(20);
    EXPECT_EQ(at(small) - at(second), wide ? 112u : 100u);
    copy->deleteMem(second);
    *copy = *globalMemList;
    EXPECT_EQ(copy->getMarkMemListGlobal(), 1);
    KarDellocMemory(small); // the source is the one that is used further
    KarDellocMemory(large);
}

TEST(KarGlobalMemory, AssignedOneTakesFromThePagesOfItsSource)
{
    void *small = KarAllocMemory(20);
    alignas(karGlobalMemory) static unsigned char rooms[2][sizeof(karGlobalMemory)];
    karGlobalMemory *const assigned = ::new (static_cast<void *>(rooms[0])) karGlobalMemory;
    void *const left = assigned->newMem(20);
    karGlobalMemory *const former = ::new (static_cast<void *>(rooms[1])) karGlobalMemory(*assigned);
    *assigned = *globalMemList;
    void *const second = assigned->newMem(20);
    EXPECT_EQ(at(small) - at(second), wide ? 112u : 100u);
    assigned->deleteMem(second);
    former->deleteMem(left); // the page goes
    KarDellocMemory(small);
}

TEST(KarGlobalMemory, HostsOwnAllocatorTakesItsPagesFromTheGlobalOne)
{
    const long blocks = globalMemList->getCurAnzNew();
    {
        Allocator own;
        void *const p = own.newMem(20);
        EXPECT_EQ(own.getAnzNew(), 1);
        EXPECT_EQ(own.getCurAnzNew(), 0);
        EXPECT_EQ(globalMemList->getCurAnzNew(), blocks + 2);
        own.deleteMem(p);
        EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
        own.newMem(30); // is lost with its page
        void *const large = own.newMem(3000);
        EXPECT_EQ(own.getCurAnzNew(), 1);
        EXPECT_EQ(own.curr_used_memory(), 3008);
        own.deleteMem(large);
        EXPECT_EQ(own.getCurAnzNew(), 0);
    }
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
}

// ---- Entry points

TEST(EntryPoints, PlacementFormAllocatesForANullOnly)
{
    char place;
    EXPECT_EQ(KarAllocMemory(20u, static_cast<void *>(&place)), &place);
    void *const p = KarAllocMemory(20u, static_cast<void *>(nullptr));
    ASSERT_NE(p, nullptr);
    KarDellocMemory(p);
    EXPECT_EQ(KarAllocMemory(0u, static_cast<void *>(nullptr)), nullptr);
}

TEST(EntryPoints, SizesOfObjectsAndArraysBeyond32BitsGiveNull)
{
    EXPECT_EQ(karListObjectNV::operator new(kar::largestObject + 1), nullptr);
    EXPECT_EQ(karListObjectNV::operator new(kar::largestObject + 1, nullptr), nullptr);
    EXPECT_EQ(kar::allocArray(0x20000000u, 8), nullptr);
    EXPECT_EQ(kar::allocArray(0xffffffffu, 0), nullptr); // nothing, of whatever count
    void *const p = karListObjectNV::operator new(24, nullptr);
    ASSERT_NE(p, nullptr);
    karListObjectNV::operator delete(p);
}

TEST(EntryPoints, FormsWithFileAndLineAllocateAlike)
{
    char file[] = "file";
    EXPECT_EQ(KarAllocMemory(0u, file, 1), nullptr);
    void *p = KarAllocMemory(20u, file, 1);
    EXPECT_EQ(header(p), 100u);
    KarDellocMemory(p);
    p = __AllocMemory_C(20u, file, 1);
    EXPECT_EQ(header(p), 100u);
    __FreeMemory_C(nullptr);
    __FreeMemory_C(p);
    EXPECT_EQ(poolOf(p), -1);
    EXPECT_EQ(__AllocMemory_C(0u, file, 1), nullptr);
    errorMemoryNotFree_C(file);
    errorMemoryNotFree_C(nullptr);
}

TEST(EntryPoints, OnlyTheFormWithFileAndLineCreatesTheAllocator)
{
    karGlobalMemory *const saved = globalMemList;
    char file[] = "file";
    globalMemList = nullptr;
    EXPECT_EQ(KarAllocMemory(0u, file, 1), nullptr);
    EXPECT_EQ(globalMemList, nullptr);
    void *const p = KarAllocMemory(20u, file, 1);
    ASSERT_NE(globalMemList, nullptr);
    EXPECT_NE(globalMemList, saved);
    EXPECT_EQ(__MemorySize(globalMemList, 0), sizeof(karGlobalMemory));
    EXPECT_EQ(globalMemList->getAnzNew(), 3);
    KarDellocMemory(p);
    EXPECT_EQ(globalMemList->getCurAnzNew(), 0);
    karGlobalMemory *const created = globalMemList;
    created->~karGlobalMemory();
    globalMemList = saved;
    __FreeMemory(created);
}

// ---- Heap blocks

TEST(HeapBlocks, AreAlignedAndKnowTheSizeAskedFor)
{
    std::vector<void *> blocks;
    for (unsigned size = 1; size < 3000; size += 7) {
        void *const p = __AllocMemory(size);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(at(p) % 16, 0u);
        EXPECT_EQ(__MemorySize(p, size + 1), size); // the second argument isn't read
        std::memset(p, 0xee, size);
        blocks.push_back(p);
    }
    unsigned size = 1;
    for (void *p : blocks) {
        EXPECT_EQ(__MemorySize(p, 0), size);
        EXPECT_EQ(__MemorySize(static_cast<char *>(p) + 1, 0), 0u);
        EXPECT_EQ(__MemorySize(static_cast<char *>(p) - 4, 0), 0u);
        size += 7;
    }
    for (void *p : blocks) {
        __FreeMemory(p);
        EXPECT_EQ(__MemorySize(p, 0), 0u);
    }
}

TEST(HeapBlocks, OtherAddressesHaveNoSize)
{
    unsigned local[4] = {16, 16, 16, 16};
    void *const small = KarAllocMemory(20);
    void *const large = KarAllocMemory(2000);
    EXPECT_EQ(__MemorySize(nullptr, 0), 0u);
    EXPECT_EQ(__MemorySize(local, 0), 0u);
    EXPECT_EQ(__MemorySize(reinterpret_cast<void *>(std::uintptr_t(12345)), 0), 0u);
    EXPECT_EQ(__MemorySize(small, 0), 0u);
    EXPECT_EQ(__MemorySize(static_cast<char *>(small) - 4, 0), 0u);
    EXPECT_EQ(__MemorySize(large, 0), 0u);
    EXPECT_EQ(__MemorySize(static_cast<char *>(large) - 4, 0), 2008u); // its block
    __FreeMemory(nullptr);
    __FreeMemory(local); // is no heap block
    KarDellocMemory(small);
    KarDellocMemory(large);
}

TEST(HeapBlocks, OfSizeZeroOrWithoutMemoryAreNull)
{
    EXPECT_EQ(__AllocMemory(0), nullptr);
    if (!wide) {
        EXPECT_EQ(__AllocMemory(0xffffffffu), nullptr);
        EXPECT_EQ(__AllocMemory(0xfffffff0u), nullptr);
        const long allocations = globalMemList->getAnzNew();
        const long blocks = globalMemList->getCurAnzNew();
        EXPECT_EQ(KarAllocMemory(0xfffffff0u), nullptr); // exhausted: nothing but the unread total has grown
        EXPECT_EQ(globalMemList->getAnzNew(), allocations);
        EXPECT_EQ(globalMemList->getCurAnzNew(), blocks);
    }
}

TEST(HeapBlocks, ManyLiveOnesAreToldApart)
{
    std::vector<void *> blocks;
    for (unsigned i = 0; i < 20000; ++i)
        blocks.push_back(__AllocMemory(i % 50 + 1));
    for (unsigned i = 0; i < 20000; i += 2)
        __FreeMemory(blocks[i]);
    for (unsigned i = 1; i < 20000; i += 2)
        ASSERT_EQ(__MemorySize(blocks[i], 0), i % 50 + 1);
    const std::set<void *> live = [&blocks] {
        std::set<void *> odd;
        for (unsigned i = 1; i < 20000; i += 2)
            odd.insert(blocks[i]);
        return odd;
    }();
    for (unsigned i = 0; i < 20000; i += 2) {
        ASSERT_EQ(live.count(blocks[i]), 0u);
        ASSERT_EQ(__MemorySize(blocks[i], 0), 0u);
    }
    for (unsigned i = 1; i < 20000; i += 2)
        __FreeMemory(blocks[i]);
}
