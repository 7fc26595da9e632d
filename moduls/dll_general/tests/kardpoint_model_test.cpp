// Real points beside a plain model: a million calls hashed, and rotation as an isometry.
#include "kardpoint.h"
#include "goldenrun.h"
#include "testrandom.h"
#include "teststeps.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

namespace {

struct Plain {
    double x;
    double y;
};

int truncated(double v)
{
    if (std::isnan(v))
        return 0;
    return static_cast<int>(std::trunc(std::fmin(std::fmax(v, -2147483648.0), 2147483647.0)));
}

int rounded(double v) { return truncated(v < 0 ? v - 0.5 : v + 0.5); }

void add(TestHash &hash, double x, double y)
{
    hash.add(x);
    hash.add(y);
}

void add(TestHash &hash, const tUniquePair<double> &p) { add(hash, p.x(), p.y()); }

/// Small whole values, values of the drawing plane, and any pattern of bits.
double anyPlace(TestRandom &random)
{
    switch (random.below(4)) {
    case 0:
        return random.between(-3, 3);
    case 1:
        return random.anyDouble();
    default:
        return random.between(-1e6, 1e6);
    }
}

} // namespace

TEST(KarD_PointModel, AgreesOverAMillionCalls)
{
    GoldenRun run(621, 1000000, 0x1bcc760520172905u);
    while (run.next()) {
        const double ax = anyPlace(run.random);
        const double ay = anyPlace(run.random);
        const double bx = anyPlace(run.random);
        const double by = anyPlace(run.random);
        const double f = anyPlace(run.random);
        const int n = run.random.anyInt();
        const karD_Point a(ax, ay);
        const karD_Point b(bx, by);
        const karPoint grid(n, -7);
        karD_Point changed(a);
        const double dx = ax - bx;
        const double dy = ay - by;
        switch (run.step % 25) {
        case 0:
            add(run.code, a + b), add(run.plain, ax + bx, ay + by);
            break;
        case 1:
            add(run.code, a - b), add(run.plain, dx, dy);
            break;
        case 2:
            add(run.code, a + karD_Dimension(bx, by)), add(run.plain, ax + bx, ay + by);
            break;
        case 3:
            add(run.code, a - grid), add(run.plain, ax - n, ay + 7);
            break;
        case 4:
            add(run.code, -a), add(run.plain, -ax, -ay);
            break;
        case 5:
            add(run.code, a * f), add(run.plain, ax * f, ay * f);
            break;
        case 6:
            add(run.code, a / f), add(run.plain, ax / f, ay / f);
            break;
        case 7:
            add(run.code, a * n), add(run.plain, ax * n, ay * n);
            break;
        case 8:
            add(run.code, a / n), add(run.plain, ax / n, ay / n);
            break;
        case 9:
            add(run.code, changed += b), add(run.plain, ax + bx, ay + by);
            break;
        case 10:
            add(run.code, changed -= grid), add(run.plain, ax - n, ay + 7);
            break;
        case 11:
            add(run.code, changed *= f), add(run.plain, ax * f, ay * f);
            break;
        case 12:
            add(run.code, changed /= f), add(run.plain, ax / f, ay / f);
            break;
        case 13:
            run.code.add(a * &b), run.plain.add(ax * bx + ay * by);
            break;
        case 14:
            run.code.add(a * &grid), run.plain.add(ax * n + ay * -7.0);
            break;
        case 15:
            run.code.add((a == b) + 2 * (a != b) + 4 * (a < b) + 8 * (a <= b) + 16 * (a > b) + 32 * (a >= b));
            run.plain.add((ax == bx && ay == by ? 1 : 2) + (ax < bx && ay < by ? 4 : 0) +
                          (ax <= bx && ay <= by ? 8 : 0) + (ax > bx && ay > by ? 16 : 0) +
                          (ax >= bx && ay >= by ? 32 : 0));
            break;
        case 16:
            run.code.add(a.Cmp(b)), run.plain.add(dy == 0 ? dx : dy);
            break;
        case 17: {
            const double d = dy == 0 ? dx : dy;
            run.code.add(karD_Dimension(ax, ay).Cmp(karD_Dimension(bx, by)));
            run.plain.add(d < 0 ? -1 : d > 0 ? 1 : 0);
            break;
        }
        case 18:
            add(run.code, a.Min(b)), add(run.plain, bx < ax ? bx : ax, by < ay ? by : ay);
            break;
        case 19:
            add(run.code, a.Max(b)), add(run.plain, bx > ax ? bx : ax, by > ay ? by : ay);
            break;
        case 20:
            run.code.add(a.DistAbs(b)), run.plain.add(std::fabs(dx) + std::fabs(dy));
            run.code.add(a.DistX(b)), run.plain.add(std::fabs(dx));
            run.code.add(a.DistY(b)), run.plain.add(std::fabs(dy));
            break;
        case 21:
            run.code.add(a.DistMax(b)), run.plain.add(std::fabs(dx) > std::fabs(dy) ? std::fabs(dx) : std::fabs(dy));
            break;
        case 22:
            run.code.add(a.DistEuk(b)), run.plain.add(std::sqrt(dx * dx + dy * dy));
            break;
        case 23: {
            const karPoint converted = a;
            run.code.add(converted.x()), run.plain.add(rounded(ax));
            run.code.add(converted.y()), run.plain.add(rounded(ay));
            break;
        }
        default: {
            karPoint assigned;
            assigned = a;
            run.code.add(assigned.x()), run.plain.add(rounded(ax));
            run.code.add(assigned.y()), run.plain.add(rounded(ay));
            break;
        }
        }
    }
}

TEST(KarD_PointModel, AgreesOverAMillionRotations)
{
    GoldenRun run(622, 1000000, 0x5bcf4898a9fe3721u);
    while (run.next()) {
        const Plain start{anyPlace(run.random), anyPlace(run.random)};
        const Plain centre = run.step % 2 ? Plain{anyPlace(run.random), anyPlace(run.random)} : Plain{0.0, 0.0};
        const double c = run.random.between(-1.0, 1.0);
        const double s = run.random.between(-1.0, 1.0);
        karD_Point p(start.x, start.y);
        if (run.step % 2)
            p.RotateElement(c, s, centre.x, centre.y);
        else
            p.RotateElement(c, s);
        add(run.code, p);
        const Plain d{start.x - centre.x, start.y - centre.y};
        add(run.plain, centre.x + d.x * c - d.y * s, centre.y + d.x * s + d.y * c);
    }
}

// Angles come from the C library, so they are hashed in steps of 1e-6.
TEST(KarD_PointModel, AgreesOverAMillionDirections)
{
    GoldenRun run(623, 1000000, 0x19183cf539899ed2u);
    while (run.next()) {
        const Plain from{run.random.between(-100.0, 100.0), run.random.between(-100.0, 100.0)};
        const Plain to{run.random.between(-100.0, 100.0), run.random.between(-100.0, 100.0)};
        const double angle = karD_Point(from.x, from.y).AngleX(karD_Point(to.x, to.y));
        double expected = std::atan2(to.y - from.y, to.x - from.x);
        if (expected < 0)
            expected += 6.283185307179586;
        ASSERT_EQ(angle, expected) << run;
        ASSERT_GE(angle, 0.0) << run;
        ASSERT_LE(angle, 6.283185307179586) << run;
        run.code.add(truncated(angle * 1e6));
        run.plain.add(truncated(expected * 1e6));
    }
}

TEST(KarD_PointModel, KeepsLengthsAndComesBackFromARotation)
{
    const std::uint64_t seed = 624;
    TestRandom random(seed);
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        const karD_Point start(random.between(-1e4, 1e4), random.between(-1e4, 1e4));
        const karD_Point centre(random.between(-1e4, 1e4), random.between(-1e4, 1e4));
        const double angle = random.between(0.0, 6.28);
        karD_Point p(start);
        p.RotateElement(angle, centre.x(), centre.y());
        ASSERT_NEAR(p.DistEuk(centre), start.DistEuk(centre), 1e-10) << "seed " << seed << ", step " << step;
        if (start.DistEuk(centre) > 1.0) {
            double turn = centre.AngleX(p) - centre.AngleX(start);
            turn = turn < -1e-9 ? turn + 6.283185307179586 : turn;
            ASSERT_NEAR(turn, angle, 1e-9) << "seed " << seed << ", step " << step;
        }
        p.RotateElement(-angle, centre.x(), centre.y());
        ASSERT_NEAR(p.x(), start.x(), 1e-10) << "seed " << seed << ", step " << step;
        ASSERT_NEAR(p.y(), start.y(), 1e-10) << "seed " << seed << ", step " << step;
    }
}
