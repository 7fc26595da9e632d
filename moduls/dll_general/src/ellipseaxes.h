// The axis terms of an ellipse, and the incidence tests in them.
#ifndef KAR_ELLIPSE_AXES_H
#define KAR_ELLIPSE_AXES_H

#include "angles.h"

#include <cmath>

namespace kar {

/// The offset from the centre at the parameter t is (P*cos t + Q*sin t, R*cos t + S*sin t).
struct EllipseAxes {
    double P;
    double Q;
    double R;
    double S;

    /// A circle: cos 0 is 1 and sin 0 is 0 with every C library.
    explicit EllipseAxes(double radius) : P(radius), Q(-radius * 0.0), R(radius * 0.0), S(radius) {}
    EllipseAxes(double a, double b, double rotation)
    {
        double c = 1.0; // of 0, as above; the sine has its sign
        double s = rotation;
        if (rotation != 0) {
            c = std::cos(rotation);
            s = std::sin(rotation);
        }
        P = a * c;
        Q = -b * s;
        R = a * s;
        S = b * c;
    }
};

/// Where an offset from the centre comes to lie when the ellipse is carried to the unit circle.
struct UnitCirclePoint {
    double u;
    double v;

    UnitCirclePoint(const EllipseAxes &axes, double dx, double dy)
    {
        const double determinant = (axes.P * axes.S) - (axes.Q * axes.R);
        u = ((axes.S * dx) - (axes.Q * dy)) / determinant;
        v = ((axes.P * dy) - (axes.R * dx)) / determinant;
    }

    bool isOnCircle(double tolerance) const { return std::fabs(((u * u) + (v * v)) - 1) < tolerance; }

    /// start = end is the whole circle; a `u` beyond 1 lies on no arc.
    bool isBetween(double start, double end) const
    {
        if (start <= 0 && end >= fullTurn)
            return std::fabs(u) <= 1; // any t
        double t = std::acos(u);
        if (v < 0)
            t = fullTurn - std::fabs(t);
        if (start < end)
            return start <= t && t <= end;
        if (start >= end)
            return t >= start || t <= end;
        return false; // a limit is not a number
    }
};

/// Whether an offset from the centre lies on the ellipse and between the parameters `start` and `end`.
inline bool isOnEllipticalArc(const EllipseAxes &axes, double start, double end, double dx, double dy, double tolerance)
{
    const UnitCirclePoint point(axes, dx, dy);
    return point.isOnCircle(tolerance) && point.isBetween(start, end);
}

} // namespace kar

#endif
