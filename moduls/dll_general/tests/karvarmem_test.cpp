// Nodes of free runs and variable pages. What callers damage on purpose stands at the end; pools and long random
// sequences stand in karvarmem_pool_test.cpp and karvarmem_model_test.cpp.
#include "testvarpool.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>

namespace {

class Page : public karVarPage {
public:
    Page(int size, int count, karVarPage *before = nullptr) : karVarPage(before, size, count) {}
    Page(const Page &) = default;
    Page &operator=(const Page &) = default;

    using karVarPage::elementFullSize_;
    using karVarPage::elementUsed_;
    using karVarPage::firstFreeElement_;
    using karVarPage::firstPageElement_;
    using karVarPage::minElementCount_;
    using karVarPage::takeRange;

    char *place(int offset) { return at(firstPageElement(), offset); }
    int offset(const void *p) { return static_cast<int>(static_cast<const char *>(p) - place(0)); }
    /// Runs of two elements side by side, from the start of an unused page on.
    void takePairs(int count)
    {
        for (int run = 0; run < count; ++run)
            take(2);
    }
    int take(int count, int fromEnd = 0)
    {
        void *const run = newElement(count, fromEnd);
        return run ? offset(run) : -1;
    }
    /// Releases and tells whether the page gave the sign that it is empty.
    bool give(int position, int count)
    {
        void *p = place(position);
        deleteElement(p, count);
        EXPECT_TRUE(!p || p == place(position));
        return !p;
    }
    Runs runs()
    {
        Runs list;
        for (karFreeVarElement *run = firstFreeElement(); run && list.size() < 100; run = run->next())
            list.emplace_back(offset(run), run->getSize());
        return list;
    }
};

/// A free list of one's own in the storage of a page: runs at offsets, in this order.
void setRuns(Page &page, const Runs &runs)
{
    karFreeVarElement *next = nullptr;
    for (auto run = runs.rbegin(); run != runs.rend(); ++run)
        next = new (page.place(run->first)) karFreeVarElement(next, run->second);
    page.firstFreeElement_ = next;
}

} // namespace

TEST(KarVarPage, IsValidSeesRunsThatNoPageHas)
{
    Page page(4, 25); // 100 bytes
    const Runs valid[] = {{}, {{0, 100}}, {{92, 8}}, {{0, 8}, {9, 91}}, {{8, 40}, {56, 8}, {92, 8}}};
    for (const Runs &runs : valid) {
        setRuns(page, runs);
        EXPECT_TRUE(page.isValid()) << runs.size();
    }
    const Runs damaged[] = {{{0, 7}},         {{0, 0}},           {{0, 101}},       {{92, 9}},
                            {{0, 8}, {8, 8}}, {{40, 8}, {20, 8}}, {{0, 8}, {16, 4}}};
    for (const Runs &runs : damaged) {
        setRuns(page, runs);
        EXPECT_FALSE(page.isValid()) << runs.back().first << ' ' << runs.back().second;
    }
    setRuns(page, {{0, 8}});
    page.elementUsed_ = 23;
    EXPECT_TRUE(page.isValid());
    page.elementUsed_ = 24; // 96 bytes and 8
    EXPECT_FALSE(page.isValid());
    page.elementUsed_ = -1;
    EXPECT_FALSE(page.isValid());
    page.elementUsed_ = 0;
    setRuns(page, {{0, 100}});
}

TEST(KarFreeVarElement, IsEightBytesThatMayLieAnywhere)
{
    EXPECT_EQ(sizeof(karFreeVarElement), 8u);
    EXPECT_EQ(alignof(karFreeVarElement), 1u);
    char bytes[64];
    auto *const second = new (bytes + 37) karFreeVarElement(nullptr, 21);
    auto *const first = new (bytes + 3) karFreeVarElement(second, 9);
    EXPECT_EQ(first->next(), second);
    EXPECT_EQ(first->getSize(), 9);
    EXPECT_EQ(second->next(), nullptr);
    EXPECT_EQ(second->getSize(), 21);
    EXPECT_EQ(second->next(first), second); // a link to a lower address too
    EXPECT_EQ(second->next(), first);
    first->setSize(-5);
    EXPECT_EQ(first->getSize(), -5);
    EXPECT_EQ(first->next(), second);
    EXPECT_EQ(first->next(static_cast<karFreeVarElement *>(nullptr)), first);
    EXPECT_EQ(first->next(), nullptr);
}

TEST(KarFreeVarElement, TellsTheAddressesAroundItsRun)
{
    char bytes[40];
    auto *const run = new (bytes + 5) karFreeVarElement(nullptr, 12);
    EXPECT_EQ(run->start(), bytes + 5);
    EXPECT_EQ(run->end(), bytes + 16);
    EXPECT_EQ(run->prevEnd(), bytes + 4);
    EXPECT_EQ(run->nextStart(), bytes + 17);
}

TEST(KarFreeVarElement, CopiesLinkToTheSameRun)
{
    char bytes[64];
    auto *const target = new (bytes + 48) karFreeVarElement(nullptr, 8);
    auto *const source = new (bytes + 1) karFreeVarElement(target, 11);
    auto *const copy = new (bytes + 16) karFreeVarElement(*source);
    EXPECT_EQ(copy->next(), target);
    EXPECT_EQ(copy->getSize(), 11);
    auto *const assigned = new (bytes + 30) karFreeVarElement(source, 77);
    *assigned = *copy;
    EXPECT_EQ(assigned->next(), target);
    EXPECT_EQ(assigned->getSize(), 11);
    karFreeVarElement &self = *assigned;
    *assigned = self;
    EXPECT_EQ(assigned->next(), target);
}

TEST(KarFreeVarElement, LastIsTheTailOfTheList)
{
    char bytes[64];
    auto *const third = new (bytes + 40) karFreeVarElement(nullptr, 8);
    auto *const second = new (bytes + 20) karFreeVarElement(third, 8);
    auto *const first = new (bytes + 2) karFreeVarElement(second, 8);
    EXPECT_EQ(first->last(), third);
    EXPECT_EQ(second->last(), third);
    EXPECT_EQ(third->last(), third);
}

TEST(KarFreeVarElement, LinkOutOfReachReadsAsNullWithWidePointers)
{
    char bytes[16];
    auto *const run = new (bytes) karFreeVarElement(nullptr, 8);
    if (!wide) { // the link is the pointer itself
        run->next(run);
        void *link;
        std::memcpy(&link, bytes, sizeof link);
        EXPECT_EQ(link, run);
        return;
    }
    const auto apart = [run](std::int64_t distance) {
        return reinterpret_cast<karFreeVarElement *>(reinterpret_cast<std::uintptr_t>(run) +
                                                     static_cast<std::uintptr_t>(distance));
    };
    for (const std::int64_t distance : {1ll, 8ll, 0x7fffffffll, -1ll, -0x80000000ll}) {
        run->next(apart(distance));
        EXPECT_EQ(run->next(), apart(distance)) << distance;
    }
    for (const std::int64_t distance : {0ll, 0x80000000ll, -0x80000001ll, 0x100000000ll, 0x100000008ll}) {
        run->next(apart(distance));
        EXPECT_EQ(run->next(), nullptr) << distance;
    }
}

TEST(KarVarPage, FieldsStandBehindThoseOfTheBase)
{
    Page page(8, 4);
    EXPECT_EQ(offsetIn(page, page.minElementCount_) - offsetIn(page, page.firstFreeElement_),
              static_cast<long>(sizeof(void *)));
    EXPECT_GT(offsetIn(page, page.firstFreeElement_), offsetIn(page, page.elementUsed_));
    if (!wide) {
        EXPECT_EQ(offsetIn(page, page.firstFreeElement_), 32);
        EXPECT_EQ(offsetIn(page, page.minElementCount_), 36);
    }
}

TEST(KarVarPage, IsAPageByTypeAndAddsNoVirtualOperation)
{
    Page page(8, 4);
    EXPECT_EQ(page.GetType(), 60);
    EXPECT_EQ(page.CanCast(KAR_ID_LIST_OBJECT), 1);
    EXPECT_EQ(page.ListObjectOk(), 1);
    EXPECT_EQ(page.PageBegin(), page.firstPageElement());
    EXPECT_EQ(page.PageEnd(), page.lastPageElement());
}

TEST(KarVarPage, SmallestRunIsEightBytesDividedByTheElementAndRounded)
{
    // 8 / size + 0.5, truncated: 8.5, 4.5, 3.17, 2.5, 2.1, 1.83, 1.64, 1.5, ... 1.0 at 16, 0.97 at 17
    const int expected[] = {8, 4, 3, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0};
    for (int size = 1; size <= 20; ++size) {
        const Page page(size, 16);
        EXPECT_EQ(page.minElementCount(), expected[size - 1]) << size;
    }
    EXPECT_EQ(Page(1000, 2).minElementCount(), 0);
}

TEST(KarVarPage, FreshPageIsOneFreeRun)
{
    Page page(12, 5);
    EXPECT_EQ(page.runs(), (Runs{{0, 60}}));
    EXPECT_EQ(page.firstFreeElement(), page.firstPageElement());
    EXPECT_EQ(page.lastPageElement(), page.place(48)); // the start of the last element
    EXPECT_EQ(page.elementSize(), 12);
    EXPECT_EQ(page.elementCount(), 5);
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPage, PageThatIsShorterThanANodeServesItsOnlyRun)
{
    Page page(6, 1);
    EXPECT_EQ(page.runs(), (Runs{{0, 6}}));
    EXPECT_TRUE(page.isValid());
    EXPECT_EQ(page.take(1), 0);
    EXPECT_EQ(page.runs(), Runs());
    EXPECT_TRUE(page.give(0, 1)); // too short for a node: dropped
    EXPECT_EQ(page.runs(), Runs());

    Page seven(7, 1);
    EXPECT_EQ(seven.take(1), 0);
    Page two(2, 1); // the smallest run is 4 elements
    EXPECT_EQ(two.runs(), (Runs{{0, 2}}));
    EXPECT_EQ(two.take(1), -1);
}

TEST(KarVarPage, PageWithoutStorageStandsEmpty)
{
    const std::pair<int, int> requests[] = {
        {0x10000, 0x10000}, {0x10000, 0x8000}, {INT_MAX, INT_MAX}, {0, 5},         {5, 0}, {-5, 1}, {1, -5},
        {-2, -3},           {INT_MIN, 1},      {INT_MIN, INT_MIN}, {0x7ffffffc, 2}};
    for (const auto &request : requests) {
        Page page(request.first, request.second);
        SCOPED_TRACE(request.first);
        EXPECT_EQ(page.firstPageElement(), nullptr);
        EXPECT_EQ(page.lastPageElement(), nullptr);
        EXPECT_EQ(page.firstFreeElement(), nullptr);
        EXPECT_EQ(page.elementSize(), 0);
        EXPECT_EQ(page.elementCount(), 0);
        EXPECT_EQ(page.elementUsed(), 0);
        EXPECT_TRUE(page.isValid());
        EXPECT_EQ(page.newElement(1, 0), nullptr);
        EXPECT_EQ(page.newElement(1, 1), nullptr);
        int elsewhere[4] = {1, 2, 3, 4};
        void *p = elsewhere;
        EXPECT_EQ(page.search(p), nullptr);
        page.deleteElement(p, 1); // the count is at 0 afterwards, the sign of an empty page
        EXPECT_EQ(p, nullptr);
        EXPECT_EQ(elsewhere[0], 1);
        EXPECT_EQ(page.elementUsed(), 0);
    }
}

TEST(KarVarPage, SearchEndsAtTheStartOfTheLastElement)
{
    Page page(8, 4);
    EXPECT_EQ(page.search(page.place(0)), &page);
    EXPECT_EQ(page.search(page.place(23)), &page);
    EXPECT_EQ(page.search(page.place(24)), &page);
    EXPECT_EQ(page.search(page.place(25)), nullptr);
    EXPECT_EQ(page.search(page.place(-1)), nullptr);
    EXPECT_EQ(page.search(nullptr), nullptr);
}

TEST(KarVarPage, NavigatesItsChainWithItsOwnType)
{
    auto *const first = new karVarPage(nullptr, 8, 2);
    auto *const second = new karVarPage(first, 8, 2);
    auto *const third = new karVarPage(first, 8, 2); // behind the whole chain
    karVarPage *page = first->next();
    EXPECT_EQ(page, second);
    page = third->prev();
    EXPECT_EQ(page, second);
    EXPECT_EQ(third->first(), first);
    EXPECT_EQ(first->last(), third);
    EXPECT_EQ(second->current(), second);
    EXPECT_EQ(first->search(third->firstPageElement()), third);
    EXPECT_EQ(third->search(first->lastPageElement()), first);
    delete second; // leaves its chain
    EXPECT_EQ(first->next(), third);
    EXPECT_EQ(third->prev(), first);
    delete first;
    delete third;
}

TEST(KarVarPage, RunsComeFromTheFront)
{
    Page page(8, 10);
    EXPECT_EQ(page.take(3), 0);
    EXPECT_EQ(page.take(1), 24);
    EXPECT_EQ(page.elementUsed(), 4);
    EXPECT_EQ(page.runs(), (Runs{{32, 48}}));
    EXPECT_EQ(page.take(6), 32);
    EXPECT_EQ(page.runs(), Runs());
    EXPECT_EQ(page.firstFreeElement(), nullptr);
    EXPECT_EQ(page.take(1), -1);
    EXPECT_EQ(page.take(1, 1), -1);
    EXPECT_EQ(page.elementUsed(), 10);
}

TEST(KarVarPage, RequestIsRaisedToTheSmallestRun)
{
    Page page(4, 10);
    EXPECT_EQ(page.take(1), 0);
    EXPECT_EQ(page.elementUsed(), 2);
    EXPECT_EQ(page.take(-7), 8);
    EXPECT_EQ(page.elementUsed(), 4);
    EXPECT_EQ(page.take(0), 16);
    EXPECT_EQ(page.elementUsed(), 6);
    EXPECT_EQ(page.runs(), (Runs{{24, 16}}));
    EXPECT_FALSE(page.give(8, 1)); // and so is a release
    EXPECT_EQ(page.elementUsed(), 4);
    EXPECT_EQ(page.runs(), (Runs{{8, 8}, {24, 16}}));
}

TEST(KarVarPage, LargeElementsHaveNoSmallestRun)
{
    Page page(20, 4);
    EXPECT_EQ(page.take(1), 0);
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(page.take(0), 20); // the address of the free run, nothing taken
    EXPECT_EQ(page.take(-3), 20);
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(page.runs(), (Runs{{20, 60}}));
    EXPECT_FALSE(page.give(0, -3)); // releases nothing either
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(page.runs(), (Runs{{20, 60}}));

    Page empty(20, 4);
    EXPECT_EQ(empty.take(0), 0);
    EXPECT_EQ(empty.elementUsed(), 0);
    EXPECT_EQ(empty.runs(), (Runs{{0, 80}}));
}

TEST(KarVarPage, RemainderMustHoldANode)
{
    Page page(4, 5);
    EXPECT_EQ(page.take(4), -1); // 4 bytes would be left
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_EQ(page.take(5), 0); // exact

    Page larger(4, 6);
    EXPECT_EQ(larger.take(5), -1);
    EXPECT_EQ(larger.take(4), 0); // 8 bytes are left
    EXPECT_EQ(larger.runs(), (Runs{{16, 8}}));
}

TEST(KarVarPage, ExactRunWinsOverAnEarlierLargerOne)
{
    Page page(8, 12);
    for (const int count : {3, 1, 2, 1})
        page.take(count);
    page.give(0, 3);
    page.give(32, 2);
    ASSERT_EQ(page.runs(), (Runs{{0, 24}, {32, 16}, {56, 40}}));
    EXPECT_EQ(page.take(2), 32);
    EXPECT_EQ(page.runs(), (Runs{{0, 24}, {56, 40}}));
    EXPECT_EQ(page.take(2), 0); // none fits exactly: the first that is large enough
    EXPECT_EQ(page.runs(), (Runs{{16, 8}, {56, 40}}));
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPage, FirstOfTwoExactRunsWins)
{
    Page page(8, 12);
    for (const int count : {2, 1, 2, 1})
        page.take(count);
    page.give(24, 2);
    page.give(0, 2);
    EXPECT_EQ(page.take(2), 0);
    EXPECT_EQ(page.take(2), 24);
}

TEST(KarVarPage, RunThatIsLargerByLessThanANodeIsPassedOver)
{
    Page page(4, 20);
    for (const int count : {5, 2, 6, 2})
        page.take(count);
    page.give(0, 5);
    page.give(28, 6);
    ASSERT_EQ(page.runs(), (Runs{{0, 20}, {28, 24}, {60, 20}}));
    EXPECT_EQ(page.take(4), 28); // 16 bytes: 20 leaves 4, 24 leaves 8
    EXPECT_EQ(page.runs(), (Runs{{0, 20}, {44, 8}, {60, 20}}));
    EXPECT_EQ(page.take(4), -1);
}

TEST(KarVarPage, SearchFromTheEndSeesTheLastRunAlone)
{
    Page page(8, 12);
    for (const int count : {3, 1, 2, 1})
        page.take(count);
    page.give(0, 3);
    page.give(32, 2);
    ASSERT_EQ(page.runs(), (Runs{{0, 24}, {32, 16}, {56, 40}}));
    EXPECT_EQ(page.take(2, 1), 56); // no exact run is looked for before it
    EXPECT_EQ(page.take(3, -1), 72);
    EXPECT_EQ(page.runs(), (Runs{{0, 24}, {32, 16}}));
    EXPECT_EQ(page.take(3, 1), -1);
    EXPECT_EQ(page.take(3, 0), 0);
    EXPECT_EQ(page.take(2, 1), 32);
    EXPECT_EQ(page.take(1, 1), -1);
}

TEST(KarVarPage, CountThatFitsNoPageFails)
{
    Page page(4, 10);
    for (const int count : {INT_MAX, 0x40000000, 0x40000002, 0x20000000, 11})
        EXPECT_EQ(page.take(count), -1) << count;
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_EQ(page.runs(), (Runs{{0, 40}}));
}

TEST(KarVarPage, UsedCountStartsAnewFromBelowOne)
{
    Page page(8, 10);
    page.elementUsed_ = -5;
    page.take(3);
    EXPECT_EQ(page.elementUsed(), 3);
    page.take(2);
    EXPECT_EQ(page.elementUsed(), 5);
}

TEST(KarVarPage, NeighboursJoinInEveryOrderOfRelease)
{
    const int orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (const auto &order : orders) {
        Page page(8, 10);
        page.takePairs(3);
        page.take(4); // the rest stays in use
        for (const int run : order)
            EXPECT_FALSE(page.give(16 * run, 2));
        EXPECT_EQ(page.runs(), (Runs{{0, 48}}));
        EXPECT_EQ(page.elementUsed(), 4);
        EXPECT_TRUE(page.isValid());
    }
}

TEST(KarVarPage, ReleaseTouchingNothingStandsInAddressOrder)
{
    Page page(8, 10);
    page.takePairs(5);
    page.give(32, 2);
    EXPECT_EQ(page.runs(), (Runs{{32, 16}}));
    page.give(64, 2);
    EXPECT_EQ(page.runs(), (Runs{{32, 16}, {64, 16}}));
    page.give(0, 2);
    EXPECT_EQ(page.runs(), (Runs{{0, 16}, {32, 16}, {64, 16}}));
    page.give(48, 2); // touches both
    EXPECT_EQ(page.runs(), (Runs{{0, 16}, {32, 48}}));
    EXPECT_EQ(page.elementUsed(), 2);
    EXPECT_TRUE(page.give(16, 2));
    EXPECT_EQ(page.runs(), (Runs{{0, 80}}));
    EXPECT_EQ(page.elementUsed(), 0);
}

TEST(KarVarPage, ReleaseGrowsTheRunBeforeIt)
{
    Page page(8, 10);
    page.takePairs(5);
    page.give(0, 2);
    page.give(64, 2);
    page.give(16, 2);
    EXPECT_EQ(page.runs(), (Runs{{0, 32}, {64, 16}}));
}

TEST(KarVarPage, ReleaseTakesThePlaceOfTheRunBehindIt)
{
    Page page(8, 10);
    page.takePairs(5);
    page.give(0, 2);
    page.give(64, 2);
    page.give(48, 2);
    EXPECT_EQ(page.runs(), (Runs{{0, 16}, {48, 32}}));
    page.give(16, 2);
    page.give(32, 2);
    EXPECT_EQ(page.runs(), (Runs{{0, 80}}));
}

TEST(KarVarPage, RangeTooShortForANodeIsDroppedUnlessItTouches)
{
    Page page(6, 5);
    EXPECT_EQ(page.minElementCount(), 1);
    EXPECT_EQ(page.take(1), 0);
    EXPECT_EQ(page.take(1), 6);
    EXPECT_EQ(page.take(1), 12);
    EXPECT_FALSE(page.give(6, 1)); // 6 bytes between two runs in use
    EXPECT_EQ(page.runs(), (Runs{{18, 12}}));
    EXPECT_EQ(page.elementUsed(), 2);
    EXPECT_FALSE(page.give(12, 1)); // touches the run behind it
    EXPECT_EQ(page.runs(), (Runs{{12, 18}}));
    EXPECT_TRUE(page.give(0, 1));
    EXPECT_EQ(page.runs(), (Runs{{12, 18}})); // the first 12 bytes are lost
    EXPECT_TRUE(page.isValid());
    EXPECT_EQ(page.take(1), 12);
    EXPECT_FALSE(page.take(1) == 0);
}

TEST(KarVarPage, ShortRangeGrowsTheRunBeforeIt)
{
    Page page(6, 6);
    page.take(2);
    page.take(1);
    page.take(3);
    page.give(0, 2);
    page.give(12, 1);
    EXPECT_EQ(page.runs(), (Runs{{0, 18}}));
}

TEST(KarVarPage, ReleaseAtTheStartOfAFreeRunChangesNothing)
{
    Page page(8, 12);
    page.takePairs(6);
    page.give(0, 2);
    page.give(32, 2);
    page.give(64, 2);
    const Runs before = {{0, 16}, {32, 16}, {64, 16}};
    ASSERT_EQ(page.runs(), before);
    for (const int position : {0, 32, 64})
        for (const int count : {1, 2, 3, 100, -1}) { // also where the range runs over the free run and further
            EXPECT_FALSE(page.give(position, count));
            EXPECT_EQ(page.runs(), before);
            EXPECT_EQ(page.elementUsed(), 6);
        }
}

TEST(KarVarPage, ReleaseOfNothingChangesNothing)
{
    Page page(8, 4);
    page.take(2);
    EXPECT_FALSE(page.give(0, 0));
    EXPECT_EQ(page.elementUsed(), 2);
    Page unused(8, 4);
    EXPECT_FALSE(unused.give(8, 0)); // no sign of an empty page either
}

TEST(KarVarPage, ResizeGivesTheTailBack)
{
    Page page(8, 10);
    page.take(6);
    void *p = page.place(0);
    EXPECT_EQ(page.resizeElementLast(p, 6, 2), p);
    EXPECT_EQ(p, page.place(0));
    EXPECT_EQ(page.runs(), (Runs{{16, 64}}));
    EXPECT_EQ(page.elementUsed(), 2);
}

TEST(KarVarPage, ResizeToNothingReleasesTheRun)
{
    Page page(8, 10);
    page.take(6);
    page.take(1);
    void *p = page.place(0);
    EXPECT_EQ(page.resizeElementLast(p, 6, 0), nullptr);
    EXPECT_EQ(p, page.place(0)); // the page isn't empty
    EXPECT_EQ(page.runs(), (Runs{{0, 48}, {56, 24}}));
    p = page.place(48);
    EXPECT_EQ(page.resizeElementLast(p, 1, 0), nullptr);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(page.runs(), (Runs{{0, 80}}));
}

TEST(KarVarPage, ResizeRefusesToGrowAndShortTails)
{
    Page page(4, 10);
    page.take(5);
    void *p = page.place(0);
    const Runs before = page.runs();
    EXPECT_EQ(page.resizeElementLast(p, 5, 6), nullptr);
    EXPECT_EQ(page.resizeElementLast(p, 5, 5), nullptr);
    EXPECT_EQ(page.resizeElementLast(p, 5, 4), nullptr); // one element, the smallest run is two
    EXPECT_EQ(page.resizeElementLast(p, INT_MIN, 3), nullptr);
    EXPECT_EQ(page.runs(), before);
    EXPECT_EQ(page.elementUsed(), 5);
    EXPECT_EQ(page.resizeElementLast(p, 5, 1), p); // keeps two
    EXPECT_EQ(page.elementUsed(), 2);
    EXPECT_EQ(page.runs(), (Runs{{8, 32}}));
    EXPECT_EQ(page.resizeElementLast(p, 2, -4), nullptr);

    Page large(20, 4);
    large.take(2);
    p = large.place(0);
    EXPECT_EQ(large.resizeElementLast(p, 2, 3), nullptr);
    EXPECT_EQ(large.resizeElementLast(p, 2, 2), p); // a tail of nothing is no shorter than the smallest run
    EXPECT_EQ(large.elementUsed(), 2);
    EXPECT_EQ(large.resizeElementLast(p, 2, -1), p); // keeps nothing; the tail is the whole run
    EXPECT_EQ(large.elementUsed(), 0);
    EXPECT_EQ(large.runs(), (Runs{{0, 80}}));
}

TEST(KarVarPage, RangeInsideARunLeavesBothParts)
{
    Page page(8, 10);
    page.takeRange(page.place(24), 16);
    EXPECT_EQ(page.runs(), (Runs{{0, 24}, {40, 40}}));
    page.takeRange(page.place(8), 16); // up to the end of the first run
    EXPECT_EQ(page.runs(), (Runs{{0, 8}, {40, 40}}));
    page.takeRange(page.place(40), 16); // from its start
    EXPECT_EQ(page.runs(), (Runs{{0, 8}, {56, 24}}));
    page.takeRange(page.place(56), 24); // all of it
    EXPECT_EQ(page.runs(), (Runs{{0, 8}}));
    page.takeRange(page.place(0), 8);
    EXPECT_EQ(page.runs(), Runs());
    page.takeRange(page.place(0), 8); // in no run
    EXPECT_EQ(page.runs(), Runs());
}

TEST(KarVarPage, RestTooShortForANodeIsDropped)
{
    Page page(1, 20);
    page.takeRange(page.place(0), 15);
    EXPECT_EQ(page.firstFreeElement(), nullptr);
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPage, AssignedToItselfStays)
{
    Page page(8, 4);
    EXPECT_EQ(page.take(1), 0);
    const Page &same = page;
    page = same;
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(page.take(3), 8);
}

TEST(KarVarPage, CopyHasEveryField)
{
    char empty[sizeof(Page)];
    Page page(8, 10);
    page.take(3);
    Page behind(8, 2, &page);
    Page *const copy = new (static_cast<void *>(empty)) Page(page); // never destroyed: the storage is the source's
    EXPECT_EQ(copy->firstPageElement(), page.firstPageElement());
    EXPECT_EQ(copy->lastPageElement(), page.lastPageElement());
    EXPECT_EQ(copy->firstFreeElement(), page.firstFreeElement());
    EXPECT_EQ(copy->elementSize(), 8);
    EXPECT_EQ(copy->elementCount(), 10);
    EXPECT_EQ(copy->elementUsed(), 3);
    EXPECT_EQ(copy->minElementCount(), 1);
    EXPECT_EQ(copy->next(), &behind);
    EXPECT_EQ(behind.prev(), &page);

    char emptyToo[sizeof(Page)];
    Page *const assigned = new (static_cast<void *>(emptyToo)) Page(0, 0);
    *assigned = page;
    EXPECT_EQ(assigned->runs(), page.runs());
    EXPECT_EQ(assigned->lastPageElement(), page.lastPageElement());
    EXPECT_EQ(assigned->elementSize(), 8);
    EXPECT_EQ(assigned->elementCount(), 10);
    EXPECT_EQ(assigned->elementUsed(), 3);
    EXPECT_EQ(assigned->minElementCount(), 1);
    EXPECT_EQ(assigned->next(), &behind);
}

TEST(KarVarPage, ReleaseIntoADisorderedListStandsAlone)
{
    Page page(8, 100);
    page.takeRange(page.place(0), 800);
    page.elementUsed_ = 100;
    // The second run ends at 99 by its length, so it counts as the one before the range; it lies above the first.
    setRuns(page, {{400, 16}, {600, -500}});
    EXPECT_FALSE(page.give(200, 2));
    EXPECT_EQ(page.runs(), (Runs{{200, 16}, {400, 16}, {600, -500}}));
    EXPECT_EQ(page.elementUsed(), 98);

    Page oneNode(8, 100);
    oneNode.takeRange(oneNode.place(0), 800);
    oneNode.elementUsed_ = 100;
    setRuns(oneNode, {{400, 16}, {600, -500}});
    EXPECT_FALSE(oneNode.give(200, 1)); // just long enough for a node
    EXPECT_EQ(oneNode.runs(), (Runs{{200, 8}, {400, 16}, {600, -500}}));

    Page shortRange(6, 100);
    shortRange.takeRange(shortRange.place(0), 600);
    shortRange.elementUsed_ = 100;
    setRuns(shortRange, {{300, 12}, {480, -420}});
    EXPECT_FALSE(shortRange.give(120, 1)); // too short for a node
    EXPECT_EQ(shortRange.runs(), (Runs{{300, 12}, {480, -420}}));
    EXPECT_EQ(shortRange.elementUsed(), 99);
}

TEST(KarVarPage, ReleaseWithTooLargeACountTakesTheNeighbourAlong)
{
    Page page(8, 10);
    page.takePairs(5);
    EXPECT_FALSE(page.give(16, 4));
    EXPECT_EQ(page.runs(), (Runs{{16, 32}}));
    EXPECT_EQ(page.elementUsed(), 6);
}

TEST(KarVarPage, ReleaseOverFreeRunsDropsThemFromTheList)
{
    Page page(8, 12);
    page.takePairs(6);
    page.give(0, 2);
    page.give(48, 2);
    page.give(80, 2);
    ASSERT_EQ(page.runs(), (Runs{{0, 16}, {48, 16}, {80, 16}}));
    // From 32 over the free run at 48 to 72: 0 is before, 80 behind, and neither touches.
    EXPECT_FALSE(page.give(32, 5));
    EXPECT_EQ(page.runs(), (Runs{{0, 16}, {32, 40}, {80, 16}}));
}

TEST(KarVarPage, ReleaseThatTouchesTheRunBehindItStandsInItsPlaceOnly)
{
    Page page(8, 12);
    page.takePairs(6);
    page.give(48, 2);
    page.give(80, 2);
    // From 32 over the free run at 48 up to 80: that run stays in the list, the joined one stands behind it.
    EXPECT_FALSE(page.give(32, 6));
    EXPECT_EQ(page.runs(), (Runs{{48, 16}, {32, 64}}));
}

TEST(KarVarPage, ReleaseBeyondTheEndIsCutOffThere)
{
    Page page(8, 10);
    page.takePairs(5);
    EXPECT_FALSE(page.give(64, 5)); // three elements more than the page has
    EXPECT_EQ(page.runs(), (Runs{{64, 16}}));
    EXPECT_EQ(page.elementUsed(), 5);
    EXPECT_TRUE(page.give(32, INT_MAX));
    EXPECT_EQ(page.runs(), (Runs{{32, 48}})); // over the free run at 64, which the new one takes in
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_EQ(page.take(7), -1);

    Page sixes(6, 5);
    sixes.take(5);
    EXPECT_FALSE(sixes.give(24, 3)); // 6 bytes remain, too few for a node
    EXPECT_EQ(sixes.runs(), Runs());
    EXPECT_EQ(sixes.elementUsed(), 2);
}

TEST(KarVarPage, ReleaseInsideAnElementIsCountedAlone)
{
    Page page(8, 10);
    page.take(10);
    EXPECT_FALSE(page.give(12, 2));
    EXPECT_EQ(page.runs(), Runs());
    EXPECT_EQ(page.elementUsed(), 8);
    EXPECT_FALSE(page.give(79, 1));
    EXPECT_EQ(page.runs(), Runs());
    EXPECT_EQ(page.elementUsed(), 7);
}

TEST(KarVarPage, ReleaseOutsideThePageIsCountedAlone)
{
    Page page(8, 10);
    page.take(10);
    char elsewhere[64];
    std::memset(elsewhere, 0x55, sizeof elsewhere);
    void *p = elsewhere;
    page.deleteElement(p, 3);
    EXPECT_EQ(p, elsewhere);
    EXPECT_EQ(page.elementUsed(), 7);
    EXPECT_EQ(page.runs(), Runs());
    for (const char byte : elsewhere)
        EXPECT_EQ(byte, 0x55);
    page.deleteElement(p, 7);
    EXPECT_EQ(p, nullptr);
    EXPECT_FALSE(page.give(-8, 0));
    EXPECT_TRUE(page.give(-8, 1));
    EXPECT_TRUE(page.give(80, 1));
    EXPECT_EQ(page.runs(), Runs());
}

TEST(KarVarPage, ReleaseOfARunOfAnotherPageIsLinkedOnlyWithNarrowPointers)
{
    Page page(8, 4);
    Page other(8, 4, &page);
    page.take(4);
    other.take(4);
    void *p = other.place(8);
    page.deleteElement(p, 2);
    EXPECT_EQ(p, other.place(8));
    EXPECT_EQ(page.elementUsed(), 2);
    EXPECT_EQ(other.elementUsed(), 4);
    EXPECT_EQ(other.runs(), Runs());
    if (wide) {
        EXPECT_EQ(page.firstFreeElement(), nullptr);
    } else {
        EXPECT_EQ(page.firstFreeElement(), p);
        EXPECT_EQ(page.firstFreeElement()->getSize(), 16);
        EXPECT_EQ(page.newElement(2, 0), p);
        EXPECT_EQ(page.elementUsed(), 4);
    }
}

TEST(KarVarPage, OverwrittenNodesNeverLeadOutOfThePage)
{
    for (const int filler : {0x00, 0x01, 0x10, 0x7f, 0x80, 0xff}) {
        Page page(8, 12);
        page.takePairs(6);
        std::memset(page.place(0), 0x55, 96); // their owners use them all
        for (const int position : {0, 32, 64})
            page.give(position, 2);
        std::memset(page.place(32), filler, 16); // the owner writes into what it has released
        for (int count = 1; count <= 12; ++count) {
            void *const run = page.newElement(count, count % 2);
            if (run) {
                EXPECT_GE(page.offset(run), 0);
                EXPECT_LE(page.offset(run), 96 - 8 * count);
            }
        }
        page.give(16, 2);
        page.give(80, 2);
        page.give(48, 2);
    }
}

TEST(KarVarPage, ListThatLeadsBackEnds)
{
    Page page(8, 12);
    page.takeRange(page.place(0), 96);
    page.elementUsed_ = 12;
    setRuns(page, {{0, 16}, {24, 8}, {48, 8}, {72, 8}});
    reinterpret_cast<karFreeVarElement *>(page.place(72))->next(reinterpret_cast<karFreeVarElement *>(page.place(24)));
    EXPECT_EQ(page.take(5), -1);
    EXPECT_EQ(page.take(5, 1), -1);
    EXPECT_FALSE(page.give(32, 1));
    EXPECT_EQ(page.elementUsed(), 11);
}

TEST(KarVarPage, PointerInAReleasedRunIsNotWrittenTo)
{
    for (const std::size_t place : {0u, 1u, 3u}) {
        Page page(8, 8);
        void **const run = static_cast<void **>(page.newElement(4, 0));
        run[place] = run;
        page.deleteElement(run[place], 4);
        EXPECT_EQ(page.elementUsed(), 0);
        EXPECT_TRUE(page.isValid());
        EXPECT_EQ(page.firstFreeElement()->getSize(), 64);
    }
    Page page(8, 8);
    void **const run = static_cast<void **>(page.newElement(6, 0));
    void **const tail = run + 16 / sizeof *run;
    *tail = run; // the result is the address of the run, whatever the tail reads then
    EXPECT_EQ(page.resizeElementLast(*tail, 6, 2), run);
    EXPECT_TRUE(page.isValid());
    EXPECT_EQ(page.elementUsed(), 2);
}
