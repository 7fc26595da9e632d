// The box of a turned whole ellipse against all of its 361 samples: where two of them tie, where a side is zero, at any
// size, and beyond the bounds within which the nearest samples decide.
#include "karextent.h"

#include "ellipsescan.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double degree = 0.017453292519943295;
constexpr double pi = 3.141592653589793;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

bool equalsTheScan(double cx, double cy, double a, double b, double rotation)
{
    return isSame(scanned(cx, cy, a, b, rotation), CalculateBoundingRect(cx, cy, a, b, rotation));
}

bool isSampled(double rotation)
{
    for (const double exact : {0.0, 1.5707963267948966, 3.141592653589793, 4.71238898038469, 6.283185307179586})
        if (std::fabs(rotation - exact) < 1e-50)
            return false;
    return true;
}

TEST(SampledBox, EqualsTheScanAtEveryHalfDegree)
{
    for (int half = -1441; half <= 1441; ++half) {
        const double rotation = half * (0.5 * degree);
        if (!isSampled(rotation))
            continue;
        for (const double b : {1.0, -1.0, 0.5, 1e-3, 1e-9, 0.0, -0.0}) {
            ASSERT_TRUE(equalsTheScan(0.0, 0.0, 1.0, b, rotation)) << half << " half degrees, b " << b;
            ASSERT_TRUE(equalsTheScan(-0.0, -0.0, b, 1.0, rotation)) << half << " half degrees, a " << b;
        }
    }
}

TEST(SampledBox, EqualsTheScanWhereAnExtremeLiesAtAnyEighthOfADegree)
{
    // Of x the extreme lies at the angle of (a*cos r, b*sin r), of y at that of (a*sin r, -b*cos r).
    for (const double rotation : {0.3, 2.0, -1.0, 4.0, 1e-9})
        for (int eighth = -1441; eighth <= 1441; ++eighth) {
            const double tangent = std::tan(eighth * (0.125 * degree));
            const double b = tangent / std::tan(rotation);
            ASSERT_TRUE(equalsTheScan(1.0, 2.0, 1.0, b, rotation)) << eighth << " eighths, rotation " << rotation;
            ASSERT_TRUE(equalsTheScan(1.0, 2.0, -1.0, b, rotation)) << eighth << " eighths, rotation " << rotation;
            const double other = -tangent * std::tan(rotation);
            ASSERT_TRUE(equalsTheScan(1.0, 2.0, 1.0, other, rotation)) << eighth << " eighths, rotation " << rotation;
            ASSERT_TRUE(equalsTheScan(1.0, 2.0, -1.0, other, rotation)) << eighth << " eighths, rotation " << rotation;
        }
}

TEST(SampledBox, ASideAtZeroIsPlusZero)
{
    // The half height of an ellipse whose second axis is 0 is that of its sample at 0 degrees, a*sin r.
    const double rotation = 0.5 * degree;
    const double height = std::sin(rotation);
    for (const double centre : {height, -height}) {
        const karD_Rect rect = CalculateBoundingRect(0.0, centre, 1.0, 0.0, rotation);
        EXPECT_TRUE(sameBits(0.0, centre > 0 ? rect.bottom() : rect.top())) << centre;
        EXPECT_TRUE(equalsTheScan(0.0, centre, 1.0, 0.0, rotation)) << centre;
    }
}

TEST(SampledBox, EqualsTheScanOnBothSidesOfEveryBound)
{
    for (const double size :
         {1e-320, 1e-300, 1e-291, 1e-290, 1e-289, 9e98, 1e99, 1e100, 1e101, 1e299, 1e300, 1e301, 1.7e308, inf, nan})
        for (const double rotation : {0.7, -0.5 * degree, 30 * degree, 100.0}) {
            EXPECT_TRUE(equalsTheScan(0.0, 0.0, size, 0.5 * size, rotation)) << size << ' ' << rotation;
            EXPECT_TRUE(equalsTheScan(0.0, 0.0, size, 0.0, rotation)) << size << ' ' << rotation;
            EXPECT_TRUE(equalsTheScan(0.0, 0.0, 1.0, size, rotation)) << size << ' ' << rotation;
            EXPECT_TRUE(equalsTheScan(size, 0.0, 1.0, 2.0, rotation)) << size << ' ' << rotation;
            EXPECT_TRUE(equalsTheScan(0.0, -size, 1.0, 2.0, rotation)) << size << ' ' << rotation;
        }
    const double c = std::cos(0.7), s = std::sin(0.7);
    for (int k = 0; k < 360; ++k) // all samples count, and none beyond: x has its extreme at each in turn
        EXPECT_TRUE(equalsTheScan(0.0, 1e9, std::cos(k * degree) / c, std::sin(k * degree) / s, 0.7)) << k;
    for (double far = 1e4; far < 1e20; far *= 1.5) // from here on the height is lost, bit by bit
        EXPECT_TRUE(equalsTheScan(far, -far, 2.0, 1.0, 0.7)) << far;
}

TEST(SampledBox, EqualsTheScanForEverySetOfSpecialNumbers)
{
    const double specials[] = {0.0, -0.0, 1.0, -1.0, 5e-324, -1e-290, 1.7976931348623157e308, -inf, nan};
    for (const double rotation : {0.5 * pi - degree, -0.5 * pi, 0.25 * pi, 5e-49, -3e5, 1e300})
        for (const double a : specials)
            for (const double b : specials)
                for (const double cx : specials)
                    for (const double cy : specials)
                        ASSERT_TRUE(equalsTheScan(cx, cy, a, b, rotation))
                            << cx << ' ' << cy << ' ' << a << ' ' << b << ' ' << rotation;
}

/// Coordinates and axes of one size, and what turns them.
struct Ellipse {
    double cx, cy, a, b, rotation;

    explicit Ellipse(TestRandom &random)
    {
        cx = random.between(-3.0, 3.0);
        cy = random.between(-3.0, 3.0);
        a = random.between(-3.0, 3.0);
        b = random.between(-3.0, 3.0);
        rotation = random.between(-7.0, 7.0);
    }

    void vary(TestRandom &random)
    {
        switch (random.below(10)) {
        case 0: // two samples tie at each extreme, or one lies there
            b = random.below(2) == 0 ? a : -a;
            rotation = random.between(-720, 720) * (0.5 * degree);
            break;
        case 1: // of x alone
            b = a * std::tan(random.between(-720, 720) * (0.25 * degree)) / std::tan(rotation);
            break;
        case 2: // of y alone
            b = -a * std::tan(random.between(-720, 720) * (0.25 * degree)) * std::tan(rotation);
            break;
        case 3: // flat
            (random.below(2) == 0 ? a : b) *= std::ldexp(1.0, -random.between(0, 1080));
            break;
        case 4: // far away
            cx = scaledDouble(random, 0, 70);
            cy = scaledDouble(random, 0, 70);
            break;
        case 5: { // of any size
            const int size = random.between(-1070, 1020);
            cx = std::ldexp(cx, size);
            cy = std::ldexp(cy, size);
            a = std::ldexp(a, size);
            b = std::ldexp(b, size + random.between(-4, 4));
            break;
        }
        case 6: // of any bits
            cx = mixedDouble(random);
            cy = mixedDouble(random);
            a = mixedDouble(random);
            b = mixedDouble(random);
            rotation = mixedDouble(random);
            break;
        case 7: { // a side near zero
            const double c = std::cos(rotation), s = std::sin(rotation);
            cx = std::sqrt((a * c * a * c) + (b * s * b * s));
            cy = -std::sqrt((a * s * a * s) + (b * c * b * c));
            break;
        }
        case 8: { // a side at zero: the centre is a sample of the ellipse about the origin
            const karD_Rect rect = scanned(0.0, 0.0, a, b, rotation);
            cx = random.below(2) == 0 ? -rect.left() : -rect.right();
            cy = random.below(2) == 0 ? -rect.bottom() : -rect.top();
            break;
        }
        default:
            break;
        }
    }
};

TEST(SampledBox, EqualsTheScanForEllipsesOfEveryKind)
{
    TestRandom random(56);
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        Ellipse e(random);
        e.vary(random);
        if (!isSampled(e.rotation))
            continue;
        ASSERT_TRUE(equalsTheScan(e.cx, e.cy, e.a, e.b, e.rotation))
            << "seed 56, step " << step << ": " << e.cx << ' ' << e.cy << ' ' << e.a << ' ' << e.b << ' ' << e.rotation;
    }
}

} // namespace
