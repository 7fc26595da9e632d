#include "karmemgb.h"

#include "karpool.h"
#include "karstdio.h"
#include "karsystem.h"
#include "platform.h"

#include <cstring>
#include <new>

using kar::addressOf;
using kar::PoolAccess;

namespace {

// ---- Heap blocks

struct HeapBlock {
    std::uintptr_t key; // its address
    unsigned size;      // as asked for
    unsigned lead;      // bytes between the system's block and ours
};

/// All live blocks of `__AllocMemory`: what isn't here is no heap block.
kar::AddressTable<HeapBlock> liveBlocks;

constexpr unsigned guardSize = 4;
constexpr unsigned heapAlignment = 16;

/// From the start of an aligned address to the block whose user pointer is aligned. 32-bit targets have no such room.
constexpr unsigned blockShift = sizeof(void *) > 4 ? heapAlignment - guardSize : 0;

/// A registered heap block that begins `shift` bytes behind an aligned address.
void *allocateHeapBlock(unsigned size, unsigned shift)
{
    constexpr unsigned slack =
        kar::platform::heapAlignment % heapAlignment ? heapAlignment - kar::platform::heapAlignment : 0;
    const std::size_t total = static_cast<std::size_t>(size) + shift + slack;
    if (size == 0 || total < size)
        return nullptr;
    char *const start = static_cast<char *>(kar::platform::heapAcquire(total));
    if (!start)
        return nullptr;
    const unsigned lead = static_cast<unsigned>((0 - addressOf(start)) % heapAlignment) + shift;
    if (!liveBlocks.insert({addressOf(start + lead), size, lead})) {
        kar::platform::heapRelease(start);
        return nullptr;
    }
    return start + lead;
}

void releaseHeapBlock(HeapBlock *block)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the table has its keys as numbers
    void *const start = reinterpret_cast<void *>(block->key - block->lead);
    liveBlocks.erase(block);
    kar::platform::heapRelease(start);
}

HeapBlock *findHeapBlock(const void *p) { return p ? liveBlocks.find(addressOf(p)) : nullptr; }

// ---- Guarded blocks

constexpr unsigned largestPoolBlock = 1000;
constexpr long largestHeapCount = 64000; // one more block can exist

/// Distance of two elements of a class in its pages.
constexpr int strideOf(int elementSize)
{
    const int aligned = static_cast<int>(heapAlignment);
    return blockShift == 0 ? elementSize
                           : (static_cast<int>(blockShift) + elementSize + aligned - 1) / aligned * aligned;
}

/// The pool of each total size, two sizes to an entry: all class sizes are even.
struct PoolTable {
    unsigned char pool[largestPoolBlock / 2 + 1];

    constexpr PoolTable() : pool()
    {
        for (unsigned pair = 0; pair <= largestPoolBlock / 2; ++pair)
            pool[pair] = 2 * pair <= 10 ? 0 : 2 * pair <= 100 ? 7 : 2 * pair <= 200 ? 8 : 2 * pair <= 500 ? 9 : 10;
    }
    constexpr unsigned operator[](unsigned total) const { return pool[(total + 1) / 2]; }
};
constexpr PoolTable poolOf;

unsigned readGuard(const void *place)
{
    unsigned value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

void writeGuard(void *place, unsigned value) { std::memcpy(place, &value, sizeof value); }

/// Writes both guards of a block; the user's pointer.
void *guarded(char *block, unsigned total)
{
    writeGuard(block, total);
    writeGuard(block + total - guardSize, total);
    return block + guardSize;
}

void reportWrongSize()
{
    debugErrorText(0, "Falsche Elementgröße kein Speicher zugewiesen in karGlobalMemory :: deleteMem");
}

} // namespace

// ---- The allocator

karGlobalMemory::karGlobalMemory()
    : pools{{10, 5000, strideOf(10)},  {20, 5000, strideOf(20)},   {30, 4000, strideOf(30)},
            {40, 3000, strideOf(40)},  {50, 3000, strideOf(50)},   {60, 2000, strideOf(60)},
            {80, 1000, strideOf(80)},  {100, 1000, strideOf(100)}, {200, 500, strideOf(200)},
            {500, 200, strideOf(500)}, {1000, 100, strideOf(1000)}},
      curAnzNew(0),
      curSizeNew(0),
      anzNew(0),
      markMemListGlobal(1)
{}

karGlobalMemory::~karGlobalMemory()
{
    testDeleteAll();
    poolsEnded = true; // the records, which go after the pools, ask for their blocks
}

void karGlobalMemory::testDeleteAll()
{
    for (karPageMemory &pool : pools)
        if (pool.getAnzElem() != 0)
            break;
}

void *karGlobalMemory::newMem(unsigned size)
{
    if (curAnzNew > largestHeapCount || size == 0)
        return nullptr;
    const unsigned total = size + 2 * guardSize;
    if (total > largestPoolBlock || markMemListGlobal == 0)
        return newFromHeap(total);
    karPageMemory &pool = pools[poolOf[total]];
    char *const element = static_cast<char *>(PoolAccess::take(pool));
    if (!element)
        return nullptr;
    anzNew = kar::addLong(anzNew, 1);
    return guarded(element + blockShift, static_cast<unsigned>(pool.elementSize()));
}

void *karGlobalMemory::newFromHeap(unsigned total)
{
    if (total < 2 * guardSize)
        return nullptr; // the sum has wrapped: there is no room for the guards
    char *const block = static_cast<char *>(allocateHeapBlock(total, blockShift));
    if (!block)
        return nullptr;
    curSizeNew = kar::addLong(curSizeNew, total);
    if (markMemListGlobal != 0)
        memory.dxnew(block + guardSize, total);
    curAnzNew = kar::addLong(curAnzNew, 1);
    anzNew = kar::addLong(anzNew, 1);
    return guarded(block, total);
}

void karGlobalMemory::deleteMem(void *p)
{
    if (!p || addressOf(p) == guardSize) // no block begins at address 0
        return;
    char *const block = static_cast<char *>(p) - guardSize;
    void *const element = block - blockShift;
    karPage *const page = kar::PageIndex::findLarge(element); // doesn't wait for the header
    const unsigned header = readGuard(block);
    if (header > largestPoolBlock || markMemListGlobal == 0)
        return deleteFromHeap(p, header);
    PoolAccess::give(pools[poolOf[header]], page, element);
}

void karGlobalMemory::deleteFromHeap(void *p, unsigned header)
{
    char *const block = static_cast<char *>(p) - guardSize;
    const bool large = header > largestPoolBlock && header <= 0x7fffffffu; // compared as a signed value
    if (markMemListGlobal != 0) {
        void *known = large ? p : nullptr;
        if (large)
            memory.dxdelete(&known);
        if (!known)
            return reportWrongSize();
    }
    HeapBlock *const heapBlock = findHeapBlock(block);
    if (heapBlock && heapBlock->size == header && header >= guardSize &&
        readGuard(block + header - guardSize) == header) {
        writeGuard(block + header - guardSize, 0);
        writeGuard(block, 0);
        releaseHeapBlock(heapBlock);
        curSizeNew = kar::addLong(curSizeNew, 0ul - header);
        curAnzNew = kar::addLong(curAnzNew, 0ul - 1);
        return;
    }
    if (header > largestPoolBlock)
        return reportWrongSize();
    PoolAccess::give(pools[poolOf[header]], block - blockShift);
}

bool karGlobalMemory::knows(void *p)
{
    if (addressOf(p) <= guardSize)
        return false;
    char *const block = static_cast<char *>(p) - guardSize;
    if (poolsEnded)
        return findHeapBlock(block) && readGuard(block) > largestPoolBlock;
    if (findHeapBlock(block))
        return true;
    for (karPageMemory &pool : pools)
        if (PoolAccess::find(pool, block - blockShift))
            return true;
    return false;
}

bool karGlobalMemory::isValid() const
{
    for (const karPageMemory &pool : pools)
        if (!pool.isValid())
            return false;
    return memory.isValid();
}

// ---- The one static object

namespace {

/// The tables of live blocks and of pages outlast the allocator; what is left in them at unload are blocks and pools of
/// the host, whose memory stays, while the tables' own goes.
struct TablesEnd {
    ~TablesEnd()
    {
        liveBlocks.clear();
        kar::largePages.clear();
    }
};

struct StaticMemory {
    TablesEnd end;
    karGlobalMemory memory; // is destroyed first
};

StaticMemory staticMemory;

} // namespace

karGlobalMemory *globalMemList = &staticMemory.memory;

// ---- Entry points

void *KarAllocMemory(unsigned size) { return globalMemList->newMem(size); }

void *KarAllocMemory(unsigned size, char *, int)
{
    if (size == 0)
        return nullptr;
    if (!globalMemList) {
        void *const place = __AllocMemory(sizeof(karGlobalMemory));
        if (!place) {
            _notready("SR: not ready info : Memory", "moduls/dll_general/src/karmemgb", __LINE__);
            return nullptr;
        }
        globalMemList = ::new (place) karGlobalMemory;
    }
    return globalMemList->newMem(size);
}

void *KarAllocMemory(unsigned size, void *p) { return p ? p : KarAllocMemory(size); }

void KarDellocMemory(void *p)
{
    if (p)
        globalMemList->deleteMem(p);
}

void *__AllocMemory(unsigned size) { return allocateHeapBlock(size, 0); }

void __FreeMemory(void *p)
{
    if (HeapBlock *const block = findHeapBlock(p))
        releaseHeapBlock(block);
}

unsigned __MemorySize(void *p, unsigned)
{
    const HeapBlock *const block = findHeapBlock(p);
    return block ? block->size : 0;
}

void *__AllocMemory_C(unsigned size, const char *, int) { return KarAllocMemory(size); }
void __FreeMemory_C(void *p) { KarDellocMemory(p); }
void errorMemoryNotFree_C(void *) {}
