// Reads what the memory classes keep from their users, and asks for the layout of their objects.
#ifndef KAR_TEST_MEM_PEEK_H
#define KAR_TEST_MEM_PEEK_H

#include "karmemgb.h"
#include "testslot.h"

#include <algorithm>
#include <cstdint>

inline std::uintptr_t at(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

/// Distance of two elements of `size` bytes: 8 bytes at least, on 64-bit targets 16 and a multiple of 8.
inline int strideOf(int size) { return wide ? (std::max(size, 16) + 7) / 8 * 8 : std::max(size, 8); }

/// Bytes from the start of an element to the block in it, so that the caller's bytes are aligned to 16.
constexpr unsigned blockShift = wide ? 12 : 0;

/// Counts of the global allocator that every test leaves as it found them.
struct HeapCounts {
    long blocks = globalMemList->getCurAnzNew();
    long bytes = globalMemList->getCurSizeNew();
    bool operator==(const HeapCounts &other) const { return blocks == other.blocks && bytes == other.bytes; }
};

struct PagePeek : karPage {
    static int stride(karPage &page) { return page.*&PagePeek::elementFullSize_; }
    static karFreeElement *freeList(karPage &page) { return page.*&PagePeek::firstFreeElement_; }
    static void dropStorage(karPage &page) { (page.*&PagePeek::initBasis)(); } ///< Another owner has released it.
};

struct PoolPeek : karPageMemory {
    using karPageMemory::appendPage;
    using karPageMemory::deletePage;
    using karPageMemory::karPageMemory;
    static karPage *&firstOf(karPageMemory &pool) { return pool.*&PoolPeek::firstPage; }
    static karPage *&currentOf(karPageMemory &pool) { return pool.*&PoolPeek::currentPage; }
    static karPage *&lastOf(karPageMemory &pool) { return pool.*&PoolPeek::lastPage; }
    static int pages(karPageMemory &pool) { return firstOf(pool) ? firstOf(pool)->listLength() : 0; }
};

struct MemoryPeek : karMemory {
    using karMemory::delete_all;
    using karMemory::search_file_entry;
    using karMemory::search_memory_entry;
    static karPageMemory &poolOf(karMemory &memory) { return memory.*&MemoryPeek::entryPool; }
    static karMemory_Entry *&tailOf(karMemory &memory) { return memory.*&MemoryPeek::memoryEntries; }
    static karFile_EntryZ *&filesOf(karMemory &memory) { return memory.*&MemoryPeek::fileEntries; }
};

struct AllocatorPeek : karGlobalMemory {
    static karPageMemory &pool(karGlobalMemory &allocator, int number)
    {
        return (allocator.*&AllocatorPeek::pools)[number];
    }
    static karMemory &records(karGlobalMemory &allocator) { return allocator.*&AllocatorPeek::memory; }
    /// Drops all records with their pages and sums.
    static void dropRecords(karGlobalMemory &allocator)
    {
        MemoryPeek::poolOf(records(allocator)).delete_all();
        records(allocator) = karMemory();
    }
};

/// The mark of the global allocator for its own lifetime: 0 sends every block straight to the heap, without a record.
struct Mark {
    explicit Mark(int value) : saved(globalMemList->setMarkMemListGlobal(value)) {}
    ~Mark() { globalMemList->setMarkMemListGlobal(saved); }
    Mark(const Mark &) = delete;
    Mark &operator=(const Mark &) = delete;
    int saved;
};

/// A pool that requests reach, with the largest request that it serves.
struct UsedPool {
    int pool;
    unsigned request;
};
constexpr UsedPool usedPools[] = {{0, 2}, {7, 92}, {8, 192}, {9, 492}, {10, 992}};

#endif
