// Roots and integrals.
#include "expect.h"

#include <karintegral.h>
#include <karsolve.h>

#include <cmath>

static double square(double x, const double *const factor) { return factor[0] * x * x; }

int main()
{
    // x^2 - 3x + 2: two real roots, the larger one first.
    double x1 = 0.0;
    double x2 = 0.0;
    EXPECT(CalculateRoots(1.0, -3.0, 2.0, x1, x2) == 2 && x1 == 2.0 && x2 == 1.0);
    EXPECT(CalculateRoots(1.0, 0.0, 1.0, x1, x2) == 0 && x1 == 0.0 && x2 == 0.0);

    // (x^2 + 1) * (x - 1) * (x - 4), leading coefficient first. The roots come at 1 to 4.
    double coefficients[] = {1.0, -5.0, 5.0, -5.0, 4.0};
    double re[5] = {};
    double im[5] = {};
    int passes = 100; // the form without it may never end
    EXPECT(eqbairstow(4, coefficients, re, im, 0.0, 0.0, 1e-15, passes) == 4 && passes > 0);
    double sum = 0.0;
    int real = 0;
    for (int i = 1; i <= 4; ++i) {
        sum += re[i];
        real += std::fabs(im[i]) < 1e-9;
    }
    EXPECT(real == 2 && std::fabs(sum - 5.0) < 1e-9);

    // The integral of 3 * x^2 from 0 to 2, and the circumference of a circle of radius 1.
    const double factor = 3.0;
    EXPECT(std::fabs(integral(0.0, 2.0, square, &factor) - 8.0) < 1e-12);
    EXPECT(std::fabs(LengthOfEllipticalArc(0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 6.283185307179586) - 6.283185307179586) <
           1e-12);
    return 0;
}
