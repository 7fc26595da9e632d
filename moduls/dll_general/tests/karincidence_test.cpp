#include "karincidence.h"

#include "kar3dpoint.h"
#include "karvector.h"

#include "testnumbers.h"
#include "testrandom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

// Angles

TEST(ArcusTangens, CountsAFullCircleInTheGivenUnit)
{
    EXPECT_EQ(0.0, arcusTangens(0, 0, 360));
    EXPECT_EQ(270.0, arcusTangens(-1, 0, 360));
    EXPECT_EQ(pi, arcusTangens(0, -1, 0)); // 0 means radians
    EXPECT_EQ(90.0, arcusTangens(5, 0, 360));
    EXPECT_EQ(0.0, arcusTangens(0, 5, 360));
    EXPECT_EQ(180.0, arcusTangens(0, -5, 360));
    EXPECT_NEAR(45.0, arcusTangens(2, 2, 360), 1e-13);
    EXPECT_NEAR(2.5, arcusTangens(-1, -1, 4), 1e-15); // quarters
    EXPECT_NEAR(-45.0, arcusTangens(2, 2, -360), 1e-13);
}

TEST(ArcusTangens, RaisesNegativeAnglesByAFullTurn)
{
    EXPECT_NEAR(1.75 * pi, arcusTangens(-1, 1, 0), 1e-15);
    EXPECT_EQ(4.71238898038469, arcusTangens(-1e-300, 0, 0));
    EXPECT_EQ(6.283185307179586, arcusTangens(-1e-300, 1, 0)); // a full turn by rounding
}

TEST(ArcusTangens, ComparesWithZeroExactly)
{
    EXPECT_BITS(0.0, arcusTangens(-0.0, 1, 0));
    EXPECT_EQ(pi, arcusTangens(-0.0, -1, 0)); // atan2 would say -pi
    EXPECT_BITS(0.0, arcusTangens(-0.0, -0.0, 0));
    EXPECT_EQ(1.5707963267948966, arcusTangens(1e-300, -0.0, 0));
    EXPECT_NE(1.5707963267948966, arcusTangens(1e-300, 1e-300, 0)); // no tolerance
}

TEST(ArcusTangens, OfOneNumberIsNormalised)
{
    EXPECT_EQ(0.7853981633974483, arcusTangens(1));
    EXPECT_EQ(-0.7853981633974483 + 6.283185307179586, arcusTangens(-1));
    EXPECT_EQ(0.0, arcusTangens(0));
    EXPECT_EQ(1.5707963267948966, arcusTangens(inf));
}

TEST(GetAngle, IsTheAngleAtTheFirstPoint)
{
    EXPECT_DOUBLE_EQ(pi / 2, GetAngle(1, 1, 1, 3, 1, 1, 1, 4, 1));
    EXPECT_DOUBLE_EQ(pi, GetAngle(0, 0, 0, 1, 0, 0, -2, 0, 0));
    EXPECT_EQ(0.0, GetAngle(0, 0, 0, 1, 0, 0, 2, 0, 0));
}

TEST(GetAngle, ExceedsPiWhereTheSecondDirectionIsLessInclinedToTheZAxis)
{
    EXPECT_DOUBLE_EQ(1.5 * pi, GetAngle(0, 0, 0, 1, 0, 0, 0, 0, 1)); // from the plane up to the axis
    EXPECT_DOUBLE_EQ(0.5 * pi, GetAngle(0, 0, 0, 0, 0, 1, 1, 0, 0));
    EXPECT_DOUBLE_EQ(0.5 * pi, GetAngle(0, 0, 0, 1, 0, 0, 0, 1, 0)); // neither turn in the x-y plane
    EXPECT_DOUBLE_EQ(0.5 * pi, GetAngle(0, 0, 0, 0, 1, 0, 1, 0, 0));
    EXPECT_DOUBLE_EQ(1.5 * pi, GetAngle(0, 0, 0, 0, 0, -1, 1, 0, 0));
}

TEST(GetAngle, OfAZeroVectorIsNotANumber) { EXPECT_TRUE(std::isnan(GetAngle(1, 2, 3, 1, 2, 3, 4, 5, 6))); }

TEST(GetAngle, ClampsNothing)
{
    TestRandom random(6);
    int aboveOne = 0;
    for (int step = 0; step < 1000; ++step) {
        const double x = random.between(-1.0, 1.0), y = random.between(-1.0, 1.0), z = random.between(-1.0, 1.0);
        const double length = std::sqrt(((x * x) + (y * y)) + (z * z));
        const bool beyond = (((x * x) + (y * y)) + (z * z)) / (length * length) > 1;
        aboveOne += beyond ? 1 : 0;
        EXPECT_EQ(beyond, std::isnan(GetAngle(0, 0, 0, x, y, z, x, y, z))) << "seed 6, step " << step;
    }
    EXPECT_GT(aboveOne, 10);
}

TEST(GiveAngle, IsInDegrees)
{
    EXPECT_DOUBLE_EQ(90.0, give_angle(1, 0, 0, 1));
    EXPECT_DOUBLE_EQ(90.0, give_angle(0, 1, 1, 0));
    EXPECT_DOUBLE_EQ(180.0, give_angle(5, 0, -3, 0));
    EXPECT_EQ(0.0, give_angle(5, 0, 3, 0));
    EXPECT_NEAR(45.0, give_angle(1, 0, 7, 7), 1e-13);
    EXPECT_NEAR(135.0, give_angle(1, 0, -7, -7), 1e-13);
}

TEST(GiveAngle, MarksAZeroVector)
{
    EXPECT_EQ(-1000.0, give_angle(0, 0, 3, 4));
    EXPECT_EQ(-1000.0, give_angle(3, 4, 0, 0));
}

TEST(GiveAngle, InnerProductWrapsAtThirtyTwoBits)
{
    // 65536 * 65536 wraps to 0: a right angle between equal vectors
    EXPECT_DOUBLE_EQ(90.0, give_angle(65536, 0, 65536, 0));
    // 50000 * 50000 wraps to -1794967296; / 2.5e9
    EXPECT_NEAR(std::acos(-1794967296.0 / 2.5e9) * 180 / pi, give_angle(50000, 0, 50000, 0), 1e-12);
    // the sum wraps too: 2 * 2^30 is -2^31
    EXPECT_NEAR(180.0, give_angle(32768, 32768, 32768, 32768), 2e-6);
    // and 2^31 is -2^31
    EXPECT_NEAR(135.0, give_angle(-2147483647 - 1, -2147483647 - 1, -1, 0), 1e-12);
}

TEST(AngleXLine, IsTheNormalisedDirection)
{
    EXPECT_EQ(0.0, AngleX_Line(1, 1, 5, 1));
    EXPECT_DOUBLE_EQ(pi / 4, AngleX_Line(1, 1, 3, 3));
    EXPECT_EQ(pi, AngleX_Line(1, 1, -3, 1));
    EXPECT_DOUBLE_EQ(1.25 * pi, AngleX_Line(0, 0, -1, -1));
}

TEST(AngleXLine, VerticalLinesHaveTwoValues)
{
    EXPECT_EQ(1.5707963267948966, AngleX_Line(2, 1, 2, 5));
    EXPECT_EQ(4.71238898038469, AngleX_Line(2, 5, 2, 1));
    EXPECT_EQ(4.71238898038469, AngleX_Line(2, 5, 2, 5)); // coincident
    EXPECT_EQ(1.5707963267948966, AngleX_Line(0, 0, 9.9e-51, 1e-60));
    EXPECT_NEAR(1e-10, AngleX_Line(0, 0, 1e-50, 1e-60), 1e-25); // the threshold itself is a difference
}

// Sides

TEST(SideOfPointFromLine, IsMinusOneOnTheLeftAndOneElsewhere)
{
    EXPECT_EQ(-1, SideOfPoint_From_Line(0, 0, 4, 2, 1, 3));
    EXPECT_EQ(1, SideOfPoint_From_Line(0, 0, 4, 2, 3, 1));
    EXPECT_EQ(1, SideOfPoint_From_Line(4, 2, 0, 0, 1, 3));
    EXPECT_EQ(1, SideOfPoint_From_Line(0, 0, 4, 2, 2, 1)); // on the line
    EXPECT_EQ(1, SideOfPoint_From_Line(0, 0, 4, 2, 40, 20));
    EXPECT_EQ(1, SideOfPoint_From_Line(3, 3, 3, 3, 1, 9));       // coincident end points
    EXPECT_EQ(-1, SideOfPoint_From_Line(0, 0, 1, 0, 5, 1e-300)); // no tolerance
    EXPECT_EQ(1, SideOfPoint_From_Line(0, 0, 1, 0, 5, nan));
}

TEST(ChangedSideOfLine, TellsOnWhichSideOfCTheFootFalls)
{
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 4, 0, 7, 3));  // towards B
    EXPECT_EQ(-1, ChangedSideOfLine(0, 0, 10, 0, 4, 0, 2, 3)); // towards A
    EXPECT_EQ(-1, ChangedSideOfLine(10, 10, 0, 0, 4, 4, 8, 6));
    EXPECT_EQ(1, ChangedSideOfLine(10, 10, 0, 0, 4, 4, 1, 2));
}

TEST(ChangedSideOfLine, BoxTowardsBGoesFirst)
{
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 4, 0, 4, 3));           // the foot is C: in both boxes
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 4, 0, 4 - 0.9e-10, 3)); // within 1e-10 of it
    EXPECT_EQ(-1, ChangedSideOfLine(0, 0, 10, 0, 4, 0, 4 - 1.1e-10, 3));
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 2, 0, 20, 0, 5, 3));  // C beyond B: the foot between them is in both boxes
    EXPECT_EQ(-1, ChangedSideOfLine(0, 0, 2, 0, 20, 0, 1, 3)); // and before B in that of A
}

TEST(ChangedSideOfLine, FootInNeitherBoxBelongsToTheNearerEnd)
{
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 7, 0, 30, 3)); // C nearer to B
    EXPECT_EQ(-1, ChangedSideOfLine(0, 0, 10, 0, 3, 0, 30, 3));
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 5, 0, 30, 3)); // as far from either: B
    EXPECT_EQ(1, ChangedSideOfLine(0, 0, 10, 0, 5, 0, -30, 3));
}

// On or off

TEST(IsPointOnLine, WithoutATestIsTrue)
{
    EXPECT_TRUE(IsPointOnLine(0, 0, 1, 1, 500, -7, false, false, 0));
    EXPECT_TRUE(IsPointOnLine(0, 0, 1, 1, nan, nan, false, false, 0));
}

TEST(IsPointOnLine, DistanceIsToTheUnboundedLineAndMayEqualTheTolerance)
{
    EXPECT_TRUE(IsPointOnLine(0, 0, 1, 0, 500, 2, true, false, 2));
    EXPECT_FALSE(IsPointOnLine(0, 0, 1, 0, 500, std::nextafter(2.0, 3.0), true, false, 2));
    EXPECT_TRUE(IsPointOnLine(0, 0, 1, 0, 500, nan, true, false, 2)); // not above the tolerance
}

TEST(IsPointOnLine, RangeIsTheWidenedBoxWithItsBorder)
{
    EXPECT_TRUE(IsPointOnLine(4, 1, 0, 3, 2, 1, false, true, 0)); // far from the line, but in the box
    EXPECT_TRUE(IsPointOnLine(4, 1, 0, 3, 4, 3, false, true, 0));
    EXPECT_TRUE(IsPointOnLine(4, 1, 0, 3, 4.5, 0.5, false, true, 0.5));
    EXPECT_TRUE(IsPointOnLine(4, 1, 0, 3, -0.5, 3.5, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, 4.5000001, 2, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, -0.5000001, 2, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, 2, 0.4999999, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, 2, 3.5000001, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, nan, 2, false, true, 0.5));
    EXPECT_FALSE(IsPointOnLine(4, 1, 0, 3, 2, nan, false, true, 0.5));
}

TEST(IsPointOnLine, BothTestsMustHold)
{
    EXPECT_TRUE(IsPointOnLine(0, 0, 4, 0, 2, 0.1, true, true, 0.1));
    EXPECT_FALSE(IsPointOnLine(0, 0, 4, 4, 3, 1, true, true, 0.1)); // in the box, off the line
    EXPECT_FALSE(IsPointOnLine(0, 0, 4, 4, 5, 5, true, true, 0.1)); // on the line, outside the box
}

TEST(IsPointOnCircle, ToleranceIsOnSquaredLengths)
{
    EXPECT_FALSE(IsPointOnCircle(0, 0, 100, 100.01, 0, 1)); // 10002.0001 - 10000 is about 2
    EXPECT_TRUE(IsPointOnCircle(0, 0, 100, 100.001, 0, 1));
    EXPECT_TRUE(IsPointOnCircle(1, 2, 5, 4, 6, 1e-300));
    EXPECT_FALSE(IsPointOnCircle(1, 2, 5, 4, 6, 0)); // strictly less
    EXPECT_TRUE(IsPointOnCircle(0, 0, 2, 0, 1.5, 1.76));
    EXPECT_FALSE(IsPointOnCircle(0, 0, 2, 0, 1.5, 1.75)); // the difference itself
    EXPECT_TRUE(IsPointOnCircle(1, 2, -5, 4, 6, 1e-10));  // the square of the radius alone counts
    EXPECT_FALSE(IsPointOnCircle(nan, 2, 5, 4, 6, 1));
}

TEST(IsPointOnArc, PassesThroughZeroWhenStartIsAboveEnd)
{
    EXPECT_TRUE(IsPointOnArc(0, 0, 2, 6, 1, 2, 0, false, 1e-10));
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, 6, 1, 2 * std::cos(3.0), 2 * std::sin(3.0), false, 1e-10));
    EXPECT_TRUE(IsPointOnArc(0, 0, 2, 1, 6, 2 * std::cos(3.0), 2 * std::sin(3.0), false, 1e-10));
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, 1, 6, 2, 0, false, 1e-10));
}

TEST(IsPointOnArc, EndsBelongToIt)
{
    const double half = 1.5707963267948966;
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 0, half, 3, 1, false, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 0, half, 1, 3, false, 1e-10));
    EXPECT_FALSE(IsPointOnArc(1, 1, 2, std::nextafter(half, 2.0), 6, 1, 3, false, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 9.9e-51, 1, 3, 1, true, 1e-10)); // within 1e-50 of the start
    EXPECT_FALSE(IsPointOnArc(1, 1, 2, 1.1e-50, 1, 3, 1, true, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, -1, -9.9e-51, 3, 1, true, 1e-10)); // and of the end
    EXPECT_FALSE(IsPointOnArc(1, 1, 2, -1, -1.1e-50, 3, 1, true, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 9.9e-51, -1, 3, 1, true, 1e-10)); // start above end
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 1e-50, -1, 3, 1, true, 1e-10));
    EXPECT_FALSE(IsPointOnArc(1, 1, 2, 1.1e-50, -1, 3, 1, true, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 1, -9.9e-51, 3, 1, true, 1e-10));
    EXPECT_TRUE(IsPointOnArc(1, 1, 2, 1, -1e-50, 3, 1, true, 1e-10));
    EXPECT_FALSE(IsPointOnArc(1, 1, 2, 1, -1.1e-50, 3, 1, true, 1e-10));
}

TEST(IsPointOnArc, StartEqualToEndIsThatOneAngle)
{
    EXPECT_TRUE(IsPointOnArc(0, 0, 2, 0, 0, 2, 0, false, 1e-10));
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, 0, 0, 0, 2, false, 1e-10));
}

TEST(IsPointOnArc, CircleIsTestedUnlessKnown)
{
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, 0, 3, 5, 5, false, 1e-10));
    EXPECT_TRUE(IsPointOnArc(0, 0, 2, 0, 3, 5, 5, true, 1e-10));
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, nan, 3, 5, 5, true, 1e-10));
    EXPECT_FALSE(IsPointOnArc(0, 0, 2, 0, 3, 5, nan, true, 1e-10));
}

TEST(IsPointOnEllipse, CarriesThePointToTheUnitCircle)
{
    EXPECT_TRUE(IsPointOnEllipse(1, 2, 5, 3, 0, 6, 2, 1e-10));
    EXPECT_TRUE(IsPointOnEllipse(1, 2, 5, 3, 0, 1, -1, 1e-10));
    EXPECT_FALSE(IsPointOnEllipse(1, 2, 5, 3, 0, 1, -3, 1e-10));
    EXPECT_TRUE(IsPointOnEllipse(1, 2, 5, 3, pi / 2, 1, 7, 1e-10)); // rotated counter-clockwise
    EXPECT_TRUE(IsPointOnEllipse(1, 2, 5, 3, pi / 2, -2, 2, 1e-10));
    const double c = std::cos(0.5), s = std::sin(0.5), t = 2.5;
    const double x = 1 + 5 * c * std::cos(t) - 3 * s * std::sin(t);
    const double y = 2 + 5 * s * std::cos(t) + 3 * c * std::sin(t);
    EXPECT_TRUE(IsPointOnEllipse(1, 2, 5, 3, 0.5, x, y, 1e-10));
    EXPECT_FALSE(IsPointOnEllipse(1, 2, 5, 3, -0.5, x, y, 1e-10));
}

TEST(IsPointOnEllipse, ToleranceIsOnTheUnitCircleAndStrict)
{
    EXPECT_FALSE(IsPointOnEllipse(0, 0, 4, 2, 0, 2, 0, 0.75)); // u^2 = 0.25
    EXPECT_TRUE(IsPointOnEllipse(0, 0, 4, 2, 0, 2, 0, 0.7500001));
    EXPECT_FALSE(IsPointOnEllipse(0, 0, 0, 2, 0, 0, 2, 1)); // a zero semi-axis divides by zero
}

TEST(IsPointOnEllipticalArc, LimitsAreValuesOfTheParameter)
{
    // the point of t = 1 of a flat ellipse lies at the polar angle 0.15
    const double x = 10 * std::cos(1.0), y = std::sin(1.0);
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 10, 1, 0, 0.9, 1.1, x, y, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 10, 1, 0, 0, 0.9, x, y, true, 1e-10));
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 10, 1, 0, 5.2, 5.4, x, -y, true, 1e-10)); // 2 pi - 1
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 10, 1, 0, 0.9, 1.1, x, -y, true, 1e-10));
}

TEST(IsPointOnEllipticalArc, EndsBelongToItWithoutTolerance)
{
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, 1, 4, 0, true, 1e-10));
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 1, 3.141592653589793, -4, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 1, 3.1415926535897927, -4, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 1e-60, 1, 4, 0, true, 1e-10));
    // (-1, 0) has the parameter acos(-1), which is this pi, (1, 0) has 0.
    for (const double end : {6.0, 1.0})
        EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, pi, end, -1, 0, true, 1e-10)) << end;
    for (const double start : {1.0, 4.0})
        EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, start, pi, -1, 0, true, 1e-10)) << start;
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, 3.0, 0.0, 1, 0, true, 1e-10));
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, 0.0, 3.0, 1, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, std::nextafter(pi, 4.0), 1.0, -1, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 1, 1, 0, 4.0, std::nextafter(pi, 0.0), -1, 0, true, 1e-10));
}

TEST(IsPointOnEllipticalArc, StartAboveEndPassesThroughZero)
{
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 6, 1, 4, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 6, 1, -4, 0, true, 1e-10));
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 4, 1, 0, -2, true, 1e-10)); // 3 pi / 2
}

TEST(IsPointOnEllipticalArc, StartEqualToEndIsTheWholeEllipse)
{
    for (double start : {0.0, 2.0, 100.0, -3.0}) {
        for (int degrees = 5; degrees < 360; degrees += 10) {
            const double t = degrees * pi / 180;
            EXPECT_TRUE(IsPointOnEllipticalArc(1, 2, 4, 2, 0, start, start, 1 + 4 * std::cos(t), 2 + 2 * std::sin(t),
                                               true, 1e-10))
                << start << ", " << degrees;
        }
    }
}

TEST(IsPointOnEllipticalArc, EllipseIsTestedWhateverTheFlagSays)
{
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, 3, 1, 1, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, 3, 1, 1, false, 1e-10));
    EXPECT_TRUE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, 3, 4, 0, false, 1e-10));
}

TEST(IsPointOnEllipticalArc, PointBeyondTheUnitCircleLiesOnNoArc)
{
    const double x = 4 * (1 + 1e-12); // within the tolerance, but the arc cosine is not a number
    EXPECT_TRUE(IsPointOnEllipse(0, 0, 4, 2, 0, x, 0, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, 6, x, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 2, 2, x, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, nan, 6, 4, 0, true, 1e-10));
    EXPECT_FALSE(IsPointOnEllipticalArc(0, 0, 4, 2, 0, 0, nan, 4, 0, true, 1e-10));
}

// Distances and feet

TEST(CalculateDistanceToLine, IsThePerpendicularDistance)
{
    EXPECT_DOUBLE_EQ(5.0, Calculate_Distance_To_Line(7, 1, 0, 0, 3, 4)); // |4 * 7 - 3| / 5
    EXPECT_EQ(0.0, Calculate_Distance_To_Line(6, 8, 0, 0, 3, 4));
    EXPECT_EQ(3.0, Calculate_Distance_To_Line(5, 9, 2, 0, 2, 4));
    EXPECT_EQ(6.0, Calculate_Distance_To_Line(5, 9, 2, 3, 4, 3));
}

TEST(CalculateDistanceToLine, CoincidentEndPointsCountAsVertical)
{
    EXPECT_EQ(3.0, Calculate_Distance_To_Line(5, 9, 2, 3, 2, 3));
    EXPECT_EQ(5.0, Calculate_Distance_To_Line(5, 9, 0, 3, 9.9e-51, 300));
    EXPECT_EQ(6.0, Calculate_Distance_To_Line(5, 9, 0, 3, 1e-50, 3)); // a horizontal line, if only just
    EXPECT_EQ(9.0, Calculate_Distance_To_Line(5, 9, 0, 0, 4, 9.9e-51));
}

TEST(CalculateDistanceToLine, ADifferenceAtTheBoundIsSloped)
{
    EXPECT_NEAR(4.0, Calculate_Distance_To_Line(1e50, 5, 0, 0, 1, 1e-50), 1e-14); // rises by 1 up to there
    EXPECT_EQ(5.0, Calculate_Distance_To_Line(1e50, 5, 0, 0, 1, 9.9e-51));
    EXPECT_NEAR(4.0, Calculate_Distance_To_Line(5, 1e50, 0, 0, 1e-50, 1), 1e-14);
    EXPECT_EQ(5.0, Calculate_Distance_To_Line(5, 1e50, 0, 0, 9.9e-51, 1));
}

TEST(CalculateMirrorPointToLine, MirrorsAtHorizontalVerticalAndSlopedLines)
{
    double x = 0, y = 0;
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 0, 2, 5, 2, x, y));
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(-3.0, y);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 2, 0, 2, -5, x, y));
    EXPECT_EQ(1.0, x);
    EXPECT_EQ(7.0, y);
    for (double direction : {1.0, -1.0}) { // either side, either direction
        EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 1, 0, 0, direction, direction, x, y));
        EXPECT_NEAR(1.0, x, 1e-15);
        EXPECT_NEAR(3.0, y, 1e-15);
        EXPECT_TRUE(Calculate_Mirror_Point_To_Line(1, 3, 0, 0, direction, direction, x, y));
        EXPECT_NEAR(3.0, x, 1e-15);
        EXPECT_NEAR(1.0, y, 1e-15);
    }
}

TEST(CalculateMirrorPointToLine, CoincidentEndPointsCountAsHorizontal)
{
    double x = 0, y = 0;
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 1, 2, 1, 2, x, y));
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(-3.0, y);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 0, 0, 5, 5e-51 * 1.9, x, y)); // the direction counts, not the line
    EXPECT_EQ(-7.0, y);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 0, 0, 9e-51, 0, x, y)); // too short to be normalised
    EXPECT_EQ(-7.0, y);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, 0, 0, 0, 2e-50, x, y)); // long enough: vertical
    EXPECT_EQ(-3.0, x);
}

TEST(CalculateMirrorPointToLine, LengthAtTheBoundIsNormalisedAndOneThatIsNoNumberIsNot)
{
    double x = 0, y = 0;
    // sqrt(6e-51 * 6e-51 + 8e-51 * 8e-51) is 1e-50: a slope, not the horizontal that 8e-51 would be
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(1, 0, 0, 0, 6e-51, 8e-51, x, y));
    EXPECT_NEAR(-0.6, x, 1e-15); // by twice (-0.8, 0.6): the distance takes so short a line as vertical, so it is 1
    EXPECT_NEAR(1.2, y, 1e-15);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(1, 7, 0, 0, 5e-51, 8e-51, x, y)); // shorter: horizontal
    EXPECT_EQ(1.0, x);
    EXPECT_EQ(-7.0, y);
    EXPECT_TRUE(Calculate_Mirror_Point_To_Line(3, 7, inf, 2, inf, 2, x, y)); // (inf - inf, 0) stays: horizontal
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(-3.0, y);
}

TEST(CalculateMirrorPointToLine, ADifferenceAtTheBoundIsSloped)
{
    double x = untouched, y = untouched;
    Calculate_Mirror_Point_To_Line(1e50, 0, 0, 0, 1, 1e-50, x, y); // the line rises by 1 up to there
    EXPECT_NEAR(2.0, y, 1e-14);
    Calculate_Mirror_Point_To_Line(1e50, 0, 0, 0, 1, 9.9e-51, x, y);
    EXPECT_EQ(0.0, y);
    Calculate_Mirror_Point_To_Line(0, 1e50, 0, 0, 1e-50, 1, x, y);
    EXPECT_NEAR(2.0, x, 1e-14);
    Calculate_Mirror_Point_To_Line(0, 1e50, 0, 0, 9.9e-51, 1, x, y);
    EXPECT_EQ(0.0, x);
}

TEST(CalculateMirrorPointToLine, OutputsMayBeInputs)
{
    double x = 3, y = 1;
    Calculate_Mirror_Point_To_Line(x, y, 0, 0, 1, 1, x, y);
    EXPECT_NEAR(1.0, x, 1e-15);
    EXPECT_NEAR(3.0, y, 1e-15);
}

TEST(CalculatePerpendicularPointToLine, GivesTheFootOnTheUnboundedLine)
{
    double x = 0, y = 0;
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(3, 7, 0, 2, 1, 2, x, y, false));
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(2.0, y);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(3, 7, 2, 0, 2, 1, x, y, false));
    EXPECT_EQ(2.0, x);
    EXPECT_EQ(7.0, y);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(7, 1, 0, 0, 3, 4, x, y, false));
    EXPECT_NEAR(3.0, x, 1e-14);
    EXPECT_NEAR(4.0, y, 1e-14);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(3, 7, 1, 2, 1, 2, x, y, false)); // coincident: horizontal
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(2.0, y);
}

TEST(CalculatePerpendicularPointToLine, TestsTheSegmentOnRequestAndWritesTheFootInEitherCase)
{
    double x = 0, y = 0;
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(3, 7, 0, 2, 5, 2, x, y, true));
    EXPECT_EQ(0, Calculate_Perpendicular_Point_To_Line(6, 7, 0, 2, 5, 2, x, y, true));
    EXPECT_EQ(6.0, x);
    EXPECT_EQ(2.0, y);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(6, 7, 0, 2, 5, 2, x, y, false));
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(5 + 0.9e-10, 7, 0, 2, 5, 2, x, y, true));
    EXPECT_EQ(0, Calculate_Perpendicular_Point_To_Line(5 + 1.1e-10, 7, 0, 2, 5, 2, x, y, true));
}

TEST(CalculatePerpendicularPointToLine, LengthAtTheBoundIsNormalisedAndOneThatIsNoNumberIsNot)
{
    double x = 0, y = 0;
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(1, 0, 0, 0, 6e-51, 8e-51, x, y, false));
    EXPECT_NEAR(0.36, x, 1e-15);
    EXPECT_NEAR(0.48, y, 1e-15);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(1, 7, 0, 0, 5e-51, 8e-51, x, y, false)); // shorter: horizontal
    EXPECT_EQ(1.0, x);
    EXPECT_EQ(0.0, y);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(3, 7, inf, 2, inf, 2, x, y, false));
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(2.0, y);
    EXPECT_EQ(0, Calculate_Perpendicular_Point_To_Line(3, 7, inf, 2, inf, 2, x, y, true)); // not in the box at infinity
}

TEST(CalculatePerpendicularPointToLine, ADifferenceAtTheBoundIsSloped)
{
    double x = untouched, y = untouched;
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(1e50, 0, 0, 0, 1, 1e-50, x, y, false));
    EXPECT_NEAR(1.0, y, 1e-14); // the line rises by 1 up to there
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(1e50, 0, 0, 0, 1, 9.9e-51, x, y, false));
    EXPECT_EQ(0.0, y);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(0, 1e50, 0, 0, 1e-50, 1, x, y, false));
    EXPECT_NEAR(1.0, x, 1e-14);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(0, 1e50, 0, 0, 9.9e-51, 1, x, y, false));
    EXPECT_EQ(0.0, x);
}

TEST(CalculatePerpendicularPointToLine, OutputsMayBeInputs)
{
    double x = 7, y = 1, x2 = 3, y2 = 4;
    EXPECT_EQ(0, Calculate_Perpendicular_Point_To_Line(10, 10, 0, 0, x2, y2, x2, y2, true)); // the foot is (8.4, 11.2)
    EXPECT_NEAR(8.4, x2, 1e-14);
    EXPECT_EQ(1, Calculate_Perpendicular_Point_To_Line(x, y, 0, 0, 3, 4, x, y, false));
    EXPECT_NEAR(3.0, x, 1e-14);
    EXPECT_NEAR(4.0, y, 1e-14);
}

// Circles

TEST(CalculateCircleBy3Points, GivesCentreAndRadius)
{
    double cx = 0, cy = 0, radius = 0;
    EXPECT_TRUE(Calculate_Circle_By_3Points(6, 2, 1, 7, -4, 2, cx, cy, radius));
    EXPECT_EQ(1.0, cx);
    EXPECT_EQ(2.0, cy);
    EXPECT_EQ(5.0, radius);
}

TEST(CalculateCircleBy3Points, PointsOnOneLineAreTrueToo)
{
    double cx = 0, cy = 0, radius = 0;
    EXPECT_TRUE(Calculate_Circle_By_3Points(0, 0, 1, 1, 3, 3, cx, cy, radius));
    EXPECT_TRUE(std::isinf(cx));
    EXPECT_TRUE(std::isinf(cy));
    EXPECT_EQ(inf, radius);
    EXPECT_TRUE(Calculate_Circle_By_3Points(2, 2, 2, 2, 2, 2, cx, cy, radius));
    EXPECT_TRUE(std::isnan(radius));
}

TEST(CalculateCircleBy3Points, OutputsMayBeInputs)
{
    double x1 = 6, y1 = 2, y3 = 2;
    Calculate_Circle_By_3Points(x1, y1, 1, 7, -4, y3, x1, y1, y3);
    EXPECT_EQ(1.0, x1);
    EXPECT_EQ(2.0, y1);
    EXPECT_EQ(5.0, y3);
}

TEST(CalculateCentrepointOfArc, LiesLeftOfTheDirection)
{
    double cx = 0, cy = 0;
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 2, 0, 2, cx, cy));
    EXPECT_NEAR(1.0, cx, 1e-15);
    EXPECT_NEAR(std::sqrt(3.0), cy, 1e-15);
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(2, 0, 0, 0, 2, cx, cy));
    EXPECT_NEAR(1.0, cx, 1e-15);
    EXPECT_NEAR(-std::sqrt(3.0), cy, 1e-15);
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 0, 2, -2, cx, cy)); // the square of the radius alone counts
    EXPECT_NEAR(-std::sqrt(3.0), cx, 1e-15);
    EXPECT_NEAR(1.0, cy, 1e-15);
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 2, 0, 0, 2, cx, cy));
    EXPECT_NEAR(std::sqrt(3.0), cx, 1e-15);
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(5, 1, 1, 5, 4, cx, cy)); // (1, 1) and (5, 5) are the two centres
    EXPECT_NEAR(1.0, cx, 1e-14);
    EXPECT_NEAR(1.0, cy, 1e-14);
}

TEST(CalculateCentrepointOfArc, LeavesTheCentreWhereThePointsAreTooFarApart)
{
    double cx = untouched, cy = untouched;
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 4.1, 0, 2, cx, cy));
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 0, 4.1, 2, cx, cy));
    EXPECT_EQ(untouched, cx);
    EXPECT_EQ(untouched, cy);
}

TEST(CalculateCentrepointOfArc, LeavesTheCentreOfCoincidentPoints)
{
    double cx = untouched, cy = untouched;
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(1, 1, 1, 1, 2, cx, cy)); // 0 / 0 in every coefficient: no equation left
    EXPECT_EQ(untouched, cx);
    EXPECT_EQ(untouched, cy);
}

TEST(CalculateCentrepointOfArc, EliminatesXFromADifferenceAtTheBoundOn)
{
    double cx = untouched, cy = untouched;
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 9.9e-51, 0, 2, cx, cy)); // as vertical it divides by dy = 0
    EXPECT_TRUE(std::isnan(cx));
    EXPECT_TRUE(std::isnan(cy));
    EXPECT_TRUE(Calculate_Centrepoint_Of_Arc(0, 0, 1e-50, 0, 2, cx, cy));
    EXPECT_NEAR(5e-51, cx, 1e-65);
    EXPECT_EQ(2.0, cy);
}

TEST(CalculateCentrepointOfArc, OutputsMayBeInputs)
{
    double x1 = 5, y2 = 5;
    Calculate_Centrepoint_Of_Arc(x1, 1, 1, y2, 4, x1, y2);
    EXPECT_NEAR(1.0, x1, 1e-14);
    EXPECT_NEAR(1.0, y2, 1e-14);
}

// Calculators

TEST(KarCalculator, HasNoFieldsAndAssignsNothing)
{
    static_assert(std::is_empty<karCalculator2D>::value && std::is_empty<karCalculator3D>::value, "no fields");
    karCalculator2D plane, otherPlane;
    EXPECT_EQ(&plane, &(plane = otherPlane));
    karCalculator3D space, otherSpace;
    EXPECT_EQ(&space, &(space = otherSpace));
}

TEST(KarCalculator2D, ArcCentreFollowsTheSignedAngle)
{
    karCalculator2D calculator;
    const auto expectCentre = [&](double angle, double x, double y) {
        const karD_Point centre = calculator.GetArcCentrePoint(karD_Point(1, 1), karD_Point(3, 1), angle);
        EXPECT_NEAR(x, centre.x(), 1e-14) << angle;
        EXPECT_NEAR(y, centre.y(), 1e-14) << angle;
    };
    expectCentre(pi / 2, 2, 2);                  // 0 < angle < pi: left
    expectCentre(1.5 * pi, 2, 0);                // angle >= pi: right
    expectCentre(-pi / 2, 2, 0);                 // -pi <= angle <= 0: right
    expectCentre(-1.5 * pi, 2, 2);               // angle < -pi: left
    expectCentre(pi / 3, 2, 1 + std::sqrt(3.0)); // h = L * sqrt(3) / 2
}

TEST(KarCalculator2D, ArcCentreOfHalfATurnIsTheMiddleOrNotANumber)
{
    karCalculator2D calculator;
    const karD_Point half = calculator.GetArcCentrePoint(karD_Point(1, 1), karD_Point(3, 1), pi);
    EXPECT_NEAR(2.0, half.x(), 1e-7);
    EXPECT_NEAR(1.0, half.y(), 1e-7);
    const karD_Point none = calculator.GetArcCentrePoint(karD_Point(1, 1), karD_Point(3, 1), 0);
    EXPECT_EQ(-inf, none.y()); // an infinite radius; angle 0 counts as the right side
    const karD_Point coincident = calculator.GetArcCentrePoint(karD_Point(1, 1), karD_Point(1, 1), 1);
    EXPECT_EQ(1.0, coincident.x());
}

TEST(KarCalculator2D, GetAngleIsABearingFromTheYAxis)
{
    const karCalculator2D calculator;
    EXPECT_DOUBLE_EQ(pi / 4, calculator.GetAngle(karD_Point(2, 2), karD_Point(1, 1)));
    EXPECT_DOUBLE_EQ(pi / 2, calculator.GetAngle(karD_Point(5, 1), karD_Point(1, 1)));
    EXPECT_DOUBLE_EQ(1.5 * pi, calculator.GetAngle(karD_Point(-5, 1), karD_Point(1, 1)));
    EXPECT_DOUBLE_EQ(std::atan2(3, 4), calculator.GetAngle(karD_Point(4, 5), karD_Point(1, 1)));
}

TEST(KarCalculator2D, GetAngleOfPointsAboveEachOtherHasTwoConstants)
{
    const karCalculator2D calculator;
    EXPECT_EQ(0.7853981633974483, calculator.GetAngle(karD_Point(3, 9), karD_Point(3, 1))); // a above b
    EXPECT_EQ(2.356194490192345, calculator.GetAngle(karD_Point(3, 1), karD_Point(3, 9)));
    EXPECT_EQ(2.356194490192345, calculator.GetAngle(karD_Point(3, 1), karD_Point(3, 1)));
    EXPECT_EQ(0.7853981633974483, calculator.GetAngle(karD_Point(9.9e-51, 9), karD_Point(0, 1)));
    EXPECT_NE(0.7853981633974483, calculator.GetAngle(karD_Point(1e-50, 9), karD_Point(0, 1)));
}

TEST(KarCalculator3D, GetAngleHasItsVertexInTheFirstPoint)
{
    karCalculator3D calculator;
    const kar3D_Point a(1, 1, 1), b(3, 1, 1), c(1, 4, 1), d(1, 1, 7);
    EXPECT_DOUBLE_EQ(pi / 2, calculator.GetAngle(a, b, c));
    EXPECT_DOUBLE_EQ(1.5 * pi, calculator.GetAngle(a, b, d));
    EXPECT_DOUBLE_EQ(pi / 2, calculator.GetAngle(a, d, b));
}

TEST(KarCalculator3D, SpatProductIsTheOrientedVolume)
{
    karCalculator3D calculator;
    const kar3DVector x(2, 0, 0, false), y(0, 3, 0, false), z(0, 0, 4, false);
    EXPECT_EQ(24.0, calculator.SpatProduct(x, y, z));
    EXPECT_EQ(24.0, calculator.SpatProduct(y, z, x));
    EXPECT_EQ(-24.0, calculator.SpatProduct(y, x, z));
    const kar3DVector u(1, 2, 3, false), v(4, 5, 6, false), w(7, 8, 10, false);
    EXPECT_EQ(-3.0, calculator.SpatProduct(u, v, w));
}

} // namespace
