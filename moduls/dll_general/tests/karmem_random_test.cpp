// Long random sequences beside a plain model: pages that are scanned from the front, free lists that are walked.
// Every address is compared relative to the start of its page, every count and every release.
#include "karmemgb.h"

#include "mempeek.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>
#include <vector>

namespace {

/// The pool as it is described: a scan over the pages, and within the page over its free list.
class PlainPool {
public:
    PlainPool(unsigned elementStride, int elementsPerPage) : stride(elementStride), perPage(elementsPerPage) {}

    struct Page {
        std::vector<int> free; // the next one to be handed out stands last
        int used;
        std::uintptr_t start; // learnt from the first element
    };
    struct Place {
        Page *page;
        int element;
    };

    Place take()
    {
        for (Page &page : pages)
            if (!page.free.empty())
                return take(page);
        pages.push_back({{}, 0, 0});
        for (int i = 0; i < perPage; ++i)
            pages.back().free.push_back(i);
        return take(pages.back());
    }

    /// What the release of an address does: false if no page holds it.
    bool give(std::uintptr_t p)
    {
        for (auto page = pages.begin(); page != pages.end(); ++page) {
            if (p < page->start || p >= page->start + stride * static_cast<unsigned>(perPage))
                continue;
            const unsigned offset = static_cast<unsigned>(p - page->start);
            const int element = static_cast<int>(offset / stride);
            if (offset % stride == 0 && std::find(page->free.begin(), page->free.end(), element) != page->free.end())
                return true; // is free already
            page->used = std::max(0, page->used - 1);
            if (offset % stride == 0)
                page->free.push_back(element);
            if (page->used == 0)
                pages.erase(page);
            return true;
        }
        return false;
    }

    /// Whether a page holds the address without an element that starts there.
    bool isInsideAnElement(std::uintptr_t p) const
    {
        for (const Page &page : pages)
            if (p >= page.start && p < page.start + stride * static_cast<unsigned>(perPage))
                return (p - page.start) % stride != 0;
        return false;
    }

    /// Compares an address with the place that the model hands out.
    ::testing::AssertionResult matches(const Place &place, std::uintptr_t p)
    {
        const std::uintptr_t start = p - static_cast<unsigned>(place.element) * stride;
        if (place.page->start == 0) {
            for (const Page &other : pages)
                if (other.start && start < other.start + stride * static_cast<unsigned>(perPage) &&
                    other.start < start + stride * static_cast<unsigned>(perPage))
                    return ::testing::AssertionFailure() << "a new page overlaps another";
            place.page->start = start;
        }
        if (place.page->start != start)
            return ::testing::AssertionFailure() << "another page or element";
        return ::testing::AssertionSuccess();
    }

    int used() const
    {
        int sum = 0;
        for (const Page &page : pages)
            sum += page.used;
        return sum;
    }
    int pageCount() const { return static_cast<int>(pages.size()); }

private:
    Place take(Page &page)
    {
        const int element = page.free.back();
        page.free.pop_back();
        ++page.used;
        return {&page, element};
    }

    unsigned stride;
    int perPage;
    std::list<Page> pages;
};

/// What a user does with an element: leaves it as it is, writes noise, or builds list nodes of its own in it.
void use(TestRandom &random, void *element, unsigned size, const std::vector<void *> &live)
{
    switch (random.below(4)) {
    case 0:
        break;
    case 1:
        std::memset(element, static_cast<int>(random.below(256)), size);
        break;
    default: {
        // Links to other live elements, and from them back: what a free list looks like.
        void *links[2] = {nullptr, nullptr};
        if (!live.empty()) {
            links[0] = live[random.below(static_cast<unsigned>(live.size()))];
            links[1] = live[random.below(static_cast<unsigned>(live.size()))];
            std::memcpy(links[1], &element, sizeof element);
            std::memcpy(static_cast<char *>(links[0]) + sizeof element, &element, sizeof element);
        }
        std::memcpy(element, links, sizeof links);
    }
    }
}

void runPool(std::uint64_t seed, int size, int perPage, int steps, unsigned most, bool errors)
{
    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", elements of " << size << ", " << perPage << " a page");
    TestRandom random(seed);
    const auto stride = static_cast<unsigned>(strideOf(size));
    karPageMemory pool(size, perPage);
    PlainPool plain(stride, perPage);
    std::vector<void *> live;
    std::vector<void *> gone; // for releases of what isn't in use
    unsigned wanted = 0;
    for (int step = 0; step < steps; ++step) {
        if (step % 2000 == 0)
            wanted = random.below(4) ? random.below(most) : 0;
        const unsigned action = random.below(100);
        if (errors && action < 3 && !gone.empty()) { // a second release, or one after the page has gone
            void *const address = gone[random.below(static_cast<unsigned>(gone.size()))];
            if (std::find(live.begin(), live.end(), address) != live.end() || plain.isInsideAnElement(at(address)))
                continue; // in use again, or in a later page at the same place
            void *p = address;
            const bool known = plain.give(at(p));
            pool.deleteElement(p);
            ASSERT_EQ(p, known ? nullptr : address) << step;
        } else if (action < (live.size() < wanted ? 70u : 30u)) {
            const PlainPool::Place place = plain.take();
            void *const p = pool.newElement();
            ASSERT_NE(p, nullptr);
            ASSERT_TRUE(plain.matches(place, at(p))) << step;
            use(random, p, stride, live);
            live.push_back(p);
        } else if (!live.empty()) {
            std::size_t which = 0; // first in first out, last in first out or any
            switch (step / 5000 % 3) {
            case 0:
                which = random.below(static_cast<unsigned>(live.size()));
                break;
            case 1:
                which = live.size() - 1;
                break;
            default:
                break;
            }
            void *p = live[which];
            live.erase(live.begin() + static_cast<std::ptrdiff_t>(which));
            gone.push_back(p);
            if (gone.size() > 50)
                gone.erase(gone.begin());
            ASSERT_TRUE(plain.give(at(p)));
            pool.deleteElement(p);
            ASSERT_EQ(p, nullptr);
        }
        if (step % 97 == 0) {
            ASSERT_EQ(pool.getAnzElem(), plain.used()) << step;
            ASSERT_EQ(PoolPeek::pages(pool), plain.pageCount()) << step;
        }
        if (step % 5003 == 0) {
            ASSERT_TRUE(pool.isValid()) << step;
        }
    }
    for (void *p : live) {
        ASSERT_TRUE(plain.give(at(p)));
        pool.deleteElement(p);
    }
    EXPECT_EQ(PoolPeek::pages(pool), 0);
    EXPECT_EQ(plain.pageCount(), 0);
}

std::vector<karPage *> pagesOf(karPageMemory &pool)
{
    std::vector<karPage *> pages;
    karPage *const wayIn = PoolPeek::firstOf(pool);
    for (karPage *page = wayIn ? wayIn->first() : nullptr; page; page = page->next())
        pages.push_back(page);
    return pages;
}

void chainSomewhere(TestRandom &random, karPage *page, karPage *other)
{
    switch (random.below(4)) {
    case 0:
        page->append(other);
        break;
    case 1:
        page->insert(other);
        break;
    case 2:
        page->insertFront(other);
        break;
    default: // behind the other, by the links alone
        page->prev(other);
        page->next(other->next());
        if (karPage *const behind = other->next())
            behind->prev(page);
        other->next(page);
        break;
    }
}

/// Two pools whose host takes pages out of their chains and chains them elsewhere, beside walks along the links.
class RechainedPools {
public:
    RechainedPools(TestRandom &source, int elementSize, int elementsPerPage)
        : random(source),
          size(elementSize),
          perPage(elementsPerPage),
          pools{{elementSize, elementsPerPage}, {elementSize, elementsPerPage}}
    {}
    ~RechainedPools()
    {
        const Mark direct(0);
        for (karPage *page : loose)
            delete page;
    }
    RechainedPools(const RechainedPools &) = delete;
    RechainedPools &operator=(const RechainedPools &) = delete;

    void step()
    {
        karPageMemory &pool = pools[random.below(2)];
        const unsigned action = random.below(100);
        if (action < 45)
            take(pool);
        else if (action < 92)
            give(pool);
        else
            rechain(pool, action);
    }
    bool areValid() const { return pools[0].isValid() && pools[1].isValid(); }

private:
    void take(karPageMemory &pool)
    {
        const std::vector<karPage *> pages = pagesOf(pool);
        const auto page = std::find_if(pages.begin(), pages.end(), [](karPage *p) { return p->canInsertElement(); });
        const void *const expected = page != pages.end() ? PagePeek::freeList(**page) : nullptr;
        void *const p = pool.newElement();
        ASSERT_NE(p, nullptr);
        if (expected) {
            ASSERT_EQ(p, expected);
        }
        ASSERT_EQ(pagesOf(pool).size(), pages.size() + (expected ? 0 : 1));
        live.push_back(p);
    }

    void give(karPageMemory &pool)
    {
        if (live.empty())
            return;
        const std::vector<karPage *> pages = pagesOf(pool);
        void *&element = live[random.below(static_cast<unsigned>(live.size()))];
        karPage *const page = pages.empty() ? nullptr : pages.front()->search(element);
        const bool goes = page && page->elementUsed() == 1;
        void *p = element;
        pool.deleteElement(p);
        ASSERT_EQ(p, page ? nullptr : element);
        ASSERT_EQ(pagesOf(pool).size(), pages.size() - (goes ? 1 : 0));
        if (page) {
            element = live.back();
            live.pop_back();
        }
    }

    void rechain(karPageMemory &pool, unsigned action)
    {
        const std::vector<karPage *> pages = pagesOf(pool);
        karPage *const page = pages.empty() ? nullptr : pages[random.below(static_cast<unsigned>(pages.size()))];
        if (action < 94) {
            const Mark direct(0); // straight from the heap, as the pages of the pools
            loose.push_back(new karPage(nullptr, size, perPage));
        } else if (action < 97) {
            if (page && !isField(page)) {
                page->unchain();
                loose.push_back(page);
            }
        } else if (page && !loose.empty()) {
            chainSomewhere(random, loose.back(), page);
            loose.pop_back();
        }
    }

    bool isField(const karPage *page)
    {
        for (karPageMemory &pool : pools)
            for (const karPage *field : {PoolPeek::firstOf(pool), PoolPeek::currentOf(pool), PoolPeek::lastOf(pool)})
                if (page == field)
                    return true;
        return false;
    }

    TestRandom &random;
    int size;
    int perPage;
    karPageMemory pools[2];
    std::vector<karPage *> loose; // in no pool
    std::vector<void *> live;     // elements of any page
};

} // namespace

TEST(KarPageMemory, MillionRandomStepsAgreeWithPlainScans)
{
    struct {
        int size;
        int perPage;
        int steps;
        unsigned most;
    } const runs[] = {{10, 5, 200000, 300},    {1, 1, 100000, 200},   {17, 2, 100000, 500},  {24, 64, 200000, 1500},
                      {100, 100, 150000, 900}, {333, 7, 100000, 600}, {2, 3000, 50000, 500}, {5000, 30, 100000, 400}};
    std::uint64_t seed = 1;
    for (const auto &run : runs)
        runPool(seed++, run.size, run.perPage, testSteps(run.steps), run.most, true);
}

TEST(KarPageMemory, ThousandsOfPagesAreServedFromTheFront)
{
    // The index of pages grows, closes its gaps and shrinks.
    constexpr int pages = 10000;
    karPageMemory pool(40, 2);
    std::vector<void *> elements;
    for (int i = 0; i < 2 * pages; ++i)
        elements.push_back(pool.newElement());
    EXPECT_EQ(PoolPeek::pages(pool), pages);
    EXPECT_TRUE(pool.isValid());
    TestRandom random(3);
    std::vector<std::size_t> holes; // one element of some pages
    for (std::size_t page = 0; page < pages; page += 1 + random.below(7))
        holes.push_back(2 * page + random.below(2));
    for (std::size_t i = holes.size(); i-- > 0;) {
        void *p = elements[holes[i]];
        pool.deleteElement(p);
    }
    for (const std::size_t hole : holes)
        ASSERT_EQ(pool.newElement(), elements[hole]);
    for (std::size_t page = 0; page < pages; ++page) // most pages go
        if (page % 16 != 5)
            for (void *p : {elements[2 * page], elements[2 * page + 1]}) {
                void *element = p;
                pool.deleteElement(element);
                ASSERT_EQ(element, nullptr);
            }
    EXPECT_TRUE(pool.isValid());
    for (int i = 0; i < 3 * pages; ++i)
        ASSERT_NE(pool.newElement(), nullptr);
    EXPECT_TRUE(pool.isValid());
    for (std::size_t page = 5; page < pages; page += 16) {
        void *p = elements[2 * page];
        pool.deleteElement(p);
        ASSERT_EQ(pool.newElement(), elements[2 * page]);
    }
    EXPECT_TRUE(pool.isValid());
}

TEST(KarGlobalMemory, MillionRandomStepsAgreeWithPlainScans)
{
    constexpr std::uint64_t seed = 42;
    SCOPED_TRACE(seed);
    TestRandom random(seed);
    struct Class {
        unsigned size;
        int number;
        PlainPool plain;
    };
    Class classes[] = {{10, 0, PlainPool(wide ? 32 : 10, 5000)},
                       {100, 7, PlainPool(wide ? 112 : 100, 1000)},
                       {200, 8, PlainPool(wide ? 224 : 200, 500)},
                       {500, 9, PlainPool(wide ? 512 : 500, 200)},
                       {1000, 10, PlainPool(wide ? 1024 : 1000, 100)}};
    struct Block {
        void *p;
        unsigned size;
        Class *sizeClass; // null for a heap block
        bool tracked;
        unsigned char fill;
    };
    std::vector<Block> live;
    const long blocksBefore = globalMemList->getCurAnzNew();
    long heapBlocks = 0;
    long tracked = 0;
    long highest = globalMemList->max_used_memory();
    unsigned wanted = 0;
    const auto pageCount = [&classes] {
        int pages = 0;
        for (const Class &sizeClass : classes)
            pages += sizeClass.plain.pageCount();
        return pages;
    };
    for (int step = 0, steps = testSteps(1000000); step < steps; ++step) {
        if (step % 20000 == 0)
            wanted = random.below(3) ? random.below(3000) : 0;
        if (random.below(100) < (live.size() < wanted ? 65u : 35u)) {
            const bool direct = random.below(50) == 0;
            const unsigned size = random.below(10) ? 1 + random.below(992) : 1 + random.below(20000);
            unsigned total = size + 8;
            globalMemList->setMarkMemListGlobal(direct ? 0 : 1);
            const long allocations = globalMemList->getAnzNew();
            void *const p = KarAllocMemory(size);
            ASSERT_NE(p, nullptr);
            globalMemList->setMarkMemListGlobal(1);
            Class *sizeClass = nullptr;
            if (!direct && total <= 1000) {
                for (Class &candidate : classes)
                    if (total <= candidate.size) {
                        sizeClass = &candidate;
                        break;
                    }
                ASSERT_NE(sizeClass, nullptr);
                ASSERT_TRUE(sizeClass->plain.matches(sizeClass->plain.take(), at(p) - 4 - blockShift)) << step;
                total = sizeClass->size;
            } else {
                ++heapBlocks;
                if (!direct) {
                    tracked += static_cast<long>(total);
                    highest = std::max(highest, tracked);
                }
            }
            ASSERT_GT(globalMemList->getAnzNew(), allocations);
            unsigned guard;
            std::memcpy(&guard, static_cast<char *>(p) - 4, 4);
            ASSERT_EQ(guard, total);
            std::memcpy(&guard, static_cast<char *>(p) + total - 8, 4);
            ASSERT_EQ(guard, total);
            const unsigned char fill = static_cast<unsigned char>(step);
            std::memset(p, fill, std::min(size, 64u));
            live.push_back({p, size, sizeClass, !direct && !sizeClass, fill});
        } else if (!live.empty()) {
            const std::size_t which = random.below(static_cast<unsigned>(live.size()));
            const Block block = live[which];
            live[which] = live.back();
            live.pop_back();
            const unsigned char *const bytes = static_cast<unsigned char *>(block.p);
            ASSERT_TRUE(bytes[0] == block.fill && bytes[std::min(block.size, 64u) - 1] == block.fill) << step;
            if (block.sizeClass) {
                globalMemList->setMarkMemListGlobal(static_cast<int>(random.below(2))); // either mark will do
                ASSERT_TRUE(block.sizeClass->plain.give(at(block.p) - 4 - blockShift));
            } else {
                globalMemList->setMarkMemListGlobal(block.tracked ? 1 : 0);
                --heapBlocks;
                if (block.tracked)
                    tracked -= static_cast<long>(block.size) + 8;
            }
            KarDellocMemory(block.p);
            globalMemList->setMarkMemListGlobal(1);
        }
        ASSERT_EQ(globalMemList->curr_used_memory(), tracked) << step;
        ASSERT_EQ(globalMemList->max_used_memory(), highest) << step;
        if (step % 101 == 0) {
            // The heap's own blocks, two for each page, and those of the records' pages.
            const int recordPages = PoolPeek::pages(MemoryPeek::poolOf(AllocatorPeek::records(*globalMemList)));
            ASSERT_EQ(globalMemList->getCurAnzNew(), blocksBefore + heapBlocks + 2 * (pageCount() + recordPages));
            for (Class &sizeClass : classes) {
                ASSERT_EQ(AllocatorPeek::pool(*globalMemList, sizeClass.number).getAnzElem(), sizeClass.plain.used());
            }
        }
        if (step % 50021 == 0) {
            ASSERT_TRUE(globalMemList->isValid()) << step;
        }
    }
    for (const Block &block : live) {
        globalMemList->setMarkMemListGlobal(block.sizeClass || block.tracked ? 1 : 0);
        KarDellocMemory(block.p);
    }
    globalMemList->setMarkMemListGlobal(1);
    EXPECT_EQ(globalMemList->getCurAnzNew(), blocksBefore);
    EXPECT_EQ(globalMemList->getCurSizeNew(), 0);
    EXPECT_EQ(globalMemList->curr_used_memory(), 0);
}

TEST(KarPageMemory, PagesChainedByHandAtRandomAgreeWithPlainWalks)
{
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        TestRandom random(seed);
        const int size =
            random.below(2) ? 40 : 9000; // for small pages and large ones, which all pools look up together
        const int perPage = random.between(1, 4);
        RechainedPools pools(random, size, perPage);
        for (int step = 0, steps = testSteps(300); step < steps; ++step) {
            pools.step();
            ASSERT_FALSE(HasFatalFailure()) << step;
        }
        ASSERT_TRUE(pools.areValid());
    }
}
