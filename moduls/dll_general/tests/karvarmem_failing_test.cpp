// The variable page pool without memory: each allocation that it makes fails in turn.
#include "failalloc.h"
#include "testvarpool.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

/// Blocks of all size classes that are in use.
int blocksInUse()
{
    int blocks = 0;
    for (const int number : {0, 7, 8, 9, 10})
        blocks += AllocatorPeek::pool(*globalMemList, number).getAnzElem();
    return blocks;
}

/// Each test gives back all blocks that it takes; chains apart are destroyed with their pool.
class KarVarPageMemory : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(blocksInUse(), before); }

    const int before = blocksInUse();
};

/// Pages of four elements, the first of them full, and then a page that can't be had: the next one
/// begins a chain apart.
class BrokenPool : public Pool {
public:
    BrokenPool() : Pool(8, 4), first(newElement(4))
    {
        const AllAllocationsFail failing;
        newElement(4);
    }

    void *first;
};

} // namespace

TEST_F(KarVarPageMemory, PageObjectThatCannotBeHadGivesNull)
{
    Pool pool(8, 10);
    {
        const AllAllocationsFail failing;
        EXPECT_EQ(pool.newElement(2), nullptr);
        EXPECT_EQ(pool.appendElement(2), nullptr);
        pool.speicher_Speed(1);
        EXPECT_EQ(pool.appendElement(2), nullptr);
        pool.speicher_Speed(0);
        EXPECT_EQ(pool.firstPage, nullptr);
        EXPECT_EQ(pool.lastPage, nullptr);
        EXPECT_EQ(pool.currentPage, nullptr);
        EXPECT_EQ(pool.getAnzElem(), 0);
    }
    EXPECT_EQ(blocksInUse(), before);
    EXPECT_EQ(pool.where(pool.newElement(2)), (Place{0, 0}));
}

TEST_F(KarVarPageMemory, StorageThatCannotBeHadLeavesAnEmptyPage)
{
    for (const int speed : {0, 1}) {
        {
            Pool pool(8, 10); // page object and storage come from the same size class
            pool.speicher_Speed(speed);
            {
                const NthAllocationFails failing(2);
                EXPECT_EQ(pool.newElement(2), nullptr);
                EXPECT_TRUE(failing.happened());
            }
            ASSERT_EQ(pool.pages().size(), 1u);
            karVarPage *const page = pool.firstPage;
            EXPECT_EQ(pool.lastPage, page);
            EXPECT_EQ(pool.currentPage, page);
            EXPECT_EQ(page->PageBegin(), nullptr);
            EXPECT_EQ(page->PageEnd(), nullptr);
            EXPECT_EQ(page->firstFreeElement(), nullptr);
            EXPECT_EQ(page->elementCount(), 0);
            EXPECT_EQ(page->elementSize(), 0);
            EXPECT_EQ(page->elementUsed(), 0);
            pool.checkMemory(); // the page has no run to try
            EXPECT_EQ(pool.used(), (Counts{0}));
            void *p = pool.newElement(2);
            EXPECT_EQ(pool.where(p), (Place{1, 0}));
            EXPECT_TRUE(pool.isValid());
            pool.deleteElement(p, 2);
            EXPECT_EQ(pool.used(), (Counts{0}));
        }
        EXPECT_EQ(blocksInUse(), before);
    }
}

TEST_F(KarVarPageMemory, ChainAfterAFailureStandsApart)
{
    Pool pool(8, 4);
    void *a = pool.newElement(3);
    for (int chain = 0; chain < 3; ++chain) { // three failures, three chains apart
        {
            const AllAllocationsFail failing;
            EXPECT_EQ(pool.newElement(4), nullptr);
        }
        EXPECT_EQ(pool.lastPage, nullptr);
        EXPECT_EQ(pool.currentPage, nullptr);
        EXPECT_EQ(pool.where(a), (Place{0, 0}));
        pool.checkMemory();

        void *const b = pool.newElement(4);
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(pool.lastPage->PageBegin(), b);
        EXPECT_EQ(pool.currentPage, pool.lastPage);
        EXPECT_EQ(pool.lastPage->prev(), nullptr);
        EXPECT_EQ(pool.pages().size(), 1u);
        EXPECT_EQ(pool.getAnzElem(), 3); // the chain of the first page alone

        void *p = b;
        pool.deleteElement(p, 4);
        EXPECT_EQ(p, b); // lies in no page of it
        EXPECT_EQ(pool.resizeElementLast(p, 4, 2), nullptr);

        void *const c = pool.newElement(4);
        EXPECT_EQ(pool.lastPage->PageBegin(), c);
        EXPECT_EQ(pool.lastPage->prev()->PageBegin(), b);
    }
    void *const last = pool.newElement(1); // the first chain still has room
    EXPECT_EQ(pool.where(last), (Place{0, 24}));
}

TEST_F(KarVarPageMemory, ChainApartIsTheWayInOnceTheFirstIsGone)
{
    BrokenPool pool;
    void *const b = pool.newElement(4);
    pool.deleteElement(pool.first, 4);
    EXPECT_EQ(pool.firstPage, nullptr);
    void *const c = pool.newElement(4); // no first page: one is appended behind the last
    EXPECT_EQ(pool.firstPage, pool.lastPage);
    EXPECT_EQ(pool.where(b), (Place{0, 0}));
    EXPECT_EQ(pool.where(c), (Place{1, 0}));
    void *p = b;
    pool.deleteElement(p, 4);
    EXPECT_EQ(pool.where(c), (Place{0, 0}));
    EXPECT_EQ(pool.getAnzElem(), 4);
}

TEST_F(KarVarPageMemory, ResizeMovesToTheChainApart)
{
    BrokenPool pool;
    void *const b = pool.newElement(1);
    std::memcpy(pool.first, "0123456789abcdef", 16);
    void *const moved = pool.resizeElementLast(pool.first, 4, 2);
    EXPECT_EQ(moved, pool.lastPage->PageBegin());
    EXPECT_EQ(pool.lastPage->prev()->PageBegin(), b);
    EXPECT_EQ(std::memcmp(moved, "0123456789abcdef", 16), 0);
}

TEST_F(KarVarPageMemory, CountingLetsTheChainApartInToo)
{
    BrokenPool pool;
    pool.newElement(3);
    pool.deleteElement(pool.first, 4);
    EXPECT_EQ(pool.getAnzElem(), 3);
    EXPECT_EQ(pool.firstPage, pool.lastPage);
}

TEST_F(KarVarPageMemory, EmptyPageAtTheStartOfAChainApartIsDropped)
{
    Pool pool(8, 40);
    void *const a = pool.newElement(40);
    {
        const AllAllocationsFail failing;
        pool.newElement(4);
    }
    pool.appendPage(1);
    pool.checkMemory(); // the only page of that chain
    EXPECT_EQ(pool.lastPage, nullptr);
    EXPECT_EQ(pool.where(a), (Place{0, 0}));

    karVarPage *const second = pool.appendPage(1);
    pool.appendPage(1);
    pool.deletePage(second); // the chain begins with its successor now
    EXPECT_EQ(pool.lastPage->prev(), nullptr);
}

TEST_F(KarVarPageMemory, ChainsApartThatAHostJoinsGoOnceOnly)
{
    for (int way = 0; way < 5; ++way) { // the sanitizer watches
        SCOPED_TRACE(way);
        {
            BrokenPool pool;
            karVarPage *const one = pool.appendPage(1);
            {
                const AllAllocationsFail failing;
                pool.newElement(4);
            }
            karVarPage *const two = pool.appendPage(1);
            switch (way) {
            case 0: // behind the first page
                one->append(pool.firstPage);
                EXPECT_EQ(pool.where(pool.newElement(4)), (Place{1, 0}));
                break;
            case 1: // in front of it
                two->insertFront(pool.firstPage);
                EXPECT_EQ(pool.where(pool.newElement(4)), (Place{0, 0}));
                break;
            case 2: // one behind the other, and the front one goes
                two->append(one);
                pool.deletePage(one);
                break;
            case 3:
                one->append(two);
                break;
            default: // reached instead of the first page
                two->append(pool.firstPage);
                one->append(two);
                pool.firstPage = one;
                break;
            }
        }
        EXPECT_EQ(blocksInUse(), before);
    }
}

TEST_F(KarVarPageMemory, RunIsShortenedInPlaceWithoutMemory)
{
    Pool pool(4, 6);
    void *const a = pool.newElement(6);
    void *p = a;
    {
        const AllAllocationsFail failing;
        EXPECT_EQ(pool.resizeElementLast(p, 6, 5), a); // the tail is too short, and there is no other place
        EXPECT_EQ(p, a);
        EXPECT_EQ(pool.used(), (Counts{6}));
        EXPECT_EQ(pool.resizeElementLast(p, 6, 4), a);
        EXPECT_EQ(p, a);
        EXPECT_EQ(pool.used(), (Counts{4}));
        EXPECT_EQ(pool.runs(0), (Runs{{16, 8}}));
        EXPECT_EQ(pool.resizeElementLast(p, 4, 9), a); // can't grow
        EXPECT_EQ(pool.used(), (Counts{4}));
    }
    EXPECT_TRUE(pool.isValid());
}

TEST_F(KarVarPageMemory, EveryAllocationMayFail)
{
    for (unsigned n = 1;; ++n) {
        bool happened;
        {
            Pool pool(4, 10);
            {
                const NthAllocationFails failing(n);
                void *runs[6];
                for (void *&run : runs) {
                    run = pool.newElement(7);
                    EXPECT_TRUE(pool.isValid());
                }
                for (void *&run : runs) {
                    void *const was = run;
                    void *const now = pool.resizeElementLast(run, 7, 4);
                    if (was && pool.where(now).first >= 0)
                        run = now;
                    EXPECT_TRUE(pool.isValid());
                }
                pool.checkMemory();
                for (void *&run : runs) {
                    pool.deleteElement(run, 4);
                    EXPECT_TRUE(pool.isValid());
                }
                happened = failing.happened();
            }
        }
        EXPECT_EQ(blocksInUse(), before) << n;
        if (!happened) {
            EXPECT_GT(n, 6u);
            break;
        }
    }
}
