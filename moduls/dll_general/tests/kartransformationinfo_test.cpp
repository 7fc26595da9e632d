// The parameters of a transformation: ranges of the angles, combination, the matrices made of them.
#include "kartransformationinfo.h"

#include "goldenrun.h"
#include "testnumbers.h"
#include "testrandom.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

constexpr double fullTurn = 6.283185307179586;
constexpr double infinity = std::numeric_limits<double>::infinity();

using Values = std::array<double, 15>; // in field order

Values valuesOf(const karTransformationInfo &info)
{
    return {info.GetScaleX(),  info.GetScaleY(),     info.GetScaleZ(),     info.GetRotateX(),    info.GetRotateY(),
            info.GetRotateZ(), info.GetTranslateX(), info.GetTranslateY(), info.GetTranslateZ(), info.GetCutXY(),
            info.GetCutXZ(),   info.GetCutYX(),      info.GetCutYZ(),      info.GetCutZX(),      info.GetCutZY()};
}

karTransformationInfo infoOf(const Values &v)
{
    return karTransformationInfo(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11], v[12], v[13],
                                 v[14]);
}

testing::AssertionResult same(const karMatrix &a, const karMatrix &b)
{
    if (a.GetRows() != 4 || a.GetColumns() != 4 || b.GetRows() != 4 || b.GetColumns() != 4)
        return testing::AssertionFailure() << "not 4 by 4";
    for (int i = 0; i < 16; ++i)
        if (!sameBits(a.GetData()[i], b.GetData()[i]))
            return testing::AssertionFailure() << "element " << i << ": " << a.GetData()[i] << ", " << b.GetData()[i];
    return testing::AssertionSuccess();
}

TEST(KarTransformationInfo, StartsWithScaleOneAndEverythingElseZero)
{
    EXPECT_EQ(valuesOf(karTransformationInfo()), (Values{1, 1, 1}));
}

TEST(KarTransformationInfo, HoldsItsFifteenDoublesInOrderBehindItsVirtualOperations)
{
    const Values given{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const karTransformationInfo info = infoOf(given);
    EXPECT_EQ(valuesOf(info), given);
    Values fields;
    std::memcpy(fields.data(), reinterpret_cast<const char *>(&info) + (sizeof info - sizeof fields), sizeof fields);
    EXPECT_EQ(fields, given);
    EXPECT_TRUE(std::is_polymorphic<karTransformationInfo>::value);
    karTransformationInfo copy;
    copy = info;
    EXPECT_EQ(valuesOf(copy), given);
}

TEST(KarTransformationInfo, CanBeCastToItsOwnIdOnly)
{
    const karTransformationInfo info;
    EXPECT_EQ(info.GetType(), KAR_ID_TRANSFORMATION_INFO);
    EXPECT_EQ(info.GetType(), 123);
    for (int id = -1; id < 300; ++id)
        EXPECT_EQ(info.CanCast(static_cast<ObjektIdies>(id)), id == 123) << id;
}

TEST(KarTransformationInfo, BringsSingleAnglesIntoOneTurn)
{
    karTransformationInfo info;
    EXPECT_EQ(&info.SetRotateX(-1.0), &info);
    EXPECT_EQ(info.GetRotateX(), -1.0 + fullTurn);
    EXPECT_EQ(info.SetRotateX(7.0).GetRotateX(), 7.0 - fullTurn);
    EXPECT_EQ(info.SetRotateX(fullTurn).GetRotateX(), fullTurn) << "not wrapped to 0";
    EXPECT_EQ(info.SetRotateX(std::nextafter(fullTurn, 7.0)).GetRotateX(), std::nextafter(fullTurn, 7.0) - fullTurn);
    EXPECT_EQ(info.SetRotateX(0.0).GetRotateX(), 0.0);
    EXPECT_EQ(info.SetRotateX(-1e-20).GetRotateX(), fullTurn) << "rounded up to the end of the range";
    EXPECT_EQ(info.SetRotateY(-1.0).GetRotateY(), -1.0 + fullTurn);
    EXPECT_EQ(info.SetRotateZ(-7.0).GetRotateZ(), (-7.0 + fullTurn) + fullTurn);
    EXPECT_EQ(info.SetRotateZ(20.0).GetRotateZ(), ((20.0 - fullTurn) - fullTurn) - fullTurn);
    const karTransformationInfo made = infoOf({1, 1, 1, -1, 7, 20});
    EXPECT_EQ(made.GetRotateX(), -1.0 + fullTurn);
    EXPECT_EQ(made.GetRotateY(), 7.0 - fullTurn);
    EXPECT_EQ(made.GetRotateZ(), ((20.0 - fullTurn) - fullTurn) - fullTurn);
}

TEST(KarTransformationInfo, EndsWhereATurnNoLongerChangesTheAngle)
{
    karTransformationInfo info;
    EXPECT_EQ(info.SetRotateX(1e18).GetRotateX(), 1e18);
    EXPECT_EQ(info.SetRotateX(-1e18).GetRotateX(), -1e18);
    EXPECT_EQ(info.SetRotateX(infinity).GetRotateX(), infinity);
    EXPECT_EQ(info.SetRotateX(-infinity).GetRotateX(), -infinity);
    EXPECT_TRUE(std::isnan(info.SetRotateX(std::numeric_limits<double>::quiet_NaN()).GetRotateX()));
}

struct OpenInfo : karTransformationInfo {
    using karTransformationInfo::_CheckAngleRange;
};

TEST(KarTransformationInfo, AngleRangeIsReachedTurnByTurn)
{
    GoldenRun run(751, 20000, 5842375786491329125u);
    const OpenInfo info;
    while (run.next()) {
        const double angle = run.random.between(-300.0, 300.0);
        double a = angle;
        while (a < 0)
            a += fullTurn;
        while (a > fullTurn)
            a -= fullTurn;
        run.code.add(info._CheckAngleRange(angle));
        run.plain.add(a);
        ASSERT_TRUE(a >= 0 && a <= fullTurn);
    }
}

TEST(KarTransformationInfo, LargeAnglesKeepTheRoundingOfEachTurn)
{
    TestRandom random(752);
    const OpenInfo info;
    for (int call = 0; call < 60; ++call) {
        const double angle = random.between(-1.0, 1.0) * std::pow(10.0, random.between(2.0, 7.0));
        double a = angle;
        while (a < 0)
            a += fullTurn;
        while (a > fullTurn)
            a -= fullTurn;
        ASSERT_EQ(info._CheckAngleRange(angle), a) << "seed 752, call " << call;
    }
    for (const double angle : {1e12, -1e12, 1e15, -1e15, 2e16, -2e16}) { // would take hours turn by turn
        const double a = info._CheckAngleRange(angle);
        EXPECT_TRUE(a >= 0 && a <= fullTurn) << angle;
    }
    EXPECT_EQ(info._CheckAngleRange(1e17), 1e17); // the unit is 16: a turn is less than half of it
}

TEST(KarTransformationInfo, SettersStoreTheirPlace)
{
    karTransformationInfo info;
    info.SetScaleX(2).SetScaleY(3).SetScaleZ(4).SetRotateX(0.1).SetRotateY(0.2).SetRotateZ(0.3);
    info.SetTranslateX(5).SetTranslateY(6).SetTranslateZ(7);
    info.SetCutXY(8).SetCutXZ(9).SetCutYX(10).SetCutYZ(11).SetCutZX(12).SetCutZY(13);
    EXPECT_EQ(valuesOf(info), (Values{2, 3, 4, 0.1, 0.2, 0.3, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
    info.SetScale(20, 30, 40).SetTranslate(50, 60, 70);
    EXPECT_EQ(valuesOf(info), (Values{20, 30, 40, 0.1, 0.2, 0.3, 50, 60, 70, 8, 9, 10, 11, 12, 13}));
    info.SetRotate(-1.0, 0.0, 0.0);
    EXPECT_EQ(info.GetRotateX(), -1.0) << "three angles at once pass no check";
    info.SetRotate(1, 100, -100);
    EXPECT_EQ(info.GetRotateY(), 100);
    EXPECT_EQ(info.GetRotateZ(), -100);
}

TEST(KarTransformationInfo, CombinesPlaceByPlaceWithoutTheCuts)
{
    karTransformationInfo info = infoOf({2, 3, 4, 1, 2, 3, 10, 20, 30, 1, 2, 3, 4, 5, 6});
    const karTransformationInfo other = infoOf({5, -6, 0.5, 1, 5, 6, 1, 2, 3, 10, 20, 30, 40, 50, 60});
    EXPECT_EQ(&(info += other), &info);
    EXPECT_EQ(valuesOf(info), (Values{10, -18, 2, 2, 7.0 - fullTurn, 9.0 - fullTurn, 11, 22, 33, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(&(info -= other), &info);
    // Exact: the angles between are multiples of the turn's last bit.
    EXPECT_EQ(valuesOf(info), (Values{2, 3, 4, 1, 2, 3, 10, 20, 30, 1, 2, 3, 4, 5, 6}));
}

TEST(KarTransformationInfo, DividesOnlyByAScaleThatIsNotNearZero)
{
    karTransformationInfo info;
    karTransformationInfo zero;
    zero.SetScale(0, 2, 4);
    info.SetScale(5, 8, 8);
    info += zero;
    EXPECT_EQ(info.GetScaleX(), 0.0);
    info -= zero;
    EXPECT_EQ(info.GetScaleX(), 0.0);
    EXPECT_EQ(info.GetScaleY(), 8);
    EXPECT_EQ(info.GetScaleZ(), 8);

    info.SetScale(6, 6, 6);
    zero.SetScale(1e-50, std::nextafter(1e-50, 0.0), -1e-50);
    info -= zero;
    EXPECT_EQ(info.GetScaleX(), 6 / 1e-50);
    EXPECT_EQ(info.GetScaleY(), 6);
    EXPECT_EQ(info.GetScaleZ(), 6 / -1e-50);
    info.SetScale(6, 6, 6);
    zero.SetScale(std::numeric_limits<double>::quiet_NaN(), 1, 1);
    info -= zero;
    EXPECT_EQ(info.GetScaleX(), 6) << "what is not a number is not at least 1e-50";
}

TEST(KarTransformationInfo, CombinesWithItself)
{
    karTransformationInfo info = infoOf({2, 3, 4, 1, 2, 4, 10, 20, 30, 1, 2, 3, 4, 5, 6});
    const karTransformationInfo &same = info;
    info += same;
    EXPECT_EQ(valuesOf(info), (Values{4, 9, 16, 2, 4, 8.0 - fullTurn, 20, 40, 60, 1, 2, 3, 4, 5, 6}));
    info -= same;
    EXPECT_EQ(valuesOf(info), (Values{1, 1, 1, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6}));
}

TEST(KarTransformationInfo, CutsTakeNoPartInTheTransformation)
{
    karTransformationInfo info;
    info.SetCutXY(0.5);
    EXPECT_TRUE(same(info.GetTransformationMatrix(), karMatrix(4)));
    EXPECT_EQ(*info.GetCutMatrix().GetValue(1, 2), 0.5);
}

TEST(KarTransformationInfo, GivesTheMatricesOfTheFactories)
{
    const karTransformationInfo info = infoOf({2, 3, 4, 0.1, 0.2, 0.3, 5, 6, 7, 8, 9, 10, 11, 12, 13});
    EXPECT_TRUE(same(info.GetTransformationMatrix(), GetTransformationMatrix(5, 6, 7, 0.1, 0.2, 0.3, 2, 3, 4)));
    EXPECT_TRUE(same(info.GetTranslateMatrix(), GetTranslateMatrix(5, 6, 7)));
    EXPECT_TRUE(same(info.GetTranslateXMatrix(), GetTranslateXMatrix(5)));
    EXPECT_TRUE(same(info.GetTranslateYMatrix(), GetTranslateYMatrix(6)));
    EXPECT_TRUE(same(info.GetTranslateZMatrix(), GetTranslateZMatrix(7)));
    EXPECT_TRUE(same(info.GetRotateMatrix(), GetRotateMatrix(0.1, 0.2, 0.3)));
    EXPECT_TRUE(same(info.GetRotateXMatrix(), GetRotateXMatrix(0.1)));
    EXPECT_TRUE(same(info.GetRotateYMatrix(), GetRotateYMatrix(0.2)));
    EXPECT_TRUE(same(info.GetRotateZMatrix(), GetRotateZMatrix(0.3)));
    EXPECT_TRUE(same(info.GetScaleMatrix(), GetScaleMatrix(2, 3, 4)));
    EXPECT_TRUE(same(info.GetScaleXMatrix(), GetScaleXMatrix(2)));
    EXPECT_TRUE(same(info.GetScaleYMatrix(), GetScaleYMatrix(3)));
    EXPECT_TRUE(same(info.GetScaleZMatrix(), GetScaleZMatrix(4)));
    EXPECT_TRUE(same(info.GetCutMatrix(), GetCutMatrix(8, 9, 10, 11, 12, 13)));
    EXPECT_TRUE(same(info.GetCutXMatrix(), GetCutXMatrix(8, 9)));
    EXPECT_TRUE(same(info.GetCutYMatrix(), GetCutYMatrix(10, 11)));
    EXPECT_TRUE(same(info.GetCutZMatrix(), GetCutZMatrix(12, 13)));
}

} // namespace
