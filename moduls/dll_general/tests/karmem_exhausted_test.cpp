// Memory that the system refuses: page objects, storages, records and the tables behind the pools, each in turn. The
// tests compare what the system has granted and not got back.
#include "karmemgb.h"

#include "mempeek.h"
#include "refusedheap.h"

#include <gtest/gtest.h>

#include <vector>

#if !defined(_WIN32)

namespace {

/// While one lives the system grants a number of the library's requests and refuses all that follow.
class SystemRefuses {
public:
    explicit SystemRefuses(unsigned grants, RefusedHeap::Kind kind = RefusedHeap::everything)
    {
        refusedHeap.start(grants + 1, true, kind);
        refusedHeap.armed = true;
    }
    ~SystemRefuses() { refusedHeap.armed = false; }
    SystemRefuses(const SystemRefuses &) = delete;
    SystemRefuses &operator=(const SystemRefuses &) = delete;
};

/// What is left when everything has been released.
struct State {
    long blocks = globalMemList->getCurAnzNew();
    long bytes = globalMemList->getCurSizeNew();
    long ofTheSystem = refusedHeap.held;
    bool operator==(const State &other) const
    {
        return blocks == other.blocks && bytes == other.bytes && ofTheSystem == other.ofTheSystem;
    }
};

char places[2000];

} // namespace

TEST(Exhaustion, BlockOfEachClassIsHadWholeOrNotAtAll)
{
    for (const auto &[number, request] : usedPools) {
        karPageMemory &pool = AllocatorPeek::pool(*globalMemList, number);
        unsigned grants = 0;
        for (bool more = true; more; ++grants) {
            const State before;
            const long allocations = globalMemList->getAnzNew();
            void *p;
            {
                const SystemRefuses refusing(grants);
                p = KarAllocMemory(request);
                more = refusedHeap.refused > 0;
            }
            const bool valid = globalMemList->isValid();
            const int pages = PoolPeek::pages(pool);
            const long counted = globalMemList->getAnzNew() - allocations;
            void *const next = KarAllocMemory(request); // the system has memory again
            const bool nextValid = globalMemList->isValid();
            KarDellocMemory(p);
            KarDellocMemory(next);
            const int elements = pool.getAnzElem();
            pool.delete_all(); // a page without storage
            const bool nothingLeft = State() == before;
            SCOPED_TRACE(grants);
            EXPECT_TRUE(valid);
            EXPECT_TRUE(nextValid);
            EXPECT_NE(next, nullptr);
            EXPECT_EQ(elements, 0);
            EXPECT_TRUE(nothingLeft);
            // The page object with the first entry of the table of live blocks, then the storage.
            EXPECT_EQ(p != nullptr, grants >= 3);
            EXPECT_EQ(counted, grants < 2 ? 0 : grants < 3 ? 1 : 3);
            EXPECT_EQ(pages, grants < 2 ? 0 : 1);
        }
        EXPECT_GT(grants, 4u); // the index of pages can be done without
    }
}

TEST(Exhaustion, LargeBlockLosesItsRecordAtMost)
{
    bool more = true;
    for (unsigned grants = 0; more; ++grants) {
        const State before;
        void *p;
        {
            const SystemRefuses refusing(grants);
            p = KarAllocMemory(5000);
            more = refusedHeap.refused > 0;
        }
        const bool tracked = MemoryPeek::tailOf(AllocatorPeek::records(*globalMemList)) != nullptr;
        const long sum = globalMemList->curr_used_memory();
        const int mark = globalMemList->setMarkMemListGlobal(tracked);
        KarDellocMemory(p);
        globalMemList->setMarkMemListGlobal(mark);
        AllocatorPeek::dropRecords(*globalMemList);
        AllocatorPeek::pool(*globalMemList, 7).delete_all(); // the record is looked for there as well
        const bool nothingLeft = State() == before;
        SCOPED_TRACE(grants);
        EXPECT_EQ(p != nullptr, grants >= 2);
        EXPECT_EQ(sum, p ? 5008 : 0);
        EXPECT_TRUE(p || !tracked);
        EXPECT_TRUE(tracked || grants < 6);
        EXPECT_TRUE(nothingLeft);
    }
}

TEST(Exhaustion, BothPoolsStayValidAndGiveBackWhatTheyHad)
{
    bool more = true;
    for (unsigned grants = 0; more; ++grants) {
        const State before;
        bool valid = true;
        more = false;
        {
            karPageMemory fixed(40, 2);
            karVarPageMemory runs(100, 2); // page objects and storages come from size classes
            void *elements[7];
            void *arrays[5];
            {
                const SystemRefuses refusing(grants);
                for (void *&element : elements) {
                    element = fixed.newElement();
                    valid = valid && fixed.isValid();
                }
                for (void *&array : arrays) {
                    array = runs.newElement(1);
                    valid = valid && runs.isValid();
                }
                more = refusedHeap.refused > 0;
            }
            for (void *&element : elements)
                fixed.deleteElement(element);
            for (void *&array : arrays)
                runs.deleteElement(array, 1);
            valid = valid && fixed.isValid() && runs.isValid();
        }
        for (int number : {7, 8, 9}) // pages without storage
            AllocatorPeek::pool(*globalMemList, number).delete_all();
        const bool nothingLeft = State() == before;
        SCOPED_TRACE(grants);
        EXPECT_TRUE(valid);
        EXPECT_TRUE(nothingLeft);
        EXPECT_LT(grants, 200u);
    }
}

TEST(Exhaustion, AllocatorThatCannotBeCreatedIsNotStored)
{
    karGlobalMemory *const saved = globalMemList;
    char file[] = "file";
    const long before = refusedHeap.held;
    bool null = true;
    globalMemList = nullptr;
    for (unsigned grants : {0u, 1u}) { // the object, and its entry in the table of live blocks
        const SystemRefuses refusing(grants);
        null = null && !KarAllocMemory(20u, file, 1) && !globalMemList;
    }
    globalMemList = saved;
    const long after = refusedHeap.held;
    EXPECT_TRUE(null);
    EXPECT_EQ(after, before);
}

TEST(Exhaustion, TableOfLiveBlocksIsUsedToItsLastPlace)
{
    std::vector<void *> blocks(1000, nullptr);
    const State before;
    std::size_t had = 0;
    {
        const SystemRefuses refusing(1, RefusedHeap::tables); // the smallest table has 64 places, one of them empty
        while (had < blocks.size() && (blocks[had] = __AllocMemory(8)) != nullptr)
            ++had;
    }
    bool known = true;
    for (std::size_t i = 0; i < had; ++i)
        known = known && __MemorySize(blocks[i], 0) == 8;
    for (std::size_t i = 0; i < had; ++i)
        __FreeMemory(blocks[i]);
    const bool nothingLeft = State() == before;
    EXPECT_EQ(had, 63u);
    EXPECT_TRUE(known);
    EXPECT_TRUE(nothingLeft);
}

TEST(Exhaustion, PagesAreWalkedWhereTheirIndexHasNoRoom)
{
    for (unsigned tables : {0u, 1u, 2u, 3u, 4u, 5u}) {
        const State before;
        bool valid = true;
        bool front = true;
        int had = 0;
        {
            karPageMemory pool(40, 2);
            void *elements[400];
            {
                const SystemRefuses refusing(tables + 3,
                                             RefusedHeap::tables); // the table of live blocks needs some too
                for (; had < 400; ++had)
                    if (!(elements[had] = pool.newElement()))
                        break;
                valid = pool.isValid();
                for (int i = had - 2; i >= 0; i -= 50) {
                    void *const released = elements[i];
                    pool.deleteElement(elements[i]);
                    front = front && !elements[i];
                    elements[i] = pool.newElement();
                    front = front && elements[i] == released;
                }
                for (int i : {300, 100, 10})
                    if (i < had)
                        pool.deleteElement(elements[i]);
                valid = valid && pool.isValid();
            }
            front = front && pool.newElement() != nullptr;
        }
        const bool nothingLeft = State() == before;
        SCOPED_TRACE(tables);
        EXPECT_TRUE(valid);
        EXPECT_TRUE(front);
        EXPECT_TRUE(nothingLeft);
        EXPECT_GT(had, 20);
    }
}

TEST(Exhaustion, RecordsAreSearchedWhereTheirIndexHasNoRoom)
{
    for (unsigned grants : {0u, 1u, 2u}) {
        const State before;
        bool found = true;
        bool valid = true;
        {
            karMemory memory;
            for (int i = 0; i < 20; ++i)
                memory.dxnew(places + i, 1);
            const SystemRefuses refusing(grants);
            void *p = places + 5;
            memory.dxdelete(&p);
            found = p != nullptr;
            for (int i = 20; i < 900; ++i) // the page of records has room, the index doesn't grow
                memory.dxnew(places + i, 1);
            for (int i = 6; i < 900; i += 7) {
                p = places + i;
                memory.dxdelete(&p);
                found = found && p != nullptr;
                memory.dxdelete(&p);
                p = places + i;
                memory.dxdelete(&p);
                found = found && p == nullptr;
            }
            valid = memory.isValid();
        }
        const bool nothingLeft = State() == before;
        SCOPED_TRACE(grants);
        EXPECT_TRUE(found);
        EXPECT_TRUE(valid);
        EXPECT_TRUE(nothingLeft);
    }
}

#endif
