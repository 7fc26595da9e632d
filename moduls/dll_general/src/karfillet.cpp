#include "karfillet.h"

#include "karsolve.h"

#include <cmath>

namespace {

// Pi rounded to nine decimals, as the sine rule of the chamfer takes it.
constexpr double chamferPi = 3.141592654;

struct Vector {
    double x, y;
};

Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y}; }
Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y}; }
Vector operator*(double factor, Vector a) { return {factor * a.x, factor * a.y}; }
Vector operator/(Vector a, double divisor) { return {a.x / divisor, a.y / divisor}; }
double dot(Vector a, Vector b) { return (a.x * b.x) + (a.y * b.y); }
double length(Vector a) { return std::sqrt((a.x * a.x) + (a.y * a.y)); }

// The solution of the rows (first | right1), (second | right2).
// A singular system leaves the right side, which is then used as it stands.
Vector solve(Vector first, double right1, Vector second, double right2)
{
    double A[2][2] = {{first.x, first.y}, {second.x, second.y}};
    double b[2] = {right1, right2};
    gausstridiag(A, b, 2);
    return {b[0], b[1]};
}

// The points with l.x*x + l.y*y = k.
struct ImplicitLine {
    Vector l;
    double k;

    ImplicitLine(double xa, double ya, double xb, double yb) : l{yb - ya, xa - xb}, k((l.x * xa) + (l.y * ya)) {}

    Vector foot(Vector z) const { return solve(l, k, {-l.y, l.x}, (-l.y * z.x) + (l.x * z.y)); }
};

bool parallel(const ImplicitLine &one, const ImplicitLine &two)
{
    return (two.l.y * one.l.x) - (two.l.x * one.l.y) == 0.0;
}

Vector unitVector(Vector from, Vector to)
{
    const Vector v = to - from;
    return v / length(v);
}

// The length on the other line by the sine rule, e1 and e2 enclosing the corner's inner angle.
double otherLength(double given, double angle, Vector e1, Vector e2)
{
    const double theta = std::acos(dot(e1, e2));
    return (given * std::sin(angle)) / std::sin((chamferPi - theta) - angle);
}

void store(Vector value, double &x, double &y)
{
    x = value.x;
    y = value.y;
}

} // namespace

errorCodesKARTORY Calculate_Fillet_Line_Line(const double &x1, const double &y1, const double &x2, const double &y2,
                                             const double &x3, const double &y3, const double &x4, const double &y4,
                                             const double &px, const double &py, const double &radius, double &cornerX,
                                             double &cornerY, double &tangent1X, double &tangent1Y, double &tangent2X,
                                             double &tangent2Y, double &centreX, double &centreY)
{
    const ImplicitLine one(x1, y1, x2, y2);
    const ImplicitLine two(x3, y3, x4, y4);
    if (parallel(one, two))
        return KAR_ERROR_CORNER;
    const Vector pick = {px, py};

    const Vector corner = solve(one.l, one.k, two.l, two.k);
    const auto offset = [pick, r = radius](Vector foot) {
        const Vector v = pick - foot;
        return foot + (r * v) / length(v);
    };
    const Vector g1 = offset(one.foot(pick));
    const Vector g2 = offset(two.foot(pick));
    const Vector centre = solve(one.l, dot(one.l, g1), two.l, dot(two.l, g2));

    store(corner, cornerX, cornerY);
    store(one.foot(centre), tangent1X, tangent1Y);
    store(two.foot(centre), tangent2X, tangent2Y);
    store(centre, centreX, centreY);
    return KAR_SUCCESS;
}

errorCodesKARTORY Calculate_Chamfer_Line_Line(const double &x1, const double &y1, const double &x2, const double &y2,
                                              const double &x3, const double &y3, const double &x4, const double &y4,
                                              const double &px, const double &py, const double &length1,
                                              const double &length2, const double &angle, double &cornerX,
                                              double &cornerY, double &chamfer1X, double &chamfer1Y, double &chamfer2X,
                                              double &chamfer2Y)
{
    const bool given1 = !(length1 < 0.0); // a length that is not a number counts as given
    const bool given2 = !(length2 < 0.0);
    if (!given1 && !given2)
        return KAR_ERROR_CORNER;
    if (given1 != given2 && !(angle >= 0.0))
        return KAR_ERROR_CORNER;

    const ImplicitLine one(x1, y1, x2, y2);
    const ImplicitLine two(x3, y3, x4, y4);
    if (parallel(one, two))
        return KAR_ERROR_CORNER;
    const Vector pick = {px, py};

    const Vector corner = solve(one.l, one.k, two.l, two.k);
    const Vector e1 = unitVector(corner, one.foot(pick));
    const Vector e2 = unitVector(corner, two.foot(pick));
    const double on1 = given1 ? length1 : otherLength(length2, angle, e1, e2);
    const double on2 = given2 ? length2 : otherLength(length1, angle, e1, e2);

    store(corner, cornerX, cornerY);
    store(corner + on1 * e1, chamfer1X, chamfer1Y);
    store(corner + on2 * e2, chamfer2X, chamfer2Y);
    return KAR_SUCCESS;
}
