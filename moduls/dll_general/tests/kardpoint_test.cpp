// Real points and dimensions, and the two roundings towards the grid.
#include "kardpoint.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using XY = std::pair<int, int>;
using RealXY = std::pair<double, double>;

RealXY xy(const tUniquePair<double> &p) { return RealXY(p.x(), p.y()); }

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Both ways from a real point to the grid; they are told apart in the library and agree in every result.
XY byConversion(double x, double y)
{
    const karPoint p = karD_Point(x, y);
    return XY(p.x(), p.y());
}

XY byAssignment(double x, double y)
{
    karPoint p(77, 78);
    EXPECT_EQ(&(p = karD_Point(x, y)), &p);
    return XY(p.x(), p.y());
}

} // namespace

static_assert(std::is_same<decltype(karD_Point().Cmp(karD_Point())), double>::value, "the difference itself");
static_assert(std::is_same<decltype(karD_Dimension().Cmp(karD_Dimension())), int>::value, "its sign");
static_assert(std::is_same<decltype(karD_Point() == karD_Point()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karD_Point() >= karD_Point()), int>::value, "1 or 0");
static_assert(std::is_same<decltype(karD_Point() + karPoint()), karD_Point>::value, "always real");
static_assert(std::is_same<decltype(karD_Point().DistDim(karD_Point())), karD_Dimension>::value, "an extent");
static_assert(std::is_same<decltype(karD_Point() * 2), karD_Point>::value, "a point");
static_assert(std::is_same<decltype(karD_Point().CanCast(KAR_ID_PAIR)), int>::value, "int, other than at the pair");

// What both classes do is told once, for each of them.
template <class P>
class RealPlanePair : public testing::Test {};

struct ClassName {
    template <class P>
    static std::string GetName(int)
    {
        return std::is_same<P, karD_Point>::value ? "Point" : "Dimension";
    }
};

using Classes = testing::Types<karD_Point, karD_Dimension>;
TYPED_TEST_SUITE(RealPlanePair, Classes, ClassName);

TYPED_TEST(RealPlanePair, IsBuiltFromNothingOneOrTwoValues)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P()), RealXY(0, 0));
    EXPECT_EQ(xy(P(7.5)), RealXY(7.5, 7.5));
    EXPECT_EQ(xy(P(3, -4.25)), RealXY(3, -4.25));
    const P source(5, 6);
    P copy(source);
    copy.x(9);
    EXPECT_EQ(xy(copy), RealXY(9, 6));
    EXPECT_EQ(xy(source), RealXY(5, 6));
    P p;
    EXPECT_EQ(&(p = source), &p);
    EXPECT_EQ(xy(p), RealXY(5, 6));
    EXPECT_EQ(&(p = 2.5), &p);
    EXPECT_EQ(xy(p), RealXY(2.5, 2.5));
}

TYPED_TEST(RealPlanePair, CalculatesPlaceByPlace)
{
    using P = TypeParam;
    EXPECT_EQ(xy(P(1, 2) + P(0.5, 20)), RealXY(1.5, 22));
    EXPECT_EQ(xy(P(1, 2) - P(0.5, 20)), RealXY(0.5, -18));
    EXPECT_EQ(xy(-P(1, -2)), RealXY(-1, 2));
    EXPECT_EQ(xy(P(3, -4) * 0.5), RealXY(1.5, -2));
    EXPECT_EQ(xy(P(3, -4) / 0.5), RealXY(6, -8));
    P p(3, -4);
    EXPECT_EQ(&(p *= 0.5), &p);
    EXPECT_EQ(xy(p), RealXY(1.5, -2));
    EXPECT_EQ(&(p /= 0.25), &p);
    EXPECT_EQ(xy(p), RealXY(6, -8));
    EXPECT_EQ(&(p += P(0.5, 1)), &p);
    EXPECT_EQ(xy(p), RealXY(6.5, -7));
    EXPECT_EQ(&(p -= P(0.5, 1)), &p);
    EXPECT_EQ(xy(p), RealXY(6, -8));
    const P &same = p;
    p += same;
    EXPECT_EQ(xy(p), RealXY(12, -16));
    p -= same;
    EXPECT_EQ(xy(p), RealXY(0, 0));
}

TYPED_TEST(RealPlanePair, PassesInfinityAndNotANumberOn)
{
    using P = TypeParam;
    const P p = P(1, 0) / 0.0;
    EXPECT_EQ(p.x(), infinity);
    EXPECT_TRUE(std::isnan(p.y()));
    EXPECT_EQ((P(-1, 1) / 0.0).x(), -infinity);
}

TYPED_TEST(RealPlanePair, TakesThePartnerOfTheInnerProductAsAPointer)
{
    using P = TypeParam;
    const P o(0.5, -2);
    EXPECT_EQ(P(3, 4) * &o, -6.5);
    EXPECT_EQ(o * &o, 4.25);
}

TYPED_TEST(RealPlanePair, ComparesExactly)
{
    using P = TypeParam;
    EXPECT_EQ(P(1, 1) == P(1, 1), 1);
    EXPECT_EQ(P(1, 1) == P(1 + 1e-15, 1), 0);
    EXPECT_EQ(P(1, 1) == P(1, 1 + 1e-15), 0);
    EXPECT_EQ(P(1, 1) != P(1 + 1e-15, 1), 1);
    EXPECT_EQ(P(1, 1) != P(1, 1 + 1e-15), 1);
    EXPECT_EQ(P(1, 1) != P(1, 1), 0);
    EXPECT_EQ(P(0.0, -0.0) == P(-0.0, 0.0), 1);
    EXPECT_EQ(P(notANumber, 1) == P(notANumber, 1), 0);
    EXPECT_EQ(P(notANumber, 1) != P(notANumber, 1), 1);
}

TYPED_TEST(RealPlanePair, RelatesInBothPlacesOrNotAtAll)
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
    EXPECT_EQ(P(1.5, 1.5) < P(2, 2), 1);
    EXPECT_EQ(P(2, 2) > P(1.5, 1.5), 1);
    EXPECT_EQ(P(2, 2) >= P(2, 2), 1);
    EXPECT_EQ(P(2, 2) <= P(2, 2), 1);
    EXPECT_EQ(P(notANumber, 2) <= P(2, 2), 0);
    EXPECT_EQ(P(notANumber, 2) >= P(2, 2), 0);
}

TYPED_TEST(RealPlanePair, MeasuresFourDistances)
{
    using P = TypeParam;
    EXPECT_EQ(P(1, 2).DistAbs(P(4.5, -2)), 7.5);
    EXPECT_EQ(P(1, 2).DistMax(P(4.5, -2)), 4.0);
    EXPECT_EQ(P(1, 2).DistMax(P(-8, 4)), 9.0);
    EXPECT_EQ(P(1, 2).DistSqr(P(4, -2)), 25.0);
    EXPECT_EQ(P(1, 2).DistEuk(P(4, -2)), 5.0);
    EXPECT_EQ(P(6, 6).DistMax(P(6, 6)), 0.0);
    EXPECT_EQ(P(0, 0).DistMax(P(-3, 3)), 3.0);
    // x counts only if strictly greater, so beside a not-a-number y counts.
    EXPECT_EQ(P(0, 0).DistMax(P(notANumber, 3)), 3.0);
    EXPECT_TRUE(std::isnan(P(0, 0).DistMax(P(3, notANumber))));
}

TYPED_TEST(RealPlanePair, SquaresWithoutScaling)
{
    using P = TypeParam;
    // 1e200 squared is beyond the range, 1e-200 squared below it.
    EXPECT_EQ(P(0, 0).DistEuk(P(1e200, 0)), infinity);
    EXPECT_EQ(P(0, 0).DistEuk(P(1e-200, 0)), 0.0);
}

TYPED_TEST(RealPlanePair, GivesTheLesserAndGreaterOfEachPlaceAsANewValue)
{
    using P = TypeParam;
    const P p(1, 20);
    EXPECT_EQ(xy(p.Min(P(10, 2.5))), RealXY(1, 2.5));
    EXPECT_EQ(xy(p.Max(P(10, 2.5))), RealXY(10, 20));
    EXPECT_EQ(xy(p.Min(P(-5, 30))), RealXY(-5, 20));
    EXPECT_EQ(xy(p.Max(P(-5, 30))), RealXY(1, 30));
    EXPECT_EQ(xy(p.Min(P(notANumber, 30))), RealXY(1, 20));
    EXPECT_EQ(xy(p.Max(P(notANumber, 30))), RealXY(1, 30));
    const P plus(0.0, 0.0), minus(-0.0, -0.0); // of equal places that of the receiver
    EXPECT_FALSE(std::signbit(plus.Min(minus).First()) || std::signbit(plus.Min(minus).Second()));
    EXPECT_FALSE(std::signbit(plus.Max(minus).First()) || std::signbit(plus.Max(minus).Second()));
    EXPECT_TRUE(std::signbit(minus.Min(plus).First()) && std::signbit(minus.Min(plus).Second()));
    EXPECT_TRUE(std::signbit(minus.Max(plus).First()) && std::signbit(minus.Max(plus).Second()));
    EXPECT_EQ(xy(p), RealXY(1, 20));
}

TEST(KarD_Point, AnswersItsOwnIdOnly)
{
    const karD_Point p;
    EXPECT_EQ(p.GetType(), 13);
    EXPECT_EQ(p.IsType(KAR_ID_D_POINT), 1);
    EXPECT_EQ(p.CanCast(KAR_ID_D_POINT), 1);
    EXPECT_EQ(p.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(p.CanCast(KAR_ID_POINT), 0);
    EXPECT_EQ(p.CanCast(KAR_ID_D_DIMENSION), 0);
}

TEST(KarD_Dimension, AnswersItsOwnIdOnly)
{
    const karD_Dimension d;
    EXPECT_EQ(d.GetType(), 15);
    EXPECT_EQ(d.IsType(KAR_ID_D_DIMENSION), 1);
    EXPECT_EQ(d.CanCast(KAR_ID_D_DIMENSION), 1);
    EXPECT_EQ(d.IsType(KAR_ID_PAIR), 0);
    EXPECT_EQ(d.CanCast(KAR_ID_D_POINT), 0);
}

TEST(KarD_Dimension, CallsItsPlacesWidthAndHeight)
{
    karD_Dimension d(3.5, -4);
    EXPECT_EQ(d.width(), 3.5);
    EXPECT_EQ(d.widthVal(), 3.5);
    EXPECT_EQ(d.height(), -4.0);
    EXPECT_EQ(d.heightVal(), -4.0);
    d.width(-30);
    d.height(40.25);
    EXPECT_EQ(d.First(), -30.0);
    EXPECT_EQ(d.Second(), 40.25);
}

TEST(KarD_Dimension, ComparesToASignYBeforeX)
{
    EXPECT_EQ(karD_Dimension(1, 5).Cmp(karD_Dimension(9, 3)), 1);
    EXPECT_EQ(karD_Dimension(9, 3).Cmp(karD_Dimension(1, 5)), -1);
    EXPECT_EQ(karD_Dimension(9, 3).Cmp(karD_Dimension(1.5, 3)), 1);
    EXPECT_EQ(karD_Dimension(1.5, 3).Cmp(karD_Dimension(9, 3)), -1);
    EXPECT_EQ(karD_Dimension(9, 3).Cmp(karD_Dimension(9, 3)), 0);
    EXPECT_EQ(karD_Dimension(0, 1e-300).Cmp(karD_Dimension(9, 0)), 1);
    // Not a number is neither zero nor below nor above it, and x isn't asked.
    EXPECT_EQ(karD_Dimension(1, notANumber).Cmp(karD_Dimension(9, 3)), 0);
    EXPECT_EQ(karD_Dimension(1, infinity).Cmp(karD_Dimension(9, infinity)), 0);
}

TEST(KarD_Point, ComparesToTheDifferenceYBeforeX)
{
    EXPECT_EQ(karD_Point(1, 5).Cmp(karD_Point(9, 3)), 2.0);
    EXPECT_EQ(karD_Point(9, 3).Cmp(karD_Point(1, 5)), -2.0);
    EXPECT_EQ(karD_Point(9, 3).Cmp(karD_Point(1.5, 3)), 7.5);
    EXPECT_EQ(karD_Point(9, 3).Cmp(karD_Point(9, 3)), 0.0);
    EXPECT_EQ(karD_Point(0, 1e-300).Cmp(karD_Point(9, 0)), 1e-300);
    EXPECT_TRUE(std::isnan(karD_Point(1, notANumber).Cmp(karD_Point(9, 3))));
}

TEST(KarD_Point, ComesFromTheGridExactly)
{
    EXPECT_EQ(xy(karD_Point(karPoint(INT_MAX, INT_MIN))), RealXY(2147483647.0, -2147483648.0));
    karD_Point p(9.5, 9.5);
    EXPECT_EQ(&(p = karPoint(3, -4)), &p);
    EXPECT_EQ(xy(p), RealXY(3, -4));
}

TEST(KarD_Point, IsAssignedOneNumberOrTwo)
{
    karD_Point p;
    EXPECT_EQ(&(p = 2.5), &p);
    EXPECT_EQ(xy(p), RealXY(2.5, 2.5));
    EXPECT_EQ(&(p = 3), &p);
    EXPECT_EQ(xy(p), RealXY(3, 3));
    EXPECT_EQ(&p.Set(1.5, -2), &p);
    EXPECT_EQ(xy(p), RealXY(1.5, -2));
    p = p.y(); // a reference into the receiver
    EXPECT_EQ(xy(p), RealXY(-2, -2));
    p.Set(4, 5);
    p = p.x();
    EXPECT_EQ(xy(p), RealXY(4, 4));
    p.setNull();
    EXPECT_EQ(xy(p), RealXY(0, 0));
}

TEST(KarD_Point, AddsWhateverHasTwoPlaces)
{
    const karD_Point p(1.5, 2.5);
    EXPECT_EQ(xy(p + karD_Dimension(1, -1)), RealXY(2.5, 1.5));
    EXPECT_EQ(xy(p - karD_Dimension(1, -1)), RealXY(0.5, 3.5));
    EXPECT_EQ(xy(p + karPoint(1, -1)), RealXY(2.5, 1.5));
    EXPECT_EQ(xy(p - karPoint(1, -1)), RealXY(0.5, 3.5));
    karD_Point q(p);
    EXPECT_EQ(&(q += karD_Dimension(1, -1)), &q);
    EXPECT_EQ(xy(q), RealXY(2.5, 1.5));
    EXPECT_EQ(&(q -= karD_Dimension(2, -2)), &q);
    EXPECT_EQ(xy(q), RealXY(0.5, 3.5));
    EXPECT_EQ(&(q += karPoint(10, 20)), &q);
    EXPECT_EQ(xy(q), RealXY(10.5, 23.5));
    EXPECT_EQ(&(q -= karPoint(1, 2)), &q);
    EXPECT_EQ(xy(q), RealXY(9.5, 21.5));
    // Beyond the int range nothing wraps.
    EXPECT_EQ(xy(karD_Point(2147483647.0, 0) + karPoint(1, 0)), RealXY(2147483648.0, 0));
}

TEST(KarD_Point, DividesByAnIntAsByAReal)
{
    EXPECT_EQ(xy(karD_Point(3, 4) / 2), RealXY(1.5, 2));
    EXPECT_EQ(karPoint(3, 4) / 2, karPoint(1, 2));
    EXPECT_EQ(xy(karD_Point(1.5, -2) * 3), RealXY(4.5, -6));
    karD_Point p(3, -4);
    EXPECT_EQ(&(p *= 3), &p);
    EXPECT_EQ(xy(p), RealXY(9, -12));
    EXPECT_EQ(&(p /= 2), &p);
    EXPECT_EQ(xy(p), RealXY(4.5, -6));
    p /= 0;
    EXPECT_EQ(xy(p), RealXY(infinity, -infinity));
}

TEST(KarD_Point, MultipliesWithAGridPointAsAnInnerProduct)
{
    const karPoint o(10, -20);
    EXPECT_EQ(karD_Point(1.5, 0.25) * &o, 10.0);
}

TEST(KarD_Point, RoundsHalfAwayFromZeroOnTheWayToTheGrid)
{
    struct Row {
        double v;
        int rounded;
    };
    const Row rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.4, 0},
        {-0.4, 0},
        {0.5, 1},
        {-0.5, -1},
        {1.2, 1},
        {-1.2, -1},
        {2.5, 3},
        {-2.5, -3},
        {1e6 + 0.5, 1000001},
        {-7.49, -7},
        {1e-300, 0},
        {-1e-300, 0},
        {3e9, INT_MAX},
        {-3e9, INT_MIN},
        {infinity, INT_MAX},
        {-infinity, INT_MIN},
        {notANumber, 0},
        // The neighbour of 0.5 below it: the sum is 1 before it is truncated.
        {0.49999999999999994, 1},
        {-0.49999999999999994, -1},
        {2147483646.5, INT_MAX},
        {-2147483647.5, INT_MIN},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(byConversion(row.v, 0.0), XY(row.rounded, 0)) << row.v;
        EXPECT_EQ(byConversion(0.0, row.v), XY(0, row.rounded)) << row.v;
        EXPECT_EQ(byAssignment(row.v, 0.0), XY(row.rounded, 0)) << row.v;
        EXPECT_EQ(byAssignment(0.0, row.v), XY(0, row.rounded)) << row.v;
    }
    EXPECT_EQ(byConversion(2.5, -2.5), XY(3, -3));
    EXPECT_EQ(byConversion(-0.4, 0.4), XY(0, 0));
}

TEST(KarPoint, RoundsAProductOtherThanAConversion)
{
    // -1.2 becomes -1 on the way from the real point, 0 in the scaled grid point.
    karPoint scaled(-12, 0);
    scaled *= 0.1;
    EXPECT_EQ(scaled.x(), 0);
    EXPECT_EQ(byConversion(-12 * 0.1, 0), XY(-1, 0));
}

TEST(KarD_Point, MeasuresAlongTheAxes)
{
    const karD_Point p(1, 2);
    EXPECT_EQ(p.DistX(karD_Point(4.5, 100)), 3.5);
    EXPECT_EQ(p.DistX(karD_Point(-4.5, 100)), 5.5);
    EXPECT_EQ(p.DistY(karD_Point(100, 0.5)), 1.5);
    EXPECT_EQ(p.DistY(karD_Point(100, 3)), 1.0);
    EXPECT_EQ(xy(p.DistDim(karD_Point(4, -2))), RealXY(-3, 4));
}

TEST(KarD_Point, TakesAGridPointIntoItsMinimumAndMaximum)
{
    const karD_Point p(1.5, 20.5);
    EXPECT_EQ(xy(p.Min(karPoint(2, 3))), RealXY(1.5, 3));
    EXPECT_EQ(xy(p.Max(karPoint(2, 3))), RealXY(2, 20.5));
    EXPECT_EQ(xy(p), RealXY(1.5, 20.5));
}

TEST(KarD_Point, SeesAnotherPointUnderAnAngleFromZeroToAFullTurn)
{
    const karD_Point origin(0, 0);
    EXPECT_EQ(origin.AngleX(karD_Point(1, 0)), 0.0);
    EXPECT_DOUBLE_EQ(origin.AngleX(karD_Point(0, 2)), 1.5707963267948966);
    EXPECT_DOUBLE_EQ(origin.AngleX(karD_Point(-3, 0)), 3.141592653589793);
    EXPECT_DOUBLE_EQ(origin.AngleX(karD_Point(0, -1)), 4.71238898038469);
    EXPECT_DOUBLE_EQ(karD_Point(5, 5).AngleX(karD_Point(6, 6)), 0.7853981633974483);
    EXPECT_DOUBLE_EQ(karD_Point(5, 5).AngleX(karD_Point(6, 4)), 5.497787143782138);
    // No tolerance: the smallest step below the x axis is a full turn, as far as a double tells.
    EXPECT_EQ(origin.AngleX(karD_Point(1, -1e-300)), 6.283185307179586);
    EXPECT_EQ(origin.AngleX(karD_Point(1e-300, 0)), 0.0);
}

TEST(KarD_Point, SeesACoincidentPointUnderZero)
{
    EXPECT_EQ(karD_Point(3, 4).AngleX(karD_Point(3, 4)), 0.0);
    // Zeros of either sign coincide, in whatever order.
    EXPECT_EQ(karD_Point(0.0, 0.0).AngleX(karD_Point(-0.0, 0.0)), 0.0);
    EXPECT_EQ(karD_Point(0.0, 0.0).AngleX(karD_Point(-0.0, -0.0)), 0.0);
    EXPECT_EQ(karD_Point(-0.0, -0.0).AngleX(karD_Point(0.0, 0.0)), 0.0);
}

TEST(KarD_Point, IsMovedByTwoNumbers)
{
    karD_Point p(1, 2);
    p.MoveElement(0.5, -4);
    EXPECT_EQ(xy(p), RealXY(1.5, -2));
}

TEST(KarD_Point, TurnsByCosineAndSineWithoutRounding)
{
    karD_Point p(7, 9);
    p.RotateElement(0.6, 0.8); // 4.2 - 7.2 and 5.6 + 5.4, cosine first
    EXPECT_DOUBLE_EQ(p.x(), -3.0);
    EXPECT_DOUBLE_EQ(p.y(), 11.0);
    p = karD_Point(3, -2);
    p.RotateElement(0.0, 1.0);
    EXPECT_EQ(xy(p), RealXY(2, 3));
    p.RotateElement(0.0, 1.0, 1, 1); // (1, 2) from the centre becomes (-2, 1)
    EXPECT_EQ(xy(p), RealXY(-1, 2));
}

TEST(KarD_Point, TurnsCounterClockwiseByAPositiveAngle)
{
    karD_Point p(2, 0);
    p.RotateElement(1.5707963267948966);
    EXPECT_NEAR(p.x(), 0.0, 1e-15);
    EXPECT_EQ(p.y(), 2.0);
    p = karD_Point(11, 10);
    p.RotateElement(0.5235987755982988, 10.0, 10.0); // 30 degrees about (10, 10)
    EXPECT_DOUBLE_EQ(p.x(), 10.866025403784438);
    EXPECT_DOUBLE_EQ(p.y(), 10.5);
    p = karD_Point(-3.5, 1e300);
    p.RotateElement(0.0);
    EXPECT_EQ(xy(p), RealXY(-3.5, 1e300));
}

TEST(KarD_Point, SumsARotationFromTheCentreOn)
{
    // 2^53 + 1 is 2^53 and 2^53 - 1 is not: from the left the x is 2^53 - 1, from the right 2^53.
    karD_Point p(9007199254740994.0, 2);
    p.RotateElement(0.5, 1.0, 9007199254740992.0, 1.0); // dx 2, dy 1: (2^53 + 1) - 1
    EXPECT_EQ(p.x(), 9007199254740991.0);
    EXPECT_EQ(p.y(), 3.5);
    // Without a centre the sums begin at zero, so no negative zero comes out.
    p = karD_Point(-0.0, 0.0);
    p.RotateElement(1.0, 0.0);
    EXPECT_FALSE(std::signbit(p.x()));
}
