// The short paths of the page pools, inlined where they are used most.
#ifndef KAR_POOL_H
#define KAR_POOL_H

#include "karpageindex.h"

#include <cstring>

namespace kar {

/// The two links in a free element. Elements of a 32-bit target may start at any address, so they are read and written
/// as bytes.
struct FreeLinks {
    void *next;
    void *prev;

    static FreeLinks read(const void *element)
    {
        FreeLinks links;
        std::memcpy(&links, element, sizeof links);
        return links;
    }
    void write(void *element) const { std::memcpy(element, this, sizeof *this); }
    static void writePrev(void *element, void *prev)
    {
        std::memcpy(static_cast<char *>(element) + offsetof(FreeLinks, prev), &prev, sizeof prev);
    }
};
static_assert(sizeof(FreeLinks) == sizeof(karFreeElement), "a free element holds the two links and nothing else");

struct PoolAccess {
    /// The links of a free element at `p` would lie in the page's storage.
    static bool holdsLinks(const karPage &page, const void *p)
    {
        const std::uintptr_t start = addressOf(page.firstPageElement_);
        return (start != 0) &
               (addressOf(p) - start <= addressOf(page.lastPageElement_) - start - (sizeof(FreeLinks) - 1));
    }

    static bool holds(const karPage &page, const void *p)
    {
        const std::uintptr_t start = addressOf(page.firstPageElement_);
        return start && addressOf(p) - start <= addressOf(page.lastPageElement_) - start;
    }

    static bool isElement(const karPage &page, const void *p)
    {
        return holds(page, p) && page.state.startsElement(addressOf(p) - addressOf(page.firstPageElement_));
    }

    /// Whether a place lies in the element of the page that starts at `p`, if one does.
    static bool standsInElement(const karPage &page, const void *place, const void *p)
    {
        return isElement(page, p) &&
               addressOf(place) - addressOf(p) < static_cast<std::uintptr_t>(page.elementFullSize_);
    }

    /// Whether an element stands in the free list. A live element nearly always shows it by its own bytes; one that
    /// holds what could be the links of a free element is looked for in the list.
    static bool isFree(const karPage &page, void *p)
    {
        if (p == page.firstFreeElement_)
            return true;
        return holdsLinks(page, FreeLinks::read(p).prev) && isLinked(page, p);
    }

    [[gnu::noinline]] static bool isLinked(const karPage &page, void *p)
    {
        const FreeLinks links = FreeLinks::read(p);
        if (FreeLinks::read(links.prev).next != p)
            return false;
        if (links.next && !(holdsLinks(page, links.next) && FreeLinks::read(links.next).prev == p))
            return false;
        return walkFinds(page, p);
    }

    static bool walkFinds(const karPage &page, const void *p)
    {
        const void *element = page.firstFreeElement_;
        for (int steps = page.elementCount_; steps > 0 && element && holdsLinks(page, element); --steps) {
            if (element == p)
                return true;
            element = FreeLinks::read(element).next;
        }
        return false;
    }

    /// `karPage::newElement` of a page that has a free element.
    static void *take(karPage &page)
    {
        void *const element = page.firstFreeElement_;
        void *const next = FreeLinks::read(element).next;
        countTaken(page);
        if (holdsLinks(page, next)) {
            FreeLinks::writePrev(next, nullptr);
            page.firstFreeElement_ = static_cast<karFreeElement *>(next);
        } else {
            page.firstFreeElement_ = nullptr;
            if (page.state.index)
                page.state.index->lostRoom(page.state.slot);
        }
        return element;
    }

    /// The same of the first page with room, which `word` tells, where the pages are few: their memory is near, and a
    /// branch on what chance decides would cost more than the work.
    static void *takeNear(PageIndex &index, std::uint64_t word)
    {
        karPage &page = *index.pageOf(word);
        void *const element = page.firstFreeElement_;
        void *const next = FreeLinks::read(element).next;
        countTaken(page);
        const bool more = holdsLinks(page, next);
        FreeLinks::writePrev(choose(more, next, element), nullptr); // the element's own is null
        page.firstFreeElement_ = static_cast<karFreeElement *>(choose(more, next, nullptr));
        index.tookFirst(word, !more);
        return element;
    }

    /// `karPage::deleteElement`; true if the page is empty now.
    static bool give(karPage &page, void *p) { return give(page, p, isElement(page, p)); }

    /// The same for an address that is known to be the start of an element or not.
    [[gnu::always_inline]] static inline bool give(karPage &page, void *p, bool element)
    {
        if (element) {
            if (isFree(page, p))
                return false;
            karFreeElement *const head = page.firstFreeElement_;
            PageIndex *const index = page.state.index;
            if (index && index->fewPages()) { // as in `takeNear`
                FreeLinks::writePrev(choose(head, head, p), p);
                index->gotRoom(page);
            } else if (head) {
                FreeLinks::writePrev(head, p);
            } else if (index) {
                index->gotRoom(page);
            }
            FreeLinks{head, nullptr}.write(p);
            page.firstFreeElement_ = static_cast<karFreeElement *>(p);
        }
        page.elementUsed_ = page.elementUsed_ < 1 ? 0 : page.elementUsed_ - 1;
        return page.elementUsed_ == 0;
    }

    /// `karPageMemory::newElement`.
    [[gnu::always_inline]] static inline void *take(karPageMemory &pool)
    {
        if (PageIndex *const index = pool.state.index)
            if (const std::uint64_t word = index->roomWord())
                return index->fewPages() ? takeNear(*index, word) : take(*index->pageOf(word));
        return takeSlowly(pool);
    }

    /// `karPageMemory::deleteElement` without the change of the pointer; false if no page holds `p`.
    static bool give(karPageMemory &pool, void *p)
    {
        const PageIndex *const index = pool.state.index;
        return give(pool, index ? index->find(p) : nullptr, p);
    }

    /// The same, with the page whose storage holds `p`, null if that isn't known.
    static bool give(karPageMemory &pool, karPage *page, void *p)
    {
        if (!page || page->state.index != pool.state.index)
            return giveSlowly(pool, p);
        const std::uintptr_t offset = addressOf(p) - addressOf(page->firstPageElement_);
        if (give(*page, p, page->state.startsElement(offset)))
            pool.deletePage(page);
        return true;
    }

    static void findIndex(karPageMemory &pool);
    static karPage *find(karPageMemory &pool, void *p);

private:
    static void countTaken(karPage &page) { page.elementUsed_ = page.elementUsed_ < 1 ? 1 : page.elementUsed_ + 1; }

    static void *takeSlowly(karPageMemory &pool);
    static bool giveSlowly(karPageMemory &pool, void *p);
};

} // namespace kar

#endif
