// Makes allocations of the library fail: all of them, or those from the n-th on.
#ifndef KAR_TEST_FAIL_ALLOC_H
#define KAR_TEST_FAIL_ALLOC_H

#include "mempeek.h"

#include <optional>
#include <vector>

/// Lifts the count of heap blocks for its own lifetime. What was released meanwhile stays counted.
class HeapCountLifted {
public:
    explicit HeapCountLifted(int count) : start(count), before(globalMemList->getCurAnzNew())
    {
        globalMemList->setCurAnzNew(start);
    }
    ~HeapCountLifted()
    {
        globalMemList->setCurAnzNew(static_cast<int>(before + (globalMemList->getCurAnzNew() - start)));
    }
    HeapCountLifted(const HeapCountLifted &) = delete;
    HeapCountLifted &operator=(const HeapCountLifted &) = delete;

    /// With so many blocks another one can still be had, with one more none.
    static constexpr int atLimit = 64000;

private:
    int start;
    long before;
};

/// While one lives the n-th block from the heap (n from 1) fails, and every allocation after it. A fixed pool takes two
/// for a page, the page object and its storage.
class NthHeapBlockFails : HeapCountLifted {
public:
    explicit NthHeapBlockFails(unsigned n) : HeapCountLifted(atLimit + 1 - static_cast<int>(n - 1)) {}
};

/// While one lives every allocation fails, small ones too: the count of heap blocks stands above its limit.
///
///     {
///         AllAllocationsFail failing;
///         EXPECT_EQ(text.append("more"), nullptr);
///     }
class AllAllocationsFail : HeapCountLifted {
public:
    AllAllocationsFail() : HeapCountLifted(atLimit + 1) {}
};

/// While one lives the n-th small allocation (n from 1) fails, and every allocation after it: each size class is left
/// with n - 1 free elements and the count of heap blocks stands at its limit, so that a class which runs out can have a
/// page object but no storage for it. Of several classes the first to run out counts. A block above 992 bytes can be
/// had once, after which everything fails.
///
///     for (unsigned n = 1;; ++n) {
///         NthAllocationFails failing(n);
///         operation();
///         if (!failing.happened())
///             break; // the operation needs fewer than n allocations
///     }
///
/// Each failure leaves an empty page object in the pool of its class until the library is unloaded.
class NthAllocationFails {
public:
    explicit NthAllocationFails(unsigned n)
    {
        for (const UsedPool &used : usedPools)
            leaveFree(used, n - 1);
        lifted.emplace(HeapCountLifted::atLimit);
    }
    ~NthAllocationFails()
    {
        lifted.reset();
        for (void *block : fillers)
            KarDellocMemory(block);
    }
    NthAllocationFails(const NthAllocationFails &) = delete;
    NthAllocationFails &operator=(const NthAllocationFails &) = delete;

    /// Whether an allocation has failed.
    bool happened() const { return globalMemList->getCurAnzNew() > HeapCountLifted::atLimit; }

private:
    static unsigned freeElements(karPageMemory &pool)
    {
        unsigned elements = 0;
        if (karPage *page = PoolPeek::firstOf(pool))
            for (page = page->first(); page; page = page->next())
                if (page->PageBegin())
                    elements += static_cast<unsigned>(pool.elementCount());
        return elements - static_cast<unsigned>(pool.getAnzElem());
    }

    void leaveFree(UsedPool used, unsigned wanted)
    {
        karPageMemory &pool = AllocatorPeek::pool(*globalMemList, used.pool);
        for (unsigned i = freeElements(pool); i > 0; --i)
            fillers.push_back(KarAllocMemory(used.request));
        const unsigned pageSize = static_cast<unsigned>(pool.elementCount());
        std::vector<void *> fresh;
        const unsigned pages = wanted ? (wanted - 1) / (pageSize - 1) + 1 : 0;
        for (unsigned i = 0; i < pages * pageSize; ++i)
            fresh.push_back(KarAllocMemory(used.request));
        for (unsigned i = 0; i < pages * pageSize; ++i)
            if (wanted > 0 && i % pageSize != 0) { // one element keeps the page
                KarDellocMemory(fresh[i]);
                --wanted;
            } else {
                fillers.push_back(fresh[i]);
            }
    }

    std::vector<void *> fillers;
    std::optional<HeapCountLifted> lifted;
};

#endif
