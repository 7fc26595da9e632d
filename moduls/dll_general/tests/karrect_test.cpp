// Boxes: two conventions, two meanings of null and of intersection, and the stores that keep a box ordered.
#include "karrect.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

using Box = std::array<int, 4>;        // left, top, right, bottom
using RealBox = std::array<double, 4>; // left, bottom, right, top

Box box(const karRect &r) { return {r.left(), r.top(), r.right(), r.bottom()}; }
RealBox box(const karD_Rect &r) { return {r.left(), r.bottom(), r.right(), r.top()}; }

/// A box with the four values as they are.
karRect plain(int left, int top, int right, int bottom)
{
    karRect r;
    r.left(left);
    r.top(top);
    r.right(right);
    r.bottom(bottom);
    return r;
}

karD_Rect plainReal(double left, double bottom, double right, double top)
{
    karD_Rect r;
    r.leftRight(left, right);
    r.topBottom(top, bottom);
    return r;
}

template <class T>
T valueAt(const void *object, std::size_t offset)
{
    T value;
    std::memcpy(&value, static_cast<const char *>(object) + offset, sizeof value);
    return value;
}

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

static_assert(!std::is_polymorphic<karRect>::value && !std::is_polymorphic<karD_Rect>::value, "nothing virtual");
static_assert(std::is_same<decltype(karRect() == karRect()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karD_Rect() != karRect()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karRect().isNull()), bool>::value, "a truth value");
static_assert(std::is_same<decltype(karRect().IsType(KAR_ID_RECT)), int>::value, "int");
static_assert(std::is_same<decltype(std::declval<karD_Rect &>().topRight()), karD_Point &>::value, "the stored corner");
static_assert(std::is_same<decltype(std::declval<karD_Rect &>().bottomLeft()), karD_Point &>::value,
              "the stored corner");
static_assert(std::is_same<decltype(std::declval<karD_Rect &>().topLeft()), karD_Point>::value, "a composed corner");
static_assert(std::is_same<decltype(std::declval<karD_Rect &>().bottomRight()), karD_Point>::value,
              "a composed corner");
static_assert(std::is_same<decltype(std::declval<const karD_Rect &>().topRight()), karD_Point>::value, "a new point");

// karRect

TEST(KarRect, BeginsAllZero) { EXPECT_EQ(box(karRect()), (Box{0, 0, 0, 0})); }

TEST(KarRect, OrdersFourNumbersAndTwoPoints)
{
    EXPECT_EQ(box(karRect(5, 7, 1, 2)), (Box{1, 2, 5, 7}));
    EXPECT_EQ(box(karRect(1, 7, 5, 2)), (Box{1, 2, 5, 7}));
    EXPECT_EQ(box(karRect(karPoint(5, 2), karPoint(1, 7))), (Box{1, 2, 5, 7}));
    karRect r;
    r.init(5, -7, -1, 2);
    EXPECT_EQ(box(r), (Box{-1, -7, 5, 2}));
}

TEST(KarRect, StaysInvertedFromANegativeDimension)
{
    EXPECT_EQ(box(karRect(karPoint(5, 5), karDimension(-2, -3))), (Box{5, 5, 3, 2}));
    EXPECT_EQ(box(karRect(karPoint(5, 5), karDimension(2, 3))), (Box{5, 5, 7, 8}));
    EXPECT_EQ(box(karRect(karPoint(INT_MAX, 0), karDimension(1, 0))), (Box{INT_MAX, 0, INT_MIN, 0}));
}

TEST(KarRect, CopiesMemberByMember)
{
    const karRect source = plain(9, 8, 7, 6);
    karRect copy(source);
    EXPECT_EQ(box(copy), (Box{9, 8, 7, 6}));
    karRect assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(box(assigned), (Box{9, 8, 7, 6}));
}

TEST(KarRect, AnswersItsOwnIdOnly)
{
    const karRect r;
    EXPECT_EQ(r.GetType(), 10);
    EXPECT_EQ(r.IsType(KAR_ID_RECT), 1);
    EXPECT_EQ(r.CanCast(KAR_ID_RECT), 1);
    EXPECT_EQ(r.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(r.CanCast(KAR_ID_D_RECT), 0);
}

TEST(KarRect, KeepsTheTopLeftCornerInFront)
{
    const karRect r = plain(1, 2, 3, 4);
    const std::size_t first = sizeof(void *);
    EXPECT_EQ(valueAt<int>(&r, first), 1);
    EXPECT_EQ(valueAt<int>(&r, first + 4), 2);
    EXPECT_EQ(valueAt<int>(&r, sizeof(karPoint) + first), 3);
    EXPECT_EQ(valueAt<int>(&r, sizeof(karPoint) + first + 4), 4);
    EXPECT_EQ(sizeof(karRect), sizeof(void *) == 8 ? 32u : 24u);
}

TEST(KarRect, StoresPlacesAndCornersPlainly)
{
    karRect r(0, 0, 10, 10);
    r.left(50);
    r.top(60);
    EXPECT_EQ(box(r), (Box{50, 60, 10, 10}));
    r.right(-5);
    r.bottom(-6);
    EXPECT_EQ(box(r), (Box{50, 60, -5, -6}));
    r.topLeft(karPoint(1, 2));
    EXPECT_EQ(box(r), (Box{1, 2, -5, -6}));
    r.topRight(karPoint(3, 4));
    EXPECT_EQ(box(r), (Box{1, 4, 3, -6}));
    r.bottomLeft(karPoint(5, 6));
    EXPECT_EQ(box(r), (Box{5, 4, 3, 6}));
    r.bottomRight(karPoint(7, 8));
    EXPECT_EQ(box(r), (Box{5, 4, 7, 8}));
    EXPECT_EQ(r.topLeft(), karPoint(5, 4));
    EXPECT_EQ(r.topRight(), karPoint(7, 4));
    EXPECT_EQ(r.bottomLeft(), karPoint(5, 8));
    EXPECT_EQ(r.bottomRight(), karPoint(7, 8));
    EXPECT_EQ(&r.makeNull(), &r);
    EXPECT_EQ(box(r), (Box{0, 0, 0, 0}));
}

TEST(KarRect, MeasuresWithoutAPlusOne)
{
    const karRect r(0, 0, 10, 20);
    EXPECT_EQ(r.width(), 10);
    EXPECT_EQ(r.height(), 20);
    EXPECT_EQ(karRect(r).size(), karDimension(10, 20));
    EXPECT_EQ(plain(10, 5, 0, 1).width(), -10);
    EXPECT_EQ(plain(10, 5, 0, 1).height(), -4);
    EXPECT_EQ(plain(INT_MIN, 0, INT_MAX, 0).width(), -1);
}

TEST(KarRect, TruncatesItsCentreAndWrapsTheSum)
{
    EXPECT_EQ(karRect(0, 0, 5, 7).centre(), karPoint(2, 3));
    EXPECT_EQ(karRect(-5, -7, 0, 0).centre(), karPoint(-2, -3));
    // 2147483647 + 1 wraps to -2147483648.
    EXPECT_EQ(plain(INT_MAX, 0, 1, 0).centre(), karPoint(-1073741824, 0));
}

TEST(KarRect, IsNullInFourRows)
{
    EXPECT_TRUE(karRect().isNull());
    EXPECT_TRUE(plain(1, 1, 1, 1).isNull());
    EXPECT_FALSE(plain(5, 5, 5, 5).isNull());
    EXPECT_TRUE(plain(2, 5, 0, 1).isNull());
    // left == top: (right 1, bottom 1) or (right anything else, bottom 0).
    EXPECT_TRUE(plain(7, 7, 1, 1).isNull());
    EXPECT_FALSE(plain(7, 7, 1, 0).isNull());
    EXPECT_TRUE(plain(7, 7, 0, 0).isNull());
    EXPECT_TRUE(plain(7, 7, 99, 0).isNull());
    EXPECT_FALSE(plain(7, 7, 99, 1).isNull());
    // left != top: (right 0, bottom 1) or (right anything else, bottom 0).
    EXPECT_TRUE(plain(7, 8, 0, 1).isNull());
    EXPECT_FALSE(plain(7, 8, 0, 0).isNull());
    EXPECT_TRUE(plain(7, 8, 1, 0).isNull());
    EXPECT_TRUE(plain(7, 8, -3, 0).isNull());
    EXPECT_FALSE(plain(7, 8, 1, 1).isNull());
    EXPECT_FALSE(plain(0, 0, 0, -1).isNull());
}

TEST(KarRect, IsNullByItsTableForEverySmallBox)
{
    for (int left = -2; left <= 3; ++left)
        for (int top = -2; top <= 3; ++top)
            for (int right = -2; right <= 3; ++right)
                for (int bottom = -2; bottom <= 3; ++bottom) {
                    const bool row1 = left == top && right == 1 && bottom == 1;
                    const bool row2 = left == top && right != 1 && bottom == 0;
                    const bool row3 = left != top && right == 0 && bottom == 1;
                    const bool row4 = left != top && right != 0 && bottom == 0;
                    ASSERT_EQ(plain(left, top, right, bottom).isNull(), row1 || row2 || row3 || row4)
                        << left << ' ' << top << ' ' << right << ' ' << bottom;
                }
}

TEST(KarRect, GrowsByAUnionNullBoxesIncluded)
{
    karRect r(5, 5, 8, 9);
    r.unionrect(karRect(7, 2, 20, 6));
    EXPECT_EQ(box(r), (Box{5, 2, 20, 9}));
    r.unionrect(karRect());
    EXPECT_EQ(box(r), (Box{0, 0, 20, 9}));
    r.unionrect(r);
    EXPECT_EQ(box(r), (Box{0, 0, 20, 9}));
}

TEST(KarRect, ShiftsBothCorners)
{
    karRect r(0, 0, 10, 20);
    r += karPoint(1, 2);
    EXPECT_EQ(box(r), (Box{1, 2, 11, 22}));
    r -= karPoint(5, 5);
    EXPECT_EQ(box(r), (Box{-4, -3, 6, 17}));
    r.MoveElement(4, 3);
    EXPECT_EQ(box(r), (Box{0, 0, 10, 20}));
    r -= karPoint(INT_MIN, 0); // wraps: 0 - INT_MIN is INT_MIN
    EXPECT_EQ(box(r), (Box{INT_MIN, 0, INT_MIN + 10, 20}));
}

TEST(KarRect, IsEqualInAllFourValues)
{
    const karRect r(1, 2, 3, 4);
    EXPECT_EQ(r == karRect(1, 2, 3, 4), 1);
    EXPECT_EQ(r != karRect(1, 2, 3, 4), 0);
    for (const karRect &o : {karRect(0, 2, 3, 4), karRect(1, 0, 3, 4), karRect(1, 2, 9, 4), karRect(1, 2, 3, 9)}) {
        EXPECT_EQ(r == o, 0);
        EXPECT_EQ(r != o, 1);
    }
}

TEST(KarRect, ContainsItsEdges)
{
    const karRect r(0, 0, 10, 10);
    EXPECT_TRUE(r.contains(karPoint(0, 0)));
    EXPECT_TRUE(r.contains(karPoint(10, 10)));
    EXPECT_TRUE(r.contains(karPoint(0, 10)));
    EXPECT_FALSE(r.contains(karPoint(-1, 5)));
    EXPECT_FALSE(r.contains(karPoint(11, 5)));
    EXPECT_FALSE(r.contains(karPoint(5, -1)));
    EXPECT_FALSE(r.contains(karPoint(5, 11)));
    EXPECT_TRUE(r.contains(karRect(0, 0, 10, 10)));
    EXPECT_TRUE(r.contains(karRect(3, 3, 4, 4)));
    EXPECT_FALSE(r.contains(karRect(3, 3, 11, 4)));
    EXPECT_FALSE(r.contains(karRect(-1, 3, 4, 4)));
    EXPECT_TRUE(r.contains(plain(8, 8, 2, 2))); // the operand needs no order
    EXPECT_FALSE(plain(10, 10, 0, 0).contains(karPoint(5, 5)));
}

TEST(KarRect, IntersectsWhereItTouches)
{
    const karRect r(0, 0, 4, 4);
    EXPECT_TRUE(r.intersects(karRect(4, 4, 9, 9)));
    EXPECT_FALSE(r.intersects(karRect(5, 5, 9, 9)));
    EXPECT_FALSE(r.intersects(karRect(0, 5, 4, 9)));
    EXPECT_FALSE(r.intersects(karRect(5, 0, 9, 4)));
    EXPECT_TRUE(r.intersects(karRect(-5, 1, 9, 2))); // crossing like a plus sign
    EXPECT_TRUE(karRect(1, 1, 2, 2).intersects(r));  // inside the operand
    EXPECT_FALSE(r.intersects(plain(3, 3, 1, 1)));   // an inverted box has no inside
}

TEST(KarRect, TakesOnTheIntersectionOrNothing)
{
    karRect r(0, 0, 4, 4);
    EXPECT_FALSE(r.setintersects(karRect(5, 5, 9, 9)));
    EXPECT_EQ(box(r), (Box{0, 0, 0, 0}));
    r = karRect(0, 0, 4, 4);
    EXPECT_TRUE(r.setintersects(karRect(4, 4, 9, 9)));
    EXPECT_EQ(box(r), (Box{4, 4, 4, 4}));
    r = karRect(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(karRect(-5, 4, 15, 6)));
    EXPECT_EQ(box(r), (Box{0, 4, 10, 6}));
    EXPECT_TRUE(r.setintersects(r));
    EXPECT_EQ(box(r), (Box{0, 4, 10, 6}));
}

TEST(KarRect, TurnsItsTwoCornersAndNothingElse)
{
    karRect r(0, 0, 10, 20);
    r.RotateElement(0.0, 1.0); // a quarter turn: (10, 20) becomes (-20, 10)
    EXPECT_EQ(box(r), (Box{0, 0, -20, 10}));
    r = karRect(7, 9, 10, 5 + 9);
    r.RotateElement(0.6, 0.8); // (7, 9) to (4 - 7, 5 + 5), (10, 14) to (6 - 11, 8 + 8)
    EXPECT_EQ(box(r), (Box{-3, 10, -5, 16}));
    r = karRect(100, 100, 110, 105);
    r.RotateElement(0.6, 0.8, 100, 100);
    EXPECT_EQ(box(r), (Box{100, 100, 102, 111}));
    r = karRect(0, 0, 10, 20);
    r.RotateElement(1.5707963267948966);
    EXPECT_EQ(box(r), (Box{0, 0, -20, 10}));
    EXPECT_GT(r.left(), r.right());
    r = karRect(100, 100, 110, 100);
    r.RotateElement(3.141592653589793, 100, 100);
    EXPECT_EQ(box(r), (Box{100, 100, 90, 100}));
}

TEST(KarPoint, IsFullInABoxUpToItsEdges)
{
    karRect r(0, 0, 10, 20);
    EXPECT_TRUE(karPoint(0, 0).isFullIn(r));
    EXPECT_TRUE(karPoint(10, 20).isFullIn(r));
    EXPECT_FALSE(karPoint(11, 20).isFullIn(r));
    EXPECT_FALSE(karPoint(10, 21).isFullIn(r));
    EXPECT_FALSE(karPoint(-1, 5).isFullIn(r));
    EXPECT_FALSE(karPoint(5, -1).isFullIn(r));
    karRect inverted = plain(10, 20, 0, 0);
    EXPECT_FALSE(karPoint(5, 5).isFullIn(inverted));
    EXPECT_EQ(box(inverted), (Box{10, 20, 0, 0})); // stays as it was
}

// karD_Rect

TEST(KarD_Rect, BeginsAllZero) { EXPECT_EQ(box(karD_Rect()), (RealBox{0, 0, 0, 0})); }

TEST(KarD_Rect, OrdersFourNumbersAndTwoPoints)
{
    const RealBox expected{1, 2, 5, 7};
    EXPECT_EQ(box(karD_Rect(5, 7, 1, 2)), expected);
    EXPECT_EQ(box(karD_Rect(1, 7, 5, 2)), expected);
    EXPECT_EQ(box(karD_Rect(karD_Point(5, 2), karD_Point(1, 7))), expected);
    karD_Rect r;
    r.init(5, 7, 1, 2);
    EXPECT_EQ(box(r), expected);
    r.makeNull();
    r.SetRect(5, 2, 1, 7);
    EXPECT_EQ(box(r), expected);
    EXPECT_EQ(karD_Rect(5, 7, 1, 2).bottom(), 2.0);
    EXPECT_EQ(karD_Rect(5, 7, 1, 2).top(), 7.0);
}

TEST(KarD_Rect, IsOrderedFromANegativeDimension)
{
    EXPECT_EQ(box(karD_Rect(karD_Point(5, 5), karD_Dimension(-2, -3))), (RealBox{3, 2, 5, 5}));
    EXPECT_EQ(box(karD_Rect(karD_Point(5, 5), karD_Dimension(2, -3))), (RealBox{5, 2, 7, 5}));
}

TEST(KarD_Rect, CopiesMemberByMember)
{
    const karD_Rect source = plainReal(9, 8, 7, 6);
    const karD_Rect copy(source);
    EXPECT_EQ(box(copy), (RealBox{9, 8, 7, 6}));
    karD_Rect assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(box(assigned), (RealBox{9, 8, 7, 6}));
}

TEST(KarD_Rect, AnswersItsOwnIdOnly)
{
    const karD_Rect r;
    EXPECT_EQ(r.GetType(), 14);
    EXPECT_EQ(r.IsType(KAR_ID_D_RECT), 1);
    EXPECT_EQ(r.CanCast(KAR_ID_D_RECT), 1);
    EXPECT_EQ(r.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(r.CanCast(KAR_ID_RECT), 0);
}

TEST(KarD_Rect, KeepsTheBottomLeftCornerInFront)
{
    const karD_Rect r = plainReal(1, 2, 3, 4);
    const std::size_t first = sizeof(karD_Point) - 2 * sizeof(double);
    EXPECT_EQ(valueAt<double>(&r, first), 1.0);
    EXPECT_EQ(valueAt<double>(&r, first + 8), 2.0);
    EXPECT_EQ(valueAt<double>(&r, sizeof(karD_Point) + first), 3.0);
    EXPECT_EQ(valueAt<double>(&r, sizeof(karD_Point) + first + 8), 4.0);
}

TEST(KarD_Rect, TakesAGridBoxNameByName)
{
    const karRect grid(0, 0, 10, 20);
    const karD_Rect r(grid);
    EXPECT_EQ(r.bottom(), 20.0);
    EXPECT_EQ(r.top(), 0.0);
    EXPECT_EQ(r.left(), 0.0);
    EXPECT_EQ(r.right(), 10.0);
    EXPECT_EQ(r.height(), -20.0);
    karD_Rect assigned(5, 5, 6, 6);
    EXPECT_EQ(&(assigned = grid), &assigned);
    EXPECT_EQ(box(assigned), (RealBox{0, 20, 10, 0}));
}

TEST(KarD_Rect, ComparesExactlyAndNameByName)
{
    const karD_Rect r(1, 2, 3, 4);
    EXPECT_EQ(r == karD_Rect(1, 2, 3, 4), 1);
    EXPECT_EQ(r != karD_Rect(1, 2, 3, 4), 0);
    for (const karD_Rect &o : {karD_Rect(1 - 1e-15, 2, 3, 4), karD_Rect(1, 2 - 1e-15, 3, 4),
                               karD_Rect(1, 2, 3 + 1e-15, 4), karD_Rect(1, 2, 3, 4 + 1e-15)}) {
        EXPECT_EQ(r == o, 0);
        EXPECT_EQ(r != o, 1);
    }
    EXPECT_EQ(plainReal(1, 4, 3, 2) == karRect(1, 2, 3, 4), 1);
    EXPECT_EQ(plainReal(1, 4, 3, 2) != karRect(1, 2, 3, 4), 0);
    EXPECT_EQ(r == karRect(1, 2, 3, 4), 0);
    EXPECT_EQ(r != karRect(1, 2, 3, 4), 1);
}

TEST(KarD_Rect, PushesTheOppositePlaceInAnOrderedStore)
{
    const karD_Rect start(0, 0, 10, 20);
    karD_Rect r(start);
    r.left(5); // stays left of right
    EXPECT_EQ(box(r), (RealBox{5, 0, 10, 20}));
    r.left(15); // crosses: the old right becomes left
    EXPECT_EQ(box(r), (RealBox{10, 0, 15, 20}));
    r = start;
    r.right(5);
    EXPECT_EQ(box(r), (RealBox{0, 0, 5, 20}));
    r.right(-5);
    EXPECT_EQ(box(r), (RealBox{-5, 0, 0, 20}));
    r = start;
    r.bottom(5);
    EXPECT_EQ(box(r), (RealBox{0, 5, 10, 20}));
    r.bottom(25);
    EXPECT_EQ(box(r), (RealBox{0, 20, 10, 25}));
    r = start;
    r.top(5);
    EXPECT_EQ(box(r), (RealBox{0, 0, 10, 5}));
    r.top(-5);
    EXPECT_EQ(box(r), (RealBox{0, -5, 10, 0}));
}

TEST(KarD_Rect, CountsAnEqualValueAsCrossing)
{
    karD_Rect r(0, 0, 10, 20);
    r.left(10);
    EXPECT_EQ(box(r), (RealBox{10, 0, 10, 20}));
    r = karD_Rect(0, 0, 10, 20);
    r.right(0);
    EXPECT_EQ(box(r), (RealBox{0, 0, 0, 20}));
    r = karD_Rect(0, 0, 10, 20);
    r.bottom(20);
    EXPECT_EQ(box(r), (RealBox{0, 20, 10, 20}));
    r = karD_Rect(0, 0, 10, 20);
    r.top(0);
    EXPECT_EQ(box(r), (RealBox{0, 0, 10, 0}));
    // Zeros of either sign are equal; the new one ends up at the opposite place.
    r = plainReal(-5, -5, -0.0, -0.0);
    r.left(0.0);
    r.bottom(0.0);
    EXPECT_TRUE(std::signbit(r.left()) && std::signbit(r.bottom()));
    EXPECT_FALSE(std::signbit(r.right()) || std::signbit(r.top()));
    r = plainReal(-0.0, -0.0, 5, 5);
    r.right(0.0);
    r.top(0.0);
    EXPECT_FALSE(std::signbit(r.left()) || std::signbit(r.bottom()));
    EXPECT_TRUE(std::signbit(r.right()) && std::signbit(r.top()));
    // On an inverted box: 5 is right of the 0, so left takes the old right.
    r = plainReal(10, 0, 0, 20);
    r.left(5);
    EXPECT_EQ(box(r), (RealBox{0, 0, 5, 20}));
    // Not a number is never strictly on its side.
    r = karD_Rect(0, 0, 10, 20);
    r.left(notANumber);
    EXPECT_EQ(r.left(), 10.0);
    EXPECT_TRUE(r.right() != r.right());
}

TEST(KarD_Rect, StoresCornersInOrderXThenY)
{
    const karD_Rect start(0, 0, 10, 20);
    karD_Rect r(start);
    r.topLeft(karD_Point(12, -3)); // left 12 pushes right, top -3 pushes bottom
    EXPECT_EQ(box(r), (RealBox{10, -3, 12, 0}));
    r = start;
    r.topRight(karD_Point(-1, 5));
    EXPECT_EQ(box(r), (RealBox{-1, 0, 0, 5}));
    r = start;
    r.bottomLeft(karD_Point(5, 25));
    EXPECT_EQ(box(r), (RealBox{5, 20, 10, 25}));
    r = start;
    r.bottomRight(karD_Point(8, 3));
    EXPECT_EQ(box(r), (RealBox{0, 3, 8, 20}));
    r = start;
    r.topLeft(karPoint(12, -3));
    EXPECT_EQ(box(r), (RealBox{10, -3, 12, 0}));
    r = start;
    r.topRight(karPoint(-1, 5));
    EXPECT_EQ(box(r), (RealBox{-1, 0, 0, 5}));
    r = start;
    r.bottomLeft(karPoint(5, 25));
    EXPECT_EQ(box(r), (RealBox{5, 20, 10, 25}));
    r = start;
    r.bottomRight(karPoint(8, 3));
    EXPECT_EQ(box(r), (RealBox{0, 3, 8, 20}));
}

TEST(KarD_Rect, StoresPlainlyWhereItIsAskedTo)
{
    karD_Rect r(0, 0, 10, 20);
    r.set_left(50);
    r.set_right(-50);
    r.set_top(-60);
    r.set_bottom(60);
    EXPECT_EQ(box(r), (RealBox{50, 60, -50, -60}));
    r.add_left(1);
    r.add_right(2);
    r.add_top(3);
    r.add_bottom(4);
    EXPECT_EQ(box(r), (RealBox{51, 64, -48, -57}));
    r.topBottom(1, 2);
    r.leftRight(4, 3);
    EXPECT_EQ(box(r), (RealBox{4, 2, 3, 1}));
    r.topRight() = karD_Point(7, 8);
    r.bottomLeft().y() = -1;
    EXPECT_EQ(box(r), (RealBox{4, -1, 7, 8}));
    EXPECT_EQ(&r.makeNull(), &r);
    EXPECT_EQ(box(r), (RealBox{0, 0, 0, 0}));
}

TEST(KarD_Rect, ReadsItsCornersCentreAndSize)
{
    const karD_Rect r(1, 2, 4, 8);
    EXPECT_EQ(r.topLeft(), karD_Point(1, 8));
    EXPECT_EQ(r.topRight(), karD_Point(4, 8));
    EXPECT_EQ(r.bottomLeft(), karD_Point(1, 2));
    EXPECT_EQ(r.bottomRight(), karD_Point(4, 2));
    EXPECT_EQ(r.centre(), karD_Point(2.5, 5));
    EXPECT_EQ(r.width(), 3.0);
    EXPECT_EQ(r.height(), 6.0);
    EXPECT_EQ(r.size(), karD_Dimension(3, 6));
    // The sum comes first and is beyond the range; the two halves would not be.
    EXPECT_EQ(karD_Rect(1e308, 0, 1.5e308, 0).centre().x(), std::numeric_limits<double>::infinity());
}

TEST(KarD_Rect, IsNullWithoutExtent)
{
    EXPECT_TRUE(karD_Rect().isNull());
    EXPECT_TRUE(karD_Rect(5, 6, 5, 6).isNull());
    EXPECT_FALSE(karD_Rect(5, 6, 5, 7).isNull());
    EXPECT_FALSE(karD_Rect(5, 6, 8, 6).isNull());
    EXPECT_FALSE(karD_Rect(5, 6, 5 + 1e-15, 6).isNull());
    EXPECT_FALSE(plainReal(2, 1, 0, 5).isNull()); // as numbers null in a grid box
}

TEST(KarD_Rect, GrowsByAUnion)
{
    karD_Rect r(5, 5, 8, 9);
    r.unionrect(karD_Rect(7, 2, 20.5, 6));
    EXPECT_EQ(box(r), (RealBox{5, 2, 20.5, 9}));
    // By name: bottom is the lesser of 2 and 30, top the greater of 9 and 25.
    r.unionrect(karRect(6, 25, 40, 30));
    EXPECT_EQ(box(r), (RealBox{5, 2, 40, 25}));
    r.unionrect(karD_Rect());
    EXPECT_EQ(box(r), (RealBox{0, 0, 40, 25}));
}

TEST(KarD_Rect, ShiftsBothCorners)
{
    karD_Rect r(0, 0, 10, 20);
    r += karD_Point(1, 2.5);
    EXPECT_EQ(box(r), (RealBox{1, 2.5, 11, 22.5}));
    r -= karD_Point(1, 0.5);
    EXPECT_EQ(box(r), (RealBox{0, 2, 10, 22}));
    r += karPoint(1, -2);
    EXPECT_EQ(box(r), (RealBox{1, 0, 11, 20}));
    r -= karPoint(1, -2);
    EXPECT_EQ(box(r), (RealBox{0, 2, 10, 22}));
}

TEST(KarD_Rect, ContainsItsEdges)
{
    const karD_Rect r(0, 0, 10, 10);
    EXPECT_TRUE(r.contains(karD_Point(0, 0)));
    EXPECT_TRUE(r.contains(karD_Point(10, 10)));
    EXPECT_FALSE(r.contains(karD_Point(10 + 1e-14, 5)));
    EXPECT_FALSE(r.contains(karD_Point(5, -1e-300)));
    EXPECT_TRUE(r.contains(karPoint(10, 0)));
    EXPECT_FALSE(r.contains(karPoint(10, 11)));
    EXPECT_TRUE(r.contains(karD_Rect(0, 0, 10, 10)));
    EXPECT_FALSE(r.contains(karD_Rect(5, 5, 10, 11)));
    EXPECT_FALSE(r.contains(karD_Rect(-1, 5, 10, 10)));
    EXPECT_TRUE(r.contains(karRect(1, 1, 10, 10)));
    EXPECT_FALSE(r.contains(karRect(1, 1, 10, 11)));
    EXPECT_FALSE(r.contains(karRect(1, -1, 10, 10)));
    EXPECT_FALSE(plainReal(10, 10, 0, 0).contains(karD_Point(5, 5)));
    EXPECT_FALSE(karD_Rect(karRect(0, 0, 10, 10)).contains(karD_Point(5, 5))); // bottom above top
}

TEST(KarD_Rect, IntersectsByTwoCornersOfTheOperandOnly)
{
    const karD_Rect r(0, 0, 10, 10);
    EXPECT_FALSE(r.intersects(karD_Rect(-5, 4, 15, 6)));   // crosses like a plus sign
    EXPECT_FALSE(r.intersects(karD_Rect(-5, -5, 15, 15))); // lies around
    EXPECT_TRUE(r.intersects(karD_Rect(5, 5, 20, 20)));    // bottom left inside
    EXPECT_TRUE(r.intersects(karD_Rect(-5, -5, 5, 5)));    // top right inside
    EXPECT_FALSE(r.intersects(karD_Rect(5, -5, 20, 5)));   // top left inside, which isn't tried
    EXPECT_FALSE(r.intersects(karD_Rect(-5, 5, 5, 20)));   // bottom right inside, which isn't tried
    EXPECT_TRUE(r.intersects(karD_Rect(10, 10, 20, 20)));  // touches
    // By name the tried corners of a grid box are (left, bottom) and (right, top).
    EXPECT_TRUE(r.intersects(karRect(5, -5, 20, 5)));
    EXPECT_TRUE(r.intersects(karRect(-5, 5, 5, 20)));
    EXPECT_FALSE(r.intersects(karRect(5, 5, 20, 20)));
    EXPECT_FALSE(r.intersects(karRect(-5, -5, 5, 5)));
}

TEST(KarD_Rect, TakesOnTheOperandWhereItIntersects)
{
    karD_Rect r(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(karD_Rect(5, 5, 20, 20)));
    EXPECT_EQ(box(r), (RealBox{5, 5, 20, 20}));
    EXPECT_FALSE(r.setintersects(karD_Rect(-5, 6, 25, 7)));
    EXPECT_EQ(box(r), (RealBox{0, 0, 0, 0}));
    r = karD_Rect(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(karD_Rect(10, 10, 20, 30)));
    EXPECT_EQ(box(r), (RealBox{10, 10, 20, 30}));
    EXPECT_TRUE(r.setintersects(r));
    EXPECT_EQ(box(r), (RealBox{10, 10, 20, 30}));
}

TEST(KarD_Rect, LeavesAnUnorderedOperandAsTheOrderedStoresDo)
{
    // left 8 stays; bottom 7 stays; right 2 crosses 8; top 3 crosses 7.
    karD_Rect r(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(plainReal(8, 7, 2, 3)));
    EXPECT_EQ(box(r), (RealBox{2, 3, 8, 7}));
    // left 20 crosses 10 and pushes right to 20; right 5 then crosses 10: the 20 is gone. The same with y.
    r = karD_Rect(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(plainReal(20, 20, 5, 5)));
    EXPECT_EQ(box(r), (RealBox{5, 5, 10, 10}));
    // A normalised grid box arrives with its bottom above its top.
    r = karD_Rect(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(karRect(0, 0, 4, 6)));
    EXPECT_EQ(box(r), (RealBox{0, 0, 4, 6}));
    r = karD_Rect(0, 0, 10, 10);
    EXPECT_TRUE(r.setintersects(karRect(1, 2, 4, 20)));
    EXPECT_EQ(box(r), (RealBox{1, 2, 4, 10}));
    EXPECT_FALSE(r.setintersects(karRect(50, 50, 60, 60)));
    EXPECT_EQ(box(r), (RealBox{0, 0, 0, 0}));
}

TEST(KarD_Rect, OverlapsTrulyAndNormalisesBothForGood)
{
    karD_Rect r(0, 0, 10, 10);
    karD_Rect plus(-5, 4, 15, 6);
    EXPECT_TRUE(r.overlapped(plus));
    EXPECT_TRUE(plus.overlapped(r));
    karD_Rect around(-5, -5, 15, 15);
    EXPECT_TRUE(r.overlapped(around));
    karD_Rect touching(10, 10, 20, 20);
    EXPECT_TRUE(r.overlapped(touching));
    EXPECT_TRUE(touching.overlapped(r));
    for (const karD_Rect &apart : {karD_Rect(10.5, 0, 20, 10), karD_Rect(-20, 0, -0.5, 10), karD_Rect(0, 10.5, 10, 20),
                                   karD_Rect(0, -20, 10, -0.5)}) {
        karD_Rect o(apart);
        EXPECT_FALSE(r.overlapped(o));
    }
    karD_Rect inverted = plainReal(10, 20, 5, 12);
    karD_Rect other = plainReal(9, 18, 6, 14);
    EXPECT_TRUE(inverted.overlapped(other));
    EXPECT_EQ(box(inverted), (RealBox{5, 12, 10, 20}));
    EXPECT_EQ(box(other), (RealBox{6, 14, 9, 18}));
    inverted = plainReal(3, 4, 1, 2);
    EXPECT_FALSE(inverted.overlapped(other)); // normalised even so
    EXPECT_EQ(box(inverted), (RealBox{1, 2, 3, 4}));
    EXPECT_TRUE(r.overlapped(r));
    EXPECT_EQ(box(r), (RealBox{0, 0, 10, 10}));
}

TEST(KarD_Rect, GivesTheCommonBoxAndNormalisesBothForGood)
{
    karD_Rect r(0, 0, 10, 10);
    karD_Rect o(5, 5, 20, 20);
    EXPECT_EQ(box(r.average(o)), (RealBox{5, 5, 10, 10}));
    EXPECT_EQ(box(r), (RealBox{0, 0, 10, 10}));
    EXPECT_EQ(box(o), (RealBox{5, 5, 20, 20}));
    karD_Rect apart(30, 30, 40, 40);
    EXPECT_EQ(box(r.average(apart)), (RealBox{0, 0, 0, 0}));
    karD_Rect touching = plainReal(20, 3, 10, -3);
    EXPECT_EQ(box(r.average(touching)), (RealBox{10, 0, 10, 3}));
    EXPECT_EQ(box(touching), (RealBox{10, -3, 20, 3}));
    karD_Rect inverted = plainReal(10, 10, 0, 0);
    EXPECT_EQ(box(inverted.average(o)), (RealBox{5, 5, 10, 10}));
    EXPECT_EQ(box(inverted), (RealBox{0, 0, 10, 10}));
    EXPECT_EQ(box(r.average(r)), (RealBox{0, 0, 10, 10}));
}

TEST(KarD_Rect, IsWidenedAlsoWhereInverted)
{
    karD_Rect r(0, 0, 10, 20);
    EXPECT_EQ(&r.InflateRect_X(2), &r);
    EXPECT_EQ(box(r), (RealBox{-2, 0, 12, 20}));
    EXPECT_EQ(&r.InflateRect_Y(3), &r);
    EXPECT_EQ(box(r), (RealBox{-2, -3, 12, 23}));
    EXPECT_EQ(&r.InflateRect(-1), &r);
    EXPECT_EQ(box(r), (RealBox{-1, -2, 11, 22}));
    r = plainReal(10, 20, 0, 0);
    r.InflateRect(2);
    EXPECT_EQ(box(r), (RealBox{12, 22, -2, -2}));
    r = karD_Rect(0, 0, 1, 1);
    r.InflateRect(-5); // nothing stops it
    EXPECT_EQ(box(r), (RealBox{5, 5, -4, -4}));
    r = karD_Rect(3, 3, 3, 3); // equal counts as ordered
    r.InflateRect(1);
    EXPECT_EQ(box(r), (RealBox{2, 2, 4, 4}));
}

TEST(KarD_Rect, IsNormalisedOnRequest)
{
    karD_Rect r = plainReal(10, 20, 1, 2);
    EXPECT_EQ(&r.NormalizeRect(), &r);
    EXPECT_EQ(box(r), (RealBox{1, 2, 10, 20}));
    r.NormalizeRect();
    EXPECT_EQ(box(r), (RealBox{1, 2, 10, 20}));
    r = plainReal(10, 2, 1, 20);
    r.NormalizeRect();
    EXPECT_EQ(box(r), (RealBox{1, 2, 10, 20}));
    r = plainReal(0.0, 0.0, -0.0, -0.0); // equal: nothing is exchanged
    r.NormalizeRect();
    EXPECT_FALSE(std::signbit(r.left()) || std::signbit(r.bottom()));
    EXPECT_TRUE(std::signbit(r.right()) && std::signbit(r.top()));
}

TEST(KarD_Rect, TakesValuesOutOfItselfAsTheyWere)
{
    const karD_Rect start(1, 2, 10, 20);
    karD_Rect r(start);
    r += r.bottomLeft();
    EXPECT_EQ(box(r), (RealBox{2, 4, 11, 22}));
    r = start;
    r -= r.bottomLeft();
    EXPECT_EQ(box(r), (RealBox{0, 0, 9, 18}));
    r = start;
    r.topBottom(r.bottomLeft().y(), r.topRight().y());
    r.leftRight(r.topRight().x(), r.bottomLeft().x());
    EXPECT_EQ(box(r), (RealBox{10, 20, 1, 2}));
    r = start;
    r.init(r.topRight().x(), r.topRight().y(), r.bottomLeft().x(), r.bottomLeft().y());
    EXPECT_EQ(box(r), (RealBox{1, 2, 10, 20}));
    r = start;
    r.InflateRect(r.bottomLeft().x());
    EXPECT_EQ(box(r), (RealBox{0, 1, 11, 21}));
    r = start;
    r.InflateRect(r.topRight().x());
    EXPECT_EQ(box(r), (RealBox{-9, -8, 20, 30}));
    r = start;
    r.right(r.bottomLeft().x()); // right takes the old left, left the old left
    EXPECT_EQ(box(r), (RealBox{1, 2, 1, 20}));
    r = start;
    r.left(r.topRight().x());
    EXPECT_EQ(box(r), (RealBox{10, 2, 10, 20}));
    r = start;
    r.left(r.topRight().y()); // 20 crosses 10; the place that it lies in isn't touched
    EXPECT_EQ(box(r), (RealBox{10, 2, 20, 20}));
    // Inverted, so that the first store would change what the second one needs: right 3, left 7.
    r = plainReal(7, 0, 3, 1);
    r.right(r.topRight().x());
    EXPECT_EQ(box(r), (RealBox{3, 0, 7, 1}));
    r = plainReal(7, 0, 3, 1);
    r.left(r.bottomLeft().x());
    EXPECT_EQ(box(r), (RealBox{3, 0, 7, 1}));
    r = plainReal(0, 7, 1, 3);
    r.top(r.topRight().y());
    EXPECT_EQ(box(r), (RealBox{0, 3, 1, 7}));
    r = plainReal(0, 7, 1, 3);
    r.bottom(r.bottomLeft().y());
    EXPECT_EQ(box(r), (RealBox{0, 3, 1, 7}));
}
