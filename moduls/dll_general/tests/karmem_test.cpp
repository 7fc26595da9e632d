// Pages, the fixed page pool and the tracked resources.
#include "karmem.h"

#include "failalloc.h"
#include "mempeek.h"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <vector>

namespace {

class BasisPage : public karBasisPage {
public:
    using karBasisPage::checkElement;
    using karBasisPage::element;
    using karBasisPage::element_X;
    using karBasisPage::elementCount;
    using karBasisPage::elementFullSize;
    using karBasisPage::elementSize;
    using karBasisPage::initBasis;
    using karBasisPage::karBasisPage;

    void set(void *first, void *last, int size)
    {
        firstPageElement_ = first;
        lastPageElement_ = last;
        elementFullSize_ = size;
    }
    std::ptrdiff_t offset(int field) const
    {
        switch (field) {
        case 0:
            return offsetIn(*this, firstPageElement_);
        case 1:
            return offsetIn(*this, lastPageElement_);
        case 2:
            return offsetIn(*this, elementFullSize_);
        case 3:
            return offsetIn(*this, elementCount_);
        default:
            return offsetIn(*this, elementUsed_);
        }
    }
    static void checkSlots()
    {
        EXPECT_EQ(slotOf(&BasisPage::ListObjectOk), 0);
        EXPECT_EQ(slotOf(&BasisPage::IsType), 3); // 1 and 2 are the destructor's
        EXPECT_EQ(slotOf(&BasisPage::GetType), 4);
        EXPECT_EQ(slotOf(&BasisPage::CanCast), 5);
        EXPECT_EQ(slotOf(&BasisPage::checkElement), 6);
        EXPECT_EQ(slotOf(&BasisPage::element_X), 7);
        EXPECT_EQ(slotOf(&BasisPage::PageBegin), 8);
        EXPECT_EQ(slotOf(&BasisPage::PageEnd), 9);
    }
};

class Page : public karPage {
public:
    using karPage::elementCount;
    using karPage::elementFullSize;
    using karPage::firstFreeElement;
    using karPage::initBasis;
    using karPage::karPage;
    std::ptrdiff_t freeListOffset() const { return offsetIn(*this, firstFreeElement_); }
    std::ptrdiff_t basisEnd() const { return offsetIn(*this, elementUsed_) + 4; }
};

class Pool : public karPageMemory {
public:
    using karPageMemory::karPageMemory;
    std::vector<std::ptrdiff_t> offsets() const
    {
        return {offsetIn(*this, firstPage), offsetIn(*this, currentPage), offsetIn(*this, lastPage),
                offsetIn(*this, elementSize_), offsetIn(*this, elementCount_)};
    }
};

} // namespace

// ---- Page base

TEST(KarBasisPage, FieldsAndVirtualOperationsStandInTheirOrder)
{
    BasisPage page(nullptr);
    const std::ptrdiff_t pointer = sizeof(void *);
    const std::ptrdiff_t base = 3 * pointer; // the table and the two links
    EXPECT_EQ(page.offset(0), base);
    EXPECT_EQ(page.offset(1), base + pointer);
    EXPECT_EQ(page.offset(2), base + 2 * pointer);
    EXPECT_EQ(page.offset(3), base + 2 * pointer + 4);
    EXPECT_EQ(page.offset(4), base + 2 * pointer + 8);
    if (!wide) {
        EXPECT_EQ(sizeof(karBasisPage), 32u);
    }
    BasisPage::checkSlots();
}

TEST(KarBasisPage, StartsEmptyAndAnswersTheListElementsId)
{
    BasisPage page(nullptr);
    EXPECT_EQ(page.firstPageElement(), nullptr);
    EXPECT_EQ(page.lastPageElement(), nullptr);
    EXPECT_EQ(page.PageBegin(), nullptr);
    EXPECT_EQ(page.PageEnd(), nullptr);
    EXPECT_EQ(page.elementFullSize(), 0);
    EXPECT_EQ(page.elementSize(), 0);
    EXPECT_EQ(page.elementCount(), 0);
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_EQ(page.ListObjectOk(), 1);
    EXPECT_EQ(page.GetType(), 60);
    EXPECT_EQ(page.IsType(KAR_ID_LIST_OBJECT), 1);
    EXPECT_EQ(page.CanCast(KAR_ID_LIST_OBJECT), 1);
    EXPECT_EQ(page.search(nullptr), nullptr);
    EXPECT_EQ(page.checkElement(nullptr), nullptr);
}

TEST(KarBasisPage, ConstructorsChainByPosition)
{
    BasisPage a(nullptr);
    BasisPage b(&a);
    BasisPage front(&b, 7);
    BasisPage between(&b, 6);
    BasisPage end(&front, 5);
    EXPECT_EQ(a.first(), &front);
    EXPECT_EQ(front.next(), &a);
    EXPECT_EQ(a.next(), &between);
    EXPECT_EQ(between.next(), &b);
    EXPECT_EQ(b.next(), &end);
    EXPECT_EQ(end.prev(), &b);
    EXPECT_EQ(end.current(), &end);
    EXPECT_EQ(front.last(), &end);
}

TEST(KarBasisPage, HoldsAddressesFromTheFirstToTheLastByteIncluded)
{
    BasisPage a(nullptr);
    BasisPage b(&a);
    char bytes[40];
    a.set(bytes, bytes + 19, 4);
    b.set(bytes + 20, bytes + 39, 5);
    EXPECT_EQ(a.checkElement(bytes), bytes);
    EXPECT_EQ(a.checkElement(bytes + 19), bytes + 19);
    EXPECT_EQ(a.checkElement(bytes + 20), nullptr);
    EXPECT_EQ(b.checkElement(bytes + 19), nullptr);
    EXPECT_EQ(b.search(bytes + 3), &a); // from the first page on, whichever is asked
    EXPECT_EQ(a.search(bytes + 39), &b);
    EXPECT_EQ(a.search(&a), nullptr);
    EXPECT_EQ(a.PageBegin(), bytes);
    EXPECT_EQ(a.PageEnd(), bytes + 19);
    EXPECT_EQ(b.element(2), bytes + 30);
    EXPECT_EQ(at(b.element(9)), at(bytes) + 65); // not tested
    EXPECT_EQ(b.element(-1), bytes + 15);
    EXPECT_EQ(b.element_X(bytes, 3), bytes + 15);
    EXPECT_EQ(b.element(bytes + 20, 3), bytes + 35);
    EXPECT_EQ(b.element(bytes + 20, 4), nullptr);
    EXPECT_EQ(b.element(bytes, 3), nullptr);
    a.set(nullptr, nullptr, 0); // the storage isn't the pages'
    b.set(nullptr, nullptr, 0);
}

TEST(KarBasisPage, DestructorReleasesTheStorageAndLeavesTheChain)
{
    void *const marker = KarAllocMemory(40); // keeps the page of the size class
    const long elements = AllocatorPeek::pool(*globalMemList, 7).getAnzElem();
    BasisPage a(nullptr);
    {
        BasisPage b(&a);
        b.set(KarAllocMemory(40), nullptr, 4);
        EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), elements + 1);
    }
    EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), elements);
    EXPECT_EQ(a.next(), nullptr);
    KarDellocMemory(marker);
}

TEST(KarBasisPage, CopiesLinksAndStorageAsTheyAre)
{
    char bytes[8];
    BasisPage a(nullptr);
    BasisPage b(&a);
    b.set(bytes, bytes + 7, 2);
    BasisPage copy(b);
    EXPECT_EQ(copy.prev(), &a);
    EXPECT_EQ(copy.PageBegin(), bytes);
    EXPECT_EQ(copy.PageEnd(), bytes + 7);
    EXPECT_EQ(copy.elementFullSize(), 2);
    EXPECT_EQ(a.next(), &b);
    BasisPage assigned(nullptr);
    assigned = b;
    EXPECT_EQ(assigned.prev(), &a);
    EXPECT_EQ(assigned.PageBegin(), bytes);
    for (BasisPage *page : {&b, &copy, &assigned}) {
        page->initBasis();
        EXPECT_EQ(page->PageBegin(), nullptr);
        EXPECT_EQ(page->PageEnd(), nullptr);
        EXPECT_EQ(page->elementFullSize(), 0);
    }
    copy.prev(nullptr);
    assigned.prev(nullptr);
}

// ---- Free elements

TEST(KarFreeElement, IsTwoLinksPlacedDirectlyBeforeAnother)
{
    EXPECT_EQ(sizeof(karFreeElement), 2 * sizeof(void *));
    karFreeElement a(nullptr);
    EXPECT_EQ(a.next(), nullptr);
    EXPECT_EQ(a.prev(), nullptr);
    EXPECT_EQ(a.GetType(), 62);
    karFreeElement b(&a);
    {
        karFreeElement c(&a);
        EXPECT_EQ(b.next(), &c);
        EXPECT_EQ(c.next(), &a);
        EXPECT_EQ(c.prev(), &b);
        EXPECT_EQ(a.first(), &b);
        EXPECT_EQ(b.last(), &a);
        EXPECT_EQ(c.current(), &c);
    }
    EXPECT_EQ(b.next(), &a); // the destructor unchains
    EXPECT_EQ(a.prev(), &b);
    karFreeElement copy(nullptr);
    copy = b;
    EXPECT_EQ(copy.next(), &a);
    copy.next(nullptr);
}

// ---- Pages of equal elements

TEST(KarPage, FreeListFollowsTheFieldsOfTheBase)
{
    Page page(nullptr, 10, 5);
    EXPECT_EQ(page.freeListOffset(), page.basisEnd() + (wide ? 4 : 0));
    if (!wide) {
        EXPECT_EQ(page.freeListOffset(), 32);
    }
}

TEST(KarPage, FreshFreeListRunsFromTheHighestElementToTheLowest)
{
    for (int size : {1, 3, 8, 10, 16, 17, 24, 28, 100}) {
        Page page(nullptr, size, 7);
        const int stride = strideOf(size);
        char *const start = static_cast<char *>(page.PageBegin());
        EXPECT_EQ(page.elementFullSize(), stride);
        EXPECT_EQ(page.elementCount(), 7);
        EXPECT_EQ(page.elementUsed(), 0);
        EXPECT_EQ(page.PageEnd(), start + 7 * stride - 1);
        const char *element = static_cast<const char *>(page.firstFreeElement());
        for (int i = 6; i >= 0; --i) {
            ASSERT_EQ(element, start + i * stride);
            void *links[2];
            std::memcpy(links, element, sizeof links);
            EXPECT_EQ(links[1], i < 6 ? start + (i + 1) * stride : nullptr);
            element = static_cast<const char *>(links[0]);
        }
        EXPECT_EQ(element, nullptr);
        EXPECT_TRUE(page.isValid());
    }
}

TEST(KarPage, HandsOutFromTheTopAndTakesBackLastInFirstOut)
{
    karPage page(nullptr, 10, 5);
    const int stride = strideOf(10);
    char *const start = static_cast<char *>(page.PageBegin());
    void *elements[5];
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(page.canInsertElement(), 1);
        elements[i] = page.newElement();
        EXPECT_EQ(elements[i], start + (4 - i) * stride);
        EXPECT_EQ(page.elementUsed(), i + 1);
        EXPECT_TRUE(page.isValid());
    }
    EXPECT_EQ(page.canInsertElement(), 0);
    EXPECT_EQ(page.newElement(), nullptr);
    EXPECT_EQ(page.elementUsed(), 5);
    for (int i : {1, 4, 0}) {
        void *p = elements[i];
        page.deleteElement(p);
        EXPECT_EQ(p, elements[i]); // the page isn't empty
        EXPECT_TRUE(page.isValid());
    }
    for (int i : {0, 4, 1})
        EXPECT_EQ(page.newElement(), elements[i]);
    EXPECT_EQ(page.newElement(), nullptr);
}

TEST(KarPage, LastReleaseGivesTheSignalNull)
{
    karPage page(nullptr, 10, 5);
    void *a = page.newElement();
    void *b = page.newElement();
    void *const bAddress = b;
    page.deleteElement(a);
    EXPECT_NE(a, nullptr);
    page.deleteElement(b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(page.newElement(), bAddress);
}

TEST(KarPage, SecondReleaseOfAnElementChangesNothing)
{
    karPage page(nullptr, 24, 6);
    void *elements[6];
    for (void *&element : elements)
        element = page.newElement();
    for (int i = 0; i < 6; ++i) {
        void *p = elements[i];
        page.deleteElement(p);
        for (int j = 0; j <= i; ++j) { // at the head, in the middle and at the end of the free list
            void *again = elements[j];
            page.deleteElement(again);
            EXPECT_EQ(again, elements[j]);
            EXPECT_EQ(page.elementUsed(), 5 - i);
            EXPECT_TRUE(page.isValid());
        }
    }
}

TEST(KarPage, LiveElementsThatLookFreeAreReleased)
{
    // Three live elements hold links to each other, as three free ones would.
    karPage page(nullptr, 24, 5);
    void *elements[5];
    for (void *&element : elements)
        element = page.newElement();
    for (int i = 1; i < 4; ++i) {
        void *const links[2] = {elements[i + 1], elements[i - 1]};
        std::memcpy(elements[i], links, sizeof links);
    }
    void *const head[2] = {elements[1], nullptr};
    void *const tail[2] = {nullptr, elements[3]};
    std::memcpy(elements[0], head, sizeof head);
    std::memcpy(elements[4], tail, sizeof tail);
    int used = 5;
    for (int i : {2, 0, 4, 3}) {
        void *p = elements[i];
        page.deleteElement(p);
        EXPECT_EQ(page.elementUsed(), --used);
        EXPECT_TRUE(page.isValid());
    }
}

TEST(KarPage, AddressInsideAnElementCountsAsAReleaseAndDoesNotBecomeFree)
{
    karPage page(nullptr, 24, 4);
    char *const a = static_cast<char *>(page.newElement());
    page.newElement();
    std::memset(a, 0x55, 24);
    void *p = a + 1;
    page.deleteElement(p);
    EXPECT_EQ(p, a + 1);
    EXPECT_EQ(page.elementUsed(), 1);
    for (int i = 0; i < 24; ++i)
        EXPECT_EQ(a[i], 0x55);
    p = a + 8;
    page.deleteElement(p);
    EXPECT_EQ(p, nullptr); // the count reached 0
    EXPECT_EQ(page.elementUsed(), 0);
    p = a + 2;
    page.deleteElement(p);
    EXPECT_EQ(p, nullptr); // and stays there
    EXPECT_EQ(page.elementUsed(), 0);
    EXPECT_NE(page.newElement(), nullptr);
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_NE(page.newElement(), nullptr);
    EXPECT_EQ(page.newElement(), nullptr);
}

TEST(KarPage, AddressOutsideCountsAsAReleaseAndIsNotTouched)
{
    karPage page(nullptr, 24, 4);
    page.newElement();
    page.newElement();
    char outside[24] = {1, 2, 3};
    void *p = outside;
    page.deleteElement(p);
    EXPECT_EQ(p, outside);
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(outside[0], 1);
}

TEST(KarPage, WithoutStorageHasZeroSizesAndNoElement)
{
    struct {
        int size;
        int count;
    } const cases[] = {{10, 0}, {10, -1}, {-1, -1}, {0x7fffffff, 3}, {0x40000000, 4}, {8, -2}, {0x10000, 0x10000}};
    for (const auto &sizes : cases) {
        Page page(nullptr, sizes.size, sizes.count);
        EXPECT_EQ(page.PageBegin(), nullptr) << sizes.size << ' ' << sizes.count;
        EXPECT_EQ(page.PageEnd(), nullptr);
        EXPECT_EQ(page.elementFullSize(), 0);
        EXPECT_EQ(page.elementCount(), 0);
        EXPECT_EQ(page.canInsertElement(), 0);
        EXPECT_EQ(page.newElement(), nullptr);
        void *p = &page; // an address of its own it has none
        page.deleteElement(p);
        EXPECT_EQ(p, nullptr);
        EXPECT_EQ(page.newElement(), nullptr);
        EXPECT_TRUE(page.isValid());
    }
    if (wide) { // the distance of 2^31 bytes is no int
        Page page(nullptr, 0x7fffffff, 1);
        EXPECT_EQ(page.PageBegin(), nullptr);
        EXPECT_EQ(page.elementFullSize(), 0);
    }
    AllAllocationsFail failing;
    karPage page(nullptr, 10, 5);
    EXPECT_EQ(page.PageBegin(), nullptr);
    EXPECT_EQ(page.newElement(), nullptr);
}

TEST(KarPage, SizesBelowTheSmallestAreRaised)
{
    Page page(nullptr, -5, 3);
    EXPECT_EQ(page.elementFullSize(), strideOf(0));
    EXPECT_EQ(page.elementCount(), 3);
}

TEST(KarPage, StandsBehindTheChainAndIsFoundByAddress)
{
    karPage a(nullptr, 10, 5);
    karPage b(&a, 20, 5);
    karPage c(&a, 30, 5);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(b.next(), &c);
    EXPECT_EQ(c.search(b.PageEnd()), &b);
    EXPECT_EQ(c.search(a.PageBegin()), &a);
    EXPECT_EQ(a.search(&a), nullptr);
    EXPECT_EQ(a.search(nullptr), nullptr);
    EXPECT_EQ(a.delete_all(), 0);
    EXPECT_EQ(a.test_delete_all(), 0);
    EXPECT_EQ(a.GetType(), 60);
    EXPECT_EQ(a.ListObjectOk(), 1);
}

TEST(KarPage, DamagedLinksInAFreeElementLeadNowhere)
{
    karPage page(nullptr, 32, 4);
    void *a = page.newElement();
    void *b = page.newElement();
    void *const freed = b;
    page.deleteElement(b);
    std::memset(freed, 0x7f, 32); // used after its release
    EXPECT_EQ(page.newElement(), freed);
    EXPECT_EQ(page.canInsertElement(), 0); // the rest of the free list is lost
    EXPECT_EQ(page.newElement(), nullptr);
    page.deleteElement(a);
    EXPECT_EQ(page.canInsertElement(), 1);
}

TEST(KarPage, AnAssignedPageTellsTheElementsOfItsNewStorage)
{
    alignas(karPage) unsigned char abandoned[sizeof(karPage)];
    const karPage &source = *::new (static_cast<void *>(abandoned)) karPage(nullptr, 40, 3);
    karPage page(nullptr, 24, 3);
    void *const own = page.PageBegin();
    page = source;
    KarDellocMemory(own);
    void *elements[3];
    for (void *&element : elements)
        element = page.newElement();
    for (void *element : elements) {
        void *p = element;
        page.deleteElement(p);
        EXPECT_EQ(page.newElement(), element);
    }
}

TEST(KarPage, AnAddressBesideTheStartOfAnElementIsNotLinked)
{
    karPage page(nullptr, 40, 3);
    for (int i = 0; i < 3; ++i)
        page.newElement();
    for (int beside : {1, 39}) {
        void *p = static_cast<char *>(page.PageBegin()) + beside;
        page.deleteElement(p);
        EXPECT_EQ(page.canInsertElement(), 0) << beside;
    }
    EXPECT_EQ(page.elementUsed(), 1);
}

TEST(KarPage, ReleaseFollowsADamagedFreeListNoFurtherThanThePage)
{
    for (const bool endless : {true, false}) {
        karPage page(nullptr, 32, 4);
        void *elements[4];
        for (void *&element : elements)
            element = page.newElement();
        void *p = elements[0];
        page.deleteElement(p);
        // The only free element leads to itself, or out of the page; two live ones hold links to each other.
        void *const damaged[2] = {endless ? elements[0] : &page, nullptr};
        std::memcpy(elements[0], damaged, sizeof damaged);
        void *const links[2] = {nullptr, elements[2]};
        std::memcpy(elements[1], links, sizeof links);
        void *const back[2] = {elements[1], nullptr};
        std::memcpy(elements[2], back, sizeof back);
        p = elements[1];
        page.deleteElement(p);
        EXPECT_EQ(page.elementUsed(), 2);
        EXPECT_EQ(page.newElement(), elements[1]);
    }
}

TEST(KarPage, AssignedToItselfStays)
{
    karPage page(nullptr, 16, 2);
    void *const first = page.newElement();
    const karPage &same = page;
    page = same;
    EXPECT_EQ(page.elementUsed(), 1);
    EXPECT_EQ(page.newElement(), static_cast<char *>(first) - 16);
    EXPECT_TRUE(page.isValid());
}

TEST(KarPage, WithoutAPoolTakesTheFieldsOfAnother)
{
    karPage source(nullptr, 16, 2);
    Page page(nullptr, 16, 0);
    static_cast<karPage &>(page) = source;
    EXPECT_EQ(page.PageBegin(), source.PageBegin());
    EXPECT_EQ(page.newElement(), static_cast<char *>(source.PageBegin()) + 16);
    page.initBasis(); // the storage goes with the source
}

TEST(KarPage, StandsBesideAnyListElement)
{
    karListObjectNV other;
    karPage page(nullptr, 16, 1);
    const karListObjectNV &element = page;
    page.append(&other);
    EXPECT_EQ(element.prev(), &other);
    page.unchain();
    page.insert(&other);
    EXPECT_EQ(element.next(), &other);
    page.unchain();
    page.insertFront(&other);
    EXPECT_EQ(other.prev(), &element);
}

TEST(KarPage, PointerThatStandsInItsElementIsNotWrittenTo)
{
    karPage page(nullptr, 40, 3);
    void **const element = static_cast<void **>(page.newElement());
    for (std::size_t place : {0u, 1u, 4u}) {
        element[place] = element;
        page.deleteElement(element[place]);
        EXPECT_EQ(page.elementUsed(), 0);
        EXPECT_TRUE(page.isValid());
        EXPECT_EQ(page.newElement(), element);
    }
    // One that isn't the start of an element becomes no free one, and the pointer in it is cleared.
    void *inside = element + 1;
    std::memcpy(element + 2, &inside, sizeof inside);
    page.deleteElement(element[2]);
    EXPECT_EQ(element[2], nullptr);
}

// ---- Pool

TEST(KarPageMemory, FieldsAndVirtualOperationsStandInTheirOrder)
{
    const Pool pool(10, 5);
    const std::ptrdiff_t pointer = sizeof(void *);
    EXPECT_EQ(pool.offsets(),
              (std::vector<std::ptrdiff_t>{pointer, 2 * pointer, 3 * pointer, 4 * pointer, 4 * pointer + 4}));
    EXPECT_EQ(slotOf(&karPageMemory::GetType), 0);
    EXPECT_EQ(slotOf(&karPageMemory::CanCast), 1);
}

TEST(KarPageMemory, StartsWithoutPages)
{
    const HeapCounts before;
    karPageMemory pool(3, 5);
    EXPECT_EQ(pool.GetType(), 4001);
    EXPECT_EQ(pool.CanCast(KAR_ID_PAGE_MEMORY), 1);
    EXPECT_EQ(pool.CanCast(KAR_ID_LIST_OBJECT), 0);
    EXPECT_EQ(pool.elementSize(), 3);
    EXPECT_EQ(pool.elementFullSize(), 3);
    EXPECT_EQ(pool.elementCount(), 5);
    EXPECT_EQ(pool.getAnzElem(), 0);
    EXPECT_EQ(pool.delete_all(), 0);
    EXPECT_EQ(pool.test_delete_all(), 0);
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::currentOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::lastOf(pool), nullptr);
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, KeepsItsSizeWhilePagesUseALargerOne)
{
    karPageMemory pool(3, 5);
    void *p = pool.newElement();
    EXPECT_EQ(pool.elementSize(), 3);
    EXPECT_EQ(PagePeek::stride(*PoolPeek::firstOf(pool)), wide ? 16 : 8);
    pool.deleteElement(p);
}

TEST(KarPageMemory, FirstElementsDescendFromThePagesTop)
{
    karPageMemory pool(10, 5);
    const int stride = strideOf(10); // 10 on 32-bit targets
    void *const a = pool.newElement();
    char *const start = static_cast<char *>(PoolPeek::firstOf(pool)->PageBegin());
    EXPECT_EQ(a, start + 4 * stride);
    EXPECT_EQ(pool.newElement(), start + 3 * stride);
    EXPECT_EQ(pool.newElement(), start + 2 * stride);
    EXPECT_EQ(pool.getAnzElem(), 3);
}

TEST(KarPageMemory, FirstPageWithRoomIsUsedFirst)
{
    karPageMemory pool(40, 3);
    void *elements[9];
    for (void *&element : elements)
        element = pool.newElement();
    EXPECT_EQ(PoolPeek::pages(pool), 3);
    for (int i : {7, 4, 0}) { // one of the third, the second and the first page
        void *p = elements[i];
        pool.deleteElement(p);
        EXPECT_EQ(p, nullptr);
        EXPECT_TRUE(pool.isValid());
    }
    for (int i : {0, 4, 7})
        EXPECT_EQ(pool.newElement(), elements[i]);
    EXPECT_EQ(pool.getAnzElem(), 9);
    void *p = elements[8];
    pool.deleteElement(p);
    EXPECT_EQ(pool.newElement(), elements[8]);
}

TEST(KarPageMemory, PageGoesWithItsLastElement)
{
    const HeapCounts before;
    karPageMemory pool(40, 2);
    void *elements[6];
    for (void *&element : elements)
        element = pool.newElement();
    EXPECT_EQ(globalMemList->getCurAnzNew(), before.blocks + 6); // each page is two heap blocks
    karPage *const first = PoolPeek::firstOf(pool);
    karPage *const second = first->next();
    ASSERT_NE(second, nullptr);
    karPage *const third = second->next();
    EXPECT_EQ(PoolPeek::lastOf(pool), third);
    EXPECT_EQ(PoolPeek::currentOf(pool), third);
    pool.deleteElement(elements[2]);
    pool.deleteElement(elements[3]);
    EXPECT_EQ(first->next(), third);
    EXPECT_EQ(PoolPeek::firstOf(pool), first);
    pool.deleteElement(elements[4]);
    pool.deleteElement(elements[5]); // the last page: its predecessor takes its place
    EXPECT_EQ(PoolPeek::lastOf(pool), first);
    EXPECT_EQ(PoolPeek::currentOf(pool), first);
    pool.deleteElement(elements[0]);
    pool.deleteElement(elements[1]);
    EXPECT_EQ(pool.getAnzElem(), 0);
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::currentOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::lastOf(pool), nullptr);
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, FirstPageFallsToItsPredecessorElseToItsSuccessor)
{
    karPageMemory pool(40, 1);
    void *elements[4];
    for (void *&element : elements)
        element = pool.newElement();
    karPage *const first = PoolPeek::firstOf(pool);
    karPage *const second = first->next();
    pool.deleteElement(elements[0]);
    EXPECT_EQ(PoolPeek::firstOf(pool), second);
    PoolPeek::firstOf(pool) = second->next(); // some page of the chain
    EXPECT_EQ(pool.getAnzElem(), 3);
    pool.deleteElement(elements[2]);
    EXPECT_EQ(PoolPeek::firstOf(pool), second);
    PoolPeek::lastOf(pool) = second;
    PoolPeek::currentOf(pool) = second;
    pool.deleteElement(elements[1]);
    EXPECT_EQ(PoolPeek::lastOf(pool), PoolPeek::firstOf(pool));
    EXPECT_EQ(PoolPeek::currentOf(pool), PoolPeek::firstOf(pool));
    EXPECT_EQ(pool.getAnzElem(), 1);
    EXPECT_TRUE(pool.isValid());
    karPage *const last = PoolPeek::lastOf(pool);
    PoolPeek::firstOf(pool) = nullptr; // is found again from the last
    EXPECT_TRUE(pool.isValid());
    PoolPeek::lastOf(pool) = nullptr;
    EXPECT_FALSE(pool.isValid());
    PoolPeek::lastOf(pool) = last;
    EXPECT_EQ(pool.getAnzElem(), 1);
    EXPECT_EQ(PoolPeek::firstOf(pool), last);
}

TEST(KarPageMemory, ReleaseOfNothingAndOfForeignAddressesLeavesThePointer)
{
    karPageMemory pool(40, 3);
    int foreign = 0;
    void *p = &foreign;
    pool.deleteElement(p); // no page yet
    EXPECT_EQ(p, &foreign);
    void *element = pool.newElement();
    pool.deleteElement(p);
    EXPECT_EQ(p, &foreign);
    p = nullptr;
    pool.deleteElement(p);
    EXPECT_EQ(p, nullptr);
    p = static_cast<char *>(PoolPeek::firstOf(pool)->PageEnd()) + 1;
    void *const behind = p;
    pool.deleteElement(p);
    EXPECT_EQ(p, behind);
    EXPECT_EQ(pool.getAnzElem(), 1);
    pool.deleteElement(element);
    EXPECT_EQ(element, nullptr);
}

TEST(KarPageMemory, SecondReleaseOnlyClearsThePointer)
{
    karPageMemory pool(40, 3);
    void *a = pool.newElement();
    void *b = pool.newElement();
    void *again = a;
    pool.deleteElement(a);
    pool.deleteElement(again);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(pool.getAnzElem(), 1);
    EXPECT_TRUE(pool.isValid());
    pool.deleteElement(b);
}

TEST(KarPageMemory, CountOfZeroGivesNothingAndKeepsItsEmptyPages)
{
    const HeapCounts before;
    {
        karPageMemory pool(40, 0);
        EXPECT_EQ(pool.newElement(), nullptr);
        EXPECT_EQ(pool.newElement(), nullptr);
        EXPECT_EQ(PoolPeek::pages(pool), 2);
        EXPECT_EQ(pool.getAnzElem(), 0);
        EXPECT_TRUE(pool.isValid());
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, DeleteAllDropsElementsInUse)
{
    const HeapCounts before;
    karPageMemory pool(40, 3);
    for (int i = 0; i < 10; ++i)
        pool.newElement();
    EXPECT_EQ(pool.test_delete_all(), 0);
    EXPECT_EQ(pool.delete_all(), 0);
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::currentOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::lastOf(pool), nullptr);
    EXPECT_TRUE(HeapCounts() == before);
    EXPECT_NE(pool.newElement(), nullptr); // and can be used again
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, LeavesTheMarkAsItWas)
{
    for (int mark : {0, 1, 7}) {
        const Mark during(mark);
        karPageMemory pool(40, 3);
        void *p = pool.newElement();
        EXPECT_EQ(globalMemList->getMarkMemListGlobal(), mark);
        pool.deleteElement(p);
        EXPECT_EQ(globalMemList->getMarkMemListGlobal(), mark);
        pool.newElement();
        pool.delete_all();
        EXPECT_EQ(globalMemList->getMarkMemListGlobal(), mark);
    }
}

TEST(KarPageMemory, PagesAreNeitherTrackedNorPooled)
{
    const long tracked = globalMemList->curr_used_memory();
    karPageMemory pool(4, 5);
    pool.newElement();
    EXPECT_EQ(globalMemList->curr_used_memory(), tracked);
    EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), 0);
}

TEST(KarPageMemory, PageWithoutStorageStaysInTheChain)
{
    const HeapCounts before;
    {
        karPageMemory pool(40, 2);
        void *a = pool.newElement();
        void *b = pool.newElement();
        globalMemList->setCurAnzNew(64000); // the page object can be had, its storage can't
        EXPECT_EQ(pool.newElement(), nullptr);
        EXPECT_EQ(globalMemList->getCurAnzNew(), 64001);
        globalMemList->setCurAnzNew(static_cast<int>(before.blocks + 3));
        karPage *const empty = PoolPeek::lastOf(pool);
        EXPECT_EQ(PoolPeek::pages(pool), 2);
        EXPECT_EQ(empty->PageBegin(), nullptr);
        EXPECT_TRUE(pool.isValid());
        void *c = pool.newElement(); // behind it
        EXPECT_EQ(PoolPeek::pages(pool), 3);
        EXPECT_EQ(empty->next(), PoolPeek::lastOf(pool));
        pool.deleteElement(a);
        pool.deleteElement(b);
        EXPECT_EQ(PoolPeek::firstOf(pool), empty);
        pool.deleteElement(c);
        EXPECT_EQ(PoolPeek::pages(pool), 1);
        EXPECT_EQ(pool.getAnzElem(), 0);
        EXPECT_NE(pool.newElement(), nullptr);
        EXPECT_TRUE(pool.isValid());
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, PageAfterAMissingPageObjectStartsAChainOfItsOwn)
{
    karPageMemory pool(40, 2);
    void *a = pool.newElement();
    void *b = pool.newElement();
    karPage *const older = PoolPeek::firstOf(pool);
    {
        AllAllocationsFail failing;
        EXPECT_EQ(pool.newElement(), nullptr);
    }
    EXPECT_EQ(PoolPeek::lastOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::currentOf(pool), nullptr);
    EXPECT_EQ(PoolPeek::firstOf(pool), older);

    void *c = pool.newElement();
    ASSERT_NE(c, nullptr);
    karPage *const newer = PoolPeek::lastOf(pool);
    EXPECT_EQ(newer->prev(), nullptr);
    EXPECT_EQ(PoolPeek::firstOf(pool), older);
    EXPECT_EQ(pool.getAnzElem(), 2); // the new chain isn't reached
    EXPECT_TRUE(pool.isValid());
    void *const cAddress = c;
    pool.deleteElement(c);
    EXPECT_EQ(c, cAddress);
    void *d = pool.newElement(); // each takes a page of its own behind it
    EXPECT_EQ(newer->next(), PoolPeek::lastOf(pool));
    EXPECT_EQ(newer->elementUsed(), 1);

    void *const aAddress = a;
    pool.deleteElement(a);
    EXPECT_EQ(pool.newElement(), aAddress); // the older chain is still served first
    a = aAddress;
    pool.deleteElement(a);
    pool.deleteElement(b); // the older chain is gone
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    pool.deleteElement(d);
    EXPECT_NE(d, nullptr);
    EXPECT_EQ(pool.getAnzElem(), 2); // which makes the newer one the way in
    EXPECT_EQ(PoolPeek::firstOf(pool), PoolPeek::lastOf(pool));
    EXPECT_TRUE(pool.isValid());
    pool.deleteElement(d);
    EXPECT_EQ(d, nullptr);
    EXPECT_NE(pool.newElement(), nullptr);
    EXPECT_EQ(newer->elementUsed(), 2);
}

TEST(KarPageMemory, ChainsApartGoWithThePool)
{
    for (int way = 0; way < 4; ++way) {
        SCOPED_TRACE(way);
        const HeapCounts before;
        {
            karPageMemory pool(40, 1);
            void *a = pool.newElement();
            for (int chain = 0; chain < 3; ++chain) {
                {
                    AllAllocationsFail failing;
                    EXPECT_EQ(pool.newElement(), nullptr);
                }
                pool.newElement();
                pool.newElement();
            }
            EXPECT_EQ(pool.getAnzElem(), 1);
            if (way == 1) {
                pool.delete_all();
                EXPECT_TRUE(HeapCounts() == before);
            } else if (way > 1) {
                pool.deleteElement(a); // no first page any more
                EXPECT_EQ(pool.delete_all(), 0);
                EXPECT_FALSE(HeapCounts() == before);
            }
            if (way == 3) {
                EXPECT_EQ(pool.getAnzElem(), 2); // the newest one is the way in
                pool.delete_all();
                EXPECT_TRUE(HeapCounts() == before);
            }
        }
        EXPECT_TRUE(HeapCounts() == before);
    }
}

TEST(KarPageMemory, ChainApartLosesItsFirstPage)
{
    const HeapCounts before;
    {
        PoolPeek pool(40, 1);
        pool.newElement();
        {
            AllAllocationsFail failing;
            pool.newElement();
        }
        karPage *const begins = pool.appendPage();
        karPage *const follows = pool.appendPage();
        pool.deletePage(begins);
        EXPECT_EQ(PoolPeek::lastOf(pool), follows);
        pool.appendPage();
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, ChainsApartThatAHostJoinsGoOnceOnly)
{
    for (int way = 0; way < 5; ++way) {
        SCOPED_TRACE(way);
        const HeapCounts before;
        {
            PoolPeek pool(40, 1);
            pool.newElement();
            karPage *chains[2];
            for (karPage *&chain : chains) {
                {
                    AllAllocationsFail failing;
                    EXPECT_EQ(pool.newElement(), nullptr);
                }
                chain = pool.appendPage();
            }
            switch (way) {
            case 0: // behind the first pages
                chains[0]->append(PoolPeek::firstOf(pool));
                EXPECT_EQ(pool.newElement(), chains[0]->PageBegin());
                break;
            case 1: // in front of them
                chains[1]->insertFront(PoolPeek::firstOf(pool));
                EXPECT_EQ(pool.newElement(), chains[1]->PageBegin());
                break;
            case 2: // one behind the other, and the front one goes
                chains[1]->append(chains[0]);
                pool.deletePage(chains[0]);
                break;
            case 3:
                chains[0]->append(chains[1]);
                break;
            default: // reached instead of the first pages
                chains[1]->append(PoolPeek::firstOf(pool));
                PoolPeek::firstOf(pool) = chains[0];
                PoolPeek::firstOf(pool)->append(chains[1]);
                break;
            }
        }
        EXPECT_TRUE(HeapCounts() == before);
    }
}

TEST(KarPageMemory, WayIntoAChainApartThatAHostSetsIsTheOnlyOne)
{
    const HeapCounts before;
    karPage *first;
    {
        karPageMemory pool(40, 1);
        pool.newElement();
        first = PoolPeek::firstOf(pool);
        {
            AllAllocationsFail failing;
            EXPECT_EQ(pool.newElement(), nullptr);
        }
        pool.newElement();
        PoolPeek::firstOf(pool) = PoolPeek::lastOf(pool);
        EXPECT_EQ(pool.getAnzElem(), 1);
    }
    const Mark direct(0);
    delete first; // belongs to no pool any more
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarPageMemory, PointerThatStandsInItsElementIsNotWrittenTo)
{
    for (int others : {0, 1}) { // the page goes, and it stays
        karPageMemory pool(40, 3);
        for (int i = 0; i < others; ++i)
            pool.newElement();
        for (std::size_t place : {0u, 1u, 4u}) {
            void **const element = static_cast<void **>(pool.newElement());
            element[place] = element;
            pool.deleteElement(element[place]);
            if (others == 1 && place == 4) {
                EXPECT_EQ(element[place], element); // behind the links of a free element
            }
            EXPECT_EQ(pool.getAnzElem(), others);
            EXPECT_TRUE(pool.isValid());
        }
    }
}

TEST(KarPageMemory, AnAssignedPoolTakesFromItsNewPages)
{
    karPageMemory pool(40, 3), source(40, 3);
    pool.newElement();
    source.newElement();
    karPageMemory former(pool); // holds the pages that the pool leaves
    pool = source;
    pool.newElement();
    EXPECT_EQ(PoolPeek::firstOf(source)->elementUsed(), 2);
    EXPECT_EQ(PoolPeek::firstOf(former)->elementUsed(), 1);
    PoolPeek::firstOf(pool) = nullptr; // the source destroys them
}

TEST(KarPageMemory, AssignmentToAPageOfItIsFollowed)
{
    karPageMemory pool(40, 2);
    void *elements[4];
    for (void *&element : elements)
        element = pool.newElement();
    void *const released = elements[0];
    pool.deleteElement(elements[0]);
    karPage &first = *PoolPeek::firstOf(pool);
    alignas(karPage) unsigned char abandoned[sizeof(karPage)];
    karPage &image = *::new (static_cast<void *>(abandoned)) karPage(first);
    EXPECT_EQ(image.newElement(), released);
    first = image; // is full now, which the pool isn't told
    EXPECT_EQ(pool.getAnzElem(), 4);
    EXPECT_NE(pool.newElement(), nullptr);
    EXPECT_EQ(PoolPeek::pages(pool), 3);
    void *p = released;
    pool.deleteElement(p);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(pool.newElement(), released);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, AppendingMakesTheNewerChainTheWayInAgain)
{
    karPageMemory pool(40, 1);
    void *a = pool.newElement();
    {
        AllAllocationsFail failing;
        EXPECT_EQ(pool.newElement(), nullptr);
    }
    pool.newElement();
    karPage *const newer = PoolPeek::lastOf(pool);
    pool.deleteElement(a);
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    pool.newElement(); // appended behind the newer chain and the way into it
    EXPECT_EQ(PoolPeek::firstOf(pool), newer->next());
    EXPECT_EQ(pool.getAnzElem(), 2);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, CopyUsesTheSamePages)
{
    alignas(karPageMemory) unsigned char abandoned[sizeof(karPageMemory)];
    karPageMemory &source = *::new (static_cast<void *>(abandoned)) karPageMemory(40, 3);
    void *a = source.newElement();
    void *b = source.newElement();
    karPageMemory copy(source);
    EXPECT_EQ(copy.getAnzElem(), 2);
    EXPECT_EQ(PoolPeek::lastOf(copy), PoolPeek::lastOf(source));
    EXPECT_TRUE(copy.isValid());
    copy.deleteElement(a);
    EXPECT_EQ(a, nullptr);
    for (int i = 0; i < 5; ++i)
        EXPECT_NE(copy.newElement(), nullptr);
    EXPECT_EQ(copy.getAnzElem(), 6);
    EXPECT_EQ(PoolPeek::pages(copy), 2);
    karPageMemory assigned(7, 7);
    assigned = copy;
    EXPECT_EQ(assigned.elementSize(), 40);
    assigned.deleteElement(b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(assigned.getAnzElem(), 5);
    EXPECT_TRUE(assigned.isValid());
    for (karPageMemory *other : {&copy, &source})
        PoolPeek::firstOf(*other) = nullptr; // one only destroys the pages
}

TEST(KarPageMemory, PagesAppendedAheadAreFilledInTheirOrder)
{
    PoolPeek pool(40, 1);
    std::vector<karPage *> pages;
    for (int i = 0; i < 150; ++i)
        pages.push_back(pool.appendPage());
    EXPECT_TRUE(pool.isValid());
    for (karPage *page : pages)
        EXPECT_EQ(pool.newElement(), page->PageBegin());
    EXPECT_EQ(PoolPeek::pages(pool), 150);
    for (std::size_t i : {149u, 70u, 64u, 63u, 1u}) { // the lowest page with room comes first
        void *p = pages[i]->PageBegin();
        pages[i]->deleteElement(p);
    }
    for (std::size_t i : {1u, 63u, 64u, 70u, 149u})
        EXPECT_EQ(pool.newElement(), pages[i]->PageBegin());
}

TEST(KarPageMemory, ServesPagesThatAreAppendedAndDeletedByHand)
{
    PoolPeek pool(40, 3);
    karPage *const a = pool.appendPage();
    karPage *const b = pool.appendPage();
    EXPECT_EQ(a->next(), b);
    EXPECT_EQ(PoolPeek::firstOf(pool), a);
    EXPECT_EQ(PoolPeek::lastOf(pool), b);
    pool.deletePage(nullptr);
    void *p = b->newElement(); // elements of a page that the pool didn't hand out itself
    EXPECT_TRUE(pool.isValid());
    for (int i = 0; i < 3; ++i)
        a->newElement();
    EXPECT_TRUE(pool.isValid());
    EXPECT_EQ(pool.newElement(), static_cast<char *>(p) - strideOf(40));
    pool.deleteElement(p);
    EXPECT_EQ(p, nullptr);
    pool.deletePage(a);
    EXPECT_EQ(PoolPeek::firstOf(pool), b);
    EXPECT_EQ(pool.getAnzElem(), 1);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, PagesAppendedByHandAreUsedFirstToLast)
{
    PoolPeek pool(16, 1);
    std::vector<karPage *> pages;
    for (int i = 0; i < 200; ++i)
        pages.push_back(pool.appendPage());
    EXPECT_TRUE(pool.isValid());
    for (karPage *const page : pages)
        EXPECT_EQ(pool.newElement(), page->firstPageElement());
    EXPECT_EQ(PoolPeek::pages(pool), 200);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, SmallPagesChainedByHandBehindALargerOneAreUsedAndFoundAsWell)
{
    PoolPeek pool(16, 1000);
    void *own[1000];
    own[0] = pool.newElement();
    {
        std::deque<karPage> small; // many of them side by side, on both sides of whatever the first page ends at
        for (int i = 0; i < 40; ++i)
            small.emplace_back(PoolPeek::firstOf(pool), 16, 2);
        EXPECT_TRUE(pool.isValid());
        for (int i = 1; i < 1000; ++i)
            own[i] = pool.newElement();
        for (karPage &page : small) {
            EXPECT_EQ(pool.newElement(), static_cast<char *>(page.PageBegin()) + 16);
            EXPECT_EQ(pool.newElement(), page.PageBegin());
        }
        for (karPage &page : small) {
            void *p = page.PageBegin();
            pool.deleteElement(p);
            EXPECT_EQ(p, nullptr);
            EXPECT_EQ(page.elementUsed(), 1);
        }
        EXPECT_EQ(pool.newElement(), small.front().PageBegin());
        EXPECT_TRUE(pool.isValid());
    }
    for (void *&element : own)
        pool.deleteElement(element);
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
}

TEST(KarPageMemory, PagesChainedByHandAreUsedInTheOrderOfTheChain)
{
    for (int way = 0; way < 6; ++way) {
        SCOPED_TRACE(way);
        PoolPeek pool(40, 1);
        for (int i = 0; i < 3; ++i)
            pool.newElement();
        karPage *const first = PoolPeek::firstOf(pool);
        karPage *const last = PoolPeek::lastOf(pool);
        karPage byHand(nullptr, 40, 2);
        switch (way) {
        case 0:
            byHand.insertFront(last);
            EXPECT_EQ(byHand.next(), first);
            break;
        case 1:
            byHand.insert(first);
            EXPECT_EQ(byHand.next(), first);
            break;
        case 2:
            byHand.insert(last);
            EXPECT_EQ(byHand.next(), last);
            break;
        case 3:
            byHand.append(first);
            EXPECT_EQ(byHand.prev(), last);
            break;
        case 4: // the links alone
            byHand.next(first);
            first->prev(&byHand);
            break;
        default:
            byHand.prev(last);
            last->next(&byHand);
            break;
        }
        EXPECT_TRUE(pool.isValid());
        void *p = last->PageBegin();
        last->deleteElement(p);
        const bool before = way != 3 && way != 5;
        if (!before) {
            EXPECT_EQ(pool.newElement(), last->PageBegin());
        }
        EXPECT_EQ(pool.newElement(), static_cast<char *>(byHand.PageBegin()) + 40);
        EXPECT_EQ(pool.newElement(), byHand.PageBegin());
        if (before) {
            EXPECT_EQ(pool.newElement(), last->PageBegin());
        }
        EXPECT_EQ(pool.getAnzElem(), 5);
        p = byHand.PageBegin();
        pool.deleteElement(p);
        EXPECT_EQ(p, nullptr);
        EXPECT_EQ(byHand.elementUsed(), 1);
        EXPECT_TRUE(pool.isValid());
        byHand.unchain();
        EXPECT_EQ(pool.getAnzElem(), 3);
        EXPECT_TRUE(pool.isValid());
    }
}

TEST(KarPageMemory, PageMovedToAnotherPoolIsUsedAndReleasedThere)
{
    PoolPeek pool(40, 1), other(40, 1);
    void *elements[3];
    for (void *&element : elements)
        element = pool.newElement();
    other.newElement();
    karPage *const page = PoolPeek::firstOf(pool)->next();
    page->unchain();
    void *p = elements[1];
    pool.deleteElement(p);
    EXPECT_EQ(p, elements[1]); // in no page of the pool any more
    page->append(PoolPeek::firstOf(other));
    EXPECT_TRUE(pool.isValid());
    EXPECT_TRUE(other.isValid());
    page->deleteElement(p);
    EXPECT_EQ(p, nullptr);
    EXPECT_NE(pool.newElement(), elements[1]);
    EXPECT_EQ(other.newElement(), elements[1]);
    other.deleteElement(elements[1]);
    EXPECT_EQ(elements[1], nullptr);
    EXPECT_EQ(PoolPeek::pages(other), 1); // the page has gone
    EXPECT_EQ(PoolPeek::pages(pool), 3);
    karPage *const first = PoolPeek::firstOf(pool);
    karPage *const behind = first->next();
    first->append(nullptr); // alone, while the one behind it keeps its links
    EXPECT_EQ(PoolPeek::pages(pool), 1);
    first->next(behind);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, FollowsASubclassIntoAnotherChain)
{
    PoolPeek pool(40, 2), other(40, 2);
    pool.newElement();
    void *p = other.newElement();
    karPage *const own = PoolPeek::firstOf(pool);
    PoolPeek::firstOf(pool) = PoolPeek::firstOf(other);
    EXPECT_EQ(pool.newElement(), PoolPeek::firstOf(other)->PageBegin());
    pool.deleteElement(p);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(other.getAnzElem(), 1);
    {
        const Mark direct(0);
        delete own; // with all that is known of its chain
    }
    EXPECT_NE(pool.newElement(), nullptr);
    EXPECT_EQ(other.getAnzElem(), 2);
    PoolPeek::firstOf(pool) = PoolPeek::lastOf(pool) = nullptr; // the other destroys the pages
}

TEST(KarPageMemory, PageBypassedByADyingCopyIsUsedNoMore)
{
    for (const bool assigned : {false, true}) {
        PoolPeek pool(40, 2);
        void *elements[6];
        for (void *&element : elements)
            element = pool.newElement();
        void *p = elements[5];
        pool.deleteElement(p);
        karPage *const page = PoolPeek::firstOf(pool)->next();
        page->deleteElement(p = elements[2]);
        const Mark direct(0); // under which the pool obtained the page
        if (assigned) {
            karPage copy(nullptr, 40, 1);
            KarDellocMemory(copy.PageBegin());
            copy = *page; // takes the storage with it
        } else {
            const karPage copy(*page);
        }
        PagePeek::dropStorage(*page);
        EXPECT_TRUE(pool.isValid());
        EXPECT_EQ(PoolPeek::pages(pool), 2);
        EXPECT_EQ(pool.newElement(), elements[5]);
        p = elements[3];
        pool.deleteElement(p);
        EXPECT_EQ(p, elements[3]);
        EXPECT_EQ(pool.getAnzElem(), 4);
        delete page;
    }
}

TEST(KarPageMemory, PointerInALargerElementChainedByHandIsNotWrittenTo)
{
    PoolPeek pool(16, 1);
    pool.newElement();
    new karPage(PoolPeek::firstOf(pool), 160, 1);
    void **const element = static_cast<void **>(pool.newElement());
    element[10] = element;
    pool.deleteElement(element[10]); // and its page goes
    EXPECT_EQ(PoolPeek::pages(pool), 1);
    new karPage(PoolPeek::firstOf(pool), 160, 2);
    void **const upper = static_cast<void **>(pool.newElement());
    void **const lower = static_cast<void **>(pool.newElement());
    upper[10] = upper;
    pool.deleteElement(upper[10]);
    EXPECT_EQ(upper[10], upper);
    lower[10] = lower + 1;
    pool.deleteElement(lower[10]); // counts as the release of the last element
    EXPECT_EQ(PoolPeek::pages(pool), 1);
}

TEST(KarPageMemory, AssignedToItselfKeepsItsPages)
{
    karPageMemory pool(16, 4);
    void *p = pool.newElement();
    const karPageMemory &same = pool;
    pool = same;
    EXPECT_TRUE(pool.isValid());
    pool.deleteElement(p);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(PoolPeek::pages(pool), 0);
}

TEST(KarPageMemory, ElementsAreAlignedForTheirLinks)
{
    if (!wide)
        return; // elements lie as close as their size says
    for (int size : {1, 9, 10, 17, 28, 100, 333}) {
        karPageMemory pool(size, 9);
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(at(pool.newElement()) % 8, 0u);
    }
}

TEST(KarPageMemory, FirstPageWithRoomIsFoundAmongThousands)
{
    karPageMemory pool(16, 2);
    std::vector<void *> elements;
    for (int i = 0; i < 2 * 4200; ++i)
        elements.push_back(pool.newElement());
    const auto releaseOneOf = [&](std::size_t page) {
        void *p = elements[2 * page];
        pool.deleteElement(p);
    };
    for (const std::size_t page : {4150u, 130u, 10u}) // the pages beyond 4096 have a level of their own
        releaseOneOf(page);
    for (const std::size_t page : {10u, 130u, 4150u})
        EXPECT_EQ(pool.newElement(), elements[2 * page]);
    for (const std::size_t page : {10u, 4150u})
        releaseOneOf(page);
    for (const std::size_t page : {10u, 4150u})
        EXPECT_EQ(pool.newElement(), elements[2 * page]);
    EXPECT_NE(pool.newElement(), nullptr); // from a new page
    EXPECT_EQ(pool.getAnzElem(), 2 * 4200 + 1);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, RoomBeyondThe4096thPageThatIsLostLeavesTheEarlierRoom)
{
    karPageMemory pool(16, 2);
    std::vector<void *> elements;
    for (int i = 0; i < 2 * 4200; ++i)
        elements.push_back(pool.newElement());
    const auto releaseOneOf = [&](std::size_t page) {
        void *p = elements[page];
        pool.deleteElement(p);
        EXPECT_EQ(p, nullptr);
    };
    releaseOneOf(2 * 4100);     // the only page with room of those behind the first 4096
    releaseOneOf(2 * 10);       // one of the first ones
    releaseOneOf(2 * 4100 + 1); // which goes, and its room with it
    EXPECT_TRUE(pool.isValid());
    EXPECT_EQ(pool.newElement(), elements[2 * 10]);
    releaseOneOf(2 * 4000);
    releaseOneOf(2 * 4150);
    EXPECT_EQ(pool.newElement(), elements[2 * 4000]);
    EXPECT_EQ(pool.newElement(), elements[2 * 4150]);
    EXPECT_NE(pool.newElement(), nullptr); // from a new page
    EXPECT_EQ(PoolPeek::pages(pool), 4200);
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemory, PointerInTheElementBehindTheReleasedOneIsCleared)
{
    karPageMemory pool(16, 3);
    void **const upper = static_cast<void **>(pool.newElement());
    *upper = pool.newElement();
    ASSERT_EQ(*upper, reinterpret_cast<char *>(upper) - 16);
    pool.deleteElement(*upper);
    EXPECT_EQ(*upper, nullptr);
    EXPECT_EQ(pool.getAnzElem(), 1);
}

TEST(KarPageMemory, AddressesInPagesThatWentAfterTheirChainWasChangedAreUnknown)
{
    constexpr int elements = 5000; // pages of some size, which all pools look up together
    void *gone;
    {
        PoolPeek pool(16, elements);
        gone = pool.newElement();
        karPage byHand(nullptr, 16, 2);
        byHand.append(PoolPeek::firstOf(pool));
        byHand.unchain();
    }
    karPageMemory pool(16, elements);
    void *const own = pool.newElement();
    const bool sameStorage = PoolPeek::firstOf(pool)->search(gone) != nullptr;
    void *p = gone; // nothing of the page that went is read for it: the sanitizer watches
    pool.deleteElement(p);
    EXPECT_EQ(p, sameStorage ? nullptr : gone);
    EXPECT_NE(own, nullptr);
}
