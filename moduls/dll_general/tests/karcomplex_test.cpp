#include "karcomplex.h"

#include "goldenrun.h"
#include "testnumbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

void expectParts(const karComplex &z, double re, double im)
{
    EXPECT_TRUE(sameBits(re, z.GetReal())) << z.GetReal() << " is not " << re;
    EXPECT_TRUE(sameBits(im, z.GetImag())) << z.GetImag() << " is not " << im;
}

TEST(KarComplex, HoldsTwoDoublesRealPartFirst)
{
    static_assert(sizeof(karComplex) == 2 * sizeof(double), "two fields and nothing else");
    static_assert(!std::is_polymorphic<karComplex>::value, "no virtual operation");
    static_assert(std::is_trivially_copyable<karComplex>::value, "a plain value");
    const karComplex z(3, 4);
    double fields[2];
    std::memcpy(fields, &z, sizeof fields);
    EXPECT_EQ(3.0, fields[0]);
    EXPECT_EQ(4.0, fields[1]);
}

TEST(KarComplex, ConstructsZeroPartsAndCopies)
{
    expectParts(karComplex(), 0.0, 0.0);
    const karComplex z(-1.5, 2.5);
    expectParts(z, -1.5, 2.5);
    expectParts(karComplex(z), -1.5, 2.5);
    karComplex other(7, 8);
    EXPECT_EQ(&other, &(other = z));
    expectParts(other, -1.5, 2.5);
}

TEST(KarComplex, SetsOnePartOrBoth)
{
    karComplex z(1, 2);
    z.SetReal(5);
    expectParts(z, 5, 2);
    z.SetImag(6);
    expectParts(z, 5, 6);
    z.SetData(-0.0, nan);
    expectParts(z, -0.0, nan);
}

TEST(KarComplex, ModulusIsComputedDirectlyWithoutScaling)
{
    EXPECT_EQ(5.0, karComplex(3, -4).mod());
    EXPECT_EQ(0.0, karComplex(-0.0, -0.0).mod());
    EXPECT_EQ(inf, karComplex(1e200, 0).mod()); // the square overflows
    EXPECT_EQ(0.0, karComplex(1e-200, 0).mod());
    EXPECT_EQ(inf, karComplex(inf, 1).mod());
    EXPECT_NE(karComplex(inf, nan).mod(), inf); // a hypot would say infinity
}

TEST(KarComplex, ConjugateNegatesTheImaginaryPart)
{
    const karComplex z(3, 0);
    expectParts(karComplex(z).conj(), 3, -0.0);
    expectParts(karComplex(-3, -2).conj(), -3, 2);
}

TEST(KarComplex, SqrIsTheSquareRoot)
{
    expectParts(karComplex(-3, 4).sqr(), 1, 2); // (1 + 2i)^2 = -3 + 4i
    expectParts(karComplex(-3, -4).sqr(), 1, -2);
    expectParts(karComplex(0, 8).sqr(), 2, 2);
    expectParts(karComplex(9, 0).sqr(), 3, 0);
    expectParts(karComplex(9, -0.0).sqr(), 3, -0.0);
}

TEST(KarComplex, SqrOfTheNegativeRealAxisAndOfZeroHasNoImaginaryPart)
{
    expectParts(karComplex(-4, 0).sqr(), 0, nan);
    expectParts(karComplex(0, 0).sqr(), 0, nan);
    expectParts(karComplex(-1, 1e-200).sqr(), 0, inf); // the square of the imaginary part underflows
}

TEST(KarComplex, AddsSubtractsAndNegatesByParts)
{
    expectParts(karComplex(1, 2) + karComplex(10, 20), 11, 22);
    expectParts(karComplex(1, 2) - karComplex(10, 30), -9, -28);
    expectParts(-karComplex(0, -2), -0.0, 2);
    expectParts(+karComplex(-0.0, -2), -0.0, -2);
}

TEST(KarComplex, MultipliesAndDividesByComplexNumbers)
{
    expectParts(karComplex(1, 2) * karComplex(3, 5), -7, 11); // 3 - 10, 6 + 5
    expectParts(karComplex(-7, 11) / karComplex(3, 5), 1, 2);
    expectParts(karComplex(1, 2) / karComplex(0, 0), nan, nan); // no test of the divisor: 0 / 0 in both parts
    expectParts(karComplex(1, 0) / karComplex(1e-200, 0), inf, nan);
}

TEST(KarComplex, ScalesBothPartsButAddsToTheRealPartAlone)
{
    expectParts(karComplex(1, -2) * 3.0, 3, -6);
    expectParts(karComplex(1, -2) / 4.0, 0.25, -0.5);
    expectParts(karComplex(1, -2) / 0.0, inf, -inf);
    expectParts(karComplex(1, -2) + 4.0, 5, -2);
    expectParts(karComplex(1, -0.0) + 4.0, 5, -0.0); // copied, not added to
}

TEST(KarComplex, OperatorsLeaveTheirOperandsAlone)
{
    karComplex a(1, 2);
    karComplex b(3, 4);
    (void)(a + b), (void)(a - b), (void)(a * b), (void)(a / b), (void)a.conj(), (void)a.sqr(), (void)-a;
    expectParts(a, 1, 2);
    expectParts(b, 3, 4);
    a = a * a; // an operand may be the receiver
    expectParts(a, -3, 4);
}

void addTo(TestHash &hash, const karComplex &z)
{
    hash.add(z.GetReal());
    hash.add(z.GetImag());
}

/// The formulas with each operand spelt out.
void addTranscription(TestHash &hash, double a, double b, double c, double d)
{
    const double ac = a * c, bd = b * d, cb = c * b, da = d * a;
    hash.add(a + c), hash.add(b + d);
    hash.add(a - c), hash.add(b - d);
    hash.add(ac - bd), hash.add(cb + da);
    const double cc = c * c, dd = d * d;
    const double n = cc + dd;
    hash.add((ac + bd) / n), hash.add((cb - da) / n);
    const double aa = a * a, bb = b * b;
    const double mod = std::sqrt(aa + bb);
    hash.add(mod);
    const double half = (mod + a) * 0.5;
    const double u = std::sqrt(half);
    const double twice = 2 * u;
    hash.add(u), hash.add(b / twice);
    hash.add(a * c), hash.add(b * c);
    hash.add(a / c), hash.add(b / c);
}

TEST(KarComplex, MillionCallsEqualThePlainSteps)
{
    GoldenRun run(81, 125000, 4933110823263592296u);
    while (run.next()) { // eight operations a step
        const double a = mixedDouble(run.random), b = mixedDouble(run.random), c = mixedDouble(run.random),
                     d = mixedDouble(run.random);
        const karComplex x(a, b), y(c, d);
        addTo(run.code, x + y);
        addTo(run.code, x - y);
        addTo(run.code, x * y);
        addTo(run.code, x / y);
        run.code.add(x.mod());
        addTo(run.code, x.sqr());
        addTo(run.code, x * c);
        addTo(run.code, x / c);
        addTranscription(run.plain, a, b, c, d);
    }
}

} // namespace
