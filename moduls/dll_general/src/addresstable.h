// A hash table with addresses as keys, in memory of its own.
#ifndef KAR_ADDRESS_TABLE_H
#define KAR_ADDRESS_TABLE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace kar {

inline std::uintptr_t addressOf(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

/// Open addressing with linear probing; a key may occur more than once. `Entry` is a plain struct whose member `key`
/// isn't 0. The table is constant-initialised, holds no memory while it is empty, and is never destroyed by itself:
/// what lies in it at the end is given up by `clear`.
template <class Entry>
class AddressTable {
public:
    std::size_t size() const { return count; }

    /// Adds an entry behind those of the same key. False, with nothing changed, if there is no memory for it.
    /// Inlined, so that an entry is never written to memory in parts and read as a whole right after.
    [[gnu::always_inline]] inline bool insert(const Entry &entry)
    {
        if (2 * (count + 1) > capacity() && !resize(capacity() ? 2 * capacity() : smallestCapacity) &&
            count + 1 >= capacity())
            return false;
        place(entry);
        ++count;
        return true;
    }

    /// The oldest entry of the key that `accept` takes, or null. Valid until the table changes.
    template <class Accept>
    Entry *find(std::uintptr_t key, Accept accept) const
    {
        if (!slots)
            return nullptr;
        for (std::size_t i = home(key); slots[i].key; i = (i + 1) & mask)
            if (slots[i].key == key && accept(slots[i]))
                return slots + i;
        return nullptr;
    }
    Entry *find(std::uintptr_t key) const
    {
        return find(key, [](const Entry &) { return true; });
    }

    /// Removes an entry that `find` gave. The order of the others with the same key stays.
    void erase(Entry *entry)
    {
        std::size_t hole = static_cast<std::size_t>(entry - slots);
        for (std::size_t i = (hole + 1) & mask; slots[i].key; i = (i + 1) & mask)
            if (((i - home(slots[i].key)) & mask) >= ((i - hole) & mask)) {
                slots[hole] = slots[i];
                hole = i;
            }
        slots[hole].key = 0;
        if (--count == 0)
            clear();
        else if (capacity() > smallestCapacity && 16 * count < capacity())
            resize(capacity() / 4); // without memory for it the larger table simply stays
    }

    /// Forgets all entries and releases the table's memory.
    void clear()
    {
        std::free(slots);
        slots = nullptr;
        mask = 0;
        count = 0;
    }

private:
    static constexpr std::size_t smallestCapacity = 64;

    std::size_t capacity() const { return slots ? mask + 1 : 0; }

    std::size_t home(std::uintptr_t key) const
    {
        // Multiplication by 2^w divided by the golden ratio; the high bits are the well mixed ones (Knuth 6.4).
        if constexpr (sizeof key == 8)
            return static_cast<std::size_t>((key * 0x9e3779b97f4a7c15u) >> shift);
        else
            return static_cast<std::size_t>((key * 0x9e3779b9u) >> shift);
    }

    [[gnu::always_inline]] inline void place(const Entry &entry)
    {
        std::size_t i = home(entry.key);
        while (slots[i].key)
            i = (i + 1) & mask;
        slots[i] = entry;
    }

    [[gnu::noinline]] bool resize(std::size_t newCapacity)
    {
        Entry *const fresh = static_cast<Entry *>(std::calloc(newCapacity, sizeof(Entry)));
        if (!fresh)
            return false;
        Entry *const old = slots;
        const std::size_t oldMask = mask;
        const bool hadEntries = count != 0;
        slots = fresh;
        mask = newCapacity - 1;
        shift = 8 * sizeof(std::uintptr_t);
        for (std::size_t n = newCapacity; n > 1; n /= 2)
            --shift;
        if (hadEntries) {
            // From behind an empty slot on, so that entries of one key move in their order.
            std::size_t start = 0;
            while (old[start].key)
                ++start;
            for (std::size_t step = 1; step <= oldMask; ++step) {
                const Entry &entry = old[(start + step) & oldMask];
                if (entry.key)
                    place(entry);
            }
        }
        std::free(old);
        return true;
    }

    Entry *slots = nullptr;
    std::size_t mask = 0;
    std::size_t count = 0;
    unsigned shift = 0;
};

} // namespace kar

#endif
