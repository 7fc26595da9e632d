// A million calls of the intersections and feet against the steps written out. Without rotation only `acos`, in the
// limits, comes from the C library; with it results are rounded before they meet the constant.
#include "karintersect.h"

#include "curvesteps.h"
#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using plain::Ellipse;
using plain::Line;
using plain::Points;

constexpr double fullTurn = 6.283185307179586;
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;
constexpr int mostPasses = 60;

template <class Hash>
void add(Hash &hash, const Points &points, int pairs)
{
    hash.add(points.count);
    for (int i = 0; i < 2 * pairs; ++i)
        hash.add(points.at[i]);
}

testing::AssertionResult same(const Points &expected, const Points &found)
{
    if (expected.count != found.count)
        return testing::AssertionFailure() << expected.count << " points, found " << found.count;
    for (int i = 0; i < 8; ++i)
        if (!sameBits(expected.at[i], found.at[i]))
            return testing::AssertionFailure() << "place " << i << ": " << expected.at[i] << ", found " << found.at[i];
    return testing::AssertionSuccess();
}

Points callLineLine(const Line &g, const Line &h, int mask)
{
    Points out(untouched);
    out.count = Intersect_Line_Line(g.x1, g.y1, g.x2, g.y2, h.x1, h.y1, h.x2, h.y2, mask, out.at[0], out.at[1]);
    return out;
}

Points callLineArc(const Line &g, const Ellipse &e, int mask)
{
    Points out(untouched);
    out.count = Intersect_Line_Arc(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.start, e.end, mask, out.at[0], out.at[1],
                                   out.at[2], out.at[3]);
    return out;
}

Points callLineEllipse(const Line &g, const Ellipse &e, int mask)
{
    Points out(untouched);
    out.count = Intersect_Line_Ellipse(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.r, mask, out.at[0], out.at[1],
                                       out.at[2], out.at[3]);
    return out;
}

Points callLineEllipticalArc(const Line &g, const Ellipse &e, int mask)
{
    Points out(untouched);
    out.count = Intersect_Line_EllipticalArc(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, mask,
                                             out.at[0], out.at[1], out.at[2], out.at[3]);
    return out;
}

Points callArcs(const Ellipse &e, const Ellipse &f, int mask, int &passes)
{
    Points out(untouched);
    out.count = Intersect_Arc_Arc(e.cx, e.cy, e.a, e.start, e.end, f.cx, f.cy, f.a, f.start, f.end, mask, out.at[0],
                                  out.at[1], out.at[2], out.at[3], passes);
    return out;
}

Points callEllipses(const Ellipse &e, const Ellipse &f, int mask, int &passes)
{
    Points out(untouched);
    out.count = Intersect_Ellipse_Ellipse(e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, f.cx, f.cy, f.a, f.b, f.r, f.start,
                                          f.end, mask, out.at[0], out.at[1], out.at[2], out.at[3], out.at[4], out.at[5],
                                          out.at[6], out.at[7], passes);
    return out;
}

Points callFeet(double px, double py, const Ellipse &e, int &passes)
{
    Points out(untouched);
    out.count = Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, out.at[0],
                                                          out.at[1], out.at[2], out.at[3], out.at[4], out.at[5],
                                                          out.at[6], out.at[7], passes);
    return out;
}

/// Ordinary lines, among them vertical, horizontal and short ones and such with small integers, which meet the special
/// cases; about one in 16 with a coordinate of any bits, if not a not-a-number.
Line randomLine(TestRandom &random)
{
    double v[4];
    for (double &value : v)
        value = mixedDouble(random);
    for (double &value : v)
        if (value != value)
            value = 1;
    switch (random.below(8)) {
    case 0:
        v[2] = v[0];
        break;
    case 1:
        v[3] = v[1];
        break;
    case 2:
        v[2] = v[0] + scaledDouble(random, -170, -160);
        break;
    default:
        break;
    }
    return {v[0], v[1], v[2], v[3]};
}

/// Half of them with centres and axes on a grid of quarters, which meet tangents and roots at infinity.
Ellipse randomEllipse(TestRandom &random, bool circle, bool rotated)
{
    const bool onGrid = random.below(2) == 0;
    double v[4];
    for (double &value : v)
        value = onGrid ? random.between(-8, 8) * 0.25 : random.between(-3.0, 3.0);
    const double a = v[2] == 0 ? 0.5 : std::fabs(v[2]);
    const double b = circle ? a : v[3] == 0 ? 1.5 : std::fabs(v[3]);
    const double rotation = random.between(0.0, fullTurn);
    const double start = random.between(0.0, fullTurn);
    const double end = random.below(8) == 0 ? start : random.between(0.0, fullTurn);
    return {v[0], v[1], a, b, rotated ? rotation : 0.0, start, end};
}

TEST(IntersectLine, CallsWithoutRotationEqualThePlainSteps)
{
    GoldenRun run(81, 200000, 17717090785720604481u);
    while (run.next()) {
        const Line g = randomLine(run.random);
        const Line h = randomLine(run.random);
        const Ellipse circle = randomEllipse(run.random, true, false);
        const Ellipse ellipse = randomEllipse(run.random, false, false);
        const int mask = run.random.between(0, 3);
        add(run.code, callLineLine(g, h, mask), 1);
        add(run.plain, plain::lineLine(g, h, mask), 1);
        add(run.code, callLineArc(g, circle, mask), 2);
        add(run.plain, plain::lineEllipse(g, circle, mask), 2);
        add(run.code, callLineEllipticalArc(g, ellipse, mask), 2);
        add(run.plain, plain::lineEllipse(g, ellipse, mask), 2);
        Ellipse whole = ellipse;
        whole.start = 0;
        whole.end = fullTurn;
        add(run.code, callLineEllipse(h, whole, mask), 2);
        add(run.plain, plain::lineEllipse(h, whole, mask), 2);
    }
}

TEST(IntersectLine, CallsWithRotationEqualTheSteps)
{
    GoldenRun<RoundedHash> run(82, 200000, 905870527517760538u);
    while (run.next()) {
        double v[4];
        for (double &value : v)
            value = run.random.between(-3.0, 3.0);
        const Line g = {v[0], v[1], v[2], v[3]};
        const Ellipse ellipse = randomEllipse(run.random, false, true);
        const int mask = run.random.between(0, 3);
        add(run.code, callLineEllipticalArc(g, ellipse, mask), 2);
        add(run.plain, plain::lineEllipse(g, ellipse, mask), 2);
    }
}

TEST(IntersectEllipses, CallsWithoutRotationEqualThePlainSteps)
{
    GoldenRun run(83, 300000, 4430666571354711228u);
    while (run.next()) {
        const bool circles = run.step % 2 == 0;
        const Ellipse first = randomEllipse(run.random, circles, false);
        const Ellipse second = randomEllipse(run.random, circles, false);
        const int mask = run.random.between(0, 3);
        int passes = mostPasses, expectedPasses = mostPasses;
        const Points found =
            circles ? callArcs(first, second, mask, passes) : callEllipses(first, second, mask, passes);
        Points stepped = plain::ellipses(first, second, mask, untouched, expectedPasses);
        for (int i = 4; circles && i < 8; ++i)
            stepped.at[i] = untouched; // two pairs alone come out
        add(run.code, found, 4);
        run.code.add(passes);
        add(run.plain, stepped, 4);
        run.plain.add(expectedPasses);
    }
}

/// Runs that take many passes may take another road where the C library rounds a sine otherwise.
TEST(IntersectEllipses, CallsWithRotationEqualTheSteps)
{
    GoldenRun<RoundedHash> run(84, 300000, 3154388878981667516u);
    while (run.next()) {
        const Ellipse first = randomEllipse(run.random, false, true);
        const Ellipse second = randomEllipse(run.random, false, true);
        const int mask = run.random.between(0, 3);
        int passes = mostPasses, expectedPasses = mostPasses;
        const Points found = callEllipses(first, second, mask, passes);
        const Points stepped = plain::ellipses(first, second, mask, untouched, expectedPasses);
        ASSERT_EQ(expectedPasses, passes) << run;
        ASSERT_TRUE(same(stepped, found)) << run;
        if (passes >= 0 && passes <= 12) {
            add(run.code, found, 4);
            add(run.plain, stepped, 4);
        }
    }
}

TEST(PerpendicularPoints, CallsWithoutRotationEqualThePlainSteps)
{
    GoldenRun run(85, 200000, 18209146569110534442u);
    while (run.next()) {
        const Ellipse ellipse = randomEllipse(run.random, run.random.below(8) == 0, false);
        const bool onGrid = run.random.below(2) == 0;
        double p[2];
        for (double &value : p)
            value = onGrid ? run.random.between(-8, 8) * 0.25 : run.random.between(-3.0, 3.0);
        int passes = mostPasses, expectedPasses = mostPasses;
        add(run.code, callFeet(p[0], p[1], ellipse, passes), 4);
        run.code.add(passes);
        add(run.plain, plain::feet(p[0], p[1], ellipse, expectedPasses), 4);
        run.plain.add(expectedPasses);
    }
}

TEST(PerpendicularPoints, CallsWithRotationEqualTheSteps)
{
    GoldenRun<RoundedHash> run(86, 200000, 4532812487914869627u);
    while (run.next()) {
        const Ellipse ellipse = randomEllipse(run.random, false, true);
        const double px = run.random.between(-3.0, 3.0);
        const double py = run.random.between(-3.0, 3.0);
        int passes = mostPasses, expectedPasses = mostPasses;
        const Points found = callFeet(px, py, ellipse, passes);
        const Points stepped = plain::feet(px, py, ellipse, expectedPasses);
        ASSERT_EQ(expectedPasses, passes) << run;
        ASSERT_TRUE(same(stepped, found)) << run;
        if (passes >= 0 && passes <= 12) {
            add(run.code, found, 4);
            add(run.plain, stepped, 4);
        }
    }
}

} // namespace
