// The index of a chain of pages: page by address, and the first page with a free element.
#ifndef KAR_PAGE_INDEX_H
#define KAR_PAGE_INDEX_H

#include "addresstable.h"
#include "karmem.h"

#include <new>

namespace kar {

/// Lowest bit that is set.
inline unsigned lowestBit(std::uint64_t word)
{
#if defined(__GNUC__)
    return static_cast<unsigned>(__builtin_ctzll(word));
#else
    unsigned bit = 0;
    for (; !(word & 1); word >>= 1)
        ++bit;
    return bit;
#endif
}

/// Shared by the pages of one chain, which only grows at its end: a page added later has a higher slot, so the first
/// page with room is the lowest slot with room. The index lies outside the pools and goes with its last page. Where it
/// can't have the memory it needs it gives up (`complete()` is false) until then, and the chain is walked instead.
class PageIndex {
public:
    /// An index without a page, null without memory.
    static PageIndex *create()
    {
        void *const memory = std::malloc(sizeof(PageIndex));
        return memory ? ::new (memory) PageIndex : nullptr;
    }

    bool complete() const { return !gaveUp; }
    karPage *firstWithRoom() const { return room; }
    int pages() const { return pageCount; }

    /// The page whose storage holds `p`, or null.
    karPage *find(const void *p) const
    {
        const std::uintptr_t place = addressOf(p);
        const Stretch *const stretch = stretches.find((place >> stretchShift) + 1, [place](const Stretch &candidate) {
            return place - candidate.start <= candidate.length;
        });
        return stretch ? stretch->page : nullptr;
    }

    /// Adds a page to the end.
    void add(karPage &page)
    {
        page.state.index = this;
        ++pageCount;
        if (!gaveUp && !(addSlot(page) && addStretches(page)))
            giveUp();
        if (!gaveUp && page.firstFreeElement_)
            gotRoom(page);
    }

    /// Takes a page out; the index ends with the last one.
    void remove(karPage &page)
    {
        if (!gaveUp) {
            lostRoom(page);
            removeStretches(page);
            slots[page.state.slot] = Slot{};
        }
        page.state.index = nullptr;
        if (--pageCount == 0) {
            giveUp();
            std::free(this);
        }
    }

    /// A full page has a free element again.
    void gotRoom(karPage &page)
    {
        if (gaveUp)
            return;
        unsigned position = page.state.slot;
        for (unsigned level = 0; level < levels; ++level, position /= 64)
            bits[level][position / 64] |= std::uint64_t(1) << position % 64;
        if (!room || page.state.slot < room->state.slot)
            room = &page;
    }

    /// The page is full now, or goes.
    void lostRoom(karPage &page)
    {
        if (gaveUp)
            return;
        unsigned position = page.state.slot;
        for (unsigned level = 0; level < levels; ++level, position /= 64) {
            bits[level][position / 64] &= ~(std::uint64_t(1) << position % 64);
            if (bits[level][position / 64])
                break;
        }
        if (room == &page)
            room = lowest();
    }

private:
    struct Stretch {
        std::uintptr_t key;    // address divided by the stretch length, plus 1
        std::uintptr_t start;  // of the page's storage
        std::uintptr_t length; // minus 1
        karPage *page;
    };
    struct Slot {
        karPage *page;         // null in a gap
        std::uintptr_t start;  // of its storage, as it was added
        std::uintptr_t length; // minus 1
    };

    static constexpr unsigned levels = 4; // 64 to the power of 4 pages, more than 32-bit sizes can have in use
    static constexpr unsigned firstCapacity = 64;

    karPage *lowest() const
    {
        unsigned position = 0;
        for (unsigned level = levels; level-- > 0;) {
            const std::uint64_t word = capacity ? bits[level][position] : 0;
            if (!word)
                return nullptr;
            position = position * 64 + lowestBit(word);
        }
        return slots[position].page;
    }

    bool addSlot(karPage &page)
    {
        if (used == capacity && !makeSlots())
            return false;
        Slot &slot = slots[used];
        slot.page = &page;
        slot.start = addressOf(page.firstPageElement_);
        slot.length = addressOf(page.lastPageElement_) - slot.start;
        page.state.slot = used++;
        return true;
    }

    // Closes the gaps, with twice the room if they are few. The order stays.
    bool makeSlots()
    {
        const unsigned live = static_cast<unsigned>(pageCount) - 1; // the page being added has no slot yet
        unsigned newCapacity = capacity ? capacity : firstCapacity;
        if (2 * live > newCapacity)
            newCapacity *= 2;
        std::size_t words[levels];
        std::size_t total = 0;
        for (unsigned level = 0, entries = newCapacity; level < levels; ++level) {
            entries = (entries + 63) / 64;
            words[level] = entries;
            total += entries;
        }
        if (words[levels - 1] > 1)
            return false;
        // One piece of memory: the bits of all levels, then the slots.
        void *const memory = std::calloc(1, total * sizeof(std::uint64_t) + newCapacity * sizeof(Slot));
        if (!memory)
            return false;
        std::uint64_t *newBits[levels];
        std::uint64_t *place = static_cast<std::uint64_t *>(memory);
        for (unsigned level = 0; level < levels; ++level) {
            newBits[level] = place;
            place += words[level];
        }
        Slot *const newSlots = reinterpret_cast<Slot *>(place);
        unsigned next = 0;
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page) {
                newSlots[next] = slots[i];
                newSlots[next].page->state.slot = next;
                ++next;
            }
        void *const old = bits[0];
        for (unsigned level = 0; level < levels; ++level)
            bits[level] = newBits[level];
        slots = newSlots;
        used = next;
        capacity = newCapacity;
        std::free(old);
        room = nullptr;
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page->firstFreeElement_)
                gotRoom(*slots[i].page);
        return true;
    }

    bool addStretches(karPage &page)
    {
        const Slot &slot = slots[page.state.slot];
        if (!slot.start)
            return true; // a page without storage holds no address
        if (stretches.size() == 0) {
            // The largest power of two within a page: a page meets three stretches at most, a stretch two pages.
            stretchShift = 0;
            for (std::uintptr_t length = slot.length; length > 1; length /= 2)
                ++stretchShift;
        }
        const std::uintptr_t last = ((slot.start + slot.length) >> stretchShift) + 1;
        for (std::uintptr_t key = (slot.start >> stretchShift) + 1; key <= last; ++key)
            if (!stretches.insert({key, slot.start, slot.length, &page}))
                return false;
        return true;
    }

    void removeStretches(karPage &page)
    {
        const Slot &slot = slots[page.state.slot];
        if (!slot.start)
            return;
        const std::uintptr_t last = ((slot.start + slot.length) >> stretchShift) + 1;
        for (std::uintptr_t key = (slot.start >> stretchShift) + 1; key <= last; ++key)
            if (Stretch *const stretch =
                    stretches.find(key, [&page](const Stretch &candidate) { return candidate.page == &page; }))
                stretches.erase(stretch);
    }

    void giveUp()
    {
        gaveUp = true;
        room = nullptr;
        stretches.clear();
        std::free(bits[0]);
        bits[0] = nullptr;
        slots = nullptr;
        used = capacity = 0;
    }

    karPage *room = nullptr; // the first page with a free element
    unsigned stretchShift = 0;
    AddressTable<Stretch> stretches;
    std::uint64_t *bits[levels] = {}; // bit i of a level: word i of the level below isn't 0; at level 0 slot i has room
    Slot *slots = nullptr;            // in the order of the chain, with gaps
    unsigned used = 0;                // slots given out
    unsigned capacity = 0;
    int pageCount = 0;
    bool gaveUp = false;
};

} // namespace kar

#endif
