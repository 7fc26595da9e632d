// Reads what the memory classes keep from their users, and asks for the layout of their objects.
#ifndef KAR_TEST_MEM_PEEK_H
#define KAR_TEST_MEM_PEEK_H

#include "karmemgb.h"
#include "testslot.h"

#include <cstddef>
#include <cstring>

struct PagePeek : karPage {
    static int stride(karPage &page) { return page.*&PagePeek::elementFullSize_; }
    static karFreeElement *freeList(karPage &page) { return page.*&PagePeek::firstFreeElement_; }
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

/// Slot of a virtual operation in the table of its class. A pointer to a virtual member function holds its offset in
/// the table plus 1.
template <class Function>
std::size_t virtualSlot(Function function)
{
    std::size_t word;
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / sizeof(void *);
}

#endif
