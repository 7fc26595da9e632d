#include "karfillet.h"

#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

/// Result and output pairs of a call; a chamfer has three pairs.
struct Corner {
    int result = 1;
    double p[8] = {untouched, untouched, untouched, untouched, untouched, untouched, untouched, untouched};

    bool isUntouched() const
    {
        bool same = true;
        for (double value : p)
            same = same && value == untouched;
        return same;
    }
};

#define EXPECT_POINT(x, y, corner, pair, tolerance)                                                                    \
    EXPECT_NEAR(x, (corner).p[2 * (pair)], tolerance);                                                                 \
    EXPECT_NEAR(y, (corner).p[2 * (pair) + 1], tolerance)

/// Two lines and the pick point: x1, y1, x2, y2, x3, y3, x4, y4, px, py.
struct Lines {
    double v[10];
};

/// The x axis and the y axis, picked in the first sector.
constexpr Lines axes = {{-1, 0, 2, 0, 0, -3, 0, 1, 1, 1}};

Corner fillet(const Lines &g, double radius)
{
    Corner c;
    const double *const v = g.v;
    c.result = Calculate_Fillet_Line_Line(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], radius, c.p[0],
                                          c.p[1], c.p[2], c.p[3], c.p[4], c.p[5], c.p[6], c.p[7]);
    return c;
}

Corner chamfer(const Lines &g, double length1, double length2, double angle)
{
    Corner c;
    const double *const v = g.v;
    c.result = Calculate_Chamfer_Line_Line(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], length1, length2,
                                           angle, c.p[0], c.p[1], c.p[2], c.p[3], c.p[4], c.p[5]);
    return c;
}

// Fillet

TEST(Fillet, GivesCornerTangentPointsAndCentreInTheOrderOfTheLines)
{
    Corner c = fillet(axes, 1);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(0, 0, c, 0, 0);
    EXPECT_POINT(1, 0, c, 1, 0);
    EXPECT_POINT(0, 1, c, 2, 0);
    EXPECT_POINT(1, 1, c, 3, 0);
    c = fillet(Lines{{0, 0, 0, 1, 0, 0, 1, 0, 3, 2}}, 0.5); // the lines exchanged
    EXPECT_POINT(0, 0.5, c, 1, 0);
    EXPECT_POINT(0.5, 0, c, 2, 0);
    EXPECT_POINT(0.5, 0.5, c, 3, 0);
}

TEST(Fillet, LiesInTheSectorOfThePickPoint)
{
    for (const double sx : {-1.0, 1.0})
        for (const double sy : {-1.0, 1.0}) {
            Lines g = axes;
            g.v[8] = 5 * sx;
            g.v[9] = 0.25 * sy;
            const Corner c = fillet(g, 2);
            EXPECT_POINT(2 * sx, 0, c, 1, 0);
            EXPECT_POINT(0, 2 * sy, c, 2, 0);
            EXPECT_POINT(2 * sx, 2 * sy, c, 3, 0);
        }
}

TEST(Fillet, NegativeRadiusOffsetsAwayFromThePickPoint)
{
    const Corner c = fillet(axes, -1);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(-1, 0, c, 1, 0);
    EXPECT_POINT(0, -1, c, 2, 0);
    EXPECT_POINT(-1, -1, c, 3, 0);
    EXPECT_POINT(0, 0, fillet(axes, 0), 3, 0);
}

TEST(Fillet, OfExactlyParallelLinesIsMinusSevenWithUntouchedOutputs)
{
    for (const Lines &g : {Lines{{0, 0, 1, 2, 5, 0, 6, 2, 1, 1}}, Lines{{0, 0, 1, 2, 0, 0, 1, 2, 5, 1}},
                           Lines{{3, 3, 3, 3, 0, 0, 1, 2, 5, 1}}}) { // the last of coincident end points
        const Corner c = fillet(g, 1);
        EXPECT_EQ(-7, c.result);
        EXPECT_TRUE(c.isUntouched());
    }
}

TEST(Fillet, ParallelHasNoTolerance)
{
    // l1 = (0, -1), l2 = (1e-300, -1): the determinant is 1e-300
    const Corner c = fillet(Lines{{0, 0, 1, 0, 0, 1, 1, 1 + 1e-300, 5, 5}}, 1);
    EXPECT_EQ(-7, c.result); // 1 + 1e-300 is 1
    const Corner near = fillet(Lines{{0, 0, 1, 0, 0, 0, 1, 1e-300, 5, 5}}, 1);
    EXPECT_EQ(0, near.result);
    EXPECT_POINT(0, 0, near, 0, 0);
}

TEST(Fillet, FromAPickPointOnALineIsNotANumber)
{
    Lines g = axes;
    g.v[9] = 0;
    const Corner c = fillet(g, 1);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(0, 0, c, 0, 0); // the corner stands
    for (int i = 2; i < 8; ++i)
        EXPECT_TRUE(std::isnan(c.p[i])) << i;
}

TEST(Fillet, NotANumberIsNotParallel)
{
    Lines g = axes;
    g.v[0] = nan;
    EXPECT_EQ(0, fillet(g, 1).result);
    EXPECT_TRUE(std::isnan(fillet(g, 1).p[0]));
}

TEST(Fillet, SystemThatIsSingularByRoundingKeepsItsRightSide)
{
    // Coefficients (1.9, 0.4) and a sixth of them: their determinant is -2.8e-17, but elimination leaves 0.
    const Corner c = fillet(Lines{{0.4, 0, 0, 1.9, 0.4 / 6, 0, 0, 1.9 / 6, 5, 5}}, 1);
    EXPECT_EQ(0, c.result);
    EXPECT_EQ(1.9 * 0.4, c.p[0]);
    EXPECT_EQ((1.9 / 6) * (0.4 / 6), c.p[1]);
}

TEST(Fillet, OutputsMayBeInputs)
{
    Lines g = {{-1, 0.5, 2, 0, 0.25, -3, 0, 1, 1, 1}};
    const Corner c = fillet(g, 1);
    double *const v = g.v;
    EXPECT_EQ(0, Calculate_Fillet_Line_Line(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], 1, v[9], v[8],
                                            v[7], v[6], v[5], v[4], v[3], v[2]));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(c.p[i], v[9 - i]) << i;
}

// Chamfer

TEST(Chamfer, CutsTheGivenLengthsFromTheCorner)
{
    const Corner c = chamfer(axes, 1, 2, nan); // the angle is not read
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(0, 0, c, 0, 0);
    EXPECT_POINT(1, 0, c, 1, 0);
    EXPECT_POINT(0, 2, c, 2, 0);
    EXPECT_EQ(untouched, c.p[6]);
}

TEST(Chamfer, LengthZeroCountsAsGiven)
{
    for (const double zero : {0.0, -0.0}) {
        const Corner c = chamfer(axes, zero, zero, -1);
        EXPECT_EQ(0, c.result);
        EXPECT_POINT(0, 0, c, 1, 0);
        EXPECT_POINT(0, 0, c, 2, 0);
    }
}

TEST(Chamfer, LiesInTheSectorOfThePickPoint)
{
    Lines g = axes;
    g.v[8] = -0.5;
    g.v[9] = -7;
    const Corner c = chamfer(g, 1, 2, 0);
    EXPECT_POINT(-1, 0, c, 1, 0);
    EXPECT_POINT(0, -2, c, 2, 0);
}

TEST(Chamfer, TakesPiAsNineDecimals)
{
    // sin(pi/4) / sin(pi/4 + d) with d = 3.141592654 - pi = 4.10207e-10 is 1 - d
    Corner c = chamfer(axes, 1, -1, pi / 4);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(1, 0, c, 1, 0);
    EXPECT_POINT(0, 1 - 4.10207e-10, c, 2, 1e-15);
    c = chamfer(axes, -1, 1, pi / 4);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(1 - 4.10207e-10, 0, c, 1, 1e-15);
    EXPECT_POINT(0, 1, c, 2, 0);
    // At 60 degrees to the line of the length: sin 60 / sin(30 + d) is 1.7320508 (1 - 1.7320508 d)
    c = chamfer(axes, 1, -0.5, pi / 3);
    EXPECT_POINT(0, std::sqrt(3.0) * (1 - std::sqrt(3.0) * 4.10207e-10), c, 2, 2e-15);
}

TEST(Chamfer, AngleLiesAtTheEndOfTheGivenLength)
{
    const Lines g = {{0, 0, 1, 0, 0, 0, 1, std::sqrt(3.0), 2, 1}}; // 60 degrees at the corner
    const Corner c = chamfer(g, 2, -1, pi / 6);                    // the third angle is 90 degrees
    EXPECT_POINT(2, 0, c, 1, 1e-15);
    EXPECT_POINT(0.5, std::sqrt(3.0) / 2, c, 2, 1e-9);
    EXPECT_NEAR(1, std::sqrt(c.p[4] * c.p[4] + c.p[5] * c.p[5]), 1e-9);
}

TEST(Chamfer, FailuresAreMinusSevenWithUntouchedOutputs)
{
    const Lines parallel = {{0, 0, 1, 2, 5, 0, 6, 2, 1, 1}};
    for (const Corner &c : {chamfer(axes, -1, -1, 1), chamfer(axes, -5e-324, -1, 1), chamfer(axes, 1, -1, -0.1),
                            chamfer(axes, -1, 1, -0.1), chamfer(axes, 1, -1, nan), chamfer(axes, -1, 1, nan),
                            chamfer(parallel, 1, 1, 1), chamfer(parallel, 1, -1, 1), chamfer(parallel, -1, 1, 1)}) {
        EXPECT_EQ(-7, c.result);
        EXPECT_TRUE(c.isUntouched());
    }
}

TEST(Chamfer, AngleZeroAndLengthsThatAreNotNumbersPass)
{
    Corner c = chamfer(axes, 1, -1, 0);
    EXPECT_EQ(0, c.result);
    EXPECT_POINT(0, 0, c, 2, 0);
    EXPECT_EQ(0, chamfer(axes, 1, -1, -0.0).result);
    c = chamfer(axes, nan, -1, 1); // counts as given
    EXPECT_EQ(0, c.result);
    EXPECT_TRUE(std::isnan(c.p[2]) && std::isnan(c.p[5]));
    c = chamfer(axes, nan, 1, -1); // both given: the angle is not read
    EXPECT_EQ(0, c.result);
    EXPECT_TRUE(std::isnan(c.p[2]));
    EXPECT_POINT(0, 1, c, 2, 0);
}

TEST(Chamfer, FromAPickPointAtTheCornerOrOverItIsNotANumber)
{
    Lines g = axes;
    g.v[8] = g.v[9] = 0;
    Corner c = chamfer(g, 1, 1, 0);
    EXPECT_EQ(0, c.result);
    EXPECT_TRUE(std::isnan(c.p[2]) && std::isnan(c.p[5]));
    g.v[8] = 1; // on line 1: its foot on line 2 is the corner
    c = chamfer(g, 1, 1, 0);
    EXPECT_POINT(1, 0, c, 1, 0);
    EXPECT_TRUE(std::isnan(c.p[4]) && std::isnan(c.p[5]));
}

TEST(Chamfer, OutputsMayBeInputs)
{
    Lines g = {{-1, 0.5, 2, 0, 0.25, -3, 0, 1, 1, 1}};
    const Corner c = chamfer(g, 1, -1, 0.5);
    double *const v = g.v;
    double length1 = 1, length2 = -1, angle = 0.5;
    EXPECT_EQ(0, Calculate_Chamfer_Line_Line(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], length1,
                                             length2, angle, length1, angle, v[0], v[9], length2, v[8]));
    EXPECT_EQ(c.p[0], length1);
    EXPECT_EQ(c.p[1], angle);
    EXPECT_EQ(c.p[2], v[0]);
    EXPECT_EQ(c.p[3], v[9]);
    EXPECT_EQ(c.p[4], length2);
    EXPECT_EQ(c.p[5], v[8]);
}

// Geometry

struct Vector {
    double x, y;
};
double cross(Vector a, Vector b) { return a.x * b.y - a.y * b.x; }
double dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y; }
double length(Vector a) { return std::sqrt(dot(a, a)); }

/// Lines through `corner` at the polar angles `from` and `from` + `opening`, the pick point between them.
struct Sector {
    Vector corner, along1, along2, pick;
    double opening;

    explicit Sector(TestRandom &random)
    {
        corner.x = random.between(-10.0, 10.0);
        corner.y = random.between(-10.0, 10.0);
        const double from = random.between(0.0, 2 * pi);
        opening = random.between(0.2, pi - 0.2);
        const double share = random.between(0.1, 0.9), distance = random.between(0.1, 10.0);
        along1 = {std::cos(from), std::sin(from)};
        along2 = {std::cos(from + opening), std::sin(from + opening)};
        const double towards = from + share * opening;
        pick = {corner.x + distance * std::cos(towards), corner.y + distance * std::sin(towards)};
        if (random.below(2) == 0)
            std::swap(along1, along2);
    }
    Lines lines(TestRandom &random) const
    {
        double s[4];
        for (double &value : s)
            value = random.between(-8.0, 8.0);
        s[1] = s[0] + (s[1] < 0 ? -1 : 1) + s[1];
        s[3] = s[2] + (s[3] < 0 ? -1 : 1) + s[3];
        return {{corner.x + s[0] * along1.x, corner.y + s[0] * along1.y, corner.x + s[1] * along1.x,
                 corner.y + s[1] * along1.y, corner.x + s[2] * along2.x, corner.y + s[2] * along2.y,
                 corner.x + s[3] * along2.x, corner.y + s[3] * along2.y, pick.x, pick.y}};
    }
};

TEST(Fillet, TouchesBothLinesAtItsRadiusInTheSectorOfThePickPoint)
{
    TestRandom random(61);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 61, step " << step);
        const Sector sector(random);
        const double radius = random.between(0.1, 5.0);
        const Corner c = fillet(sector.lines(random), radius);
        ASSERT_EQ(0, c.result);
        ASSERT_NEAR(sector.corner.x, c.p[0], 1e-10);
        ASSERT_NEAR(sector.corner.y, c.p[1], 1e-10);
        const double along = radius / std::tan(sector.opening / 2);
        for (int i = 0; i < 2; ++i) {
            const Vector direction = i == 0 ? sector.along1 : sector.along2;
            const Vector tangent = {c.p[2 + 2 * i] - c.p[0], c.p[3 + 2 * i] - c.p[1]};
            const Vector spoke = {c.p[6] - c.p[2 + 2 * i], c.p[7] - c.p[3 + 2 * i]};
            ASSERT_NEAR(along, dot(tangent, direction), 1e-9); // towards the pick point
            ASSERT_NEAR(0, cross(tangent, direction), 1e-9);
            ASSERT_NEAR(radius, length(spoke), 1e-9);
            ASSERT_NEAR(0, dot(spoke, direction), 1e-9);
        }
    }
}

TEST(Chamfer, HasTheLengthsAndTheAngle)
{
    TestRandom random(62);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 62, step " << step);
        Sector sector(random);
        const Lines g = sector.lines(random);
        // Rays are measured from the feet of the pick point: where it lies behind the corner they point back.
        const Vector toPick = {sector.pick.x - sector.corner.x, sector.pick.y - sector.corner.y};
        for (Vector *ray : {&sector.along1, &sector.along2})
            if (dot(*ray, toPick) < 0)
                *ray = {-ray->x, -ray->y};
        const double inner = std::acos(dot(sector.along1, sector.along2));
        if (std::fabs(dot(sector.along1, toPick)) < 0.01 || std::fabs(dot(sector.along2, toPick)) < 0.01)
            continue; // a foot beside the corner
        const double length1 = random.between(0.1, 3.0);
        const double length2 = random.between(0.1, 3.0);
        Corner c = chamfer(g, length1, length2, 0);
        ASSERT_EQ(0, c.result);
        ASSERT_NEAR(c.p[0] + length1 * sector.along1.x, c.p[2], 1e-10);
        ASSERT_NEAR(c.p[1] + length1 * sector.along1.y, c.p[3], 1e-10);
        ASSERT_NEAR(c.p[0] + length2 * sector.along2.x, c.p[4], 1e-10);
        ASSERT_NEAR(c.p[1] + length2 * sector.along2.y, c.p[5], 1e-10);

        const double angle = random.between(0.05, 0.95) * (pi - inner);
        if (pi - inner - angle < 0.05)
            continue; // the cut is nearly parallel to the other line
        for (int given = 0; given < 2; ++given) {
            c = given == 0 ? chamfer(g, length1, -1, angle) : chamfer(g, -1, length2, angle);
            ASSERT_EQ(0, c.result);
            const int own = 2 + 2 * given, other = 4 - 2 * given;
            const Vector back = {c.p[0] - c.p[own], c.p[1] - c.p[own + 1]};
            const Vector cut = {c.p[other] - c.p[own], c.p[other + 1] - c.p[own + 1]};
            ASSERT_NEAR(given == 0 ? length1 : length2, length(back), 1e-10);
            ASSERT_NEAR(angle, std::acos(dot(back, cut) / (length(back) * length(cut))), 1e-6);
            const Vector end = {c.p[other] - c.p[0], c.p[other + 1] - c.p[1]};
            ASSERT_NEAR(0, cross(end, given == 0 ? sector.along2 : sector.along1), 1e-8);
        }
    }
}

// The steps written out

struct Plain {
    double l1x, l1y, k1, l2x, l2y, k2;

    explicit Plain(const double *v)
        : l1x(v[3] - v[1]),
          l1y(v[0] - v[2]),
          k1(l1x * v[0] + l1y * v[1]),
          l2x(v[7] - v[5]),
          l2y(v[4] - v[6]),
          k2(l2x * v[4] + l2y * v[5])
    {}
};

/// By elimination with the larger first element as pivot; a singular system keeps its right side.
Vector solved(double a, double b, double e, double c, double d, double f)
{
    const Vector kept = {e, f};
    if (std::fabs(c) > std::fabs(a)) {
        std::swap(a, c);
        std::swap(b, d);
        std::swap(e, f);
    }
    if (a == 0)
        return kept;
    const double factor = c / a;
    d = d - factor * b;
    f = f - factor * e;
    if (d == 0)
        return kept;
    const double y = f / d;
    return {(e - (0.0 + y * b)) / a, y};
}

Vector footOn(double lx, double ly, double k, Vector z) { return solved(lx, ly, k, -ly, lx, -ly * z.x + lx * z.y); }

Corner plainFillet(const double *v, double radius)
{
    Corner c;
    const Plain g(v);
    c.result = -7;
    if (g.l2y * g.l1x - g.l2x * g.l1y == 0.0)
        return c;
    const Vector pick = {v[8], v[9]};
    const Vector corner = solved(g.l1x, g.l1y, g.k1, g.l2x, g.l2y, g.k2);
    const Vector f1 = footOn(g.l1x, g.l1y, g.k1, pick), f2 = footOn(g.l2x, g.l2y, g.k2, pick);
    const Vector v1 = {pick.x - f1.x, pick.y - f1.y}, v2 = {pick.x - f2.x, pick.y - f2.y};
    const Vector g1 = {f1.x + radius * v1.x / length(v1), f1.y + radius * v1.y / length(v1)};
    const Vector g2 = {f2.x + radius * v2.x / length(v2), f2.y + radius * v2.y / length(v2)};
    const Vector centre = solved(g.l1x, g.l1y, g.l1x * g1.x + g.l1y * g1.y, g.l2x, g.l2y, g.l2x * g2.x + g.l2y * g2.y);
    const Vector t1 = footOn(g.l1x, g.l1y, g.k1, centre), t2 = footOn(g.l2x, g.l2y, g.k2, centre);
    c.result = 0;
    const double values[8] = {corner.x, corner.y, t1.x, t1.y, t2.x, t2.y, centre.x, centre.y};
    for (int i = 0; i < 8; ++i)
        c.p[i] = values[i];
    return c;
}

Corner plainChamfer(const double *v, double length1, double length2, double angle)
{
    Corner c;
    const Plain g(v);
    c.result = -7;
    const int mode = (length1 < 0 ? 0 : 1) + (length2 < 0 ? 0 : 2);
    if (mode == 0 || (mode < 3 && !(angle >= 0)) || g.l2y * g.l1x - g.l2x * g.l1y == 0.0)
        return c;
    const Vector pick = {v[8], v[9]};
    const Vector corner = solved(g.l1x, g.l1y, g.k1, g.l2x, g.l2y, g.k2);
    const Vector f1 = footOn(g.l1x, g.l1y, g.k1, pick), f2 = footOn(g.l2x, g.l2y, g.k2, pick);
    const Vector v1 = {f1.x - corner.x, f1.y - corner.y}, v2 = {f2.x - corner.x, f2.y - corner.y};
    const Vector e1 = {v1.x / length(v1), v1.y / length(v1)}, e2 = {v2.x / length(v2), v2.y / length(v2)};
    const double theta = std::acos(dot(e1, e2));
    const double divisor = std::sin(3.141592654 - theta - angle);
    if (mode == 1)
        length2 = length1 * std::sin(angle) / divisor;
    if (mode == 2)
        length1 = length2 * std::sin(angle) / divisor;
    c.result = 0;
    const double values[6] = {corner.x,
                              corner.y,
                              corner.x + length1 * e1.x,
                              corner.y + length1 * e1.y,
                              corner.x + length2 * e2.x,
                              corner.y + length2 * e2.y};
    for (int i = 0; i < 6; ++i)
        c.p[i] = values[i];
    return c;
}

void add(TestHash &hash, const Corner &c)
{
    hash.add(c.result);
    for (double value : c.p)
        hash.add(value);
}

void addRounded(RoundedHash &hash, const Corner &c)
{
    hash.rounded.add(c.result);
    for (double value : c.p)
        hash.addRounded(value, 1024.0);
}

Lines randomLines(TestRandom &random)
{
    Lines g;
    for (double &value : g.v)
        value = mixedDouble(random);
    return g;
}

TEST(Fillet, MillionCallsEqualThePlainSteps)
{
    GoldenRun run(63, 500000, 5295480620140153750u);
    while (run.next()) {
        const Lines g = randomLines(run.random);
        const double radius = mixedDouble(run.random);
        const double length1 = mixedDouble(run.random);
        const double length2 = std::fabs(length1);
        add(run.code, fillet(g, radius));
        add(run.plain, plainFillet(g.v, radius));
        if (length1 < 0)
            continue; // with a length missing the sines of the C library come in
        add(run.code, chamfer(g, length1, length2, radius));
        add(run.plain, plainChamfer(g.v, length1, length2, radius));
    }
}

TEST(Chamfer, CallsByAngleEqualTheSteps)
{
    GoldenRun<RoundedHash> run(64, 250000, 6649626531981693454u);
    while (run.next()) {
        Lines g;
        for (double &value : g.v)
            value = run.random.below(4) == 0 ? run.random.between(-3, 3) : run.random.between(-10.0, 10.0);
        const double length1 = run.random.between(-1.0, 1.0);
        const double length2 = run.random.between(-1.0, 1.0);
        const double angle = run.random.between(-0.2, 3.0);
        const Corner c = chamfer(g, length1, length2, angle);
        add(run.code.exact, c);
        add(run.plain.exact, plainChamfer(g.v, length1, length2, angle));
        if (std::fabs(c.p[2]) < 1e3 && std::fabs(c.p[3]) < 1e3 && std::fabs(c.p[4]) < 1e3 && std::fabs(c.p[5]) < 1e3)
            addRounded(run.code, c);
    }
}

} // namespace
