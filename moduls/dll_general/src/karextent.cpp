#include "karextent.h"

#include "ellipseaxes.h"
#include "karnumeric.h"
#include "karsolve.h"
#include "realpair.h"

#include <cmath>
#include <initializer_list>

using kar::fullTurn;
using kar::halfPi;
using kar::pi;

namespace {

constexpr double degree = 0.017453292519943295;
constexpr double farthestOfPoints = 1e+300; // extremes start from here
constexpr double farthestOfEllipse = 1e+100;

bool near(double a, double b) { return std::fabs(a - b) < kar::lengthTolerance; }

bool alongAxes(double rotation) { return near(rotation, 0.0) || near(rotation, pi) || near(rotation, fullTurn); }

bool acrossAxes(double rotation) { return near(rotation, halfPi) || near(rotation, kar::threeHalfPi); }

/// The strict extremes of values. What is not a number doesn't move them.
struct Range {
    double least;
    double most;

    explicit Range(double farthest) : least(farthest), most(-farthest) {}

    void add(double value)
    {
        least = value < least ? value : least;
        most = value > most ? value : most;
    }
};

struct Extremes {
    Range x;
    Range y;

    explicit Extremes(double farthest) : x(farthest), y(farthest) {}

    void add(double atX, double atY)
    {
        x.add(atX);
        y.add(atY);
    }
    karD_Rect rect() const { return karD_Rect(x.least, y.least, x.most, y.most); }
};

/// Cosines and sines of the degrees, as the C library gives them. They only make samples faster.
class Degrees {
public:
    static constexpr int last = 360;
    double cosine[last + 1];
    double sine[last + 1];

    static const Degrees &all()
    {
        static const Degrees degrees;
        return degrees;
    }

private:
    Degrees()
    {
        for (int i = 0; i <= last; ++i) {
            const double t = i * degree;
            cosine[i] = std::cos(t);
            sine[i] = std::sin(t);
        }
    }
};

/// The points of a whole ellipse one degree apart, from 0 to 360.
class DegreeSamples {
public:
    DegreeSamples(double centreX, double centreY, double axisA, double axisB, double rotation)
        : cx(centreX), cy(centreY), a(axisA), b(axisB), c(std::cos(rotation)), s(std::sin(rotation))
    {}

    karD_Rect rect() const
    {
        Extremes extremes(farthestOfEllipse);
        if (nearestAreExtremes()) {
            addNearest(extremes.x, a * c, b * s, [this](auto cosT, auto sinT) { return x(cosT, sinT); });
            addNearest(extremes.y, a * s, -b * c, [this](auto cosT, auto sinT) { return y(cosT, sinT); });
        } else {
            for (int i = 0; i <= Degrees::last; ++i)
                extremes.add(x(degrees.cosine[i], degrees.sine[i]), y(degrees.cosine[i], degrees.sine[i]));
        }
        return extremes.rect();
    }

private:
    /// Of one sample, or of two at once.
    template <class Number>
    Number x(Number cosT, Number sinT) const
    {
        const Number u = a * cosT;
        const Number v = b * sinT;
        return ((u * c) + (v * s)) + cx;
    }
    template <class Number>
    Number y(Number cosT, Number sinT) const
    {
        const Number u = a * cosT;
        const Number v = b * sinT;
        return ((u * s) + cy) - (v * c);
    }

    /// Whether the samples that `addNearest` takes are the extremes of all. Of A*cos(t - f) the one nearest to f is at
    /// most half a degree away and any that is left out at least one, or 0.22 and 0.78 where the angle errs: the first
    /// is higher by 8e-5*A. Rounding, and sines with errors up to 1e-6, stay far below that for a centre within 1e7
    /// half heights: y is rounded with it before its last difference, x only at the end, which keeps the order. An
    /// extreme of 0 is the difference of equal numbers that aren't 0, so it is +0 whichever sample is the first.
    bool nearestAreExtremes() const
    {
        constexpr double largest = 1e300;   // no sum with a centre so near is infinite
        constexpr double smallest = 1e-290; // far above the numbers that lose digits
        constexpr double farthest = 1e7;
        const double halfWidth = std::fabs(a * c) + std::fabs(b * s); // up to sqrt(2) times of it
        const double halfHeight = std::fabs(a * s) + std::fabs(b * c);
        return halfWidth > smallest && halfWidth < largest && halfHeight > smallest && halfHeight < largest &&
               std::fabs(cy) < farthest * halfHeight;
    }

    /// Adds the samples on both sides of f and of the place opposite, f being the angle of (A, B). Those of 0 and 360
    /// degrees are one place but for the last bit: behind f comes 0, before it 360, which has a sine below zero.
    template <class Place>
    void addNearest(Range &range, double A, double B, Place place) const
    {
        const int below = degreeBelow(A, B);
        for (const int i : {below, below + 180}) {
            const kar::RealPair places = place(kar::pairAt(degrees.cosine + i), kar::pairAt(degrees.sine + i));
            range.add(places[0]);
            range.add(places[1]);
        }
    }

    /// The degree below the angle of (A, B), less half a turn where that is left: 0 to 179. The angle errs by up to
    /// 0.22.
    static int degreeBelow(double A, double B)
    {
        const double across = std::fabs(A);
        const double up = std::fabs(B);
        const double d = (up - across) / (up + across); // the tangent of the angle beyond 45 degrees
        const int below = static_cast<int>(45 + (d * (60.64 - (15.64 * std::fabs(d)))));
        return (A < 0) != (B < 0) ? 179 - below : below;
    }

    double cx, cy, a, b, c, s;
    const Degrees &degrees = Degrees::all();
};

} // namespace

karD_Rect CalculateBoundingRect(const karArrayT<karD_Point> &points)
{
    Extremes extremes(farthestOfPoints);
    for (unsigned i = 0; i < points.count; ++i)
        extremes.add(points.elements[i].x(), points.elements[i].y());
    return extremes.rect();
}

karD_Rect CalculateBoundingRect(const double &cx, const double &cy, const double &a, const double &b,
                                const double &rotation)
{
    if (alongAxes(rotation))
        return karD_Rect(cx - a, cy - b, cx + a, cy + b);
    if (acrossAxes(rotation))
        return karD_Rect(cx - b, cy - a, cx + b, cy + a);

    return DegreeSamples(cx, cy, a, b, rotation).rect();
}

karD_Rect CalculateBoundingRect(const double &cx, const double &cy, const double &a, const double &b,
                                const double &rotation, const double &start, const double &end)
{
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    Extremes extremes(farthestOfEllipse);
    const auto add = [&](double t) {
        const double cosT = std::cos(t);
        const double sinT = std::sin(t);
        extremes.add((cx + ((a * c) * cosT)) - ((b * s) * sinT), (cy + ((a * s) * cosT)) + ((b * c) * sinT));
    };
    const auto inRange = [&](double t) {
        if (end > start)
            return start <= t && t <= end;
        if (end <= start)
            return t >= start || t <= end;
        return false; // a limit is not a number
    };

    const double tangent = std::tan(rotation);
    const double t1 = std::atan((b / a) / tangent);
    const double t2 = std::atan(-(b / a) * tangent);
    for (const double t : {t1, t1 + pi, t2, t2 + pi})
        if (inRange(t))
            add(t);
    add(start);
    add(end);
    return extremes.rect();
}

void CalculateExtremAngle(const double &, const double &, const double &a, const double &b, const double &rotation,
                          double &first, double &second)
{
    double angle1, angle2; // an output may be one of the inputs
    if (alongAxes(rotation)) {
        angle1 = 0.0;
        angle2 = halfPi;
    } else if (acrossAxes(rotation)) {
        angle1 = halfPi;
        angle2 = 0.0;
    } else {
        const double c = std::cos(rotation);
        const double s = std::sin(rotation);
        angle1 = std::atan2(a * c, b * s);
        angle2 = std::atan2(a * s, -b * c);
    }
    first = angle1;
    second = angle2;
}

int CalculateEllipseYValue(const double &cx, const double &cy, const double &a, const double &b, const double &angle,
                           const double &x, double &y1, double &y2)
{
    const double s = std::sin(angle);
    const double D = x - cx;
    return CalculateRoots(s * s, (-2 * s) * cy, (((((b * b) / (a * a)) * D) * D) + (cy * cy)) - (b * b), y1, y2);
}

int CalculateEllipseXValue(const double &cx, const double &cy, const double &a, const double &b, const double &angle,
                           const double &y, double &x1, double &x2)
{
    const double c = std::cos(angle);
    const double D = y - cy;
    return CalculateRoots(c * c, (-2 * c) * cx, (((((a * a) / (b * b)) * D) * D) + (cx * cx)) - (a * a), x1, x2);
}
