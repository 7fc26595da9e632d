// The variable page pool: pages that come and go, first fit over them, runs that are shortened and moved.
#include "testvarpool.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

void fill(void *run, int bytes, int seed)
{
    for (int i = 0; i < bytes; ++i)
        static_cast<unsigned char *>(run)[i] = static_cast<unsigned char>(seed + i);
}

bool holds(const void *run, int bytes, int seed)
{
    for (int i = 0; i < bytes; ++i)
        if (static_cast<const unsigned char *>(run)[i] != static_cast<unsigned char>(seed + i))
            return false;
    return true;
}

} // namespace

TEST(KarVarPageMemory, FieldsStandInTheirOrder)
{
    Pool pool(8, 10);
    const long width = sizeof(void *);
    EXPECT_EQ(offsetIn(pool, pool.speicher_Speed_), width);
    EXPECT_EQ(offsetIn(pool, pool.firstPage), 2 * width);
    EXPECT_EQ(offsetIn(pool, pool.currentPage), 3 * width);
    EXPECT_EQ(offsetIn(pool, pool.lastPage), 4 * width);
    EXPECT_EQ(offsetIn(pool, pool.elementSize_), 5 * width);
    EXPECT_EQ(offsetIn(pool, pool.elementCount), 5 * width + 4);
}

TEST(KarVarPageMemory, AnswersItsIdFromThreeVirtualOperations)
{
    const Pool pool(8, 10);
    EXPECT_EQ(pool.GetType(), 4005);
    EXPECT_EQ(pool.CanCast(KAR_ID_VAR_PAGE_MEMORY), 1);
    EXPECT_EQ(pool.CanCast(KAR_ID_PAGE_MEMORY), 0);
    EXPECT_EQ(pool.CanCast(KAR_ID_LIST_OBJECT), 0);
    EXPECT_EQ(pool.listType(), 4005);
    EXPECT_EQ(pool.elementType(), 4005);
    EXPECT_EQ(slotOf(&karVarPageMemory::GetType), 0);
    EXPECT_EQ(slotOf(&karVarPageMemory::CanCast), 1);
    EXPECT_EQ(slotOf(&karVarPageMemory::listType), 2);

    class Other : public karVarPageMemory {
    public:
        Other() : karVarPageMemory(8, 1) {}
        ObjektIdies listType() const override { return KAR_ID_POINT; }
    };
    EXPECT_EQ(Other().elementType(), KAR_ID_POINT); // asks the virtual operation
}

TEST(KarVarPageMemory, NewPoolHasNoPage)
{
    Pool pool(12, 10);
    EXPECT_EQ(pool.speicher_Speed(), 0);
    EXPECT_EQ(pool.elementSize(), 12);
    EXPECT_EQ(pool.elementCount, 10);
    EXPECT_EQ(pool.minElementCount(), 0);
    EXPECT_EQ(pool.getAnzElem(), 0);
    EXPECT_EQ(pool.firstPage, nullptr);
    EXPECT_EQ(pool.currentPage, nullptr);
    EXPECT_EQ(pool.lastPage, nullptr);
    EXPECT_TRUE(pool.isValid());
    pool.speicher_Speed(3);
    EXPECT_EQ(pool.speicher_Speed(), 3);

    int elsewhere = 0;
    void *p = &elsewhere;
    pool.deleteElement(p, 1);
    EXPECT_EQ(p, &elsewhere);
    EXPECT_EQ(pool.resizeElementLast(p, 2, 1), nullptr);
    pool.checkMemory();
    EXPECT_EQ(pool.pages().size(), 0u);
}

TEST(KarVarPageMemory, PagesAreAppendedAndLeaveWithTheirLastRun)
{
    Pool pool(8, 4);
    void *a = pool.newElement(3);
    EXPECT_EQ(pool.where(a), (Place{0, 0}));
    EXPECT_EQ(pool.minElementCount(), 1);
    void *b = pool.newElement(4);
    EXPECT_EQ(pool.where(b), (Place{1, 0}));
    void *c = pool.newElement(9); // a page of its own size
    EXPECT_EQ(pool.where(c), (Place{2, 0}));
    EXPECT_EQ(pool.lastPage->elementCount(), 9);
    EXPECT_EQ(pool.used(), (Counts{3, 4, 9}));
    EXPECT_EQ(pool.getAnzElem(), 16);
    EXPECT_EQ(pool.firstPage, pool.pages()[0]);
    EXPECT_EQ(pool.lastPage, pool.pages()[2]);
    EXPECT_EQ(pool.currentPage, pool.lastPage);
    EXPECT_TRUE(pool.isValid());

    void *d = pool.newElement(1); // the first page has room
    EXPECT_EQ(pool.where(d), (Place{0, 24}));

    pool.deleteElement(b, 4);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(pool.used(), (Counts{4, 9}));
    EXPECT_EQ(pool.where(c), (Place{1, 0}));
    pool.deleteElement(c, 9);
    EXPECT_EQ(pool.lastPage, pool.firstPage);
    EXPECT_EQ(pool.currentPage, pool.firstPage);
    pool.deleteElement(a, 3);
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(pool.getAnzElem(), 1);
    pool.deleteElement(d, 1);
    EXPECT_EQ(pool.getAnzElem(), 0);
    EXPECT_EQ(pool.firstPage, nullptr);
    EXPECT_EQ(pool.currentPage, nullptr);
    EXPECT_EQ(pool.lastPage, nullptr);
    EXPECT_EQ(pool.minElementCount(), 0);
}

TEST(KarVarPageMemory, EntryPointsFallToTheNeighboursOfADeletedPage)
{
    Pool pool(8, 2);
    karVarPage *const pages[] = {pool.appendPage(1), pool.appendPage(1), pool.appendPage(1), pool.appendPage(1)};
    pool.deletePage(nullptr);
    ASSERT_EQ(pool.pages().size(), 4u);
    pool.deletePage(pages[1]); // neither first nor last: the three stay
    EXPECT_EQ(pool.firstPage, pages[0]);
    EXPECT_EQ(pool.currentPage, pages[3]);
    EXPECT_EQ(pool.lastPage, pages[3]);
    pool.deletePage(pages[0]); // no predecessor
    EXPECT_EQ(pool.firstPage, pages[2]);
    pool.currentPage = pages[2];
    pool.firstPage = pages[3];
    pool.deletePage(pages[3]); // no successor
    EXPECT_EQ(pool.firstPage, pages[2]);
    EXPECT_EQ(pool.lastPage, pages[2]);
    EXPECT_EQ(pool.currentPage, pages[2]);

    karVarPage *const behind = pool.appendPage(1);
    pool.lastPage = pages[2];
    pool.currentPage = pages[2];
    pool.deletePage(pages[2]); // the successor comes first
    EXPECT_EQ(pool.lastPage, behind);
    EXPECT_EQ(pool.currentPage, behind);
    EXPECT_EQ(pool.firstPage, behind);
}

TEST(KarVarPageMemory, FirstPageFallsToItsPredecessor)
{
    Pool pool(8, 2);
    karVarPage *const front = pool.appendPage(1);
    karVarPage *const middle = pool.appendPage(1);
    pool.appendPage(1);
    pool.firstPage = middle;
    pool.deletePage(middle);
    EXPECT_EQ(pool.firstPage, front);
}

TEST(KarVarPageMemory, PointerInNoPageChangesNothing)
{
    Pool pool(8, 4);
    void *const a = pool.newElement(4);
    int elsewhere = 0;
    void *p = &elsewhere;
    pool.deleteElement(p, 1);
    EXPECT_EQ(p, &elsewhere);
    EXPECT_EQ(pool.resizeElementLast(p, 2, 1), nullptr);
    EXPECT_EQ(p, &elsewhere);
    p = at(a, 25); // behind the start of the last element
    pool.deleteElement(p, 1);
    EXPECT_EQ(p, at(a, 25));
    p = nullptr;
    pool.deleteElement(p, 1);
    EXPECT_EQ(pool.resizeElementLast(p, 2, 1), nullptr);
    EXPECT_EQ(pool.used(), (Counts{4}));
}

TEST(KarVarPageMemory, ReleaseOfAFreeRunOnlyClearsThePointer)
{
    Pool pool(8, 4);
    void *const a = pool.newElement(2);
    pool.newElement(1);
    void *p = a;
    pool.deleteElement(p, 2);
    EXPECT_EQ(p, nullptr);
    p = a;
    pool.deleteElement(p, 2);
    EXPECT_EQ(p, nullptr);
    p = a;
    pool.deleteElement(p, 0);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(pool.used(), (Counts{1}));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {24, 8}}));
}

TEST(KarVarPageMemory, PageTooSmallForTheSmallestRunIsAppendedInVain)
{
    Pool pool(4, 1);
    EXPECT_EQ(pool.newElement(1), nullptr); // a page of 4 bytes, the smallest run has 8
    EXPECT_EQ(pool.newElement(1), nullptr);
    EXPECT_EQ(pool.used(), (Counts{0, 0}));
    EXPECT_EQ(pool.where(pool.newElement(2)), (Place{2, 0}));
}

TEST(KarVarPageMemory, ProductBeyondTheRangeIsAFailedStorage)
{
    Pool pool(1000, 4);
    EXPECT_EQ(pool.newElement(INT_MAX), nullptr);
    ASSERT_EQ(pool.pages().size(), 1u); // the page stands empty in the chain
    EXPECT_EQ(pool.pages()[0]->elementCount(), 0);
    EXPECT_TRUE(pool.isValid());
    EXPECT_EQ(pool.where(pool.newElement(1)), (Place{1, 0}));
}

TEST(KarVarPageMemory, FastPathLooksAtTheEndOfTheLastPage)
{
    Pool pool(8, 6);
    void *a = pool.newElement(2);
    void *b = pool.newElement(2);
    pool.newElement(2);
    void *const other = pool.newElement(2);
    EXPECT_EQ(pool.where(other), (Place{1, 0}));
    pool.newElement(1);
    pool.deleteElement(a, 2);
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}}));
    pool.speicher_Speed(1);
    EXPECT_EQ(pool.where(pool.appendElement(2)), (Place{1, 24})); // not the gap of the first page
    EXPECT_EQ(pool.where(pool.appendElement(2)), (Place{2, 0}));
    EXPECT_EQ(pool.where(pool.newElement(2)), (Place{0, 0})); // takes earlier pages first all the same
    pool.speicher_Speed(0);
    pool.deleteElement(b, 2);
    EXPECT_EQ(pool.where(pool.appendElement(2)), (Place{0, 16}));
}

TEST(KarVarPageMemory, FastPathTakesTheLastRunOfThePage)
{
    Pool pool(8, 8);
    void *a = pool.newElement(2);
    pool.newElement(2);
    pool.deleteElement(a, 2);
    ASSERT_EQ(pool.runs(0), (Runs{{0, 16}, {32, 32}}));
    pool.speicher_Speed(-1);
    EXPECT_EQ(pool.where(pool.appendElement(2)), (Place{0, 32})); // the exact run in front isn't seen
    EXPECT_EQ(pool.where(pool.newElement(2)), (Place{0, 48}));    // the last page goes the same way
}

TEST(KarVarPageMemory, CheckMemoryDropsAnEmptyLastPage)
{
    Pool pool(8, 50);
    void *const a = pool.newElement(30);
    pool.appendPage(1);
    ASSERT_EQ(pool.used(), (Counts{30, 0}));
    pool.checkMemory();
    EXPECT_EQ(pool.used(), (Counts{30}));
    pool.checkMemory(); // in use and without room for 40
    EXPECT_EQ(pool.used(), (Counts{30}));
    EXPECT_EQ(pool.runs(0), (Runs{{240, 160}}));

    Pool roomy(8, 50);
    roomy.newElement(5);
    roomy.checkMemory();
    EXPECT_EQ(roomy.used(), (Counts{5}));
    EXPECT_EQ(roomy.runs(0), (Runs{{40, 360}}));

    Pool parted(6, 100); // a dropped element parts the free runs of an unused page
    void *const front = parted.newElement(60);
    void *const dropped = parted.newElement(1);
    void *const rest = parted.newElement(39);
    for (const auto &[run, count] : {std::pair{dropped, 1}, std::pair{front, 60}, std::pair{rest, 39}}) {
        void *p = run;
        parted.lastPage->deleteElement(p, count);
    }
    ASSERT_EQ(parted.runs(0), (Runs{{0, 360}, {366, 234}}));
    parted.checkMemory(); // the room for 40 need not be the last run
    EXPECT_EQ(parted.used(), Counts{});

    Pool small(8, 39);
    small.appendPage(1);
    small.checkMemory(); // no room for 40 elements
    EXPECT_EQ(small.used(), (Counts{0}));
    EXPECT_NE(a, nullptr);
}

TEST(KarVarPageMemory, ResizeMovesIntoAnEarlierGapAndOnlyTheResultTells)
{
    Pool pool(8, 10);
    void *a = pool.newElement(2);
    void *const b = pool.newElement(4);
    fill(b, 32, 3);
    pool.deleteElement(a, 2);
    void *p = b;
    void *const moved = pool.resizeElementLast(p, 4, 2);
    EXPECT_EQ(pool.where(moved), (Place{0, 0}));
    EXPECT_EQ(p, b);
    EXPECT_TRUE(holds(moved, 16, 3));
    EXPECT_EQ(pool.runs(0), (Runs{{16, 64}}));
    EXPECT_EQ(pool.used(), (Counts{2}));
}

TEST(KarVarPageMemory, ResizeStaysInPlaceWhereTheNextGapIsDirectlyBehind)
{
    Pool pool(8, 10);
    void *const a = pool.newElement(4);
    fill(a, 32, 9);
    void *p = a;
    EXPECT_EQ(pool.resizeElementLast(p, 4, 2), a);
    EXPECT_EQ(p, a);
    EXPECT_TRUE(holds(a, 16, 9));
    EXPECT_EQ(pool.runs(0), (Runs{{16, 64}}));
    EXPECT_EQ(pool.used(), (Counts{2}));
}

TEST(KarVarPageMemory, OldRunEndsAtTheSmallestRun)
{
    Pool pool(4, 10);
    void *const a = pool.newElement(1); // takes two
    fill(a, 4, 5);
    void *p = a;
    // The run directly behind is given back, and taken again since nothing can be cut off: now p has the new address.
    void *const moved = pool.resizeElementLast(p, 1, 1);
    EXPECT_EQ(pool.where(moved), (Place{0, 8}));
    EXPECT_EQ(p, moved);
    EXPECT_TRUE(holds(moved, 4, 5));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 8}, {16, 24}}));
    EXPECT_EQ(pool.used(), (Counts{2}));
}

TEST(KarVarPageMemory, ResizeMovesWhereTheTailIsTooShortAndThePointerFollows)
{
    for (const int speed : {0, 1}) {
        Pool pool(4, 10);
        pool.speicher_Speed(speed);
        void *const a = pool.newElement(4);
        fill(a, 16, 40);
        void *p = a;
        void *const moved = pool.resizeElementLast(p, 4, 3);
        EXPECT_EQ(pool.where(moved), (Place{0, 16}));
        EXPECT_EQ(p, moved);
        EXPECT_TRUE(holds(moved, 12, 40));
        EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {28, 12}}));
        EXPECT_EQ(pool.used(), (Counts{3}));
    }
}

TEST(KarVarPageMemory, ResizeWithoutRoomReturnsThePointer)
{
    Pool pool(4, 4);
    void *const a = pool.newElement(4);
    fill(a, 16, 1);
    void *p = a;
    // Three elements leave 4 of the 16 bytes of a new page: both attempts append one in vain.
    EXPECT_EQ(pool.resizeElementLast(p, 4, 3), a);
    EXPECT_EQ(p, a);
    EXPECT_TRUE(holds(a, 16, 1));
    EXPECT_EQ(pool.used(), (Counts{4, 0, 0}));
}

TEST(KarVarPageMemory, ResizeMovesToANewPageAndTheEmptiedOneStays)
{
    Pool pool(4, 6);
    void *const a = pool.newElement(6);
    fill(a, 24, 60);
    void *p = a;
    void *const moved = pool.resizeElementLast(p, 6, 4);
    EXPECT_EQ(pool.where(moved), (Place{1, 0}));
    EXPECT_EQ(p, a);
    EXPECT_TRUE(holds(moved, 16, 60));
    EXPECT_EQ(pool.used(), (Counts{0, 4}));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 24}}));
    EXPECT_EQ(pool.where(pool.newElement(6)), (Place{0, 0}));
}

TEST(KarVarPageMemory, FastPathCutsTheTailOffInPlace)
{
    Pool pool(8, 10);
    void *a = pool.newElement(2);
    void *const b = pool.newElement(4);
    pool.deleteElement(a, 2);
    pool.speicher_Speed(1);
    void *p = b;
    EXPECT_EQ(pool.resizeElementLast(p, 4, 2), b); // the gap in front isn't used
    EXPECT_EQ(p, b);
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {32, 48}}));
}

TEST(KarVarPageMemory, ResizeToNothingEmptiesThePageOnTheFastPathAlone)
{
    Pool pool(8, 10);
    void *const a = pool.newElement(2);
    void *p = a;
    // The attempt to move takes the smallest run directly behind; giving back 0 elements of it does nothing.
    EXPECT_EQ(pool.resizeElementLast(p, 2, 0), a);
    EXPECT_EQ(p, a);
    EXPECT_EQ(pool.used(), (Counts{1}));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {24, 56}}));

    Pool fast(8, 10);
    fast.speicher_Speed(1);
    p = fast.newElement(2);
    EXPECT_EQ(fast.resizeElementLast(p, 2, 0), nullptr); // the page is empty, which clears p
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(fast.used(), (Counts{0})); // and stays
}

TEST(KarVarPageMemory, GrowingMovesWhatThePageHas)
{
    Pool pool(8, 12);
    void *const a = pool.newElement(2);
    pool.newElement(2); // its bytes are copied along
    fill(a, 32, 0);
    void *p = a;
    void *const moved = pool.resizeElementLast(p, 2, 4);
    EXPECT_EQ(pool.where(moved), (Place{0, 32}));
    EXPECT_EQ(p, a);
    EXPECT_TRUE(holds(moved, 32, 0));
    EXPECT_EQ(pool.used(), (Counts{6}));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {64, 32}}));

    Pool last(8, 10);
    last.newElement(8);
    void *const c = last.newElement(2);
    fill(c, 16, 90);
    p = c;
    void *const grown = last.resizeElementLast(p, 2, 4); // 16 of the 32 bytes lie behind the page
    EXPECT_EQ(last.where(grown), (Place{1, 0}));
    EXPECT_TRUE(holds(grown, 16, 90));
    EXPECT_EQ(last.used(), (Counts{8, 4}));

    Pool gap(8, 16);
    gap.newElement(12);
    void *const d = gap.newElement(4);
    fill(d, 32, 90);
    gap.newElement(10);
    void *freed = gap.newElement(6);
    fill(freed, 48, 150);
    gap.deleteElement(freed, 6);
    p = d;
    void *const rest = gap.resizeElementLast(p, 4, 6); // 16 of the 48 bytes lie behind the page
    EXPECT_EQ(gap.where(rest), (Place{1, 80}));
    EXPECT_TRUE(holds(rest, 32, 90));
    EXPECT_TRUE(holds(static_cast<char *>(rest) + 32, 16, 182)); // as they were
}

TEST(KarVarPageMemory, GrowingOntoTheRunDirectlyBehindOverlaps)
{
    Pool pool(8, 10);
    void *const a = pool.newElement(2);
    fill(a, 16, 70);
    void *p = a;
    void *const moved = pool.resizeElementLast(p, 2, 4);
    EXPECT_EQ(pool.where(moved), (Place{0, 16}));
    EXPECT_EQ(p, moved);
    EXPECT_TRUE(holds(moved, 16, 70));
    EXPECT_EQ(pool.runs(0), (Runs{{0, 16}, {48, 32}}));
}

TEST(KarVarPageMemory, NewRunThatIsAloneOnItsPageIsGivenBackThroughTheOldPage)
{
    Pool pool(1, 16);
    void *const a = pool.newElement(16);
    fill(a, 16, 20);
    void *p = a;
    // The new run has a page of its own, where 8 elements of 1 byte in use equal the new count.
    EXPECT_EQ(pool.resizeElementLast(p, 16, 8), a);
    EXPECT_EQ(p, a);
    EXPECT_TRUE(holds(a, 8, 20));
    // The old page counts both the run that isn't its own and the tail; the new one keeps its count.
    EXPECT_EQ(pool.used(), (Counts{0, 8}));
    EXPECT_EQ(pool.runs(1), (Runs{{8, 8}}));
    if (wide) {
        EXPECT_EQ(pool.runs(0), (Runs{{8, 8}}));
    } else {
        EXPECT_EQ(pool.runs(0).size(), 2u);
    }
}

TEST(KarVarPageMemory, PointerThatStandsInItsRunIsNotWrittenTo)
{
    for (const bool pageStays : {false, true})
        for (const std::size_t place : {0u, 1u, 3u}) {
            Pool pool(8, 8);
            void *other = pageStays ? pool.newElement(2) : nullptr;
            void **const run = static_cast<void **>(pool.newElement(4));
            run[place] = run;
            pool.deleteElement(run[place], 4);
            EXPECT_EQ(pool.used(), pageStays ? Counts{2} : Counts{});
            EXPECT_TRUE(pool.isValid());
            if (pageStays) {
                EXPECT_EQ(pool.runs(0), (Runs{{16, 48}}));
            }
            pool.deleteElement(other, 2);
            EXPECT_EQ(other, nullptr);
        }
}

TEST(KarVarPageMemory, PointerInATailOrInARunThatMovesIsNotWrittenTo)
{
    constexpr std::size_t tail = 16 / sizeof(void *); // of a run that is shortened to 2 elements
    for (const std::size_t place : {tail, tail + 1, tail + 2}) {
        Pool pool(8, 8);
        pool.speicher_Speed(1);
        void **const run = static_cast<void **>(pool.newElement(6));
        run[place] = run;
        EXPECT_EQ(pool.resizeElementLast(run[place], 6, 2), run);
        EXPECT_EQ(pool.runs(0), (Runs{{16, 48}}));
        EXPECT_EQ(pool.used(), Counts{2});
    }
    for (const std::size_t place : {0u, 1u, 2u}) { // of the same length, which moves
        Pool pool(8, 8);
        pool.speicher_Speed(1);
        void **const run = static_cast<void **>(pool.newElement(3));
        run[place] = run;
        EXPECT_EQ(pool.resizeElementLast(run[place], 3, 3), reinterpret_cast<char *>(run) + 24);
        EXPECT_EQ(pool.runs(0), (Runs{{0, 24}, {48, 16}}));
        EXPECT_EQ(pool.used(), Counts{3});
    }
    for (const std::size_t place : {0u, 1u, 2u}) { // given up whole
        Pool pool(8, 8);
        pool.speicher_Speed(1);
        void **const run = static_cast<void **>(pool.newElement(6));
        run[place] = run;
        EXPECT_EQ(pool.resizeElementLast(run[place], 6, 0), nullptr);
        EXPECT_EQ(pool.runs(0), (Runs{{0, 64}}));
    }
}

TEST(KarVarPageMemory, PointerInTheLastElementOfThePageIsNotWrittenTo)
{
    constexpr std::size_t wordsPerElement = 32 / sizeof(void *);
    constexpr std::size_t inLastElement = 3 * wordsPerElement + 2; // behind the address at which `search` ends
    {
        Pool pool(32, 4);
        void **const run = static_cast<void **>(pool.newElement(4));
        run[inLastElement] = run;
        pool.deleteElement(run[inLastElement], 4); // and the page goes
        EXPECT_EQ(pool.used(), Counts{});
    }
    {
        Pool pool(32, 4);
        pool.speicher_Speed(1);
        void **const run = static_cast<void **>(pool.newElement(4));
        run[inLastElement] = run;
        EXPECT_EQ(pool.resizeElementLast(run[inLastElement], 4, 0), nullptr); // given up whole
        EXPECT_EQ(run[inLastElement], run);
    }
    {
        Pool pool(32, 4);
        pool.speicher_Speed(1);
        void *const low = pool.newElement(2);
        void **const run = static_cast<void **>(pool.newElement(2));
        void *&place = run[inLastElement - 2 * wordsPerElement];
        void *p = low;
        pool.deleteElement(p, 2);
        place = run;
        EXPECT_EQ(pool.resizeElementLast(place, 2, 2), low); // moves
        EXPECT_EQ(place, run);
    }
    Pool pool(32, 4);
    void *other = pool.newElement(3);
    void **const run = static_cast<void **>(pool.newElement(1));
    run[2] = run;
    pool.deleteElement(run[2], 1);
    EXPECT_EQ(run[2], run);
    EXPECT_TRUE(pool.isValid());
    pool.deleteElement(other, 3);
}

TEST(KarVarPageMemory, PointerInAPageThatGoesIsNotWrittenTo)
{
    Pool pool(16, 4);
    void **const low = static_cast<void **>(pool.newElement(1));
    low[1] = pool.newElement(1);
    pool.deleteElement(low[1], 2); // a count that takes the run of the pointer along
    EXPECT_EQ(pool.used(), Counts{});
}

TEST(KarVarPageMemory, PointerDirectlyBehindTheRunIsCleared)
{
    Pool pool(16, 4);
    void *const low = pool.newElement(2);
    void **const high = static_cast<void **>(pool.newElement(2));
    *high = low;
    pool.deleteElement(*high, 2);
    EXPECT_EQ(*high, nullptr);
    EXPECT_EQ(pool.runs(0), (Runs{{0, 32}}));
}

TEST(KarVarPageMemory, PointerInARunThatIsNotReleasedIsCleared)
{
    Pool pool(16, 4);
    void **const low = static_cast<void **>(pool.newElement(2));
    *low = pool.newElement(2);
    pool.deleteElement(*low, 2);
    EXPECT_EQ(*low, nullptr);
    EXPECT_EQ(pool.runs(0), (Runs{{32, 32}}));
    *low = low;
    pool.deleteElement(*low, 0); // releases nothing, so that it is cleared in the run itself too
    EXPECT_EQ(*low, nullptr);
    EXPECT_EQ(pool.used(), Counts{2});
}

TEST(KarVarPageMemory, CopySharesEveryField)
{
    Pool pool(8, 4);
    pool.speicher_Speed(2);
    pool.newElement(3);
    pool.appendPage(1);
    alignas(Pool) unsigned char bytes[2][sizeof(Pool)]; // the copies are never destroyed: the pages are the source's
    Pool *const copy = new (static_cast<void *>(bytes[0])) Pool(pool);
    Pool *const assigned = new (static_cast<void *>(bytes[1])) Pool(20, 30);
    *assigned = pool;
    for (Pool *shared : {copy, assigned}) {
        EXPECT_EQ(shared->speicher_Speed(), 2);
        EXPECT_EQ(shared->firstPage, pool.firstPage);
        EXPECT_EQ(shared->currentPage, pool.currentPage);
        EXPECT_EQ(shared->lastPage, pool.lastPage);
        EXPECT_EQ(shared->elementSize(), 8);
        EXPECT_EQ(shared->elementCount, 4);
        EXPECT_EQ(shared->getAnzElem(), 3);
    }
}

TEST(KarVarPageMemory, AssignedToItselfKeepsItsPages)
{
    Pool pool(8, 4);
    void *const a = pool.newElement(4);
    const Pool &same = pool;
    pool = same;
    EXPECT_EQ(pool.where(a), (Place{0, 0}));
    EXPECT_EQ(pool.getAnzElem(), 4);
}

TEST(KarVarPageMemory, DestructorDestroysEveryPageOfTheChain)
{
    Pool pool(8, 4); // the leak sanitizer watches
    for (int i = 0; i < 5; ++i)
        pool.newElement(4);
    pool.firstPage = pool.pages()[2]; // the way in may be any page
}

TEST(KarVarPageMemory, CountingStartsFromTheLastPageWithoutAFirst)
{
    Pool pool(8, 4);
    pool.newElement(3);
    pool.firstPage = nullptr;
    EXPECT_EQ(pool.getAnzElem(), 3);
    EXPECT_EQ(pool.firstPage, pool.lastPage);
}
