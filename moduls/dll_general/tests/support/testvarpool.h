// A variable page pool whose fields a test can read.
#ifndef KAR_TEST_VARPOOL_H
#define KAR_TEST_VARPOOL_H

#include "karvarmem.h"
#include "testslot.h"

#include <utility>
#include <vector>

using Runs = std::vector<std::pair<int, int>>; // offset in the page and length of each free run, in list order

inline char *at(void *base, int bytes) { return static_cast<char *>(base) + bytes; }

class Pool : public karVarPageMemory {
public:
    Pool(int size, int count) : karVarPageMemory(size, count) {}
    Pool(const Pool &) = default;
    Pool &operator=(const Pool &) = default;

    using karVarPageMemory::appendPage;
    using karVarPageMemory::currentPage;
    using karVarPageMemory::deletePage;
    using karVarPageMemory::elementCount;
    using karVarPageMemory::elementSize_;
    using karVarPageMemory::firstPage;
    using karVarPageMemory::lastPage;
    using karVarPageMemory::speicher_Speed_;

    std::vector<karVarPage *> pages()
    {
        std::vector<karVarPage *> list;
        for (karVarPage *page = firstPage ? firstPage->first() : nullptr; page; page = page->next())
            list.push_back(page);
        return list;
    }
    /// Page of an address, counted from 0, and offset in it; (-1, 0) for null and for an address in no page.
    std::pair<int, int> where(const void *p)
    {
        const std::vector<karVarPage *> list = pages();
        for (std::size_t i = 0; i < list.size(); ++i)
            if (p && list[i]->search(const_cast<void *>(p)) == list[i])
                return {static_cast<int>(i),
                        static_cast<int>(static_cast<const char *>(p) - at(list[i]->PageBegin(), 0))};
        return {-1, 0};
    }
    Runs runs(std::size_t index)
    {
        Runs list;
        karVarPage *const page = pages().at(index);
        for (karFreeVarElement *run = page->firstFreeElement(); run && list.size() < 100; run = run->next())
            list.emplace_back(static_cast<int>(static_cast<char *>(run->start()) - at(page->PageBegin(), 0)),
                              run->getSize());
        return list;
    }
    std::vector<int> used()
    {
        std::vector<int> list;
        for (karVarPage *page : pages())
            list.push_back(page->elementUsed());
        return list;
    }
};

using Place = std::pair<int, int>;
using Counts = std::vector<int>;

#endif
