// Integer arithmetic that wraps, and the way from a real to an int.
#include "karnumeric.h"
#include "testrandom.h"
#include "teststeps.h"

#include <climits>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

static_assert(kar::lengthTolerance == 1e-50 && kar::curveTolerance == 1e-10, "the two tolerances");
static_assert(kar::wrapAdd(INT_MAX, 1) == INT_MIN && kar::toInt(-2.9) == -2, "usable in constant expressions");

// Constant expressions must be defined, whatever the machine would give.
static_assert(kar::toInt(-2147483649.0) == INT_MIN && kar::toInt(-3e9) == INT_MIN &&
                  kar::toInt(2147483648.0) == INT_MAX,
              "outside of the range");
static_assert(kar::toSigned(0x7fffffffu) == INT_MAX && kar::toSigned(0x80000000u) == INT_MIN &&
                  kar::toSigned(0xffffffffu) == -1,
              "both ends of the range");

TEST(KarNumeric, WrapsSumDifferenceAndProduct)
{
    EXPECT_EQ(kar::wrapAdd(INT_MAX, 1), INT_MIN);
    EXPECT_EQ(kar::wrapAdd(INT_MIN, INT_MIN), 0);
    EXPECT_EQ(kar::wrapSub(INT_MIN, 1), INT_MAX);
    EXPECT_EQ(kar::wrapSub(0, INT_MIN), INT_MIN);
    EXPECT_EQ(kar::wrapMul(65536, 65536), 0);
    EXPECT_EQ(kar::wrapMul(INT_MIN, -1), INT_MIN);
    EXPECT_EQ(kar::wrapMul(INT_MAX, INT_MAX), 1);
}

TEST(KarNumeric, LeavesIntMinWhereItsOppositeHasNoRoom)
{
    EXPECT_EQ(kar::wrapNeg(INT_MIN), INT_MIN);
    EXPECT_EQ(kar::wrapAbs(INT_MIN), INT_MIN);
    EXPECT_EQ(kar::wrapAbs(-INT_MAX), INT_MAX);
    EXPECT_EQ(kar::wrapAbs(7), 7);
    EXPECT_EQ(kar::wrapDiv(INT_MIN, -1), INT_MIN);
    EXPECT_EQ(kar::wrapRem(INT_MIN, -1), 0);
    volatile int minusOne = -1; // that the compiler doesn't know
    EXPECT_EQ(kar::wrapDiv(INT_MIN, minusOne), INT_MIN);
    EXPECT_EQ(kar::wrapRem(INT_MIN, minusOne), 0);
}

TEST(KarNumeric, TruncatesAQuotientTowardsZero)
{
    EXPECT_EQ(kar::wrapDiv(7, 2), 3);
    EXPECT_EQ(kar::wrapDiv(-7, 2), -3);
    EXPECT_EQ(kar::wrapDiv(7, -1), -7);
    EXPECT_EQ(kar::wrapRem(7, 2), 1);
    EXPECT_EQ(kar::wrapRem(-7, 2), -1);
    EXPECT_EQ(kar::wrapRem(7, -2), 1);
    EXPECT_EQ(kar::wrapRem(-7, -1), 0);
    for (const std::int64_t b : {-5, -4, -3, -2, -1, 1, 2, 3, 4, 5})
        for (const std::int64_t a : {INT_MIN + 1, -30, -1, 0, 1, 31, INT_MAX}) {
            EXPECT_EQ(kar::wrapDiv(static_cast<int>(a), static_cast<int>(b)), a / b) << a << " by " << b;
            EXPECT_EQ(kar::wrapRem(static_cast<int>(a), static_cast<int>(b)), a % b) << a << " by " << b;
        }
}

TEST(KarNumeric, AgreesWith64BitArithmetic)
{
    const std::uint64_t seed = 651;
    TestRandom random(seed);
    const auto wrapped = [](std::int64_t v) {
        v = (v % 4294967296 + 4294967296) % 4294967296;
        return static_cast<int>(v >= 2147483648 ? v - 4294967296 : v);
    };
    for (int step = 0, steps = testSteps(100000); step < steps; ++step) {
        const int a = random.anyInt();
        const int b = random.anyInt();
        ASSERT_EQ(kar::wrapAdd(a, b), wrapped(std::int64_t{a} + b)) << "seed " << seed << ", step " << step;
        ASSERT_EQ(kar::wrapSub(a, b), wrapped(std::int64_t{a} - b)) << "seed " << seed << ", step " << step;
        ASSERT_EQ(kar::wrapMul(a, b), wrapped(std::int64_t{a} * b)) << "seed " << seed << ", step " << step;
        ASSERT_EQ(kar::wrapNeg(a), wrapped(-std::int64_t{a})) << "seed " << seed << ", step " << step;
    }
}

TEST(KarNumeric, TruncatesARealAndSaturates)
{
    struct Row {
        double value;
        int expected;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.999, 0},
        {-0.999, 0},
        {1.5, 1},
        {-1.5, -1},
        {2147483646.5, INT_MAX - 1},
        {2147483647.0, INT_MAX},
        {2147483647.5, INT_MAX},
        {2147483648.0, INT_MAX},
        {-2147483647.5, -INT_MAX},
        {-2147483648.0, INT_MIN},
        {-2147483648.5, INT_MIN},
        {-2147483649.0, INT_MIN},
        {1e300, INT_MAX},
        {-1e300, INT_MIN},
        {infinity, INT_MAX},
        {-infinity, INT_MIN},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {-std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const Row &row : rows)
        EXPECT_EQ(kar::toInt(row.value), row.expected) << row.value;
}

TEST(KarNumeric, RoundsHalfAwayFromZeroAndSaturates)
{
    struct Row {
        double value;
        int expected;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.25, 0},
        {-0.25, 0},
        {0.5, 1},
        {-0.5, -1},
        {0.49999999999999994, 1}, // the sum with 0.5 is rounded to 1
        {1.25, 1},
        {-1.25, -1},
        {2.5, 3},
        {-2.5, -3},
        {2147483646.5, INT_MAX},
        {2147483647.5, INT_MAX},
        {-2147483647.5, INT_MIN},
        {-2147483648.5, INT_MIN},
        {1e300, INT_MAX},
        {-1e300, INT_MIN},
        {infinity, INT_MAX},
        {-infinity, INT_MIN},
        {std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const Row &row : rows)
        EXPECT_EQ(kar::roundAway(row.value), row.expected) << row.value;
}
