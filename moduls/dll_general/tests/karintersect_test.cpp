// Literal cases of the intersections and feet, and the bounded forms on any bits. What is compared with the steps
// written out stands in karintersect_golden_test.cpp, proofs by geometry in karintersect_geometry_test.cpp.
#include "karintersect.h"

#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double fullTurn = 6.283185307179586;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

/// Output pairs and count of a call.
struct Found {
    int count = -1;
    double p[8] = {untouched, untouched, untouched, untouched, untouched, untouched, untouched, untouched};

    bool isUntouched(int pair) const { return p[2 * pair] == untouched && p[2 * pair + 1] == untouched; }
    bool isUntouched() const { return isUntouched(0) && isUntouched(1) && isUntouched(2) && isUntouched(3); }
    bool isNaN(int pair) const { return std::isnan(p[2 * pair]) && std::isnan(p[2 * pair + 1]); }
    bool isZero(int pair) const { return sameBits(0.0, p[2 * pair]) && sameBits(0.0, p[2 * pair + 1]); }
    bool isSameAs(const Found &o) const
    {
        bool same = count == o.count;
        for (int i = 0; i < 8; ++i)
            same = same && sameBits(p[i], o.p[i]);
        return same;
    }
};

#define EXPECT_POINT(x, y, found, pair, tolerance)                                                                     \
    EXPECT_NEAR(x, (found).p[2 * (pair)], tolerance);                                                                  \
    EXPECT_NEAR(y, (found).p[2 * (pair) + 1], tolerance)

struct Line {
    double x1, y1, x2, y2;
};

struct Ellipse {
    double cx, cy, a, b, rotation = 0, start = 0, end = fullTurn;
};

/// What the form without a limit to its passes gives, asked for pairs that settle alone. The form with
/// one gives the same.
template <class Bounded, class Unbounded>
Found settled(Bounded bounded, Unbounded unbounded)
{
    int passes = 10000;
    const Found limited = bounded(passes);
    EXPECT_GE(passes, 0);
    if (passes < 0)
        return limited;
    Found found;
    found.count = unbounded(found.p);
    EXPECT_TRUE(found.isSameAs(limited));
    return found;
}

Found crossing(const Line &g, const Line &h, int mask)
{
    Found f;
    f.count = Intersect_Line_Line(g.x1, g.y1, g.x2, g.y2, h.x1, h.y1, h.x2, h.y2, mask, f.p[0], f.p[1]);
    return f;
}

Found crossing(const Line &g, const Ellipse &e, int mask)
{
    Found f;
    f.count = Intersect_Line_EllipticalArc(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.rotation, e.start, e.end,
                                           mask, f.p[0], f.p[1], f.p[2], f.p[3]);
    return f;
}

Found crossing(const Ellipse &e, const Ellipse &f, int mask, int &passes)
{
    Found found;
    double *const p = found.p;
    found.count =
        Intersect_Ellipse_Ellipse(e.cx, e.cy, e.a, e.b, e.rotation, e.start, e.end, f.cx, f.cy, f.a, f.b, f.rotation,
                                  f.start, f.end, mask, p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], passes);
    return found;
}

Found crossing(const Ellipse &e, const Ellipse &f, int mask)
{
    return settled([&](int &passes) { return crossing(e, f, mask, passes); },
                   [&](double *p) {
                       return Intersect_Ellipse_Ellipse(e.cx, e.cy, e.a, e.b, e.rotation, e.start, e.end, f.cx, f.cy,
                                                        f.a, f.b, f.rotation, f.start, f.end, mask, p[0], p[1], p[2],
                                                        p[3], p[4], p[5], p[6], p[7]);
                   });
}

Found crossingOfArcs(const Ellipse &e, const Ellipse &f, int mask, int &passes)
{
    Found found;
    double *const p = found.p;
    found.count = Intersect_Arc_Arc(e.cx, e.cy, e.a, e.start, e.end, f.cx, f.cy, f.a, f.start, f.end, mask, p[0], p[1],
                                    p[2], p[3], passes);
    return found;
}

Found crossingOfArcs(const Ellipse &e, const Ellipse &f, int mask)
{
    return settled([&](int &passes) { return crossingOfArcs(e, f, mask, passes); },
                   [&](double *p) {
                       return Intersect_Arc_Arc(e.cx, e.cy, e.a, e.start, e.end, f.cx, f.cy, f.a, f.start, f.end, mask,
                                                p[0], p[1], p[2], p[3]);
                   });
}

Found feet(double px, double py, const Ellipse &e, int &passes)
{
    Found found;
    double *const p = found.p;
    found.count = Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.rotation, e.start, e.end,
                                                            p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], passes);
    return found;
}

Found feet(double px, double py, const Ellipse &e)
{
    return settled([&](int &passes) { return feet(px, py, e, passes); },
                   [&](double *p) {
                       return Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.rotation,
                                                                        e.start, e.end, p[0], p[1], p[2], p[3], p[4],
                                                                        p[5], p[6], p[7]);
                   });
}

// Two lines

TEST(IntersectLineLine, GivesTheCrossing)
{
    const Found f = crossing(Line{0, 0, 2, 2}, Line{0, 2, 2, 0}, 3);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(1, 1, f, 0, 0);
}

TEST(IntersectLineLine, OfParallelAndCoincidentLinesIsZeroAtTheOrigin)
{
    for (const Line &other : {Line{1, 0, 3, 2}, Line{0, 0, 2, 2}, Line{5, 5, 6, 6}}) {
        const Found f = crossing(Line{0, 0, 2, 2}, other, 0);
        EXPECT_EQ(0, f.count);
        EXPECT_TRUE(f.isZero(0));
    }
    for (const Line &other : {Line{1, 0, 1, 5}, Line{2, 0, 2, 5}}) {
        const Found f = crossing(Line{1, 0, 1, 5}, other, 0);
        EXPECT_EQ(0, f.count);
        EXPECT_TRUE(f.isZero(0));
    }
}

TEST(IntersectLineLine, TakesTheXOfAVerticalLine)
{
    Found f = crossing(Line{0, 1, 1, 3}, Line{3, -4, 3, 9}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(3, 7, f, 0, 0);
    f = crossing(Line{3, -4, 3, 9}, Line{0, 1, 1, 3}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(3, 7, f, 0, 0);
}

TEST(IntersectLineLine, OfCoincidentEndPointsCountsAsVertical)
{
    const Found f = crossing(Line{3, 100, 3, 100}, Line{0, 1, 1, 3}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(3, 7, f, 0, 0);
}

TEST(IntersectLineLine, IsVerticalBelowTheLengthTolerance)
{
    Found f = crossing(Line{9.9e-51, 0, 0, 1}, Line{0, 0.5, 1, 0.5}, 0);
    EXPECT_EQ(9.9e-51, f.p[0]); // the x of the first point
    f = crossing(Line{1e-50, 0, 0, 1}, Line{0, 0.5, 1, 0.5}, 0);
    EXPECT_NEAR(5e-51, f.p[0], 1e-60); // half way
    f = crossing(Line{0, 0.5, 1, 0.5}, Line{9.9e-51, 0, 0, 1}, 0);
    EXPECT_EQ(9.9e-51, f.p[0]);
    f = crossing(Line{0, 0.5, 1, 0.5}, Line{1e-50, 0, 0, 1}, 0);
    EXPECT_NEAR(5e-51, f.p[0], 1e-60);
}

TEST(IntersectLineLine, IsParallelWhereTheSlopesDifferByLessThanTheLengthTolerance)
{
    EXPECT_EQ(0, crossing(Line{0, 0, 1, 0}, Line{1, 0, 2, 9.9e-51}, 0).count);
    const Found f = crossing(Line{0, 0, 1, 0}, Line{1, 0, 2, 1e-50}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(1, 0, f, 0, 0);
}

TEST(IntersectLineLine, KeepsTheCrossingThatALimitRefuses)
{
    const Line first = {0, 0, 1, 1}, second = {0, 4, 4, 0}; // cross at (2, 2), beyond the first
    for (int mask : {0, 2, 4, -2}) {
        const Found f = crossing(first, second, mask);
        EXPECT_EQ(1, f.count) << mask;
        EXPECT_POINT(2, 2, f, 0, 0);
    }
    for (int mask : {1, 3, 5, -1}) {
        const Found f = crossing(first, second, mask);
        EXPECT_EQ(0, f.count) << mask;
        EXPECT_POINT(2, 2, f, 0, 0);
    }
    EXPECT_EQ(1, crossing(second, first, 1).count);
    EXPECT_EQ(0, crossing(second, first, 2).count);
}

TEST(IntersectLineLine, LimitsHaveTheCurveTolerance)
{
    const Line first = {0, 0, 1, 0};
    EXPECT_EQ(1, crossing(first, Line{1 + 0.9e-10, -1, 1 + 0.9e-10, 1}, 3).count);
    EXPECT_EQ(0, crossing(first, Line{1 + 1.1e-10, -1, 1 + 1.1e-10, 1}, 1).count);
    EXPECT_EQ(0, crossing(first, Line{-1.1e-10, -1, -1.1e-10, 1}, 1).count);
    EXPECT_EQ(1, crossing(first, Line{0.5, 0.9e-10, 0.5, 1}, 3).count);
    EXPECT_EQ(0, crossing(first, Line{0.5, 1.1e-10, 0.5, 1}, 2).count);
}

TEST(IntersectLineLine, NotANumberCountsAsVerticalAndPassesNoLimit)
{
    Found f = crossing(Line{nan, 0, 1, 1}, Line{0, 2, 1, 2}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(std::isnan(f.p[0])); // the x of a vertical line
    EXPECT_EQ(0, crossing(Line{nan, 0, 1, 1}, Line{0, 2, 1, 2}, 2).count);
    EXPECT_EQ(0, crossing(Line{nan, 0, 1, 1}, Line{1, 2, 1, 3}, 0).count); // both vertical
    f = crossing(Line{0, nan, 1, 1}, Line{0, 2, 1, 2}, 0);                 // a slope that is not a number
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(f.isNaN(0));
}

TEST(IntersectLineLine, OutputsMayBeInputs)
{
    Line g = {0, 0, 2, 2};
    EXPECT_EQ(1, Intersect_Line_Line(g.x1, g.y1, g.x2, g.y2, 0, 2, 2, 0, 3, g.x1, g.y2));
    EXPECT_EQ(1.0, g.x1);
    EXPECT_EQ(1.0, g.y2);
}

// Line and ellipse

TEST(IntersectLineArc, GivesTwoPointsThroughTheCentreInTheOrderOfTheRoots)
{
    const double h = std::sqrt(0.5);
    Found f;
    f.count = Intersect_Line_Arc(-2, -2, 2, 2, 0, 0, 1, 0, fullTurn, 3, f.p[0], f.p[1], f.p[2], f.p[3]);
    EXPECT_EQ(2, f.count); // u*u + 2*u - 1 times -1: the smaller root first, tan(-135 / 2) and tan(45 / 2) degrees
    EXPECT_POINT(-h, -h, f, 0, 1e-15);
    EXPECT_POINT(h, h, f, 1, 1e-15);
}

TEST(IntersectLineArc, GivesOnePointForATangent)
{
    Found f;
    f.count = Intersect_Line_Arc(-1, 1, 1, 1, 0, 0, 1, 0, fullTurn, 3, f.p[0], f.p[1], f.p[2], f.p[3]);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(0, 1, f, 0, 0);
    EXPECT_TRUE(f.isZero(1));
}

TEST(IntersectLineArc, GivesNoneForAMissAndClearsTheOutputs)
{
    Found f;
    f.count = Intersect_Line_Arc(-1, 1.5, 1, 1.5, 0, 0, 1, 0, fullTurn, 0, f.p[0], f.p[1], f.p[2], f.p[3]);
    EXPECT_EQ(0, f.count);
    EXPECT_TRUE(f.isZero(0) && f.isZero(1));
}

TEST(IntersectLineArc, IsTheEllipticalArcOfEqualAxes)
{
    TestRandom random(71);
    for (int step = 0; step < 2000; ++step) {
        double v[9];
        for (double &value : v)
            value = mixedDouble(random);
        const int mask = random.between(0, 3);
        Found arc;
        arc.count = Intersect_Line_Arc(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], mask, arc.p[0], arc.p[1],
                                       arc.p[2], arc.p[3]);
        const Ellipse same = {v[4], v[5], v[6], v[6], 0, v[7], v[8]};
        EXPECT_TRUE(arc.isSameAs(crossing(Line{v[0], v[1], v[2], v[3]}, same, mask))) << "seed 71, step " << step;
    }
}

TEST(IntersectLineEllipse, IsTheEllipticalArcOfAFullTurn)
{
    TestRandom random(72);
    for (int step = 0; step < 2000; ++step) {
        double v[9];
        for (double &value : v)
            value = mixedDouble(random);
        const int mask = random.between(0, 3);
        Found whole;
        whole.count = Intersect_Line_Ellipse(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], mask, whole.p[0],
                                             whole.p[1], whole.p[2], whole.p[3]);
        const Ellipse same = {v[4], v[5], v[6], v[7], v[8], 0, fullTurn};
        EXPECT_TRUE(whole.isSameAs(crossing(Line{v[0], v[1], v[2], v[3]}, same, mask))) << "seed 72, step " << step;
    }
}

TEST(IntersectLineEllipse, AddsTheRootAtInfinityOfAHorizontalLine)
{
    Found f;
    f.count = Intersect_Line_Ellipse(-2, 0, 2, 0, 0, 0, 1, 1, 0, 3, f.p[0], f.p[1], f.p[2], f.p[3]);
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(1, 0, f, 0, 0);
    EXPECT_POINT(-1, 0, f, 1, 0);
    f = crossing(Line{-2, 0, 0, 0}, Ellipse{0, 0, 1, 1}, 1); // the candidate meets the limits like any other
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(-1, 0, f, 0, 0);
    EXPECT_TRUE(f.isZero(1));
}

TEST(IntersectLineEllipse, DropsAPointBesideTheCircleOfCosines)
{
    // (0.1 + 0.3) - 0.1 is an ulp above 0.3, of which acos is not a number
    const Ellipse e = {0.1, 0, 0.3, 1};
    const Found f = crossing(Line{-2, 0, 2, 0}, e, 2);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(-0.2, 0, f, 0, 1e-16);
    EXPECT_EQ(2, crossing(Line{-2, 0, 2, 0}, e, 1).count);
}

TEST(IntersectLineEllipticalArc, SolvesAVerticalLineForItsX)
{
    Found f = crossing(Line{0.6, 7, 0.6, 9}, Ellipse{0, 0, 1, 1}, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(0.6, 0.8, f, 0, 1e-15);
    EXPECT_POINT(0.6, -0.8, f, 1, 1e-15);
    f = crossing(Line{0.6, 7, 0.6, 7}, Ellipse{0, 0, 1, 1}, 0); // coincident end points
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(0.6, 0.8, f, 0, 1e-15);
    f = crossing(Line{1, 7, 1, 9}, Ellipse{0, 0, 1, 1}, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(1, 0, f, 0, 0);
}

TEST(IntersectLineEllipticalArc, LosesTheVerticalTangentAtPi)
{
    const Found f = crossing(Line{-1, 7, -1, 9}, Ellipse{0, 0, 1, 1}, 0); // no equation is left
    EXPECT_EQ(0, f.count);
    EXPECT_TRUE(f.isZero(0));
}

TEST(IntersectLineEllipticalArc, IsVerticalBelowTheLengthTolerance)
{
    // As a vertical line the first root is +1, as a steep one -1.
    EXPECT_POINT(0, 1, crossing(Line{0, -2, 9.9e-51, 2}, Ellipse{0, 0, 1, 1}, 0), 0, 1e-15);
    EXPECT_POINT(0, -1, crossing(Line{0, -2, 1e-50, 2}, Ellipse{0, 0, 1, 1}, 0), 0, 1e-15);
}

TEST(IntersectLineEllipticalArc, OffersThePointOfZeroWhereTheQuadraticIsLinear)
{
    // Through (-1, 0), the point of pi, with slope 1: u1 = 1; (1, 0) does not lie on the line.
    Found f = crossing(Line{-1, 0, 0, 1}, Ellipse{0, 0, 1, 1}, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(0, 1, f, 0, 0);
    EXPECT_POINT(1, 0, f, 1, 0);
    f = crossing(Line{-1, 0, 0, 1}, Ellipse{0, 0, 1, 1}, 1);
    EXPECT_EQ(1, f.count); // outside the box of the end points
    EXPECT_TRUE(f.isZero(1));
    f = crossing(Line{-2, -1, 2, 3}, Ellipse{0, 0, 1, 1}, 3);
    EXPECT_EQ(2, f.count); // inside the box, though beside the line
    EXPECT_POINT(1, 0, f, 1, 0);
}

TEST(IntersectLineEllipticalArc, CandidateAtPiHasThePlusOfItsFormula)
{
    // The horizontal line through the point of pi, (-P, -R). b is so large that the other root is 0 within 1e-50.
    const double P = std::cos(1.0), R = std::sin(1.0);
    const Ellipse e = {0, 0, 1, 1e60, 1.0};
    const Found f = crossing(Line{-3, -R, 3, -R}, e, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_NEAR(-R, f.p[1], 1e-15);
    EXPECT_EQ(-P, f.p[2]);
    EXPECT_EQ(R, f.p[3]); // the point of pi has -R
}

TEST(IntersectLineEllipticalArc, CandidateAtPiNeedsAHorizontalLineThatIsNotVertical)
{
    const Ellipse e = {0, 0, 1, 1};
    EXPECT_EQ(2, crossing(Line{-1, 0, 1, 0.8e-50}, e, 0).count);
    EXPECT_EQ(1, crossing(Line{-1, 0, 1, 1e-50}, e, 0).count);
    EXPECT_EQ(1, crossing(Line{-1, 0, 1, 1.2e-50}, e, 0).count); // slope 6e-51: u1 is still 0 within 1e-50
    const double P = std::cos(1.0);
    const Ellipse flat = {0, 0, 1, 1e60, 1.0};
    EXPECT_EQ(1, crossing(Line{-P, 5, -P, 5}, flat, 0).count); // horizontal by its end points, but vertical
    EXPECT_EQ(1, crossing(Line{-P, 5, -P, 6}, flat, 0).count);
}

TEST(IntersectLineEllipticalArc, PacksWhatTheLimitsLeave)
{
    const double h = std::sqrt(0.5);
    const Line line = {-2, -2, 2, 2};
    Found f = crossing(line, Ellipse{0, 0, 1, 1, 0, 0, pi}, 2); // the first root is off the arc
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(h, h, f, 0, 1e-15);
    EXPECT_TRUE(f.isZero(1));
    f = crossing(line, Ellipse{0, 0, 1, 1, 0, pi, 1}, 2); // through angle 0
    EXPECT_EQ(2, f.count);
    f = crossing(Line{-2, -2, 0, 0}, Ellipse{0, 0, 1, 1, 0, 0, pi}, 1);
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(-h, -h, f, 0, 1e-15);
    EXPECT_EQ(0, crossing(Line{-2, -2, 0, 0}, Ellipse{0, 0, 1, 1, 0, 0, pi}, 3).count);
    EXPECT_EQ(2, crossing(Line{-2, -2, 0, 0}, Ellipse{0, 0, 1, 1, 0, 0, pi}, 0).count);
    EXPECT_EQ(2, crossing(Line{-2, -2, 0, 0}, Ellipse{0, 0, 1, 1, 0, 0, pi}, 4).count);
}

TEST(IntersectLineEllipticalArc, RootThatIsNotANumberCountsWithoutLimits)
{
    const Ellipse e = {nan, 0, 1, 1};
    const Found f = crossing(Line{0, 0, 1, 1}, e, 0);
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(f.isNaN(0));
    EXPECT_TRUE(f.isZero(1));
    EXPECT_EQ(0, crossing(Line{0, 0, 1, 1}, e, 1).count);
    EXPECT_EQ(0, crossing(Line{0, 0, 1, 1}, e, 2).count);
}

TEST(IntersectLineEllipticalArc, OutputsMayBeInputs)
{
    double x1 = -2, y1 = -2, cx = 0, cy = 0;
    const Found expected = crossing(Line{x1, y1, 2, 2}, Ellipse{cx, cy, 1, 1}, 3);
    EXPECT_EQ(2, Intersect_Line_Arc(x1, y1, 2, 2, cx, cy, 1, 0, fullTurn, 3, cx, x1, y1, cy));
    EXPECT_EQ(expected.p[0], cx);
    EXPECT_EQ(expected.p[1], x1);
    EXPECT_EQ(expected.p[2], y1);
    EXPECT_EQ(expected.p[3], cy);
}

// Two ellipses

TEST(IntersectEllipses, FourPointsStandInTheSlotsOfTheirRoots)
{
    const double s = std::sqrt(0.8);
    // On the second, upright by its rotation, t has |cos t| = s / 2, |sin t| = s: u = -+0.618 and -+1.618.
    const Found f = crossing(Ellipse{0, 0, 2, 1}, Ellipse{0, 0, 2, 1, pi / 2}, 3);
    EXPECT_EQ(4, f.count);
    EXPECT_POINT(-s, s, f, 0, 1e-9);
    EXPECT_POINT(s, s, f, 1, 1e-9);
    EXPECT_POINT(-s, -s, f, 2, 1e-9);
    EXPECT_POINT(s, -s, f, 3, 1e-9);
}

TEST(IntersectEllipses, ARefusedRootLeavesItsSlotAlone)
{
    const double h = std::sqrt(0.75);
    const Ellipse first = {0, 0, 1, 1}, second = {-1, 0, 1, 1}; // at (-0.5, +-h): u = +-0.577, before +-i
    Found f = crossing(first, second, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(-0.5, h, f, 0, 1e-10);
    EXPECT_POINT(-0.5, -h, f, 1, 1e-10);
    EXPECT_TRUE(f.isUntouched(2) && f.isUntouched(3));
    Ellipse lower = first;
    lower.start = pi;
    f = crossing(lower, second, 1);
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(f.isUntouched(0));
    EXPECT_POINT(-0.5, -h, f, 1, 1e-10);
    lower = second;
    lower.start = pi;
    f = crossing(first, lower, 2);
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(f.isUntouched(0));
    EXPECT_EQ(2, crossing(first, lower, 1).count);
    EXPECT_EQ(2, crossing(first, lower, 4).count);
}

TEST(IntersectEllipses, AFirstEllipseBelowTheToleranceGivesNothing)
{
    int passes = 50;
    Found f = crossing(Ellipse{0, 0, 0.01, 0.005}, Ellipse{0, 0, 0.005, 0.01}, 0, passes);
    EXPECT_EQ(0, f.count);
    EXPECT_EQ(0, passes); // no factor was looked for
    EXPECT_TRUE(f.isUntouched());
    EXPECT_EQ(0, crossing(Ellipse{0, 0, 0.01, 0.005}, Ellipse{0, 0, 0.005, 0.01}, 0).count);
    EXPECT_EQ(0, crossing(Ellipse{0, 0, 0.01, -0.00999}, Ellipse{0, 0, 0.005, 0.01}, 0).count);
    f = crossing(Ellipse{0, 0, 1, 1}, Ellipse{-1, 0, 0.005, 0.005}, 0); // the second may be any size
    EXPECT_EQ(2, f.count);
}

TEST(IntersectEllipses, LoseTheCrossingAtPiOfTheSecond)
{
    // Circles about (0, 0) and (1, 1): (0, 1) is the point of pi, (1, 0) has u = -1, the single root behind +-i.
    const Found f = crossing(Ellipse{0, 0, 1, 1}, Ellipse{1, 1, 1, 1}, 3);
    EXPECT_EQ(1, f.count);
    EXPECT_TRUE(f.isUntouched(0) && f.isUntouched(1) && f.isUntouched(3));
    EXPECT_POINT(1, 0, f, 2, 1e-9);
}

TEST(IntersectEllipses, LeadingCoefficientCountsAsZeroBelowTheTolerance)
{
    // Moved up by d the point of pi is (0, 1 + d): the leading coefficient is 2*d + d*d, u about -2 / d.
    const Ellipse first = {0, 0, 1, 1};
    EXPECT_EQ(1, crossing(first, Ellipse{1, 1 + 4.9e-5, 1, 1}, 0).count);
    EXPECT_EQ(2, crossing(first, Ellipse{1, 1 + 5.1e-5, 1, 1}, 0).count);
    EXPECT_EQ(1, crossing(first, Ellipse{1, 1 - 4.9e-5, 1, 1}, 0).count);
    EXPECT_EQ(2, crossing(first, Ellipse{1, 1 - 5.1e-5, 1, 1}, 0).count);
}

TEST(IntersectEllipses, TwoLeadingZerosStayADivisionByZero)
{
    // Touching at the point of pi: 8 u^2 + 8. The first factor is u^2 + 1, the second 0 / 0.
    Found f = crossing(Ellipse{0, 0, 1, 1}, Ellipse{2, 0, 1, 1}, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_TRUE(f.isUntouched(0) && f.isUntouched(1));
    EXPECT_TRUE(f.isNaN(2) && f.isNaN(3));
    for (int mask : {1, 2, 3}) {
        f = crossing(Ellipse{0, 0, 1, 1}, Ellipse{2, 0, 1, 1}, mask);
        EXPECT_EQ(0, f.count);
        EXPECT_TRUE(f.isUntouched());
    }
}

TEST(IntersectEllipses, ARootCountsAsRealBelowTheTolerance)
{
    // A gap d in front of the point of zero: u is about +-i sqrt(d) / 2.
    Found f = crossing(Ellipse{0, 0, 1, 1}, Ellipse{-2 - 3e-8, 0, 1, 1}, 0);
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(-1 - 3e-8, 0, f, 0, 1e-15);
    EXPECT_POINT(-1 - 3e-8, 0, f, 1, 1e-15);
    EXPECT_EQ(0, crossing(Ellipse{0, 0, 1, 1}, Ellipse{-2 - 3e-8, 0, 1, 1}, 1).count);
    EXPECT_EQ(2, crossing(Ellipse{0, 0, 1, 1}, Ellipse{-2 - 3e-8, 0, 1, 1}, 2).count);
    EXPECT_EQ(0, crossing(Ellipse{0, 0, 1, 1}, Ellipse{-2 - 5e-8, 0, 1, 1}, 0).count);
}

TEST(IntersectEllipses, RootsThatAreNotNumbersCountWithoutLimits)
{
    const Ellipse first = {nan, 0, 1, 1}, second = {0, 0, 1, 1};
    const Found f = crossing(first, second, 0);
    EXPECT_EQ(4, f.count);
    EXPECT_TRUE(f.isNaN(0) && f.isNaN(1) && f.isNaN(2) && f.isNaN(3));
    EXPECT_EQ(0, crossing(first, second, 1).count);
    EXPECT_EQ(0, crossing(first, second, 2).count);
    EXPECT_TRUE(crossing(first, second, 3).isUntouched());
    EXPECT_EQ(4, crossing(Ellipse{0, 0, nan, 1}, second, 0).count); // nor is its product below the tolerance
}

TEST(IntersectEllipses, PassesCountOverAllFactorsAndTheLimitStoresNothing)
{
    const Ellipse first = {0, 0, 2, 1, 0.3}, second = {0.5, 0.25, 1.5, 1, 1.1};
    int needed = 10000;
    const Found f = crossing(first, second, 3, needed);
    ASSERT_GT(needed, 2);
    int passes = needed;
    EXPECT_TRUE(f.isSameAs(crossing(first, second, 3, passes)));
    EXPECT_EQ(needed, passes);
    for (int limit : {needed - 1, 1, 0, -1}) {
        passes = limit;
        const Found stopped = crossing(first, second, 3, passes);
        EXPECT_EQ(-1, passes);
        EXPECT_EQ(0, stopped.count);
        EXPECT_TRUE(stopped.isUntouched());
    }
}

TEST(IntersectEllipses, LimitMaskAndPassesMayBeOneVariable)
{
    const Ellipse first = {0, 0, 1, 1, 0, pi, fullTurn}, second = {-1, 0, 1, 1};
    int both = 1023; // limits both, and 1023 passes
    Found f;
    double *const p = f.p;
    f.count = Intersect_Ellipse_Ellipse(first.cx, first.cy, 1, 1, 0, first.start, first.end, second.cx, second.cy, 1, 1,
                                        0, 0, fullTurn, both, p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], both);
    EXPECT_EQ(1, f.count);
    EXPECT_GT(both, 0);
    EXPECT_LT(both, 1023);
    int again = 1023;
    EXPECT_EQ(1, Intersect_Arc_Arc(0, 0, 1, pi, fullTurn, -1, 0, 1, 0, fullTurn, again, p[0], p[1], p[2], p[3], again));
    EXPECT_EQ(both, again);
}

TEST(IntersectEllipses, OutputsMayBeInputs)
{
    const Found expected = crossing(Ellipse{0, 0, 1, 1}, Ellipse{-1, 0, 1, 1}, 3);
    double c1x = 0, c1y = 0, c2x = -1, c2y = 0;
    EXPECT_EQ(2, Intersect_Arc_Arc(c1x, c1y, 1, 0, fullTurn, c2x, c2y, 1, 0, fullTurn, 3, c2x, c1x, c1y, c2y));
    EXPECT_EQ(expected.p[0], c2x);
    EXPECT_EQ(expected.p[1], c1x);
    EXPECT_EQ(expected.p[2], c1y);
    EXPECT_EQ(expected.p[3], c2y);
}

TEST(IntersectArcArc, CountsThePointsOfTheScratchSlots)
{
    // On the second t is 120 and 240 degrees, u = +-1.73: the pair +-i comes before.
    const Found seen = crossing(Ellipse{0, 0, 1, 1}, Ellipse{1, 0, 1, 1}, 3);
    EXPECT_EQ(2, seen.count);
    EXPECT_POINT(0.5, std::sqrt(0.75), seen, 2, 1e-10);
    EXPECT_POINT(0.5, -std::sqrt(0.75), seen, 3, 1e-10);
    const Found f = crossingOfArcs(Ellipse{0, 0, 1, 1}, Ellipse{1, 0, 1, 1}, 3);
    EXPECT_EQ(2, f.count);
    EXPECT_TRUE(f.isUntouched());
}

TEST(IntersectArcArc, AFirstRadiusBelowAHundredthGivesNothing)
{
    const Found f = crossingOfArcs(Ellipse{0, 0, 0.005, 0.005}, Ellipse{0.005, 0, 0.005, 0.005}, 0);
    EXPECT_EQ(0, f.count);
    EXPECT_TRUE(f.isUntouched());
    // x = 0.00005, y = +-0.01 nearly: on the second u is about +-200, with coefficients that are all below 0.0001
    EXPECT_EQ(2, crossingOfArcs(Ellipse{0, 0, 0.01, 0.01}, Ellipse{1, 0, 1, 1}, 0).count);
    EXPECT_EQ(0, crossingOfArcs(Ellipse{0, 0, 0.00999, 0.00999}, Ellipse{1, 0, 1, 1}, 0).count);
}

TEST(IntersectArcArc, IsTheTwoEllipsesOfEqualAxes)
{
    TestRandom random(73);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        double v[10];
        for (double &value : v)
            value = mixedDouble(random);
        const int mask = random.between(0, 3);
        const Ellipse first = {v[0], v[1], v[2], v[2], 0, v[3], v[4]};
        const Ellipse second = {v[5], v[6], v[7], v[7], 0, v[8], v[9]};
        int passes = 100, passesOfEllipses = 100;
        Found arcs = crossingOfArcs(first, second, mask, passes);
        const Found ellipses = crossing(first, second, mask, passesOfEllipses);
        for (int i = 4; i < 8; ++i)
            arcs.p[i] = ellipses.p[i];
        EXPECT_TRUE(arcs.isSameAs(ellipses)) << "seed 73, step " << step;
        EXPECT_EQ(passesOfEllipses, passes) << "seed 73, step " << step;
    }
}

// Feet

/// How far from perpendicular the direction from a foot to (px, py) is, against the tangent.
double slant(double px, double py, const Ellipse &e, double x, double y)
{
    const double c = std::cos(e.rotation), s = std::sin(e.rotation);
    const double cosT = (c * (x - e.cx) + s * (y - e.cy)) / e.a, sinT = (c * (y - e.cy) - s * (x - e.cx)) / e.b;
    const double tx = -e.a * c * sinT - e.b * s * cosT, ty = -e.a * s * sinT + e.b * c * cosT;
    return ((px - x) * tx + (py - y) * ty) / std::sqrt(tx * tx + ty * ty);
}

TEST(PerpendicularPoints, OfAPointInsideTheEvoluteAreFour)
{
    const Ellipse e = {0, 0, 2, 1};
    const Found f = feet(0.5, 0.25, e);
    EXPECT_EQ(4, f.count);
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(0, slant(0.5, 0.25, e, f.p[2 * k], f.p[2 * k + 1]), 1e-9);
        EXPECT_NEAR(1, f.p[2 * k] * f.p[2 * k] / 4 + f.p[2 * k + 1] * f.p[2 * k + 1], 1e-9);
    }
    EXPECT_GT(f.p[0], 1.9); // the right, left, lower and upper side, as the roots come
    EXPECT_LT(f.p[2], -1.9);
    EXPECT_LT(f.p[5], -0.9);
    EXPECT_GT(f.p[7], 0.9);
    EXPECT_EQ(2, feet(3, 2, e).count);
    EXPECT_TRUE(feet(3, 2, e).isZero(2) && feet(3, 2, e).isZero(3));
}

TEST(PerpendicularPoints, DropARootBesideTheUnitCircle)
{
    // Of the four the last two have squared moduli of 1 + 8.3e-10, left by a last ratio just below 1e-10.
    const Found f = feet(5.1, 7.05, Ellipse{5, 7, 2, 1, 0.5});
    EXPECT_EQ(2, f.count);
    EXPECT_POINT(6.75446, 7.96013, f, 0, 1e-5);
    EXPECT_POINT(3.24423, 6.04226, f, 1, 1e-5);
}

TEST(PerpendicularPoints, LoseTheEndOfAnAxisWhoseCosineRoundsAboveOne)
{
    const Found f = feet(10, 0, Ellipse{0, 0, 2, 1}); // that of t = 0 is 1 + 9e-14, of which acos is not a number
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(-2, 0, f, 0, 0);
    EXPECT_TRUE(f.isZero(1));
}

TEST(PerpendicularPoints, AreLimitedToTheArcAndPacked)
{
    const Ellipse whole = {0, 0, 2, 1};
    const Found all = feet(0.1, 0.1, whole);
    ASSERT_EQ(4, all.count);
    for (int k = 0; k < 4; ++k) { // an arc about the k-th foot alone
        double t = std::atan2(all.p[2 * k + 1], all.p[2 * k] / 2);
        t = t < 0 ? t + fullTurn : t;
        const Found one = feet(0.1, 0.1, Ellipse{0, 0, 2, 1, 0, t - 0.01, t + 0.01});
        EXPECT_EQ(1, one.count);
        EXPECT_EQ(all.p[2 * k], one.p[0]);
        EXPECT_EQ(all.p[2 * k + 1], one.p[1]);
        EXPECT_TRUE(one.isZero(1) && one.isZero(2) && one.isZero(3));
    }
}

TEST(PerpendicularPoints, OfACircleComeFromAQuarticWithoutItsLeadingCoefficient)
{
    const Found f = feet(2, 0, Ellipse{0, 0, 1, 1}); // 4 i z^3 - 4 i z: z (z + 1), then 0 / 0
    EXPECT_EQ(1, f.count);
    EXPECT_POINT(-1, 0, f, 0, 0);
    EXPECT_TRUE(f.isZero(1));
    EXPECT_EQ(0, feet(0, 2, Ellipse{0, 0, 1, 1}).count); // 4 z^3 + 4 z: the root of a negative real is not a number
}

TEST(PerpendicularPoints, FromTheCentreOfACircleAreNone)
{
    const Found f = feet(3, 4, Ellipse{3, 4, 2, 2});
    EXPECT_EQ(0, f.count);
    EXPECT_TRUE(f.isZero(0) && f.isZero(1) && f.isZero(2) && f.isZero(3));
}

TEST(PerpendicularPoints, OfWhatIsNotANumberAreNone)
{
    EXPECT_EQ(0, feet(nan, 0, Ellipse{0, 0, 2, 1}).count);
    EXPECT_EQ(0, feet(inf, 0, Ellipse{0, 0, 2, 1}).count);
    EXPECT_EQ(0, feet(1, 0, Ellipse{0, 0, 2, 1, nan}).count);
    EXPECT_TRUE(feet(1, 0, Ellipse{0, 0, 2, 1, nan}).isZero(0));
}

TEST(PerpendicularPoints, LimitOfPassesGivesNoneAndClearsTheOutputs)
{
    const Ellipse e = {0, 0, 2, 1};
    int needed = 10000;
    const Found f = feet(0.1, 0.1, e, needed);
    ASSERT_GT(needed, 2);
    int passes = needed;
    EXPECT_TRUE(f.isSameAs(feet(0.1, 0.1, e, passes)));
    EXPECT_EQ(needed, passes);
    for (int limit : {needed - 1, 1, 0, -1}) {
        passes = limit;
        const Found stopped = feet(0.1, 0.1, e, passes);
        EXPECT_EQ(-1, passes);
        EXPECT_EQ(0, stopped.count);
        EXPECT_TRUE(stopped.isZero(0) && stopped.isZero(3));
    }
}

TEST(PerpendicularPoints, OutputsMayBeInputs)
{
    const Found expected = feet(0.1, 0.1, Ellipse{0, 0, 2, 1});
    double px = 0.1, py = 0.1, a = 2, b = 1, more[4];
    EXPECT_EQ(4, Calculate_Perpendicular_Points_To_Ellipse(px, py, 0, 0, a, b, 0, 0, fullTurn, a, px, py, b, more[0],
                                                           more[1], more[2], more[3]));
    EXPECT_EQ(expected.p[0], a);
    EXPECT_EQ(expected.p[1], px);
    EXPECT_EQ(expected.p[2], py);
    EXPECT_EQ(expected.p[3], b);
}

// Any bits

/// Any bits, infinities, denormals, numbers near the largest and the tolerances, and ordinary ones.
double rawDouble(TestRandom &random)
{
    switch (random.below(8)) {
    case 0:
    case 1:
        return random.anyDouble();
    case 2: {
        const double special[] = {nan, inf, -inf, 0.0, -0.0, 5e-324, 1e300, -1e300, 1e-50, 1e-10, 0.0001, 1e308};
        return special[random.below(12)];
    }
    default:
        return mixedDouble(random);
    }
}

TEST(IntersectEllipses, BoundedFormEndsOnAnyBitsAndEqualsTheUnboundedOne)
{
    TestRandom random(74);
    int settled = 0;
    for (int step = 0, steps = testSteps(60000); step < steps; ++step) {
        double v[14];
        for (double &value : v)
            value = random.below(4) == 0 ? rawDouble(random) : random.between(-3.0, 3.0);
        const Ellipse first = {v[0], v[1], v[2], v[3], v[4], v[5], v[6]};
        const Ellipse second = {v[7], v[8], v[9], v[10], v[11], v[12], v[13]};
        const int mask = random.between(-1, 4);
        int passes = 200;
        const Found bounded = crossing(first, second, mask, passes);
        ASSERT_LE(passes, 200);
        if (passes < 0) {
            EXPECT_TRUE(bounded.count == 0 && bounded.isUntouched());
            continue;
        }
        ++settled;
        EXPECT_TRUE(bounded.isSameAs(crossing(first, second, mask))) << "seed 74, step " << step;
        int passesOfArcs = 200;
        if (crossingOfArcs(first, second, mask, passesOfArcs).count >= 0 && passesOfArcs >= 0)
            crossingOfArcs(first, second, mask); // compares both forms
    }
    EXPECT_GT(settled, testSteps(50000));
}

TEST(PerpendicularPoints, BoundedFormEndsOnAnyBitsAndEqualsTheUnboundedOne)
{
    TestRandom random(75);
    int settled = 0;
    for (int step = 0, steps = testSteps(60000); step < steps; ++step) {
        double v[9];
        for (double &value : v)
            value = random.below(4) == 0 ? rawDouble(random) : random.between(-3.0, 3.0);
        const Ellipse e = {v[2], v[3], v[4], v[5], v[6], v[7], v[8]};
        int passes = 200;
        const Found bounded = feet(v[0], v[1], e, passes);
        ASSERT_LE(passes, 200);
        if (passes < 0) {
            EXPECT_EQ(0, bounded.count);
            continue;
        }
        ++settled;
        EXPECT_TRUE(bounded.isSameAs(feet(v[0], v[1], e))) << "seed 75, step " << step;
    }
    EXPECT_GT(settled, testSteps(40000));
}

} // namespace
