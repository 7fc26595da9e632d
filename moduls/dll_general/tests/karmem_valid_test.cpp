// What `isValid` of pages, pools and records notices: each figure and link in turn is set to what it can't be, and set back.
#include "karmemgb.h"

#include "failalloc.h"
#include "mempeek.h"
#include "testset.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct PageFields : karPage {
    static void *&start(karPage &page) { return page.*&PageFields::firstPageElement_; }
    static void *&end(karPage &page) { return page.*&PageFields::lastPageElement_; }
    static int &distance(karPage &page) { return page.*&PageFields::elementFullSize_; }
    static int &count(karPage &page) { return page.*&PageFields::elementCount_; }
    static int &used(karPage &page) { return page.*&PageFields::elementUsed_; }
    static karFreeElement *&freeList(karPage &page) { return page.*&PageFields::firstFreeElement_; }
};

struct EntryFields : karMemory_Entry {
    static void *&block(karMemory_Entry &entry) { return entry.*&EntryFields::hentry_; }
};

/// Two pages of two elements, all four in use.
struct FullPool {
    FullPool()
    {
        for (void *&element : elements)
            element = pool.newElement();
        first = PoolPeek::firstOf(pool);
        second = first->next();
    }
    PoolPeek pool{16, 2};
    void *elements[4];
    karPage *first, *second;
};

} // namespace

TEST(KarPageIsValid, NoticesFiguresThatDisagree)
{
    karPage page(nullptr, 16, 4);
    EXPECT_TRUE(page.isValid());
    {
        const Set<void *> shorter(PageFields::end(page), moved(page.lastPageElement(), -1));
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<int> more(PageFields::used(page), 1); // with all four free
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<karFreeElement *> none(PageFields::freeList(page), nullptr); // with none in use
        EXPECT_FALSE(page.isValid());
    }
    EXPECT_TRUE(page.isValid());
}

TEST(KarPageIsValid, NoticesDamagedLinksOfFreeElements)
{
    karPage page(nullptr, 16, 4);
    karFreeElement *const top = PageFields::freeList(page);
    karFreeElement *const second = top->next();
    karFreeElement *const bottom = second->next()->next();
    ASSERT_EQ(bottom->next(), nullptr);

    second->prev(nullptr);
    EXPECT_FALSE(page.isValid());
    second->prev(top);
    bottom->next(top); // round and round
    EXPECT_FALSE(page.isValid());
    bottom->next(nullptr);
    {
        auto *const inside = static_cast<karFreeElement *>(moved(top, 4));
        const Set<karFreeElement *> shifted(PageFields::freeList(page), inside);
        EXPECT_FALSE(page.isValid());
    }
    {
        karFreeElement outside(nullptr);
        const Set<karFreeElement *> foreign(PageFields::freeList(page), &outside);
        EXPECT_FALSE(page.isValid());
        EXPECT_EQ(page.canInsertElement(), 0);
    }
    EXPECT_TRUE(page.isValid());
}

TEST(KarPageIsValid, NoticesFiguresWithoutAStorage)
{
    karPage page(nullptr, 16, -1);
    ASSERT_EQ(page.firstPageElement(), nullptr);
    EXPECT_TRUE(page.isValid());
    char place[16];
    {
        const Set<void *> end(PageFields::end(page), place);
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<karFreeElement *> node(PageFields::freeList(page), static_cast<karFreeElement *>(moved(place, 0)));
        EXPECT_FALSE(page.isValid());
    }
    for (int *const figure : {&PageFields::distance(page), &PageFields::count(page), &PageFields::used(page)}) {
        const Set<int> one(*figure, 1);
        EXPECT_FALSE(page.isValid());
    }
    EXPECT_TRUE(page.isValid());
}

TEST(KarPageMemoryIsValid, NoticesAPageWithoutAWayIn)
{
    PoolPeek pool(16, 4);
    EXPECT_TRUE(pool.isValid());
    karPage page(nullptr, 16, 4);
    const Set<karPage *> current(PoolPeek::currentOf(pool), &page);
    EXPECT_FALSE(pool.isValid());
    const Set<karPage *> last(PoolPeek::lastOf(pool), &page); // the page appended last, after the first ones went
    EXPECT_TRUE(pool.isValid());
}

TEST(KarPageMemoryIsValid, NoticesADamagedPageOrLink)
{
    FullPool full;
    EXPECT_TRUE(full.pool.isValid());
    {
        const Set<int> fewer(PageFields::used(*full.second), 1);
        EXPECT_FALSE(full.pool.isValid());
    }
    karListObjectNV &second = *full.second; // the pool isn't told of links that are changed here
    second.prev(nullptr);
    EXPECT_FALSE(full.pool.isValid());
    second.prev(full.first);
    {
        karPage foreign(nullptr, 16, 2);
        second.next(&foreign);
        foreign.karListObjectNV::prev(full.second);
        EXPECT_FALSE(full.pool.isValid());
    }
    {
        FullPool other;
        const Set<karPage *> otherChain(PoolPeek::firstOf(full.pool), other.first);
        EXPECT_FALSE(full.pool.isValid());
    }
    EXPECT_TRUE(full.pool.isValid());
}

TEST(KarPageMemoryIsValid, NoticesAnIndexThatSaysOtherThanTheChain)
{
    FullPool full;
    karListObjectNV &first = *full.first; // the pool isn't told of links that are changed here
    karListObjectNV &second = *full.second;
    first.unchain(); // stands behind its successor then
    second.next(&first);
    first.prev(&second);
    EXPECT_FALSE(full.pool.isValid());
    second.next(nullptr);
    second.prev(&first);
    first.prev(nullptr);
    EXPECT_FALSE(full.pool.isValid()); // one page, two in the index
    first.next(&second);
    EXPECT_TRUE(full.pool.isValid());
    {
        const Set<void *> start(PageFields::start(*full.first), full.second->firstPageElement());
        const Set<void *> end(PageFields::end(*full.first), full.second->lastPageElement());
        EXPECT_FALSE(full.pool.isValid());
    }
    {
        const Set<void *> end(PageFields::end(*full.first), moved(full.first->lastPageElement(), 16 * 4096));
        const Set<int> count(PageFields::count(*full.first), 2 + 4096);
        const Set<int> used(PageFields::used(*full.first), 2 + 4096);
        ASSERT_TRUE(full.first->isValid());
        EXPECT_FALSE(full.pool.isValid());
    }
    full.pool.deleteElement(full.elements[0]);
    EXPECT_TRUE(full.pool.isValid());
    {
        const Set<karFreeElement *> none(PageFields::freeList(*full.first), nullptr);
        const Set<int> used(PageFields::used(*full.first), 2);
        EXPECT_FALSE(full.pool.isValid()); // the index knows of room
    }
    EXPECT_TRUE(full.pool.isValid());
}

TEST(KarMemoryIsValid, NoticesDamagedRecords)
{
    char places[20];
    karMemory memory;
    for (char &place : places)
        memory.dxnew(&place, 1);
    memory.dxdelete(std::vector<void *>{places}.data()); // a search among many makes the index
    EXPECT_TRUE(memory.isValid());
    karMemory_Entry *const tail = MemoryPeek::tailOf(memory);
    {
        const Set<karMemory_Entry *> older(MemoryPeek::tailOf(memory), tail->prev());
        EXPECT_FALSE(memory.isValid());
    }
    {
        karMemory_Entry *const before = tail->prev();
        before->next(nullptr);
        EXPECT_FALSE(memory.isValid());
        before->next(tail);
    }
    {
        const Set<void *> other(EntryFields::block(*tail->prev()), &memory);
        EXPECT_FALSE(memory.isValid());
    }
    {
        const Set<int> fewer(PageFields::used(*PoolPeek::firstOf(MemoryPeek::poolOf(memory))), 1);
        EXPECT_FALSE(memory.isValid());
    }
    EXPECT_TRUE(memory.isValid());
    tail->hentry(&memory); // by its user: the index is out of date and made anew at the next search
    EXPECT_TRUE(memory.isValid());
    for (char &place : places)
        memory.dxdelete(std::vector<void *>{&place}.data());
    memory.dxdelete(std::vector<void *>{&memory}.data());
    EXPECT_EQ(MemoryPeek::tailOf(memory), nullptr);
}

TEST(KarMemoryIsValid, NoticesAFileRecordThatIsNotTheTail)
{
    karMemory memory;
    karFile_EntryZ older(nullptr, 0, 1, nullptr);
    karFile_EntryZ newer(nullptr, 0, 1, &older);
    {
        const Set<karFile_EntryZ *> tail(MemoryPeek::filesOf(memory), &newer);
        EXPECT_TRUE(memory.isValid());
    }
    const Set<karFile_EntryZ *> notTheTail(MemoryPeek::filesOf(memory), &older);
    EXPECT_FALSE(memory.isValid());
}

TEST(KarGlobalMemoryIsValid, NoticesADamagedPool)
{
    karPage page(nullptr, 16, 4);
    void *const block = KarAllocMemory(10);
    EXPECT_TRUE(globalMemList->isValid());
    for (int number = 0; number <= 10; ++number) {
        karPageMemory &pool = AllocatorPeek::pool(*globalMemList, number);
        if (karPage *const first = PoolPeek::firstOf(pool)) {
            const Set<int> more(PageFields::used(*first), first->elementUsed() + 1);
            EXPECT_FALSE(globalMemList->isValid());
        }
    }
    EXPECT_TRUE(globalMemList->isValid());
    KarDellocMemory(block);
}
