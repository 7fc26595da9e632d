// A million calls of each kind against the steps written out. Functions with trigonometry of the C library are compared
// bit by bit with the transcription on the same target, and rounded before they meet the constant.
#include "karincidence.h"

#include "kar3dpoint.h"
#include "karvector.h"

#include "goldenrun.h"
#include "testnumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double fullTurn = 6.283185307179586;
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

// Without trigonometry

bool inBox(double x1, double y1, double x2, double y2, double x, double y, double tolerance)
{
    return std::fmin(x1, x2) - tolerance <= x && x <= std::fmax(x1, x2) + tolerance &&
           std::fmin(y1, y2) - tolerance <= y && y <= std::fmax(y1, y2) + tolerance;
}

int side(double x1, double y1, double x2, double y2, double px, double py)
{
    const double l = (py - y1) * (x2 - x1);
    const double r = (px - x1) * (y2 - y1);
    return l > r ? -1 : 1;
}

double distance(double px, double py, double x1, double y1, double x2, double y2)
{
    const double dx = x2 - x1, dy = y2 - y1;
    if (std::fabs(dx) < 1e-50)
        return std::fabs(px - x1);
    if (std::fabs(dy) < 1e-50)
        return std::fabs(py - y1);
    const double k = -dy / dx;
    const double c = -k * x1 - y1;
    return std::fabs(k * px + py + c) / std::sqrt(k * k + 1);
}

void mirror(double px, double py, double x1, double y1, double x2, double y2, double *m)
{
    double dx = x2 - x1, dy = y2 - y1;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length >= 1e-50)
        dx = dx / length, dy = dy / length;
    if (std::fabs(dy) < 1e-50) {
        m[0] = px, m[1] = 2 * y1 - py;
    } else if (std::fabs(dx) < 1e-50) {
        m[0] = 2 * x1 - px, m[1] = py;
    } else {
        const double sine = side(x1, y1, x2, y2, px, py);
        const double cosine = 6.123233995736766e-17; // of a quarter turn
        double rx = dx * cosine - dy * sine, ry = dx * sine + dy * cosine;
        const double again = std::sqrt(rx * rx + ry * ry);
        if (again >= 1e-50)
            rx = rx / again, ry = ry / again;
        const double dist = distance(px, py, x1, y1, x2, y2);
        m[0] = px + 2 * dist * rx, m[1] = py + 2 * dist * ry;
    }
}

int foot(double px, double py, double x1, double y1, double x2, double y2, double *f, bool onSegment)
{
    double dx = x2 - x1, dy = y2 - y1;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length >= 1e-50)
        dx = dx / length, dy = dy / length;
    if (std::fabs(dy) < 1e-50) {
        f[0] = px, f[1] = y1;
    } else if (std::fabs(dx) < 1e-50) {
        f[0] = x1, f[1] = py;
    } else {
        const double cosine = 6.123233995736766e-17;
        double nx = cosine * dx - dy, ny = dx + cosine * dy;
        const double again = std::sqrt(nx * nx + ny * ny);
        if (!(again < 1e-50))
            nx = nx / again, ny = ny / again;
        // n.x X - d.x Y = x1 - px, n.y X - d.y Y = y1 - py
        const double D = nx * -dy - -dx * ny;
        const double Y = (nx * (y1 - py) - ny * (x1 - px)) / D;
        f[0] = x1 + Y * dx, f[1] = y1 + Y * dy;
    }
    return !onSegment || inBox(x1, y1, x2, y2, f[0], f[1], 1e-10) ? 1 : 0;
}

int changedSide(double ax, double ay, double bx, double by, double cx, double cy, double dx, double dy)
{
    double m[2];
    foot(dx, dy, ax, ay, bx, by, m, false);
    const bool towardsA = inBox(cx, cy, ax, ay, m[0], m[1], 1e-10);
    if (inBox(cx, cy, bx, by, m[0], m[1], 1e-10))
        return 1;
    if (towardsA)
        return -1;
    const double b = (cx - bx) * (cx - bx) + (cy - by) * (cy - by);
    const double a = (cx - ax) * (cx - ax) + (cy - ay) * (cy - ay);
    return b <= a ? 1 : -1;
}

void circle(double x1, double y1, double x2, double y2, double x3, double y3, double *c)
{
    const double e = 0.5 * ((y2 + y1) * (y2 - y1) + (x2 + x1) * (x2 - x1));
    const double f = 0.5 * ((y2 + y3) * (y3 - y2) + (x2 + x3) * (x3 - x2));
    const double D = (x2 - x1) * (y3 - y2) - (y2 - y1) * (x3 - x2);
    c[0] = ((y3 - y2) * e - (y2 - y1) * f) / D;
    c[1] = ((x2 - x1) * f - (x3 - x2) * e) / D;
    c[2] = std::sqrt((x1 - c[0]) * (x1 - c[0]) + (y1 - c[1]) * (y1 - c[1]));
}

void arcCentre(double x1, double y1, double x2, double y2, double radius, double *centre)
{
    const double mx = (x1 + x2) / 2, my = (y1 + y2) / 2, dx = x2 - x1, dy = y2 - y1;
    const double k = -(dx * mx + dy * my);
    const bool sloped = std::fabs(dx) >= 1e-50;
    double A, B, C;
    if (sloped) {
        A = 1 + dy * dy / (dx * dx);
        B = 2 * dy * x1 / dx + 2 * k * dy / (dx * dx) - 2 * y1;
        C = 2 * k * x1 / dx + k * k / (dx * dx) + y1 * y1 + x1 * x1 - radius * radius;
    } else {
        A = 1 + dx * dx / (dy * dy);
        B = 2 * dx * y1 / dy + 2 * k * dx / (dy * dy) - 2 * x1;
        C = 2 * k * y1 / dy + k * k / (dy * dy) + y1 * y1 + x1 * x1 - radius * radius;
    }
    double root[2] = {0, 0};
    if (std::fabs(A) >= 1e-50) {
        const double D = B * B - 4 * A * C;
        if (D < 0)
            return;
        const double m = -B / (2 * A), h = std::sqrt(std::fabs(D)) / (2 * A);
        root[0] = h + m, root[1] = m - h;
    } else if (std::fabs(B) >= 1e-50) {
        root[0] = -C / B;
    } else {
        return;
    }
    double x[2], y[2];
    for (int i = 0; i < 2; ++i) {
        x[i] = sloped ? -(dy / dx) * root[i] - k / dx : root[i];
        y[i] = sloped ? root[i] : -(dx / dy) * root[i] - k / dy;
    }
    const double S = (y1 - y2) * (x[0] - mx) + (x2 - x1) * (y[0] - my);
    centre[0] = S > 0 ? x[0] : x[1];
    centre[1] = S > 0 ? y[0] : y[1];
}

bool isNumber(const double *values, int count)
{
    for (int i = 0; i < count; ++i)
        if (values[i] != values[i])
            return false;
    return true;
}

TEST(Incidence, MillionCallsWithoutTrigonometryEqualThePlainSteps)
{
    GoldenRun run(91, 100000, 10399924719281701858u);
    while (run.next()) {
        double v[8];
        for (double &value : v)
            value = mixedDouble(run.random);
        if (!isNumber(v, 8))
            continue; // fmin and fmax know no order for those
        if (run.step % 4 == 0)
            v[2] = v[0]; // vertical
        const bool flag = run.random.below(2) == 0;
        const double tolerance = run.random.below(2) == 0 ? 1e-10 : v[6];
        const auto &[x1, y1, x2, y2, x3, y3, x4, y4] = v;
        double out[3], ref[3];

        run.code.add(SideOfPoint_From_Line(x1, y1, x2, y2, x3, y3));
        run.plain.add(side(x1, y1, x2, y2, x3, y3));
        run.code.add(ChangedSideOfLine(x1, y1, x2, y2, x3, y3, x4, y4));
        run.plain.add(changedSide(x1, y1, x2, y2, x3, y3, x4, y4));
        run.code.add(IsPointOnLine(x1, y1, x2, y2, x3, y3, true, flag, tolerance) ? 1 : 0);
        run.plain.add(
            !(distance(x3, y3, x1, y1, x2, y2) > tolerance) && (!flag || inBox(x1, y1, x2, y2, x3, y3, tolerance)) ? 1
                                                                                                                   : 0);
        run.code.add(IsPointOnLine(x1, y1, x2, y2, x3, y3, false, flag, tolerance) ? 1 : 0);
        run.plain.add(!flag || inBox(x1, y1, x2, y2, x3, y3, tolerance) ? 1 : 0);
        run.code.add(IsPointOnCircle(x1, y1, x2, x3, y3, tolerance) ? 1 : 0);
        const double dx = x3 - x1, dy = y3 - y1;
        run.plain.add(std::fabs(dx * dx + dy * dy - x2 * x2) < tolerance ? 1 : 0);
        run.code.add(Calculate_Distance_To_Line(x3, y3, x1, y1, x2, y2));
        run.plain.add(distance(x3, y3, x1, y1, x2, y2));

        run.code.add(Calculate_Mirror_Point_To_Line(x3, y3, x1, y1, x2, y2, out[0], out[1]) ? 1 : 0);
        run.code.add(out[0]), run.code.add(out[1]);
        mirror(x3, y3, x1, y1, x2, y2, ref);
        run.plain.add(1), run.plain.add(ref[0]), run.plain.add(ref[1]);

        run.code.add(Calculate_Perpendicular_Point_To_Line(x3, y3, x1, y1, x2, y2, out[0], out[1], flag));
        run.code.add(out[0]), run.code.add(out[1]);
        run.plain.add(foot(x3, y3, x1, y1, x2, y2, ref, flag)), run.plain.add(ref[0]), run.plain.add(ref[1]);

        run.code.add(Calculate_Circle_By_3Points(x1, y1, x2, y2, x3, y3, out[0], out[1], out[2]) ? 1 : 0);
        run.code.add(out[0]), run.code.add(out[1]), run.code.add(out[2]);
        circle(x1, y1, x2, y2, x3, y3, ref);
        run.plain.add(1), run.plain.add(ref[0]), run.plain.add(ref[1]), run.plain.add(ref[2]);

        out[0] = out[1] = ref[0] = ref[1] = untouched;
        run.code.add(Calculate_Centrepoint_Of_Arc(x1, y1, x2, y2, x3, out[0], out[1]) ? 1 : 0);
        run.code.add(out[0]), run.code.add(out[1]);
        arcCentre(x1, y1, x2, y2, x3, ref);
        run.plain.add(1), run.plain.add(ref[0]), run.plain.add(ref[1]);

        run.code.add(karCalculator3D().SpatProduct(kar3DVector(x1, y1, x2, false), kar3DVector(y2, x3, y3, false),
                                                   kar3DVector(x4, y4, x1, false)));
        run.plain.add(y1 * (y3 * x4 - y2 * x1) + x2 * (y2 * y4 - x4 * x3) + x1 * (x3 * x1 - y3 * y4));
    }
}

// With trigonometry

double raised(double angle) { return angle < 0 ? angle + fullTurn : angle; }

double polarAngle(double y, double x, double fullCircle)
{
    const double quarter = std::atan(1.0), halfPi = 2 * quarter, full = 4 * halfPi;
    double angle;
    if (x == 0 && y == 0)
        angle = 0;
    else if (x == 0)
        angle = y > 0 ? halfPi : -halfPi;
    else if (y == 0)
        angle = x > 0 ? 0 : 2 * halfPi;
    else
        angle = std::atan2(y, x);
    if (angle < 0)
        angle += full;
    return fullCircle != 0 ? angle * (fullCircle / full) : angle;
}

double spatialAngle(const double *p0, const double *p1, const double *p2)
{
    const double u[3] = {p1[0] - p0[0], p1[1] - p0[1], p1[2] - p0[2]};
    const double v[3] = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
    const double dot = u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
    const double lengths =
        std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]) * std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    const double A = std::acos(dot / lengths);
    const double tu = std::atan2(std::sqrt(u[0] * u[0] + u[1] * u[1]), u[2]);
    const double tv = std::atan2(std::sqrt(v[0] * v[0] + v[1] * v[1]), v[2]);
    return tv - tu < 0 ? 2 * pi - A : A;
}

double degrees(int x1, int y1, int x2, int y2)
{
    const double a = x1, b = y1, c = x2, d = y2;
    const double n = std::sqrt(a * a + b * b) * std::sqrt(c * c + d * d);
    if (n <= 0.1)
        return -1000;
    const auto wide =
        static_cast<std::uint64_t>(std::int64_t{x1} * x2) + static_cast<std::uint64_t>(std::int64_t{y1} * y2);
    const auto low = static_cast<double>(wide & 0xffffffffu);
    return std::acos((low < 2147483648.0 ? low : low - 4294967296.0) / n) * 180.0 * 0.3183098861837907;
}

bool onArc(const double *arc, double x, double y, bool known, double tolerance)
{
    const auto [cx, cy, radius, start, end] = std::tie(arc[0], arc[1], arc[2], arc[3], arc[4]);
    if (!known && !(std::fabs((x - cx) * (x - cx) + (y - cy) * (y - cy) - radius * radius) < tolerance))
        return false;
    const double phi = raised(std::atan2(y - cy, x - cx));
    if (start <= end)
        return phi >= start - 1e-50 && phi <= end + 1e-50;
    return phi >= start - 1e-50 || phi <= end + 1e-50;
}

/// Bit 0: on the ellipse; bit 1: on the arc.
int onEllipse(double cx, double cy, double a, double b, double rotation, double start, double end, double x, double y,
              double tolerance)
{
    const double c = std::cos(rotation), s = std::sin(rotation);
    const double P = a * c, Q = -b * s, R = a * s, S = b * c;
    const double dx = x - cx, dy = y - cy;
    const double u = (S * dx - Q * dy) / (P * S - Q * R);
    const double v = (P * dy - R * dx) / (P * S - Q * R);
    if (!(std::fabs(u * u + v * v - 1) < tolerance))
        return 0;
    double t = std::acos(u);
    if (v < 0)
        t = fullTurn - std::fabs(t);
    const bool between = start < end ? start <= t && t <= end : t >= start || t <= end;
    return between ? 3 : 1;
}

TEST(Incidence, MillionCallsWithTrigonometryEqualTheTranscription)
{
    GoldenRun<RoundedHash> run(92, 100000, 11272757433020188000u);
    while (run.next()) {
        double v[10];
        for (double &value : v)
            value = run.random.below(3) == 0 ? run.random.between(-4, 4) : run.random.between(-10.0, 10.0);

        run.code.add(arcusTangens(v[0], v[1], v[2]));
        run.plain.add(polarAngle(v[0], v[1], v[2]));
        run.code.add(arcusTangens(v[0]));
        run.plain.add(raised(std::atan(v[0])));
        run.code.add(AngleX_Line(v[0], v[1], v[2], v[3]));
        run.plain.add(v[2] - v[0] == 0 ? (v[3] > v[1] ? 1.5707963267948966 : 4.71238898038469)
                                       : raised(std::atan2(v[3] - v[1], v[2] - v[0])));
        run.code.add(GetAngle(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]));
        run.plain.add(spatialAngle(v, v + 3, v + 6));
        run.code.add(karCalculator3D().GetAngle(kar3D_Point(v[0], v[1], v[2]), kar3D_Point(v[3], v[4], v[5]),
                                                kar3D_Point(v[6], v[7], v[8])));
        run.plain.add(spatialAngle(v, v + 3, v + 6));

        int n[4];
        for (int &number : n)
            number = run.random.below(2) == 0 ? run.random.between(-5, 5) : run.random.anyInt();
        run.code.add(give_angle(n[0], n[1], n[2], n[3]));
        run.plain.add(degrees(n[0], n[1], n[2], n[3]));

        // A point of the ellipse, or off it by less or more than the tolerance.
        const double a = 0.5 + std::fabs(v[2]), b = 0.5 + std::fabs(v[3]);
        const double t = run.random.between(0.0, fullTurn), grow = 1 + (run.random.below(3) - 1.0) * 1e-6;
        const double tolerance = run.random.below(2) == 0 ? 1e-10 : 1e-3;
        const double c = std::cos(v[4]), s = std::sin(v[4]);
        const double x = v[0] + grow * (a * c * std::cos(t) - b * s * std::sin(t));
        const double y = v[1] + grow * (a * s * std::cos(t) + b * c * std::sin(t));
        const int found = (IsPointOnEllipse(v[0], v[1], a, b, v[4], x, y, tolerance) ? 1 : 0) +
                          (IsPointOnEllipticalArc(v[0], v[1], a, b, v[4], v[5], v[6], x, y, true, tolerance) ? 2 : 0);
        run.code.add(found);
        run.plain.add(onEllipse(v[0], v[1], a, b, v[4], v[5], v[6], x, y, tolerance));

        const double arc[5] = {v[0], v[1], a, std::fabs(v[5]), std::fabs(v[6])};
        const double px = v[0] + grow * a * std::cos(t), py = v[1] + grow * a * std::sin(t);
        const bool known = run.random.below(2) == 0;
        run.code.add(IsPointOnArc(arc[0], arc[1], arc[2], arc[3], arc[4], px, py, known, tolerance) ? 1 : 0);
        run.plain.add(onArc(arc, px, py, known, tolerance) ? 1 : 0);

        const karD_Point p1(v[0], v[1]), p2(v[2], v[3]);
        const karD_Point centre = karCalculator2D().GetArcCentrePoint(p1, p2, v[4]);
        run.code.add(centre.x(), 1024), run.code.add(centre.y(), 1024);
        const double L = std::sqrt((v[0] - v[2]) * (v[0] - v[2]) + (v[1] - v[3]) * (v[1] - v[3]));
        const double R = L / (2 * std::sin(v[4] * 0.5));
        const double h = std::sqrt(R * R - 0.25 * L * L);
        const double alpha = L == 0 ? 0.0 : raised(std::atan2(v[3] - v[1], v[2] - v[0]));
        const bool left = v[4] > 0 ? v[4] < pi : v[4] < -pi;
        const double gamma = alpha + (left ? 1.5707963267948966 : -1.5707963267948966);
        run.plain.add(v[0] + h * std::cos(gamma) + 0.5 * L * std::cos(alpha), 1024);
        run.plain.add(v[1] + h * std::sin(gamma) + 0.5 * L * std::sin(alpha), 1024);

        run.code.add(karCalculator2D().GetAngle(p1, p2));
        run.plain.add(v[0] - v[2] == 0 ? (v[3] < v[1] ? pi / 4 : 3 * pi / 4)
                                       : raised(std::atan2(v[0] - v[2], v[1] - v[3])));
    }
}

} // namespace
