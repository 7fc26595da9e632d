/// \file
/// The global allocator: guarded blocks from size classes and from the heap, and every entry point to it.
#ifndef KAR_MEMGB_H
#define KAR_MEMGB_H

#include "karmem.h"

/// Gives out guarded blocks. A block has a total size T: 32 bits that hold T, the user's T - 8 bytes, 32 bits that hold
/// T. Up to 1000 bytes a block comes from the pool of its size class, above that from the heap, with a record; with the
/// mark cleared every block comes from the heap, without a record.
///
///     T up to        10    100    200    500   1000
///     pool            0      7      8      9     10
///     class size     10    100    200    500   1000
///
/// Note: the other pools stay empty, so 20 bytes take an element of 100.
///
/// On 64-bit targets the user's pointer is aligned to 16 bytes: the block begins 12 bytes into a pool's element, and
/// the elements are 32, 112, 224, 512 and 1024 bytes apart.
/// Note: on 32-bit targets the elements are as large as the classes, so that a block of the smallest class is aligned
/// to 2 bytes only.
///
/// Nothing here locks: a host calls it from one thread at a time. A copy shares all pages and records with its source:
/// only one of the two may be used further or destroyed.
class KAR_API karGlobalMemory {
public:
    /// \name Construction
    /// \{
    karGlobalMemory();                                  ///< Empty pools, mark set, counters 0.
    karGlobalMemory(const karGlobalMemory &) = default; ///< Copies every field, so both have pages and records.
    /// Pool blocks in use are lost with their pages; the tracked heap blocks are released after them.
    ~karGlobalMemory();
    /// \}

    /// Copies every field; the pages held before are lost.
    karGlobalMemory &operator=(const karGlobalMemory &) = default;

    /// \name Blocks
    /// \{

    /// A block for `size` bytes; null for size 0, with more than 64000 heap blocks, and without memory.
    /// Note: that limit is asked first, so beyond it small blocks aren't to be had either, although they don't count.
    /// Note: 8 is added to `size` in 32 bits, so that a size from 0xfffffff8 on gives a block of the smallest class
    /// with the mark set. With the mark cleared it gives null.
    void *newMem(unsigned size);
    /// Releases a block; null is ignored. A pool block is told by its header guard, a heap block by its header, its
    /// footer and the heap's own size of it. A block that is neither changes nothing.
    /// Note: a block of up to 1000 bytes that was allocated with the mark cleared and is released with it set stays
    /// allocated, and so does a larger one, which has no record. A tracked block released with the mark cleared leaves
    /// its record behind. A tracked block with a damaged footer loses its record and stays allocated, and one of
    /// 0x80000000 bytes and more is released with the mark cleared only.
    void deleteMem(void *p);
    void testDeleteAll(); ///< Asks the pools for their elements up to the first that has some; releases nothing.
    bool isValid() const; ///< Whether all pools and records are. Linear.
    /// \}

    /// \name Mark and counters
    /// \{

    /// Stores the mark and returns the old one: 0 sends every request straight to the heap, without a record.
    int setMarkMemListGlobal(int mark)
    {
        const int old = markMemListGlobal;
        markMemListGlobal = mark;
        return old;
    }
    int getMarkMemListGlobal() const { return markMemListGlobal; } ///< The mark; 0 sends every request to the heap.

    long max_used_memory() const { return memory.max_used_memory(); }   ///< Highest value of `curr_used_memory`.
    long curr_used_memory() const { return memory.curr_used_memory(); } ///< Bytes in tracked heap blocks.

    long getCurAnzNew() const { return curAnzNew; }       ///< Blocks now held directly from the heap.
    long getCurSizeNew() const { return curSizeNew; }     ///< Bytes now held directly from the heap.
    long getAnzNew() const { return anzNew; }             ///< Successful allocations since the start, of both kinds.
    void setCurAnzNew(int value) { curAnzNew = value; }   ///< Overwrites the figure; no block changes.
    void setCurSizeNew(int value) { curSizeNew = value; } ///< Overwrites the figure; no block changes.
    void setAnzNew(int value) { anzNew = value; }         ///< Overwrites the figure; no block changes.
    /// Adds to the figure, which wraps at the width of `long`; no block changes.
    void addCurAnzNew(int value) { curAnzNew = kar::addLong(curAnzNew, static_cast<unsigned long>(value)); }
    /// \overload
    void addCurSizeNew(int value) { curSizeNew = kar::addLong(curSizeNew, static_cast<unsigned long>(value)); }
    void addAnzNew(int value) { anzNew = kar::addLong(anzNew, static_cast<unsigned long>(value)); } ///< \overload
    /// \}

protected:
    static constexpr int poolCount = 11; ///< five of them are used

    karMemory memory;               ///< Records of the large blocks.
    karPageMemory pools[poolCount]; ///< see the table above
    long curAnzNew;                 ///< see `getCurAnzNew`
    long curSizeNew;                ///< see `getCurSizeNew`
    long anzNew;                    ///< see `getAnzNew`
    int markMemListGlobal;          ///< not 0 at first

private:
    friend class karMemory;

    /// Whether the memory of a block of `newMem` is still there: a live heap block or a place in a page.
    bool knows(void *p);
    void *newFromHeap(unsigned total);
    void deleteFromHeap(void *p, unsigned header);

    bool poolsEnded = false; ///< The pools are destroyed or about to be.
};

/// The allocator behind all entry points. Valid before the library's start code has run; the object itself is usable
/// after it.
extern KAR_API karGlobalMemory *globalMemList;

/// \name Allocation
/// `KarAllocMemory(size)`, its placement form and `KarDellocMemory` stand in karalloc.h.
/// \{

/// As `KarAllocMemory(size)`, and creates the allocator where `globalMemList` is null; the only form that does. Null
/// where that fails. File and line aren't used.
KAR_API void *KarAllocMemory(unsigned size, char *file, int line);
KAR_API void *__AllocMemory_C(unsigned size, const char *file, int line); ///< `KarAllocMemory(size)`.
KAR_API void __FreeMemory_C(void *p);                                     ///< `KarDellocMemory(p)`.
KAR_API void errorMemoryNotFree_C(void *p);                               ///< Does nothing.

/// \}
/// \name Heap blocks
/// \{

/// A block of the system's heap, aligned to 16 bytes; null for size 0 and without memory.
KAR_API void *__AllocMemory(unsigned size);
/// Releases a block of `__AllocMemory`; null is ignored, and so is what isn't a live block.
KAR_API void __FreeMemory(void *p);
/// The size that a live heap block was asked for with; 0 for any other address, whatever lies there. Constant. The
/// second argument isn't read.
KAR_API unsigned __MemorySize(void *p, unsigned);

/// \}

#endif
