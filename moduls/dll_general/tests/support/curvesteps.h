// The steps of the intersections and feet written out plainly, apart from the library: what its results
// are compared with.
#ifndef KAR_TEST_CURVE_STEPS_H
#define KAR_TEST_CURVE_STEPS_H

#include "rootsteps.h"

#include <cmath>

namespace plain {

struct Ellipse {
    double cx, cy, a, b, r, start, end;

    double P() const { return a * std::cos(r); }
    double Q() const { return -b * std::sin(r); }
    double R() const { return a * std::sin(r); }
    double S() const { return b * std::cos(r); }
    double x(double cosT, double sinT) const { return cx + P() * cosT + Q() * sinT; }
    double y(double cosT, double sinT) const { return cy + R() * cosT + S() * sinT; }

    bool holdsOffset(double dx, double dy) const
    {
        const double det = P() * S() - Q() * R();
        const double u = (S() * dx - Q() * dy) / det, v = (P() * dy - R() * dx) / det;
        if (!(std::fabs(u * u + v * v - 1) < 1e-10))
            return false;
        double t = std::acos(u);
        if (v < 0)
            t = 6.283185307179586 - std::fabs(t);
        if (start < end)
            return start <= t && t <= end;
        return start >= end && (t >= start || t <= end);
    }
};

struct Line {
    double x1, y1, x2, y2;

    bool vertical() const { return !(std::fabs(x1 - x2) >= 1e-50); }
    bool holds(double x, double y) const
    {
        return (x1 < x2 ? x1 : x2) - 1e-10 <= x && x <= (x1 > x2 ? x1 : x2) + 1e-10 &&
               (y1 < y2 ? y1 : y2) - 1e-10 <= y && y <= (y1 > y2 ? y1 : y2) + 1e-10;
    }
};

/// Count and output pairs of a call. An output that isn't written keeps what it had.
struct Points {
    int count;
    double at[8];

    explicit Points(double before)
    {
        count = 0;
        for (double &coordinate : at)
            coordinate = before;
    }
    void put(int pair, double x, double y)
    {
        at[2 * pair] = x;
        at[2 * pair + 1] = y;
        ++count;
    }
};

inline Points lineLine(const Line &g, const Line &h, int mask)
{
    Points out(0);
    const double m1 = (g.y1 - g.y2) / (g.x1 - g.x2), k1 = g.y1 - m1 * g.x1;
    const double m2 = (h.y1 - h.y2) / (h.x1 - h.x2), k2 = h.y1 - m2 * h.x1;
    double x, y;
    if (g.vertical() && h.vertical())
        return out;
    if (h.vertical())
        x = h.x1, y = x * m1 + k1;
    else if (g.vertical())
        x = g.x1, y = x * m2 + k2;
    else if (std::fabs(m2 - m1) < 1e-50)
        return out;
    else
        x = (k2 - k1) / (m1 - m2), y = x * m1 + k1;
    out.put(0, x, y);
    out.count = ((mask & 1) && !g.holds(x, y)) || ((mask & 2) && !h.holds(x, y)) ? 0 : 1;
    return out;
}

inline Points lineEllipse(const Line &g, const Ellipse &e, int mask)
{
    Points out(0);
    const double P = e.P(), Q = e.Q(), R = e.R(), S = e.S();
    const bool vertical = std::fabs(g.x1 - g.x2) < 1e-50;
    const double m = (g.y1 - g.y2) / (g.x1 - g.x2), k = g.y1 - m * g.x1;
    const double A = vertical ? P + g.x1 - e.cx : m * e.cx - m * P + R - e.cy + k;
    const double B = vertical ? -2 * Q : 2 * m * Q - 2 * S;
    const double C = vertical ? g.x1 - e.cx - P : m * (e.cx + P) + k - e.cy - R;
    double u1, u2;
    if (std::fabs(A) >= 1e-50) {
        const double D = B * B - 4 * A * C;
        if (D < 0)
            return out;
        u1 = std::sqrt(std::fabs(D)) / (2 * A) + -B / (2 * A);
        u2 = -B / (2 * A) - std::sqrt(std::fabs(D)) / (2 * A);
    } else if (std::fabs(B) >= 1e-50) {
        u1 = -C / B;
        u2 = 0;
    } else {
        return out;
    }
    const auto take = [&](double x, double y) {
        if (((mask & 1) && !g.holds(x, y)) || ((mask & 2) && !e.holdsOffset(x - e.cx, y - e.cy)))
            return;
        out.put(out.count, x, y);
    };
    const auto takeRoot = [&](double u) {
        const double cosT = (1 - u * u) / (1 + u * u), sinT = 2 * u / (1 + u * u);
        take(e.x(cosT, sinT), e.y(cosT, sinT));
    };
    takeRoot(u1);
    if (std::fabs(u1 - u2) >= 1e-50)
        takeRoot(u2);
    if (std::fabs(u1 - u2) < 1e-50 && std::fabs(A) < 1e-50 && std::fabs(g.y1 - g.y2) < 1e-50 && !vertical)
        take(e.cx - P, e.cy + R);
    return out;
}

/// The quartic of the points of the second ellipse that lie on the first, descending powers. Result: a1*b1.
inline double quartic(const Ellipse &e1, const Ellipse &e2, double *e)
{
    const double P1 = e1.P(), Q1 = e1.Q(), R1 = e1.R(), S1 = e1.S();
    const double P2 = e2.P(), Q2 = e2.Q(), R2 = e2.R(), S2 = e2.S();
    const double D = S1 * P1 - R1 * Q1;
    const double Aq = S1 * S1 + R1 * R1, Bq = Q1 * Q1 + P1 * P1, Cq = S1 * Q1 + R1 * P1;
    const double Ex = e2.cx - e1.cx, Ey = e2.cy - e1.cy;
    const double T1 = Bq * (R2 * R2) + Aq * (P2 * P2) - 2 * Cq * R2 * P2;
    const double T2 = Bq * (S2 * S2) + Aq * (Q2 * Q2) - 2 * Cq * S2 * Q2;
    const double T3 = 2 * (Bq * S2 * R2 + Aq * Q2 * P2) - 2 * Cq * (R2 * Q2 + S2 * P2);
    const double T4 = 2 * (Aq * Ex * P2 + Bq * Ey * R2) - 2 * Cq * (Ex * R2 + Ey * P2);
    const double T5 = 2 * (Aq * Ex * Q2 + Bq * Ey * S2) - 2 * Cq * (Ex * S2 + Ey * Q2);
    const double K = Aq * (Ex * Ex) + Bq * (Ey * Ey) - 2 * Cq * Ex * Ey;
    const double D2 = D * D;
    e[0] = T1 - T4 + K - D2;
    e[1] = 2 * T5 - 2 * T3;
    e[2] = 4 * T2 + 2 * K - 2 * T1 - 2 * D2;
    e[3] = 2 * (T3 + T5);
    e[4] = K + T4 + T1 - D2;
    return D;
}

/// Roots of that quartic, or of the cubic that is left where its root at infinity is dropped; the number of them.
inline int rootsOf(double *e, Complex *root, int &passes)
{
    const int skip = std::fabs(e[0]) < 0.0001 && std::fabs(e[1]) >= 0.0001 ? 1 : 0;
    return bairstow(4 - skip, e + skip, 0.0, 0.0, root, passes);
}

inline Points ellipses(const Ellipse &e1, const Ellipse &e2, int mask, double before, int &passes)
{
    Points out(before);
    double e[5];
    if (std::fabs(quartic(e1, e2, e)) < 0.0001) {
        passes = 0;
        return out;
    }
    Complex root[4];
    const int roots = rootsOf(e, root, passes);
    for (int k = 0; k < roots; ++k) {
        if (std::fabs(root[k].im) >= 0.0001)
            continue;
        const double u = root[k].re;
        const double cosT = (1 - u * u) / (1 + u * u), sinT = 2 * u / (1 + u * u);
        const double x = e2.x(cosT, sinT), y = e2.y(cosT, sinT);
        if ((mask & 1) && !e1.holdsOffset(x - e1.cx, y - e1.cy))
            continue;
        if ((mask & 2) && !e2.holdsOffset(x - e2.cx, y - e2.cy))
            continue;
        out.put(k, x, y);
    }
    return out;
}

/// Roots of the quartic in z = e^(it) of the feet; the number of them.
inline int rootsOfFeet(double px, double py, const Ellipse &e, Complex *z, int &passes)
{
    const double P = e.P(), Q = e.Q(), R = e.R(), S = e.S();
    const double dx = px - e.cx, dy = py - e.cy;
    const double E = -(P * dx) - R * dy, F = S * dy + Q * dx, G = S * R + Q * P, H = R * R - Q * Q + P * P - S * S;
    Complex a[5] = {{-2 * G, -H}, {2 * F, -2 * E}, {4 * G, 0}, {2 * F, 2 * E}, {-2 * G, H}};
    return bairstow(4, a, Complex{1, 0}, Complex{-1, 0}, z, passes);
}

inline Points feet(double px, double py, const Ellipse &e, int &passes)
{
    Points out(0);
    Complex z[4];
    const int roots = rootsOfFeet(px, py, e, z, passes);
    for (int k = 0; k < roots; ++k) {
        const double x = e.Q() * z[k].im + e.P() * z[k].re, y = e.S() * z[k].im + e.R() * z[k].re;
        if (e.holdsOffset(x, y))
            out.put(out.count, x + e.cx, y + e.cy);
    }
    return out;
}

} // namespace plain

#endif
