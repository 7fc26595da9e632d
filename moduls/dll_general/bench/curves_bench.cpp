// Intersections of whole curves, feet of perpendiculars and extents of arcs beside Open CASCADE: time a call, known
// crossings that are missed in a million, points reported a call, and the largest distance of a reported point from its
// curves. Pairs on which the iteration doesn't settle are left out. A limit is the time of stated steps alone.
#include "karextent.h"
#include "karintersect.h"

#include <benchmark/benchmark.h>

#include <BndLib.hxx>
#include <Bnd_Box2d.hxx>
#include <Extrema_ExtPElC2d.hxx>
#include <Extrema_POnCurv2d.hxx>
#include <IntAna2d_AnaIntersection.hxx>
#include <IntAna2d_Conic.hxx>
#include <IntAna2d_IntPoint.hxx>
#include <gp_Ax22d.hxx>
#include <gp_Circ2d.hxx>
#include <gp_Elips2d.hxx>
#include <gp_Lin2d.hxx>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr double fullTurn = 6.283185307179586;
constexpr int mostPasses = 1000;
constexpr double nowhere = 1e300;

struct Point {
    double x, y;
};

struct Ellipse {
    double cx, cy, a, b, rotation;

    Point at(double t) const
    {
        const double c = std::cos(rotation), s = std::sin(rotation);
        return {cx + a * c * std::cos(t) - b * s * std::sin(t), cy + a * s * std::cos(t) + b * c * std::sin(t)};
    }
    /// To first order.
    double distance(Point p) const
    {
        const double c = std::cos(rotation), s = std::sin(rotation);
        const double u = (c * (p.x - cx) + s * (p.y - cy)) / a, v = (c * (p.y - cy) - s * (p.x - cx)) / b;
        return std::fabs(u * u + v * v - 1) / (2 * std::sqrt(u * u / (a * a) + v * v / (b * b)));
    }
    gp_Elips2d peer() const
    {
        return gp_Elips2d(gp_Ax22d(gp_Pnt2d(cx, cy), gp_Dir2d(std::cos(rotation), std::sin(rotation))), a, b);
    }
    gp_Circ2d peerCircle() const { return gp_Circ2d(gp_Ax22d(gp_Pnt2d(cx, cy), gp_Dir2d(1, 0)), a); }
};

/// A line by two points, or a point to drop perpendiculars from.
struct Line {
    double x1, y1, x2, y2;

    double distance(Point p) const
    {
        const double dx = x2 - x1, dy = y2 - y1;
        return std::fabs((p.x - x1) * dy - (p.y - y1) * dx) / std::sqrt(dx * dx + dy * dy);
    }
    gp_Lin2d peer() const { return gp_Lin2d(gp_Pnt2d(x1, y1), gp_Dir2d(x2 - x1, y2 - y1)); }
};

/// Up to four points; a slot that is left out lies nowhere.
struct Points {
    Point at[4] = {{nowhere, 0}, {nowhere, 0}, {nowhere, 0}, {nowhere, 0}};

    /// Calls `visit` for each that lies anywhere.
    template <class Visit>
    void each(Visit visit) const
    {
        for (const Point &p : at)
            if (p.x < nowhere)
                visit(p);
    }
};

/// Curves with a known common point, or a point with a known foot.
struct Case {
    Line line;
    Ellipse first, second;
    double start, end; // of the first as an arc
    Point known;
};

/// `arcArc` asks for two slots, `circles` for the four in which the iteration puts its points.
enum Kind {
    lineArc,
    lineEllipse,
    arcArc,
    circles,
    ellipseEllipse,
    feet,
    extent,
    wholeExtent
};

template <Kind kind>
struct Ours {
    /// Passes that were needed, or -1.
    static int solve(const Case &c, Points &p)
    {
        const Ellipse &e = c.first, &f = c.second;
        const Line &g = c.line;
        Point *const q = p.at;
        int passes = mostPasses;
        if constexpr (kind == lineArc)
            Intersect_Line_Arc(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, 0, fullTurn, 0, q[0].x, q[0].y, q[1].x, q[1].y);
        else if constexpr (kind == lineEllipse)
            Intersect_Line_Ellipse(g.x1, g.y1, g.x2, g.y2, e.cx, e.cy, e.a, e.b, e.rotation, 0, q[0].x, q[0].y, q[1].x,
                                   q[1].y);
        else if constexpr (kind == arcArc)
            Intersect_Arc_Arc(e.cx, e.cy, e.a, 0, fullTurn, f.cx, f.cy, f.a, 0, fullTurn, 0, q[0].x, q[0].y, q[1].x,
                              q[1].y, passes);
        else if constexpr (kind == circles)
            Intersect_Ellipse_Ellipse(e.cx, e.cy, e.a, e.a, 0, 0, fullTurn, f.cx, f.cy, f.a, f.a, 0, 0, fullTurn, 0,
                                      q[0].x, q[0].y, q[1].x, q[1].y, q[2].x, q[2].y, q[3].x, q[3].y, passes);
        else if constexpr (kind == ellipseEllipse)
            Intersect_Ellipse_Ellipse(e.cx, e.cy, e.a, e.b, e.rotation, 0, fullTurn, f.cx, f.cy, f.a, f.b, f.rotation,
                                      0, fullTurn, 0, q[0].x, q[0].y, q[1].x, q[1].y, q[2].x, q[2].y, q[3].x, q[3].y,
                                      passes);
        else if constexpr (kind == feet) {
            const int count = Calculate_Perpendicular_Points_To_Ellipse(g.x1, g.y1, e.cx, e.cy, e.a, e.b, e.rotation, 0,
                                                                        fullTurn, q[0].x, q[0].y, q[1].x, q[1].y,
                                                                        q[2].x, q[2].y, q[3].x, q[3].y, passes);
            for (int i = count; i < 4; ++i)
                q[i].x = nowhere;
        } else {
            const karD_Rect r = kind == extent ? CalculateBoundingRect(e.cx, e.cy, e.a, e.b, e.rotation, c.start, c.end)
                                               : CalculateBoundingRect(e.cx, e.cy, e.a, e.b, e.rotation);
            q[0] = {r.left(), r.bottom()};
            q[1] = {r.right(), r.top()};
        }
        return passes;
    }
};

template <Kind kind>
struct OpenCascade {
    static void take(const IntAna2d_AnaIntersection &found, Points &p)
    {
        if (!found.IsDone() || found.IsEmpty())
            return;
        for (int i = 0; i < found.NbPoints() && i < 4; ++i)
            p.at[i] = {found.Point(i + 1).Value().X(), found.Point(i + 1).Value().Y()};
    }
    static int solve(const Case &c, Points &p)
    {
        if constexpr (kind == lineArc) {
            take(IntAna2d_AnaIntersection(c.line.peer(), c.first.peerCircle()), p);
        } else if constexpr (kind == lineEllipse) {
            take(IntAna2d_AnaIntersection(c.line.peer(), IntAna2d_Conic(c.first.peer())), p);
        } else if constexpr (kind == arcArc || kind == circles) {
            take(IntAna2d_AnaIntersection(c.first.peerCircle(), c.second.peerCircle()), p);
        } else if constexpr (kind == ellipseEllipse) {
            take(IntAna2d_AnaIntersection(c.first.peer(), IntAna2d_Conic(c.second.peer())), p);
        } else if constexpr (kind == feet) {
            const Extrema_ExtPElC2d found(gp_Pnt2d(c.line.x1, c.line.y1), c.first.peer(), 1e-10, 0, fullTurn);
            for (int i = 0; found.IsDone() && i < found.NbExt() && i < 4; ++i)
                p.at[i] = {found.Point(i + 1).Value().X(), found.Point(i + 1).Value().Y()};
        } else {
            Bnd_Box2d box;
            if constexpr (kind == extent)
                BndLib::Add(c.first.peer(), c.start, c.end, 0.0, box);
            else
                BndLib::Add(c.first.peer(), 0.0, box);
            box.Get(p.at[0].x, p.at[0].y, p.at[1].x, p.at[1].y);
        }
        return 0;
    }
};

/// Axes a > b, as the peer asks; every ellipse within 10 of the origin.
template <Kind kind>
std::vector<Case> makeCases(unsigned count)
{
    std::mt19937_64 engine(7);
    std::uniform_real_distribution<double> place(-10.0, 10.0), axis(0.5, 5.0), angle(0.0, fullTurn), share(0.3, 0.95);
    const auto ellipse = [&] {
        Ellipse e;
        e.cx = place(engine);
        e.cy = place(engine);
        e.a = axis(engine);
        e.b = e.a * share(engine);
        e.rotation = angle(engine);
        if (kind == lineArc || kind == arcArc || kind == circles) {
            e.b = e.a;
            e.rotation = 0;
        }
        return e;
    };
    std::vector<Case> cases;
    while (cases.size() < count) {
        Case c;
        c.first = ellipse();
        c.second = ellipse();
        const double t1 = angle(engine), t2 = angle(engine), direction = angle(engine);
        c.known = c.first.at(t1);
        const Point other = c.second.at(t2);
        c.second.cx += c.known.x - other.x;
        c.second.cy += c.known.y - other.y;
        c.line = {c.known.x - std::cos(direction), c.known.y - std::sin(direction), c.known.x + std::cos(direction),
                  c.known.y + std::sin(direction)};
        if (kind == feet) {
            const double step = 1e-6;
            const Point p = c.first.at(t1 - step), q = c.first.at(t1 + step);
            const double length = std::sqrt((q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y));
            const double along = 0.3 * place(engine);
            c.line.x1 = c.known.x - along * (q.y - p.y) / length;
            c.line.y1 = c.known.y + along * (q.x - p.x) / length;
        }
        c.start = angle(engine);
        c.end = angle(engine);
        Points points;
        if (Ours<kind>::solve(c, points) >= 0)
            cases.push_back(c);
    }
    return cases;
}

template <Kind kind>
const char *rule()
{
    switch (kind) {
    case arcArc:
    case circles:
    case ellipseEllipse:
    case feet:
        return "quartic by iteration to 1e-10";
    case extent:
        return "four candidates by arctangents";
    case wholeExtent:
        return "361 samples, one a degree";
    default:
        return "";
    }
}

template <template <Kind> class Peer, Kind kind>
void time(benchmark::State &state)
{
    const std::vector<Case> cases = makeCases<kind>(1000);
    for (auto _ : state)
        for (const Case &c : cases) {
            Points points;
            Peer<kind>::solve(c, points);
            benchmark::DoNotOptimize(points);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cases.size()));
    state.SetLabel(rule<kind>());
}

/// The passes for the first factor of a quartic of two circles.
struct PassesAlone {
    double e4, e3, e2, e1, e0;

    explicit PassesAlone(const Case &c)
    {
        const Ellipse &e = c.first, &f = c.second;
        const double dx = f.cx - e.cx, dy = f.cy - e.cy, square = e.a * e.a;
        const double sum = square * (f.a * f.a + dx * dx + dy * dy - square);
        e4 = sum - 2 * square * dx * f.a;
        e3 = e1 = 4 * square * dy * f.a;
        e2 = 2 * sum;
        e0 = sum + 2 * square * dx * f.a;
    }
    double run() const
    {
        double p = 0, q = 0, ratio;
        do {
            const double b1 = e3 - p * e4, c1 = b1 - p * e4;
            const double b2 = e2 - p * b1 - q * e4, c2 = b2 - p * c1 - q * e4;
            const double b3 = e1 - p * b2 - q * b1, c3 = b3 - p * c2 - q * c1;
            const double b4 = e0 - p * b3 - q * b2;
            const double d = b3 - c3, D = c2 * c2 + d * c1;
            const double dp = (c2 * b3 - c1 * b4) / D, dq = (d * b3 + c2 * b4) / D;
            p += dp;
            q += dq;
            ratio = (std::fabs(dp) + std::fabs(dq)) / (std::fabs(p) + std::fabs(q));
        } while (ratio > 1e-10);
        return p + q;
    }
};

/// The candidates of an arc's extent, and sines and cosines of those in range and of its ends.
struct AnglesAlone {
    double ratio, rotation;
    std::vector<double> parameters;

    explicit AnglesAlone(const Case &c)
        : ratio(c.first.b / c.first.a), rotation(c.first.rotation), parameters{c.start, c.end}
    {
        const double tangent = std::tan(rotation);
        for (const double t : {std::atan(ratio / tangent), std::atan(-ratio * tangent)})
            for (const double candidate : {t, t + fullTurn / 2}) {
                const bool after = c.start <= candidate, before = candidate <= c.end;
                if (c.end > c.start ? after && before : after || before)
                    parameters.push_back(candidate);
            }
    }
    double run() const
    {
        const double tangent = std::tan(rotation);
        double sum = std::cos(rotation) + std::sin(rotation);
        sum += std::atan(ratio / tangent) + std::atan(-ratio * tangent);
        for (const double t : parameters)
            sum += std::cos(t) + std::sin(t);
        return sum;
    }
};

/// Four samples of a whole ellipse that are known to be its extremes.
struct SamplesAlone {
    Ellipse e;
    double cosines[4], sines[4];

    explicit SamplesAlone(const Case &c) : e(c.first)
    {
        const double A = e.a * std::cos(e.rotation), B = e.b * std::sin(e.rotation);
        for (int i = 0; i < 4; ++i) {
            const double t = std::atan2(B, A) + i * (fullTurn / 4);
            cosines[i] = std::cos(t);
            sines[i] = std::sin(t);
        }
    }
    double run() const
    {
        const double c = std::cos(e.rotation), s = std::sin(e.rotation);
        double sum = 0;
        for (int i = 0; i < 4; ++i) {
            const double u = e.a * cosines[i], v = e.b * sines[i];
            sum += i < 2 ? u * c + v * s + e.cx : u * s + e.cy - v * c;
        }
        return sum;
    }
};

template <class Steps, Kind kind>
void limit(benchmark::State &state)
{
    std::vector<Steps> all;
    for (const Case &c : makeCases<kind>(1000))
        all.emplace_back(c);
    for (auto _ : state)
        for (const Steps &steps : all)
            benchmark::DoNotOptimize(steps.run());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(all.size()));
    state.SetLabel(kind == extent        ? "the stated calls of the C library"
                   : kind == wholeExtent ? "four samples of known places"
                                         : "the passes of the iteration");
}

/// Known crossings or feet in a million that are not reported within 1e-6.
template <template <Kind> class Peer, Kind kind>
void missed(benchmark::State &state)
{
    const std::vector<Case> cases = makeCases<kind>(100000);
    double count = 0;
    for (auto _ : state)
        for (const Case &c : cases) {
            Points found;
            Peer<kind>::solve(c, found);
            double nearest = nowhere;
            found.each([&](const Point &p) {
                nearest = std::min(nearest, std::max(std::fabs(p.x - c.known.x), std::fabs(p.y - c.known.y)));
            });
            count += nearest <= 1e-6 ? 0 : 1;
        }
    state.counters["value"] = count * 1e6 / static_cast<double>(cases.size());
    state.SetLabel(kind == lineArc || kind == lineEllipse ? ""
                   : kind == feet                         ? "squared modulus within 1e-10 of 1"
                                                          : "t = pi is lost");
}

/// Points reported a call: how many there are is the same for all.
template <template <Kind> class Peer, Kind kind>
void reported(benchmark::State &state)
{
    const std::vector<Case> cases = makeCases<kind>(100000);
    double count = 0;
    for (auto _ : state)
        for (const Case &c : cases) {
            Points found;
            Peer<kind>::solve(c, found);
            found.each([&](const Point &) { ++count; });
        }
    state.counters["value"] = count / static_cast<double>(cases.size());
    state.SetLabel("points: more is better");
}

/// The largest distance of a reported point from its curves in units of 1e-12.
template <template <Kind> class Peer, Kind kind>
void distance(benchmark::State &state)
{
    const std::vector<Case> cases = makeCases<kind>(100000);
    double largest = 0;
    for (auto _ : state)
        for (const Case &c : cases) {
            Points found;
            Peer<kind>::solve(c, found);
            found.each([&](const Point &p) {
                double off = c.first.distance(p);
                if (kind == lineArc || kind == lineEllipse)
                    off = std::max(off, c.line.distance(p));
                if (kind == circles || kind == ellipseEllipse)
                    off = std::max(off, c.second.distance(p));
                largest = std::max(largest, off);
            });
        }
    state.counters["value"] = largest / 1e-12;
    state.SetLabel(kind == lineArc || kind == lineEllipse ? "u = tan(t/2)"
                   : kind == feet                         ? "squared modulus within 1e-10 of 1"
                                                          : "imaginary parts below 0.0001 count as 0");
}

} // namespace

#define CURVES(kind, name)                                                                                             \
    BENCHMARK(time<Ours, kind>)->Name("Curves/" name "/ours");                                                         \
    BENCHMARK(time<OpenCascade, kind>)->Name("Curves/" name "/occt")
#define CURVE_POINTS(kind, name)                                                                                       \
    BENCHMARK(missed<Ours, kind>)->Name("Curves/" name "_missed/ours")->Iterations(1);                                 \
    BENCHMARK(missed<OpenCascade, kind>)->Name("Curves/" name "_missed/occt")->Iterations(1);                          \
    BENCHMARK(reported<Ours, kind>)->Name("Curves/" name "_points/ours")->Iterations(1);                               \
    BENCHMARK(reported<OpenCascade, kind>)->Name("Curves/" name "_points/occt")->Iterations(1);                        \
    BENCHMARK(distance<Ours, kind>)->Name("Curves/" name "_distance/ours")->Iterations(1);                             \
    BENCHMARK(distance<OpenCascade, kind>)->Name("Curves/" name "_distance/occt")->Iterations(1)

CURVES(lineArc, "line_arc");
CURVES(lineEllipse, "line_ellipse");
CURVES(arcArc, "arc_arc");
CURVES(circles, "arc_arc_four_slots");
CURVES(ellipseEllipse, "ellipse_ellipse");
CURVES(feet, "feet");
CURVES(extent, "arc_extent");
CURVES(wholeExtent, "whole_extent");
BENCHMARK(limit<PassesAlone, arcArc>)->Name("Curves/arc_arc/limit");
BENCHMARK(limit<PassesAlone, circles>)->Name("Curves/arc_arc_four_slots/limit");
BENCHMARK(limit<AnglesAlone, extent>)->Name("Curves/arc_extent/limit");
BENCHMARK(limit<SamplesAlone, wholeExtent>)->Name("Curves/whole_extent/limit");
CURVE_POINTS(lineArc, "line_arc");
CURVE_POINTS(lineEllipse, "line_ellipse");
CURVE_POINTS(circles, "arc_arc_four_slots");
CURVE_POINTS(ellipseEllipse, "ellipse_ellipse");
CURVE_POINTS(feet, "feet");
