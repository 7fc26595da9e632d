// What `isValid` of variable pages and their pools notices: each figure and link in turn is set to what it can't be, and
// set back.
#include "karvarmem.h"

#include "testset.h"

#include <gtest/gtest.h>

namespace {

struct VarPageFields : karVarPage {
    static void *&start(karVarPage &page) { return page.*&VarPageFields::firstPageElement_; }
    static void *&end(karVarPage &page) { return page.*&VarPageFields::lastPageElement_; }
    static int &distance(karVarPage &page) { return page.*&VarPageFields::elementFullSize_; }
    static int &count(karVarPage &page) { return page.*&VarPageFields::elementCount_; }
    static int &used(karVarPage &page) { return page.*&VarPageFields::elementUsed_; }
    static karFreeVarElement *&freeList(karVarPage &page) { return page.*&VarPageFields::firstFreeElement_; }
};

struct VarPoolFields : karVarPageMemory {
    static karVarPage *firstOf(karVarPageMemory &pool) { return pool.*&VarPoolFields::firstPage; }
};

} // namespace

TEST(KarVarPageIsValid, NoticesFiguresThatDisagree)
{
    karVarPage page(nullptr, 16, 8);
    page.newElement(4, 0);
    EXPECT_TRUE(page.isValid());
    {
        const Set<int> less(VarPageFields::used(page), -1);
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<int> more(VarPageFields::used(page), 5); // with four free
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<int> shorter(VarPageFields::count(page), 4); // the free run lies behind
        EXPECT_FALSE(page.isValid());
    }
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPageIsValid, NoticesDamagedFreeRuns)
{
    karVarPage page(nullptr, 16, 8);
    void *low = page.newElement(2, 0);
    page.newElement(2, 0);
    page.deleteElement(low, 2); // free runs of 2 and 4 elements
    karFreeVarElement *const first = page.firstFreeElement();
    karFreeVarElement *const second = first->next();
    ASSERT_TRUE(second);
    EXPECT_TRUE(page.isValid());
    for (const int size : {7, 64 + 1}) {
        second->setSize(size); // no node; beyond the end
        EXPECT_FALSE(page.isValid());
    }
    second->setSize(64);
    first->setSize(64); // touches the second
    EXPECT_FALSE(page.isValid());
    first->setSize(32);
    second->next(first);
    EXPECT_FALSE(page.isValid());
    second->next(nullptr);
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPageIsValid, NoticesFiguresWithoutAStorage)
{
    karVarPage page(nullptr, 16, 0);
    ASSERT_EQ(page.firstPageElement(), nullptr);
    EXPECT_TRUE(page.isValid());
    char place[16];
    karFreeVarElement node(nullptr, 8);
    {
        const Set<void *> end(VarPageFields::end(page), place);
        EXPECT_FALSE(page.isValid());
    }
    {
        const Set<karFreeVarElement *> run(VarPageFields::freeList(page), &node);
        EXPECT_FALSE(page.isValid());
    }
    for (int *const figure : {&VarPageFields::distance(page), &VarPageFields::count(page)}) {
        const Set<int> one(*figure, 1);
        EXPECT_FALSE(page.isValid());
    }
    EXPECT_TRUE(page.isValid());
}

TEST(KarVarPageMemoryIsValid, NoticesADamagedPageOrLink)
{
    karVarPageMemory pool(16, 8);
    pool.newElement(8);
    pool.newElement(8);
    EXPECT_TRUE(pool.isValid());
    karVarPage *const first = VarPoolFields::firstOf(pool);
    karVarPage *const second = first->next();
    ASSERT_TRUE(second);
    second->prev(nullptr);
    EXPECT_FALSE(pool.isValid());
    second->prev(first);
    {
        const Set<int> less(VarPageFields::used(*second), -1);
        EXPECT_FALSE(pool.isValid());
    }
    EXPECT_TRUE(pool.isValid());
}
