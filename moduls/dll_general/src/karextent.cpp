#include "karextent.h"

#include "ellipseaxes.h"
#include "karnumeric.h"
#include "karsolve.h"

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

class Extremes {
public:
    explicit Extremes(double farthest) : minX(farthest), minY(farthest), maxX(-farthest), maxY(-farthest) {}

    void add(double x, double y)
    {
        if (x < minX)
            minX = x;
        if (x > maxX)
            maxX = x;
        if (y < minY)
            minY = y;
        if (y > maxY)
            maxY = y;
    }
    /// Whether none is a zero, whose sign would be that of the first of equal samples.
    bool areClear() const { return minX != 0 && minY != 0 && maxX != 0 && maxY != 0; }
    karD_Rect rect() const { return karD_Rect(minX, minY, maxX, maxY); }

private:
    double minX, minY, maxX, maxY;
};

/// The points of a whole ellipse one degree apart, from 0 to 360.
class DegreeSamples {
public:
    DegreeSamples(double centreX, double centreY, double axisA, double axisB, double rotation)
        : cx(centreX), cy(centreY), a(axisA), b(axisB), c(std::cos(rotation)), s(std::sin(rotation))
    {}

    void addAll(Extremes &extremes) const
    {
        for (int i = 0; i <= 360; ++i)
            add(extremes, i);
    }

    /// Adds the samples beside the greatest and the least x and y, which are those of all: of x = cx + A*cos(t - f) a
    /// sample that is 0.02 degrees further from f than its neighbour, both about half a degree away, is lower by 3e-6*A.
    /// False where rounding might come near to that, where an extreme might not pass the numbers they start from, and
    /// where something isn't finite.
    bool addExtremes(Extremes &extremes) const
    {
        constexpr double largest = 1e99;    // far below where the extremes start
        constexpr double smallest = 1e-290; // far above the numbers that lose digits
        constexpr double farthest = 1e7;    // of the centre, against the half height
        if (!(std::fabs(a) < largest && std::fabs(b) < largest && std::fabs(cx) < largest && std::fabs(cy) < largest))
            return false;
        const double cosX = a * c, sinX = b * s, cosY = a * s, sinY = -b * c;
        const double halfWidth = std::fabs(cosX) + std::fabs(sinX); // up to sqrt(2) times of it
        const double halfHeight = std::fabs(cosY) + std::fabs(sinY);
        if (!(halfWidth > smallest && halfHeight > smallest && std::fabs(cy) < farthest * halfHeight))
            return false;
        addBeside(extremes, std::atan2(sinX, cosX));
        addBeside(extremes, std::atan2(sinY, cosY));
        return true;
    }

private:
    void add(Extremes &extremes, int i) const
    {
        const double t = i * degree;
        const double u = a * std::cos(t);
        const double v = b * std::sin(t);
        extremes.add(((u * c) + (v * s)) + cx, ((u * s) + cy) - (v * c));
    }

    /// The sample next to `angle`, or both where it lies half way between two, and those opposite.
    void addBeside(Extremes &extremes, double angle) const
    {
        const double place = (angle / degree) + 360.0; // 180 to 540
        const double low = std::floor(place);
        const double share = place - low;
        const int first = static_cast<int>(low);
        for (int k = share > 0.51 ? 1 : 0; k <= (share < 0.49 ? 0 : 1); ++k) {
            addTurned(extremes, first + k);
            addTurned(extremes, first + k + 180);
        }
    }
    void addTurned(Extremes &extremes, int i) const
    {
        i %= 360;
        add(extremes, i);
        if (i == 0)
            add(extremes, 360);
    }

    double cx, cy, a, b, c, s;
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

    const DegreeSamples samples(cx, cy, a, b, rotation);
    Extremes extremes(farthestOfEllipse);
    if (samples.addExtremes(extremes) && extremes.areClear())
        return extremes.rect();
    extremes = Extremes(farthestOfEllipse);
    samples.addAll(extremes);
    return extremes.rect();
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
        return false;
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
