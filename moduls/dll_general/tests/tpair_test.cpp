// Pairs: two places, the virtual clone, and an identity that isn't virtual.
#include "tpair.h"

#include "karmemgb.h"
#include "karrect.h"
#include "testslot.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <typeinfo>
#include <type_traits>

using IntPair = tPair<int, int>;
using RealPair = tPair<double, double>;

static_assert(std::is_polymorphic<IntPair>::value && std::is_polymorphic<RealPair>::value, "Clone is virtual");
static_assert(!std::has_virtual_destructor<IntPair>::value && !std::has_virtual_destructor<RealPair>::value,
              "nothing else is");
static_assert(std::is_same<decltype(std::declval<IntPair &>().First()), int &>::value, "a place of its own");
static_assert(std::is_same<decltype(std::declval<const IntPair &>().First()), int>::value, "a value");
static_assert(std::is_same<decltype(std::declval<RealPair &>().Second()), double &>::value, "a place of its own");
static_assert(std::is_same<decltype(std::declval<const RealPair &>().Second()), double>::value, "a value");
static_assert(std::is_same<decltype(std::declval<IntPair &>().IsType(KAR_ID_PAIR)), bool>::value, "bool at the pair");
static_assert(std::is_same<decltype(std::declval<IntPair &>().CanCast(KAR_ID_PAIR)), bool>::value, "bool at the pair");
static_assert(std::is_same<decltype(std::declval<karPoint &>().Clone()), IntPair *>::value, "the pair's own type");
static_assert(std::is_base_of<IntPair, tUniquePair<int>>::value && std::is_base_of<tUniquePair<int>, karPoint>::value &&
                  std::is_base_of<tUniquePair<int>, karDimension>::value,
              "the int family");
static_assert(std::is_base_of<RealPair, tUniquePair<double>>::value &&
                  std::is_base_of<tUniquePair<double>, karD_Point>::value &&
                  std::is_base_of<tUniquePair<double>, karD_Dimension>::value,
              "the double family");

namespace {

/// What a compiler of the target makes of a table pointer followed by two values.
template <class T>
struct Layout {
    void *table;
    T first;
    T second;
};

} // namespace

TEST(TPair, BeginsAtZeroInBothPlaces)
{
    const IntPair ints;
    EXPECT_EQ(ints.First(), 0);
    EXPECT_EQ(ints.Second(), 0);
    const RealPair reals;
    EXPECT_EQ(reals.First(), 0.0);
    EXPECT_EQ(reals.Second(), 0.0);
}

TEST(TPair, StoresEachPlace)
{
    IntPair ints(3, -4);
    EXPECT_EQ(ints.First(), 3);
    EXPECT_EQ(ints.Second(), -4);
    ints.First(7);
    ints.Second() = 8;
    EXPECT_EQ(ints.First(), 7);
    EXPECT_EQ(ints.Second(), 8);
    RealPair reals(0.5, -0.25);
    reals.First() += 1.0;
    reals.Second(9.5);
    EXPECT_EQ(reals.First(), 1.5);
    EXPECT_EQ(reals.Second(), 9.5);
}

TEST(TPair, CopiesMemberByMember)
{
    const IntPair source(3, -4);
    IntPair copy(source);
    EXPECT_EQ(copy.First(), 3);
    EXPECT_EQ(copy.Second(), -4);
    IntPair assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(assigned.First(), 3);
    EXPECT_EQ(assigned.Second(), -4);
    copy.First(1);
    EXPECT_EQ(source.First(), 3);
}

TEST(TPair, AnswersZeroAsItsTypeAndNothingElse)
{
    const IntPair ints;
    EXPECT_EQ(ints.GetType(), 0);
    EXPECT_TRUE(ints.IsType(KAR_ID_PAIR));
    EXPECT_TRUE(ints.CanCast(KAR_ID_PAIR));
    EXPECT_FALSE(ints.IsType(KAR_ID_POINT));
    EXPECT_FALSE(ints.CanCast(KAR_ID_POINT));
    const tUniquePair<double> reals;
    EXPECT_EQ(reals.GetType(), 0);
    EXPECT_TRUE(reals.IsType(KAR_ID_PAIR));
    EXPECT_FALSE(reals.CanCast(KAR_ID_D_POINT));
}

TEST(TPair, AnswersForItselfThroughAReferenceToADerivedClass)
{
    const karPoint point(1, 2);
    const IntPair &pair = point;
    EXPECT_EQ(point.GetType(), 9);
    EXPECT_EQ(pair.GetType(), 0);
    EXPECT_TRUE(pair.IsType(KAR_ID_PAIR));
    EXPECT_FALSE(pair.IsType(KAR_ID_POINT));
    const karD_Dimension size(1.0, 2.0);
    const RealPair &reals = size;
    EXPECT_EQ(size.GetType(), 15);
    EXPECT_EQ(reals.GetType(), 0);
}

TEST(TPair, ClonesToAPlainPairWhateverItIsCalledOn)
{
    const karPoint point(3, -4);
    const karDimension size(5, 6);
    const tUniquePair<int> unique(7, 8);
    for (const IntPair *source : {static_cast<const IntPair *>(&point), static_cast<const IntPair *>(&size),
                                  static_cast<const IntPair *>(&unique)}) {
        IntPair *clone = source->Clone();
        ASSERT_NE(clone, nullptr);
        EXPECT_NE(clone, source);
        EXPECT_TRUE(typeid(*clone) == typeid(IntPair));
        EXPECT_EQ(clone->First(), source->First());
        EXPECT_EQ(clone->Second(), source->Second());
        EXPECT_EQ(clone->GetType(), 0);
        KarDellocMemory(clone);
    }
    const karD_Point real(0.5, -2.25);
    RealPair *clone = real.Clone();
    ASSERT_NE(clone, nullptr);
    EXPECT_TRUE(typeid(*clone) == typeid(RealPair));
    EXPECT_EQ(clone->First(), 0.5);
    EXPECT_EQ(clone->Second(), -2.25);
    KarDellocMemory(clone);
}

TEST(TPair, GivesNullWhereTheAllocatorHasNoMemory)
{
    const karPoint point(3, -4);
    const karD_Point real(0.5, 0.25);
    const long heapBlocks = globalMemList->getCurAnzNew();
    globalMemList->setCurAnzNew(64001); // above this count the allocator gives nothing
    EXPECT_EQ(point.Clone(), nullptr);
    EXPECT_EQ(real.Clone(), nullptr);
    globalMemList->setCurAnzNew(static_cast<int>(heapBlocks));
}

TEST(TPair, ClonesByOneBlockOfTheAllocator)
{
    const karPoint point(3, -4);
    IntPair *first = point.Clone(); // keeps the page of its size class, whose own blocks count as well
    const long before = globalMemList->getAnzNew();
    IntPair *clone = point.Clone();
    EXPECT_EQ(globalMemList->getAnzNew(), before + 1);
    KarDellocMemory(clone);
    KarDellocMemory(first);
}

TEST(TPair, DispatchesCloneToAClassOfTheHost)
{
    class HostPoint : public karPoint {
    public:
        using karPoint::karPoint;
        IntPair *Clone() const override { return nullptr; }
    };
    const HostPoint point(1, 2);
    const IntPair &pair = point;
    EXPECT_EQ(pair.Clone(), nullptr);
}

TEST(TUniquePair, NamesFirstXAndSecondY)
{
    tUniquePair<int> pair(3, -4);
    EXPECT_EQ(pair.x(), 3);
    EXPECT_EQ(pair.y(), -4);
    EXPECT_EQ(&pair.x(), &pair.First());
    EXPECT_EQ(&pair.y(), &pair.Second());
    pair.x(10);
    pair.y() = 11;
    EXPECT_EQ(pair.First(), 10);
    EXPECT_EQ(pair.Second(), 11);
    const tUniquePair<int> copy(pair);
    EXPECT_EQ(copy.x(), 10);
    EXPECT_EQ(copy.y(), 11);
    const tUniquePair<double> nothing;
    EXPECT_EQ(nothing.x(), 0.0);
    EXPECT_EQ(nothing.y(), 0.0);
}

TEST(TUniquePair, TakesEqualValues)
{
    const tUniquePair<int> pair(5, 5);
    EXPECT_EQ(pair.x(), pair.y());
}

TEST(TPair, LiesAsATablePointerAndTwoValues)
{
    IntPair ints;
    EXPECT_EQ(offsetIn(ints, ints.First()), sizeof(void *) == 8 ? 8 : 4);
    EXPECT_EQ(offsetIn(ints, ints.Second()), sizeof(void *) == 8 ? 12 : 8);
    EXPECT_EQ(sizeof(IntPair), sizeof(void *) == 8 ? 16u : 12u);

    // A double inside a structure is aligned to 4 bytes by 32-bit Linux, to 8 everywhere else.
    RealPair reals;
    const int table = offsetof(Layout<double>, first) == 4 ? 4 : 8;
    EXPECT_EQ(offsetIn(reals, reals.First()), table);
    EXPECT_EQ(offsetIn(reals, reals.Second()), table + 8);
    EXPECT_EQ(sizeof(RealPair), static_cast<std::size_t>(table + 16));
}

TEST(TPair, GainsNoDataInADerivedClass)
{
    EXPECT_EQ(sizeof(tUniquePair<int>), sizeof(IntPair));
    EXPECT_EQ(sizeof(karPoint), sizeof(IntPair));
    EXPECT_EQ(sizeof(karDimension), sizeof(IntPair));
    EXPECT_EQ(sizeof(tUniquePair<double>), sizeof(RealPair));
    EXPECT_EQ(sizeof(karD_Point), sizeof(RealPair));
    EXPECT_EQ(sizeof(karD_Dimension), sizeof(RealPair));
    EXPECT_EQ(sizeof(karRect), 2 * sizeof(karPoint));
    EXPECT_EQ(sizeof(karD_Rect), 2 * sizeof(karD_Point));
}

TEST(TPair, LivesInTheLibrarysAllocator)
{
    // `new` of any of them is `KarAllocMemory`, so `KarDellocMemory` frees it.
    karPoint *point = new karPoint(1, 2);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->y(), 2);
    KarDellocMemory(point);
    // The placement form with an address builds there.
    alignas(karD_Point) char room[sizeof(karD_Point)];
    karD_Point *placed = new (static_cast<void *>(room)) karD_Point(1.5, 2.5);
    EXPECT_EQ(static_cast<void *>(placed), static_cast<void *>(room));
    EXPECT_EQ(placed->x(), 1.5);
}
