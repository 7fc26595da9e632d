#include "karsolve.h"

#include "karmatrix.h"

#include "goldenrun.h"
#include "rootsteps.h"
#include "testnumbers.h"
#include "testrandom.h"
#include "teststeps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Left in entries that must not be written.
constexpr double untouched = 12345.0;

/// One run of `eqbairstow`, with an entry behind the arrays.
struct RealRun {
    int n;
    double a[8];
    double re[8];
    double im[8];

    explicit RealRun(std::vector<double> coefficients) : n(static_cast<int>(coefficients.size()) - 1)
    {
        std::fill_n(a, 8, untouched), std::fill_n(re, 8, untouched), std::fill_n(im, 8, untouched);
        std::copy(coefficients.begin(), coefficients.end(), a);
    }
    RealRun &solve(double eps)
    {
        eqbairstow(n, a, re, im, 1.0, -1.0, eps);
        return *this;
    }
    int solve(double eps, int &passes) { return eqbairstow(n, a, re, im, 1.0, -1.0, eps, passes); }
    bool isSameAs(const RealRun &o) const
    {
        bool same = n == o.n;
        for (int i = 0; i < 8; ++i)
            same = same && sameBits(a[i], o.a[i]) && sameBits(re[i], o.re[i]) && sameBits(im[i], o.im[i]);
        return same;
    }
};

/// One run of `EqBairstow`.
struct ComplexRun {
    int n;
    karComplex a[8];
    karComplex x[8];

    explicit ComplexRun(std::vector<karComplex> coefficients) : n(static_cast<int>(coefficients.size()) - 1)
    {
        std::fill_n(a, 8, karComplex(untouched, untouched));
        std::fill_n(x, 8, karComplex(untouched, untouched));
        std::copy(coefficients.begin(), coefficients.end(), a);
    }
    ComplexRun &solve(const karComplex &p, const karComplex &q, double eps)
    {
        EqBairstow(n, a, x, p, q, eps);
        return *this;
    }
    int solve(const karComplex &p, const karComplex &q, double eps, int &passes)
    {
        return EqBairstow(n, a, x, p, q, eps, passes);
    }
    bool isSameAs(const ComplexRun &o) const
    {
        bool same = n == o.n;
        for (int i = 0; i < 8; ++i)
            same = same && sameNumber(a[i], o.a[i]) && sameNumber(x[i], o.x[i]);
        return same;
    }
    static bool sameNumber(const karComplex &z, const karComplex &w)
    {
        return sameBits(z.GetReal(), w.GetReal()) && sameBits(z.GetImag(), w.GetImag());
    }
};

using Roots = std::vector<std::complex<double>>;

/// leading * (x - root 1) * ... * (x - root n), in descending powers.
std::vector<std::complex<double>> expand(double leading, const Roots &roots)
{
    std::vector<std::complex<double>> coefficients{leading};
    for (const std::complex<double> &root : roots) {
        coefficients.emplace_back(0.0);
        for (std::size_t k = coefficients.size() - 1; k > 0; --k)
            coefficients[k] -= root * coefficients[k - 1];
    }
    return coefficients;
}

std::vector<double> expandReal(double leading, const Roots &roots)
{
    std::vector<double> coefficients;
    for (const std::complex<double> &coefficient : expand(leading, roots))
        coefficients.push_back(coefficient.real());
    return coefficients;
}

std::vector<karComplex> expandComplex(const Roots &roots)
{
    std::vector<karComplex> coefficients;
    for (const std::complex<double> &coefficient : expand(1.0, roots))
        coefficients.emplace_back(coefficient.real(), coefficient.imag());
    return coefficients;
}

/// Largest distance of a chosen root from the found one that is nearest and not taken.
double largestError(const Roots &chosen, Roots found)
{
    double error = 0;
    for (const std::complex<double> &root : chosen) {
        const auto nearest = std::min_element(found.begin(), found.end(), [&](const auto &z, const auto &w) {
            return std::abs(z - root) < std::abs(w - root);
        });
        error = std::max(error, std::abs(*nearest - root));
        found.erase(nearest);
    }
    return error;
}

Roots rootsOf(const RealRun &run)
{
    Roots roots;
    for (int i = 1; i <= run.n; ++i)
        roots.emplace_back(run.re[i], run.im[i]);
    return roots;
}

Roots rootsOf(const ComplexRun &run)
{
    Roots roots;
    for (int i = 1; i <= run.n; ++i)
        roots.emplace_back(run.x[i].GetReal(), run.x[i].GetImag());
    return roots;
}

/// The stated order inside a pair: the larger real root first, or the positive imaginary part of a conjugate pair.
void expectPairInOrder(const RealRun &run, int first)
{
    if (run.im[first] == 0) {
        EXPECT_GE(run.re[first], run.re[first + 1]);
        EXPECT_EQ(0.0, run.im[first + 1]);
    } else {
        EXPECT_EQ(run.re[first], run.re[first + 1]);
        EXPECT_GT(run.im[first], 0.0);
        EXPECT_EQ(-run.im[first], run.im[first + 1]);
    }
}

TEST(Eqbairstow, FillsPositionsOneToFourOfAQuartic)
{
    RealRun run({1, -10, 35, -50, 24}); // 1, 2, 3, 4
    run.solve(1e-10);
    EXPECT_LT(largestError({1.0, 2.0, 3.0, 4.0}, rootsOf(run)), 1e-11);
    EXPECT_NEAR(2.0, run.re[1], 1e-11); // the pair nearest to x * x comes first
    EXPECT_NEAR(1.0, run.re[2], 1e-11);
    EXPECT_NEAR(4.0, run.re[3], 1e-11);
    EXPECT_NEAR(3.0, run.re[4], 1e-11);
    EXPECT_EQ(untouched, run.re[0]);
    EXPECT_EQ(untouched, run.im[0]);
    EXPECT_EQ(untouched, run.re[5]);
    EXPECT_EQ(untouched, run.im[5]);
}

TEST(Eqbairstow, SingleRootOfACubicStandsAtPositionThree)
{
    RealRun run(expandReal(2, {{1, 2}, {1, -2}, {-3, 0}}));
    run.solve(1e-10);
    EXPECT_NEAR(1.0, run.re[1], 1e-12);
    EXPECT_NEAR(2.0, run.im[1], 1e-12);
    EXPECT_NEAR(1.0, run.re[2], 1e-12);
    EXPECT_NEAR(-2.0, run.im[2], 1e-12);
    EXPECT_NEAR(-3.0, run.re[3], 1e-12);
    EXPECT_BITS(0.0, run.im[3]);
    EXPECT_EQ(untouched, run.re[0]);
    EXPECT_EQ(untouched, run.re[4]);
    EXPECT_EQ(untouched, run.im[4]);
}

TEST(Eqbairstow, LeavesTheQuotientInTheCoefficients)
{
    RealRun run({3, -30, 105, -150, 72}); // 3 (x^2 - 3x + 2) (x^2 - 7x + 12)
    run.solve(1e-10);
    EXPECT_EQ(3.0, run.a[0]);
    EXPECT_NEAR(-21.0, run.a[1], 1e-9);
    EXPECT_NEAR(36.0, run.a[2], 1e-9);
    EXPECT_EQ(-150.0, run.a[3]);
    EXPECT_EQ(72.0, run.a[4]);
    RealRun cubic({1, -6, 11, -6});
    cubic.solve(1e-10);
    EXPECT_EQ(1.0, cubic.a[0]);
    EXPECT_NEAR(-3.0, cubic.a[1], 1e-9);
    EXPECT_EQ(11.0, cubic.a[2]);
}

TEST(Eqbairstow, StartsAtZeroAndDoesNotReadTheTwoNumbers)
{
    RealRun run({1, -10, 35, -50, 24}), other = run, third = run;
    run.solve(1e-10);
    eqbairstow(4, other.a, other.re, other.im, nan, inf, 1e-10);
    int passes = 100;
    eqbairstow(4, third.a, third.re, third.im, -7, 7, 1e-10, passes);
    EXPECT_TRUE(run.isSameAs(other));
    EXPECT_TRUE(run.isSameAs(third));
}

TEST(Eqbairstow, OnePassCorrectsTheFactorAndDividesByTheOldOne)
{
    RealRun run({1, -10, 35, -50, 24});
    run.solve(inf); // no ratio is above infinity
    // p = q = 0, so b = c = a: D = 35 * 35, dp = (35 * -50 + 10 * 24) / D, dq = 35 * 24 / D
    double re1, im1, re2, im2;
    Solve_SquareRoots(-1510.0 / 1225.0, 840.0 / 1225.0, re1, im1, re2, im2);
    EXPECT_EQ(re1, run.re[1]);
    EXPECT_EQ(im1, run.im[1]);
    EXPECT_EQ(re2, run.re[2]);
    EXPECT_EQ(im2, run.im[2]);
    // the quotient by x * x is x^2 - 10 x + 35: 5 and -+ sqrt(10)
    EXPECT_EQ(5.0, run.re[3]);
    EXPECT_EQ(std::sqrt(10.0), run.im[3]);
    EXPECT_EQ(5.0, run.re[4]);
    EXPECT_EQ(-std::sqrt(10.0), run.im[4]);
}

TEST(Eqbairstow, NoCorrectionOfAZeroFactorCountsAsSettled)
{
    RealRun run({1, 0, 1, 0, 0}); // p = q = dp = dq = 0: the ratio 0 / 0
    int passes = 5;
    EXPECT_EQ(4, run.solve(1e-10, passes));
    EXPECT_EQ(1, passes);
    EXPECT_BITS(0.0, run.re[1]);
    EXPECT_BITS(-0.0, run.re[2]);
    EXPECT_EQ(1.0, run.im[3]);
    EXPECT_EQ(-1.0, run.im[4]);
}

TEST(Eqbairstow, NotANumberEndsTheIteration)
{
    RealRun run({1, 0, 0, 0, 0}); // D = 0: dp = 0 / 0
    run.solve(1e-10);
    EXPECT_TRUE(std::isnan(run.re[1]));
    EXPECT_TRUE(std::isnan(run.im[1])); // the way of a negative discriminant
    RealRun zeros({0, 0, 0, 0, 0});
    zeros.solve(0.0);
    EXPECT_TRUE(std::isnan(zeros.re[4]));
    RealRun bound({1, -10, 35, -50, 24});
    int passes = 100;
    EXPECT_EQ(4, bound.solve(nan, passes)); // no ratio is above a bound that is not a number
    EXPECT_EQ(1, passes);
}

TEST(Eqbairstow, LimitStopsBeforeAnythingIsStored)
{
    const RealRun fresh({1, -10, 35, -50, 24});
    RealRun run = fresh;
    int needed = 1000;
    EXPECT_EQ(4, run.solve(1e-10, needed));
    ASSERT_GT(needed, 2);
    for (int limit : {needed - 1, 1, 0, -1, -2147483647 - 1}) {
        RealRun stopped = fresh;
        int passes = limit;
        EXPECT_EQ(0, stopped.solve(1e-10, passes));
        EXPECT_EQ(-1, passes);
        EXPECT_TRUE(stopped.isSameAs(fresh));
    }
    RealRun justEnough = fresh;
    int passes = needed;
    EXPECT_EQ(4, justEnough.solve(1e-10, passes));
    EXPECT_EQ(needed, passes);
    EXPECT_TRUE(justEnough.isSameAs(run));
}

TEST(Eqbairstow, LimitHoldsForEachFactorAndKeepsTheRootsOfThoseBefore)
{
    RealRun quintic({1, 2, 3, 4, 5, 6});
    int passes = 1;
    EXPECT_EQ(5, quintic.solve(inf, passes)); // one pass for each of two factors
    EXPECT_EQ(2, passes);
    TestRandom random(94);
    int partial = 0;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        std::vector<double> a(static_cast<std::size_t>(random.between(6, 7)));
        for (double &coefficient : a)
            coefficient = random.between(-10.0, 10.0);
        RealRun run(a);
        passes = 30;
        const int roots = run.solve(1e-10, passes);
        if (passes >= 0 || roots == 0)
            continue;
        ++partial;
        ASSERT_EQ(2, roots) << "seed 94, step " << step;
        ASSERT_NE(untouched, run.re[2]) << "seed 94, step " << step;
        ASSERT_EQ(untouched, run.re[3]) << "seed 94, step " << step;
        ASSERT_EQ(untouched, run.im[3]) << "seed 94, step " << step;
    }
    EXPECT_GT(partial, 10);
}

TEST(Eqbairstow, DegreesBelowThreeStoreNothingBehindTheirRoots)
{
    RealRun quadratic({1, -5, 6}); // the factor itself; c[-1] counts as 0
    quadratic.solve(1e-10);
    EXPECT_EQ(3.0, quadratic.re[1]);
    EXPECT_EQ(2.0, quadratic.re[2]);
    EXPECT_EQ(untouched, quadratic.re[3]);
    EXPECT_EQ(untouched, quadratic.im[3]);
    RealRun linear({2, -6}); // c[-1] = c[-2] = 0: D = 0
    linear.solve(1e-10);
    EXPECT_TRUE(std::isnan(linear.re[1]));
    EXPECT_EQ(untouched, linear.re[2]);
    RealRun constant({2});
    int passes = 3;
    EXPECT_EQ(0, constant.solve(1e-10, passes));
    EXPECT_EQ(untouched, constant.re[1]);
    EXPECT_EQ(untouched, constant.a[1]);
    passes = 3;
    EXPECT_EQ(0, eqbairstow(-1, nullptr, nullptr, nullptr, 0, 0, 1e-10, passes));
    EXPECT_EQ(0, passes);
}

TEST(Eqbairstow, WorkEntriesBeyondDegreeFourCountAsZero)
{
    RealRun run({1, 0, 0, 0, 1, 5});
    run.solve(inf);
    // b = 1 0 0 0 1 (0), c = b: D = c[3]^2 + 0 * c[2] = 0
    EXPECT_TRUE(std::isnan(run.re[1]));
    EXPECT_EQ(untouched, run.re[6]);
    EXPECT_EQ(untouched, run.im[6]);
    RealRun next({1, 2, 3, 4, 5, 6});
    next.solve(inf);
    // D = 16, dp = (4 * 5 - 3 * 0) / 16, dq = (0 * 5 + 4 * 0) / 16: x^2 + 1.25 x
    EXPECT_EQ(0.0, next.re[1]);
    EXPECT_EQ(-1.25, next.re[2]);
}

TEST(Eqbairstow, FindsChosenRootsInTheStatedOrder)
{
    TestRandom random(4);
    int settled = 0;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 4, step " << step);
        Roots roots;
        const int degree = random.between(3, 4);
        const bool close = step % 4 == 3; // the second root 0.01 beside the first
        while (static_cast<int>(roots.size()) < degree) {
            const double re = random.between(-2.0, 2.0);
            if (degree - static_cast<int>(roots.size()) >= 2 && random.below(2) == 0) {
                const double im = random.between(0.2, 2.0);
                roots.insert(roots.end(), {{re, im}, {re, -im}});
            } else {
                roots.emplace_back(close && roots.size() == 1 ? roots[0].real() + 0.01 : re);
            }
        }
        double distance = inf;
        for (std::size_t i = 0; i < roots.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                distance = std::min(distance, std::abs(roots[i] - roots[j]));
        if (distance < (close ? 0.009 : 0.2))
            continue;
        RealRun run(expandReal(random.between(0.5, 2.0), roots));
        int passes = 500;
        if (run.solve(1e-10, passes) != degree)
            continue;
        ++settled;
        EXPECT_LT(largestError(roots, rootsOf(run)), close ? 1e-6 : 1e-8);
        expectPairInOrder(run, 1);
        if (degree == 4)
            expectPairInOrder(run, 3);
        else
            EXPECT_BITS(0.0, run.im[3]);
        if (HasFailure())
            return;
    }
    EXPECT_GT(settled, testSteps(8000));
}

TEST(Eqbairstow, FindsDoubleRootsWithFewerDigits)
{
    const Roots cases[] = {
        {1.0, 1.0, 3.0, -2.0}, {2.0, 2.0, {0, 1}, {0, -1}}, {1.0, 1.0, -4.0}, {-1.0, -1.0, 5.0, 5.0}};
    for (const Roots &roots : cases) {
        RealRun run(expandReal(1, roots));
        int passes = 1000;
        EXPECT_EQ(run.n, run.solve(1e-10, passes));
        EXPECT_LT(largestError(roots, rootsOf(run)), 1e-4);
    }
}

TEST(Eqbairstow, SomePolynomialsNeverSettle)
{
    RealRun run({1, 1, -3, -4}); // Newton's method runs about without end
    int passes = 100000;
    EXPECT_EQ(0, run.solve(1e-10, passes));
    EXPECT_EQ(-1, passes);
    EXPECT_EQ(untouched, run.re[1]);
}

TEST(EqBairstow, FindsComplexRootsInTheStatedOrder)
{
    TestRandom random(5);
    int settled = 0;
    for (int step = 0, steps = testSteps(10000); step < steps; ++step) {
        SCOPED_TRACE(testing::Message() << "seed 5, step " << step);
        Roots roots;
        const int degree = random.between(3, 4);
        for (int i = 0; i < degree; ++i) {
            const double re = random.between(-1.5, 1.5);
            roots.emplace_back(re, random.between(-1.5, 1.5));
        }
        if (degree == 3)
            roots[2] = roots[2].real(); // the single root is real, so a pair of the others is the factor
        double distance = inf;
        for (std::size_t i = 0; i < roots.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                distance = std::min(distance, std::abs(roots[i] - roots[j]));
        if (distance < 0.2)
            continue;
        ComplexRun run(expandComplex(roots));
        int passes = 500;
        if (run.solve(karComplex(1, 0), karComplex(-1, 0), 1e-10, passes) != degree)
            continue;
        const Roots found = rootsOf(run);
        if (degree == 3 && largestError({roots[2]}, {found[2]}) > 1e-6)
            continue; // a factor with the real root leaves a complex one, whose imaginary part is dropped
        ++settled;
        EXPECT_LT(largestError(roots, found), 1e-8);
        for (std::size_t first = 0; first + 1 < found.size(); first += 2)
            EXPECT_GE((found[first] - found[first + 1]).real(), 0.0); // the root of the discriminant is added first
        if (HasFailure())
            return;
    }
    EXPECT_GT(settled, testSteps(4000));
}

TEST(EqBairstow, SingleRootKeepsTheRealPartOfItsQuotient)
{
    ComplexRun run({{1, 0}, {-5, -2}, {0, 0}, {0, 0}}); // p = q = 0 is a factor: the quotient is x - (5 + 2i)
    run.solve(karComplex(0, 0), karComplex(0, 0), inf);
    EXPECT_EQ(5.0, run.x[3].GetReal());
    EXPECT_BITS(0.0, run.x[3].GetImag());
    EXPECT_EQ(untouched, run.x[0].GetReal());
    EXPECT_EQ(untouched, run.x[4].GetReal());
}

TEST(EqBairstow, StartsAtTheGivenFactor)
{
    // started at a factor, the first pass finds nothing to correct
    ComplexRun run(expandComplex({{1, 1}, {2, -1}, {-1, 0.5}, {0, 3}}));
    int passes = 100;
    EXPECT_EQ(4, run.solve(karComplex(-3, 0), karComplex(3, 1), 1e-10, passes)); // (1 + i)(2 - i) = 3 + i
    EXPECT_EQ(1, passes);
    EXPECT_LT(largestError({{2, -1}, {1, 1}, {-1, 0.5}, {0, 3}}, rootsOf(run)), 1e-12);
    EXPECT_NEAR(2.0, run.x[1].GetReal(), 1e-12);
}

TEST(EqBairstow, ReadsTheStartBeforeItWritesARoot)
{
    ComplexRun run(expandComplex({{1, 1}, {2, -1}, {-1, 0.5}, {0, 3}})), other = run;
    run.x[1] = other.x[1] = karComplex(1, 0);
    run.a[2] = other.a[2];
    run.solve(karComplex(1, 0), other.a[2], 1e-10);
    EqBairstow(4, other.a, other.x, other.x[1], other.a[2], 1e-10);
    EXPECT_TRUE(run.isSameAs(other));
}

TEST(EqBairstow, LimitStopsBeforeAnythingIsStored)
{
    const ComplexRun fresh(expandComplex({{1, 1}, {2, -1}, {-1, 0.5}, {0, 3}}));
    ComplexRun run = fresh;
    int needed = 1000;
    EXPECT_EQ(4, run.solve(karComplex(1, 0), karComplex(-1, 0), 1e-10, needed));
    ASSERT_GT(needed, 2);
    for (int limit : {needed - 1, 1, 0, -5}) {
        ComplexRun stopped = fresh;
        int passes = limit;
        EXPECT_EQ(0, stopped.solve(karComplex(1, 0), karComplex(-1, 0), 1e-10, passes));
        EXPECT_EQ(-1, passes);
        EXPECT_TRUE(stopped.isSameAs(fresh));
    }
}

TEST(EqBairstow, OtherDegreesThanThreeAndFourAreGuarded)
{
    ComplexRun quadratic({{1, 0}, {-5, 0}, {6, 0}});
    int passes = 100;
    EXPECT_EQ(2, quadratic.solve(karComplex(1, 0), karComplex(-1, 0), 1e-10, passes));
    EXPECT_EQ(3.0, quadratic.x[1].GetReal());
    EXPECT_EQ(2.0, quadratic.x[2].GetReal());
    EXPECT_EQ(untouched, quadratic.x[3].GetReal());
    ComplexRun quintic({{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}});
    passes = 100;
    EXPECT_EQ(5, quintic.solve(karComplex(0, 0), karComplex(0, 0), inf, passes));
    EXPECT_EQ(2, passes);                   // degrees 5 and 3
    EXPECT_EQ(0.0, quintic.x[1].GetReal()); // x^2 + 1.25 x, as in the real form
    EXPECT_EQ(-1.25, quintic.x[2].GetReal());
    EXPECT_EQ(untouched, quintic.x[6].GetReal());
    EXPECT_EQ(0, EqBairstow(-3, nullptr, nullptr, karComplex(), karComplex(), 1e-10, passes));
}

TEST(EqBairstow, ConstantTakesOnePassAndHasNoRoot)
{
    ComplexRun constant({{2, 0}});
    int passes = 10;
    EXPECT_EQ(0, constant.solve(karComplex(0, 0), karComplex(0, 0), 1e-10, passes)); // 0 / 0 ends it
    EXPECT_EQ(1, passes);
    EXPECT_EQ(untouched, constant.x[1].GetReal());
}

TEST(EqBairstow, AnyDegreeSettlesAtARatioEqualToTheLimit)
{
    // (x^2 - 1)*(x^2 - 4)*(x - 3) from x^2 - 1: no change at once. x^3 - 3x^2 - 4x + 12 from there: q changes by -3,
    // then nothing.
    ComplexRun quintic({{1, 0}, {-3, 0}, {-5, 0}, {15, 0}, {4, 0}, {-12, 0}});
    int passes = 60;
    EXPECT_EQ(5, quintic.solve(karComplex(0, 0), karComplex(-1, 0), 0.0, passes));
    EXPECT_EQ(3, passes);
    const double roots[] = {1, -1, 2, -2, 3};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(roots[i], quintic.x[i + 1].GetReal());
}

// Against the steps written out

/// The passes and, if they sufficed, the roots.
template <class Number>
void addSteps(TestHash &hash, std::vector<Number> a, Number p, Number q)
{
    int passes = 40;
    plain::Complex x[4];
    const int roots = plain::bairstow(static_cast<int>(a.size()) - 1, a.data(), p, q, x, passes);
    hash.add(passes);
    for (int i = 0; i < roots; ++i)
        hash.add(x[i].re), hash.add(x[i].im);
}

TEST(Eqbairstow, MillionPassesEqualThePlainSteps)
{
    GoldenRun run(84, 100000, 16711054473206003138u);
    while (run.next()) {
        const int n = run.random.between(3, 4);
        std::vector<double> a(static_cast<std::size_t>(n) + 1);
        for (double &coefficient : a)
            coefficient = run.step % 2 == 0 ? run.random.between(-10.0, 10.0) : mixedDouble(run.random);
        addSteps(run.plain, a, 0.0, 0.0);
        RealRun solver(a);
        int passes = 40;
        const int roots = solver.solve(1e-10, passes);
        run.code.add(passes);
        for (int i = 1; i <= roots; ++i)
            run.code.add(solver.re[i]), run.code.add(solver.im[i]);
    }
}

TEST(EqBairstow, HalfAMillionPassesEqualThePlainSteps)
{
    GoldenRun run(85, 30000, 6737948442523617243u);
    while (run.next()) {
        const int n = run.random.between(3, 4);
        std::vector<plain::Complex> a(static_cast<std::size_t>(n) + 1);
        for (plain::Complex &coefficient : a) {
            coefficient.re = run.step % 2 == 0 ? run.random.between(-10.0, 10.0) : mixedDouble(run.random);
            coefficient.im = run.step % 2 == 0 ? run.random.between(-10.0, 10.0) : mixedDouble(run.random);
        }
        addSteps(run.plain, a, plain::Complex{1, 0}, plain::Complex{-1, 0});
        std::vector<karComplex> coefficients;
        for (const plain::Complex &z : a)
            coefficients.emplace_back(z.re, z.im);
        ComplexRun solver(coefficients);
        int passes = 40;
        const int roots = solver.solve(karComplex(1, 0), karComplex(-1, 0), 1e-10, passes);
        run.code.add(passes);
        for (int i = 1; i <= roots; ++i)
            run.code.add(solver.x[i].GetReal()), run.code.add(solver.x[i].GetImag());
    }
}

/// Bounds that are met late, never, and at once.
double anyBound(TestRandom &random)
{
    const double bounds[] = {1e-3, 1e-15, 1e-300, 0.0, -1.0, inf, nan};
    return bounds[random.below(7)];
}

TEST(Eqbairstow, EqualsTheStepsForAnyBoundAndLeavesTheirQuotient)
{
    TestRandom random(90);
    for (int step = 0, steps = testSteps(30000); step < steps; ++step) {
        std::vector<double> a(static_cast<std::size_t>(random.between(4, 5)));
        for (double &coefficient : a)
            coefficient = step % 2 == 0 ? random.between(-3, 3) : mixedDouble(random);
        const double eps = anyBound(random);
        RealRun run(a), expected = run;
        plain::Complex x[4];
        int passes = 40, allowed = 40;
        const int roots = plain::bairstow(run.n, expected.a, 0.0, 0.0, x, passes, eps);
        for (int i = 0; i < roots; ++i)
            expected.re[i + 1] = x[i].re, expected.im[i + 1] = x[i].im;
        ASSERT_EQ(roots, run.solve(eps, allowed)) << "seed 90, step " << step;
        ASSERT_EQ(passes, allowed) << "seed 90, step " << step;
        ASSERT_TRUE(run.isSameAs(expected)) << "seed 90, step " << step;
    }
}

TEST(EqBairstow, EqualsTheStepsForAnyBoundAndStartAndLeavesTheirQuotient)
{
    TestRandom random(91);
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        const auto part = [&] { return step % 2 == 0 ? random.between(-3, 3) : mixedDouble(random); };
        const auto number = [&] {
            const double re = part();
            return plain::Complex{re, random.below(4) == 0 ? 0.0 : part()};
        };
        const auto asLibrary = [](plain::Complex z) { return karComplex(z.re, z.im); };
        std::vector<karComplex> coefficients;
        plain::Complex a[5];
        const int n = random.between(3, 4);
        for (int i = 0; i <= n; ++i) {
            a[i] = number();
            coefficients.push_back(asLibrary(a[i]));
        }
        const double eps = anyBound(random);
        const plain::Complex p = number(), q = number();
        ComplexRun run(coefficients), expected = run;
        plain::Complex x[4];
        int passes = 40, allowed = 40;
        const int roots = plain::bairstow(n, a, p, q, x, passes, eps);
        for (int i = 0; i <= n; ++i)
            expected.a[i] = asLibrary(a[i]);
        for (int i = 0; i < roots; ++i)
            expected.x[i + 1] = asLibrary(x[i]);
        ASSERT_EQ(roots, run.solve(asLibrary(p), asLibrary(q), eps, allowed)) << "seed 91, step " << step;
        ASSERT_EQ(passes, allowed) << "seed 91, step " << step;
        ASSERT_TRUE(run.isSameAs(expected)) << "seed 91, step " << step;
    }
}

// The bounded forms beside the others

TEST(Eqbairstow, BoundedFormEqualsTheOtherWhereThatEnds)
{
    TestRandom random(86);
    int ended = 0;
    for (int step = 0, steps = testSteps(50000); step < steps; ++step) {
        std::vector<double> a(static_cast<std::size_t>(random.between(1, 7)));
        for (double &coefficient : a)
            coefficient = step % 2 == 0 ? random.anyDouble() : mixedDouble(random);
        const double eps = random.below(8) == 0 ? random.anyDouble() : 1e-10;
        const RealRun fresh(a);
        RealRun bounded = fresh, other = fresh;
        int passes = 60;
        const int roots = bounded.solve(eps, passes);
        if (passes < 0) {
            ASSERT_LT(roots, std::max(1, fresh.n)) << "seed 86, step " << step;
            continue;
        }
        ++ended;
        ASSERT_EQ(fresh.n, roots) << "seed 86, step " << step;
        other.solve(eps);
        ASSERT_TRUE(bounded.isSameAs(other)) << "seed 86, step " << step;
    }
    EXPECT_GT(ended, testSteps(30000));
}

TEST(EqBairstow, BoundedFormEqualsTheOtherWhereThatEnds)
{
    TestRandom random(87);
    int ended = 0;
    for (int step = 0, steps = testSteps(20000); step < steps; ++step) {
        const auto number = [&] { return step % 2 == 0 ? random.anyDouble() : mixedDouble(random); };
        std::vector<karComplex> a(static_cast<std::size_t>(random.between(1, 7)));
        for (karComplex &coefficient : a) {
            coefficient.SetReal(number());
            coefficient.SetImag(number());
        }
        const double eps = random.below(8) == 0 ? random.anyDouble() : 1e-10;
        karComplex p(1, 0), q(-1, 0);
        if (random.below(2) == 0) {
            p.SetReal(number()), p.SetImag(number());
            q.SetReal(number()), q.SetImag(number());
        }
        const ComplexRun fresh(a);
        ComplexRun bounded = fresh, other = fresh;
        int passes = 60;
        const int roots = bounded.solve(p, q, eps, passes);
        if (passes < 0) {
            ASSERT_LT(roots, std::max(1, fresh.n)) << "seed 87, step " << step;
            continue;
        }
        ++ended;
        ASSERT_EQ(fresh.n, roots) << "seed 87, step " << step;
        other.solve(p, q, eps);
        ASSERT_TRUE(bounded.isSameAs(other)) << "seed 87, step " << step;
    }
    EXPECT_GT(ended, testSteps(10000));
}

// Solve_Polynom_Roots

karMatrix row(const std::vector<double> &coefficients)
{
    karMatrix matrix(1, static_cast<int>(coefficients.size()));
    std::copy(coefficients.begin(), coefficients.end(), matrix.GetData());
    return matrix;
}

std::vector<double> elements(const karMatrix &matrix)
{
    return std::vector<double>(matrix.GetData(), matrix.GetData() + matrix.GetRows() * matrix.GetColumns());
}

void expectNear(const std::vector<double> &expected, const std::vector<double> &found)
{
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(expected[i], found[i], 1e-12) << i;
}

TEST(SolvePolynomRoots, TakesTheNumberOfColumnsAsTheDegree)
{
    karMatrix coefficients = row({2, -12, 22, -12}); // 2x (x - 1) (x - 2) (x - 3): the missing coefficient is 0
    const karMatrix roots = Solve_Polynom_Roots(coefficients, 7.0, nan);
    EXPECT_EQ(2, roots.GetRows());
    EXPECT_EQ(4, roots.GetColumns());
    expectNear({1, 0, 3, 2, 0, 0, 0, 0}, elements(roots));
}

TEST(SolvePolynomRoots, OverwritesItsInputByTheQuotient)
{
    const karMatrix coefficients = row({2, -12, 22, -12});
    Solve_Polynom_Roots(coefficients, 0.0, 0.0);
    expectNear({2, -10, 12, -12}, elements(coefficients)); // 2 (x - 2) (x - 3), then the old entry
}

TEST(SolvePolynomRoots, EveryPairOfImaginaryPartsLandsInTheFirstTwoColumns)
{
    // x (x - 1), then 1 + 2i and 1 - 2i, then -3 + i and -3 - i over them
    const karMatrix roots = Solve_Polynom_Roots(row({1, 3, -1, 7, 40, -50}), 0.0, 0.0);
    expectNear({1, 0, 1, 1, -3, -3, 1, -1, 0, 0, 0, 0}, elements(roots));
}

TEST(SolvePolynomRoots, ZeroOfTheSingleRootOverwritesAnImaginaryPart)
{
    // x (x^2 - 2x + 5): the pair 1 + 2i, then the single root
    const karMatrix roots = Solve_Polynom_Roots(row({1, -2, 5}), 0.0, 0.0);
    expectNear({1, 1, 0, 0, -2, 0}, elements(roots));
}

TEST(SolvePolynomRoots, AnythingButOneRowGivesAnEmptyMatrix)
{
    for (int rows : {0, 2, 3}) {
        const karMatrix roots = Solve_Polynom_Roots(karMatrix(rows, 4), 0.0, 0.0);
        EXPECT_EQ(0, roots.GetRows());
        EXPECT_EQ(0, roots.GetColumns());
        EXPECT_EQ(nullptr, roots.GetData());
    }
    EXPECT_EQ(0, Solve_Polynom_Roots(karMatrix(), 0.0, 0.0).GetRows());
}

TEST(SolvePolynomRoots, FewColumnsStoreNothingBehindTheRoots)
{
    const karMatrix none = Solve_Polynom_Roots(karMatrix(1, 0), 0.0, 0.0);
    EXPECT_EQ(2, none.GetRows());
    EXPECT_EQ(0, none.GetColumns());
    expectNear({3, 0, 0, 0}, elements(Solve_Polynom_Roots(row({1, -3}), 0.0, 0.0))); // x^2 - 3x
    const karMatrix one = Solve_Polynom_Roots(row({2}), 0.0, 0.0);
    EXPECT_EQ(1, one.GetColumns());
    EXPECT_TRUE(std::isnan(one.GetData()[0]));
    EXPECT_TRUE(std::isnan(one.GetData()[1])); // the imaginary part of the one root
}

/// The stated steps for any degree. Empty if a factor needs more than `limit` passes.
std::vector<double> matrixRoots(std::vector<double> a, int limit)
{
    const int N = static_cast<int>(a.size());
    int n = N, i = 0;
    a.push_back(0.0);
    std::vector<double> workB(a.size()), workC(a.size()), result(2 * static_cast<std::size_t>(N));
    double *const b = workB.data(), *const c = workC.data(), *const r = result.data();
    double p = 0, q = 0, re1, im1, re2, im2;
    b[0] = c[0] = a[0];
    while (n > 2) {
        double ratio;
        int pass = 0;
        do {
            if (++pass > limit)
                return {};
            b[1] = a[1] - p * b[0];
            c[1] = b[1] - p * c[0];
            for (int k = 2; k <= n; ++k)
                b[k] = a[static_cast<std::size_t>(k)] - p * b[k - 1] - q * b[k - 2];
            for (int k = 2; k <= n; ++k)
                c[k] = b[k] - p * c[k - 1] - q * c[k - 2];
            const double d = b[n - 1] - c[n - 1], D = c[n - 2] * c[n - 2] + d * c[n - 3];
            const double dp = (c[n - 2] * b[n - 1] - c[n - 3] * b[n]) / D;
            const double dq = (d * b[n - 1] + c[n - 2] * b[n]) / D;
            p += dp, q += dq;
            ratio = (std::fabs(dp) + std::fabs(dq)) / (std::fabs(p) + std::fabs(q));
        } while (!(ratio < 1e-50) && ratio == ratio);
        Solve_SquareRoots(p, q, re1, im1, re2, im2);
        r[i] = re1, r[i + 1] = re2, r[i + n] = im1, r[i + n + 1] = im2;
        n -= 2, i += 2;
        std::copy(b + 1, b + n + 1, a.begin() + 1);
    }
    if (n == 2) {
        Solve_SquareRoots(b[1] / b[0], b[2] / b[0], re1, im1, re2, im2);
        r[i] = re1, r[i + 1] = re2, r[i + 2] = im1, r[i + 3] = im2;
    } else {
        r[i] = -b[1] / b[0], r[i + 1] = 0;
    }
    return result;
}

TEST(SolvePolynomRoots, AnyDegreeEqualsTheStepsWrittenOut)
{
    GoldenRun run(89, 20000, 15140741494536058021u);
    int ended = 0;
    while (run.next()) {
        std::vector<double> a(static_cast<std::size_t>(run.random.between(3, 9)));
        for (double &coefficient : a)
            coefficient = run.step % 4 == 0 ? mixedDouble(run.random) : run.random.between(-10.0, 10.0);
        const std::vector<double> steps = matrixRoots(a, 100);
        if (steps.empty())
            continue;
        ++ended;
        for (double element : steps)
            run.plain.add(element);
        const karMatrix coefficients = row(a);
        for (double element : elements(Solve_Polynom_Roots(coefficients, nan, inf)))
            run.code.add(element);
    }
    EXPECT_GT(ended, testSteps(5000));
}

} // namespace
