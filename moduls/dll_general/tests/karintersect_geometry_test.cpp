// Proofs by geometry, apart from the steps: a known common point is reported or falls under a stated exception, a
// reported point lies on both curves or does so, feet are perpendicular.
#include "karintersect.h"

#include "crossingreasons.h"
#include "curvesteps.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using plain::Ellipse;
using plain::Line;

constexpr double untouched = 1e300;

/// Distance of a point from the unbounded line.
double distance(const Line &g, double x, double y)
{
    const double dx = g.x2 - g.x1, dy = g.y2 - g.y1;
    return std::fabs((x - g.x1) * dy - (y - g.y1) * dx) / std::sqrt(dx * dx + dy * dy);
}

/// How far the squares of the ellipse's equation are off at a point.
double residual(const Ellipse &e, double x, double y)
{
    const double c = std::cos(e.r), s = std::sin(e.r);
    const double u = (c * (x - e.cx) + s * (y - e.cy)) / e.a, v = (c * (y - e.cy) - s * (x - e.cx)) / e.b;
    return std::fabs(u * u + v * v - 1);
}

TEST(IntersectLine, ReportsAKnownCommonPointWithinItsLimits)
{
    TestRandom random(41);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 41, step " << step);
        const double angle = random.between(0.0, crossingFullTurn);
        const double other = random.between(0.0, crossingFullTurn);
        const double x = random.between(-10.0, 10.0);
        const double y = random.between(-10.0, 10.0);
        const Line g = segmentThrough(random, x, y, angle);
        const Line h = segmentThrough(random, x, y, other);
        const double sine = std::fabs(std::sin(angle - other));
        if (sine > 1e-3) {
            ASSERT_EQ(Miss::none, whyMissed(g, h, {x, y, 0, sine})) << describe(whyMissed(g, h, {x, y, 0, sine}));
        }
        const Ellipse e = randomWhole(random, step % 2 == 0);
        Line line;
        const Common point = lineThrough(random, e, line);
        if (point.sine > 0.01 && std::cos(point.t) > -0.9999) {
            ASSERT_EQ(Miss::none, whyMissed(line, e, point)) << describe(whyMissed(line, e, point));
        }
    }
}

TEST(IntersectLine, ReportsPointsOfBothCurves)
{
    TestRandom random(42);
    int points = 0;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 42, step " << step);
        const Ellipse e = randomWhole(random, step % 2 == 0);
        const double angle = random.between(0.0, crossingFullTurn);
        const double x = e.cx + random.between(-5.0, 5.0);
        const double y = e.cy + random.between(-5.0, 5.0);
        const Line g = segmentThrough(random, x, y, angle);
        if (std::fabs(std::cos(angle)) < 0.001)
            continue; // so steep that the intercept loses its digits
        double at[4];
        const int count =
            Intersect_Line_Ellipse(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.r, 0, at[0], at[1], at[2], at[3]);
        const double c = std::cos(e.r), s = std::sin(e.r);
        const double pi0 = e.cx - e.a * c, pi1 = e.cy - e.a * s;
        if (distance(g, pi0, pi1) < 1e-3)
            continue; // beside the root at infinity
        for (int i = 0; i < count; ++i) {
            ASSERT_LT(distance(g, at[2 * i], at[2 * i + 1]), 1e-8);
            ASSERT_LT(residual(e, at[2 * i], at[2 * i + 1]), 1e-9);
            ++points;
        }
    }
    EXPECT_GT(points, testSteps(10000));
}

TEST(IntersectLine, OffTheLineLieOnlyPointsOfALineThroughThePointOfPi)
{
    TestRandom random(43);
    int ofZero = 0, cancelled = 0;
    for (int step = 0, steps = testSteps(50000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 43, step " << step);
        int n[8];
        for (int &number : n)
            number = random.between(-3, 3);
        if (n[2] == n[0] && n[3] == n[1])
            continue;
        const Line g = {n[0] + 0.0, n[1] + 0.0, n[2] + 0.0, n[3] + 0.0};
        const Ellipse e = {n[4] + 0.0, n[5] + 0.0, 4.0 + n[6], 4.0 + n[7], 0, 0, crossingFullTurn};
        double at[4];
        const int count =
            Intersect_Line_Ellipse(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, 0, 0, at[0], at[1], at[2], at[3]);
        for (int i = 0; i < count; ++i) {
            ASSERT_LT(residual(e, at[2 * i], at[2 * i + 1]), 1e-9);
            if (distance(g, at[2 * i], at[2 * i + 1]) < 1e-7)
                continue;
            ASSERT_LT(distance(g, e.cx - e.a, e.cy), 1e-9);
            if (i == 1 && at[2] == e.cx + e.a && at[3] == e.cy)
                ++ofZero; // the equation is linear
            else
                ++cancelled; // its first coefficient is rounding alone
        }
    }
    EXPECT_GT(ofZero, testSteps(100));
    EXPECT_LT(cancelled, ofZero);
}

TEST(IntersectEllipses, ReportAKnownCommonPointOrFallUnderAStatedException)
{
    TestRandom random(44);
    int steps = 0, missed = 0;
    for (int step = 0; step < 10000; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 44, step " << step);
        const Ellipse first = randomWhole(random, step % 2 == 0);
        Ellipse second = randomWhole(random, step % 2 == 0);
        const double t1 = random.between(0.0, crossingFullTurn);
        const double t2 = random.between(0.0, crossingFullTurn);
        const Common point = moveTogether(first, t1, second, t2);
        if (point.sine < 0.01)
            continue; // nearly touching: the double root loses half of the digits
        ++steps;
        const Miss miss = whyMissed(first, second, point);
        missed += miss == Miss::none ? 0 : 1;
        ASSERT_NE(Miss::inexact, miss);
        ASSERT_NE(Miss::imaginaryPart, miss);
    }
    EXPECT_GT(missed, 10);
    EXPECT_LT(missed, steps / 50);
}

TEST(IntersectEllipses, ReportPointsOfBothCurves)
{
    TestRandom random(45);
    int points = 0, nearMisses = 0;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 45, step " << step);
        Ellipse first = randomWhole(random, step % 2 == 0);
        Ellipse second = randomWhole(random, step % 2 == 0);
        second.cx = first.cx + random.between(-4.0, 4.0);
        second.cy = first.cy + random.between(-4.0, 4.0);
        if (step % 4 == 3) { // circles that touch within 1e-8
            second.cx = first.cx + (first.a + second.a) * (1 + random.between(-1e-8, 1e-8));
            second.cy = first.cy;
            first.b = first.a, second.b = second.a;
        }
        const int mask = step % 3 == 0 ? 0 : 3;
        double at[8];
        for (double &value : at)
            value = untouched;
        int passes = 200;
        const int count =
            Intersect_Ellipse_Ellipse(first.cx, first.cy, first.a, first.b, first.r, first.start, first.end, second.cx,
                                      second.cy, second.a, second.b, second.r, second.start, second.end, mask, at[0],
                                      at[1], at[2], at[3], at[4], at[5], at[6], at[7], passes);
        double e[5];
        plain::quartic(first, second, e);
        plain::Complex root[4];
        passes = 200;
        plain::rootsOf(e, root, passes);
        int written = 0;
        for (int i = 0; i < 4; ++i) {
            if (at[2 * i] == untouched)
                continue;
            ++written;
            if (std::isnan(at[2 * i]))
                continue; // a root that is not a number
            ++points;
            ASSERT_LT(residual(second, at[2 * i], at[2 * i + 1]), mask == 3 ? 1.01e-10 : 1e-9);
            if (mask == 3) {
                ASSERT_LT(residual(first, at[2 * i], at[2 * i + 1]), 1.01e-10);
            } else if (root[i].im != 0) {
                ++nearMisses; // counts as real
            } else {
                ASSERT_LT(residual(first, at[2 * i], at[2 * i + 1]), 1e-4);
            }
        }
        ASSERT_EQ(count, written);
    }
    EXPECT_GT(points, testSteps(10000));
    EXPECT_GT(nearMisses, 10);
}

TEST(IntersectEllipses, SomePairsNeverSettle)
{
    TestRandom random(46);
    int unsettled = 0;
    for (int step = 0; step < 1000; ++step) {
        const Ellipse first = randomWhole(random, false);
        Ellipse second = randomWhole(random, false);
        const double t1 = random.between(0.0, crossingFullTurn);
        const double t2 = random.between(0.0, crossingFullTurn);
        double ax, ay, bx, by; // turned so that they touch
        tangentAt(first, t1, ax, ay);
        tangentAt(second, t2, bx, by);
        second.r += std::atan2(ay, ax) - std::atan2(by, bx);
        moveTogether(first, t1, second, t2);
        double at[8];
        int passes = 1000;
        const int count =
            Intersect_Ellipse_Ellipse(first.cx, first.cy, first.a, first.b, first.r, first.start, first.end, second.cx,
                                      second.cy, second.a, second.b, second.r, second.start, second.end, 0, at[0],
                                      at[1], at[2], at[3], at[4], at[5], at[6], at[7], passes);
        if (passes == -1) {
            ++unsettled;
            EXPECT_EQ(0, count);
        }
    }
    EXPECT_GT(unsettled, 20);
}

TEST(PerpendicularPoints, ReportAKnownFootOrFallUnderAStatedException)
{
    TestRandom random(47);
    int missed = 0;
    constexpr int steps = 10000;
    for (int step = 0; step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 47, step " << step);
        const Ellipse e = randomWhole(random, false);
        const double t = random.between(0.0, crossingFullTurn);
        const double along = random.between(-5.0, 5.0);
        double tx, ty;
        tangentAt(e, t, tx, ty);
        const double x = e.x(std::cos(t), std::sin(t)), y = e.y(std::cos(t), std::sin(t));
        const Miss miss = whyMissed(x - along * ty, y + along * tx, e, {x, y, t, 1});
        missed += miss == Miss::none ? 0 : 1;
        ASSERT_TRUE(miss == Miss::none || miss == Miss::offCurve || miss == Miss::cosineAboveOne ||
                    miss == Miss::unsettled || miss == Miss::notANumber)
            << describe(miss);
    }
    EXPECT_GT(missed, 5);
    EXPECT_LT(missed, steps / 50);
}

TEST(PerpendicularPoints, ArePerpendicular)
{
    TestRandom random(48);
    int points = 0;
    for (int step = 0, steps = testSteps(10000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 48, step " << step);
        const Ellipse e = randomWhole(random, step % 8 == 0);
        const double px = random.between(-10.0, 10.0);
        const double py = random.between(-10.0, 10.0);
        double at[8];
        int passes = 200;
        const int count =
            Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, at[0], at[1],
                                                      at[2], at[3], at[4], at[5], at[6], at[7], passes);
        const double c = std::cos(e.r), s = std::sin(e.r);
        for (int i = 0; i < count; ++i) {
            const double x = at[2 * i], y = at[2 * i + 1];
            ASSERT_LT(residual(e, x, y), 1.01e-10);
            // The gradient of the equation is normal to the ellipse.
            const double u = (c * (x - e.cx) + s * (y - e.cy)) / (e.a * e.a);
            const double v = (c * (y - e.cy) - s * (x - e.cx)) / (e.b * e.b);
            const double nx = c * u - s * v, ny = s * u + c * v;
            const double length = std::sqrt((px - x) * (px - x) + (py - y) * (py - y));
            const double sine = ((px - x) * ny - (py - y) * nx) / (std::sqrt(nx * nx + ny * ny) * length);
            ASSERT_NEAR(0, sine * std::fmin(1, length), 1e-5);
            ++points;
        }
        for (int i = 2 * count; i < 8; ++i)
            ASSERT_EQ(0.0, at[i]);
    }
    EXPECT_GT(points, testSteps(15000));
}

} // namespace
