// The turned box: its corners on the grid, the box around it, what lies in it and where it can be seen.
#include "karrectx.h"

#include "goldenrun.h"
#include "testrandom.h"
#include "teststeps.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

constexpr double quarterTurn = 1.5707963267948966;
constexpr double halfTurn = 3.141592653589793;
constexpr double threeQuarterTurn = 4.71238898038469;
constexpr double fullTurn = 6.283185307179586;
constexpr double infinity = std::numeric_limits<double>::infinity();

void expectBox(const karRectX &box, int x, int y, int width, int height, double angle)
{
    EXPECT_EQ(box.x(), x);
    EXPECT_EQ(box.y(), y);
    EXPECT_EQ(box.Width(), width);
    EXPECT_EQ(box.Height(), height);
    EXPECT_EQ(box.Ang(), angle);
}

bool isIn(karPoint p, karRectX box) { return p.isFullIn(box); }

bool isSeen(karRectX box, karRect in)
{
    const bool seen = box.isVisibleIn(in);
    EXPECT_EQ(in.isVisibleIn(box), seen) << "asked the other way round";
    return seen;
}

double normalisedAngle(double angle)
{
    karRectX box(karPoint(0, 0), 0, 0, angle);
    box.normLage();
    return box.Ang();
}

} // namespace

static_assert(!std::is_polymorphic<karRectX>::value, "nothing virtual");
static_assert(!std::is_default_constructible<karRectX>::value, "always a box");
static_assert(std::is_same<decltype(karRectX(karPoint(), 0, 0, 0.0).CanCast(KAR_ID_RECT)), int>::value, "1 or 0");

TEST(KarRectX, StoresOriginSizeAndAngle)
{
    expectBox(karRectX(karPoint(1, 2), karDimension(3, 4), 0.5), 1, 2, 3, 4, 0.5);
    const karRectX box(karPoint(1, 2), 3, -4, -7.5);
    expectBox(box, 1, 2, 3, -4, -7.5);
    EXPECT_EQ(box.Dim(), karDimension(3, -4));
    const karRectX copy(box);
    expectBox(copy, 1, 2, 3, -4, -7.5);
    karRectX assigned(karPoint(), 0, 0, 0.0);
    EXPECT_EQ(&(assigned = box), &assigned);
    expectBox(assigned, 1, 2, 3, -4, -7.5);
}

TEST(KarRectX, HoldsTheOriginTheSizeAndTheAngleInThisOrder)
{
    const karRectX box(karPoint(1, 2), 3, 4, 0.5);
    const std::size_t places = sizeof(void *);
    const auto at = [&](std::size_t offset) {
        int value;
        std::memcpy(&value, reinterpret_cast<const char *>(&box) + offset, sizeof value);
        return value;
    };
    EXPECT_EQ(at(places), 1);
    EXPECT_EQ(at(places + 4), 2);
    EXPECT_EQ(at(sizeof(karPoint) + places), 3);
    EXPECT_EQ(at(sizeof(karPoint) + places + 4), 4);
    ASSERT_EQ(sizeof box, 2 * sizeof(karPoint) + sizeof(double));
    double angle;
    std::memcpy(&angle, reinterpret_cast<const char *>(&box) + 2 * sizeof(karPoint), sizeof angle);
    EXPECT_EQ(angle, 0.5);
}

TEST(KarRectX, InitTakesAWholeNumberAsRadians)
{
    karRectX box(karPoint(9, 9), 9, 9, 9.0);
    box.init(karPoint(1, 2), karDimension(3, 4), 0.5);
    expectBox(box, 1, 2, 3, 4, 0.5);
    box.init(5, 6, 7, 8, 2);
    expectBox(box, 5, 6, 7, 8, 2.0);
    box.Dim(-1, 30);
    expectBox(box, 5, 6, -1, 30, 2.0);
}

TEST(KarRectX, KnowsItsTypeAlone)
{
    const karRectX box(karPoint(), 0, 0, 0.0);
    EXPECT_EQ(box.GetType(), 46);
    EXPECT_EQ(box.GetType(), KAR_ID_RECT_X);
    EXPECT_EQ(box.CanCast(KAR_ID_RECT_X), 1);
    EXPECT_EQ(box.CanCast(KAR_ID_RECT), 0);
    EXPECT_EQ(box.CanCast(KAR_ID_PAIR), 0);
}

TEST(KarRectX, UnturnedCornersStandInOrder)
{
    const karRectX box(karPoint(0, 0), 10, 5, 0.0);
    EXPECT_EQ(box.Point(0), karPoint(0, 0));
    EXPECT_EQ(box.Point(1), karPoint(10, 0));
    EXPECT_EQ(box.Point(2), karPoint(10, 5));
    EXPECT_EQ(box.Point(3), karPoint(0, 5));
}

TEST(KarRectX, OnlyTheTwoLowBitsOfACornerNumberCount)
{
    const karRectX box(karPoint(3, 4), 100, 50, 0.7);
    for (int i = 0; i < 4; ++i)
        for (const int more : {4, 8, 256, -4, INT_MIN})
            EXPECT_EQ(box.Point(i + more), box.Point(i)) << i << " + " << more;
    EXPECT_EQ(box.Point(-1), box.Point(3));
}

// The cosine of pi/4 is 0.7071: 0.7071 * 10 = 7.07 and 0.7071 * 5 = 3.54, each truncated before the sum.
TEST(KarRectX, CornersTruncateEachProductOnItsOwn)
{
    const karRectX box(karPoint(100, 200), 10, 5, 0.7853981633974483);
    EXPECT_EQ(box.Point(0), karPoint(100, 200));
    EXPECT_EQ(box.Point(1), karPoint(107, 207));
    EXPECT_EQ(box.Point(2), karPoint(104, 210)) << "7 - 3 and 7 + 3; the sums are 3.54 and 10.6";
    EXPECT_EQ(box.Point(3), karPoint(97, 203));
}

TEST(KarRectX, CornersWrapBeforeTheyTurn)
{
    const karRectX box(karPoint(INT_MAX, INT_MAX), 1, 1, 0.0);
    EXPECT_EQ(box.Point(1), karPoint(INT_MIN, INT_MAX));
    EXPECT_EQ(box.Point(2), karPoint(INT_MIN, INT_MIN));
    EXPECT_EQ(box.Point(3), karPoint(INT_MAX, INT_MIN));
}

TEST(KarRectX, TurningAnywhereStaysWithinTwoUnitsOfThePlainMatrix)
{
    TestRandom random(1030);
    for (int i = 0, count = testSteps(100000); i < count; ++i) {
        const int x = random.between(-1000, 1000);
        const int y = random.between(-1000, 1000);
        const int width = random.between(-500, 500);
        const int height = random.between(-500, 500);
        const double angle = random.between(-10.0, 10.0);
        const karRectX box(karPoint(x, y), width, height, angle);
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double dx[4] = {0, double(width), double(width), 0};
        const double dy[4] = {0, 0, double(height), double(height)};
        for (int corner = 0; corner < 4; ++corner) {
            ASSERT_NEAR(box.Point(corner).x(), x + dx[corner] * c - dy[corner] * s, 2.0) << "step " << i;
            ASSERT_NEAR(box.Point(corner).y(), y + dx[corner] * s + dy[corner] * c, 2.0) << "step " << i;
        }
    }
}

TEST(KarRectX, NormLageKeepsABoxOfTheFirstQuadrant)
{
    for (const double angle : {0.0, 0.1, 0.3, 0.5, 0.7, 0.9, 1.5707963267948963}) {
        karRectX box(karPoint(1, 2), 30, 40, angle);
        box.normLage();
        expectBox(box, 1, 2, 30, 40, angle);
    }
}

TEST(KarRectX, NormLageBeginsAtTheCornerOfTheQuadrant)
{
    karRectX second(karPoint(100, 200), 30, 40, quarterTurn + 0.25);
    const karPoint corner3 = second.Point(3);
    second.normLage();
    expectBox(second, corner3.x(), corner3.y(), 40, 30, quarterTurn + 0.25 - quarterTurn);

    karRectX third(karPoint(100, 200), 30, 40, halfTurn + 0.25);
    const karPoint corner2 = third.Point(2);
    third.normLage();
    expectBox(third, corner2.x(), corner2.y(), 30, 40, halfTurn + 0.25 - halfTurn);

    karRectX fourth(karPoint(100, 200), 30, 40, threeQuarterTurn + 0.25);
    const karPoint corner1 = fourth.Point(1);
    fourth.normLage();
    expectBox(fourth, corner1.x(), corner1.y(), 40, 30, threeQuarterTurn + 0.25 - threeQuarterTurn);
}

TEST(KarRectX, NormLageOfTheQuarterTurnsLeavesAnUnturnedBox)
{
    karRectX quarter(karPoint(0, 0), 10, 5, quarterTurn);
    quarter.normLage();
    expectBox(quarter, -5, 0, 5, 10, 0.0);

    karRectX half(karPoint(0, 0), 10, 5, halfTurn);
    half.normLage();
    expectBox(half, half.x(), half.y(), 10, 5, 0.0);
    EXPECT_NEAR(half.x(), -10, 1);
    EXPECT_NEAR(half.y(), -5, 1);

    karRectX threeQuarters(karPoint(0, 0), 10, 5, threeQuarterTurn);
    threeQuarters.normLage();
    expectBox(threeQuarters, threeQuarters.x(), threeQuarters.y(), 5, 10, 0.0);
    EXPECT_NEAR(threeQuarters.x(), 0, 1);
    EXPECT_NEAR(threeQuarters.y(), -10, 1);
}

TEST(KarRectX, NormLageTakesFullTurnsOffOneByOne)
{
    EXPECT_EQ(normalisedAngle(7.0), 7.0 - fullTurn);
    EXPECT_EQ(normalisedAngle(fullTurn), 0.0);
    EXPECT_EQ(normalisedAngle(-6.0), -6.0 + fullTurn);
    EXPECT_EQ(normalisedAngle(-1e-20), 0.0) << "the sum is a full turn itself, which goes again";
    EXPECT_EQ(normalisedAngle(13.0), 13.0 - fullTurn - fullTurn);
}

// The loops as they stand, on angles that leave them few enough turns.
TEST(KarRectX, NormLageOfLargeAnglesEqualsTurnByTurn)
{
    const auto plain = [](double angle) {
        while (angle < 0)
            angle = angle + fullTurn;
        while (angle >= fullTurn)
            angle = angle - fullTurn;
        if (angle < quarterTurn)
            return angle;
        if (angle < halfTurn)
            return angle - quarterTurn;
        return angle < threeQuarterTurn ? angle - halfTurn : angle - threeQuarterTurn;
    };
    TestRandom random(1031);
    for (int exponent = 2; exponent <= 21; ++exponent)
        for (int i = 0; i < (exponent < 15 ? 20 : 2); ++i) {
            const double angle = std::ldexp(i == 0 ? 1.0 : random.between(1.0, 2.0), exponent);
            ASSERT_EQ(normalisedAngle(angle), plain(angle)) << "2^" << exponent << ", step " << i;
            ASSERT_EQ(normalisedAngle(-angle), plain(-angle)) << "-2^" << exponent << ", step " << i;
        }
    const double beside = std::nextafter(1048576.0, 0.0);
    EXPECT_EQ(normalisedAngle(beside), plain(beside));
}

// Taking one turn off an angle of any size changes nothing, above, across and below each power of two, where the
// rounding of the difference changes.
TEST(KarRectX, NormLageOfHugeAnglesStaysTheSameTurnByTurn)
{
    TestRandom random(1035);
    for (int exponent = 3; exponent <= 56; ++exponent)
        for (int i = 0; i < 20; ++i) {
            const double power = std::ldexp(1.0, exponent);
            double angle = i < 10 ? power + random.between(0.0, 60.0) : power * random.between(1.0, 2.0);
            if (exponent == 56)
                angle = power;
            const double normal = normalisedAngle(angle);
            const double negative = normalisedAngle(-angle);
            for (int step = 0; step < 20 && angle >= fullTurn; ++step) {
                angle = angle - fullTurn;
                ASSERT_EQ(normalisedAngle(angle), normal) << "2^" << exponent << ", " << i << ", step " << step;
                ASSERT_EQ(normalisedAngle(-angle), negative) << "-2^" << exponent << ", " << i << ", step " << step;
            }
        }
}

// From 2^54 on an angle is a multiple of 4 or 8, and a full turn takes 8 off. From 2^56 + 16 on it takes nothing.
TEST(KarRectX, NormLageEndsWhereAFullTurnNoLongerChangesTheAngle)
{
    const double last = std::ldexp(1.0, 56);
    const double normal = normalisedAngle(last);
    EXPECT_GE(normal, 0.0);
    EXPECT_LT(normal, quarterTurn);
    for (const double angle : {last + 16, 1e18, 1e300, infinity}) {
        EXPECT_EQ(normalisedAngle(angle), angle - threeQuarterTurn) << angle;
        EXPECT_EQ(normalisedAngle(-angle), -angle) << angle;
    }
    karRectX box(karPoint(3, 4), 10, 5, std::numeric_limits<double>::quiet_NaN());
    box.normLage();
    EXPECT_TRUE(std::isnan(box.Ang()));
    EXPECT_EQ(box.Dim(), karDimension(5, 10)) << "it counts to the last quadrant";
    EXPECT_EQ(karPoint(box.x(), box.y()), karPoint(3, 4)) << "what isn't a number turns to 0";
}

TEST(KarRectX, NormLageMovesTheCornersByTwoUnitsAtMost)
{
    TestRandom random(1032);
    for (int i = 0, count = testSteps(100000); i < count; ++i) {
        karRectX box(karPoint(random.between(-1000, 1000), random.between(-1000, 1000)), random.between(0, 500),
                     random.between(0, 500), random.between(-20.0, 20.0));
        const karRectX before = box;
        box.normLage();
        ASSERT_GE(box.Ang(), 0.0);
        ASSERT_LT(box.Ang(), quarterTurn);
        int shift = 0;
        while (shift < 4 && before.Point(shift).DistMax(box.Point(0)) > 0)
            ++shift;
        ASSERT_LT(shift, 4) << "step " << i << ": the new origin is one of the corners";
        for (int corner = 0; corner < 4; ++corner) {
            // The corner that the new origin was is told by the quadrant; any that fits will do for equal corners.
            int nearest = INT_MAX;
            for (int old = 0; old < 4; ++old)
                nearest = std::min(nearest, before.Point(old).DistMax(box.Point(corner)));
            ASSERT_LE(nearest, 2) << "step " << i;
        }
    }
}

TEST(KarRectX, ExtentOfAnUnturnedBoxIsTheBox)
{
    EXPECT_EQ(karRectX(karPoint(0, 0), 10, 5, 0.0).extent(), karRect(0, 0, 10, 5));
    EXPECT_EQ(karRectX(karPoint(0, 0), -10, -5, 0.0).extent(), karRect(-10, -5, 0, 0)) << "ordered";
}

TEST(KarRectX, ExtentTakesTheCornersOfItsQuadrant)
{
    // A quarter turn: P0 and P1 share their x.
    EXPECT_EQ(karRectX(karPoint(0, 0), 10, 5, quarterTurn).extent(), karRect(-5, 0, 0, 10));
    // pi/4: (0, 0), (70, 70), (35, 105), (-35, 35). P3 isn't between P0 and P2: (P1.x, P0.y, P3.x, P2.y).
    EXPECT_EQ(karRectX(karPoint(0, 0), 100, 50, 0.7853981633974483).extent(), karRect(-35, 0, 70, 105));
    // -pi/4: (0, 0), (70, -70), (105, -35), (35, 35). P1 and P3 are: (P0.x, P1.y, P2.x, P3.y).
    EXPECT_EQ(karRectX(karPoint(0, 0), 100, 50, -0.7853981633974483).extent(), karRect(0, -70, 105, 35));
    // 3 pi/4: (0, 0), (-70, 70), (-105, 35), (-35, -35), between again.
    EXPECT_EQ(karRectX(karPoint(0, 0), 100, 50, 2.356194490192345).extent(), karRect(-105, -35, 0, 70));
}

// The corners are (0, 0), (19, 0), (0, 499), (-19, 499): the second, truncated, lies on the row of the first.
TEST(KarRectX, ExtentOfABoxThatHardlyTurnsGoesByTwoCorners)
{
    const karRectX box(karPoint(0, 0), 20, 500, 0.04);
    ASSERT_EQ(box.Point(1), karPoint(19, 0));
    ASSERT_EQ(box.Point(2), karPoint(0, 499));
    ASSERT_EQ(box.Point(3), karPoint(-19, 499));
    EXPECT_EQ(box.extent(), karRect(0, 0, 0, 499));
}

TEST(KarRectX, ExtentOfABoxWellTurnedHoldsTheFourCorners)
{
    TestRandom random(1033);
    for (int i = 0, count = testSteps(100000); i < count; ++i) {
        const double angle = random.between(-7.0, 7.0);
        if (std::fabs(std::sin(2 * angle)) < 0.2)
            continue;
        const karRectX box(karPoint(random.between(-1000, 1000), random.between(-1000, 1000)), random.between(20, 500),
                           random.between(20, 500), angle);
        const karRect extent = box.extent();
        for (int corner = 0; corner < 4; ++corner) {
            const karPoint p = box.Point(corner);
            ASSERT_TRUE(p.x() >= extent.left() - 2 && p.x() <= extent.right() + 2 && p.y() >= extent.top() - 2 &&
                        p.y() <= extent.bottom() + 2)
                << "step " << i << ", corner " << corner;
        }
    }
}

TEST(KarRectX, APointOnTheEdgeOfAnUnturnedBoxIsInIt)
{
    const karRectX box(karPoint(0, 0), 10, 5, 0.0);
    EXPECT_TRUE(isIn(karPoint(10, 5), box));
    EXPECT_TRUE(isIn(karPoint(0, 0), box));
    EXPECT_TRUE(isIn(karPoint(5, 0), box));
    EXPECT_FALSE(isIn(karPoint(11, 5), box));
    EXPECT_FALSE(isIn(karPoint(-1, 0), box));
    EXPECT_FALSE(isIn(karPoint(10, 6), box));
    EXPECT_FALSE(isIn(karPoint(0, -1), box));
}

// With a tangent of 0 the first step decides, for boxes of any shape, and nothing is divided.
TEST(KarRectX, ATangentOf0LeavesTheFirstStep)
{
    const karRectX inverted(karPoint(0, 0), -10, -5, 0.0);
    EXPECT_TRUE(isIn(karPoint(-10, -5), inverted));
    EXPECT_TRUE(isIn(karPoint(-3, -2), inverted));
    EXPECT_FALSE(isIn(karPoint(1, -2), inverted));
    const karRectX flat(karPoint(0, 0), 10, 0, 0.0);
    EXPECT_TRUE(isIn(karPoint(4, 0), flat));
    EXPECT_FALSE(isIn(karPoint(4, 1), flat));
    const karRectX turned(karPoint(0, 0), 10, 5, fullTurn);
    EXPECT_TRUE(isIn(karPoint(10, 5), turned));
}

// A tangent of 0.5: the corners of (1000 by 500) at atan(0.5) are (0, 0), (894, 447), (671, 894), (-223, 447).
TEST(KarRectX, APointIsComparedWithTheLimitsAtItsY)
{
    const karRectX box(karPoint(0, 0), 1000, 500, 0.4636476090008061);
    ASSERT_EQ(box.Point(1), karPoint(894, 447));
    ASSERT_EQ(box.Point(2), karPoint(671, 894));
    ASSERT_EQ(box.Point(3), karPoint(-223, 447));
    // At y 100 the left limit is 0 - 100 * 0.5, the right one 0 + 100 / 0.5.
    EXPECT_TRUE(isIn(karPoint(-50, 100), box));
    EXPECT_FALSE(isIn(karPoint(-51, 100), box));
    EXPECT_TRUE(isIn(karPoint(200, 100), box));
    EXPECT_FALSE(isIn(karPoint(201, 100), box));
    // At y 647 the left limit is -223 + 200 / 0.5, the right one 894 - 200 * 0.5.
    EXPECT_TRUE(isIn(karPoint(177, 647), box));
    EXPECT_FALSE(isIn(karPoint(176, 647), box));
    EXPECT_TRUE(isIn(karPoint(794, 647), box));
    EXPECT_FALSE(isIn(karPoint(795, 647), box));
    // Outside the corners the first step already says no.
    EXPECT_FALSE(isIn(karPoint(0, -1), box));
    EXPECT_FALSE(isIn(karPoint(895, 447), box));
}

// A tangent of 0.5463: the corners of (1000 by 500) at 0.5 are (0, 0), (877, 479), (638, 917), (-239, 438).
TEST(KarRectX, TheLimitsAreRoundedWhereTheCornersAreTruncated)
{
    const karRectX box(karPoint(0, 0), 1000, 500, 0.5);
    ASSERT_EQ(box.Point(1), karPoint(877, 479));
    ASSERT_EQ(box.Point(2), karPoint(638, 917));
    ASSERT_EQ(box.Point(3), karPoint(-239, 438));
    EXPECT_TRUE(isIn(karPoint(-55, 100), box)) << "-54.63";
    EXPECT_FALSE(isIn(karPoint(-56, 100), box));
    EXPECT_TRUE(isIn(karPoint(185, 101), box)) << "184.88";
    EXPECT_FALSE(isIn(karPoint(186, 101), box));
    EXPECT_TRUE(isIn(karPoint(310, 738), box)) << "-239 + 549.15";
    EXPECT_FALSE(isIn(karPoint(309, 738), box));
    EXPECT_TRUE(isIn(karPoint(822, 579), box)) << "877 - 54.63";
    EXPECT_FALSE(isIn(karPoint(823, 579), box));
}

TEST(KarRectX, AskingForAPointNormalisesTheBox)
{
    karRectX box(karPoint(0, 0), 10, 5, 7.0);
    EXPECT_FALSE(karPoint(1000, 1000).isFullIn(box));
    expectBox(box, 0, 0, 10, 5, 7.0 - fullTurn);

    karRectX other(karPoint(0, 0), 100, 50, 2.0);
    const karPoint corner3 = other.Point(3);
    EXPECT_FALSE(karPoint(1000, 1000).isFullIn(other));
    expectBox(other, corner3.x(), corner3.y(), 50, 100, 2.0 - quarterTurn);
}

TEST(KarRectX, APointIsInWhereThePlainTestIsClear)
{
    TestRandom random(1034);
    int inside = 0;
    int outside = 0;
    for (int i = 0, count = testSteps(100000); i < count; ++i) {
        const int x = random.between(-200, 200);
        const int y = random.between(-200, 200);
        const int width = random.between(50, 400);
        const int height = random.between(50, 400);
        const double angle = random.between(-7.0, 7.0);
        // Near the axes one unit of a truncated corner moves a limit far.
        if (std::fabs(std::sin(2 * angle)) < 0.2)
            continue;
        const karPoint p(random.between(-600, 600), random.between(-600, 600));
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double along = (p.x() - x) * c + (p.y() - y) * s;
        const double across = -(p.x() - x) * s + (p.y() - y) * c;
        const double inner = std::min(std::min(along, width - along), std::min(across, height - across));
        const bool in = isIn(p, karRectX(karPoint(x, y), width, height, angle));
        // The tangents are below 10 here: a unit of a corner moves a limit by 10, and rounding by one or two more.
        if (inner > 12) {
            ++inside;
            ASSERT_TRUE(in) << "step " << i;
        } else if (inner < -12) {
            ++outside;
            ASSERT_FALSE(in) << "step " << i;
        }
    }
    EXPECT_GT(inside, testSteps(2000));
    EXPECT_GT(outside, testSteps(2000));
}

TEST(KarRectX, IsFullInABoxWithAllFourCorners)
{
    const karRectX box(karPoint(0, 0), 100, 50, 0.7853981633974483); // corners (0, 0), (70, 70), (35, 105), (-35, 35)
    karRect around(-35, 0, 70, 105);
    EXPECT_TRUE(box.isFullIn(around)) << "edges included";
    for (karRect less :
         {karRect(-34, 0, 70, 105), karRect(-35, 1, 70, 105), karRect(-35, 0, 69, 105), karRect(-35, 0, 70, 104)})
        EXPECT_FALSE(box.isFullIn(less));
}

TEST(KarRectX, IsFullInATurnedBoxAndNormalisesIt)
{
    karRectX outer(karPoint(0, 0), 1000, 1000, 7.0);
    karRectX inner(outer.Point(0) + karPoint(0, 100), 200, 200, 7.0);
    EXPECT_TRUE(inner.isFullIn(outer));
    EXPECT_EQ(outer.Ang(), 7.0 - fullTurn);
    EXPECT_EQ(inner.Ang(), 7.0) << "only the argument is described anew";
    EXPECT_FALSE(outer.isFullIn(inner));
    EXPECT_EQ(inner.Ang(), 7.0 - fullTurn);
    karRectX far(karPoint(5000, 5000), 10, 10, 9.0);
    EXPECT_FALSE(far.isFullIn(outer));
}

TEST(KarRectX, IsFullInATurnedBoxWithAllFourCorners)
{
    karRectX box(karPoint(0, 0), 100, 50, 0.7853981633974483); // corners (0, 0), (70, 70), (35, 105), (-35, 35)
    karRectX around(karPoint(-35, 0), 105, 105, 0.0);
    EXPECT_TRUE(box.isFullIn(around)) << "edges included";
    for (karRectX less : {karRectX(karPoint(-35, 1), 105, 104, 0.0), karRectX(karPoint(-35, 0), 104, 105, 0.0),
                          karRectX(karPoint(-35, 0), 105, 104, 0.0), karRectX(karPoint(-34, 0), 104, 105, 0.0)})
        EXPECT_FALSE(box.isFullIn(less)) << less.x() << ' ' << less.y() << ' ' << less.Width() << ' ' << less.Height();
}

TEST(KarRectX, IsFullInItselfByTheCornersThatItHadBefore)
{
    karRectX box(karPoint(0, 0), 10, 5, 0.0);
    EXPECT_TRUE(box.isFullIn(box));
    expectBox(box, 0, 0, 10, 5, 0.0);
    karRectX turned(karPoint(0, 0), 10, 5, fullTurn);
    EXPECT_TRUE(turned.isFullIn(turned));
    EXPECT_EQ(turned.Ang(), 0.0) << "described anew in the course";
}

TEST(KarRectX, IsSeenWhereACornerIs)
{
    EXPECT_TRUE(isSeen(karRectX(karPoint(5, 5), 100, 50, 0.3), karRect(0, 0, 10, 10)));
    EXPECT_TRUE(isSeen(karRectX(karPoint(10, 10), 100, 50, 0.3), karRect(0, 0, 10, 10))) << "edges included";
}

TEST(KarRectX, IsNotSeenWhereAllCornersLieOnOneSide)
{
    const karRect in(0, 0, 10, 10);
    EXPECT_FALSE(isSeen(karRectX(karPoint(-300, 5), 100, 50, 0.3), in));
    EXPECT_FALSE(isSeen(karRectX(karPoint(300, 5), 100, 50, 0.3), in));
    EXPECT_FALSE(isSeen(karRectX(karPoint(5, -300), 100, 50, 0.3), in));
    EXPECT_FALSE(isSeen(karRectX(karPoint(5, 300), 100, 50, 0.3), in));
    EXPECT_FALSE(isSeen(karRectX(karPoint(-20, 0), 10, 5, 0.0), in)) << "before the unturned box is seen";
}

TEST(KarRectX, AnUnturnedBoxOnNoOneSideIsSeen)
{
    EXPECT_TRUE(isSeen(karRectX(karPoint(-50, 4), 100, 2, 0.0), karRect(0, 0, 10, 10))) << "like a plus sign";
    EXPECT_TRUE(isSeen(karRectX(karPoint(-50, -50), 100, 100, 0.0), karRect(0, 0, 10, 10))) << "around";
    EXPECT_TRUE(isSeen(karRectX(karPoint(50, -50), 100, 100, quarterTurn), karRect(0, 0, 10, 10)));
}

TEST(KarRectX, ALargeTurnedBoxIsSeenByItsCrossings)
{
    // The corners are far from the small box, which lies inside.
    EXPECT_TRUE(isSeen(karRectX(karPoint(0, -700), 1000, 1000, 0.7853981633974483), karRect(-10, -10, 10, 10)));
}

TEST(KarRectX, IsVisibleInNormalisesNothing)
{
    karRectX box(karPoint(0, -700), 1000, 1000, 7.0);
    karRect in(-10, -10, 10, 10);
    box.isVisibleIn(in);
    expectBox(box, 0, -700, 1000, 1000, 7.0);
}

// The corners are (-130, 100), (221, 291), (58, 589), (-293, 398); the edge from the first to the second passes through
// the box at (-80, 127). It isn't looked at: 100 lies between the top 90 and the bottom 260, and also between the left
// -80 and the right 120, with which the y is compared and not the x of -130.
TEST(KarRectX, TheYOfACornerIsHeldAgainstTheLeftAndTheRight)
{
    const karRectX box(karPoint(-130, 100), 400, 340, 0.5);
    ASSERT_EQ(box.Point(1), karPoint(221, 291));
    ASSERT_EQ(box.Point(2), karPoint(58, 589));
    ASSERT_EQ(box.Point(3), karPoint(-293, 398));
    EXPECT_FALSE(isSeen(box, karRect(-80, 90, 120, 260)));
    EXPECT_TRUE(isSeen(box, karRect(-80, 90, 99, 260))) << "100 is right of 99, so the edge is looked at";
}

// The corners are (40, -170), (148, -2), (31, 73), (-77, -95). No edge of the first corner reaches the level 30, so
// both places stay at -left, which is 50. With everything 50 to the right, left and both places are 0.
TEST(KarRectX, ThePlaceOnALevelStartsAtTheNegatedLeft)
{
    const karRectX box(karPoint(40, -170), 200, 140, 1.0);
    ASSERT_EQ(box.Point(1), karPoint(148, -2));
    ASSERT_EQ(box.Point(2), karPoint(31, 73));
    ASSERT_EQ(box.Point(3), karPoint(-77, -95));
    EXPECT_FALSE(isSeen(box, karRect(-50, 30, -20, 120)));
    EXPECT_TRUE(isSeen(karRectX(karPoint(90, -170), 200, 140, 1.0), karRect(0, 30, 30, 120)));
}

// The corners are (290, 170), (130, 289), (59, 193), (219, 74). The level 190 is met by the edge to the second corner
// at 290 - 26 and not by the one to the fourth, whose place is 264 as well: 80 isn't between. With a second place left
// at the negated left of -80 it would be.
TEST(KarRectX, AnEdgeThatMissesTheLevelTakesThePlaceOfTheOther)
{
    const karRectX box(karPoint(290, 170), 200, 120, 2.5);
    ASSERT_EQ(box.Point(1), karPoint(130, 289));
    ASSERT_EQ(box.Point(2), karPoint(59, 193));
    ASSERT_EQ(box.Point(3), karPoint(219, 74));
    EXPECT_FALSE(isSeen(box, karRect(80, 190, 250, 260)));
}

// The first corner leaves a place of -234. For the third the places begin at 120 again and end at 120 and 83: the left
// of -120 isn't between.
TEST(KarRectX, ThePlacesStartAnewForTheOppositeCorner)
{
    const karRectX box(karPoint(-270, -170), 320, 320, -0.5);
    ASSERT_EQ(box.Point(1), karPoint(10, -323));
    ASSERT_EQ(box.Point(2), karPoint(163, -43));
    ASSERT_EQ(box.Point(3), karPoint(-117, 110));
    EXPECT_FALSE(isSeen(box, karRect(-120, -200, -80, -190)));
}

// A plain transcription on bare integers; the run of a million calls compares every answer with it.
namespace {

struct Plain {
    long long x, y, width, height;
    double angle;
};

struct Spot {
    long long x, y;
};

bool within(long long v, long long a, long long b) { return (a <= v && v <= b) || (b <= v && v <= a); }

long long cut(double v) { return static_cast<long long>(std::trunc(v)); }

Spot plainCorner(const Plain &box, int i)
{
    const double dx = i == 1 || i == 2 ? static_cast<double>(box.width) : 0.0;
    const double dy = i == 2 || i == 3 ? static_cast<double>(box.height) : 0.0;
    if (i == 0)
        return {box.x, box.y};
    const double c = std::cos(box.angle);
    const double s = std::sin(box.angle);
    return {box.x + cut(dx * c) - cut(dy * s), box.y + cut(dx * s) + cut(dy * c)};
}

void plainNorm(Plain &box)
{
    while (box.angle < 0)
        box.angle += fullTurn;
    while (box.angle >= fullTurn)
        box.angle -= fullTurn;
    if (box.angle < quarterTurn)
        return;
    const int corner = box.angle < halfTurn ? 3 : box.angle < threeQuarterTurn ? 2 : 1;
    const Spot origin = plainCorner(box, corner);
    box.x = origin.x;
    box.y = origin.y;
    box.angle -= corner == 3 ? quarterTurn : corner == 2 ? halfTurn : threeQuarterTurn;
    if (corner != 2)
        std::swap(box.width, box.height);
}

bool plainIn(const Spot &p, Plain &box)
{
    plainNorm(box);
    const Spot p0 = plainCorner(box, 0);
    const Spot p1 = plainCorner(box, 1);
    const Spot p2 = plainCorner(box, 2);
    const Spot p3 = plainCorner(box, 3);
    if (!within(p.x, p3.x, p1.x))
        return false;
    if (!within(p.y, p0.y, p2.y))
        return false;
    const double t = std::tan(box.angle);
    if (t == 0)
        return true;
    const auto rnd = [](double v) { return v > 0 ? cut(v + 0.5) : cut(v - 0.5); };
    long long left = p3.x + rnd(static_cast<double>(p.y - p3.y) / t);
    if (within(p.y, p0.y, p3.y))
        left = p0.x + rnd(static_cast<double>(-(p.y - p0.y)) * t);
    long long right = p1.x + rnd(static_cast<double>(-(p.y - p1.y)) * t);
    if (within(p.y, p0.y, p1.y))
        right = p0.x + rnd(static_cast<double>(p.y - p0.y) / t);
    return within(p.x, left, right);
}

bool plainSeen(const Plain &box, long long left, long long top, long long right, long long bottom)
{
    Spot p[4];
    for (int i = 0; i < 4; ++i) {
        p[i] = plainCorner(box, i);
        if (left <= p[i].x && p[i].x <= right && top <= p[i].y && p[i].y <= bottom)
            return true;
    }
    int lefts = 0;
    int rights = 0;
    int below = 0;
    int above = 0;
    for (const Spot &corner : p) {
        lefts += corner.x < left;
        rights += corner.x > right;
        below += corner.y > bottom;
        above += corner.y < top;
    }
    if (lefts == 4 || rights == 4 || below == 4 || above == 4)
        return false;
    if (p[0].x == p[1].x || p[0].x == p[3].x)
        return true;
    const double tangent = std::tan(box.angle);
    const double inverse = 1.0 / tangent;
    for (int run = 0; run < 2; ++run) {
        const Spot a = p[run == 0 ? 0 : 2];
        const Spot b = p[run == 0 ? 1 : 3];
        const Spot d = p[run == 0 ? 3 : 1];
        if (!within(a.y, top, bottom)) {
            const long long level = within(top, a.y, bottom) ? top : bottom;
            long long x = -left;
            if (within(level, a.y, b.y)) {
                x = a.x + cut(static_cast<double>(level - a.y) * inverse);
                if (within(x, left, right))
                    return true;
            }
            long long x2 = x;
            if (within(level, a.y, d.y)) {
                x2 = a.x - cut(static_cast<double>(level - a.y) * tangent);
                if (within(x2, left, right))
                    return true;
            }
            if (within(left, x2, x))
                return true;
        }
        if (!within(a.y, left, right)) {
            const long long level = within(left, a.x, right) ? left : right;
            if (within(level, a.x, b.x)) {
                const long long y = a.y + cut(static_cast<double>(level - a.x) * tangent);
                if (within(y, top, bottom))
                    return true;
            }
            if (within(level, a.x, d.x)) {
                const long long y2 = a.y - cut(static_cast<double>(level - a.x) * inverse);
                if (within(y2, top, bottom))
                    return true;
            }
        }
    }
    return false;
}

Plain anyBox(TestRandom &random)
{
    // Now and then an angle of 0 or a box without width or height; the axes themselves have no other whole tangent.
    const int shape = static_cast<int>(random.below(16));
    Plain box = {random.between(-300, 300), random.between(-300, 300), random.between(-50, 400),
                 random.between(-50, 400), random.between(-15.0, 15.0)};
    if (shape == 0)
        box.angle = 0.0;
    if (shape == 1)
        box.width = 0;
    if (shape == 2)
        box.height = 0;
    return box;
}

karRectX turnedBox(const Plain &box)
{
    return karRectX(karPoint(static_cast<int>(box.x), static_cast<int>(box.y)), static_cast<int>(box.width),
                    static_cast<int>(box.height), box.angle);
}

} // namespace

TEST(KarRectX, AMillionCornersAndExtentsEqualThePlainSteps)
{
    GoldenRun run(1040, 250000, 0xafbcd2d2e40c66dbu);
    while (run.next()) {
        const Plain box = anyBox(run.random);
        const karRectX turned = turnedBox(box);
        const int corner = static_cast<int>(run.random.below(4));
        run.code.add(turned.Point(corner).x());
        run.code.add(turned.Point(corner).y());
        const karRect extent = turned.extent();
        for (const int value : {extent.left(), extent.top(), extent.right(), extent.bottom()})
            run.code.add(value);

        const Spot spot = plainCorner(box, corner);
        run.plain.add(static_cast<int>(spot.x));
        run.plain.add(static_cast<int>(spot.y));
        const Spot p0 = plainCorner(box, 0);
        const Spot p1 = plainCorner(box, 1);
        const Spot p2 = plainCorner(box, 2);
        const Spot p3 = plainCorner(box, 3);
        long long sides[4] = {p1.x, p0.y, p3.x, p2.y};
        if (p0.x == p1.x || p0.y == p1.y) {
            sides[0] = p0.x;
            sides[2] = p2.x;
        } else if (within(p1.x, p0.x, p2.x) && within(p3.x, p0.x, p2.x)) {
            sides[0] = p0.x;
            sides[1] = p1.y;
            sides[2] = p2.x;
            sides[3] = p3.y;
        }
        run.plain.add(static_cast<int>(std::min(sides[0], sides[2])));
        run.plain.add(static_cast<int>(std::min(sides[1], sides[3])));
        run.plain.add(static_cast<int>(std::max(sides[0], sides[2])));
        run.plain.add(static_cast<int>(std::max(sides[1], sides[3])));
    }
}

TEST(KarRectX, AMillionPointsInTurnedBoxesEqualThePlainSteps)
{
    GoldenRun run(1041, 200000, 0x4759403d37ff0bd7u);
    while (run.next()) {
        Plain box = anyBox(run.random);
        karRectX turned = turnedBox(box);
        for (int k = 0; k < 5; ++k) {
            const Spot p = {run.random.between(-500, 500), run.random.between(-500, 500)};
            run.code.add(static_cast<int>(karPoint(static_cast<int>(p.x), static_cast<int>(p.y)).isFullIn(turned)));
            run.plain.add(static_cast<int>(plainIn(p, box)));
        }
        run.code.add(turned.x());
        run.code.add(turned.y());
        run.code.add(turned.Width());
        run.code.add(turned.Height());
        run.code.add(turned.Ang());
        run.plain.add(static_cast<int>(box.x));
        run.plain.add(static_cast<int>(box.y));
        run.plain.add(static_cast<int>(box.width));
        run.plain.add(static_cast<int>(box.height));
        run.plain.add(box.angle);
    }
}

TEST(KarRectX, AMillionViewsEqualThePlainSteps)
{
    GoldenRun run(1042, 1000000, 0xd4454c2542699ce5u);
    int seen = 0;
    while (run.next()) {
        const Plain box = anyBox(run.random);
        const int left = run.random.between(-200, 200);
        const int top = run.random.between(-200, 200);
        const int right = left + run.random.between(0, 200);
        const int bottom = top + run.random.between(0, 200);
        karRect in(left, top, right, bottom);
        const bool answer = turnedBox(box).isVisibleIn(in);
        seen += answer;
        run.code.add(static_cast<int>(answer));
        run.plain.add(static_cast<int>(plainSeen(box, left, top, right, bottom)));
    }
    EXPECT_GT(seen, testSteps(100000));
}

// Any coordinates and angles: what the wrap and the saturation give isn't stated here, only that it is defined.
TEST(KarRectX, AnyNumbersAreAnswered)
{
    TestRandom random(1043);
    for (int i = 0, count = testSteps(20000); i < count; ++i) {
        const auto any = [&] {
            return random.below(4) == 0 ? (random.below(2) == 0 ? INT_MIN : INT_MAX) : random.anyInt();
        };
        karRectX box(karPoint(any(), any()), any(), any(),
                     random.below(2) == 0 ? random.anyDouble() : random.between(-9.0, 9.0));
        karRectX other(karPoint(any(), any()), any(), any(), random.between(-9.0, 9.0));
        karRect in(any(), any(), any(), any());
        box.isVisibleIn(in);
        box.isFullIn(in);
        const karRect extent = box.extent();
        EXPECT_LE(extent.left(), extent.right());
        EXPECT_LE(extent.top(), extent.bottom());
        other.isFullIn(box);
        karPoint(any(), any()).isFullIn(box);
        box.isFullIn(box);
    }
}
