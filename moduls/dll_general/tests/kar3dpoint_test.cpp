// Space triples and the range: stated values, the exposed surface, and a million calls against plain transcriptions.
// The application of a matrix to a position stands with the matrices.
#include "kar3dpoint.h"
#include "karmatrix.h"

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

constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.14159265358979323846;

struct Three {
    double x, y, z;
};

template <class T>
Three placesOf(const T &triple)
{
    static_assert(sizeof(T) == sizeof(Three), "three doubles and nothing else");
    Three places;
    std::memcpy(static_cast<void *>(&places), static_cast<const void *>(&triple), sizeof places);
    return places;
}

template <class T>
testing::AssertionResult holds(const T &triple, double x, double y, double z)
{
    const Three p = placesOf(triple);
    if (sameBits(p.x, x) && sameBits(p.y, y) && sameBits(p.z, z))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << p.x << ", " << p.y << ", " << p.z << ")";
}

// Which expressions compile.
template <class A, class B, class = void>
struct HasSum : std::false_type {};
template <class A, class B>
struct HasSum<A, B, std::void_t<decltype(std::declval<A>() + std::declval<B>())>> : std::true_type {};
template <class T, class = void>
struct HasX : std::false_type {};
template <class T>
struct HasX<T, std::void_t<decltype(std::declval<T>().x())>> : std::true_type {};
template <class T, class = void>
struct HasDistance : std::false_type {};
template <class T>
struct HasDistance<T, std::void_t<decltype(std::declval<T>().Distance())>> : std::true_type {};
template <class T, class = void>
struct HasAngleX : std::false_type {};
template <class T>
struct HasAngleX<T, std::void_t<decltype(std::declval<T>().AngleX(std::declval<T>()))>> : std::true_type {};

TEST(Kar3DPair, ExposesItsConstructorsAlone)
{
    EXPECT_TRUE((std::is_constructible<kar3D_Pair, double, double, double>::value));
    EXPECT_TRUE(std::is_copy_constructible<kar3D_Pair>::value);
    EXPECT_FALSE(std::is_copy_assignable<kar3D_Pair>::value);
    EXPECT_FALSE((HasSum<kar3D_Pair, kar3D_Pair>::value));
    EXPECT_FALSE(HasX<kar3D_Pair>::value);
    EXPECT_FALSE(HasDistance<kar3D_Pair>::value);
}

TEST(Kar3DPair, IsThreeDoublesInOrderWithoutVirtualOperations)
{
    EXPECT_FALSE(std::is_polymorphic<kar3D_Pair>::value);
    EXPECT_FALSE(std::is_polymorphic<kar3D_Point>::value);
    EXPECT_FALSE(std::is_polymorphic<kar3D_Dimension>::value);
    EXPECT_FALSE(std::is_polymorphic<kar3D_Range>::value);
    EXPECT_TRUE(std::is_trivially_copyable<kar3D_Point>::value);
    EXPECT_TRUE(std::is_trivially_copyable<kar3D_Dimension>::value);
    EXPECT_TRUE(std::is_trivially_copyable<kar3D_Range>::value);
    EXPECT_TRUE((std::is_base_of<kar3D_Pair, kar3D_Point>::value));
    EXPECT_TRUE((std::is_base_of<kar3D_Pair, kar3D_Dimension>::value));
    EXPECT_TRUE(holds(kar3D_Pair(1, 2, 3), 1, 2, 3));
    EXPECT_TRUE(holds(kar3D_Pair(), 0, 0, 0));
    EXPECT_TRUE(holds(kar3D_Point(1, 2, 3), 1, 2, 3));
    EXPECT_TRUE(holds(kar3D_Dimension(1, 2, 3), 1, 2, 3));
    EXPECT_TRUE(holds(kar3D_Range(1, 2, 3), 1, 2, 3));
}

TEST(Kar3DDimension, DoesNotOfferDistanceAngleOrTheAccessorsOfAPoint)
{
    EXPECT_TRUE(HasX<kar3D_Point>::value);
    EXPECT_TRUE(HasDistance<kar3D_Point>::value);
    EXPECT_TRUE(HasAngleX<kar3D_Point>::value);
    EXPECT_FALSE(HasX<kar3D_Dimension>::value);
    EXPECT_FALSE(HasDistance<kar3D_Dimension>::value);
    EXPECT_FALSE(HasAngleX<kar3D_Dimension>::value);
}

TEST(Kar3DPoint, RelationsAreBoolAndThoseOfADimensionInt)
{
    const kar3D_Point p;
    const kar3D_Dimension d;
    EXPECT_TRUE((std::is_same<decltype(p == p), bool>::value));
    EXPECT_TRUE((std::is_same<decltype(p < d), bool>::value));
    EXPECT_TRUE((std::is_same<decltype(d == d), int>::value));
    EXPECT_TRUE((std::is_same<decltype(d >= d), int>::value));
    kar3D_Point q;
    kar3D_Dimension e;
    EXPECT_TRUE((std::is_same<decltype(q += p), const kar3D_Point &>::value));
    EXPECT_TRUE((std::is_same<decltype(q += d), const kar3D_Point &>::value));
    EXPECT_TRUE((std::is_same<decltype(q = 1.0), const kar3D_Point &>::value));
    EXPECT_TRUE((std::is_same<decltype(e *= 2.0), const kar3D_Dimension &>::value));
    EXPECT_TRUE((std::is_same<decltype(p - d), kar3D_Point>::value));
    EXPECT_TRUE((std::is_same<decltype(d.Min(d)), kar3D_Dimension>::value));
    EXPECT_TRUE((std::is_same<decltype(p.x()), const double &>::value));
    EXPECT_TRUE((std::is_same<decltype(d.width()), const double &>::value));
}

TEST(Kar3DPoint, EqualityHoldsWithinAToleranceItselfExcluded)
{
    EXPECT_TRUE(kar3D_Point(0, 0, 0) == kar3D_Point(1e-51, 0, 0));
    EXPECT_FALSE(kar3D_Point(0, 0, 0) == kar3D_Point(1e-50, 0, 0));
    EXPECT_FALSE(kar3D_Point(0, 0, 0) == kar3D_Point(0, -1e-50, 0));
    EXPECT_FALSE(kar3D_Point(0, 0, 0) == kar3D_Point(0, 0, 1e-50));
    EXPECT_TRUE(kar3D_Point(0, 0, 0) == kar3D_Point(-9e-51, 9e-51, -9e-51));
    EXPECT_FALSE(kar3D_Point(0, 0, 0) != kar3D_Point(1e-51, 0, 0));
    EXPECT_TRUE(kar3D_Point(0, 0, 0) != kar3D_Point(1e-50, 0, 0));
    EXPECT_FALSE(kar3D_Point(1, 1, 1) == kar3D_Point(std::nextafter(1.0, 2.0), 1, 1));
    EXPECT_EQ(kar3D_Dimension(0, 0, 0) == kar3D_Dimension(1e-51, 0, 0), 1);
    EXPECT_EQ(kar3D_Dimension(0, 0, 0) != kar3D_Dimension(1e-50, 0, 0), 1);
}

TEST(Kar3DPoint, InfinitiesAreNotEqual)
{
    EXPECT_FALSE(kar3D_Point(infinity, 0, 0) == kar3D_Point(infinity, 0, 0));
    EXPECT_TRUE(kar3D_Point(infinity, 0, 0) != kar3D_Point(infinity, 0, 0));
    EXPECT_FALSE(kar3D_Point(notANumber, 0, 0) == kar3D_Point(notANumber, 0, 0));
}

TEST(Kar3DPoint, RelationsHoldOnlyInAllThreePlaces)
{
    EXPECT_TRUE(kar3D_Point(1, 2, 3) < kar3D_Point(2, 3, 4));
    EXPECT_FALSE(kar3D_Point(1, 2, 3) < kar3D_Point(2, 3, 3));
    EXPECT_FALSE(kar3D_Point(1, 2, 3) < kar3D_Point(1, 3, 4));
    EXPECT_FALSE(kar3D_Point(1, 2, 3) < kar3D_Point(2, 2, 4));
    EXPECT_FALSE(kar3D_Point(1, 2, 3) >= kar3D_Point(2, 3, 3));
    EXPECT_TRUE(kar3D_Point(1, 2, 3) <= kar3D_Point(1, 2, 3));
    EXPECT_TRUE(kar3D_Point(1, 2, 3) >= kar3D_Point(1, 2, 3));
    EXPECT_FALSE(kar3D_Point(1, 2, 3) > kar3D_Point(0, 1, 3));
    EXPECT_TRUE(kar3D_Point(1, 2, 3) > kar3D_Point(0, 1, 2));
    EXPECT_FALSE(kar3D_Point(0, 0, 0) >= kar3D_Point(1e-51, 0, 0)) << "no tolerance here";
    EXPECT_EQ(kar3D_Dimension(1, 2, 3) < kar3D_Dimension(2, 3, 4), 1);
    EXPECT_EQ(kar3D_Dimension(1, 2, 3) <= kar3D_Dimension(0, 3, 4), 0);
}

TEST(Kar3DPoint, CmpOrdersByYThenXThenZ)
{
    EXPECT_EQ(kar3D_Point(1, 2, 3).Cmp(kar3D_Point(9, 2, 3)), -1);
    EXPECT_EQ(kar3D_Point(5, 1, 0).Cmp(kar3D_Point(1, 9, 0)), -1);
    EXPECT_EQ(kar3D_Point(1, 9, 0).Cmp(kar3D_Point(5, 1, 0)), 1);
    EXPECT_EQ(kar3D_Point(5, 2, 0).Cmp(kar3D_Point(1, 2, 9)), 1);
    EXPECT_EQ(kar3D_Point(1, 2, 3).Cmp(kar3D_Point(1, 2, 4)), -1);
    EXPECT_EQ(kar3D_Point(1, 2, 4).Cmp(kar3D_Point(1, 2, 3)), 1);
    EXPECT_EQ(kar3D_Point(1, 2, 3).Cmp(kar3D_Point(1, 2, 3)), 0);
    EXPECT_EQ(kar3D_Point(1, 1e-60, 3).Cmp(kar3D_Point(0, 2e-60, 3)), -1) << "no tolerance";
    EXPECT_EQ(kar3D_Point(1, notANumber, 3).Cmp(kar3D_Point(0, 0, 0)), 0);
    EXPECT_EQ(kar3D_Dimension(1, 2, 3).Cmp(kar3D_Dimension(9, 2, 3)), -1);
}

TEST(Kar3DPoint, AngleXIsNotShiftedToPositiveValues)
{
    EXPECT_EQ(kar3D_Point(0, 0, 0).AngleX(kar3D_Point(0, -1, 0)), -pi / 2);
    EXPECT_EQ(kar3D_Point(0, 0, 0).AngleX(kar3D_Point(-1, 0, 7)), pi);
    EXPECT_EQ(kar3D_Point(1, 1, 5).AngleX(kar3D_Point(2, 2, -5)), pi / 4) << "z takes no part";
    EXPECT_EQ(kar3D_Point(1, 1, 5).AngleX(kar3D_Point(1, 1, 5)), 0.0);
}

TEST(Kar3DPoint, AddsProductsAndQuotientsPlaceByPlace)
{
    const kar3D_Point a(6, 8, 10), b(2, 4, 5);
    EXPECT_TRUE(holds(a + b, 8, 12, 15));
    EXPECT_TRUE(holds(a - b, 4, 4, 5));
    EXPECT_TRUE(holds(a * b, 12, 32, 50));
    EXPECT_TRUE(holds(a / b, 3, 2, 2));
    EXPECT_TRUE(holds(a + 1.0, 7, 9, 11)) << "a number is added too";
    EXPECT_TRUE(holds(a - 1.0, 5, 7, 9));
    EXPECT_TRUE(holds(a * 2, 12, 16, 20));
    EXPECT_TRUE(holds(a / 2, 3, 4, 5));
    EXPECT_TRUE(holds(-a, -6, -8, -10));
    EXPECT_TRUE(holds(kar3D_Point(1, -1, 0) / 0.0, infinity, -infinity, notANumber));
    EXPECT_TRUE(holds(a.Min(kar3D_Point(7, 7, 10)), 6, 7, 10));
    EXPECT_TRUE(holds(a.Max(kar3D_Point(7, 7, 10)), 7, 8, 10));
    EXPECT_TRUE(holds(a.DistDim(b), 4, 4, 5));
    EXPECT_TRUE(holds(b.DistDim(a), -4, -4, -5));
}

TEST(Kar3DPoint, EqualPlacesStayThoseOfTheReceiver)
{
    const kar3D_Point plus(0.0, 0.0, 0.0), minus(-0.0, -0.0, -0.0);
    for (const kar3D_Point &result : {kar3D_Point(plus.Min(minus)), kar3D_Point(plus.Max(minus))}) {
        EXPECT_TRUE(sameBits(result.x(), 0.0));
        EXPECT_TRUE(sameBits(result.y(), 0.0));
        EXPECT_TRUE(sameBits(result.z(), 0.0));
    }
    for (const kar3D_Point &result : {kar3D_Point(minus.Min(plus)), kar3D_Point(minus.Max(plus))}) {
        EXPECT_TRUE(sameBits(result.x(), -0.0));
        EXPECT_TRUE(sameBits(result.y(), -0.0));
        EXPECT_TRUE(sameBits(result.z(), -0.0));
    }
}

TEST(Kar3DRange, EqualEndsStayThoseOfTheReceiver)
{
    const kar3D_Range ends(-1.0, 0.0, 0.0), starts(0.0, 1.0, 0.0);
    EXPECT_TRUE(sameBits((ends + -0.0).hi(), 0.0));
    EXPECT_TRUE(sameBits((starts + -0.0).lo(), 0.0));
    EXPECT_TRUE(sameBits((ends + kar3D_Range(-1.0, -0.0, 0.0)).hi(), 0.0));
    EXPECT_TRUE(sameBits((starts + kar3D_Range(-0.0, 1.0, 0.0)).lo(), 0.0));
    kar3D_Range sum = ends;
    sum += kar3D_Range(-1.0, -0.0, 0.0);
    EXPECT_TRUE(sameBits(sum.hi(), 0.0));
    sum = starts;
    sum += kar3D_Range(-0.0, 1.0, 0.0);
    EXPECT_TRUE(sameBits(sum.lo(), 0.0));
    EXPECT_TRUE(sameBits(kar3D_Range(0.0, -0.0, 0.0).lo(), 0.0)); // of equal ends the first is both
    EXPECT_TRUE(sameBits(kar3D_Range(0.0, -0.0, 0.0).hi(), 0.0));
}

TEST(Kar3DPoint, TakesExtentsInAssignmentArithmeticAndRelations)
{
    kar3D_Point p(6, 8, 10);
    const kar3D_Dimension d(2, 4, 5);
    EXPECT_TRUE(holds(p + d, 8, 12, 15));
    EXPECT_TRUE(holds(p - d, 4, 4, 5));
    EXPECT_TRUE(holds(p * d, 12, 32, 50));
    EXPECT_TRUE(holds(p / d, 3, 2, 2));
    EXPECT_TRUE(holds(p += d, 8, 12, 15));
    EXPECT_TRUE(holds(p -= d, 6, 8, 10));
    EXPECT_TRUE(holds(p *= d, 12, 32, 50));
    EXPECT_TRUE(holds(p /= d, 6, 8, 10));
    EXPECT_TRUE(p > d);
    EXPECT_TRUE(p >= d);
    EXPECT_FALSE(p < d);
    EXPECT_FALSE(p <= d);
    EXPECT_TRUE(p != d);
    p = d;
    EXPECT_TRUE(p == d);
    EXPECT_TRUE(holds(p, 2, 4, 5));
    p = kar3D_Pair(7, 8, 9);
    EXPECT_TRUE(holds(p, 7, 8, 9));
}

TEST(Kar3DPoint, StoresAndReadsItsPlaces)
{
    kar3D_Point p(1, 2, 3);
    EXPECT_EQ(p.GetX(), 1);
    EXPECT_EQ(p.GetY(), 2);
    EXPECT_EQ(p.GetZ(), 3);
    p.SetX(4);
    p.SetY(5);
    p.SetZ(6);
    EXPECT_TRUE(holds(p, 4, 5, 6));
    p.x(7);
    p.y(8);
    p.z(9);
    EXPECT_EQ(p.x(), 7);
    EXPECT_EQ(p.y(), 8);
    EXPECT_EQ(p.z(), 9);
    p.Set(1, 2, 3);
    EXPECT_TRUE(holds(p, 1, 2, 3));
    EXPECT_EQ(&p.move(10, 20, 30), &p);
    EXPECT_TRUE(holds(p, 10, 20, 30)) << "moved to, not by";
    p.setNull();
    EXPECT_TRUE(holds(p, 0, 0, 0));
    p = 2.5;
    EXPECT_TRUE(holds(p, 2.5, 2.5, 2.5));
    p = kar3D_Point(3, 4, 12);
    EXPECT_EQ(p.Distance(), 13);
    EXPECT_TRUE(holds(kar3D_Point(kar3D_Pair(1, 2, 3)), 1, 2, 3));
}

TEST(Kar3DDimension, NamesItsPlacesWidthHeightAndDeep)
{
    kar3D_Dimension d(1, 2, 3);
    EXPECT_EQ(d.width(), 1);
    EXPECT_EQ(d.height(), 2);
    EXPECT_EQ(d.deep(), 3);
    EXPECT_EQ(d.widthVal(), 1);
    EXPECT_EQ(d.heightVal(), 2);
    EXPECT_EQ(d.deepVal(), 3);
    d.width(4);
    d.height(5);
    d.deep(6);
    EXPECT_TRUE(holds(d, 4, 5, 6));
    d = 7.0;
    EXPECT_TRUE(holds(d, 7, 7, 7));
    d = kar3D_Dimension(1, 2, 3);
    EXPECT_TRUE(holds(d * d, 1, 4, 9));
    EXPECT_EQ(&(d = kar3D_Pair(4, 5, 6)), &d);
    EXPECT_TRUE(holds(d, 4, 5, 6));
    d = kar3D_Point(7, 8, 9);
    EXPECT_TRUE(holds(d, 7, 8, 9));
    d = {1.0, 2.0, 3.0};
    EXPECT_TRUE(holds(d, 1, 2, 3));
    EXPECT_TRUE((std::is_same<decltype(d = 1.0), const kar3D_Dimension &>::value));
    EXPECT_TRUE(holds(kar3D_Dimension(kar3D_Pair(1, 2, 3)), 1, 2, 3));
}

TEST(Kar3DPoint, DistancesAreThoseOfTheirNames)
{
    const kar3D_Point a(1, 2, 3), b(4, -2, 15);
    EXPECT_EQ(a.DistAbs(b), 19);
    EXPECT_EQ(a.DistMax(b), 12);
    EXPECT_EQ(a.DistMax(kar3D_Point(-8, 2, 3)), 9);
    EXPECT_EQ(a.DistMax(kar3D_Point(0, 7, 3)), 5);
    EXPECT_EQ(a.DistSqr(b), 169);
    EXPECT_EQ(a.DistEuk(b), 13);
    EXPECT_EQ(a.DistMax(a), 0);
    EXPECT_EQ(kar3D_Dimension(1, 2, 3).DistEuk(kar3D_Dimension(4, -2, 15)), 13);
}

TEST(Kar3DPoint, ANumberOfTheReceiverCountsWithItsValueOnEntry)
{
    kar3D_Point p(2, 3, 4);
    p *= p.x();
    EXPECT_TRUE(holds(p, 4, 6, 8));
    p -= p.x();
    EXPECT_TRUE(holds(p, 0, 2, 4));
    p.Set(p.z(), p.x(), p.y());
    EXPECT_TRUE(holds(p, 4, 0, 2));
    p.move(p.y(), p.z(), p.x());
    EXPECT_TRUE(holds(p, 0, 2, 4));
    p = p.y();
    EXPECT_TRUE(holds(p, 2, 2, 2));
    const kar3D_Point &same = p;
    p /= same;
    EXPECT_TRUE(holds(p, 1, 1, 1));
}

TEST(Kar3DDimension, TransformationsIgnoreTheMatrix)
{
    const karMatrix matrix = GetScaleMatrix(2, 3, 4);
    EXPECT_TRUE(holds(kar3D_Dimension(kar3D_Dimension(1, 2, 3), &matrix), 1, 2, 3));
    EXPECT_TRUE(holds(kar3D_Dimension(kar3D_Dimension(1, 2, 3), nullptr), 1, 2, 3));
    kar3D_Dimension d(1, 2, 3);
    EXPECT_EQ(&(d *= matrix), &d);
    EXPECT_TRUE(holds(d, 1, 2, 3));
    EXPECT_TRUE(holds(d * matrix, 0, 0, 0));
}

TEST(Kar3DRange, PutsItsEndsInOrderOnlyInTheConstructor)
{
    kar3D_Range range(5, 1, 7);
    EXPECT_TRUE(holds(range, 1, 5, 7));
    EXPECT_EQ(range.lo(), 1);
    EXPECT_EQ(range.hi(), 5);
    EXPECT_EQ(static_cast<double>(range), 4);
    range.lo(9);
    EXPECT_TRUE(holds(range, 9, 5, 7)) << "a plain store";
    EXPECT_EQ(static_cast<double>(range), 0);
    EXPECT_EQ(range.isNull(), 1.0);
    EXPECT_FALSE(range.in(7));
    range.hi(10);
    EXPECT_TRUE(holds(range, 9, 10, 7));
    EXPECT_EQ(range.isNull(), 0.0);
    EXPECT_TRUE(holds(kar3D_Range(), 0, 0, 0));
}

TEST(Kar3DRange, OfOneValueIsNullAndHoldsIt)
{
    const kar3D_Range range(2, 2, 0);
    EXPECT_EQ(range.isNull(), 1.0);
    EXPECT_TRUE(range.in(2.0));
    EXPECT_EQ(static_cast<double>(range), 0.0);
    EXPECT_TRUE((std::is_same<decltype(range.isNull()), double>::value));
    EXPECT_TRUE(kar3D_Range(1, 3, 0).in(1));
    EXPECT_TRUE(kar3D_Range(1, 3, 0).in(3));
    EXPECT_FALSE(kar3D_Range(1, 3, 0).in(std::nextafter(3.0, 4.0)));
    EXPECT_FALSE(kar3D_Range(1, 3, 0).in(std::nextafter(1.0, 0.0)));
}

TEST(Kar3DRange, UnionDropsTheThirdValueAndTheUnionInPlaceKeepsIt)
{
    kar3D_Range range(1, 3, 7);
    EXPECT_TRUE(holds(range + 5.0, 1, 5, 0));
    EXPECT_TRUE(holds(range + -5.0, -5, 3, 0));
    EXPECT_TRUE(holds(range + 2.0, 1, 3, 0));
    EXPECT_TRUE(holds(range + kar3D_Range(2, 9, 8), 1, 9, 0));
    EXPECT_EQ(&(range += kar3D_Range(0, 2, 8)), &range);
    EXPECT_TRUE(holds(range, 0, 3, 7));
}

TEST(Kar3DRange, ANullRangeTakesOverValuesBelow32767AndAbove0)
{
    kar3D_Range null(1, 2, 3);
    null.makeNull();
    EXPECT_TRUE(holds(null, 32767, 0, 3));
    EXPECT_TRUE(holds(null + 5.0, 5, 5, 0));
    EXPECT_TRUE(holds(null + 40000.0, 32767, 40000, 0));
    EXPECT_TRUE(holds(null + -3.0, -3, 0, 0));
    EXPECT_TRUE(holds(null + kar3D_Range(10, 20, 0), 10, 20, 0));
    EXPECT_TRUE(holds(null + null, 0, 32767, 0)) << "the sum is put in order";
    kar3D_Range inPlace = null;
    inPlace += null;
    EXPECT_TRUE(holds(inPlace, 32767, 0, 3)) << "in place it isn't";
    inPlace += kar3D_Range(10, 20, 0);
    EXPECT_TRUE(holds(inPlace, 10, 20, 3));
}

// Plain transcriptions.

double less(double a, double b) { return b < a ? b : a; }
double more(double a, double b) { return b > a ? b : a; }

// Every operation of the triples, by number, once on the class and once on three doubles.
constexpr unsigned operations = 26;

template <class T>
void runClass(unsigned operation, T a, const T &b, double v, TestHash &hash)
{
    const auto addTriple = [&hash](const T &triple) {
        const Three p = placesOf(triple);
        hash.add(p.x);
        hash.add(p.y);
        hash.add(p.z);
    };
    switch (operation) {
    case 0:
        return addTriple(a + b);
    case 1:
        return addTriple(a - b);
    case 2:
        return addTriple(a * b);
    case 3:
        return addTriple(a / b);
    case 4:
        return addTriple(a + v);
    case 5:
        return addTriple(a - v);
    case 6:
        return addTriple(a * v);
    case 7:
        return addTriple(a / v);
    case 8:
        return addTriple(a += b);
    case 9:
        return addTriple(a -= b);
    case 10:
        return addTriple(a *= b);
    case 11:
        return addTriple(a /= b);
    case 12:
        return addTriple(a += v);
    case 13:
        return addTriple(a -= v);
    case 14:
        return addTriple(a *= v);
    case 15:
        return addTriple(a /= v);
    case 16:
        return addTriple(-a);
    case 17:
        return addTriple(a.Min(b));
    case 18:
        return addTriple(a.Max(b));
    case 19:
        return hash.add(a.DistAbs(b));
    case 20:
        return hash.add(a.DistMax(b));
    case 21:
        return hash.add(a.DistSqr(b));
    case 22:
        return hash.add(a.DistEuk(b));
    case 23:
        return hash.add(a.Cmp(b));
    case 24:
        return hash.add((a == b ? 1 : 0) + (a != b ? 2 : 0));
    default:
        return hash.add((a >= b ? 1 : 0) + (a <= b ? 2 : 0) + (a > b ? 4 : 0) + (a < b ? 8 : 0));
    }
}

void runPlain(unsigned operation, Three a, Three b, double v, TestHash &hash)
{
    const auto add = [&hash](double x, double y, double z) {
        hash.add(x);
        hash.add(y);
        hash.add(z);
    };
    const double dx = std::fabs(a.x - b.x), dy = std::fabs(a.y - b.y), dz = std::fabs(a.z - b.z);
    switch (operation) {
    case 0:
    case 8:
        return add(a.x + b.x, a.y + b.y, a.z + b.z);
    case 1:
    case 9:
        return add(a.x - b.x, a.y - b.y, a.z - b.z);
    case 2:
    case 10:
        return add(a.x * b.x, a.y * b.y, a.z * b.z);
    case 3:
    case 11:
        return add(a.x / b.x, a.y / b.y, a.z / b.z);
    case 4:
    case 12:
        return add(a.x + v, a.y + v, a.z + v);
    case 5:
    case 13:
        return add(a.x - v, a.y - v, a.z - v);
    case 6:
    case 14:
        return add(a.x * v, a.y * v, a.z * v);
    case 7:
    case 15:
        return add(a.x / v, a.y / v, a.z / v);
    case 16:
        return add(-a.x, -a.y, -a.z);
    case 17:
        return add(less(a.x, b.x), less(a.y, b.y), less(a.z, b.z));
    case 18:
        return add(more(a.x, b.x), more(a.y, b.y), more(a.z, b.z));
    case 19:
        return hash.add(dx + dy + dz);
    case 20: {
        const double m = dx > dy ? dx : dy;
        return hash.add(m > dz ? m : dz);
    }
    case 21:
        return hash.add(dx * dx + dy * dy + dz * dz);
    case 22:
        return hash.add(std::sqrt(dx * dx + dy * dy + dz * dz));
    case 23: {
        double d = a.y - b.y;
        if (d == 0)
            d = a.x - b.x;
        if (d == 0)
            d = a.z - b.z;
        return hash.add(d < 0 ? -1 : d > 0 ? 1 : 0);
    }
    case 24:
        return hash.add(dx < 1e-50 && dy < 1e-50 && dz < 1e-50 ? 1 : 2);
    default: {
        int relations = 0;
        if (a.x >= b.x && a.y >= b.y && a.z >= b.z)
            relations |= 1;
        if (a.x <= b.x && a.y <= b.y && a.z <= b.z)
            relations |= 2;
        if (a.x > b.x && a.y > b.y && a.z > b.z)
            relations |= 4;
        if (a.x < b.x && a.y < b.y && a.z < b.z)
            relations |= 8;
        return hash.add(relations);
    }
    }
}

TEST(Kar3DPoint, AMillionOperationsAreThoseOfThePlainTranscription)
{
    GoldenRun run(71, 500000, 11544480906030316423u);
    TestHash ofDimension;
    while (run.next()) {
        const Three a{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        const Three b = run.random.below(8) == 0
                            ? a
                            : Three{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        const double v = mixedDouble(run.random);
        const unsigned operation = run.random.below(operations);
        runClass(operation, kar3D_Point(a.x, a.y, a.z), kar3D_Point(b.x, b.y, b.z), v, run.code);
        runClass(operation, kar3D_Dimension(a.x, a.y, a.z), kar3D_Dimension(b.x, b.y, b.z), v, ofDimension);
        runPlain(operation, a, b, v, run.plain);
        ASSERT_TRUE(ofDimension == run.plain) << run;
    }
}

TEST(Kar3DRange, UnionsAreThoseOfThePlainTranscription)
{
    GoldenRun run(72, 200000, 16356147808116373951u);
    while (run.next()) {
        const Three a{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        const Three b{mixedDouble(run.random), mixedDouble(run.random), mixedDouble(run.random)};
        if (!(a.x == a.x && a.y == a.y && b.x == b.x && b.y == b.y))
            continue; // the ends of a range are numbers
        kar3D_Range first(a.x, a.y, a.z);
        const kar3D_Range second(b.x, b.y, b.z);
        const double lowest = std::fmin(std::fmin(a.x, a.y), std::fmin(b.x, b.y));
        const double highest = std::fmax(std::fmax(a.x, a.y), std::fmax(b.x, b.y));
        for (const kar3D_Range &sum : {first + second, first + b.x + b.y, first += second}) {
            run.code.add(sum.lo() == lowest && sum.hi() == highest ? 1 : 0);
            run.code.add(sum.in(b.x) && sum.in(b.y) ? 1 : 0);
            run.code.add(static_cast<double>(sum));
            run.code.add(sum.isNull());
            run.plain.add(1);
            run.plain.add(1);
            run.plain.add(lowest < highest ? highest - lowest : 0.0);
            run.plain.add(lowest < highest ? 0.0 : 1.0);
        }
    }
}

TEST(Kar3DPoint, AngleAndDistanceAreThoseOfTheirFormulas)
{
    TestRandom random(73);
    for (int call = 0, calls = testSteps(100000); call < calls; ++call) {
        const kar3D_Point a{mixedDouble(random), mixedDouble(random), mixedDouble(random)};
        const kar3D_Point b{mixedDouble(random), mixedDouble(random), mixedDouble(random)};
        ASSERT_TRUE(sameBits(a.AngleX(b), std::atan2(b.y() - a.y(), b.x() - a.x()))) << "seed 73, call " << call;
        ASSERT_TRUE(sameBits(a.Distance(), std::sqrt(a.x() * a.x() + a.y() * a.y() + a.z() * a.z())))
            << "seed 73, call " << call;
    }
}

} // namespace
