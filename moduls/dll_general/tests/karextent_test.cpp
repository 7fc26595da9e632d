#include "karextent.h"

#include "ellipsescan.h"
#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double fullTurn = 6.283185307179586;
constexpr double degree = 0.017453292519943295;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

#define EXPECT_RECT(l, b, r, t, rect, tolerance)                                                                       \
    EXPECT_NEAR(l, (rect).left(), tolerance);                                                                          \
    EXPECT_NEAR(b, (rect).bottom(), tolerance);                                                                        \
    EXPECT_NEAR(r, (rect).right(), tolerance);                                                                         \
    EXPECT_NEAR(t, (rect).top(), tolerance)

// Points

karD_Rect boxOf(std::vector<karD_Point> points)
{
    karArrayT<karD_Point> array;
    array.elements = points.data();
    array.count = static_cast<unsigned>(points.size());
    return CalculateBoundingRect(array);
}

TEST(BoundingRectOfPoints, HoldsThemAll)
{
    EXPECT_RECT(-2, -3, 4, 9, boxOf({{1, 2}, {4, -3}, {-2, 9}}), 0);
    EXPECT_RECT(5, 7, 5, 7, boxOf({{5, 7}}), 0); // one point: no size
}

TEST(BoundingRectOfPoints, OfNoneIsPutInOrder)
{
    EXPECT_RECT(-1e300, -1e300, 1e300, 1e300, boxOf({}), 0);
    karArrayT<karD_Point> none;
    none.elements = nullptr;
    none.count = 0;
    EXPECT_RECT(-1e300, -1e300, 1e300, 1e300, CalculateBoundingRect(none), 0);
}

TEST(BoundingRectOfPoints, StartsFromPlusAndMinus1e300)
{
    EXPECT_RECT(1e300, 1, 2e300, 1, boxOf({{2e300, 1}}), 0); // not below the start
    EXPECT_RECT(-2e300, 1, -1e300, 1, boxOf({{-2e300, 1}}), 0);
}

TEST(BoundingRectOfPoints, IsNotMovedByWhatIsNotANumber)
{
    EXPECT_RECT(1, 2, 3, 5, boxOf({{nan, 5}, {1, nan}, {3, 2}}), 0);
    EXPECT_RECT(-1e300, -1e300, 1e300, 1e300, boxOf({{nan, nan}}), 0);
    EXPECT_RECT(-1e300, 1, 1e300, 1, boxOf({{nan, 1}}), 0);
}

TEST(BoundingRectOfPoints, FirstOfEqualZerosStays)
{
    EXPECT_TRUE(sameBits(-0.0, boxOf({{-0.0, 1}, {0.0, 1}}).left()));
    EXPECT_TRUE(sameBits(0.0, boxOf({{0.0, 1}, {-0.0, 1}}).left()));
    EXPECT_TRUE(sameBits(-0.0, boxOf({{-0.0, 1}, {0.0, 1}}).right()));
    EXPECT_TRUE(sameBits(0.0, boxOf({{0.0, 1}, {-0.0, 1}}).right()));
    EXPECT_TRUE(sameBits(-0.0, boxOf({{1, -0.0}, {1, 0.0}}).bottom()));
    EXPECT_TRUE(sameBits(0.0, boxOf({{1, 0.0}, {1, -0.0}}).bottom()));
    EXPECT_TRUE(sameBits(-0.0, boxOf({{1, -0.0}, {1, 0.0}}).top()));
    EXPECT_TRUE(sameBits(0.0, boxOf({{1, 0.0}, {1, -0.0}}).top()));
}

// Whole ellipses

TEST(BoundingRectOfEllipse, IsExactAlongTheAxes)
{
    for (const double rotation : {0.0, -0.0, 3.141592653589793, 6.283185307179586, 9.9e-51, -9.9e-51})
        EXPECT_TRUE(
            isSame(karD_Rect(1 - 0.1, 2 - 0.7, 1 + 0.1, 2 + 0.7), CalculateBoundingRect(1, 2, 0.1, 0.7, rotation)))
            << rotation;
    for (const double rotation : {1.5707963267948966, 4.71238898038469})
        EXPECT_TRUE(
            isSame(karD_Rect(1 - 0.7, 2 - 0.1, 1 + 0.7, 2 + 0.1), CalculateBoundingRect(1, 2, 0.1, 0.7, rotation)))
            << rotation;
    EXPECT_RECT(-2, -1, 2, 1, CalculateBoundingRect(0, 0, -2, 1, 0), 0); // put in order
}

TEST(BoundingRectOfEllipse, IsSampledByDegreesElsewhere)
{
    // At 45 degrees the extremes of a circle lie at odd multiples of 45: all samples.
    EXPECT_RECT(-1, -1, 1, 1, CalculateBoundingRect(0, 0, 1, 1, pi / 4), 1e-15);
    // At 0.5 degrees they lie half way between two: cos of half a degree.
    const double h = std::cos(0.5 * degree);
    EXPECT_RECT(-h, -h, h, h, CalculateBoundingRect(0, 0, 1, 1, 0.5 * degree), 1e-15);
    EXPECT_GT(1 - h, 3.8e-5);
    // Neighbours of the exact rotations are sampled, and so are negative rotations and further turns: their sines,
    // about 1e-16, carry a long axis into the short direction.
    EXPECT_EQ(0.1, CalculateBoundingRect(0, 0, 0.1, 1e20, pi).right());
    for (const double rotation : {3.1415926535897936, -pi, 3 * pi, 2 * fullTurn})
        EXPECT_GT(CalculateBoundingRect(0, 0, 0.1, 1e20, rotation).right(), 1e4) << rotation;
    const double r = std::sin(1e-50); // 1e-50 itself is beyond the tolerance; its samples lie on the axes
    EXPECT_RECT(-0.1 - r, -0.7, 0.1 + r, 0.7, CalculateBoundingRect(0, 0, 0.1, 0.7, 1e-50), 1e-16);
}

TEST(BoundingRectOfArc, FromZeroToZeroFindsAllExtremesOfTheEllipse)
{
    // The half extents of an ellipse are sqrt((a cos r)^2 + (b sin r)^2) and sqrt((a sin r)^2 + (b cos r)^2).
    for (double rotation = -7; rotation < 7; rotation += 0.03) {
        const double c = std::cos(rotation), s = std::sin(rotation);
        const double w = std::sqrt((25 * c * c) + (s * s)), h = std::sqrt((25 * s * s) + (c * c));
        EXPECT_RECT(2 - w, 3 - h, 2 + w, 3 + h, CalculateBoundingRect(2, 3, 5, 1, rotation, 0, 0), 1e-14) << rotation;
    }
}

TEST(BoundingRectOfEllipse, StartsFromPlusAndMinus1e100)
{
    EXPECT_RECT(1e100, -1, 1e101, 1, CalculateBoundingRect(1e101, 0, 1, 1, pi / 4), 1e86); // not below the start
    EXPECT_EQ(1e100, CalculateBoundingRect(1e101, 0, 1, 1, pi / 4).left());
    EXPECT_RECT(-1e100, -1e100, 1e100, 1e100, CalculateBoundingRect(nan, nan, 1, 1, pi / 4), 0);
    EXPECT_RECT(-1e100, -1e100, 1e100, 1e100, CalculateBoundingRect(0, 0, 1, 1, nan), 0);
    EXPECT_RECT(-1e100, -1e100, 1e100, 1e100, CalculateBoundingRect(0, 0, 1, 1, inf), 0);
}

karD_Rect plainWhole(double cx, double cy, double a, double b, double r)
{
    const auto near = [r](double value) { return std::fabs(r - value) < 1e-50; };
    if (near(0) || near(3.141592653589793) || near(6.283185307179586))
        return karD_Rect(cx - a, cy - b, cx + a, cy + b);
    if (near(1.5707963267948966) || near(4.71238898038469))
        return karD_Rect(cx - b, cy - a, cx + b, cy + a);
    return scanned(cx, cy, a, b, r);
}

TEST(BoundingRectOfEllipse, EqualsTheScanWhereASideIsZeroOrTheHeightNearlyIs)
{
    const double turned = 2 * fullTurn; // of which the sine isn't zero, so that samples are taken
    for (const auto &centre : {std::pair<double, double>{1, 5}, {5, 1}, {-1, 5}, {5, -1}})
        EXPECT_TRUE(isSame(scanned(centre.first, centre.second, 1, 1, turned),
                           CalculateBoundingRect(centre.first, centre.second, 1, 1, turned)))
            << centre.first << ' ' << centre.second;
    EXPECT_EQ(0.0, CalculateBoundingRect(1, 5, 1, 1, turned).left());
    EXPECT_TRUE(isSame(scanned(0, 0, 1e-280, 0, turned), CalculateBoundingRect(0, 0, 1e-280, 0, turned)));
}

TEST(BoundingRectOfEllipse, EqualsTheScanOfAllSamples)
{
    TestRandom random(51);
    for (int step = 0, steps = testSteps(6000); step < steps; ++step) {
        double a = random.between(-3.0, 3.0);
        double b = random.between(-3.0, 3.0);
        double cx = random.between(-3.0, 3.0);
        double cy = random.between(-3.0, 3.0);
        double r = random.between(-7.0, 7.0);
        switch (random.below(8)) {
        case 0: // extremes on samples or half way between them
            r = random.between(-720, 720) * 0.5 * degree;
            b = a;
            break;
        case 1: // flat, or without a second axis
            b = random.below(2) == 0 ? 0.0 : b * 1e-12;
            break;
        case 2: // far away
            cx = cx * 1e12;
            cy = scaledDouble(random, 0, 60);
            break;
        case 3: // at the origin: zeros and their signs
            cx = cy = 0;
            r = random.between(0, 8) * 0.25 * pi;
            break;
        case 4: { // any size
            const int size = random.between(-1000, 330);
            a = std::ldexp(a, size);
            b = std::ldexp(b, size + random.between(-4, 4));
            cx = std::ldexp(cx, size);
            cy = std::ldexp(cy, size);
            break;
        }
        case 5:
            a = mixedDouble(random);
            b = mixedDouble(random);
            cx = mixedDouble(random);
            cy = mixedDouble(random);
            r = mixedDouble(random);
            break;
        case 6: // an extreme at a coordinate of nearly zero
            cx = a;
            cy = -b;
            break;
        default:
            break;
        }
        const karD_Rect rect = CalculateBoundingRect(cx, cy, a, b, r);
        ASSERT_TRUE(isSame(plainWhole(cx, cy, a, b, r), rect)) << "seed 51, step " << step << ", rotation " << r;
    }
}

// Elliptical arcs

karD_Rect arcBox(double a, double b, double rotation, double start, double end)
{
    return CalculateBoundingRect(0, 0, a, b, rotation, start, end);
}

TEST(BoundingRectOfArc, ReachesTheTopOfTheUpperHalf)
{
    EXPECT_RECT(-2, 0, 2, 1, arcBox(2, 1, 0, 0, pi), 1e-15); // tan r = 0: t1 = pi / 2
    EXPECT_RECT(5, 7, 7, 8, CalculateBoundingRect(5, 7, 2, 1, 0, 0, pi / 2), 1e-15);
}

TEST(BoundingRectOfArc, CandidatesAreNotNormalised)
{
    // Rotated by 0.5: t1 = arctan(1 / (2 tan 0.5)) is positive, t2 = -arctan(tan 0.5 / 2) negative. Of x the greatest
    // lies at t2 + 2 pi, which isn't tried.
    const double c = std::cos(0.5), s = std::sin(0.5);
    const double t2 = -std::atan(0.5 * std::tan(0.5)), right = std::sqrt(4 * c * c + s * s);
    const double start = 2 * pi + t2 - 0.2, end = 2 * pi + t2 + 0.1;
    const karD_Rect rect = arcBox(2, 1, 0.5, start, end);
    const double atEnd = 2 * c * std::cos(end) - s * std::sin(end);
    EXPECT_NEAR(atEnd, rect.right(), 1e-15); // the higher of its ends
    EXPECT_LT(rect.right(), right - 1e-3);
    EXPECT_NEAR(right, arcBox(2, 1, 0.5, start - 2 * pi, end - 2 * pi).right(), 1e-15); // by a negative start it is
    EXPECT_NEAR(-right, arcBox(2, 1, 0.5, t2 + pi - 0.1, t2 + pi + 0.1).left(), 1e-15);
    EXPECT_NEAR(right, arcBox(2, 1, 0.5, 5, 1).right(), 1e-15); // t2 <= end lets it in
}

TEST(BoundingRectOfArc, ThroughZeroEveryNegativeCandidateCounts)
{
    // t2 + 2 pi is 6.018, before the start, but t2 = -0.266 <= end.
    const double c = std::cos(0.5), s = std::sin(0.5);
    const karD_Rect rect = arcBox(2, 1, 0.5, 6.2, 0.3);
    EXPECT_NEAR(std::sqrt(4 * c * c + s * s), rect.right(), 1e-15);
    EXPECT_GT(rect.right(), 2 * c * std::cos(6.2) - s * std::sin(6.2) + 0.01); // the arc ends here
}

TEST(BoundingRectOfArc, EqualEndsAreTheWholeEllipse)
{
    EXPECT_RECT(-2, -1, 2, 1, arcBox(2, 1, 0, 1, 1), 1e-15);
    EXPECT_RECT(-2, -1, 2, 1, arcBox(2, 1, 0, 0, 2 * pi), 1e-15);
}

TEST(BoundingRectOfArc, AboveAndBelowIsThroughZero)
{
    // From 3 pi / 2 to pi / 2: t1 + pi = 3 pi / 2, t2 = 0, t1 = pi / 2 are in, pi is out.
    EXPECT_RECT(0, -1, 2, 1, arcBox(2, 1, 0, 1.5 * pi, 0.5 * pi), 1e-15);
}

TEST(BoundingRectOfArc, EndsAlwaysCount)
{
    EXPECT_RECT(2 * std::cos(0.2), std::sin(0.1), 2 * std::cos(0.1), std::sin(0.2), arcBox(2, 1, 0, 0.1, 0.2), 1e-15);
}

TEST(BoundingRectOfArc, IsNotMovedByWhatIsNotANumber)
{
    EXPECT_RECT(-1e100, -1e100, 1e100, 1e100, arcBox(2, 1, nan, 0, 1), 0);
    EXPECT_RECT(2 * std::cos(1.0), std::sin(1.0), 2 * std::cos(1.0), std::sin(1.0), arcBox(2, 1, 0, nan, 1), 1e-15);

    EXPECT_EQ(1e100, CalculateBoundingRect(1e101, 0, 1, 1, 0, 0, 1).left());
}

TEST(BoundingRectOfArc, WithoutAnAxisIsAQuotientByZero)
{
    // b / a is infinite: t1 = pi / 2, t2 = arctan(-(inf * 0)) is not a number.
    EXPECT_RECT(0, 0, 0, 1, arcBox(0, 1, 0, 0, 3), 1e-15);
}

karD_Rect plainArc(double cx, double cy, double a, double b, double r, double start, double end)
{
    const double c = std::cos(r), s = std::sin(r);
    const double t1 = std::atan((b / a) / std::tan(r)), t2 = std::atan(-(b / a) * std::tan(r));
    std::vector<double> parameters;
    for (const double t : {t1, t1 + 3.141592653589793, t2, t2 + 3.141592653589793})
        if ((end > start && start <= t && t <= end) || (end <= start && (t >= start || t <= end)))
            parameters.push_back(t);
    parameters.push_back(start);
    parameters.push_back(end);
    double minX = 1e100, minY = 1e100, maxX = -1e100, maxY = -1e100;
    for (const double t : parameters) {
        const double x = cx + a * c * std::cos(t) - b * s * std::sin(t);
        const double y = cy + a * s * std::cos(t) + b * c * std::sin(t);
        minX = x < minX ? x : minX;
        maxX = x > maxX ? x : maxX;
        minY = y < minY ? y : minY;
        maxY = y > maxY ? y : maxY;
    }
    return karD_Rect(minX < maxX ? minX : maxX, minY < maxY ? minY : maxY, minX < maxX ? maxX : minX,
                     minY < maxY ? maxY : minY);
}

// Angles and values

TEST(CalculateExtremAngle, IsFixedAlongAndAcrossTheAxes)
{
    for (const double rotation : {0.0, 3.141592653589793, 6.283185307179586, 9.9e-51}) {
        double first = untouched, second = untouched;
        CalculateExtremAngle(nan, nan, 2, 1, rotation, first, second); // the centre isn't read
        EXPECT_EQ(0.0, first);
        EXPECT_EQ(1.5707963267948966, second);
    }
    for (const double rotation : {1.5707963267948966, 4.71238898038469}) {
        double first = untouched, second = untouched;
        CalculateExtremAngle(0, 0, 2, 1, rotation, first, second);
        EXPECT_EQ(1.5707963267948966, first);
        EXPECT_EQ(0.0, second);
    }
}

TEST(CalculateExtremAngle, ElsewhereTakesBothAxesAsTheyStand)
{
    double first, second;
    CalculateExtremAngle(0, 0, 3, 3, pi / 6, first, second); // sin = 1/2, cos = sqrt(3)/2
    EXPECT_NEAR(pi / 3, first, 1e-15);                       // atan2(cos, sin)
    EXPECT_NEAR(pi - pi / 6, second, 1e-15);                 // atan2(sin, -cos)
    CalculateExtremAngle(0, 0, 2, 1, pi / 4, first, second);
    EXPECT_NEAR(std::atan(2.0), first, 1e-15);
    EXPECT_NEAR(pi - std::atan(2.0), second, 1e-15);
    CalculateExtremAngle(0, 0, 2, 1, -pi, first, second); // no multiple that is looked for
    EXPECT_NEAR(-pi / 2, first, 1e-15);
    CalculateExtremAngle(0, 0, 2, 1, 1e-50, first, second); // the tolerance is strict
    EXPECT_EQ(1.5707963267948966, first);
    EXPECT_EQ(pi, second);
}

TEST(CalculateExtremAngle, OutputsMayBeInputs)
{
    double a = 2, rotation = 0.3;
    CalculateExtremAngle(0, 0, a, 1, rotation, a, rotation);
    EXPECT_EQ(std::atan2(2 * std::cos(0.3), std::sin(0.3)), a);
    EXPECT_EQ(std::atan2(2 * std::sin(0.3), -std::cos(0.3)), rotation);
}

TEST(CalculateEllipseValue, SolvesForOneCoordinate)
{
    double v1 = untouched, v2 = untouched;
    // sin = 1: (y - 1)^2 + x^2 / 4 = 1 about (0, 1), at x = 0
    EXPECT_EQ(2, CalculateEllipseYValue(0, 1, 2, 1, pi / 2, 0, v1, v2));
    EXPECT_DOUBLE_EQ(2, v1);
    EXPECT_NEAR(0, v2, 1e-15);
    // cos = 1: (x - 3)^2 + 4 (y - 1)^2 = 4 at y = 1.6: x = 3 +- 1.6
    EXPECT_EQ(2, CalculateEllipseXValue(3, 1, 2, 1, 0, 1.6, v1, v2));
    EXPECT_NEAR(4.6, v1, 1e-14);
    EXPECT_NEAR(1.4, v2, 1e-14);
    // sin = 1/2: the values are doubled, (y/2 - 3)^2 = 1
    EXPECT_EQ(2, CalculateEllipseYValue(0, 3, 2, 1, pi / 6, 0, v1, v2));
    EXPECT_NEAR(8, v1, 1e-13);
    EXPECT_NEAR(4, v2, 1e-13);
}

TEST(CalculateEllipseValue, IsOneAtTheEndOfTheAxisAndNoneBeyond)
{
    double v1 = untouched, v2 = untouched;
    EXPECT_EQ(1, CalculateEllipseYValue(0, 0, 2, 1, pi / 2, 2, v1, v2));
    EXPECT_EQ(0.0, v1);
    EXPECT_EQ(0.0, v2);
    EXPECT_EQ(0, CalculateEllipseYValue(0, 1, 2, 1, pi / 2, 3, v1, v2));
    EXPECT_TRUE(sameBits(0.0, v1) && sameBits(0.0, v2));
    v1 = v2 = untouched;
    EXPECT_EQ(0, CalculateEllipseXValue(0, 0, 2, 1, 0, -1.5, v1, v2));
    EXPECT_TRUE(sameBits(0.0, v1) && sameBits(0.0, v2));
}

TEST(CalculateEllipseValue, DividesByAVanishingSineOrAxis)
{
    double v1 = untouched, v2 = untouched;
    EXPECT_EQ(0, CalculateEllipseYValue(0, 1, 2, 1, 0, 0, v1, v2)); // 0 / 0
    EXPECT_EQ(0.0, v1);
    v1 = untouched;
    EXPECT_EQ(0, CalculateEllipseXValue(0, 0, 2, 0, 0, 0, v1, v2)); // 4 / 0 * 0
    EXPECT_EQ(0.0, v1);
}

TEST(CalculateEllipseValue, OutputsMayBeInputs)
{
    double b = 1, x = 0.5, y1, y2;
    EXPECT_EQ(2, CalculateEllipseYValue(0, 1, 2, 1, pi / 2, 0.5, y1, y2));
    EXPECT_EQ(2, CalculateEllipseYValue(0, 1, 2, b, pi / 2, x, x, b));
    EXPECT_EQ(y1, x);
    EXPECT_EQ(y2, b);
}

int plainRoots(double a, double b, double c, double *x)
{
    const double t = b / a, w = t * t * 0.25 - c / a;
    x[0] = x[1] = 0;
    if (std::fabs(w) < 1e-50) {
        x[0] = x[1] = -0.5 * t;
        return 1;
    }
    if (!(w > 0))
        return 0;
    x[0] = std::sqrt(w) - 0.5 * t;
    x[1] = -0.5 * t - std::sqrt(w);
    return 2;
}

// Geometry

TEST(BoundingRectOfEllipse, LiesInsideTheTrueExtentWithinTheSampling)
{
    TestRandom random(52);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        const double a = random.between(0.1, 3.0);
        const double b = random.between(0.1, 3.0);
        const double cx = random.between(-3.0, 3.0);
        const double cy = random.between(-3.0, 3.0);
        const double r = random.between(0.0, fullTurn);
        const double c = std::cos(r), s = std::sin(r);
        const double halfWidth = std::sqrt(a * a * c * c + b * b * s * s);
        const double halfHeight = std::sqrt(a * a * s * s + b * b * c * c);
        const karD_Rect rect = CalculateBoundingRect(cx, cy, a, b, r);
        for (const double reached : {(rect.right() - cx) / halfWidth, (cx - rect.left()) / halfWidth,
                                     (rect.top() - cy) / halfHeight, (cy - rect.bottom()) / halfHeight}) {
            ASSERT_LE(reached, 1 + 1e-13) << "seed 52, step " << step;
            ASSERT_GE(reached, std::cos(0.5 * degree) - 1e-13) << "seed 52, step " << step;
        }
    }
}

TEST(BoundingRectOfArc, HoldsADenseSamplingButForExtremesThatAreNotTried)
{
    TestRandom random(53);
    int missed = 0, larger = 0;
    for (int step = 0, steps = testSteps(5000); step < steps; ++step) {
        const double a = random.between(0.1, 3.0);
        const double b = random.between(0.1, 3.0);
        const double r = random.between(0.0, fullTurn);
        const double start = random.between(0.0, fullTurn);
        const double end = random.between(0.0, fullTurn);
        const double c = std::cos(r), s = std::sin(r);
        const karD_Rect rect = arcBox(a, b, r, start, end);
        const double span = end > start ? end - start : end - start + fullTurn;
        double left = 9, right = -9, bottom = 9, top = -9, tLeft = 0, tRight = 0, tBottom = 0, tTop = 0;
        for (int i = 0; i <= 400; ++i) {
            const double t = start + i * span / 400;
            const double x = a * c * std::cos(t) - b * s * std::sin(t), y = a * s * std::cos(t) + b * c * std::sin(t);
            if (x < left)
                left = x, tLeft = t;
            if (x > right)
                right = x, tRight = t;
            if (y < bottom)
                bottom = y, tBottom = t;
            if (y > top)
                top = y, tTop = t;
        }
        // An extreme that is out of reach lies in the last quarter turn, where its candidate is negative.
        const auto excused = [&](double t) {
            const double place = t < fullTurn ? t : t - fullTurn;
            ++missed;
            return place > 1.5 * pi - 0.02 && start < end;
        };
        const double slack = 1e-12, sampling = 3 * (1 - std::cos(span / 800)) + slack; // half a step beside the extreme
        EXPECT_TRUE(rect.left() <= left + slack || excused(tLeft)) << "seed 53, step " << step;
        EXPECT_TRUE(rect.right() >= right - slack || excused(tRight)) << "seed 53, step " << step;
        EXPECT_TRUE(rect.bottom() <= bottom + slack || excused(tBottom)) << "seed 53, step " << step;
        EXPECT_TRUE(rect.top() >= top - slack || excused(tTop)) << "seed 53, step " << step;
        // It is no larger than the arc, unless a negative candidate counts that lies before an arc through 0.
        const double t1 = std::atan(b / a / std::tan(r)), t2 = std::atan(-(b / a) * std::tan(r));
        if (start >= end && std::fmin(t1, t2) < 0 && std::fmin(t1, t2) + fullTurn < start) {
            ++larger;
            continue;
        }
        EXPECT_GE(rect.left(), left - sampling) << "seed 53, step " << step;
        EXPECT_LE(rect.right(), right + sampling) << "seed 53, step " << step;
        EXPECT_GE(rect.bottom(), bottom - sampling) << "seed 53, step " << step;
        EXPECT_LE(rect.top(), top + sampling) << "seed 53, step " << step;
    }
    EXPECT_GT(missed, testSteps(100));
    EXPECT_LT(missed, 4000);
    EXPECT_GT(larger, 10);
}

TEST(CalculateEllipseValue, SatisfiesItsEquation)
{
    TestRandom random(54);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        const double cx = random.between(-3.0, 3.0);
        const double cy = random.between(-3.0, 3.0);
        const double a = random.between(0.5, 3.0);
        const double b = random.between(0.5, 3.0);
        const double angle = random.between(0.3, 1.2);
        const double given = random.between(-3.0, 3.0);
        double v[2];
        int count = CalculateEllipseYValue(cx, cy, a, b, angle, given, v[0], v[1]);
        const double inside = 1 - (given - cx) * (given - cx) / (a * a);
        ASSERT_EQ(inside > 0 ? 2 : 0, count);
        for (int i = 0; i < count; ++i) {
            const double dx = (given - cx) / a, dy = (v[i] * std::sin(angle) - cy) / b;
            ASSERT_NEAR(1, dx * dx + dy * dy, 1e-11);
        }
        count = CalculateEllipseXValue(cx, cy, a, b, angle, given, v[0], v[1]);
        for (int i = 0; i < count; ++i) {
            const double dx = (v[i] * std::cos(angle) - cx) / a, dy = (given - cy) / b;
            ASSERT_NEAR(1, dx * dx + dy * dy, 1e-11);
        }
    }
}

// The steps written out

void add(RoundedHash &hash, const karD_Rect &r)
{
    hash.add(r.left());
    hash.add(r.bottom());
    hash.add(r.right());
    hash.add(r.top());
}

TEST(Extents, MillionCallsEqualThePlainSteps)
{
    GoldenRun<RoundedHash> run(55, 200000, 7897754397368335013u);
    while (run.next()) {
        double v[8];
        for (double &value : v)
            value = run.random.below(4) == 0 ? run.random.between(-4, 4) + 0.5 : run.random.between(-5.0, 5.0);
        add(run.code, CalculateBoundingRect(v[0], v[1], v[2], v[3], v[4], v[5], v[6]));
        add(run.plain, plainArc(v[0], v[1], v[2], v[3], v[4], v[5], v[6]));

        double first = untouched, second = untouched, x[2];
        CalculateExtremAngle(v[0], v[1], v[2], v[3], v[4], first, second);
        run.code.add(first);
        run.code.add(second);
        run.plain.add(std::atan2(v[2] * std::cos(v[4]), v[3] * std::sin(v[4])));
        run.plain.add(std::atan2(v[2] * std::sin(v[4]), -v[3] * std::cos(v[4])));

        const double s = std::sin(v[4]), c = std::cos(v[4]);
        run.code.exact.add(CalculateEllipseYValue(v[0], v[1], v[2], v[3], v[4], v[5], first, second));
        run.code.exact.add(first);
        run.code.exact.add(second);
        const double ratioY = (v[3] * v[3]) / (v[2] * v[2]), dx = v[5] - v[0];
        run.plain.exact.add(plainRoots(s * s, -2 * s * v[1], ratioY * dx * dx + v[1] * v[1] - v[3] * v[3], x));
        run.plain.exact.add(x[0]);
        run.plain.exact.add(x[1]);
        run.code.exact.add(CalculateEllipseXValue(v[0], v[1], v[2], v[3], v[4], v[5], first, second));
        run.code.exact.add(first);
        run.code.exact.add(second);
        const double ratioX = (v[2] * v[2]) / (v[3] * v[3]), dy = v[5] - v[1];
        run.plain.exact.add(plainRoots(c * c, -2 * c * v[0], ratioX * dy * dy + v[0] * v[0] - v[2] * v[2], x));
        run.plain.exact.add(x[0]);
        run.plain.exact.add(x[1]);

        std::vector<karD_Point> points = {{v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]}};
        add(run.code, boxOf(points));
        run.plain.add(std::fmin(std::fmin(v[0], v[2]), v[4]));
        run.plain.add(std::fmin(std::fmin(v[1], v[3]), v[5]));
        run.plain.add(std::fmax(std::fmax(v[0], v[2]), v[4]));
        run.plain.add(std::fmax(std::fmax(v[1], v[3]), v[5]));
        if (run.step % 20 == 0) {
            add(run.code, CalculateBoundingRect(v[0], v[1], v[2], v[3], v[4]));
            add(run.plain, plainWhole(v[0], v[1], v[2], v[3], v[4]));
        }
    }
}

} // namespace
