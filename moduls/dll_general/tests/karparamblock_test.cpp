// Placements: angle units, caches, combination, and the placed copies of points and boxes.
#include "karparamblock.h"

#include "goldenrun.h"
#include "testrandom.h"
#include "teststeps.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

using XY = std::pair<double, double>;

constexpr double infinity = std::numeric_limits<double>::infinity();

XY placed(const karParamBlock &block, double x, double y)
{
    EXPECT_EQ(block.modify_point(x, y), 0);
    return XY(x, y);
}

// What turning (1, 0) shows: the cosine and the sine that the block holds. Only for a block with an angle other than 0.
XY cosineAndSine(karParamBlock block)
{
    block.setInsertPoint(karPoint(0, 0));
    return placed(block, 1.0, 0.0);
}

void expectFields(const karParamBlock &block, int x, int y, double scaleX, double scaleY, int angle, int slope,
                  int mirror, unsigned long color, int layer)
{
    EXPECT_EQ(block.getInsertPoint(), karPoint(x, y));
    EXPECT_EQ(block.getScaleX(), scaleX);
    EXPECT_EQ(block.getScaleY(), scaleY);
    EXPECT_EQ(block.getAngle(), angle);
    EXPECT_EQ(block.getSlope(), slope);
    EXPECT_EQ(block.getMirror(), mirror);
    EXPECT_EQ(block.getColor().rgbs(), color);
    EXPECT_EQ(block.getLayer(), layer);
}

/// The fields in their order, as the compiler of the target lays them out.
struct Layout {
    karPoint insertPoint;
    double scaleX;
    double scaleY;
    int angle;
    int slope;
    int mirror;
    double sine;
    double cosine;
    double slopeTangent;
    karColor color;
    int layer;
};

/// What the block holds where a place of the layout lies.
template <class T>
T valueAt(const karParamBlock &block, const Layout &layout, const T &place)
{
    const auto offset = reinterpret_cast<const char *>(&place) - reinterpret_cast<const char *>(&layout);
    T value;
    std::memcpy(&value, reinterpret_cast<const char *>(&block) + offset, sizeof value);
    return value;
}

karParamBlock turned(int angle) { return karParamBlock(karPoint(), 1.0, 1.0, angle, 0, 0, karColor(), 0); }

} // namespace

static_assert(!std::is_polymorphic<karParamBlock>::value, "nothing virtual");
static_assert(std::is_same<decltype(karParamBlock().getColor()), karColor>::value, "read by value");
static_assert(std::is_convertible<karParamBlock *, karParamBlock>::value, "a copy of what is pointed to");

TEST(KarParamBlock, BeginsWithoutPlacement)
{
    const karParamBlock block;
    expectFields(block, 0, 0, 1.0, 1.0, 0, 0, 0, 0, 0);
    EXPECT_EQ(placed(block, 3.5, -4.25), XY(3.5, -4.25));
}

TEST(KarParamBlock, StoresWhatItIsBuiltFrom)
{
    const karColor color(0x04030201ul);
    expectFields(karParamBlock(karPoint(1, 2), 3.0, 4.0, 5, 6, 7, color, 8), 1, 2, 3.0, 4.0, 5, 6, 7, 0x04030201, 8);
    expectFields(karParamBlock(karPoint(1, 2), 3.0, 4.0, 5, 7, color, 8), 1, 2, 3.0, 4.0, 5, 0, 7, 0x04030201, 8);
}

TEST(KarParamBlock, HoldsItsFieldsInOrderTheCachesBehindTheMirror)
{
    const karParamBlock block(karPoint(1, 2), 3.0, 4.0, 1000000, 500000, 7, karColor(0x04030201ul), 8);
    const Layout layout = {};
    ASSERT_EQ(sizeof block, sizeof layout);
    EXPECT_EQ(valueAt(block, layout, layout.scaleX), 3.0);
    EXPECT_EQ(valueAt(block, layout, layout.scaleY), 4.0);
    EXPECT_EQ(valueAt(block, layout, layout.angle), 1000000);
    EXPECT_EQ(valueAt(block, layout, layout.slope), 500000);
    EXPECT_EQ(valueAt(block, layout, layout.mirror), 7);
    EXPECT_EQ(valueAt(block, layout, layout.sine), 1.0);
    EXPECT_EQ(valueAt(block, layout, layout.cosine), 0.0);
    EXPECT_EQ(valueAt(block, layout, layout.slopeTangent), std::tan(500000 * 1.57079635e-06));
    EXPECT_EQ(valueAt(block, layout, layout.color), karColor(0x04030201ul));
    EXPECT_EQ(valueAt(block, layout, layout.layer), 8);
    const karParamBlock flat(karPoint(), 1.0, 1.0, 0, 1, 0, karColor(), 0);
    EXPECT_EQ(valueAt(flat, layout, layout.slopeTangent), std::tan(1.57079635e-06)); // one unit is a slope too
    const karParamBlock upright(karPoint(), 1.0, 1.0, 0, 0, 0, karColor(), 0);
    EXPECT_EQ(valueAt(upright, layout, layout.slopeTangent), 0.0);
    EXPECT_EQ(valueAt(upright, layout, layout.sine), 0.0);
    EXPECT_EQ(valueAt(upright, layout, layout.cosine), 1.0);
}

TEST(KarParamBlock, CopiesAllFieldsAndCaches)
{
    karParamBlock source(karPoint(1, 2), 3.0, 4.0, 500000, 250000, 7, karColor(0x04030201ul), 8);
    const XY expected = placed(source, 10.0, 20.0);
    const karParamBlock copy(source);
    const karParamBlock fromPointer(&source);
    karParamBlock assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    source = karParamBlock();
    for (const karParamBlock *block : {&copy, &fromPointer, static_cast<const karParamBlock *>(&assigned)}) {
        expectFields(*block, 1, 2, 3.0, 4.0, 500000, 250000, 7, 0x04030201, 8);
        EXPECT_EQ(placed(*block, 10.0, 20.0), expected);
    }
}

TEST(KarParamBlock, StoresEachValue)
{
    karParamBlock block;
    block.setInsertPoint(karPoint(-1, INT_MAX));
    block.setScaleX(2.5);
    block.setScaleY(-3.5);
    block.setAngle(7);
    block.setSlope(-8);
    block.setMirror(9);
    block.setColor(karColor(1, 2, 3));
    block.setLayer(-10);
    expectFields(block, -1, INT_MAX, 2.5, -3.5, 7, -8, 9, 0x030201, -10);
}

TEST(KarParamBlock, TheFourRightAnglesAreExact)
{
    const karParamBlock unit;
    EXPECT_EQ(placed(unit, 1.0, 0.0), XY(1.0, 0.0));
    EXPECT_EQ(cosineAndSine(turned(1000000)), XY(0.0, 1.0));
    EXPECT_EQ(cosineAndSine(turned(2000000)), XY(-1.0, 0.0));
    EXPECT_EQ(cosineAndSine(turned(3000000)), XY(0.0, -1.0));
}

TEST(KarParamBlock, EveryOtherAngleTakesTheGeneralPath)
{
    for (const int angle : {1, -1, 500000, 999999, 1000001, 4000000, 5000000, -1000000, -2000000, INT_MAX, INT_MIN}) {
        const double radians = angle * 1.57079635e-06;
        EXPECT_EQ(cosineAndSine(turned(angle)), XY(std::cos(radians), std::sin(radians))) << angle;
    }
    // 4000000 * 1.57079635e-06 is 6.2831854, which is 9.3e-8 above a full turn
    EXPECT_NE(cosineAndSine(turned(4000000)).second, 0.0);
    EXPECT_NEAR(cosineAndSine(turned(4000000)).second, 9.282e-8, 1e-11);
    EXPECT_NE(cosineAndSine(turned(-1000000)).first, 0.0);
}

TEST(KarParamBlock, RadiansBecomeUnitsRoundedHalfAwayFromZero)
{
    const struct {
        double radians;
        int angle;
    } rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {1.5707963, 1000000},
        {-1.5707963, -1000000},
        {3.141592653589793, 2000000},
        {6.283185307179586, 4000000},
        {1.57079635e-06, 1},
        {0.7e-06, 0},
        {0.8e-06, 1},
        {-0.7e-06, 0},
        {-0.8e-06, -1},
        {2.5 / 636619.7629629073, 3},
        {-2.5 / 636619.7629629073, -3},
        {1e10, INT_MAX},
        {-1e10, INT_MIN},
        {infinity, INT_MAX},
        {-infinity, INT_MIN},
        {std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const auto &row : rows) {
        karParamBlock block;
        block.setAngle(row.radians);
        EXPECT_EQ(block.getAngle(), row.angle) << row.radians;
    }
    // 3000 * 636619.7629629073 is 1909859288.89; a true million to pi/2 would give 1909859317
    karParamBlock block;
    block.setAngle(3000.0);
    EXPECT_EQ(block.getAngle(), 1909859289);
}

TEST(KarParamBlock, RadiansOfARightAngleGiveExactValues)
{
    karParamBlock block;
    block.setAngle(1.5707963);
    EXPECT_EQ(cosineAndSine(block), XY(0.0, 1.0));
}

TEST(KarParamBlock, ScalesThenSlantsThenTurnsThenShifts)
{
    const karColor none;
    EXPECT_EQ(placed(karParamBlock(karPoint(10, 20), 2.0, 3.0, 0, 0, 0, none, 0), 1.0, 1.0), XY(12.0, 23.0));
    EXPECT_EQ(placed(karParamBlock(karPoint(0, 0), 1.0, 1.0, 1000000, 0, 0, none, 0), 1.0, 0.0), XY(0.0, 1.0));
    EXPECT_EQ(placed(karParamBlock(karPoint(10, 20), 2.0, 3.0, 1000000, 0, 0, none, 0), 1.0, 1.0), XY(7.0, 22.0));
    EXPECT_EQ(placed(karParamBlock(karPoint(-5, 7), -1.0, 0.5, 2000000, 0, 0, none, 0), 4.0, 8.0), XY(-1.0, 3.0));

    const double tangent = std::tan(500000 * 1.57079635e-06);
    EXPECT_NEAR(tangent, 1.0, 1e-7);
    EXPECT_EQ(placed(karParamBlock(karPoint(0, 0), 2.0, 3.0, 0, 500000, 0, none, 0), 5.0, 7.0),
              XY(10.0 - 21.0 * tangent, 21.0))
        << "the slant takes the scaled y";
    EXPECT_EQ(placed(karParamBlock(karPoint(1, 1), 1.0, 1.0, 1000000, 500000, 0, none, 0), 5.0, 7.0),
              XY((5.0 - 7.0 * tangent) * 0.0 - 7.0 + 1.0, (5.0 - 7.0 * tangent) + 1.0))
        << "the slant comes before the turn";
}

TEST(KarParamBlock, ASlopeOfItsOwnSlantsNothing)
{
    karParamBlock block;
    block.setSlope(500000);
    EXPECT_EQ(placed(block, 5.0, 7.0), XY(5.0, 7.0)) << "no constructor set a tangent";

    karParamBlock slanted(karPoint(), 1.0, 1.0, 0, 500000, 0, karColor(), 0);
    const XY before = placed(slanted, 5.0, 7.0);
    slanted.setSlope(-900000);
    EXPECT_EQ(placed(slanted, 5.0, 7.0), before) << "the tangent of the constructor stays";
    slanted.setSlope(0);
    EXPECT_EQ(placed(slanted, 5.0, 7.0), XY(5.0, 7.0)) << "a slope of 0 leaves it out";
}

TEST(KarParamBlock, TheShortConstructorStoresTheAngleWithoutTurning)
{
    karParamBlock block(karPoint(), 1.0, 1.0, 1000000, 0, karColor(), 0);
    EXPECT_EQ(block.getAngle(), 1000000);
    EXPECT_EQ(placed(block, 5.0, 7.0), XY(5.0, 7.0)) << "sine and cosine of angle 0";
    block.setAngle(block.getAngle());
    EXPECT_EQ(placed(block, 5.0, 7.0), XY(-7.0, 5.0));
}

TEST(KarParamBlock, TheMirrorIsReadByNoArithmetic)
{
    karParamBlock block(karPoint(1, 2), 2.0, 3.0, 1000000, 0, 0, karColor(), 0);
    const XY plain = placed(block, 5.0, 7.0);
    block.setMirror(1);
    EXPECT_EQ(placed(block, 5.0, 7.0), plain);
}

TEST(KarParamBlock, ModifyPointTakesTheSamePlaceTwice)
{
    const karParamBlock block(karPoint(10, 20), 2.0, 3.0, 0, 0, 0, karColor(), 0);
    double both = 1.0;
    EXPECT_EQ(block.modify_point(both, both), 0);
    EXPECT_EQ(both, 23.0) << "both count with their value on entry; y is stored last";
}

TEST(KarParamBlock, ConcatAddsMultipliesAndCombines)
{
    karParamBlock block(karPoint(10, 20), 2.0, 3.0, 500000, 100000, 5, karColor(1, 2, 3), 4);
    karParamBlock other(karPoint(1, 2), 5.0, 7.0, 1000000, 200000, 3, karColor(9, 9, 9), 9);
    block.Concat(&other);
    expectFields(block, 11, 22, 10.0, 21.0, 1500000, 300000, 6, 0x030201, 4);
    expectFields(other, 1, 2, 5.0, 7.0, 1000000, 200000, 3, 0x090909, 9);
    block.Concat(nullptr);
    expectFields(block, 11, 22, 10.0, 21.0, 1500000, 300000, 6, 0x030201, 4);
}

TEST(KarParamBlock, ConcatReducesAnAngleAboveAFullTurnOnce)
{
    const struct {
        int first, second, sum;
    } rows[] = {
        {3000000, 3000000, 2000000},    {2000000, 2000000, 4000000}, {2000000, 2000001, 1},
        {4000000, 4000000, 4000000},    {4000000, 4000001, 4000001}, {9000000, 0, 5000000},
        {-3000000, -3000000, -6000000}, {INT_MAX, 1, INT_MIN},       {INT_MIN, -1, INT_MAX - 4000000},
    };
    for (const auto &row : rows) {
        karParamBlock block = turned(row.first);
        karParamBlock other = turned(row.second);
        block.Concat(&other);
        EXPECT_EQ(block.getAngle(), row.sum) << row.first << " + " << row.second;
        EXPECT_EQ(cosineAndSine(block), cosineAndSine(turned(row.sum))) << "sine and cosine follow";
    }
    karParamBlock block = turned(2000000);
    block.Concat(&block);
    EXPECT_NE(cosineAndSine(block).second, 0.0) << "4000000 takes the general path";
}

TEST(KarParamBlock, ConcatDropsASlopeBeyondARightAngle)
{
    const struct {
        int first, second, sum;
    } rows[] = {
        {600000, 600000, 0},   {500000, 500000, 1000000},  {500000, 500001, 0},    {-500000, -500000, -1000000},
        {-500000, -500001, 0}, {600000, -700000, -100000}, {INT_MAX, INT_MAX, -2}, {INT_MIN, INT_MIN, 0},
    };
    for (const auto &row : rows) {
        karParamBlock block;
        karParamBlock other;
        block.setSlope(row.first);
        other.setSlope(row.second);
        block.Concat(&other);
        EXPECT_EQ(block.getSlope(), row.sum) << row.first << " + " << row.second;
    }
}

TEST(KarParamBlock, ConcatKeepsTheTangentOfTheSlope)
{
    karParamBlock block;
    karParamBlock other(karPoint(), 1.0, 1.0, 0, 500000, 0, karColor(), 0);
    block.Concat(&other);
    EXPECT_EQ(block.getSlope(), 500000);
    EXPECT_EQ(placed(block, 5.0, 7.0), XY(5.0, 7.0));
}

TEST(KarParamBlock, ConcatGivesTheShortConstructorItsTurn)
{
    karParamBlock block(karPoint(), 1.0, 1.0, 1000000, 0, karColor(), 0);
    karParamBlock none;
    block.Concat(&none);
    EXPECT_EQ(placed(block, 5.0, 7.0), XY(-7.0, 5.0));
}

TEST(KarParamBlock, ConcatAddsInsertPointsUnplacedAndWrapping)
{
    karParamBlock block(karPoint(INT_MAX, 1), 2.0, 2.0, 1000000, 0, 0, karColor(), 0);
    karParamBlock other(karPoint(1, 1), 1.0, 1.0, 0, 0, 0, karColor(), 0);
    block.Concat(&other);
    EXPECT_EQ(block.getInsertPoint(), karPoint(INT_MIN, 2));
}

TEST(KarParamBlock, ConcatWithItselfTakesItsValuesOnEntry)
{
    karParamBlock block(karPoint(10, 20), 2.0, 3.0, 3000000, 400000, 1, karColor(1, 2, 3), 4);
    block.Concat(&block);
    expectFields(block, 20, 40, 4.0, 9.0, 2000000, 800000, 0, 0x030201, 4);
}

TEST(PlacedCopy, WithoutABlockIsAPlainCopy)
{
    EXPECT_EQ(karPoint(karPoint(3, -4), nullptr), karPoint(3, -4));
    EXPECT_EQ(karD_Point(karD_Point(3.5, -4.5), nullptr), karD_Point(3.5, -4.5));
    EXPECT_EQ(karRect(karRect(1, 2, 3, 4), nullptr), karRect(1, 2, 3, 4));
    EXPECT_EQ(karD_Rect(karD_Rect(1, 2, 3, 4), nullptr), karD_Rect(1, 2, 3, 4));
    const karD_Rect named(karRect(1, 2, 3, 4), nullptr);
    EXPECT_EQ(named.bottom(), 4.0) << "name to name";
    EXPECT_EQ(named.top(), 2.0);
}

TEST(PlacedCopy, AnIntegerPointAddsOneHalfWhateverTheSign)
{
    karParamBlock block;
    block.setScaleX(0.5);
    block.setScaleY(-0.4);
    EXPECT_EQ(karPoint(karPoint(1, 1), &block), karPoint(1, 0)) << "0.5 + 0.5, -0.4 + 0.5";
    EXPECT_EQ(karPoint(karPoint(-1, 3), &block), karPoint(0, 0)) << "-0.5 + 0.5, -1.2 + 0.5";
    EXPECT_EQ(karPoint(karPoint(-3, 4), &block), karPoint(-1, -1)) << "-1.5 + 0.5, -1.6 + 0.5";
    EXPECT_EQ(karPoint(karPoint(-5, 5), &block), karPoint(-2, -1)) << "-2.5 + 0.5, -2.0 + 0.5";
}

TEST(PlacedCopy, AnIntegerPointSaturates)
{
    karParamBlock block;
    block.setScaleX(1e6);
    block.setScaleY(-1e6);
    EXPECT_EQ(karPoint(karPoint(100000, 100000), &block), karPoint(INT_MAX, INT_MIN));
    block.setScaleX(infinity);
    EXPECT_EQ(karPoint(karPoint(0, 0), &block), karPoint(0, 0)) << "0 times infinity is not a number";
    EXPECT_EQ(karPoint(karPoint(1, 0), &block), karPoint(INT_MAX, 0));
}

TEST(PlacedCopy, ARealPointIsNotRounded)
{
    karParamBlock block(karPoint(10, 20), 0.5, 0.25, 1000000, 0, 0, karColor(), 0);
    EXPECT_EQ(karD_Point(karD_Point(3.0, 5.0), &block), karD_Point(8.75, 21.5));
}

TEST(PlacedCopy, ABoxHasItsTwoCornersPlacedAndIsNotNormalised)
{
    karParamBlock block(karPoint(100, 200), 1.0, 1.0, 1000000, 0, 0, karColor(), 0);
    const karRect box(karRect(1, 2, 30, 40), &block);
    EXPECT_EQ(box.topLeft(), karPoint(98, 201));
    EXPECT_EQ(box.bottomRight(), karPoint(60, 230));
    EXPECT_EQ(box.left(), 98) << "left is greater than right";

    const karD_Rect real(karD_Rect(1, 2, 30, 40), &block);
    EXPECT_EQ(real.bottomLeft(), karD_Point(98, 201));
    EXPECT_EQ(real.topRight(), karD_Point(60, 230));

    // By its names: the box (left 1, top 2, right 30, bottom 40) has the corners (1, 40) and (30, 2) here.
    const karD_Rect named(karRect(1, 2, 30, 40), &block);
    EXPECT_EQ(named.bottomLeft(), karD_Point(60, 201));
    EXPECT_EQ(named.topRight(), karD_Point(98, 230));
}

TEST(PlacedCopy, FollowsThePlainMatrixOfItsSteps)
{
    TestRandom random(1020);
    for (int i = 0, count = testSteps(50000); i < count; ++i) {
        const double sx = random.between(-4.0, 4.0);
        const double sy = random.between(-4.0, 4.0);
        const int angle = random.between(-5000000, 5000000);
        const int slope = random.between(-800000, 800000);
        const karPoint insert(random.between(-1000, 1000), random.between(-1000, 1000));
        karParamBlock block(insert, sx, sy, angle, slope, random.between(0, 1), karColor(), 0);
        const double px = random.between(-1000.0, 1000.0);
        const double py = random.between(-1000.0, 1000.0);

        // rotation * slant * scale, as one matrix of four numbers
        const double right = 1.5707963267948966 / 1000000.0;
        const double c = std::cos(angle * right);
        const double s = std::sin(angle * right);
        const double t = std::tan(slope * right);
        const double m[2][2] = {{c * sx, (-c * t - s) * sy}, {s * sx, (-s * t + c) * sy}};
        const double x = m[0][0] * px + m[0][1] * py + insert.x();
        const double y = m[1][0] * px + m[1][1] * py + insert.y();

        const karD_Point place(karD_Point(px, py), &block);
        // The fixed unit is too large by 1.5e-8 of itself: the angles turn 1.2e-7 too far, which is 0.0024 at a
        // distance of 20000, and the tangents of the slopes are up to 2e-7 off, which is 0.0008 of a y of 4000.
        ASSERT_NEAR(place.x(), x, 0.0032) << "step " << i;
        ASSERT_NEAR(place.y(), y, 0.0032) << "step " << i;
        const karPoint grid(random.between(-1000, 1000), random.between(-1000, 1000));
        const karPoint onGrid(grid, &block);
        const karD_Point real(karD_Point(grid), &block);
        ASSERT_EQ(onGrid, karPoint(static_cast<int>(real.x() + 0.5), static_cast<int>(real.y() + 0.5))) << "step " << i;
    }
}

namespace {

struct PlainBlock {
    int x, y;
    double scaleX, scaleY;
    int angle, slope;
    double sine, cosine, tangent;
};

PlainBlock plainBlock(int x, int y, double scaleX, double scaleY, int angle, int slope)
{
    PlainBlock p = {x, y, scaleX, scaleY, angle, slope, 0, 0, 0};
    const int quarter = angle >= 0 && angle <= 3000000 && angle % 1000000 == 0 ? angle / 1000000 : -1;
    const double sines[4] = {0.0, 1.0, 0.0, -1.0};
    const double cosines[4] = {1.0, 0.0, -1.0, 0.0};
    p.sine = quarter >= 0 ? sines[quarter] : std::sin(angle * 1.57079635e-06);
    p.cosine = quarter >= 0 ? cosines[quarter] : std::cos(angle * 1.57079635e-06);
    p.tangent = slope == 0 ? 0.0 : std::tan(slope * 1.57079635e-06);
    return p;
}

void plainPlace(const PlainBlock &p, double &x, double &y)
{
    y = p.scaleY * y;
    if (p.slope != 0)
        x = p.scaleX * x - y * p.tangent;
    else
        x = p.scaleX * x - 0;
    if (p.angle != 0) {
        const double newX = x * p.cosine - y * p.sine;
        const double newY = x * p.sine + y * p.cosine;
        x = newX;
        y = newY;
    }
    x = x + p.x;
    y = y + p.y;
}

} // namespace

// Right angles and no slope: nothing of the C library's trigonometry takes part, so every bit is compared.
TEST(PlacedCopy, AMillionPointsAtRightAnglesEqualThePlainSteps)
{
    GoldenRun run(1021, 1000000, 0x4d849fd13e949341u);
    while (run.next()) {
        const int bx = run.random.between(-10000, 10000);
        const int by = run.random.between(-10000, 10000);
        const double sx = run.random.between(-10.0, 10.0);
        const double sy = run.random.between(-10.0, 10.0);
        const int angle = 1000000 * run.random.between(0, 3);
        double x = run.random.between(-1e6, 1e6);
        double y = run.random.between(-1e6, 1e6);
        const karParamBlock block(karPoint(bx, by), sx, sy, angle, 0, 0, karColor(), 0);
        const PlainBlock p = plainBlock(bx, by, sx, sy, angle, 0);
        double px = x;
        double py = y;
        block.modify_point(x, y);
        plainPlace(p, px, py);
        run.code.add(x);
        run.code.add(y);
        run.plain.add(px);
        run.plain.add(py);
    }
}

// Any angle and slope: the places are hashed on the grid, where a last bit of a sine doesn't show.
TEST(PlacedCopy, AMillionGridPointsEqualThePlainSteps)
{
    GoldenRun run(1022, 1000000, 0x779b2af8511a7915u);
    while (run.next()) {
        const int bx = run.random.between(-10000, 10000);
        const int by = run.random.between(-10000, 10000);
        const double sx = run.random.between(-10.0, 10.0);
        const double sy = run.random.between(-10.0, 10.0);
        const int angle = run.random.between(-6000000, 6000000);
        const int slope = run.step % 3 == 0 ? 0 : run.random.between(-900000, 900000);
        const int x = run.random.between(-100000, 100000);
        const int y = run.random.between(-100000, 100000);
        const karParamBlock block(karPoint(bx, by), sx, sy, angle, slope, 0, karColor(), 0);
        const karPoint placedPoint(karPoint(x, y), &block);
        run.code.add(placedPoint.x());
        run.code.add(placedPoint.y());
        double px = x;
        double py = y;
        plainPlace(plainBlock(bx, by, sx, sy, angle, slope), px, py);
        run.plain.add(static_cast<int>(std::trunc(px + 0.5)));
        run.plain.add(static_cast<int>(std::trunc(py + 0.5)));
    }
}

// Chains of combinations; the fields are whole numbers and products of powers of two, exact on every target.
TEST(KarParamBlock, AMillionCombinationsEqualThePlainSums)
{
    GoldenRun run(1023, 1000000, 0x5b6192694efe53a3u);
    karParamBlock block;
    long long x = 0;
    long long y = 0;
    long long angle = 0;
    long long slope = 0;
    int mirror = 0;
    double scaleX = 1;
    const auto wrapped = [](long long v) {
        return static_cast<int>(static_cast<std::int32_t>(static_cast<std::uint32_t>(v)));
    };
    while (run.next()) {
        const int ox = run.random.anyInt();
        const int oy = run.random.between(-100, 100);
        const int oAngle = run.step % 64 == 0 ? run.random.anyInt() : run.random.between(-1000000, 3000000);
        const int oSlope = run.random.between(-600000, 600000);
        const int oMirror = run.random.between(0, 7);
        const double oScale = run.random.below(2) == 0 ? 2.0 : 0.5;
        karParamBlock other(karPoint(ox, oy), oScale, 1.0, oAngle, oMirror, karColor(), 0);
        other.setSlope(oSlope);
        block.Concat(&other);

        x = wrapped(x + ox);
        y = wrapped(y + oy);
        angle = wrapped(angle + oAngle);
        if (angle > 4000000)
            angle -= 4000000;
        slope += oSlope;
        if (slope > 1000000 || slope < -1000000)
            slope = 0;
        mirror ^= oMirror;
        scaleX *= oScale;

        for (const int value : {block.getInsertPoint().x(), block.getInsertPoint().y(), block.getAngle(),
                                block.getSlope(), block.getMirror()})
            run.code.add(value);
        run.code.add(block.getScaleX());
        for (const long long value : {x, y, angle, slope, static_cast<long long>(mirror)})
            run.plain.add(static_cast<int>(value));
        run.plain.add(scaleX);
    }
}
