// Integer points and dimensions: wrapping arithmetic, relations that are no order, truncating rotation.
#include "karpoint.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using XY = std::pair<int, int>;

template <class P>
XY xy(const P &p)
{
    return XY(p.x(), p.y());
}

constexpr double halfTurn = 3.141592653589793;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

static_assert(std::is_same<decltype(karPoint().Cmp(karPoint())), int>::value, "a raw difference");
static_assert(std::is_same<decltype(karPoint() == karPoint()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karPoint() < karPoint()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karPoint().IsType(KAR_ID_POINT)), int>::value, "int, other than at the pair");
static_assert(std::is_same<decltype(karDimension().CanCast(KAR_ID_POINT)), int>::value, "int, other than at the pair");
static_assert(std::is_same<decltype(karPoint().DistSqr(karPoint())), double>::value, "beyond the int range");
static_assert(std::is_same<decltype(karPoint().DistMax(karPoint())), int>::value, "in the unit of the grid");
static_assert(std::is_same<decltype(karPoint() + karDimension()), karPoint>::value, "a position");
static_assert(std::is_same<decltype(karDimension() + karDimension()), karDimension>::value, "an extent");

// What both classes do is told once, for each of them.
template <class P>
class IntegerPlanePair : public testing::Test {};

struct ClassName {
    template <class P>
    static std::string GetName(int)
    {
        return std::is_same<P, karPoint>::value ? "Point" : "Dimension";
    }
};

using Classes = testing::Types<karPoint, karDimension>;
TYPED_TEST_SUITE(IntegerPlanePair, Classes, ClassName);

TYPED_TEST(IntegerPlanePair, IsBuiltFromNothingOneOrTwoValues)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P()), XY(0, 0));
    EXPECT_EQ(xy(P(7)), XY(7, 7));
    EXPECT_EQ(xy(P(3, -4)), XY(3, -4));
    const P source(5, 6);
    P copy(source);
    copy.x(9);
    EXPECT_EQ(xy(copy), XY(9, 6));
    EXPECT_EQ(xy(source), XY(5, 6));
}

TYPED_TEST(IntegerPlanePair, IsAssignedFromItsKindOrOneNumber)
{
    using P = TypeParam;
    P p;
    EXPECT_EQ(&(p = P(3, -4)), &p);
    EXPECT_EQ(xy(p), XY(3, -4));
    EXPECT_EQ(&(p = 8), &p);
    EXPECT_EQ(xy(p), XY(8, 8));
    P &same = p;
    p = same;
    EXPECT_EQ(xy(p), XY(8, 8));
}

TYPED_TEST(IntegerPlanePair, AddsAndSubtractsPlaceByPlace)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P(1, 2) + P(10, 20)), XY(11, 22));
    EXPECT_EQ(xy(P(1, 2) - P(10, 25)), XY(-9, -23));
    EXPECT_EQ(xy(-P(1, -2)), XY(-1, 2));
    P p(1, 2);
    EXPECT_EQ(&(p += P(10, 20)), &p);
    EXPECT_EQ(xy(p), XY(11, 22));
    EXPECT_EQ(&(p -= P(1, 4)), &p);
    EXPECT_EQ(xy(p), XY(10, 18));
    const P &same = p;
    p += same;
    EXPECT_EQ(xy(p), XY(20, 36));
    p -= same;
    EXPECT_EQ(xy(p), XY(0, 0));
}

TYPED_TEST(IntegerPlanePair, MultipliesAndDividesPlaceByPlace)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P(3, -4) * 5), XY(15, -20));
    EXPECT_EQ(xy(P(-3, 0) / 2), XY(-1, 0));
    EXPECT_EQ(xy(P(-3, 0) % 2), XY(-1, 0));
    EXPECT_EQ(xy(P(7, -7) / -2), XY(-3, 3));
    EXPECT_EQ(xy(P(7, -7) % -2), XY(1, -1));
    P p(7, -7);
    EXPECT_EQ(&(p *= 3), &p);
    EXPECT_EQ(xy(p), XY(21, -21));
    EXPECT_EQ(&(p /= 2), &p);
    EXPECT_EQ(xy(p), XY(10, -10));
}

TYPED_TEST(IntegerPlanePair, WrapsAt32Bits)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P(INT_MAX, INT_MIN) + P(1, -1)), XY(INT_MIN, INT_MAX));
    EXPECT_EQ(xy(P(INT_MIN, INT_MAX) - P(1, -1)), XY(INT_MAX, INT_MIN));
    EXPECT_EQ(xy(-P(INT_MIN, INT_MAX)), XY(INT_MIN, -INT_MAX));
    EXPECT_EQ(xy(P(0x40000000, 65536) * 2), XY(INT_MIN, 131072));
    EXPECT_EQ(xy(P(65536, 65537) * 65536), XY(0, 65536));
    // The one quotient that leaves the range, and its remainder.
    EXPECT_EQ(xy(P(INT_MIN, INT_MAX) / -1), XY(INT_MIN, -INT_MAX));
    EXPECT_EQ(xy(P(INT_MIN, INT_MAX) % -1), XY(0, 0));
    P p(INT_MIN, 12);
    p /= -1;
    EXPECT_EQ(xy(p), XY(INT_MIN, -12));
    const P far(65536, 3);
    EXPECT_EQ(P(65536, 4) * &far, 12); // 2^32 + 12
}

TYPED_TEST(IntegerPlanePair, TakesThePartnerOfTheInnerProductAsAPointer)
{
    using P = TypeParam;
    const P o(10, -20);
    EXPECT_EQ(P(3, 4) * &o, -50);
    EXPECT_EQ(o * &o, 500);
}

TYPED_TEST(IntegerPlanePair, IsEqualWhereBothPlacesAre)
{
    using P = TypeParam;
    EXPECT_EQ(P(1, 2) == P(1, 2), 1);
    EXPECT_EQ(P(1, 2) == P(1, 3), 0);
    EXPECT_EQ(P(1, 2) == P(0, 2), 0);
    EXPECT_EQ(P(1, 2) != P(1, 2), 0);
    EXPECT_EQ(P(1, 2) != P(1, 3), 1);
    EXPECT_EQ(P(1, 2) != P(0, 2), 1);
}

TYPED_TEST(IntegerPlanePair, RelatesInBothPlacesOrNotAtAll)
{
    using P = TypeParam;
    EXPECT_EQ(P(1, 2) < P(2, 2), 0);
    EXPECT_EQ(P(1, 2) >= P(2, 2), 0);
    EXPECT_EQ(P(1, 2) <= P(2, 2), 1);
    EXPECT_EQ(P(1, 2) > P(2, 2), 0);
    EXPECT_EQ(P(1, 3) < P(2, 2), 0);
    EXPECT_EQ(P(1, 3) <= P(2, 2), 0);
    EXPECT_EQ(P(1, 3) > P(2, 2), 0);
    EXPECT_EQ(P(1, 3) >= P(2, 2), 0);
    EXPECT_EQ(P(1, 1) < P(2, 2), 1);
    EXPECT_EQ(P(2, 2) > P(1, 1), 1);
    EXPECT_EQ(P(2, 2) >= P(2, 2), 1);
    EXPECT_EQ(P(2, 2) <= P(2, 2), 1);
    EXPECT_EQ(P(2, 2) < P(2, 2), 0);
    EXPECT_EQ(P(2, 2) > P(2, 2), 0);
}

TYPED_TEST(IntegerPlanePair, ComparesYBeforeXByTheRawDifference)
{
    using P = TypeParam;
    EXPECT_EQ(P(3, 1).Cmp(P(1, 2)), -1);
    EXPECT_EQ(P(1, 5).Cmp(P(9, 3)), 2);
    EXPECT_EQ(P(9, 3).Cmp(P(2, 3)), 7);
    EXPECT_EQ(P(2, 3).Cmp(P(9, 3)), -7);
    EXPECT_EQ(P(2, 3).Cmp(P(2, 3)), 0);
}

TYPED_TEST(IntegerPlanePair, ComparesTheOtherWayRoundBeyond2To31)
{
    using P = TypeParam;
    EXPECT_EQ(P(0, INT_MAX).Cmp(P(0, -1)), INT_MIN);
    EXPECT_EQ(P(INT_MIN, 0).Cmp(P(1, 0)), INT_MAX);
}

TYPED_TEST(IntegerPlanePair, GivesTheLesserAndGreaterOfEachPlaceAsANewValue)
{
    using P = TypeParam;
    const P p(1, 20);
    EXPECT_EQ(xy(p.Min(P(10, 2))), XY(1, 2));
    EXPECT_EQ(xy(p.Max(P(10, 2))), XY(10, 20));
    EXPECT_EQ(xy(p.Min(P(-5, 30))), XY(-5, 20));
    EXPECT_EQ(xy(p.Max(P(-5, 30))), XY(1, 30));
    EXPECT_EQ(xy(p), XY(1, 20));
}

TYPED_TEST(IntegerPlanePair, MeasuresFourDistances)
{
    using P = TypeParam;
    EXPECT_EQ(P(1, 2).DistAbs(P(4, -2)), 7);
    EXPECT_EQ(P(1, 2).DistMax(P(4, -2)), 4);
    EXPECT_EQ(P(1, 2).DistMax(P(-8, 4)), 9);
    EXPECT_EQ(P(1, 2).DistSqr(P(4, -2)), 25.0);
    EXPECT_EQ(P(1, 2).DistEuk(P(4, -2)), 5.0);
    EXPECT_EQ(P(6, 6).DistMax(P(6, 6)), 0);
    EXPECT_EQ(P(0, 0).DistMax(P(-3, 3)), 3);
    EXPECT_EQ(P(0, 0).DistMax(P(3, -3)), 3);
    EXPECT_EQ(P(0, 0).DistEuk(P(1, 1)), 1.4142135623730951);
}

TYPED_TEST(IntegerPlanePair, KeepsTheSquaredDistanceOfAnyIntDifference)
{
    using P = TypeParam;
    EXPECT_EQ(P(0, 0).DistSqr(P(INT_MAX, INT_MAX)), 9223372028264841218.0); // 2 * (2^31 - 1)^2
    EXPECT_EQ(P(0, 0).DistSqr(P(INT_MIN, 0)), 4611686018427387904.0);       // 2^62
    // The difference itself wraps: INT_MAX - INT_MIN is -1.
    EXPECT_EQ(P(INT_MAX, 0).DistSqr(P(INT_MIN, 0)), 1.0);
}

TYPED_TEST(IntegerPlanePair, TakesTheAbsoluteValueOfIntMinAsIntMin)
{
    using P = TypeParam;
    EXPECT_EQ(P(INT_MIN, 0).DistAbs(P(0, 0)), INT_MIN);
    EXPECT_EQ(P(INT_MIN, 0).DistMax(P(0, 0)), 0); // INT_MIN is not greater than 0
    EXPECT_EQ(P(0, INT_MIN).DistMax(P(0, 0)), 0); // 0 is greater than INT_MIN
    EXPECT_EQ(P(0, INT_MAX).DistAbs(P(-1, 0)), INT_MIN);
}

TEST(KarPoint, AnswersItsOwnIdOnly)
{
    const karPoint p;
    EXPECT_EQ(p.GetType(), 9);
    EXPECT_EQ(p.IsType(KAR_ID_POINT), 1);
    EXPECT_EQ(p.CanCast(KAR_ID_POINT), 1);
    EXPECT_EQ(p.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(p.CanCast(KAR_ID_PAIR), 0);
    EXPECT_EQ(p.IsType(KAR_ID_DIMENSION), 0);
    EXPECT_EQ(p.CanCast(KAR_ID_D_POINT), 0);
}

TEST(KarDimension, AnswersItsOwnIdOnly)
{
    const karDimension d;
    EXPECT_EQ(d.GetType(), 11);
    EXPECT_EQ(d.IsType(KAR_ID_DIMENSION), 1);
    EXPECT_EQ(d.CanCast(KAR_ID_DIMENSION), 1);
    EXPECT_EQ(d.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(d.CanCast(KAR_ID_POINT), 0);
}

TEST(KarDimension, CallsItsPlacesWidthAndHeight)
{
    karDimension d(3, -4);
    EXPECT_EQ(d.width(), 3);
    EXPECT_EQ(d.widthVal(), 3);
    EXPECT_EQ(d.height(), -4);
    EXPECT_EQ(d.heightVal(), -4);
    d.width(-30);
    d.height(40);
    EXPECT_EQ(d.First(), -30);
    EXPECT_EQ(d.Second(), 40);
}

TEST(KarPoint, MovesByADimension)
{
    EXPECT_EQ(xy(karPoint(1, 2) + karDimension(10, 20)), XY(11, 22));
    EXPECT_EQ(xy(karPoint(1, 2) - karDimension(10, 20)), XY(-9, -18));
    EXPECT_EQ(xy(karPoint(INT_MAX, 0) + karDimension(1, 0)), XY(INT_MIN, 0));
}

TEST(KarPoint, IsMovedAndCleared)
{
    karPoint p(3, 4);
    p.MoveElement(10, -20);
    EXPECT_EQ(xy(p), XY(13, -16));
    p.MoveElement(INT_MAX, INT_MIN);
    EXPECT_EQ(xy(p), XY(INT_MIN + 12, INT_MAX - 15));
    p.setNull();
    EXPECT_EQ(xy(p), XY(0, 0));
}

TEST(KarPoint, AddsAHalfToEveryScaledPlaceWhateverItsSign)
{
    karPoint p(12, -12);
    EXPECT_EQ(&(p *= 0.1), &p); // 1.7 and -0.7, truncated
    EXPECT_EQ(xy(p), XY(1, 0));
    p = karPoint(3, -3);
    p *= 0.5; // 2.0 and -1.0
    EXPECT_EQ(xy(p), XY(2, -1));
    p = karPoint(-5, 5);
    p *= 1.5; // -7.5 + 0.5 and 7.5 + 0.5
    EXPECT_EQ(xy(p), XY(-7, 8));
    p = karPoint(-16, -18);
    p *= 0.1; // -1.1 and -1.3
    EXPECT_EQ(xy(p), XY(-1, -1));
}

TEST(KarPoint, SaturatesAScaledPlace)
{
    karPoint p(2, -2);
    p *= 1e10;
    EXPECT_EQ(xy(p), XY(INT_MAX, INT_MIN));
    p *= notANumber;
    EXPECT_EQ(xy(p), XY(0, 0));
    p = karPoint(1, 0);
    p *= infinity; // 0 times infinity is not a number
    EXPECT_EQ(xy(p), XY(INT_MAX, 0));
}

TEST(KarPoint, ScalesByAnIntWithoutRounding)
{
    karPoint p(3, -3);
    p *= 2;
    EXPECT_EQ(xy(p), XY(6, -6));
    p = karPoint(0x40000000, 0);
    p *= 4; // wraps, where the real factor saturates
    EXPECT_EQ(xy(p), XY(0, 0));
    p = karPoint(0x40000000, 0);
    p *= 4.0;
    EXPECT_EQ(xy(p), XY(INT_MAX, 0));
}

TEST(KarPoint, TruncatesEachProductOfARotationOnItsOwn)
{
    // 10 * 0.6 = 6 and 5 * 0.8 = 4 are whole; 7 * 0.6 = 4.2 and 9 * 0.8 = 7.2 are not.
    karPoint p(10, 5);
    p.RotateElement(0.6, 0.8);
    EXPECT_EQ(xy(p), XY(2, 11));
    p = karPoint(7, 9);
    p.RotateElement(0.6, 0.8); // x 4 - 7, y 5 + 5: the sums 4.2 - 7.2 and 5.6 + 5.4 would give -3 and 11
    EXPECT_EQ(xy(p), XY(-3, 10));
    p = karPoint(9, -1);
    p.RotateElement(0.6, 0.8); // x 5 - 0, y 7 - 0: the sums 6.2 and 6.6 would give 6
    EXPECT_EQ(xy(p), XY(5, 7));
    p = karPoint(-9, 1);
    p.RotateElement(0.6, 0.8);
    EXPECT_EQ(xy(p), XY(-5, -7));
}

TEST(KarPoint, TakesTheCosineFirst)
{
    karPoint p(10, 0);
    p.RotateElement(0.0, 1.0);
    EXPECT_EQ(xy(p), XY(0, 10));
    p.RotateElement(1.0, 0.0);
    EXPECT_EQ(xy(p), XY(0, 10));
}

TEST(KarPoint, TurnsXTowardsYByAPositiveAngle)
{
    karPoint p(1000, 0);
    p.RotateElement(halfTurn / 2);
    EXPECT_EQ(xy(p), XY(0, 1000));
    p.RotateElement(halfTurn / 6); // x -(1000 * 0.4999...), y 1000 * 0.866
    EXPECT_EQ(xy(p), XY(-499, 866));
}

TEST(KarPoint, StaysAtAngleZero)
{
    for (const XY &place : {XY(0, 0), XY(1, -1), XY(INT_MAX, INT_MIN), XY(-12345, 678)}) {
        karPoint p(place.first, place.second);
        p.RotateElement(0.0);
        EXPECT_EQ(xy(p), place);
        p.RotateElement(0.0, 77, -99);
        EXPECT_EQ(xy(p), place);
    }
}

TEST(KarPoint, TurnsAboutACentre)
{
    karPoint p(110, 105);
    p.RotateElement(0.6, 0.8, 100, 100); // (10, 5) becomes (2, 11)
    EXPECT_EQ(xy(p), XY(102, 111));
    p = karPoint(110, 100);
    p.RotateElement(halfTurn, 100, 100); // 10 * sin(pi) truncates to 0, 10 * cos(pi) is -10
    EXPECT_EQ(xy(p), XY(90, 100));
    p = karPoint(100, 100);
    p.RotateElement(1.0, 100, 100);
    EXPECT_EQ(xy(p), XY(100, 100));
}

TEST(KarPoint, WrapsTheDifferenceFromTheCentreAndTheSums)
{
    karPoint p(INT_MIN, 0);
    p.RotateElement(1.0, 0.0, 1, 0); // INT_MIN - 1 is INT_MAX, and INT_MAX + 1 is INT_MIN
    EXPECT_EQ(xy(p), XY(INT_MIN, 0));
    p = karPoint(INT_MIN, 0);
    p.RotateElement(0.0, 1.0, 1, 0); // dx is INT_MAX
    EXPECT_EQ(xy(p), XY(1, INT_MAX));
}

TEST(KarPoint, SaturatesEachProductOfARotation)
{
    karPoint p(1000, 0);
    p.RotateElement(1e10, -1e10);
    EXPECT_EQ(xy(p), XY(INT_MAX, INT_MIN));
    p = karPoint(1000, 1);
    p.RotateElement(notANumber, 1.0); // x 0 - 1, y 1000 + 0
    EXPECT_EQ(xy(p), XY(-1, 1000));
    p = karPoint(1000, 1);
    p.RotateElement(0.5, notANumber); // x 500 - 0, y 0 + 0
    EXPECT_EQ(xy(p), XY(500, 0));
    p = karPoint(5, 5);
    p.RotateElement(infinity); // cosine and sine are not numbers
    EXPECT_EQ(xy(p), XY(0, 0));
}

TEST(KarPoint, SaturatesAHalfTurnOfTheLeastCoordinate)
{
    karPoint p(INT_MIN, 0);
    p.RotateElement(-1.0, 0.0); // 2147483648 is one more than there is
    EXPECT_EQ(xy(p), XY(INT_MAX, 0));
    p = karPoint(INT_MIN, 0);
    p.RotateElement(0.0, -1.0);
    EXPECT_EQ(xy(p), XY(0, INT_MAX));
    const double belowOne = std::nextafter(1.0, 0.0);
    p = karPoint(INT_MIN, INT_MAX);
    p.RotateElement(-belowOne, 0.0); // 2147483647.9999997... and -2147483646.9999997...
    EXPECT_EQ(xy(p), XY(INT_MAX, -2147483646));
    p = karPoint(INT_MIN, 0);
    p.RotateElement(0.0, belowOne);
    EXPECT_EQ(xy(p), XY(0, -2147483647));
}
