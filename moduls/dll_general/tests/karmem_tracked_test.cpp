// Tracked blocks and files: records, sums, the order of searches, what is left behind.
#include "karmem.h"

#include "failalloc.h"
#include "mempeek.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <list>
#include <string>
#include <vector>

namespace {

/// Addresses that no allocator knows.
char places[100000];

/// The record of `p` is taken away; whether there was one.
bool forget(karMemory &memory, void *p)
{
    void *known = p;
    memory.dxdelete(&known);
    EXPECT_TRUE(known == p || known == nullptr);
    return known == p;
}

class Entry : public karMemory_Entry {
public:
    using karMemory_Entry::karMemory_Entry;
    std::ptrdiff_t blockOffset() const { return offsetIn(*this, hentry_); }
    std::ptrdiff_t sizeOffset() const { return offsetIn(*this, hsize_); }
};

class FileEntry : public karFile_EntryZ {
public:
    using karFile_EntryZ::karFile_EntryZ;
    std::ptrdiff_t fileOffset() const { return offsetIn(*this, hentry_); }
    std::ptrdiff_t sizeOffset() const { return offsetIn(*this, hsize_); }
    std::ptrdiff_t kindOffset() const { return offsetIn(*this, openKind); }
    static int kindOf(karFile_EntryZ &entry) { return entry.*&FileEntry::openKind; }
};

class Memory : public karMemory {
public:
    using karMemory::delete_all;
    using karMemory::search_file_entry;
    using karMemory::search_memory_entry;
    std::vector<std::ptrdiff_t> offsets() const
    {
        return {offsetIn(*this, entryPool), offsetIn(*this, memoryEntries), offsetIn(*this, fileEntries),
                offsetIn(*this, curr_used_memory_), offsetIn(*this, max_used_memory_)};
    }
};

/// A file of the test's own, removed at its end.
class TestFile {
public:
    TestFile(const std::string &fileName, std::size_t size) : name(fileName)
    {
        std::FILE *const file = std::fopen(name.c_str(), "wb");
        for (std::size_t i = 0; i < size; ++i)
            std::fputc('x', file);
        std::fclose(file);
    }
    ~TestFile() { std::remove(name.c_str()); }
    const char *c_str() const { return name.c_str(); }

private:
    std::string name;
};

} // namespace

// ---- Records

TEST(KarMemory_Entry, FieldsStandBehindTheLinks)
{
    Entry entry(places, 5, nullptr);
    const std::ptrdiff_t pointer = sizeof(void *);
    EXPECT_EQ(entry.blockOffset(), 3 * pointer);
    EXPECT_EQ(entry.sizeOffset(), 4 * pointer);
    if (!wide) {
        EXPECT_EQ(sizeof(karMemory_Entry), 20u);
    }
    FileEntry file(nullptr, 5, 1, nullptr);
    EXPECT_EQ(file.fileOffset(), 3 * pointer);
    EXPECT_EQ(file.sizeOffset(), 4 * pointer);
    EXPECT_EQ(file.kindOffset(), 4 * pointer + 4);
}

TEST(KarMemory_Entry, StandsAtTheEndAndHoldsItsFields)
{
    karMemory_Entry a(places, 100, nullptr);
    karMemory_Entry b(places + 1, 50, &a);
    karMemory_Entry c(places + 2, 25, &a);
    EXPECT_EQ(a.hentry(), places);
    EXPECT_EQ(a.hsize(), 100);
    EXPECT_EQ(b.next(), &c);
    EXPECT_EQ(c.prev(), &b);
    EXPECT_EQ(a.set_besideIt(), &b);
    EXPECT_EQ(c.set_besideIt(), &b);
    EXPECT_EQ(a.GetType(), 60);
    EXPECT_EQ(a.ListObjectOk(), 1);
    a.hentry(places + 7);
    EXPECT_EQ(a.hentry(), places + 7);
    a.hsize(-3);
    EXPECT_EQ(a.hsize(), -3);
    a.hentry(places + 8, 9);
    EXPECT_EQ(a.hentry(), places + 8);
    EXPECT_EQ(a.hsize(), 9);
    karMemory_Entry alone(nullptr, 0, nullptr);
    EXPECT_EQ(alone.set_besideIt(), nullptr);
    alone = c;
    EXPECT_EQ(alone.prev(), &b);
    EXPECT_EQ(alone.hsize(), 25);
    const karMemory_Entry &same = alone;
    alone = same;
    EXPECT_EQ(alone.prev(), &b);
    EXPECT_EQ(alone.hsize(), 25);
    alone.prev(nullptr);
    karMemory_Entry copy(b);
    EXPECT_EQ(copy.prev(), &a);
    EXPECT_EQ(copy.next(), &c);
    EXPECT_EQ(copy.hentry(), places + 1);
    EXPECT_EQ(copy.hsize(), 50);
    copy.prev(nullptr);
    copy.next(nullptr);
}

TEST(KarFile_EntryZ, StandsAtTheEndAndHoldsItsFields)
{
    karFile_EntryZ a(stdin, 100, 1, nullptr);
    karFile_EntryZ b(stdout, 50, 2, &a);
    EXPECT_EQ(a.hentry(), stdin);
    EXPECT_EQ(b.hsize(), 50);
    EXPECT_EQ(a.next(), &b);
    EXPECT_EQ(b.set_besideIt(), &a);
    EXPECT_EQ(a.set_besideIt(), &b);
    EXPECT_EQ(a.GetType(), 60);
    EXPECT_EQ(a.ListObjectOk(), 1);
    a.hentry(stderr);
    a.hsize(7);
    EXPECT_EQ(a.hentry(), stderr);
    EXPECT_EQ(a.hsize(), 7);
    a.hentry(stdin, 8);
    EXPECT_EQ(a.hentry(), stdin);
    EXPECT_EQ(a.hsize(), 8);
    EXPECT_EQ(FileEntry::kindOf(b), 2);
    karFile_EntryZ copy(b);
    karFile_EntryZ assigned(nullptr, 0, 3, nullptr);
    EXPECT_EQ(assigned.set_besideIt(), nullptr);
    assigned = b;
    for (karFile_EntryZ *other : {&copy, &assigned}) {
        EXPECT_EQ(other->prev(), &a);
        EXPECT_EQ(other->hentry(), stdout);
        EXPECT_EQ(other->hsize(), 50);
        EXPECT_EQ(FileEntry::kindOf(*other), 2);
        other->prev(nullptr);
    }
    EXPECT_EQ(a.next(), &b);
}

// ---- Blocks

TEST(KarMemory, FieldsStandInTheirOrder)
{
    const Memory memory;
    const std::ptrdiff_t pointer = sizeof(void *);
    const std::ptrdiff_t pool = sizeof(karPageMemory);
    EXPECT_EQ(memory.offsets(),
              (std::vector<std::ptrdiff_t>{0, pool, pool + pointer, pool + 2 * pointer,
                                           pool + 2 * pointer + static_cast<std::ptrdiff_t>(sizeof(long))}));
}

TEST(KarMemory, RecordsComeFromPagesOfAThousand)
{
    karMemory memory;
    EXPECT_EQ(MemoryPeek::poolOf(memory).elementCount(), 1000);
    if (!wide) {
        EXPECT_EQ(MemoryPeek::poolOf(memory).elementSize(), 28);
    }
    EXPECT_GE(static_cast<std::size_t>(MemoryPeek::poolOf(memory).elementSize()), sizeof(karMemory_Entry));
}

TEST(KarMemory, SumsWhatIsRegisteredAndKeepsTheHighest)
{
    karMemory memory;
    EXPECT_EQ(memory.dxnew(nullptr, 10), nullptr);
    EXPECT_EQ(memory.curr_used_memory(), 0);
    EXPECT_EQ(memory.dxnew(places, 100), places);
    EXPECT_EQ(memory.dxnew(places + 1, 50), places + 1);
    EXPECT_EQ(memory.curr_used_memory(), 150);
    EXPECT_EQ(memory.max_used_memory(), 150);
    EXPECT_TRUE(forget(memory, places));
    EXPECT_EQ(memory.curr_used_memory(), 50);
    EXPECT_EQ(memory.max_used_memory(), 150);
    EXPECT_FALSE(forget(memory, places));
    EXPECT_EQ(memory.curr_used_memory(), 50);
    EXPECT_TRUE(forget(memory, places + 1));
    EXPECT_FALSE(forget(memory, places + 1)); // the list is empty
    EXPECT_EQ(memory.curr_used_memory(), 0);
    EXPECT_EQ(memory.max_used_memory(), 150);
    EXPECT_EQ(MemoryPeek::tailOf(memory), nullptr);
    EXPECT_TRUE(memory.isValid());
}

TEST(KarMemory, ASumThatFallsBelowZeroIsANegativeNumber)
{
    karMemory memory;
    memory.dxnew(places, 100);
    MemoryPeek::tailOf(memory)->hsize(150);
    EXPECT_TRUE(forget(memory, places));
    EXPECT_EQ(memory.curr_used_memory(), -50);
    memory.dxnew(places, 49);
    EXPECT_EQ(memory.curr_used_memory(), -1);
    memory.dxnew(places + 1, 1);
    EXPECT_EQ(memory.curr_used_memory(), 0);
    EXPECT_EQ(memory.max_used_memory(), 100);
}

TEST(KarMemory, EntryPointIsTheTailAndFallsToItsPredecessor)
{
    karMemory memory;
    for (int i = 0; i < 4; ++i) {
        memory.dxnew(places + i, 1);
        EXPECT_EQ(MemoryPeek::tailOf(memory)->hentry(), places + i);
        EXPECT_EQ(MemoryPeek::tailOf(memory)->next(), nullptr);
    }
    forget(memory, places + 3);
    EXPECT_EQ(MemoryPeek::tailOf(memory)->hentry(), places + 2);
    forget(memory, places);
    EXPECT_EQ(MemoryPeek::tailOf(memory)->hentry(), places + 2);
    EXPECT_EQ(MemoryPeek::tailOf(memory)->listLength(), 2);
}

TEST(KarMemory, AddressRegisteredTwiceIsFoundAtTheTailElseTheOldest)
{
    for (int others : {0, 3, 200}) { // with few records and with an index over many
        karMemory memory;
        for (int i = 0; i < others; ++i)
            memory.dxnew(places + 100 + i, 0);
        for (unsigned size : {1u, 2u, 4u, 8u}) // the same address four times
            memory.dxnew(places, size);
        forget(memory, places); // the tail
        EXPECT_EQ(memory.curr_used_memory(), 7);
        memory.dxnew(places + 1, 0);
        forget(memory, places); // the oldest
        EXPECT_EQ(memory.curr_used_memory(), 6);
        forget(memory, places);
        EXPECT_EQ(memory.curr_used_memory(), 4);
        EXPECT_TRUE(memory.isValid());
        forget(memory, places);
        EXPECT_EQ(memory.curr_used_memory(), 0);
        EXPECT_FALSE(forget(memory, places));
    }
}

TEST(KarMemory, RecordFollowsAnAddressStoredInIt)
{
    Memory memory;
    for (int i = 0; i < 50; ++i)
        memory.dxnew(places + i, 1);
    EXPECT_NE(memory.search_memory_entry(places + 5), nullptr);
    memory.search_memory_entry(places + 5)->hentry(places + 500);
    EXPECT_EQ(memory.search_memory_entry(places + 5), nullptr);
    karMemory_Entry *const record = memory.search_memory_entry(places + 500);
    ASSERT_NE(record, nullptr);
    record->hentry(places + 600, 3);
    EXPECT_EQ(memory.search_memory_entry(places + 600), record);
    karMemory_Entry *const other = memory.search_memory_entry(places + 7);
    const karMemory_Entry outside(places + 700, 9, nullptr);
    ASSERT_NE(other, nullptr);
    karMemory_Entry *const before = other->prev();
    karMemory_Entry *const behind = other->next();
    *other = outside;
    other->prev(before);
    other->next(behind);
    EXPECT_EQ(memory.search_memory_entry(places + 700), other);
    EXPECT_EQ(memory.search_memory_entry(places + 7), nullptr);
}

TEST(KarMemory, RecordThatAHostTakesOutOfTheChainIsUnknown)
{
    for (int run = 0; run < 4; ++run) {
        const int others = run % 2 ? 50 : 3; // with an index over many, and with few records
        Memory memory;
        for (int i = 0; i < others; ++i)
            memory.dxnew(places + i, 1);
        EXPECT_EQ(memory.search_memory_entry(&memory), nullptr);
        karMemory_Entry *const record = memory.search_memory_entry(places + 1);
        if (run < 2) {
            record->unchain();
        } else { // its own links stay
            record->prev()->next(record->next());
            record->next()->prev(record->prev());
        }
        EXPECT_FALSE(forget(memory, places + 1));
        EXPECT_EQ(memory.curr_used_memory(), others); // its size stays in the sum
        memory.dxnew(places + 1, 10);
        memory.dxnew(places + 99, 1);
        EXPECT_TRUE(forget(memory, places + 1));
        EXPECT_FALSE(forget(memory, places + 1));
        EXPECT_EQ(memory.curr_used_memory(), others + 1);
        EXPECT_TRUE(memory.isValid());
    }
}

TEST(KarMemory, RecordOfANullAddressIsFound)
{
    for (int others : {3, 50}) { // with few records and with an index over many
        Memory memory;
        for (int i = 0; i < others; ++i)
            memory.dxnew(places + i, 1);
        EXPECT_EQ(memory.search_memory_entry(nullptr), nullptr);
        karMemory_Entry *const record = memory.search_memory_entry(places + 1);
        record->hentry(nullptr);
        EXPECT_EQ(memory.search_memory_entry(nullptr), record);
        EXPECT_EQ(memory.search_memory_entry(places + 1), nullptr);
        EXPECT_TRUE(memory.isValid());
        EXPECT_FALSE(forget(memory, places + 1));
        void *none = nullptr;
        memory.dxdelete(&none);
        EXPECT_EQ(memory.curr_used_memory(), others - 1);
        EXPECT_EQ(memory.search_memory_entry(nullptr), nullptr);
        EXPECT_TRUE(memory.isValid());
    }
}

TEST(KarMemory, RecordsOfTheHighestAddressesAreToldApart)
{
    for (int others : {3, 50}) { // with few records and with an index over many
        Memory memory;
        std::vector<void *> highest;
        for (std::uintptr_t below = 1; below <= 4; ++below) { // as handles that stand for no block
            highest.push_back(reinterpret_cast<void *>(0 - below));
            memory.dxnew(highest.back(), static_cast<unsigned>(1000 * below));
        }
        for (int i = 0; i < others; ++i)
            memory.dxnew(places + i, 1);
        long sum = 10000 + others;
        for (const std::size_t which : {1u, 0u, 3u, 2u}) {
            EXPECT_TRUE(forget(memory, highest[which]));
            EXPECT_FALSE(forget(memory, highest[which]));
            sum -= 1000 * static_cast<long>(which + 1);
            EXPECT_EQ(memory.curr_used_memory(), sum);
            EXPECT_TRUE(memory.isValid());
        }
    }
}

TEST(KarMemory, SearchWithoutRecordsFindsNothing)
{
    Memory memory;
    EXPECT_EQ(memory.search_memory_entry(places), nullptr);
    EXPECT_EQ(memory.search_file_entry(stdin), nullptr);
}

TEST(KarMemory, MissingRecordCutsTheOlderOnesOff)
{
    const HeapCounts before;
    {
        karMemory memory;
        for (int i = 0; i < 20; ++i)
            memory.dxnew(places + i, 10);
        EXPECT_TRUE(forget(memory, places + 3)); // an index over them exists now
        for (int i = 0; i < 981; ++i)
            memory.dxnew(places + 100 + i, 0); // 1000 records: the page is full
        // A page object can be had, but no storage for it, and no record from the general allocator after that.
        globalMemList->setCurAnzNew(64000);
        EXPECT_EQ(memory.dxnew(places + 5000, 5), places + 5000);
        EXPECT_EQ(globalMemList->getCurAnzNew(), 64001);
        globalMemList->setCurAnzNew(static_cast<int>(before.blocks + 3));
        EXPECT_EQ(memory.curr_used_memory(), 195); // its size counts all the same
        EXPECT_EQ(memory.max_used_memory(), 200);
        EXPECT_EQ(MemoryPeek::tailOf(memory), nullptr);
        EXPECT_FALSE(forget(memory, places + 4));
        memory.dxnew(places + 6000, 1);
        EXPECT_EQ(MemoryPeek::tailOf(memory)->listLength(), 1);
        EXPECT_FALSE(forget(memory, places + 4));
        EXPECT_TRUE(forget(memory, places + 6000));
        EXPECT_TRUE(memory.isValid());
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarMemory, RecordComesFromTheGeneralAllocatorWhereThePoolHasNone)
{
    const Mark pooled(1);
    {
        karMemory memory;
        PoolPeek::lastOf(MemoryPeek::poolOf(memory)) = nullptr;
        MemoryPeek::poolOf(memory) = karPageMemory(28, 0); // a pool that never has an element
        memory.dxnew(places, 3);
        memory.dxnew(places + 1, 4);
        EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), 2);
        EXPECT_EQ(memory.curr_used_memory(), 7);
        EXPECT_TRUE(forget(memory, places));
        EXPECT_EQ(memory.curr_used_memory(), 4);
        // Note: the record goes back to the records' pool, which doesn't know it.
        EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), 2);
    }
    AllocatorPeek::pool(*globalMemList, 7).delete_all();
}

TEST(KarMemory, CopyFindsTheSameRecords)
{
    alignas(karMemory) unsigned char abandoned[sizeof(karMemory)];
    karMemory &source = *::new (static_cast<void *>(abandoned)) karMemory;
    for (int i = 0; i < 100; ++i)
        source.dxnew(places + i, 1);
    karMemory copy(source);
    EXPECT_EQ(copy.curr_used_memory(), 100);
    EXPECT_TRUE(forget(copy, places + 10));
    EXPECT_FALSE(forget(copy, places + 10));
    karMemory assigned;
    assigned.dxnew(places, 1);
    forget(assigned, places);
    assigned = copy;
    EXPECT_EQ(assigned.curr_used_memory(), 99);
    EXPECT_EQ(assigned.max_used_memory(), 100);
    EXPECT_TRUE(forget(assigned, places + 11));
    EXPECT_TRUE(assigned.isValid());
    MemoryPeek::tailOf(copy) = nullptr; // one only destroys the pages
    PoolPeek::firstOf(MemoryPeek::poolOf(copy)) = nullptr;
    PoolPeek::lastOf(MemoryPeek::poolOf(copy)) = nullptr;
}

TEST(KarMemory, LongRandomSequenceAgreesWithAPlainList)
{
    constexpr std::uint64_t seed = 20240517;
    SCOPED_TRACE(seed);
    TestRandom random(seed);
    struct Plain {
        void *p;
        long size;
    };
    std::list<Plain> list; // in the order of registration
    karMemory memory;
    long sum = 0;
    long highest = 0;
    std::size_t wanted = 0;
    for (int step = 0, steps = testSteps(300000); step < steps; ++step) {
        if (step % 5000 == 0)
            wanted = random.below(60);
        void *const p = places + random.below(40); // many addresses twice
        if (random.below(100) < (list.size() < wanted ? 70u : 30u)) {
            const unsigned size = random.below(1000);
            ASSERT_EQ(memory.dxnew(p, size), p);
            list.push_back({p, static_cast<long>(size)});
            sum += static_cast<long>(size);
            highest = std::max(highest, sum);
        } else {
            auto found = list.end();
            if (!list.empty() && list.back().p == p)
                found = std::prev(list.end());
            else
                for (auto i = list.begin(); i != list.end(); ++i)
                    if (i->p == p) {
                        found = i;
                        break;
                    }
            ASSERT_EQ(forget(memory, p), found != list.end()) << step;
            if (found != list.end()) {
                sum -= found->size;
                list.erase(found);
            }
        }
        ASSERT_EQ(memory.curr_used_memory(), sum) << step;
        ASSERT_EQ(memory.max_used_memory(), highest) << step;
        if (step % 1000 == 0) {
            ASSERT_TRUE(memory.isValid()) << step;
            karMemory_Entry *record = MemoryPeek::tailOf(memory);
            for (auto i = list.rbegin(); i != list.rend(); ++i, record = record->prev()) {
                ASSERT_NE(record, nullptr);
                ASSERT_EQ(record->hentry(), i->p);
                ASSERT_EQ(record->hsize(), i->size);
            }
            ASSERT_EQ(record, nullptr);
        }
    }
}

TEST(KarMemory, DeleteAllWithoutRecordsGives2)
{
    Memory memory;
    EXPECT_EQ(memory.delete_all(), 2);
    memory.testDeleteAllGlobal();
}

TEST(KarMemory, DeleteAllOfAHostsOwnReleasesBlocksAndKeepsItsSum)
{
    const HeapCounts before;
    {
        Memory memory;
        void *const large = KarAllocMemory(5000);
        void *const small = KarAllocMemory(50);
        memory.dxnew(large, 5000);
        memory.dxnew(small, 50);
        memory.dxnew(places, 3); // no block of the allocator: passed over
        EXPECT_EQ(memory.delete_all(), 1);
        EXPECT_EQ(memory.curr_used_memory(), 5053);
        EXPECT_EQ(MemoryPeek::tailOf(memory), nullptr);
        EXPECT_EQ(MemoryPeek::poolOf(memory).getAnzElem(), 3);
        EXPECT_EQ(globalMemList->curr_used_memory(), 0);
        EXPECT_EQ(AllocatorPeek::pool(*globalMemList, 7).getAnzElem(), 0);
        EXPECT_EQ(memory.delete_all(), 2);
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarMemory, DeleteAllPassesOverARecordWithoutABlock)
{
    Memory memory;
    memory.dxnew(places, 5);
    MemoryPeek::tailOf(memory)->hentry(nullptr);
    EXPECT_EQ(memory.delete_all(), 1);
    EXPECT_EQ(MemoryPeek::tailOf(memory), nullptr);
}

TEST(KarMemory, DeleteAllPassesOverAddressesTooLowForABlock)
{
    Memory memory;
    for (std::uintptr_t address = 1; address <= 4; ++address) {
        void *p;
        std::memcpy(&p, &address, sizeof p);
        memory.dxnew(p, 5);
    }
    EXPECT_EQ(memory.delete_all(), 1);
    EXPECT_EQ(memory.curr_used_memory(), 20);
}

TEST(KarMemory, AssignedToItselfKeepsItsRecords)
{
    karMemory memory;
    for (int i = 0; i < 20; ++i)
        memory.dxnew(places + i, 1);
    const karMemory &same = memory;
    memory = same;
    EXPECT_EQ(memory.curr_used_memory(), 20);
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(forget(memory, places + i));
}

TEST(KarMemory, DeleteAllOfRecordsWithoutSizeGives0)
{
    Memory memory;
    memory.dxnew(places, 0);
    EXPECT_EQ(memory.delete_all(), 0);
}

TEST(KarMemory, DestructorReleasesWhatIsStillRegistered)
{
    const HeapCounts before;
    {
        karMemory memory;
        for (int i = 0; i < 30; ++i)
            memory.dxnew(KarAllocMemory(2000), 2000);
    }
    EXPECT_TRUE(HeapCounts() == before);
}

TEST(KarMemory, TestDeleteAllGlobalMendsTheWayIntoThePoolWithoutRecordsOnly)
{
    Memory memory;
    karPageMemory &pool = MemoryPeek::poolOf(memory);
    void *element;
    {
        const Mark direct(0);
        element = pool.newElement();
    }
    karPage *const page = PoolPeek::firstOf(pool);
    memory.dxnew(places, 1);
    PoolPeek::firstOf(pool) = nullptr;
    memory.testDeleteAllGlobal();
    EXPECT_EQ(PoolPeek::firstOf(pool), nullptr);
    PoolPeek::firstOf(pool) = page;
    EXPECT_TRUE(forget(memory, places));
    PoolPeek::firstOf(pool) = nullptr;
    memory.testDeleteAllGlobal();
    EXPECT_EQ(PoolPeek::firstOf(pool), page);
    const Mark direct(0);
    pool.deleteElement(element);
}

TEST(KarMemory, MarkIsClearedForItsOwnRecordsOnly)
{
    for (int mark : {0, 1, 7}) {
        const Mark during(mark);
        karMemory memory;
        memory.dxnew(places, 1);
        EXPECT_EQ(globalMemList->getMarkMemListGlobal(), mark);
        forget(memory, places);
        EXPECT_EQ(globalMemList->getMarkMemListGlobal(), mark);
    }
}

// ---- Files

TEST(KarMemory, EmptyNameAndMissingFileGiveNull)
{
    karMemory memory;
    EXPECT_EQ(memory.xfopen("", "rb"), nullptr);
    EXPECT_EQ(memory.xfopen("", "wb"), nullptr);
    EXPECT_EQ(memory.xfopen("no-such-directory/no-such-file", "rb"), nullptr);
    EXPECT_EQ(MemoryPeek::filesOf(memory), nullptr);
}

TEST(KarMemory, OpenFileIsRecordedWithItsSizeAndKind)
{
    const TestFile file("karmem_tracked_test_kind.tmp", 1234);
    karMemory memory;
    struct {
        const char *mode;
        int kind;
    } const modes[] = {{"rb", 1}, {"r", 3}, {"r+b", 3}, {"rb+", 3}, {"ab", 3}};
    for (const auto &mode : modes) {
        std::FILE *const stream = memory.xfopen(file.c_str(), mode.mode);
        ASSERT_NE(stream, nullptr);
        karFile_EntryZ *const record = MemoryPeek::filesOf(memory);
        EXPECT_EQ(record->hentry(), stream);
        EXPECT_EQ(record->hsize(), 1234) << mode.mode;
        EXPECT_EQ(FileEntry::kindOf(*record), mode.kind) << mode.mode;
        EXPECT_EQ(std::ftell(stream), 0);
        EXPECT_EQ(memory.xfclose(stream), 0);
        EXPECT_EQ(MemoryPeek::filesOf(memory), nullptr);
    }
    std::FILE *const stream = memory.xfopen(file.c_str(), "wb");
    EXPECT_EQ(FileEntry::kindOf(*MemoryPeek::filesOf(memory)), 2);
    EXPECT_EQ(memory.xfclose(stream), 0);
}

TEST(KarMemory, OneCallClosesOneFileLatestFirst)
{
    const TestFile file("karmem_tracked_test_close.tmp", 10);
    karMemory memory;
    std::FILE *const a = memory.xfopen(file.c_str(), "rb");
    memory.xfopen(file.c_str(), "rb");
    EXPECT_EQ(memory.xfclose_all(), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory)->hentry(), a);
    EXPECT_EQ(memory.xfclose_all(), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory), nullptr);
    EXPECT_EQ(memory.xfclose_all(), 1);
}

TEST(KarMemory, LatestFileIsClosedFirstWhateverRecordIsEntered)
{
    const TestFile file("karmem_tracked_test_entered.tmp", 10);
    karMemory memory;
    std::FILE *const a = memory.xfopen(file.c_str(), "rb");
    karFile_EntryZ *const older = MemoryPeek::filesOf(memory);
    memory.xfopen(file.c_str(), "rb");
    MemoryPeek::filesOf(memory) = older;
    EXPECT_EQ(memory.xfclose_all(), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory), older);
    EXPECT_EQ(memory.xfclose(a), 0);
    EXPECT_EQ(memory.xfclose_all(), 1);
}

TEST(KarMemory, RecordWithoutAStreamIsDroppedAlone)
{
    const TestFile file("karmem_tracked_test_null.tmp", 10);
    karMemory memory;
    std::FILE *const stream = memory.xfopen(file.c_str(), "rb");
    MemoryPeek::filesOf(memory)->hentry(nullptr);
    EXPECT_EQ(memory.xfclose_all(), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory), nullptr);
    EXPECT_EQ(std::fgetc(stream), 'x'); // it is open still
    std::fclose(stream);
}

TEST(KarMemory, ClosesAnyOfSeveralAndNoUnknownStream)
{
    const TestFile file("karmem_tracked_test_any.tmp", 10);
    karMemory memory;
    std::FILE *streams[4];
    for (std::FILE *&stream : streams)
        stream = memory.xfopen(file.c_str(), "rb");
    std::FILE *const own = std::fopen(file.c_str(), "rb");
    EXPECT_EQ(memory.xfclose(own), 1);
    EXPECT_EQ(std::fgetc(own), 'x'); // it is open still
    std::fclose(own);
    EXPECT_EQ(memory.xfclose(streams[1]), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory)->hentry(), streams[3]);
    EXPECT_EQ(memory.xfclose(streams[3]), 0);
    EXPECT_EQ(MemoryPeek::filesOf(memory)->hentry(), streams[2]);
    EXPECT_EQ(memory.xfclose(streams[0]), 0);
    EXPECT_EQ(memory.xfclose(streams[2]), 0);
    EXPECT_EQ(memory.xfclose(streams[2]), 1); // nothing is open
}

TEST(KarMemory, StreamWithoutRecordIsReturnedAndCutsTheOlderOnesOff)
{
    const TestFile file("karmem_tracked_test_cut.tmp", 10);
    karMemory memory;
    std::FILE *const older = memory.xfopen(file.c_str(), "rb");
    karFile_EntryZ *const record = MemoryPeek::filesOf(memory);
    std::FILE *stream;
    {
        AllAllocationsFail failing;
        stream = memory.xfopen(file.c_str(), "rb");
    }
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(MemoryPeek::filesOf(memory), nullptr);
    EXPECT_EQ(memory.xfclose(stream), 1);
    EXPECT_EQ(memory.xfclose(older), 1);
    std::fclose(stream);
    std::fclose(older);
    delete record;
}

// ---- Copies

TEST(KarMemory, CopiesOverlappingRangesInBothDirections)
{
    karMemory memory;
    constexpr std::uint64_t seed = 7;
    TestRandom random(seed);
    for (int round = 0, rounds = testSteps(20000); round < rounds; ++round) {
        unsigned char bytes[96];
        unsigned char expected[96];
        for (int i = 0; i < 96; ++i)
            expected[i] = bytes[i] = static_cast<unsigned char>(random.below(256));
        const unsigned n = random.below(33);
        const unsigned from = random.below(60);
        const unsigned to = random.below(60);
        unsigned char copy[96];
        std::memcpy(copy, bytes, sizeof copy);
        for (unsigned i = 0; i < n; ++i)
            expected[to + i] = copy[from + i];
        memory.xmemcpy(bytes + to, bytes + from, static_cast<long>(n));
        ASSERT_EQ(std::memcmp(bytes, expected, sizeof bytes), 0) << n << ' ' << from << ' ' << to;
    }
    char text[] = "abcdef";
    memory.xmemcpy(text + 1, text, 5);
    EXPECT_STREQ(text, "aabcde");
    memory.xmemcpy(text, text, 6);
    memory.xmemcpy(text, text + 2, 0);
    EXPECT_STREQ(text, "aabcde");
}
