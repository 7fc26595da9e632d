// The entry points to the allocator, the pools and the records, with each allocation failing in turn.
#include "karmemgb.h"

#include "everyallocation.h"
#include "testvarpool.h"

#include <cstdio>

namespace {

// -- Blocks

/// The bytes can be written, and the block is released.
template <void (*release)(void *)>
std::string used(void *p, unsigned size)
{
    if (!p)
        return "null";
    std::memset(p, 0x5a, size);
    release(p);
    return "block";
}

#define BLOCK(size, release, ...)                                                                                      \
    [](Span &span) {                                                                                                   \
        span.begin();                                                                                                  \
        void *const p = __VA_ARGS__;                                                                                   \
        span.end();                                                                                                    \
        return used<release>(p, size);                                                                                 \
    }

std::string placed(Span &span)
{
    char place[8];
    span.begin();
    void *const given = KarAllocMemory(8, place);
    void *const made = KarAllocMemory(8, static_cast<void *>(nullptr));
    span.end();
    EXPECT_EQ(given, place);
    return used<KarDellocMemory>(made, 8);
}

std::string withFile(Span &span)
{
    char file[] = "file";
    span.begin();
    void *const p = KarAllocMemory(20, file, 1);
    span.end();
    return used<KarDellocMemory>(p, 20);
}

std::string array(Span &span)
{
    span.begin();
    void *const p = kar::allocArray(5, 4);
    void *const tooLarge = kar::allocArray(0x40000000, 4);
    span.end();
    EXPECT_EQ(tooLarge, nullptr);
    return used<KarDellocMemory>(p, 20);
}

/// A large block asks the records too, and there are enough of them for an index.
std::string oneOfManyTracked(Span &span)
{
    void *others[12];
    for (void *&other : others)
        other = KarAllocMemory(2000);
    span.begin();
    KarDellocMemory(others[3]);
    span.end();
    others[3] = nullptr;
    for (void *other : others)
        KarDellocMemory(other);
    return "released";
}

const Operation blocks[] = {
    {"Small", BLOCK(20, KarDellocMemory, KarAllocMemory(20)), "block", {"null"}, {}},
    {"OfTheLargestClass", BLOCK(992, KarDellocMemory, KarAllocMemory(992)), "block", {"null"}, {}},
    {"Large", BLOCK(5000, KarDellocMemory, KarAllocMemory(5000)), "block", {"null"}, {}, Operation::large},
    {"Placed", placed, "block", {"null"}, {}},
    {"WithFile", withFile, "block", {"null"}, {}},
    {"OfTheAllocator", BLOCK(20, KarDellocMemory, globalMemList->newMem(20)), "block", {"null"}, {}},
    {"ForC", BLOCK(20, __FreeMemory_C, __AllocMemory_C(20, "file", 1)), "block", {"null"}, {}},
    {"OfTheHeap", BLOCK(20, __FreeMemory, __AllocMemory(20)), "block", {"null"}, {}, Operation::direct},
    {"Array", array, "block", {"null"}, {}},
    {"ReleaseOfOneOfMany", oneOfManyTracked, "released", {}, {}, Operation::large},
};
INSTANTIATE_TEST_SUITE_P(Blocks, EveryAllocation, ::testing::ValuesIn(blocks), nameOf);

// -- Pages and pools

std::string fixedPage(Span &span)
{
    span.begin();
    karPage page(nullptr, 40, 2);
    span.end();
    EXPECT_TRUE(page.isValid());
    std::string text;
    for (int i = 0; i < 3; ++i)
        text += page.newElement() ? "element " : "null ";
    return text;
}

std::string fixedPageByNew(Span &span)
{
    span.begin();
    auto *const page = new karPage(nullptr, 40, 2);
    span.end();
    const std::string text = !page ? "null" : page->canInsertElement() ? "elements" : "no elements";
    delete page;
    return text;
}

std::string fixedPool(Span &span)
{
    karPageMemory pool(40, 2);
    void *elements[3];
    elements[0] = pool.newElement();
    elements[1] = pool.newElement();
    span.begin();
    elements[2] = pool.newElement(); // on a page of its own
    span.end();
    EXPECT_TRUE(pool.isValid());
    const std::string text = elements[2] ? "element, " : "null, ";
    for (void *&element : elements)
        pool.deleteElement(element);
    void *next = pool.newElement();
    EXPECT_TRUE(pool.isValid());
    return text + (next ? "then an element" : "then null");
}

std::string variablePage(Span &span)
{
    span.begin();
    karVarPage page(nullptr, 8, 4);
    span.end();
    EXPECT_TRUE(page.isValid());
    return page.newElement(3, 0) ? "run" : "null";
}

std::string variablePageByNew(Span &span)
{
    span.begin();
    auto *const page = new karVarPage(nullptr, 8, 4);
    span.end();
    const std::string text = !page ? "null" : page->newElement(3, 0) ? "run" : "no run";
    delete page;
    return text;
}

template <void *(karVarPageMemory::*make)(int)>
std::string variablePool(Span &span)
{
    Pool pool(8, 4);
    void *first = pool.newElement(4);
    span.begin();
    void *second = (pool.*make)(3); // on a page of its own
    span.end();
    EXPECT_TRUE(pool.isValid());
    const std::string text = second ? "run, " : "null, ";
    pool.deleteElement(first, 4);
    pool.deleteElement(second, 3);
    void *const next = pool.newElement(4);
    EXPECT_TRUE(pool.isValid());
    return text + (next ? "then a run" : "then null");
}

std::string shortened(Span &span)
{
    Pool pool(8, 4);
    void *p = pool.newElement(4);
    std::memset(p, 0x5a, 32);
    span.begin();
    void *const run = pool.resizeElementLast(p, 4, 3); // to a page of its own
    span.end();
    EXPECT_TRUE(pool.isValid());
    const bool whole = std::string(static_cast<const char *>(run), 24) == std::string(24, 0x5a);
    return std::string(run == p ? "in its place" : "moved") + (whole ? "" : " and damaged");
}

std::string pageAppended(Span &span)
{
    Pool pool(8, 4);
    span.begin();
    const karVarPage *const page = pool.appendPage(4);
    span.end();
    return !page ? "null" : page->elementCount() == 4 ? "page" : "no elements";
}

std::string fixedPageAppended(Span &span)
{
    PoolPeek pool(40, 2);
    span.begin();
    karPage *const page = pool.appendPage();
    span.end();
    return !page ? "null" : page->canInsertElement() ? "elements" : "no elements";
}

class NewPool final : public karVarPageMemory { // has no virtual destructor
public:
    NewPool() : karVarPageMemory(40, 2) {}
};

std::string variablePoolByNew(Span &span)
{
    span.begin();
    auto *const pool = new NewPool;
    span.end();
    const bool made = pool != nullptr;
    delete pool;
    return made ? "made" : "null";
}

const Operation pools[] = {
    {"FixedPage", fixedPage, "element element null ", {"null null null "}, {}},
    {"FixedPageByNew", fixedPageByNew, "elements", {"null", "no elements"}, {}},
    {"FixedPool", // the page object and its storage; the page before has the index
     fixedPool,
     "element, then an element",
     {"null, then an element", "null, then an element"},
     {},
     Operation::large},
    {"FixedPageAppended", // with an index, which can be done without
     fixedPageAppended,
     "elements",
     {"null", "no elements", "elements"},
     {},
     Operation::large},
    {"VariablePage", variablePage, "run", {"null"}, {}},
    {"VariablePageByNew", variablePageByNew, "run", {"null", "no run"}, {}},
    {"VariablePool",
     variablePool<&karVarPageMemory::newElement>,
     "run, then a run",
     {"null, then a run", "null, then a run"},
     {}},
    {"VariablePoolAtItsEnd",
     variablePool<&karVarPageMemory::appendElement>,
     "run, then a run",
     {"null, then a run", "null, then a run"},
     {}},
    {"Shortened", shortened, "moved", {"in its place", "in its place"}, {}},
    {"VariablePageAppended", pageAppended, "page", {"null", "no elements"}, {}},
    {"VariablePoolByNew", variablePoolByNew, "made", {"null"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Pools, EveryAllocation, ::testing::ValuesIn(pools), nameOf);

// -- Records

std::string recorded(Span &span)
{
    static char place[8];
    karMemory memory;
    span.begin();
    void *p = memory.dxnew(place, 8);
    span.end();
    EXPECT_EQ(p, place);
    EXPECT_TRUE(memory.isValid());
    const std::string text = std::to_string(memory.curr_used_memory()) + " bytes, ";
    memory.dxdelete(&p);
    return text + (p ? "known" : "unknown");
}

std::string opened(Span &span)
{
    const std::string name = ::testing::TempDir() + "everyallocation_memory_test.tmp";
    karMemory memory;
    span.begin();
    std::FILE *const file = memory.xfopen(name.c_str(), "wb");
    span.end();
    if (!file)
        return "null";
    EXPECT_GE(std::fputs("text", file), 0);
    const int result = memory.xfclose(file);
    if (result == 1) // unknown, and still open
        std::fclose(file);
    EXPECT_EQ(memory.xfclose_all(), 1);
    EXPECT_EQ(std::remove(name.c_str()), 0);
    return result == 0 ? "tracked" : "not tracked";
}

std::string fileRecord(Span &span)
{
    span.begin();
    auto *const record = new karFile_EntryZ(nullptr, 4, 3, nullptr);
    span.end();
    const std::string text = record ? std::to_string(record->hsize()) : "null";
    delete record;
    return text;
}

std::string blockRecord(Span &span)
{
    span.begin();
    auto *const record = new karMemory_Entry(nullptr, 4, nullptr);
    span.end();
    const std::string text = record ? std::to_string(record->hsize()) : "null";
    delete record;
    return text;
}

const Operation records[] = {
    // The page object, its storage and the index of pages; a record for which the pool has no room comes from the
    // general allocator and never goes back.
    {"OfABlock",
     recorded,
     "8 bytes, known",
     {"8 bytes, known", "8 bytes, known", "8 bytes, known"},
     {"8 bytes, unknown", "8 bytes, unknown", "8 bytes, known"},
     Operation::record},
    {"OfAFile", opened, "tracked", {"not tracked"}, {}},
    {"FileRecord", fileRecord, "4", {"null"}, {}},
    {"BlockRecord", blockRecord, "4", {"null"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Records, EveryAllocation, ::testing::ValuesIn(records), nameOf);

} // namespace
