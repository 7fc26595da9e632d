// The index of a chain of pages: page by address, and the first page with a free element.
#ifndef KAR_PAGE_INDEX_H
#define KAR_PAGE_INDEX_H

#include "addresstable.h"
#include "karmem.h"

#include <algorithm>
#include <new>

namespace kar {

/// Lowest bit that is set.
inline unsigned lowestBit(std::uint64_t word) { return static_cast<unsigned>(__builtin_ctzll(word)); }

/// `first` if `condition` holds, otherwise `second`, without a branch: for conditions that chance decides.
inline void *choose(bool condition, void *first, void *second)
{
    const std::uintptr_t mask = 0 - static_cast<std::uintptr_t>(condition);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it is one of the two pointers
    return reinterpret_cast<void *>((addressOf(first) & mask) | (addressOf(second) & ~mask));
}

/// A page by a piece of the address space that its storage meets. All pieces of a table have one size.
struct PageStretch {
    std::uintptr_t key; // first address of the piece divided by its size, plus 1
    karPage *page;
};

/// The pages of at least 2^largeShift bytes, those of all indices together: an address can be looked up before it is
/// known which pool it belongs to.
constexpr unsigned largeShift = 15;
extern AddressTable<PageStretch> largePages;

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
    bool fewPages() const { return height == 1; }
    karPage *firstWithRoom() const { return room; }
    int pages() const { return pageCount; }

    /// The page of any index with large pages whose storage holds `p`, or null.
    static karPage *findLarge(const void *p) { return find(largePages, largeShift, p); }

    /// The page whose storage holds `p`, or null.
    karPage *find(const void *p) const
    {
        if (karPage *const page = find(smallPages, smallShift, p))
            return page;
        karPage *const page = findLarge(p);
        return page && page->state.index == this ? page : nullptr;
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
            lostRoom(page.state.slot);
            removeStretches(slots[page.state.slot]);
            slots[page.state.slot] = Slot{};
        }
        page.state.index = nullptr;
        if (--pageCount == 0) {
            giveUp();
            std::free(this);
        }
    }

    /// An element of the page has been released. Where the pages are few (`fewPages`), and their memory near, a branch on
    /// what chance decides would cost more than the work, here and in `tookElement`.
    void gotElement(karPage &page)
    {
        const unsigned slot = page.state.slot;
        *bits[0] |= bitOf(slot);
        room = static_cast<karPage *>(choose(slot < roomSlot, &page, room));
        roomSlot = std::min(slot, roomSlot);
    }

    /// An element of the page has been taken, the last free one if `full`.
    void tookElement(karPage &page, bool full)
    {
        const unsigned slot = page.state.slot;
        const std::uint64_t word = *bits[0] & ~(std::uint64_t(full) << slot % 64);
        *bits[0] = word;
        const unsigned lowest = lowestBit(word | (word == 0));
        room = static_cast<karPage *>(choose(word, slots[lowest].page, nullptr));
        roomSlot = lowest | (0u - static_cast<unsigned>(word == 0)); // noSlot without any
    }

    /// The page has a free element again.
    void gotRoom(karPage &page)
    {
        unsigned position = page.state.slot;
        for (unsigned level = 0; level < height; ++level, position /= 64) {
            const std::uint64_t before = bits[level][position / 64];
            bits[level][position / 64] = before | bitOf(position);
            if (before)
                break; // the levels above know of the word
        }
        if (height > 0 && page.state.slot < roomSlot) {
            room = &page;
            roomSlot = page.state.slot;
        }
    }

    /// The page of the slot is full now, or goes.
    void lostRoom(unsigned slot)
    {
        unsigned position = slot;
        for (unsigned level = 0; level < height; ++level, position /= 64) {
            bits[level][position / 64] &= ~bitOf(position);
            if (bits[level][position / 64])
                break;
        }
        if (slot == roomSlot)
            findRoom();
    }

    /// Forgets what it knows of the pages; their chain is walked from now on.
    void giveUp()
    {
        gaveUp = true;
        noRoom();
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page)
                removeStretches(slots[i]);
        smallPages.clear();
        std::free(bits[0]);
        bits[0] = nullptr;
        slots = nullptr;
        used = capacity = height = 0;
    }

private:
    struct Slot {
        karPage *page;         // null in a gap
        std::uintptr_t start;  // of its storage, as it was added
        std::uintptr_t length; // minus 1
    };

    static constexpr unsigned levels = 5; // 64 to the power of 5 pages
    static constexpr unsigned firstCapacity = 64;

    static constexpr unsigned noSlot = ~0u;

    void noRoom()
    {
        room = nullptr;
        roomSlot = noSlot;
    }

    static std::uint64_t bitOf(unsigned position) { return std::uint64_t(1) << position % 64; }

    void findRoom()
    {
        noRoom();
        if (height == 0 || !*bits[height - 1])
            return;
        unsigned position = 0;
        for (unsigned level = height; level-- > 0;)
            position = position * 64 + lowestBit(bits[level][position]);
        room = slots[position].page;
        roomSlot = position;
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
        unsigned newHeight = 0;
        for (unsigned entries = newCapacity; entries > 1; ++newHeight) {
            if (newHeight == levels)
                return false;
            entries = (entries + 63) / 64;
            words[newHeight] = entries;
            total += entries;
        }
        // One piece of memory: the bits of all levels, then the slots.
        void *const memory = std::calloc(1, total * sizeof(std::uint64_t) + newCapacity * sizeof(Slot));
        if (!memory)
            return false;
        void *const old = bits[0];
        std::uint64_t *place = static_cast<std::uint64_t *>(memory);
        for (unsigned level = 0; level < newHeight; ++level) {
            bits[level] = place;
            place += words[level];
        }
        height = newHeight;
        Slot *const newSlots = reinterpret_cast<Slot *>(place);
        unsigned next = 0;
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page) {
                newSlots[next] = slots[i];
                newSlots[next].page->state.slot = next;
                ++next;
            }
        slots = newSlots;
        used = next;
        capacity = newCapacity;
        std::free(old);
        noRoom();
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page->firstFreeElement_)
                gotRoom(*slots[i].page);
        return true;
    }

    static karPage *find(const AddressTable<PageStretch> &pages, unsigned shift, const void *p)
    {
        const std::uintptr_t place = addressOf(p);
        const PageStretch *const stretch = pages.find((place >> shift) + 1, [place](const PageStretch &candidate) {
            const std::uintptr_t start = addressOf(candidate.page->firstPageElement_);
            return place - start <= addressOf(candidate.page->lastPageElement_) - start;
        });
        return stretch ? stretch->page : nullptr;
    }

    static bool isLarge(const Slot &slot) { return slot.length >> largeShift != 0; }

    bool addStretches(karPage &page)
    {
        const Slot &slot = slots[page.state.slot];
        if (!slot.start)
            return true; // a page without storage holds no address
        if (isLarge(slot))
            return addStretches(largePages, largeShift, slot);
        if (smallPages.size() == 0) {
            // The largest power of two within a page: a page meets three pieces at most, a piece two pages.
            smallShift = 0;
            for (std::uintptr_t length = slot.length; length > 1; length /= 2)
                ++smallShift;
        }
        return addStretches(smallPages, smallShift, slot);
    }

    static bool addStretches(AddressTable<PageStretch> &pages, unsigned shift, const Slot &slot)
    {
        const std::uintptr_t last = ((slot.start + slot.length) >> shift) + 1;
        for (std::uintptr_t key = (slot.start >> shift) + 1; key <= last; ++key)
            if (!pages.insert({key, slot.page}))
                return false;
        return true;
    }

    void removeStretches(const Slot &slot)
    {
        if (!slot.start)
            return;
        AddressTable<PageStretch> &pages = isLarge(slot) ? largePages : smallPages;
        const unsigned shift = isLarge(slot) ? largeShift : smallShift;
        const std::uintptr_t last = ((slot.start + slot.length) >> shift) + 1;
        for (std::uintptr_t key = (slot.start >> shift) + 1; key <= last; ++key)
            if (PageStretch *const stretch =
                    pages.find(key, [&slot](const PageStretch &candidate) { return candidate.page == slot.page; }))
                pages.erase(stretch);
    }

    karPage *room = nullptr; // the first page with a free element
    unsigned roomSlot = noSlot;
    unsigned smallShift = 0;
    AddressTable<PageStretch> smallPages;
    std::uint64_t *bits[levels] = {}; // bit i of a level: word i of the level below isn't 0; at level 0 slot i has room
    Slot *slots = nullptr;            // in the order of the chain, with gaps
    unsigned used = 0;                // slots given out
    unsigned capacity = 0;
    unsigned height = 0; // levels in use; the highest is one word
    int pageCount = 0;
    bool gaveUp = false;
};

} // namespace kar

#endif
