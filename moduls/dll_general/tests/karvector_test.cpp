// Directions of the plane and of space: normalisation, lengths, angles, products, sums with positions.
#include "karvector.h"

#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double pi = 3.14159265358979323846;

testing::AssertionResult holds(const kar2DVector &v, double x, double y)
{
    if (sameBits(v.GetX(), x) && sameBits(v.GetY(), y))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << v.GetX() << ", " << v.GetY() << ")";
}

testing::AssertionResult holds(const kar3DVector &v, double x, double y, double z)
{
    if (sameBits(v.GetX(), x) && sameBits(v.GetY(), y) && sameBits(v.GetZ(), z))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << v.GetX() << ", " << v.GetY() << ", " << v.GetZ() << ")";
}

template <class T, class = void>
struct HasDifference : std::false_type {};
template <class T>
struct HasDifference<T, std::void_t<decltype(std::declval<T>() - std::declval<T>())>> : std::true_type {};

TEST(Kar2DVector, IsAVirtualTypeIdAndTwoDoubles)
{
    const kar2DVector v(1, 2, false);
    EXPECT_EQ(v.GetType(), KAR_ID_2D_VECTOR);
    EXPECT_EQ(v.GetType(), 101);
    EXPECT_TRUE(std::is_polymorphic<kar2DVector>::value);
    EXPECT_FALSE(std::has_virtual_destructor<kar2DVector>::value);
    EXPECT_FALSE(std::has_virtual_destructor<kar3DVector>::value);
    const kar3DVector w(1, 2, 3, false);
    const kar2DVector &base = w;
    EXPECT_EQ(base.GetType(), KAR_ID_3D_VECTOR);
    EXPECT_EQ(base.GetType(), 114);
    EXPECT_EQ(sizeof(kar3DVector), sizeof(kar2DVector) + sizeof(double));
    double places[3];
    std::memcpy(places, reinterpret_cast<const char *>(&w) + (sizeof w - sizeof places), sizeof places);
    EXPECT_EQ(places[0], 1);
    EXPECT_EQ(places[1], 2);
    EXPECT_EQ(places[2], 3);
}

TEST(Kar2DVector, HasNoDifference)
{
    EXPECT_FALSE(HasDifference<kar2DVector>::value);
    EXPECT_FALSE(HasDifference<kar3DVector>::value);
}

TEST(Kar2DVector, NormalisesInTheSameStepOnRequestOnly)
{
    EXPECT_TRUE(holds(kar2DVector(), 0, 0));
    EXPECT_TRUE(holds(kar2DVector(3, 4, false), 3, 4));
    EXPECT_TRUE(holds(kar2DVector(3, 4, true), 0.6, 0.8));
    EXPECT_TRUE(holds(kar2DVector(kar2DVector(3, 4, false), true), 0.6, 0.8));
    EXPECT_TRUE(holds(kar2DVector(kar2DVector(3, 4, false), false), 3, 4));
    EXPECT_TRUE(holds(kar2DVector(karD_Point(1, 1), karD_Point(4, 5), false), 3, 4));
    EXPECT_TRUE(holds(kar2DVector(karD_Point(1, 1), karD_Point(4, 5), true), 0.6, 0.8));
    kar2DVector v;
    v.Set(3, 4, false);
    EXPECT_TRUE(holds(v, 3, 4));
    v.Set(6, 8, true);
    EXPECT_TRUE(holds(v, 0.6, 0.8));
    v.SetX(3);
    v.SetY(4);
    EXPECT_TRUE(holds(v, 3, 4)) << "a plain store";
    EXPECT_EQ(&v.Normalize(), &v);
    EXPECT_TRUE(holds(v, 0.6, 0.8));
}

TEST(Kar2DVector, TooShortToNormaliseStaysExactlyAsItIs)
{
    EXPECT_TRUE(holds(kar2DVector(0.0, 0.0, true), 0, 0));
    EXPECT_EQ(kar2DVector(0.0, 0.0, true).GetUnitX(), 0.0);
    EXPECT_TRUE(holds(kar2DVector(1e-60, 0.0, true), 1e-60, 0));
    EXPECT_EQ(kar2DVector(1e-60, 0.0, true).GetUnitX(), 0.0);
    EXPECT_TRUE(holds(kar2DVector(1e-40, 0.0, true), 1, 0));
    // The length of (x, 0) is x: sqrt(x * x) is exact to a rounding that 2e-50 and 5e-51 are far from.
    EXPECT_TRUE(holds(kar2DVector(-2e-50, 0.0, true), -1, 0));
    EXPECT_TRUE(holds(kar2DVector(5e-51, 0.0, true), 5e-51, 0));
    EXPECT_TRUE(holds(kar2DVector(1e-50, 0.0, true), 1, 0)) << "a length of 1e-50 is long enough";
    EXPECT_EQ(kar2DVector(1e-50, 0.0, false).GetUnitX(), 1.0);
    EXPECT_EQ(kar2DVector(0.0, -1e-50, false).GetUnitY(), -1.0);
    EXPECT_TRUE(holds(kar2DVector(1e-200, 0.0, true), 1e-200, 0)) << "the square underflows";
    EXPECT_TRUE(holds(kar2DVector(notANumber, 1, true), notANumber, notANumber)) << "divided all the same";
    EXPECT_TRUE(holds(kar2DVector(infinity, 1, true), notANumber, 0));
}

TEST(Kar2DVector, OfAnAngleIsAlwaysNormalised)
{
    TestRandom random(721);
    for (int call = 0; call < 1000; ++call) {
        const double angle = random.between(-10.0, 10.0);
        const double c = std::cos(angle), s = std::sin(angle), length = std::sqrt(c * c + s * s);
        ASSERT_TRUE(holds(kar2DVector(angle), c / length, s / length)) << angle;
    }
    EXPECT_TRUE(holds(kar2DVector(0.0), 1, 0));
}

TEST(Kar2DVector, ReadsLengthUnitAndAngle)
{
    const kar2DVector v(3, 4, false);
    EXPECT_EQ(v.GetDistance(), 5);
    EXPECT_EQ(v.GetUnitX(), 0.6);
    EXPECT_EQ(v.GetUnitY(), 0.8);
    EXPECT_TRUE(holds(v, 3, 4)) << "unchanged";
    EXPECT_EQ(kar2DVector(0, -1, false).GetAngleX(), -pi / 2);
    EXPECT_EQ(kar2DVector(-1, 0, false).GetAngleX(), pi);
}

TEST(Kar2DVector, RotatesCounterClockwise)
{
    kar2DVector v(1, 0, false);
    EXPECT_EQ(&v.Rotate(pi / 2, false), &v);
    EXPECT_NEAR(v.GetX(), 0, 1e-16);
    EXPECT_EQ(v.GetY(), 1);
    EXPECT_NEAR(v.GetAngleX(), pi / 2, 1e-15);
    TestRandom random(722);
    for (int call = 0, calls = testSteps(10000); call < calls; ++call) {
        const double x = random.between(-9.0, 9.0), y = random.between(-9.0, 9.0), angle = random.between(-9.0, 9.0);
        const double c = std::cos(angle), s = std::sin(angle);
        const double newX = c * x - s * y, newY = s * x + c * y;
        const double length = std::sqrt(newX * newX + newY * newY);
        ASSERT_TRUE(holds(kar2DVector(x, y, false).Rotate(angle, false), newX, newY)) << "seed 722, call " << call;
        ASSERT_TRUE(holds(kar2DVector(x, y, false).Rotate(angle, true), newX / length, newY / length))
            << "seed 722, call " << call;
    }
}

TEST(Kar2DVector, AddsScalesAndMultiplies)
{
    const kar2DVector a(1, 2, false), b(3, 5, false);
    EXPECT_TRUE(holds(a + b, 4, 7));
    EXPECT_EQ(a * b, 13);
    EXPECT_TRUE(holds(a * 2.0, 2, 4));
    EXPECT_TRUE(holds(-a, -1, -2));
    EXPECT_TRUE(holds(+a, 1, 2));
}

TEST(Kar3DVector, NormalisesInTheSameStepOnRequestOnly)
{
    EXPECT_TRUE(holds(kar3DVector(), 0, 0, 0));
    EXPECT_TRUE(holds(kar3DVector(2, 3, 6, false), 2, 3, 6));
    EXPECT_TRUE(holds(kar3DVector(2, 3, 6, true), 2.0 / 7, 3.0 / 7, 6.0 / 7));
    EXPECT_TRUE(holds(kar3DVector(kar3DVector(2, 3, 6, false), true), 2.0 / 7, 3.0 / 7, 6.0 / 7));
    EXPECT_TRUE(holds(kar3DVector(kar3DVector(2, 3, 6, false), false), 2, 3, 6));
    EXPECT_TRUE(holds(kar3DVector(kar3D_Point(0, 0, 0), kar3D_Point(3, 4, 0), true), 0.6, 0.8, 0));
    EXPECT_TRUE(holds(kar3DVector(kar3D_Point(1, 2, 3), kar3D_Point(3, 4, 0), false), 2, 2, -3));
    kar3DVector v;
    EXPECT_EQ(&v.Set(2, 3, 6, false), &v);
    EXPECT_TRUE(holds(v, 2, 3, 6));
    EXPECT_EQ(&v.Normalize(), &v);
    EXPECT_TRUE(holds(v, 2.0 / 7, 3.0 / 7, 6.0 / 7));
    EXPECT_TRUE(holds(v.Set(4, 6, 12, true), 2.0 / 7, 3.0 / 7, 6.0 / 7));
    EXPECT_EQ(&v.SetZ(9), &v);
    v.SetX(7);
    v.SetY(8);
    EXPECT_TRUE(holds(v, 7, 8, 9));
    EXPECT_TRUE((std::is_same<decltype(v.SetX(0)), void>::value));
}

TEST(Kar3DVector, TooShortToNormaliseStaysExactlyAsItIs)
{
    EXPECT_TRUE(holds(kar3DVector(0, 0, 0, true), 0, 0, 0));
    EXPECT_TRUE(holds(kar3DVector(0, 0, 1e-60, true), 0, 0, 1e-60));
    EXPECT_TRUE(holds(kar3DVector(0, 0, 1e-40, true), 0, 0, 1));
    EXPECT_TRUE(holds(kar3DVector(0, 0, 1e-50, true), 0, 0, 1)) << "a length of 1e-50 is long enough";
    EXPECT_EQ(kar3DVector(0, 0, 1e-50, false).GetUnitZ(), 1.0);
    EXPECT_TRUE(std::isnan(kar3DVector(0, 0, notANumber, false).GetUnitZ()));
    EXPECT_EQ(kar3DVector(0, 0, 1e-60, false).GetUnitZ(), 0.0);
    EXPECT_TRUE(holds(kar3DVector(0, 0, notANumber, true), notANumber, notANumber, notANumber));
}

TEST(Kar3DVector, UnitGettersOfThePlaneIgnoreZ)
{
    const kar3DVector v(3, 0, 4, false);
    EXPECT_EQ(v.GetUnitZ(), 0.8);
    EXPECT_EQ(v.GetUnitX(), 1.0);
    EXPECT_EQ(v.GetUnitY(), 0.0);
    EXPECT_EQ(v.GetDistance(), 5);
    EXPECT_EQ(static_cast<const kar2DVector &>(v).GetDistance(), 3) << "not virtual";
    EXPECT_EQ(kar3DVector(0, 0, 4, false).GetUnitX(), 0.0);
}

TEST(Kar3DVector, RotationAndItsNormalisationLeaveZAlone)
{
    kar3DVector v(3, 4, 12, false);
    v.Rotate(0.0, false);
    EXPECT_TRUE(holds(v, 3, 4, 12));
    v.Rotate(0.0, true);
    EXPECT_TRUE(holds(v, 0.6, 0.8, 12));
}

TEST(Kar3DVector, OuterProductIsRightHandedAndOfUnitLength)
{
    EXPECT_TRUE(holds(kar3DVector(1, 0, 0, false).OuterProduct(kar3DVector(0, 2, 0, false)), 0, 0, 1));
    EXPECT_TRUE(holds(kar3DVector(0, 2, 0, false).OuterProduct(kar3DVector(1, 0, 0, false)), 0, 0, -1));
    EXPECT_TRUE(holds(kar3DVector(0, 1, 0, false).OuterProduct(kar3DVector(0, 0, 5, false)), 1, 0, 0));
    EXPECT_TRUE(holds(kar3DVector(0, 0, 1, false).OuterProduct(kar3DVector(5, 0, 0, false)), 0, 1, 0));
    EXPECT_TRUE(holds(kar3DVector(1, 2, 3, false).OuterProduct(kar3DVector(2, 4, 6, false)), 0, 0, 0)) << "parallel";
    EXPECT_TRUE(
        holds(kar3DVector(1e-30, 0, 0, false).OuterProduct(kar3DVector(0, 1e-30, 0, false)), 0, 0, 1e-30 * 1e-30))
        << "too short to normalise";
}

TEST(Kar3DVector, AnglesAndComponentsAreNeitherGuardedNorClamped)
{
    const kar3DVector x(1, 0, 0, false), zero;
    EXPECT_TRUE(std::isnan(x.AngleToVector(zero)));
    EXPECT_EQ(x.AngleToVector(kar3DVector(0, 3, 0, false)), std::acos(0.0));
    EXPECT_EQ(x.AngleToVector(kar3DVector(-2, 0, 0, false)), std::acos(-1.0));
    EXPECT_EQ(kar3DVector(3, 4, 5, false).DirectionComponent(kar3DVector(0, 2, 0, false)), 4);
    EXPECT_TRUE(std::isnan(x.DirectionComponent(zero)));
    // Rounding lifts the quotient of some vector by itself above 1, whose arc cosine is no number.
    TestRandom random(723);
    int above = 0;
    for (int call = 0; call < 1000; ++call) {
        const kar3DVector v{random.between(-1.0, 1.0), random.between(-1.0, 1.0), random.between(-1.0, 1.0), false};
        const double length = std::sqrt(v.GetX() * v.GetX() + v.GetY() * v.GetY() + v.GetZ() * v.GetZ());
        const double dot = v.GetX() * v.GetX() + v.GetY() * v.GetY() + v.GetZ() * v.GetZ();
        if (dot / (length * length) > 1) {
            ++above;
            ASSERT_TRUE(std::isnan(v.AngleToVector(v)));
        } else {
            ASSERT_EQ(v.AngleToVector(v), std::acos(dot / (length * length)));
        }
    }
    EXPECT_GT(above, 0);
}

TEST(Kar3DVector, AddsScalesAndMultiplies)
{
    const kar3DVector a(1, 2, 3, false), b(3, 5, 7, false);
    EXPECT_TRUE(holds(a + b, 4, 7, 10));
    EXPECT_EQ(a * b, 34);
    EXPECT_EQ(a.InnerProduct(b), 34);
    EXPECT_TRUE(holds(a * 2.0, 2, 4, 6));
    EXPECT_TRUE(holds(-a, -1, -2, -3));
    EXPECT_TRUE(holds(+a, 1, 2, 3));
}

TEST(Kar3DVector, MovesPositions)
{
    const karD_Point p = karD_Point(1, 2) + kar2DVector(3, 5, false);
    EXPECT_EQ(p.x(), 4);
    EXPECT_EQ(p.y(), 7);
    const karD_Point q = karD_Point(1, 2) - kar2DVector(3, 5, false);
    EXPECT_EQ(q.x(), -2);
    EXPECT_EQ(q.y(), -3);
    const kar3D_Point r = kar3D_Point(1, 2, 3) + kar3DVector(3, 5, 7, false);
    EXPECT_EQ(r.x(), 4);
    EXPECT_EQ(r.y(), 7);
    EXPECT_EQ(r.z(), 10);
    const kar3D_Point s = kar3D_Point(1, 2, 3) - kar3DVector(3, 5, 7, false);
    EXPECT_EQ(s.x(), -2);
    EXPECT_EQ(s.y(), -3);
    EXPECT_EQ(s.z(), -4);
}

// Plain transcriptions.

struct Plain {
    double x, y, z;
};

double length2(const Plain &v) { return std::sqrt(v.x * v.x + v.y * v.y); }
double length3(const Plain &v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

Plain unit3(Plain v)
{
    const double length = length3(v);
    if (std::fabs(length) < 1e-50)
        return v;
    return {v.x / length, v.y / length, v.z / length};
}

void add(TestHash &hash, const Plain &v)
{
    hash.add(v.x);
    hash.add(v.y);
    hash.add(v.z);
}

void add(TestHash &hash, const kar3DVector &v) { add(hash, Plain{v.GetX(), v.GetY(), v.GetZ()}); }

TEST(Kar3DVector, AMillionOperationsAreThoseOfThePlainTranscription)
{
    GoldenRun run(724, 100000, 10185750674195065884u);
    while (run.next()) {
        const Plain a{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        const Plain b{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        const double f = mixedDouble(run.random);
        const kar3DVector v(a.x, a.y, a.z, false), w(b.x, b.y, b.z, false);
        const double dot = a.x * b.x + a.y * b.y + a.z * b.z;

        add(run.code, kar3DVector(v, true));
        add(run.plain, unit3(a));
        add(run.code, v.OuterProduct(w));
        add(run.plain, unit3({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}));
        run.code.add(v * w);
        run.plain.add(dot);
        run.code.add(v.DirectionComponent(w));
        run.plain.add(dot / length3(b));
        run.code.add(v.GetDistance());
        run.plain.add(length3(a));
        run.code.add(v.GetUnitX());
        run.plain.add(length2(a) < 1e-50 ? 0.0 : a.x / length2(a));
        run.code.add(v.GetUnitY());
        run.plain.add(length2(a) < 1e-50 ? 0.0 : a.y / length2(a));
        run.code.add(v.GetUnitZ());
        run.plain.add(length3(a) < 1e-50 ? 0.0 : a.z / length3(a));
        add(run.code, v + w);
        add(run.plain, {a.x + b.x, a.y + b.y, a.z + b.z});
        add(run.code, v * f);
        add(run.plain, {a.x * f, a.y * f, a.z * f});
        const kar2DVector p(a.x, a.y, true), q(b.x, b.y, false);
        run.code.add(p.GetX());
        run.code.add(p.GetY());
        run.plain.add(length2(a) < 1e-50 ? a.x : a.x / length2(a));
        run.plain.add(length2(a) < 1e-50 ? a.y : a.y / length2(a));
        run.code.add(static_cast<const kar2DVector &>(v) * q);
        run.plain.add(a.x * b.x + a.y * b.y);
        ASSERT_TRUE(sameBits(v.AngleToVector(w), std::acos(dot / (length3(a) * length3(b)))));
        ASSERT_TRUE(sameBits(v.GetAngleX(), std::atan2(a.y, a.x)));
    }
}

} // namespace
