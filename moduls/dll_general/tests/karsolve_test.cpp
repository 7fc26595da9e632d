#include "karsolve.h"

#include "goldenrun.h"
#include "testexact.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double epsilon = std::numeric_limits<double>::epsilon();
/// Left in outputs that must not be written.
constexpr double untouched = 12345.0;

// Determinants and linear systems

TEST(Solve2x2Matrix, SolvesByCramersRule)
{
    double x = 0, y = 0;
    EXPECT_TRUE(Solve_2x2Matrix(2, 1, 1, 3, 5, 10, x, y)); // 2x + y = 5, x + 3y = 10
    EXPECT_EQ(1.0, x);
    EXPECT_EQ(3.0, y);
}

TEST(Solve2x2Matrix, IsTrueForASingularSystem)
{
    double x = 0, y = 0;
    EXPECT_TRUE(Solve_2x2Matrix(1, 2, 2, 4, 1, 1, x, y));
    EXPECT_EQ(inf, x); // (4 - 2) / 0
    EXPECT_EQ(-inf, y);
    EXPECT_TRUE(Solve_2x2Matrix(0, 0, 0, 0, 0, 0, x, y));
    EXPECT_TRUE(std::isnan(x));
    EXPECT_TRUE(std::isnan(y));
}

TEST(Solve2x2Matrix, ReadsItsInputsBeforeItWritesAnOutput)
{
    double a = 2, f = 10;
    Solve_2x2Matrix(a, 1, 1, 3, 5, f, a, f);
    EXPECT_EQ(1.0, a);
    EXPECT_EQ(3.0, f);
}

/// |computed - exact| <= ulps / 2 of the quotient exact = numerator / denominator.
bool isRoundedQuotient(double computed, const Exact &numerator, const Exact &denominator)
{
    const double ulp = std::nextafter(std::fabs(computed), inf) - std::fabs(computed);
    return (Exact(2.0) * (Exact(computed) * denominator - numerator)).abs() <= Exact(ulp) * denominator.abs();
}

TEST(Solve2x2Matrix, IsTheRoundedQuotientForIntegerSystems)
{
    TestRandom random(1);
    for (int step = 0, steps = testSteps(5000); step < steps; ++step) {
        double m[6];
        for (double &element : m)
            element = random.between(-1000000, 1000000); // products and their difference are exact
        double x = 0, y = 0;
        ASSERT_TRUE(Solve_2x2Matrix(m[0], m[1], m[2], m[3], m[4], m[5], x, y));
        const Exact D = Exact(m[0]) * m[3] - Exact(m[1]) * m[2];
        if (D.isZero())
            continue;
        ASSERT_TRUE(isRoundedQuotient(x, Exact(m[3]) * m[4] - Exact(m[1]) * m[5], D)) << "seed 1, step " << step;
        ASSERT_TRUE(isRoundedQuotient(y, Exact(m[0]) * m[5] - Exact(m[2]) * m[4], D)) << "seed 1, step " << step;
    }
}

TEST(CalculateDeterminante, GivesTheStatedProducts)
{
    EXPECT_EQ(-2.0, Calculate_Determinante2(1, 2, 3, 4));
    EXPECT_EQ(1.0, Calculate_Determinante3(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_EQ(-3.0, Calculate_Determinante3(1, 2, 3, 4, 5, 6, 7, 8, 10));
    EXPECT_EQ(-306.0, Calculate_Determinante3(6, 1, 1, 4, -2, 5, 2, 8, 7));
}

TEST(CalculateDeterminante, IsExactForSmallIntegersAndCloseForReals)
{
    TestRandom random(2);
    for (int step = 0, steps = testSteps(5000); step < steps; ++step) {
        const bool integers = step % 2 == 0;
        double m[9];
        for (double &element : m)
            element = integers ? random.between(-10000, 10000) : random.between(-100.0, 100.0);
        const auto &[a, b, c, d, e, f, g, h, i] = m;
        const Exact exact = Exact(a) * e * i + Exact(c) * d * h + Exact(b) * f * g - Exact(a) * f * h -
                            Exact(b) * d * i - Exact(c) * e * g;
        const Exact exact2 = Exact(a) * d - Exact(b) * c;
        const double det3 = Calculate_Determinante3(a, b, c, d, e, f, g, h, i);
        const double det2 = Calculate_Determinante2(a, b, c, d);
        const double size3 = std::fabs(a * e * i) + std::fabs(c * d * h) + std::fabs(b * f * g) + std::fabs(a * f * h) +
                             std::fabs(b * d * i) + std::fabs(c * e * g);
        const double size2 = std::fabs(a * d) + std::fabs(b * c);
        ASSERT_TRUE((exact - det3).abs() <= Exact(integers ? 0 : 5 * epsilon * size3)) << "seed 2, step " << step;
        ASSERT_TRUE((exact2 - det2).abs() <= Exact(integers ? 0 : epsilon * size2)) << "seed 2, step " << step;
    }
}

TEST(Gausstridiag, SolvesAndReplacesTheRightSide)
{
    double A[2][2] = {{2, 1}, {1, 3}};
    double b[2] = {5, 10};
    EXPECT_EQ(1, gausstridiag(A, b, 2));
    EXPECT_EQ(1.0, b[0]);
    EXPECT_EQ(3.0, b[1]);
    EXPECT_EQ(2.0, A[0][0]); // the matrix is only read
    EXPECT_EQ(1.0, A[0][1]);
    EXPECT_EQ(1.0, A[1][0]);
    EXPECT_EQ(3.0, A[1][1]);
}

TEST(Gausstridiag, SwapsRowsWhenTheFirstEntryIsZero)
{
    double A[2][2] = {{0, 2}, {4, 1}};
    double b[2] = {6, 11};
    EXPECT_EQ(1, gausstridiag(A, b, 2));
    EXPECT_EQ(2.0, b[0]);
    EXPECT_EQ(3.0, b[1]);
}

TEST(Gausstridiag, ReplacesThePivotOnlyByAStrictlyLargerOne)
{
    double A[2][2] = {{3, 1}, {-3, 0.1}};
    double b[2] = {1, 0.3};
    EXPECT_EQ(1, gausstridiag(A, b, 2));
    const double x2 = (0.3 + 1.0) / (0.1 + 1.0);
    EXPECT_EQ(x2, b[1]);
    EXPECT_EQ((1 - x2) / 3, b[0]);               // from the first row
    double swapped[2][2] = {{1e-20, 1}, {1, 1}}; // without the swap x1 would come out as 0
    double right[2] = {1, 2};
    EXPECT_EQ(1, gausstridiag(swapped, right, 2));
    EXPECT_EQ(1.0, right[0]);
    EXPECT_EQ(1.0, right[1]);
}

TEST(Gausstridiag, GivesZeroAndKeepsTheRightSideOfASingularMatrix)
{
    double zeroColumn[2][2] = {{0, 2}, {-0.0, 3}};
    double zeroRest[2][2] = {{1, 2}, {2, 4}};
    double b[2] = {6, 11};
    EXPECT_EQ(0, gausstridiag(zeroColumn, b, 2));
    EXPECT_EQ(0, gausstridiag(zeroRest, b, 2));
    EXPECT_EQ(6.0, b[0]);
    EXPECT_EQ(11.0, b[1]);
}

TEST(Gausstridiag, HasNoToleranceForAPivot)
{
    double A[2][2] = {{1e-300, 0}, {0, 1e-300}};
    double b[2] = {2e-300, 3e-300};
    EXPECT_EQ(1, gausstridiag(A, b, 2));
    EXPECT_NEAR(2.0, b[0], 1e-14);
    EXPECT_NEAR(3.0, b[1], 1e-14);
    double notANumber[2][2] = {{nan, 1}, {1, 1}};
    EXPECT_EQ(1, gausstridiag(notANumber, b, 2)); // not equal to zero
    EXPECT_TRUE(std::isnan(b[0]));
}

TEST(Gausstridiag, SolvesOneUnknownAndRefusesOtherSizes)
{
    double A[3][2] = {{4, 9}, {1, 9}, {2, 2}};
    double b[3] = {8, 7, 6};
    EXPECT_EQ(0, gausstridiag(A, b, 0));
    EXPECT_EQ(0, gausstridiag(A, b, -1));
    EXPECT_EQ(0, gausstridiag(A, b, 3)); // the third column counts as 0
    EXPECT_EQ(8.0, b[0]);
    EXPECT_EQ(1, gausstridiag(A, b, 1));
    EXPECT_EQ(2.0, b[0]);
    EXPECT_EQ(7.0, b[1]);
    A[0][0] = 0;
    EXPECT_EQ(0, gausstridiag(A, b, 1));
    EXPECT_EQ(2.0, b[0]);
}

TEST(Gausstridiag, NotANumberInTheFirstRowStaysThePivot)
{
    double A[2][2] = {{nan, 1}, {4, 2}}; // 4 is not strictly larger, so the first row is not swapped away
    double b[2] = {6, 8};
    EXPECT_EQ(1, gausstridiag(A, b, 2));
    EXPECT_TRUE(std::isnan(b[0]));
    EXPECT_TRUE(std::isnan(b[1]));
    double second[2][2] = {{4, 2}, {nan, 1}};
    double right[2] = {6, 8};
    EXPECT_EQ(1, gausstridiag(second, right, 2));
    EXPECT_TRUE(std::isnan(right[1]));
}

TEST(Gausstridiag, TheRightSideMayLieInTheMatrix)
{
    double A[2][2] = {{2, 1}, {1, 3}};
    EXPECT_EQ(1, gausstridiag(A, A[1], 2)); // 2x + y = 1, x + 3y = 3
    EXPECT_EQ(0.0, A[1][0]);
    EXPECT_EQ(1.0, A[1][1]);
}

TEST(Gausstridiag, LeavesResidualsOfRoundingOnly)
{
    TestRandom random(3);
    for (int step = 0, steps = testSteps(5000); step < steps; ++step) {
        double A[2][2], b[2], x[2];
        for (int row = 0; row < 2; ++row) {
            A[row][0] = random.between(-10.0, 10.0);
            A[row][1] = random.between(-10.0, 10.0);
            x[row] = b[row] = random.between(-10.0, 10.0);
        }
        ASSERT_EQ(1, gausstridiag(A, x, 2));
        for (int row = 0; row < 2; ++row) {
            const Exact residual = Exact(A[row][0]) * x[0] + Exact(A[row][1]) * x[1] - b[row];
            const double size = std::fabs(A[0][0]) + std::fabs(A[0][1]) + std::fabs(A[1][0]) + std::fabs(A[1][1]);
            const double bound = 4 * epsilon * (size * (std::fabs(x[0]) + std::fabs(x[1])) + std::fabs(b[row]));
            ASSERT_TRUE(residual.abs() <= Exact(bound)) << "seed 3, step " << step;
        }
    }
}

// Quadratic equations

TEST(SolveSquareRootsReal, GivesBothRootsInTheOrderOfTheSignOfA)
{
    double x1 = 0, x2 = 0;
    EXPECT_EQ(1, Solve_SquareRoots(1, -5, 6, x1, x2));
    EXPECT_EQ(3.0, x1);
    EXPECT_EQ(2.0, x2);
    EXPECT_EQ(1, Solve_SquareRoots(-1, 5, -6, x1, x2)); // a negative a makes x1 the smaller root
    EXPECT_EQ(2.0, x1);
    EXPECT_EQ(3.0, x2);
    EXPECT_EQ(1, Solve_SquareRoots(1, -4, 4, x1, x2)); // the result doesn't count
    EXPECT_EQ(2.0, x1);
    EXPECT_EQ(2.0, x2);
}

TEST(SolveSquareRootsReal, LeavesTheOutputsOfAComplexPairAlone)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(0, Solve_SquareRoots(1, 0, 1, x1, x2));
    EXPECT_EQ(untouched, x1);
    EXPECT_EQ(untouched, x2);
}

TEST(SolveSquareRootsReal, LinearEquationHasAPlainZeroAsSecondRoot)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(1, Solve_SquareRoots(0, 2, -4, x1, x2));
    EXPECT_EQ(2.0, x1);
    EXPECT_BITS(0.0, x2);
    EXPECT_EQ(1, Solve_SquareRoots(0, 1e-50, 1e-50, x1, x2)); // the threshold itself is enough
    EXPECT_EQ(-1.0, x1);
}

TEST(SolveSquareRootsReal, NoEquationGivesZeros)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(0, Solve_SquareRoots(0, 0, 7, x1, x2));
    EXPECT_BITS(0.0, x1);
    EXPECT_BITS(0.0, x2);
    x1 = x2 = untouched;
    EXPECT_EQ(0, Solve_SquareRoots(9.9e-51, -9.9e-51, 1, x1, x2));
    EXPECT_BITS(0.0, x1);
    EXPECT_BITS(0.0, x2);
    x1 = x2 = untouched;
    EXPECT_EQ(0, Solve_SquareRoots(nan, nan, 1, x1, x2)); // |a| >= 1e-50 doesn't hold
    EXPECT_BITS(0.0, x1);
    EXPECT_BITS(0.0, x2);
    EXPECT_EQ(1, Solve_SquareRoots(nan, 2, -4, x1, x2)); // so it is the linear equation
    EXPECT_EQ(2.0, x1);
    EXPECT_BITS(0.0, x2);
}

TEST(SolveSquareRootsReal, QuadraticBeginsAtTheThresholdOfA)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(1, Solve_SquareRoots(1e-50, -3e-50, 2e-50, x1, x2));
    EXPECT_NEAR(2.0, x1, 1e-12);
    EXPECT_NEAR(1.0, x2, 1e-12);
    EXPECT_EQ(1, Solve_SquareRoots(9.9e-51, 1, 3, x1, x2));
    EXPECT_EQ(-3.0, x1);
    EXPECT_BITS(0.0, x2);
}

TEST(SolveSquareRootsReal, DiscriminantThatIsNotANumberGivesOne)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(1, Solve_SquareRoots(1, nan, 1, x1, x2));
    EXPECT_TRUE(std::isnan(x1));
    EXPECT_TRUE(std::isnan(x2));
    EXPECT_EQ(1, Solve_SquareRoots(1, 1e200, inf, x1, x2)); // inf - inf
    EXPECT_TRUE(std::isnan(x1));
}

TEST(SolveSquareRootsReal, ReadsItsInputsBeforeItWritesAnOutput)
{
    double a = 1, c = 6;
    EXPECT_EQ(1, Solve_SquareRoots(a, -5, c, a, c));
    EXPECT_EQ(3.0, a);
    EXPECT_EQ(2.0, c);
}

TEST(SolveSquareRootsMonic, FirstRootHasTheLargerRealOrThePositiveImaginaryPart)
{
    double re1 = 0, im1 = untouched, re2 = 0, im2 = untouched;
    Solve_SquareRoots(-5, 6, re1, im1, re2, im2);
    EXPECT_EQ(3.0, re1);
    EXPECT_BITS(0.0, im1);
    EXPECT_EQ(2.0, re2);
    EXPECT_BITS(0.0, im2);
    Solve_SquareRoots(-6, 25, re1, im1, re2, im2); // 3 + 4i, 3 - 4i
    EXPECT_EQ(3.0, re1);
    EXPECT_EQ(4.0, im1);
    EXPECT_EQ(3.0, re2);
    EXPECT_EQ(-4.0, im2);
    Solve_SquareRoots(-2, 1, re1, im1, re2, im2); // D = 0 counts as real
    EXPECT_EQ(1.0, re1);
    EXPECT_BITS(0.0, im1);
    EXPECT_EQ(1.0, re2);
    EXPECT_BITS(0.0, im2);
    Solve_SquareRoots(0.0, 0.0, re1, im1, re2, im2);
    EXPECT_BITS(0.0, re1);
    EXPECT_BITS(-0.0, re2); // m = -0.5 * 0
}

TEST(SolveSquareRootsMonic, DiscriminantThatIsNotANumberCountsAsNegative)
{
    double re1 = 0, im1 = 0, re2 = 0, im2 = 0;
    Solve_SquareRoots(1e200, inf, re1, im1, re2, im2);
    EXPECT_EQ(-5e199, re1); // m, without the root
    EXPECT_TRUE(std::isnan(im1));
    EXPECT_EQ(-5e199, re2);
    EXPECT_TRUE(std::isnan(im2));
}

TEST(SolveSquareRootsMonic, ReadsItsInputsBeforeItWritesAnOutput)
{
    double p = -5, q = 6, im1 = 0, im2 = 0;
    Solve_SquareRoots(p, q, p, im1, q, im2);
    EXPECT_EQ(3.0, p);
    EXPECT_EQ(2.0, q);
}

TEST(SolveSquareRootsComplex, GivesTheRootWithPositiveRealPartOfTheDiscriminantFirst)
{
    karComplex x1, x2;
    // (x - (3 + i)) (x - (1 - 2i)) = x^2 - (4 - i) x + (5 - 5i)
    Solve_SquareRoots(karComplex(-4, 1), karComplex(5, -5), x1, x2);
    EXPECT_NEAR(3, x1.GetReal(), 1e-14);
    EXPECT_NEAR(1, x1.GetImag(), 1e-14);
    EXPECT_NEAR(1, x2.GetReal(), 1e-14);
    EXPECT_NEAR(-2, x2.GetImag(), 1e-14);
    karComplex p(-4, 1), q(5, -5);
    Solve_SquareRoots(p, q, p, q);
    EXPECT_BITS(x1.GetReal(), p.GetReal());
    EXPECT_BITS(x1.GetImag(), p.GetImag());
    EXPECT_BITS(x2.GetReal(), q.GetReal());
    EXPECT_BITS(x2.GetImag(), q.GetImag());
}

TEST(SolveSquareRootsComplex, RealRootsComeOut)
{
    karComplex x1, x2;
    Solve_SquareRoots(karComplex(-5, 0), karComplex(6, 0), x1, x2);
    EXPECT_BITS(3.0, x1.GetReal());
    EXPECT_BITS(-0.0, x1.GetImag()); // the square of p has as imaginary part: 0 * -5 + -5 * 0
    EXPECT_BITS(2.0, x2.GetReal());
    EXPECT_BITS(0.0, x2.GetImag());
}

TEST(SolveSquareRootsComplex, NegativeRealDiscriminantLeavesImaginaryPartsThatAreNotNumbers)
{
    karComplex x1, x2;
    Solve_SquareRoots(karComplex(0, 0), karComplex(1, 0), x1, x2); // x^2 + 1
    EXPECT_BITS(0.0, x1.GetReal());
    EXPECT_TRUE(std::isnan(x1.GetImag()));
    EXPECT_TRUE(std::isnan(x2.GetImag()));
    Solve_SquareRoots(karComplex(-2, 0), karComplex(1, 0), x1, x2); // a double root: w = 0
    EXPECT_EQ(1.0, x1.GetReal());
    EXPECT_TRUE(std::isnan(x1.GetImag()));
}

TEST(CalculateRoots, CountsItsRoots)
{
    double x1 = 0, x2 = 0;
    EXPECT_EQ(2, CalculateRoots(2, -10, 12, x1, x2));
    EXPECT_EQ(3.0, x1);
    EXPECT_EQ(2.0, x2);
    EXPECT_EQ(2, CalculateRoots(-1, 5, -6, x1, x2)); // the sign of a doesn't turn the order
    EXPECT_EQ(3.0, x1);
    EXPECT_EQ(2.0, x2);
    EXPECT_EQ(1, CalculateRoots(1, -4, 4, x1, x2));
    EXPECT_EQ(2.0, x1);
    EXPECT_EQ(2.0, x2);
}

TEST(CalculateRoots, ZeroesTheOutputsOfAComplexPair)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(0, CalculateRoots(1, 0, 1, x1, x2));
    EXPECT_BITS(0.0, x1);
    EXPECT_BITS(0.0, x2);
}

TEST(CalculateRoots, DoubleRootReachesToTheThreshold)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(1, CalculateRoots(1, 0, -9.9e-51, x1, x2));
    EXPECT_BITS(-0.0, x1);
    EXPECT_BITS(-0.0, x2);
    EXPECT_EQ(1, CalculateRoots(1, 0, 9.9e-51, x1, x2));
    EXPECT_EQ(2, CalculateRoots(1, 0, -1e-50, x1, x2));
    EXPECT_EQ(1e-25, x1);
    EXPECT_EQ(-1e-25, x2);
    EXPECT_EQ(0, CalculateRoots(1, 0, 1e-50, x1, x2));
    EXPECT_BITS(0.0, x1);
}

TEST(CalculateRoots, DoesNotTestA)
{
    double x1 = untouched, x2 = untouched;
    EXPECT_EQ(2, CalculateRoots(0, 2, -4, x1, x2)); // t and w are infinite
    EXPECT_TRUE(std::isnan(x1));
    EXPECT_EQ(-inf, x2);
    EXPECT_EQ(0, CalculateRoots(0, 2, 4, x1, x2)); // w = inf - inf counts as no root
    EXPECT_BITS(0.0, x1);
    EXPECT_BITS(0.0, x2);
}

void addReal(TestHash &hash, TestHash &expected, double a, double b, double c)
{
    double x1 = untouched, x2 = untouched;
    hash.add(Solve_SquareRoots(a, b, c, x1, x2));
    hash.add(x1), hash.add(x2);
    x1 = x2 = untouched;
    if (std::fabs(a) >= 1e-50) {
        const double bb = b * b, fourAc = 4 * a * c;
        const double D = bb - fourAc;
        if (!(D < 0)) {
            const double twoA = 2 * a;
            const double m = -b / twoA;
            const double h = std::sqrt(D < 0 ? -D : D) / twoA;
            x1 = h + m, x2 = m - h;
        }
        expected.add(D < 0 ? 0 : 1);
    } else if (std::fabs(b) >= 1e-50) {
        x1 = -c / b, x2 = 0.0;
        expected.add(1);
    } else {
        x1 = x2 = 0.0;
        expected.add(0);
    }
    expected.add(x1), expected.add(x2);

    x1 = x2 = untouched;
    hash.add(CalculateRoots(a, b, c, x1, x2));
    hash.add(x1), hash.add(x2);
    const double t = b / a, ca = c / a;
    const double tt = t * t;
    const double quarter = tt * 0.25;
    const double w = quarter - ca;
    const double half = 0.5 * t;
    if (std::fabs(w) < 1e-50) {
        expected.add(1), expected.add(-half), expected.add(-half);
    } else if (w > 0) {
        const double s = std::sqrt(w);
        expected.add(2), expected.add(s - half), expected.add(-half - s);
    } else {
        expected.add(0), expected.add(0.0), expected.add(0.0);
    }
}

void addMonic(TestHash &hash, TestHash &expected, double p, double q)
{
    double re1, im1, re2, im2;
    Solve_SquareRoots(p, q, re1, im1, re2, im2);
    hash.add(re1), hash.add(im1), hash.add(re2), hash.add(im2);
    const double pp = p * p, fourQ = 4 * q;
    const double D = pp - fourQ;
    const double m = -0.5 * p, h = 0.5 * std::sqrt(std::fabs(D));
    if (D >= 0)
        expected.add(h + m), expected.add(0.0), expected.add(m - h), expected.add(0.0);
    else
        expected.add(m), expected.add(h), expected.add(m), expected.add(-h);
}

void addComplex(TestHash &hash, TestHash &expected, double a, double b, double c, double d)
{
    karComplex x1, x2;
    Solve_SquareRoots(karComplex(a, b), karComplex(c, d), x1, x2);
    hash.add(x1.GetReal()), hash.add(x1.GetImag()), hash.add(x2.GetReal()), hash.add(x2.GetImag());
    const double aa = a * a, bb = b * b, ba = b * a, ab = a * b;
    const double re = (aa - bb) - 4 * c, im = (ba + ab) - 4 * d;
    const double rere = re * re, imim = im * im;
    const double u = std::sqrt((std::sqrt(rere + imim) + re) * 0.5);
    const double v = im / (2 * u);
    expected.add((u - a) / 2), expected.add((v - b) / 2);
    expected.add((-a - u) / 2), expected.add((-b - v) / 2);
}

TEST(QuadraticSolvers, MillionCallsEqualThePlainSteps)
{
    GoldenRun run(82, 250000, 4427330292202347150u);
    while (run.next()) { // four solvers
        const double a = mixedDouble(run.random), b = mixedDouble(run.random), c = mixedDouble(run.random),
                     d = mixedDouble(run.random);
        addReal(run.code, run.plain, a, b, c);
        addMonic(run.code, run.plain, a, b);
        addComplex(run.code, run.plain, a, b, c, d);
    }
}

/// Elimination as in the book, in a work array with the right side as last column.
int eliminate(const double (*A)[2], double *b, int n)
{
    double work[2][3];
    for (int row = 0; row < n; ++row) {
        for (int col = 0; col < n; ++col)
            work[row][col] = A[row][col];
        work[row][n] = b[row];
    }
    for (int k = 0; k < n; ++k) {
        int pivot = k;
        for (int row = k + 1; row < n; ++row)
            if (std::fabs(work[row][k]) > std::fabs(work[pivot][k]))
                pivot = row;
        if (std::fabs(work[pivot][k]) == 0.0)
            return 0;
        for (int col = k; col <= n && pivot != k; ++col)
            std::swap(work[k][col], work[pivot][col]);
        for (int row = k + 1; row < n; ++row) {
            const double factor = work[row][k] / work[k][k];
            for (int col = k + 1; col <= n; ++col)
                work[row][col] = work[row][col] - factor * work[k][col];
        }
    }
    for (int row = n - 1; row >= 0; --row) {
        double sum = 0.0;
        for (int col = row + 1; col < n; ++col)
            sum += b[col] * work[row][col];
        b[row] = (work[row][n] - sum) / work[row][row];
    }
    return 1;
}

TEST(LinearSolvers, MillionCallsEqualThePlainSteps)
{
    GoldenRun run(83, 200000, 14541637026835405234u);
    while (run.next()) { // five calls
        double m[9];
        for (double &element : m)
            element = mixedDouble(run.random);
        const auto &[a, b, c, d, e, f, g, h, i] = m;

        double x, y;
        run.code.add(Solve_2x2Matrix(a, b, c, d, e, f, x, y) ? 1 : 0);
        run.code.add(x), run.code.add(y);
        const double ad = a * d, bc = b * c, de = d * e, bf = b * f, af = a * f, ce = c * e;
        const double D = ad - bc;
        run.plain.add(1), run.plain.add((de - bf) / D), run.plain.add((af - ce) / D);

        run.code.add(Calculate_Determinante2(a, b, c, d));
        run.plain.add(D);

        run.code.add(Calculate_Determinante3(a, b, c, d, e, f, g, h, i));
        double sum = a * e * i;
        sum = sum + c * d * h;
        sum = sum + b * f * g;
        sum = sum - a * f * h;
        sum = sum - b * d * i;
        sum = sum - c * e * g;
        run.plain.add(sum);

        double A[2][2] = {{a, b}, {c, d}};
        for (int n = 1; n <= 2; ++n) {
            double right[2] = {e, f}, other[2] = {e, f};
            run.code.add(gausstridiag(A, right, n));
            run.code.add(right[0]), run.code.add(right[1]);
            run.plain.add(eliminate(A, other, n));
            run.plain.add(other[0]), run.plain.add(other[1]);
        }
    }
}

} // namespace
