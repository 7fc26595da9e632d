#include "karincidence.h"

#include "ellipseaxes.h"
#include "kar3dpoint.h"
#include "karnumeric.h"
#include "karsolve.h"
#include "karvector.h"

#include <cmath>

using kar::curveTolerance;
using kar::EllipseAxes;
using kar::fullTurn;
using kar::halfPi;
using kar::lengthTolerance;
using kar::normalisedAngle;
using kar::UnitCirclePoint;

namespace {

/// A direction in the plane.
struct Direction {
    double x;
    double y;

    double length() const { return std::sqrt((x * x) + (y * y)); }

    /// Left alone where it is too short or its length is not a number.
    void normaliseIfLongEnough()
    {
        const double distance = length();
        if (distance >= lengthTolerance) {
            x /= distance;
            y /= distance;
        }
    }

    Direction turned(double cosine, double sine) const
    {
        return {(x * cosine) - (y * sine), (x * sine) + (y * cosine)};
    }
};

/// Cosine of 1.5707963267948966, whose sine is 1.
constexpr double quarterTurnCosine = 6.123233995736766e-17;

bool isInRange(double low, double high, double value, double tolerance)
{
    return low - tolerance <= value && value <= high + tolerance;
}

bool isInBox(double x1, double y1, double x2, double y2, double px, double py, double tolerance)
{
    const double xmin = x1 < x2 ? x1 : x2;
    const double xmax = x1 > x2 ? x1 : x2;
    const double ymin = y1 < y2 ? y1 : y2;
    const double ymax = y1 > y2 ? y1 : y2;
    return isInRange(xmin, xmax, px, tolerance) && isInRange(ymin, ymax, py, tolerance);
}

} // namespace

double arcusTangens(const double &y, const double &x, const double &fullCircle)
{
    double angle;
    if (x == 0 && y == 0)
        angle = 0.0;
    else if (x == 0)
        angle = y > 0 ? halfPi : kar::threeHalfPi;
    else if (y == 0)
        angle = x > 0 ? 0.0 : kar::pi;
    else
        angle = normalisedAngle(std::atan2(y, x));
    return fullCircle != 0 ? angle * (fullCircle / fullTurn) : angle;
}

double arcusTangens(const double &t) { return normalisedAngle(std::atan(t)); }

double GetAngle(const double &x0, const double &y0, const double &z0, const double &x1, const double &y1,
                const double &z1, const double &x2, const double &y2, const double &z2)
{
    const double ux = x1 - x0;
    const double uy = y1 - y0;
    const double uz = z1 - z0;
    const double vx = x2 - x0;
    const double vy = y2 - y0;
    const double vz = z2 - z0;
    const double dot = ((ux * vx) + (uy * vy)) + (uz * vz);
    const double lengthU = std::sqrt(((ux * ux) + (uy * uy)) + (uz * uz));
    const double lengthV = std::sqrt(((vx * vx) + (vy * vy)) + (vz * vz));
    const double angle = std::acos(dot / (lengthU * lengthV));
    const double inclinationU = std::atan2(std::sqrt((ux * ux) + (uy * uy)), uz);
    const double inclinationV = std::atan2(std::sqrt((vx * vx) + (vy * vy)), vz);
    return inclinationV - inclinationU < 0 ? fullTurn - angle : angle;
}

double give_angle(int x1, int y1, int x2, int y2)
{
    constexpr double inverseOfPi = 0.3183098861837907;
    const double dx1 = x1;
    const double dy1 = y1;
    const double dx2 = x2;
    const double dy2 = y2;
    const double n = std::sqrt((dx1 * dx1) + (dy1 * dy1)) * std::sqrt((dx2 * dx2) + (dy2 * dy2));
    if (n <= 0.1)
        return -1000.0;
    const double dot = kar::wrapAdd(kar::wrapMul(x1, x2), kar::wrapMul(y1, y2));
    return (std::acos(dot / n) * 180.0) * inverseOfPi;
}

double AngleX_Line(const double &x1, const double &y1, const double &x2, const double &y2)
{
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    if (std::fabs(dx) < lengthTolerance)
        return y2 > y1 ? halfPi : kar::threeHalfPi;
    return normalisedAngle(std::atan2(dy, dx));
}

int SideOfPoint_From_Line(const double &x1, const double &y1, const double &x2, const double &y2, const double &px,
                          const double &py)
{
    const double left = (py - y1) * (x2 - x1);
    const double right = (px - x1) * (y2 - y1);
    return left > right ? -1 : 1;
}

int ChangedSideOfLine(const double &ax, const double &ay, const double &bx, const double &by, const double &cx,
                      const double &cy, const double &dx, const double &dy)
{
    double mx;
    double my;
    Calculate_Perpendicular_Point_To_Line(dx, dy, ax, ay, bx, by, mx, my, false);
    if (isInBox(cx, cy, bx, by, mx, my, curveTolerance))
        return 1;
    if (isInBox(cx, cy, ax, ay, mx, my, curveTolerance))
        return -1;
    const double toB = ((cx - bx) * (cx - bx)) + ((cy - by) * (cy - by));
    const double toA = ((cx - ax) * (cx - ax)) + ((cy - ay) * (cy - ay));
    return toB <= toA ? 1 : -1;
}

bool IsPointOnLine(double x1, double y1, double x2, double y2, double px, double py, bool testDistance, bool testRange,
                   double tolerance)
{
    if (testDistance && Calculate_Distance_To_Line(px, py, x1, y1, x2, y2) > tolerance)
        return false;
    return !testRange || isInBox(x1, y1, x2, y2, px, py, tolerance);
}

bool IsPointOnCircle(double cx, double cy, double radius, double px, double py, double tolerance)
{
    const double dx = px - cx;
    const double dy = py - cy;
    return std::fabs(((dx * dx) + (dy * dy)) - (radius * radius)) < tolerance;
}

bool IsPointOnArc(double cx, double cy, double radius, double start, double end, double px, double py,
                  bool onCircleKnown, double tolerance)
{
    if (!onCircleKnown && !IsPointOnCircle(cx, cy, radius, px, py, tolerance))
        return false;
    const double phi = normalisedAngle(std::atan2(py - cy, px - cx));
    if (start <= end)
        return phi >= start - lengthTolerance && phi <= end + lengthTolerance;
    if (start > end)
        return phi >= start - lengthTolerance || phi <= end + lengthTolerance;
    return false; // a limit is not a number
}

bool IsPointOnEllipse(double cx, double cy, double a, double b, double rotation, double px, double py, double tolerance)
{
    return UnitCirclePoint(EllipseAxes(a, b, rotation), px - cx, py - cy).isOnCircle(tolerance);
}

bool IsPointOnEllipticalArc(double cx, double cy, double a, double b, double rotation, double start, double end,
                            double px, double py, bool, double tolerance)
{
    return isOnEllipticalArc(EllipseAxes(a, b, rotation), start, end, px - cx, py - cy, tolerance);
}

double Calculate_Distance_To_Line(const double &px, const double &py, const double &x1, const double &y1,
                                  const double &x2, const double &y2)
{
    const double dx = x2 - x1;
    if (std::fabs(dx) < lengthTolerance)
        return std::fabs(px - x1);
    const double dy = y2 - y1;
    if (std::fabs(dy) < lengthTolerance)
        return std::fabs(py - y1);
    const double k = -dy / dx;
    const double c = (-k * x1) - y1;
    return std::fabs(((k * px) + py) + c) / std::sqrt((k * k) + 1);
}

bool Calculate_Mirror_Point_To_Line(const double &px, const double &py, const double &x1, const double &y1,
                                    const double &x2, const double &y2, double &mirrorX, double &mirrorY)
{
    Direction direction{x2 - x1, y2 - y1};
    direction.normaliseIfLongEnough();
    double newX;
    double newY;
    if (std::fabs(direction.y) < lengthTolerance) { // horizontal, or coincident end points
        newX = px;
        newY = (2 * y1) - py;
    } else if (std::fabs(direction.x) < lengthTolerance) {
        newX = (2 * x1) - px;
        newY = py;
    } else {
        const int side = SideOfPoint_From_Line(x1, y1, x2, y2, px, py);
        Direction across = direction.turned(quarterTurnCosine, side);
        across.normaliseIfLongEnough();
        const double distance = Calculate_Distance_To_Line(px, py, x1, y1, x2, y2);
        newX = px + ((2 * distance) * across.x);
        newY = py + ((2 * distance) * across.y);
    }
    mirrorX = newX;
    mirrorY = newY;
    return true;
}

int Calculate_Perpendicular_Point_To_Line(const double &px, const double &py, const double &x1, const double &y1,
                                          const double &x2, const double &y2, double &footX, double &footY,
                                          bool testOnSegment)
{
    Direction d{x2 - x1, y2 - y1};
    d.normaliseIfLongEnough();
    double newX;
    double newY;
    if (std::fabs(d.y) < lengthTolerance) { // horizontal, or coincident end points
        newX = px;
        newY = y1;
    } else if (std::fabs(d.x) < lengthTolerance) {
        newX = x1;
        newY = py;
    } else {
        Direction n = d.turned(quarterTurnCosine, 1.0);
        const double length = n.length();
        n.x /= length;
        n.y /= length;
        double alongNormal;
        double alongLine;
        Solve_2x2Matrix(n.x, -d.x, n.y, -d.y, x1 - px, y1 - py, alongNormal, alongLine);
        newX = x1 + (alongLine * d.x);
        newY = y1 + (alongLine * d.y);
    }
    const int result = !testOnSegment || isInBox(x1, y1, x2, y2, newX, newY, curveTolerance) ? 1 : 0;
    footX = newX;
    footY = newY;
    return result;
}

bool Calculate_Circle_By_3Points(const double &x1, const double &y1, const double &x2, const double &y2,
                                 const double &x3, const double &y3, double &cx, double &cy, double &radius)
{
    const double right1 = 0.5 * (((y2 + y1) * (y2 - y1)) + ((x2 + x1) * (x2 - x1)));
    const double right2 = 0.5 * (((y2 + y3) * (y3 - y2)) + ((x2 + x3) * (x3 - x2)));
    double centreX;
    double centreY;
    Solve_2x2Matrix(x2 - x1, y2 - y1, x3 - x2, y3 - y2, right1, right2, centreX, centreY);
    const double dx = x1 - centreX;
    const double dy = y1 - centreY;
    cx = centreX;
    cy = centreY;
    radius = std::sqrt((dx * dx) + (dy * dy));
    return true;
}

namespace {

/// The centres (u, v) on du*U + dv*V + k = 0 of the circles through (u1, v1), U being eliminated. The constant
/// coefficient ends in the squares of y1 and x1 whichever of them is eliminated.
struct CircleCentres {
    double u[2];
    double v[2];

    /// False: there are none.
    bool find(double u1, double v1, double du, double dv, double k, double x1, double y1, double radius)
    {
        const double A = 1 + ((dv * dv) / (du * du));
        const double B = ((((2 * dv) * u1) / du) + (((2 * k) * dv) / (du * du))) - (2 * v1);
        const double C =
            ((((((2 * k) * u1) / du) + ((k * k) / (du * du))) + (y1 * y1)) + (x1 * x1)) - (radius * radius);
        if (Solve_SquareRoots(A, B, C, v[0], v[1]) == 0)
            return false;
        for (int i = 0; i < 2; ++i)
            u[i] = (-(dv / du) * v[i]) - (k / du);
        return true;
    }
};

} // namespace

bool Calculate_Centrepoint_Of_Arc(const double &x1, const double &y1, const double &x2, const double &y2,
                                  const double &radius, double &cx, double &cy)
{
    const double mx = (x1 + x2) * 0.5;
    const double my = (y1 + y2) * 0.5;
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double k = -((dx * mx) + (dy * my));
    const bool eliminateX = std::fabs(dx) >= lengthTolerance;
    CircleCentres centres;
    if (!(eliminateX ? centres.find(x1, y1, dx, dy, k, x1, y1, radius)
                     : centres.find(y1, x1, dy, dx, k, x1, y1, radius)))
        return true;
    const double *const x = eliminateX ? centres.u : centres.v;
    const double *const y = eliminateX ? centres.v : centres.u;
    const double side = ((y1 - y2) * (x[0] - mx)) + ((x2 - x1) * (y[0] - my));
    const int left = side > 0 ? 0 : 1;
    cx = x[left];
    cy = y[left];
    return true;
}

karD_Point karCalculator2D::GetArcCentrePoint(const karD_Point &p1, const karD_Point &p2, const double &angle) const
{
    const double L = p1.DistEuk(p2);
    const double R = L / (2 * std::sin(angle * 0.5));
    const double h = std::sqrt((R * R) - ((0.25 * L) * L));
    const double alpha = p1.AngleX(p2);
    const double beta = (0 < angle && angle < kar::pi) || angle < -kar::pi ? halfPi : -halfPi;
    const double gamma = alpha + beta;
    return karD_Point((p1.x() + (h * std::cos(gamma))) + ((0.5 * L) * std::cos(alpha)),
                      (p1.y() + (h * std::sin(gamma))) + ((0.5 * L) * std::sin(alpha)));
}

double karCalculator2D::GetAngle(const karD_Point &a, const karD_Point &b) const
{
    constexpr double quarterPi = 0.7853981633974483;
    constexpr double threeQuarterPi = 2.356194490192345;
    const double dx = a.x() - b.x();
    const double dy = a.y() - b.y();
    if (std::fabs(dx) < lengthTolerance)
        return b.y() < a.y() ? quarterPi : threeQuarterPi;
    return normalisedAngle(std::atan2(dx, dy));
}

double karCalculator3D::GetAngle(const kar3D_Point &a, const kar3D_Point &b, const kar3D_Point &c) const
{
    return ::GetAngle(a.GetX(), a.GetY(), a.GetZ(), b.GetX(), b.GetY(), b.GetZ(), c.GetX(), c.GetY(), c.GetZ());
}

double karCalculator3D::SpatProduct(const kar3DVector &u, const kar3DVector &v, const kar3DVector &w) const
{
    const double first = u.GetY() * ((v.GetZ() * w.GetX()) - (v.GetX() * w.GetZ()));
    const double second = u.GetZ() * ((v.GetX() * w.GetY()) - (w.GetX() * v.GetY()));
    const double third = u.GetX() * ((v.GetY() * w.GetZ()) - (v.GetZ() * w.GetY()));
    return (first + second) + third;
}
