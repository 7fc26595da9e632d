// Real points beside a plain model: a million calls hashed, and rotation as an isometry.
#include "kardpoint.h"
#include "testhash.h"
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
    KAR_NEEDS_WHOLE_SEQUENCE();
    const std::uint64_t seed = 621;
    TestRandom random(seed);
    TestHash ours;
    TestHash model;
    for (int step = 0; step < 1000000; ++step) {
        const double ax = anyPlace(random);
        const double ay = anyPlace(random);
        const double bx = anyPlace(random);
        const double by = anyPlace(random);
        const double f = anyPlace(random);
        const int n = random.anyInt();
        const karD_Point a(ax, ay);
        const karD_Point b(bx, by);
        const karPoint grid(n, -7);
        karD_Point changed(a);
        const double dx = ax - bx;
        const double dy = ay - by;
        switch (step % 25) {
        case 0:
            add(ours, a + b), add(model, ax + bx, ay + by);
            break;
        case 1:
            add(ours, a - b), add(model, dx, dy);
            break;
        case 2:
            add(ours, a + karD_Dimension(bx, by)), add(model, ax + bx, ay + by);
            break;
        case 3:
            add(ours, a - grid), add(model, ax - n, ay + 7);
            break;
        case 4:
            add(ours, -a), add(model, -ax, -ay);
            break;
        case 5:
            add(ours, a * f), add(model, ax * f, ay * f);
            break;
        case 6:
            add(ours, a / f), add(model, ax / f, ay / f);
            break;
        case 7:
            add(ours, a * n), add(model, ax * n, ay * n);
            break;
        case 8:
            add(ours, a / n), add(model, ax / n, ay / n);
            break;
        case 9:
            add(ours, changed += b), add(model, ax + bx, ay + by);
            break;
        case 10:
            add(ours, changed -= grid), add(model, ax - n, ay + 7);
            break;
        case 11:
            add(ours, changed *= f), add(model, ax * f, ay * f);
            break;
        case 12:
            add(ours, changed /= f), add(model, ax / f, ay / f);
            break;
        case 13:
            ours.add(a * &b), model.add(ax * bx + ay * by);
            break;
        case 14:
            ours.add(a * &grid), model.add(ax * n + ay * -7.0);
            break;
        case 15:
            ours.add((a == b) + 2 * (a != b) + 4 * (a < b) + 8 * (a <= b) + 16 * (a > b) + 32 * (a >= b));
            model.add((ax == bx && ay == by ? 1 : 2) + (ax < bx && ay < by ? 4 : 0) + (ax <= bx && ay <= by ? 8 : 0) +
                      (ax > bx && ay > by ? 16 : 0) + (ax >= bx && ay >= by ? 32 : 0));
            break;
        case 16:
            ours.add(a.Cmp(b)), model.add(dy == 0 ? dx : dy);
            break;
        case 17: {
            const double d = dy == 0 ? dx : dy;
            ours.add(karD_Dimension(ax, ay).Cmp(karD_Dimension(bx, by)));
            model.add(d < 0 ? -1 : d > 0 ? 1 : 0);
            break;
        }
        case 18:
            add(ours, a.Min(b)), add(model, bx < ax ? bx : ax, by < ay ? by : ay);
            break;
        case 19:
            add(ours, a.Max(b)), add(model, bx > ax ? bx : ax, by > ay ? by : ay);
            break;
        case 20:
            ours.add(a.DistAbs(b)), model.add(std::fabs(dx) + std::fabs(dy));
            ours.add(a.DistX(b)), model.add(std::fabs(dx));
            ours.add(a.DistY(b)), model.add(std::fabs(dy));
            break;
        case 21:
            ours.add(a.DistMax(b)), model.add(std::fabs(dx) > std::fabs(dy) ? std::fabs(dx) : std::fabs(dy));
            break;
        case 22:
            ours.add(a.DistEuk(b)), model.add(std::sqrt(dx * dx + dy * dy));
            break;
        case 23: {
            const karPoint converted = a;
            ours.add(converted.x()), model.add(rounded(ax));
            ours.add(converted.y()), model.add(rounded(ay));
            break;
        }
        default: {
            karPoint assigned;
            assigned = a;
            ours.add(assigned.x()), model.add(rounded(ax));
            ours.add(assigned.y()), model.add(rounded(ay));
            break;
        }
        }
        ASSERT_EQ(ours.value(), model.value()) << "seed " << seed << ", step " << step;
    }
    EXPECT_EQ(ours.value(), 0x1bcc760520172905u);
}

TEST(KarD_PointModel, AgreesOverAMillionRotations)
{
    KAR_NEEDS_WHOLE_SEQUENCE();
    const std::uint64_t seed = 622;
    TestRandom random(seed);
    TestHash ours;
    TestHash model;
    for (int step = 0; step < 1000000; ++step) {
        const Plain start{anyPlace(random), anyPlace(random)};
        const Plain centre = step % 2 ? Plain{anyPlace(random), anyPlace(random)} : Plain{0.0, 0.0};
        const double c = random.between(-1.0, 1.0);
        const double s = random.between(-1.0, 1.0);
        karD_Point p(start.x, start.y);
        if (step % 2)
            p.RotateElement(c, s, centre.x, centre.y);
        else
            p.RotateElement(c, s);
        add(ours, p);
        const Plain d{start.x - centre.x, start.y - centre.y};
        add(model, centre.x + d.x * c - d.y * s, centre.y + d.x * s + d.y * c);
        ASSERT_EQ(ours.value(), model.value()) << "seed " << seed << ", step " << step;
    }
    EXPECT_EQ(ours.value(), 0x5bcf4898a9fe3721u);
}

// Angles come from the C library, so they are hashed in steps of 1e-6.
TEST(KarD_PointModel, AgreesOverAMillionDirections)
{
    KAR_NEEDS_WHOLE_SEQUENCE();
    const std::uint64_t seed = 623;
    TestRandom random(seed);
    TestHash ours;
    TestHash model;
    for (int step = 0; step < 1000000; ++step) {
        const Plain from{random.between(-100.0, 100.0), random.between(-100.0, 100.0)};
        const Plain to{random.between(-100.0, 100.0), random.between(-100.0, 100.0)};
        const double angle = karD_Point(from.x, from.y).AngleX(karD_Point(to.x, to.y));
        double expected = std::atan2(to.y - from.y, to.x - from.x);
        if (expected < 0)
            expected += 6.283185307179586;
        ASSERT_EQ(angle, expected) << "seed " << seed << ", step " << step;
        ASSERT_GE(angle, 0.0) << "seed " << seed << ", step " << step;
        ASSERT_LE(angle, 6.283185307179586) << "seed " << seed << ", step " << step;
        ours.add(truncated(angle * 1e6));
        model.add(truncated(expected * 1e6));
    }
    EXPECT_EQ(ours.value(), model.value());
    EXPECT_EQ(ours.value(), 0x19183cf539899ed2u);
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
