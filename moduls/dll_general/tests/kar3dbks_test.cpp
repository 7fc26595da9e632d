// Planes, user coordinate systems and the axes of object coordinate systems.
#include "kar3dbks.h"

#include "goldenrun.h"
#include "testnumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <type_traits>

namespace {

testing::AssertionResult holds(const kar3DVector &v, double x, double y, double z)
{
    if (v.GetX() == x && v.GetY() == y && v.GetZ() == z)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << v.GetX() << ", " << v.GetY() << ", " << v.GetZ() << ")";
}

testing::AssertionResult holds(const karPlane &plane, double a, double b, double c, double d)
{
    if (plane.GetA() == a && plane.GetB() == b && plane.GetC() == c && plane.GetD() == d)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << plane.GetA() << ", " << plane.GetB() << ", " << plane.GetC() << ", "
                                       << plane.GetD();
}

kar3DVector vector(double x, double y, double z) { return kar3DVector(x, y, z, false); }

kar3DBKS atOrigin() { return kar3DBKS(kar3D_Point(), vector(1, 0, 0), vector(0, 1, 0)); }

TEST(KarPlane, StoresFourCoefficientsAsTheyAre)
{
    EXPECT_TRUE(holds(karPlane(), 0, 0, 1, 0)) << "the xy plane";
    karPlane plane(2, 4, 6, 8);
    EXPECT_TRUE(holds(plane, 2, 4, 6, 8)) << "not normalised";
    EXPECT_EQ(plane.GetDistance(), 8) << "D, not divided";
    EXPECT_EQ(plane.GetType(), KAR_ID_PLANE);
    EXPECT_EQ(plane.GetType(), 120);
    EXPECT_EQ(&plane.Set(1, 2, 3, 4), &plane);
    EXPECT_TRUE(holds(plane, 1, 2, 3, 4));
    plane.SetA(5).SetB(6).SetC(7).SetD(8);
    EXPECT_TRUE(holds(plane, 5, 6, 7, 8));
    const karPlane copy(plane);
    EXPECT_TRUE(holds(copy, 5, 6, 7, 8));
    double fields[4];
    EXPECT_TRUE(std::is_polymorphic<karPlane>::value);
    std::memcpy(fields, reinterpret_cast<const char *>(&copy) + (sizeof copy - sizeof fields), sizeof fields);
    EXPECT_EQ(fields[0], 5);
    EXPECT_EQ(fields[1], 6);
    EXPECT_EQ(fields[2], 7);
    EXPECT_EQ(fields[3], 8);
}

TEST(Kar3DBKS, NormalisesItsAxesOnEveryPath)
{
    const kar3DBKS points(kar3D_Point(1, 1, 1), kar3D_Point(4, 5, 1), kar3D_Point(1, 1, 3));
    EXPECT_TRUE(holds(points.GetVectorAxisX(), 0.6, 0.8, 0));
    EXPECT_TRUE(holds(points.GetVectorAxisY(), 0, 0, 1));
    kar3DBKS system(kar3D_Point(1, 1, 1), vector(3, 4, 0), vector(0, 0, 2));
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 0.6, 0.8, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisY(), 0, 0, 1));
    EXPECT_EQ(&system.SetAxis(vector(0, 5, 0), vector(0, 0, -5)), &system);
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 0, 1, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisY(), 0, 0, -1));
    EXPECT_EQ(&system.SetAxisX(vector(0, 3, 4)), &system);
    EXPECT_EQ(&system.SetAxisY(vector(7, 0, 0)), &system);
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 0, 0.6, 0.8));
    EXPECT_TRUE(holds(system.GetVectorAxisY(), 1, 0, 0));
    EXPECT_EQ(system.GetType(), KAR_ID_3D_BKS);
    EXPECT_EQ(system.GetType(), 30);
    EXPECT_FALSE(std::is_default_constructible<kar3DBKS>::value);
    const kar3DBKS copy(system);
    EXPECT_TRUE(holds(copy.GetVectorAxisX(), 0, 0.6, 0.8));
}

TEST(Kar3DBKS, AnAxisTooShortStaysAsItIs)
{
    kar3DBKS system(kar3D_Point(), vector(0, 0, 0), vector(0, 1e-60, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 0, 0, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisY(), 0, 1e-60, 0));
    system.SetAxisX(vector(1e-40, 0, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 1, 0, 0));
}

TEST(Kar3DBKS, TheReferenceToAnAxisAllowsToWritePastNormalisation)
{
    kar3DBKS system = atOrigin();
    system.GetVectorAxisX() = vector(3, 0, 0);
    system.GetVectorAxisY().SetY(5);
    const kar3DBKS &constant = system;
    EXPECT_TRUE(holds(constant.GetVectorAxisX(), 3, 0, 0));
    EXPECT_TRUE(holds(constant.GetVectorAxisY(), 0, 5, 0));
    EXPECT_TRUE((std::is_same<decltype(system.GetVectorAxisX()), kar3DVector &>::value));
    EXPECT_TRUE((std::is_same<decltype(constant.GetVectorAxisX()), kar3DVector>::value));
}

TEST(Kar3DBKS, ItsOwnAxesCountWithTheirValueOnEntry)
{
    kar3DBKS system = atOrigin();
    system.SetAxis(system.GetVectorAxisY(), system.GetVectorAxisX());
    EXPECT_TRUE(holds(system.GetVectorAxisX(), 0, 1, 0));
    EXPECT_TRUE(holds(system.GetVectorAxisY(), 1, 0, 0));
}

TEST(Kar3DBKS, HoldsOriginAndAxesInOrder)
{
    const kar3DBKS system(kar3D_Point(7, 8, 9), vector(1, 0, 0), vector(0, 1, 0));
    double origin[3];
    // The origin stands in front of the two axes; a pointer in front of a double is padded on some targets.
    const std::size_t at = sizeof system - 2 * sizeof(kar3DVector) - sizeof origin;
    std::memcpy(origin, reinterpret_cast<const char *>(&system) + at, sizeof origin);
    EXPECT_EQ(origin[0], 7);
    EXPECT_EQ(origin[1], 8);
    EXPECT_EQ(origin[2], 9);
    kar3DBKS moved = system;
    EXPECT_EQ(reinterpret_cast<const char *>(&moved.GetVectorAxisX()) - reinterpret_cast<const char *>(&moved),
              static_cast<std::ptrdiff_t>(at + sizeof origin));
    EXPECT_EQ(&moved.GetVectorAxisX() + 1, &moved.GetVectorAxisY());
    EXPECT_EQ(&moved.SetOrigin(kar3D_Point(1, 2, 3)), &moved);
    std::memcpy(origin, reinterpret_cast<const char *>(&moved) + at, sizeof origin);
    EXPECT_EQ(origin[2], 3);
}

TEST(Kar3DBKS, ZAxisIsTheNormalisedOuterProduct)
{
    EXPECT_TRUE(holds(atOrigin().GetVectorAxisZ(), 0, 0, 1));
    EXPECT_TRUE(holds(kar3DBKS(kar3D_Point(), vector(1, 0, 0), vector(2, 0, 0)).GetVectorAxisZ(), 0, 0, 0));
    EXPECT_TRUE(holds(kar3DBKS(kar3D_Point(), vector(1, 0, 0), vector(5, 5, 0)).GetVectorAxisZ(), 0, 0, 1))
        << "the axes are not orthogonal";
}

TEST(Kar3DBKS, PlaneTakesTheAxesAsPoints)
{
    EXPECT_TRUE(holds(kar3DBKS(kar3D_Point(0, 0, 5), vector(1, 0, 0), vector(0, 1, 0)).GetPlaneXY(), 5, 5, 1, -5));
    EXPECT_TRUE(holds(atOrigin().GetPlaneXY(), 0, 0, 1, 0)) << "a default plane";
}

TEST(Kar3DBKS, PlaneIsComputedAsStated)
{
    GoldenRun run(741, 50000, 15653743587845899789u);
    while (run.next()) {
        double o[3], x[3], y[3];
        for (double *point : {o, x, y})
            for (int i = 0; i < 3; ++i)
                point[i] = mixedDouble(run.random);
        kar3DBKS system = atOrigin();
        system.SetOrigin(kar3D_Point(o[0], o[1], o[2]));
        system.GetVectorAxisX() = vector(x[0], x[1], x[2]);
        system.GetVectorAxisY() = vector(y[0], y[1], y[2]);
        const karPlane plane = system.GetPlaneXY();
        run.code.add(plane.GetA());
        run.code.add(plane.GetB());
        run.code.add(plane.GetC());
        run.code.add(plane.GetD());
        run.plain.add(o[1] * (x[2] - y[2]) + x[1] * (y[2] - o[2]) + y[1] * (o[2] - x[2]));
        run.plain.add(o[2] * (x[0] - y[0]) + x[2] * (y[0] - o[0]) + y[2] * (o[0] - x[0]));
        run.plain.add(o[0] * (x[1] - y[1]) + x[0] * (y[1] - o[1]) + y[0] * (o[1] - x[1]));
        run.plain.add(-(o[0] * (x[1] * y[2] - y[1] * x[2]) + x[0] * (y[1] * o[2] - o[1] * y[2]) +
                        y[0] * (o[1] * x[2] - x[1] * o[2])));
    }
}

TEST(Kar3DBKS, MappingFromThePlaneAddsAZOfZeroAndNothingElse)
{
    const kar3DBKS system(kar3D_Point(10, 20, 30), vector(0, 0, 1), vector(0, 1, 0));
    const kar3D_Point p = system.Get3DPoint(karD_Point(3, 4));
    EXPECT_EQ(p.x(), 3);
    EXPECT_EQ(p.y(), 4);
    EXPECT_EQ(p.z(), 0);
    const kar3D_Dimension d = system.Get3DDimension(karD_Dimension(3, 4));
    EXPECT_EQ(d.width(), 3);
    EXPECT_EQ(d.height(), 4);
    EXPECT_EQ(d.deep(), 0);
    EXPECT_TRUE(holds(system.Get3DVector(kar2DVector(3, 4, false)), 0.6, 0.8, 0));
    EXPECT_TRUE(holds(system.Get3DVector(kar2DVector()), 0, 0, 0));
}

TEST(Kar3DBKS, MirrorsAPointAtALineOfThePlane)
{
    const kar3DBKS system(kar3D_Point(10, 20, 30), vector(0, 0, 1), vector(0, 1, 0));
    const auto mirrored = [&system](karD_Point p, karD_Point a, karD_Point b) {
        return system.Get3DMirrorPoint(p, a, b);
    };
    const kar3D_Point horizontal = mirrored({3, 4}, {0, 1}, {5, 1});
    EXPECT_EQ(horizontal.x(), 3);
    EXPECT_EQ(horizontal.y(), -2);
    EXPECT_EQ(horizontal.z(), 0);
    const kar3D_Point vertical = mirrored({3, 4}, {1, 0}, {1, 5});
    EXPECT_EQ(vertical.x(), -1);
    EXPECT_EQ(vertical.y(), 4);
    const kar3D_Point diagonal = mirrored({3, 1}, {0, 0}, {1, 1});
    EXPECT_NEAR(diagonal.x(), 1, 1e-15);
    EXPECT_NEAR(diagonal.y(), 3, 1e-15);
}

// Object coordinate systems

TEST(ObjectAxes, FollowTheArbitraryAxisRule)
{
    EXPECT_TRUE(holds(GetOCSVectorAxisX(vector(0, 0, 1)), 1, 0, 0));
    EXPECT_TRUE(holds(GetOCSVectorAxisX(vector(0, 0, -1)), -1, 0, 0));
    EXPECT_TRUE(holds(GetOCSVectorAxisX(vector(1, 0, 0)), 0, 1, 0));
    EXPECT_TRUE(holds(GetOCSVectorAxisX(vector(0, 1, 0)), -1, 0, 0));
    EXPECT_TRUE(holds(GetOCSVectorAxisY(vector(0, 0, 1), vector(1, 0, 0)), 0, 1, 0));
    EXPECT_TRUE(holds(GetOCSVectorAxisY(vector(1, 0, 0), vector(0, 0, 1)), 0, -1, 0)) << "in that order";
    EXPECT_TRUE(holds(GetOCSVectorAxisX(vector(0, 0, 0)), 0, 0, 0));
}

TEST(ObjectAxes, SwitchExactlyAtOne64th)
{
    const double limit = 0.015625, below = std::nextafter(limit, 0.0);
    // (0, 1, 0) by (x, y, z) is (z, 0, -x): no y. (0, 0, 1) by (x, y, z) is (-y, x, 0): no z.
    const auto isFromY = [](const kar3DVector &axis) { return axis.GetY() == 0 && axis.GetZ() != 0; };
    const auto isFromZ = [](const kar3DVector &axis) { return axis.GetZ() == 0; };
    for (const double sign : {1.0, -1.0}) {
        EXPECT_TRUE(isFromY(GetOCSVectorAxisX(vector(sign * below, 0, 1))));
        EXPECT_TRUE(isFromY(GetOCSVectorAxisX(vector(sign * below, sign * below, -1))));
        EXPECT_TRUE(isFromZ(GetOCSVectorAxisX(vector(sign * limit, 0, 1))));
        EXPECT_TRUE(isFromZ(GetOCSVectorAxisX(vector(sign * limit, below, 1))));
        EXPECT_TRUE(isFromZ(GetOCSVectorAxisX(vector(below, sign * limit, 1))));
    }
    EXPECT_TRUE(isFromY(GetOCSVectorAxisX(vector(0.01, 0.01, 0.01)))) << "compared as it is, not normalised first";
    EXPECT_TRUE(isFromZ(GetOCSVectorAxisX(vector(1, 1, 1000)))) << "nearly along z, but not small";
}

TEST(ObjectAxes, AreOrthogonalAndRightHandedForTenThousandNormals)
{
    GoldenRun run(742, 10000, 2517933062053221709u);
    while (run.next()) {
        // A third of the normals stands about the switch of the rule.
        const double spread = run.step % 3 == 0 ? 0.03 : 1.0;
        const double nx = run.random.between(-spread, spread), ny = run.random.between(-spread, spread);
        const kar3DVector n(nx, ny, run.random.between(-1.0, 1.0), run.step % 2 == 0);
        const kar3DVector x = GetOCSVectorAxisX(n), y = GetOCSVectorAxisY(n, x);
        const double length = n.GetDistance();
        ASSERT_NEAR(x.GetDistance(), 1, 4e-16) << run;
        ASSERT_NEAR(y.GetDistance(), 1, 4e-16) << run;
        ASSERT_NEAR(x * n, 0, 2e-16 * length) << run;
        ASSERT_NEAR(y * n, 0, 4e-16 * length) << run;
        ASSERT_NEAR(x * y, 0, 4e-16) << run;
        const kar3DVector z = x.OuterProduct(y);
        ASSERT_NEAR(z.GetX(), n.GetX() / length, 1e-15) << run;
        ASSERT_NEAR(z.GetY(), n.GetY() / length, 1e-15) << run;
        ASSERT_NEAR(z.GetZ(), n.GetZ() / length, 1e-15) << run;

        const bool nearZ = std::fabs(n.GetX()) < 1.0 / 64 && std::fabs(n.GetY()) < 1.0 / 64;
        const double w[3] = {0, nearZ ? 1.0 : 0.0, nearZ ? 0.0 : 1.0};
        const double cross[3] = {w[1] * n.GetZ() - w[2] * n.GetY(), w[2] * n.GetX() - w[0] * n.GetZ(),
                                 w[0] * n.GetY() - w[1] * n.GetX()};
        const double unit = std::sqrt(cross[0] * cross[0] + cross[1] * cross[1] + cross[2] * cross[2]);
        run.code.add(x.GetX());
        run.code.add(x.GetY());
        run.code.add(x.GetZ());
        for (const double place : cross)
            run.plain.add(place / unit);
    }
}

} // namespace
