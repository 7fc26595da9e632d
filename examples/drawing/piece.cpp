#include "piece.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

double inner(const karD_Point &p, const karD_Point &q) { return p.x() * q.x() + p.y() * q.y(); }

karD_Point flat(const kar3D_Point &p) { return karD_Point(p.x(), p.y()); }

// Coordinates of a point along the axes of the ellipse.
karD_Point local(const Piece &arc, const karD_Point &point)
{
    const double c = std::cos(arc.rotation);
    const double s = std::sin(arc.rotation);
    const double x = point.x() - arc.centre.x();
    const double y = point.y() - arc.centre.y();
    return karD_Point(x * c + y * s, y * c - x * s);
}

// An ellipse seen edge-on: between the outermost of the ends and the turning points at phase and phase + pi.
Piece edgeOn(const karD_Point &centre, const karD_Point &u, const karD_Point &v, double phase, double from,
             double sweep)
{
    const auto at = [&](double t) {
        return karD_Point(centre.x() + (u.x() * std::cos(t) + v.x() * std::sin(t)),
                          centre.y() + (u.y() * std::cos(t) + v.y() * std::sin(t)));
    };
    std::vector<karD_Point> points{at(from), at(from + sweep)};
    for (const double turning : {phase, phase + pi})
        if (normalised(turning - from) <= sweep)
            points.push_back(at(turning));
    const karD_Point tip = at(phase);
    const karD_Point axis(tip.x() - centre.x(), tip.y() - centre.y());
    const auto along = [&axis](const karD_Point &p, const karD_Point &q) { return inner(p, axis) < inner(q, axis); };
    const auto [low, high] = std::minmax_element(points.begin(), points.end(), along);
    return straightPiece(*low, *high);
}

// Romberg's seven levels lose accuracy on flat ellipses, so stretches are halved until both ways agree.
double ellipticalLength(const Piece &arc, double from, double to, int depth)
{
    const auto length = [&arc](double t1, double t2) {
        return LengthOfEllipticalArc(arc.centre.x(), arc.centre.y(), arc.a, arc.b, arc.rotation, t1, t2);
    };
    const double middle = 0.5 * (from + to);
    const double whole = length(from, to);
    const double halves = length(from, middle) + length(middle, to);
    if (depth == 0 || std::fabs(whole - halves) <= 1e-13 * arc.a)
        return halves;
    return ellipticalLength(arc, from, middle, depth - 1) + ellipticalLength(arc, middle, to, depth - 1);
}

} // namespace

double normalised(double angle)
{
    const double rest = std::fmod(angle, fullTurn);
    const double positive = rest < 0 ? rest + fullTurn : rest;
    return positive < fullTurn ? positive : 0.0; // a tiny negative rest rounds up to the full turn
}

karD_Point Piece::at(double parameter) const
{
    const double x = a * std::cos(parameter);
    const double y = b * std::sin(parameter);
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    return karD_Point(centre.x() + (x * c - y * s), centre.y() + (x * s + y * c));
}

Piece straightPiece(const karD_Point &start, const karD_Point &end)
{
    Piece result;
    result.start = start;
    result.end = end;
    return result;
}

Piece curvedPiece(const kar3D_Point &centre3, const kar3D_Point &u3, const kar3D_Point &v3, double from, double sweep)
{
    constexpr double same = 1e-14; // relative: rounding of a turned circle
    constexpr double thin = 1e-9;  // b/a of an ellipse that counts as edge-on
    const karD_Point centre = flat(centre3);
    const karD_Point u = flat(u3);
    const karD_Point v = flat(v3);
    const double uu = inner(u, u);
    const double vv = inner(v, v);
    const double uv = inner(u, v);

    // u and v are conjugate half diameters; phase is the parameter at the end of the longer axis.
    const bool isRound = std::fabs(uv) <= same * (uu + vv) && std::fabs(uu - vv) <= same * (uu + vv);
    double phase = isRound ? 0.0 : 0.5 * std::atan2(2 * uv, uu - vv);
    const auto half = [&](double t) {
        return karD_Point(u.x() * std::cos(t) + v.x() * std::sin(t), u.y() * std::cos(t) + v.y() * std::sin(t));
    };
    const karD_Point major = half(phase);
    const karD_Point minor = half(phase + pi / 2);
    Piece result;
    result.curved = true;
    result.centre = centre;
    result.a = std::sqrt(inner(major, major));
    result.b = isRound ? result.a : std::sqrt(inner(minor, minor));
    if (result.b > result.a)
        std::swap(result.a, result.b); // by rounding alone
    if (!(result.b > thin * result.a))
        return edgeOn(centre, u, v, phase, from, sweep);

    result.rotation = std::atan2(major.y(), major.x());
    result.sweep = std::min(sweep, fullTurn);
    if (major.x() * minor.y() - major.y() * minor.x() > 0) {
        result.from = normalised(from - phase);
    } else { // the plane is seen from behind
        result.from = normalised(-((from + result.sweep) - phase));
        result.clockwise = true;
    }
    result.start = result.at(result.clockwise ? result.from + result.sweep : result.from);
    result.end = result.at(result.clockwise ? result.from : result.from + result.sweep);
    if (result.whole())
        result.end = result.start;
    return result;
}

Piece reversed(const Piece &piece)
{
    Piece result = piece;
    std::swap(result.start, result.end);
    result.clockwise = piece.curved && !piece.clockwise;
    return result;
}

karD_Rect exactBox(const Piece &piece)
{
    karD_Rect box(piece.start, piece.end);
    if (!piece.curved)
        return box;
    box.unionrect(CalculateBoundingRect(piece.centre.x(), piece.centre.y(), piece.a, piece.b, piece.rotation,
                                        piece.from, piece.to()));
    // That misses extremes whose parameter it finds below 0.
    const double c = std::cos(piece.rotation);
    const double s = std::sin(piece.rotation);
    const double furthestX = std::atan2(-(piece.b * s), piece.a * c);
    const double furthestY = std::atan2(piece.b * c, piece.a * s);
    for (const double t : {furthestX, furthestX + pi, furthestY, furthestY + pi})
        if (piece.holds(t))
            box.unionrect(karD_Rect(piece.at(t), piece.at(t)));
    return box;
}

karD_Rect sampledBox(const Piece &piece)
{
    if (!piece.curved)
        return karD_Rect(piece.start, piece.end);
    if (piece.whole())
        return CalculateBoundingRect(piece.centre.x(), piece.centre.y(), piece.a, piece.b, piece.rotation);
    constexpr double degree = pi / 180;
    std::vector<karD_Point> samples{piece.start, piece.end};
    for (int i = 1; i * degree < piece.sweep; ++i)
        samples.push_back(piece.at(piece.from + i * degree));
    return CalculateBoundingRect(karArrayT<karD_Point>{samples.data(), static_cast<unsigned>(samples.size())});
}

double lengthOf(const Piece &piece)
{
    if (!piece.curved)
        return piece.start.DistEuk(piece.end);
    if (piece.round())
        return piece.a * piece.sweep;
    constexpr int deepest = 12;
    double length = 0;
    double t = piece.from; // quarter by quarter, so that the sharp ends lie between stretches
    const double end = piece.from + piece.sweep;
    while (t < end) {
        const double next = std::min(end, (std::floor(t / (pi / 2) + 1e-9) + 1) * (pi / 2));
        length += ellipticalLength(piece, t, next, deepest);
        t = next;
    }
    return length;
}

double offset(const Piece &piece, const karD_Point &point, karD_Point &normal)
{
    if (!piece.curved) {
        const kar2DVector along(piece.start, piece.end, true);
        normal.Set(-along.GetY(), along.GetX());
        return inner(normal, karD_Point(point.x() - piece.start.x(), point.y() - piece.start.y()));
    }
    // f = (x/a)^2 + (y/b)^2 - 1 divided by the length of its gradient.
    const karD_Point p = local(piece, point);
    const double gx = p.x() / (piece.a * piece.a);
    const double gy = p.y() / (piece.b * piece.b);
    const double steepness = std::sqrt(gx * gx + gy * gy);
    if (!(steepness > 0)) { // the centre
        normal.Set(-std::sin(piece.rotation), std::cos(piece.rotation));
        return -piece.b;
    }
    const double c = std::cos(piece.rotation);
    const double s = std::sin(piece.rotation);
    normal.Set((gx * c - gy * s) / steepness, (gx * s + gy * c) / steepness);
    return ((p.x() * gx + p.y() * gy) - 1) / (2 * steepness);
}

double gap(const Piece &piece, const karD_Point &point)
{
    const double toEnds = std::min(point.DistEuk(piece.start), point.DistEuk(piece.end));
    karD_Point normal;
    if (!piece.curved) {
        const karD_Point along(piece.end.x() - piece.start.x(), piece.end.y() - piece.start.y());
        const double reach = inner(along, karD_Point(point.x() - piece.start.x(), point.y() - piece.start.y()));
        return reach > 0 && reach < inner(along, along) ? std::fabs(offset(piece, point, normal)) : toEnds;
    }
    const karD_Point p = local(piece, point);
    if (!piece.whole() && !piece.holds(std::atan2(p.y() / piece.b, p.x() / piece.a)))
        return toEnds;
    return std::min(toEnds, std::fabs(offset(piece, point, normal)));
}
