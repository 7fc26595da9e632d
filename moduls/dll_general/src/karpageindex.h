// The index of a chain of pages: page by address, and the first page with a free element.
#ifndef KAR_PAGE_INDEX_H
#define KAR_PAGE_INDEX_H

#include "addresstable.h"
#include "karmem.h"

#include <new>

namespace kar {

/// Lowest bit that is set.
inline std::size_t lowestBit(std::uint64_t word) { return static_cast<std::size_t>(__builtin_ctzll(word)); }

/// `first` if `condition` holds, otherwise `second`, without a branch: for conditions that chance decides.
inline void *choose(bool condition, void *first, void *second)
{
    const std::uintptr_t mask = 0 - static_cast<std::uintptr_t>(condition);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it is one of the two pointers
    return reinterpret_cast<void *>((addressOf(first) & mask) | (addressOf(second) & ~mask));
}

/// The pages whose storage meets a piece of the address space. All pieces of a table have one size.
struct PageStretch {
    std::uintptr_t key;   // first address of the piece divided by its size, plus 1
    std::uintptr_t start; // of the storage of the upper page
    karPage *lower;
    karPage *upper; // the same where the piece meets one alone
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
    karPage *firstWithRoom() const { return roomWord() ? pageOf(roomWord()) : nullptr; }
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
        if (page.firstFreeElement_)
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

    /// The first 64 slots together of which one has room, a bit for each; 0 without any.
    std::uint64_t roomWord() const { return *room; }
    /// The page of the lowest bit of `roomWord()`, which isn't 0.
    karPage *pageOf(std::uint64_t word) const { return roomSlots[lowestBit(word)].page; }

    /// An element of the page of the lowest bit of `roomWord()`, which is `word`, has been taken, the last one if
    /// `full`. Only where the pages are few (`fewPages`), which is one word.
    void tookFirst(std::uint64_t word, bool full) { *room = word & (word - full); }

    /// The page has a free element.
    void gotRoom(karPage &page)
    {
        if (gaveUp)
            return;
        const unsigned slot = page.state.slot;
        std::uint64_t &word = bits[0][slot / 64];
        const std::uint64_t before = word;
        word = before | bitOf(slot);
        if (!before)
            gotWord(slot / 64);
    }

    /// The page of the slot is full now, or goes.
    void lostRoom(unsigned slot)
    {
        if (gaveUp)
            return;
        std::uint64_t &word = bits[0][slot / 64];
        word &= ~bitOf(slot);
        if (!word)
            lostWord(slot / 64);
    }

    /// Forgets what it knows of the pages; their chain is walked from now on.
    void giveUp()
    {
        gaveUp = true;
        room = &nothing;
        for (const Slot *slot = slots; slot != slots + used; ++slot)
            if (slot->page)
                removeStretches(*slot);
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

    static std::uint64_t bitOf(std::size_t position) { return std::uint64_t(1) << position % 64; }

    // A word of the lowest level isn't 0 any more.
    [[gnu::noinline]] void gotWord(std::size_t word)
    {
        std::size_t position = word;
        for (unsigned level = 1; level < height; ++level, position /= 64) {
            const std::uint64_t before = bits[level][position / 64];
            bits[level][position / 64] = before | bitOf(position);
            if (before)
                break; // the levels above know of the word
        }
        if (!*room || bits[0] + word < room)
            setRoom(word);
    }

    // A word of the lowest level is 0 now.
    [[gnu::noinline]] void lostWord(std::size_t word)
    {
        std::size_t position = word;
        for (unsigned level = 1; level < height; ++level, position /= 64) {
            bits[level][position / 64] &= ~bitOf(position);
            if (bits[level][position / 64])
                break;
        }
        if (!*bits[height - 1])
            return;
        position = 0;
        for (unsigned level = height; --level > 0;)
            position = position * 64 + lowestBit(bits[level][position]);
        setRoom(position);
    }

    void setRoom(std::size_t word)
    {
        room = bits[0] + word;
        roomSlots = slots + 64 * word;
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
        setRoom(0);
        for (unsigned i = 0; i < used; ++i)
            if (slots[i].page->firstFreeElement_)
                gotRoom(*slots[i].page);
        return true;
    }

    static karPage *find(const AddressTable<PageStretch> &pages, unsigned shift, const void *p)
    {
        const std::uintptr_t place = addressOf(p);
        const PageStretch *const stretch = pages.find((place >> shift) + 1);
        if (!stretch)
            return nullptr;
        karPage *const page = static_cast<karPage *>(choose(place < stretch->start, stretch->lower, stretch->upper));
        const std::uintptr_t start = addressOf(page->firstPageElement_);
        return place - start <= addressOf(page->lastPageElement_) - start ? page : nullptr;
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
            if (!addStretch(pages, {key, slot.start, slot.page, slot.page}))
                return false;
        return true;
    }

    static bool addStretch(AddressTable<PageStretch> &pages, const PageStretch &added)
    {
        PageStretch *const stretch = pages.find(added.key);
        if (!stretch)
            return pages.insert(added);
        if (stretch->lower != stretch->upper)
            return false; // pages of many sizes in one chain
        karPage *const other = stretch->upper;
        const std::uintptr_t otherStart = addressOf(other->firstPageElement_);
        *stretch = otherStart < added.start ? PageStretch{added.key, added.start, other, added.upper}
                                            : PageStretch{added.key, otherStart, added.upper, other};
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
            if (PageStretch *const stretch = pages.find(key))
                removeStretch(pages, stretch, slot.page);
    }

    static void removeStretch(AddressTable<PageStretch> &pages, PageStretch *stretch, const karPage *page)
    {
        if (stretch->lower == page && stretch->upper == page)
            pages.erase(stretch);
        else if (stretch->lower == page)
            stretch->lower = stretch->upper;
        else if (stretch->upper == page)
            stretch->upper = stretch->lower; // then `start` doesn't matter
    }

    std::uint64_t nothing = 0;
    std::uint64_t *room = &nothing; // the first word of the lowest level that isn't 0; any word that is where all are
    Slot *roomSlots = nullptr;      // which its bits stand for
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
