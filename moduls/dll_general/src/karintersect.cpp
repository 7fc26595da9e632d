#include "karintersect.h"

#include "ellipseaxes.h"
#include "karcomplex.h"
#include "karincidence.h"
#include "karnumeric.h"
#include "karsolve.h"

#include <cmath>
#include <cstddef>

using kar::curveTolerance;
using kar::lengthTolerance;

namespace {

constexpr double quarticTolerance = 0.0001; // decides that a coefficient or an imaginary part of the quartic is zero
constexpr int firstCurve = 1;               // bits of a limit mask
constexpr int secondCurve = 2;

struct Point {
    double x, y;
};

// Taken by value: an output may be the same variable as an input, which counts with its value on entry.
struct Line {
    double x1, y1, x2, y2;

    bool holds(Point point) const
    {
        return IsPointOnLine(x1, y1, x2, y2, point.x, point.y, false, true, curveTolerance);
    }
};

// X(t) = cx + P*cos t + Q*sin t, Y(t) = cy + R*cos t + S*sin t
struct EllipticalArc : kar::EllipseAxes {
    double cx, cy, start, end;

    EllipticalArc(double centreX, double centreY, double a, double b, double rotation, double from, double to)
        : EllipseAxes(a, b, rotation), cx(centreX), cy(centreY), start(from), end(to)
    {}

    static EllipticalArc circular(double centreX, double centreY, double radius, double from, double to)
    {
        return {EllipseAxes(radius), centreX, centreY, from, to};
    }

    // The point of t = 2*arctan u: cos t = (1 - u*u)/(1 + u*u), sin t = 2*u/(1 + u*u).
    Point atHalfAngle(double u) const
    {
        const double cosT = (1 - (u * u)) / (1 + (u * u));
        const double sinT = (2 * u) / (1 + (u * u));
        return {(cx + (P * cosT)) + (Q * sinT), (cy + (R * cosT)) + (S * sinT)};
    }

    // With (dx, dy) from the centre.
    bool holdsOffset(double dx, double dy) const
    {
        return kar::isOnEllipticalArc(*this, start, end, dx, dy, curveTolerance);
    }
    bool holds(Point point) const { return holdsOffset(point.x - cx, point.y - cy); }

private:
    EllipticalArc(const EllipseAxes &axes, double centreX, double centreY, double from, double to)
        : EllipseAxes(axes), cx(centreX), cy(centreY), start(from), end(to)
    {}
};

// The output pairs of a call.
struct Outputs {
    double *places[8];

    void set(int pair, Point point) const
    {
        const std::size_t place = 2 * static_cast<std::size_t>(pair);
        *places[place] = point.x;
        *places[place + 1] = point.y;
    }
};

int intersect(const Line &line, const EllipticalArc &arc, int limitMask, double &p1x, double &p1y, double &p2x,
              double &p2y)
{
    p1x = p1y = p2x = p2y = 0.0;

    // A*u*u + B*u + C = 0
    double A, B, C;
    const bool vertical = std::fabs(line.x1 - line.x2) < lengthTolerance;
    if (vertical) {
        A = (arc.P + line.x1) - arc.cx;
        B = -2 * arc.Q;
        C = (line.x1 - arc.cx) - arc.P;
    } else {
        const double m = (line.y1 - line.y2) / (line.x1 - line.x2);
        const double k = line.y1 - (m * line.x1);
        A = ((((m * arc.cx) - (m * arc.P)) + arc.R) - arc.cy) + k;
        B = ((2 * m) * arc.Q) - (2 * arc.S);
        C = (((m * (arc.cx + arc.P)) + k) - arc.cy) - arc.R;
    }
    double u1 = 0.0, u2 = 0.0;
    if (Solve_SquareRoots(A, B, C, u1, u2) == 0)
        return 0;

    int count = 0;
    const auto offer = [&](Point point) {
        if ((limitMask & firstCurve) && !line.holds(point))
            return;
        if ((limitMask & secondCurve) && !arc.holds(point))
            return;
        (count == 0 ? p1x : p2x) = point.x;
        (count == 0 ? p1y : p2y) = point.y;
        ++count;
    };
    offer(arc.atHalfAngle(u1));
    if (std::fabs(u1 - u2) >= lengthTolerance)
        offer(arc.atHalfAngle(u2));
    else if (!vertical && std::fabs(u1 - u2) < lengthTolerance && std::fabs(A) < lengthTolerance &&
             std::fabs(line.y1 - line.y2) < lengthTolerance)
        offer({arc.cx - arc.P, arc.cy + arc.R}); // a horizontal line that also meets the root at infinity
    return count;
}

// Coefficients, in descending powers of u = tan(t/2), of the points t of `second` that lie on `first`, about the centre
// of `first`: Aq*dx^2 + Bq*dy^2 - 2*Cq*dx*dy = D^2.
void quarticOf(const EllipticalArc &first, const EllipticalArc &second, double D, double (&e)[5])
{
    const double Aq = (first.S * first.S) + (first.R * first.R);
    const double Bq = (first.Q * first.Q) + (first.P * first.P);
    const double Cq = (first.S * first.Q) + (first.R * first.P);
    const double twoCq = 2 * Cq;
    const double P2 = second.P, Q2 = second.Q, R2 = second.R, S2 = second.S;
    const double Ex = second.cx - first.cx;
    const double Ey = second.cy - first.cy;

    const double T1 = ((Bq * (R2 * R2)) + (Aq * (P2 * P2))) - ((twoCq * R2) * P2);
    const double T2 = ((Bq * (S2 * S2)) + (Aq * (Q2 * Q2))) - ((twoCq * S2) * Q2);
    const double T3 = (2 * (((Bq * S2) * R2) + ((Aq * Q2) * P2))) - (twoCq * ((R2 * Q2) + (S2 * P2)));
    const double T4 = (2 * (((Aq * Ex) * P2) + ((Bq * Ey) * R2))) - (twoCq * ((Ex * R2) + (Ey * P2)));
    const double T5 = (2 * (((Aq * Ex) * Q2) + ((Bq * Ey) * S2))) - (twoCq * ((Ex * S2) + (Ey * Q2)));
    const double K = ((Aq * (Ex * Ex)) + (Bq * (Ey * Ey))) - ((twoCq * Ex) * Ey);
    const double D2 = D * D;

    e[0] = ((T1 - T4) + K) - D2;
    e[1] = (2 * T5) - (2 * T3);
    e[2] = (((4 * T2) + (2 * K)) - (2 * T1)) - (2 * D2);
    e[3] = 2 * (T3 + T5);
    e[4] = ((K + T4) + T1) - D2;
}

// `solve(degree, coefficients, re, im)` gives the number of roots that it stored from entry 1 on.
template <class Solver>
int intersectBy(const EllipticalArc &first, const EllipticalArc &second, int limitMask, const Outputs &outputs,
                Solver solve)
{
    const double D = (first.S * first.P) - (first.R * first.Q); // a1*b1
    if (std::fabs(D) < quarticTolerance)
        return 0;

    double e[5];
    quarticOf(first, second, D, e);
    int degree = 4;
    double *coefficients = e;
    if (std::fabs(e[0]) < quarticTolerance && std::fabs(e[1]) >= quarticTolerance) {
        degree = 3;
        ++coefficients;
    }
    double re[5], im[5];
    const int roots = solve(degree, coefficients, re, im);

    int count = 0;
    for (int k = 0; k < roots; ++k) {
        if (std::fabs(im[k + 1]) >= quarticTolerance)
            continue;
        const Point point = second.atHalfAngle(re[k + 1]);
        const bool onFirst = !(limitMask & firstCurve) || first.holds(point);
        const bool onSecond = !(limitMask & secondCurve) || second.holds(point);
        if (!onFirst || !onSecond)
            continue;
        outputs.set(k, point); // the slot of the root: callers read the slots
        ++count;
    }
    return count;
}

int intersect(const EllipticalArc &first, const EllipticalArc &second, int limitMask, const Outputs &outputs)
{
    return intersectBy(first, second, limitMask, outputs, [](int degree, double *coefficients, double *re, double *im) {
        eqbairstow(degree, coefficients, re, im, 1.0, -1.0, curveTolerance);
        return degree;
    });
}

// `limitMask` may have come from the variable of `passes`.
int intersect(const EllipticalArc &first, const EllipticalArc &second, int limitMask, const Outputs &outputs,
              int &passes)
{
    const int allowed = passes;
    passes = 0; // where no factor is looked for
    return intersectBy(first, second, limitMask, outputs,
                       [&](int degree, double *coefficients, double *re, double *im) {
                           passes = allowed;
                           return eqbairstow(degree, coefficients, re, im, 1.0, -1.0, curveTolerance, passes);
                       });
}

template <class Solver>
int feet(Point from, const EllipticalArc &arc, const Outputs &outputs, Solver solve)
{
    for (int pair = 0; pair < 4; ++pair)
        outputs.set(pair, {0.0, 0.0});
    const double dx = from.x - arc.cx;
    const double dy = from.y - arc.cy;
    const double P = arc.P, Q = arc.Q, R = arc.R, S = arc.S;
    const double E = -(P * dx) - (R * dy);
    const double F = (S * dy) + (Q * dx);
    const double G = (S * R) + (Q * P); // 0 but for rounding
    const double H = (((R * R) - (Q * Q)) + (P * P)) - (S * S);
    karComplex coefficients[5] = {karComplex(-2 * G, -H), karComplex(2 * F, -2 * E), karComplex(4 * G, 0.0),
                                  karComplex(2 * F, 2 * E), karComplex(-2 * G, H)};
    karComplex z[5];
    const int roots = solve(coefficients, z);

    int count = 0;
    for (int k = 1; k <= roots; ++k) {
        const double cosT = z[k].GetReal(); // a root of another modulus than 1 fails the test below
        const double sinT = z[k].GetImag();
        const Point offset = {(Q * sinT) + (P * cosT), (S * sinT) + (R * cosT)};
        if (arc.holdsOffset(offset.x, offset.y))
            outputs.set(count++, {offset.x + arc.cx, offset.y + arc.cy});
    }
    return count;
}

} // namespace

int Intersect_Line_Line(const double &x1, const double &y1, const double &x2, const double &y2, const double &x3,
                        const double &y3, const double &x4, const double &y4, const int &limitMask, double &x,
                        double &y)
{
    const Line first = {x1, y1, x2, y2};
    const Line second = {x3, y3, x4, y4};
    x = y = 0.0;

    // y = m*x + k where a line is sloped
    double m1 = 0.0, k1 = 0.0, m2 = 0.0, k2 = 0.0;
    const double d1 = first.x1 - first.x2;
    const bool sloped1 = std::fabs(d1) >= lengthTolerance;
    if (sloped1) {
        m1 = (first.y1 - first.y2) / d1;
        k1 = first.y1 - (m1 * first.x1);
    }
    const double d2 = second.x1 - second.x2;
    const bool sloped2 = std::fabs(d2) >= lengthTolerance;
    if (sloped2) {
        m2 = (second.y1 - second.y2) / d2;
        k2 = second.y1 - (m2 * second.x1);
    }

    if (!sloped1 && !sloped2)
        return 0;
    if (!sloped2) {
        x = second.x1;
        y = (x * m1) + k1;
    } else if (!sloped1) {
        x = first.x1;
        y = (x * m2) + k2;
    } else {
        if (std::fabs(m2 - m1) < lengthTolerance)
            return 0;
        x = (k2 - k1) / (m1 - m2);
        y = (x * m1) + k1;
    }
    if ((limitMask & firstCurve) && !first.holds({x, y}))
        return 0;
    if ((limitMask & secondCurve) && !second.holds({x, y}))
        return 0;
    return 1;
}

int Intersect_Line_Arc(const double &x1, const double &y1, const double &x2, const double &y2, const double &cx,
                       const double &cy, const double &radius, const double &start, const double &end,
                       const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y)
{
    return intersect(Line{x1, y1, x2, y2}, EllipticalArc::circular(cx, cy, radius, start, end), limitMask, p1x, p1y,
                     p2x, p2y);
}

int Intersect_Line_Ellipse(const double &x1, const double &y1, const double &x2, const double &y2, const double &cx,
                           const double &cy, const double &a, const double &b, const double &rotation,
                           const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y)
{
    return intersect(Line{x1, y1, x2, y2}, EllipticalArc(cx, cy, a, b, rotation, 0.0, kar::fullTurn), limitMask, p1x,
                     p1y, p2x, p2y);
}

int Intersect_Line_EllipticalArc(const double &x1, const double &y1, const double &x2, const double &y2,
                                 const double &cx, const double &cy, const double &a, const double &b,
                                 const double &rotation, const double &start, const double &end, const int &limitMask,
                                 double &p1x, double &p1y, double &p2x, double &p2y)
{
    return intersect(Line{x1, y1, x2, y2}, EllipticalArc(cx, cy, a, b, rotation, start, end), limitMask, p1x, p1y, p2x,
                     p2y);
}

int Intersect_Arc_Arc(const double &c1x, const double &c1y, const double &r1, const double &start1, const double &end1,
                      const double &c2x, const double &c2y, const double &r2, const double &start2, const double &end2,
                      const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y)
{
    double hidden[4];
    return intersect(EllipticalArc::circular(c1x, c1y, r1, start1, end1),
                     EllipticalArc::circular(c2x, c2y, r2, start2, end2), limitMask,
                     {&p1x, &p1y, &p2x, &p2y, &hidden[0], &hidden[1], &hidden[2], &hidden[3]});
}

int Intersect_Arc_Arc(const double &c1x, const double &c1y, const double &r1, const double &start1, const double &end1,
                      const double &c2x, const double &c2y, const double &r2, const double &start2, const double &end2,
                      const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y, int &passes)
{
    double hidden[4];
    return intersect(EllipticalArc::circular(c1x, c1y, r1, start1, end1),
                     EllipticalArc::circular(c2x, c2y, r2, start2, end2), limitMask,
                     {&p1x, &p1y, &p2x, &p2y, &hidden[0], &hidden[1], &hidden[2], &hidden[3]}, passes);
}

int Intersect_Ellipse_Ellipse(const double &c1x, const double &c1y, const double &a1, const double &b1,
                              const double &rotation1, const double &start1, const double &end1, const double &c2x,
                              const double &c2y, const double &a2, const double &b2, const double &rotation2,
                              const double &start2, const double &end2, const int &limitMask, double &p1x, double &p1y,
                              double &p2x, double &p2y, double &p3x, double &p3y, double &p4x, double &p4y)
{
    return intersect(EllipticalArc(c1x, c1y, a1, b1, rotation1, start1, end1),
                     EllipticalArc(c2x, c2y, a2, b2, rotation2, start2, end2), limitMask,
                     {&p1x, &p1y, &p2x, &p2y, &p3x, &p3y, &p4x, &p4y});
}

int Intersect_Ellipse_Ellipse(const double &c1x, const double &c1y, const double &a1, const double &b1,
                              const double &rotation1, const double &start1, const double &end1, const double &c2x,
                              const double &c2y, const double &a2, const double &b2, const double &rotation2,
                              const double &start2, const double &end2, const int &limitMask, double &p1x, double &p1y,
                              double &p2x, double &p2y, double &p3x, double &p3y, double &p4x, double &p4y, int &passes)
{
    return intersect(EllipticalArc(c1x, c1y, a1, b1, rotation1, start1, end1),
                     EllipticalArc(c2x, c2y, a2, b2, rotation2, start2, end2), limitMask,
                     {&p1x, &p1y, &p2x, &p2y, &p3x, &p3y, &p4x, &p4y}, passes);
}

int Calculate_Perpendicular_Points_To_Ellipse(const double &px, const double &py, const double &cx, const double &cy,
                                              const double &a, const double &b, const double &rotation,
                                              const double &start, const double &end, double &p1x, double &p1y,
                                              double &p2x, double &p2y, double &p3x, double &p3y, double &p4x,
                                              double &p4y)
{
    return feet({px, py}, EllipticalArc(cx, cy, a, b, rotation, start, end),
                {&p1x, &p1y, &p2x, &p2y, &p3x, &p3y, &p4x, &p4y}, [](karComplex *coefficients, karComplex *z) {
                    EqBairstow(4, coefficients, z, karComplex(1.0, 0.0), karComplex(-1.0, 0.0), curveTolerance);
                    return 4;
                });
}

int Calculate_Perpendicular_Points_To_Ellipse(const double &px, const double &py, const double &cx, const double &cy,
                                              const double &a, const double &b, const double &rotation,
                                              const double &start, const double &end, double &p1x, double &p1y,
                                              double &p2x, double &p2y, double &p3x, double &p3y, double &p4x,
                                              double &p4y, int &passes)
{
    return feet({px, py}, EllipticalArc(cx, cy, a, b, rotation, start, end),
                {&p1x, &p1y, &p2x, &p2y, &p3x, &p3y, &p4x, &p4y}, [&](karComplex *coefficients, karComplex *z) {
                    return EqBairstow(4, coefficients, z, karComplex(1.0, 0.0), karComplex(-1.0, 0.0), curveTolerance,
                                      passes);
                });
}
