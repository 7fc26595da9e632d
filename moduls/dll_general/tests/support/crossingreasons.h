// Pairs of curves with a known common point, and why the intersections miss it, if they do.
#ifndef KAR_TEST_CROSSING_REASONS_H
#define KAR_TEST_CROSSING_REASONS_H

#include "karintersect.h"

#include "curvesteps.h"
#include "testrandom.h"

#include <cmath>

enum class Miss {
    none,           ///< reported within 1e-6
    parallel,       ///< slopes that differ by less than 1e-50, or two vertical lines
    discriminant,   ///< rounded below zero
    rootAtInfinity, ///< the leading coefficient counts as zero: t = pi is lost
    unsettled,      ///< the iteration doesn't end
    smallFirst,     ///< a1*b1 below 0.0001
    imaginaryPart,  ///< of a double root, at or above 0.0001
    notANumber,     ///< a division by zero in the iteration or in the quadratics
    offSegment,     ///< outside the box of the end points by more than 1e-10
    offCurve,       ///< the test of a limit or a foot: its square off by 1e-10 or more
    cosineAboveOne, ///< the test of a limit or a foot: a cosine that rounds above 1, of which acos is not a number
    inexact,        ///< reported, but further away than 1e-6
    count
};

inline const char *describe(Miss miss)
{
    const char *const texts[] = {"reported within 1e-6",
                                 "parallel within 1e-50",
                                 "discriminant rounds below 0",
                                 "leading coefficient counts as 0: t = pi lost",
                                 "iteration doesn't settle",
                                 "a1*b1 below 0.0001",
                                 "imaginary part not below 0.0001",
                                 "root is not a number",
                                 "limit: outside the box of the end points",
                                 "limit: more than 1e-10 off in squares",
                                 "limit: cosine rounds above 1",
                                 "reported further away than 1e-6"};
    return texts[static_cast<int>(miss)];
}

/// A point, and where the curves through it have it.
struct Common {
    double x, y;
    double t;    ///< parameter on the last curve
    double sine; ///< of the angle between the curves
};

constexpr double crossingFullTurn = 6.283185307179586;
/// Passes after which a pair counts as one that doesn't settle.
constexpr int crossingPasses = 10000;

inline plain::Ellipse randomWhole(TestRandom &random, bool circle)
{
    plain::Ellipse e;
    e.cx = random.between(-10.0, 10.0);
    e.cy = random.between(-10.0, 10.0);
    e.a = random.between(0.1, 5.0);
    e.b = circle ? e.a : random.between(0.1, 5.0);
    e.r = circle ? 0.0 : random.between(0.0, crossingFullTurn);
    e.start = 0;
    e.end = crossingFullTurn;
    return e;
}

/// Unit tangent.
inline void tangentAt(const plain::Ellipse &e, double t, double &tx, double &ty)
{
    tx = -e.P() * std::sin(t) + e.Q() * std::cos(t);
    ty = -e.R() * std::sin(t) + e.S() * std::cos(t);
    const double length = std::sqrt(tx * tx + ty * ty);
    tx /= length;
    ty /= length;
}

/// A segment through (x, y) in the direction of `angle`, with 0.1 to 5 to both sides.
inline plain::Line segmentThrough(TestRandom &random, double x, double y, double angle)
{
    const double before = random.between(0.1, 5.0);
    const double behind = random.between(0.1, 5.0);
    return {x - before * std::cos(angle), y - before * std::sin(angle), x + behind * std::cos(angle),
            y + behind * std::sin(angle)};
}

/// A segment through a point of the ellipse.
inline Common lineThrough(TestRandom &random, const plain::Ellipse &e, plain::Line &line)
{
    const double t = random.between(0.0, crossingFullTurn);
    const double angle = random.between(0.0, crossingFullTurn);
    const double x = e.x(std::cos(t), std::sin(t)), y = e.y(std::cos(t), std::sin(t));
    line = segmentThrough(random, x, y, angle);
    double tx, ty;
    tangentAt(e, t, tx, ty);
    return {x, y, t, std::fabs(tx * std::sin(angle) - ty * std::cos(angle))};
}

/// Moves the second ellipse so that its point of t2 is the one of t1 on the first.
inline Common moveTogether(const plain::Ellipse &first, double t1, plain::Ellipse &second, double t2)
{
    const double x = first.x(std::cos(t1), std::sin(t1)), y = first.y(std::cos(t1), std::sin(t1));
    second.cx = second.cy = 0;
    const double dx = second.x(std::cos(t2), std::sin(t2)), dy = second.y(std::cos(t2), std::sin(t2));
    second.cx = x - dx;
    second.cy = y - dy;
    double ax, ay, bx, by;
    tangentAt(first, t1, ax, ay);
    tangentAt(second, t2, bx, by);
    return {x, y, t2, std::fabs(ax * by - ay * bx)};
}

/// Whether one of the pairs of `at` lies within `bound` of (x, y).
inline bool isReported(const double *at, int pairs, double x, double y, double bound)
{
    for (int i = 0; i < pairs; ++i)
        if (std::fabs(at[2 * i] - x) <= bound && std::fabs(at[2 * i + 1] - y) <= bound)
            return true;
    return false;
}

/// The rule of the ellipse's limit by which the offset is refused; `Miss::none` if it isn't.
inline Miss refusal(const plain::Ellipse &e, double dx, double dy)
{
    if (e.holdsOffset(dx, dy))
        return Miss::none;
    const double det = e.P() * e.S() - e.Q() * e.R();
    const double u = (e.S() * dx - e.Q() * dy) / det, v = (e.P() * dy - e.R() * dx) / det;
    return std::fabs(u * u + v * v - 1) < 1e-10 ? Miss::cosineAboveOne : Miss::offCurve;
}

constexpr double reportBound = 1e-6;

inline Miss whyMissed(const plain::Line &g, const plain::Line &h, const Common &point)
{
    double at[2];
    const auto ask = [&](int mask) {
        return Intersect_Line_Line(g.x1, g.y1, g.x2, g.y2, h.x1, h.y1, h.x2, h.y2, mask, at[0], at[1]);
    };
    if (ask(3) == 1)
        return isReported(at, 1, point.x, point.y, reportBound) ? Miss::none : Miss::inexact;
    if (ask(0) == 0)
        return Miss::parallel;
    return Miss::offSegment;
}

inline Miss whyMissed(const plain::Line &g, const plain::Ellipse &e, const Common &point)
{
    double at[4];
    const auto ask = [&](int mask) {
        return Intersect_Line_EllipticalArc(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, mask,
                                            at[0], at[1], at[2], at[3]);
    };
    const int limited = ask(3);
    if (isReported(at, limited, point.x, point.y, reportBound))
        return Miss::none;
    const int unlimited = ask(0);
    for (int i = 0; i < unlimited; ++i) {
        if (!isReported(at + 2 * i, 1, point.x, point.y, reportBound))
            continue;
        return g.holds(at[2 * i], at[2 * i + 1]) ? refusal(e, at[2 * i] - e.cx, at[2 * i + 1] - e.cy)
                                                 : Miss::offSegment;
    }
    if (unlimited == 0)
        return Miss::discriminant;
    // A second point at t = 0 alone tells a linear equation.
    if (unlimited == 2 && at[2] == e.cx + e.P() + e.Q() * 0.0 && std::cos(point.t) < -0.999)
        return Miss::rootAtInfinity;
    return Miss::inexact;
}

inline Miss whyMissed(const plain::Ellipse &first, const plain::Ellipse &second, const Common &point)
{
    double at[8];
    const auto ask = [&](int mask, int &passes) {
        for (double &value : at)
            value = 1e300;
        Intersect_Ellipse_Ellipse(first.cx, first.cy, first.a, first.b, first.r, first.start, first.end, second.cx,
                                  second.cy, second.a, second.b, second.r, second.start, second.end, mask, at[0], at[1],
                                  at[2], at[3], at[4], at[5], at[6], at[7], passes);
    };
    int passes = crossingPasses;
    ask(3, passes);
    if (isReported(at, 4, point.x, point.y, reportBound))
        return Miss::none;
    if (passes < 0)
        return Miss::unsettled;
    ask(0, passes = crossingPasses);
    for (int i = 0; i < 4; ++i) {
        if (!isReported(at + 2 * i, 1, point.x, point.y, reportBound))
            continue;
        const Miss miss = refusal(first, at[2 * i] - first.cx, at[2 * i + 1] - first.cy);
        return miss != Miss::none ? miss : refusal(second, at[2 * i] - second.cx, at[2 * i + 1] - second.cy);
    }
    double e[5];
    if (std::fabs(plain::quartic(first, second, e)) < 0.0001)
        return Miss::smallFirst;
    if (std::fabs(e[0]) < 0.0001 && std::cos(point.t) < -0.9)
        return Miss::rootAtInfinity;
    plain::Complex root[4];
    const int roots = plain::rootsOf(e, root, passes = crossingPasses);
    for (int i = 0; i < roots; ++i) {
        if (root[i].re != root[i].re || root[i].im != root[i].im)
            return Miss::notANumber;
        const double t = 2 * std::atan(root[i].re);
        if (std::fabs(root[i].im) >= 0.0001 && std::fabs(second.x(std::cos(t), std::sin(t)) - point.x) < 0.05 &&
            std::fabs(second.y(std::cos(t), std::sin(t)) - point.y) < 0.05)
            return Miss::imaginaryPart;
    }
    return Miss::inexact;
}

/// Why the foot at the parameter `foot.t` of a perpendicular from (px, py) is missed.
inline Miss whyMissed(double px, double py, const plain::Ellipse &e, const Common &foot)
{
    double at[8];
    int passes = crossingPasses;
    const int feet = Calculate_Perpendicular_Points_To_Ellipse(px, py, e.cx, e.cy, e.a, e.b, e.r, e.start, e.end, at[0],
                                                               at[1], at[2], at[3], at[4], at[5], at[6], at[7], passes);
    if (isReported(at, feet, foot.x, foot.y, reportBound))
        return Miss::none;
    if (passes < 0)
        return Miss::unsettled;
    plain::Complex z[4];
    const int roots = plain::rootsOfFeet(px, py, e, z, passes = crossingPasses);
    bool number = true;
    for (int i = 0; i < roots; ++i) {
        const double dx = e.Q() * z[i].im + e.P() * z[i].re, dy = e.S() * z[i].im + e.R() * z[i].re;
        number = number && std::isfinite(dx) && std::isfinite(dy);
        const bool near = std::fabs(z[i].re - std::cos(foot.t)) < 0.01 && std::fabs(z[i].im - std::sin(foot.t)) < 0.01;
        if (near && refusal(e, dx, dy) != Miss::none)
            return refusal(e, dx, dy);
    }
    return number ? Miss::inexact : Miss::notANumber;
}

#endif
