// The perimeter of an ellipse by a method that shares nothing with the library's.
#ifndef KAR_TEST_ELLIPSE_PERIMETER_H
#define KAR_TEST_ELLIPSE_PERIMETER_H

#include <cmath>

/// Perimeter of an ellipse by the arithmetic-geometric mean: 2 pi / M * (a^2 - sum of 2^(n-1) c(n)^2).
inline double perimeter(double a, double b)
{
    double x = a, y = b;
    double sum = (a * a) - (((a * a) - (b * b)) / 2);
    double weight = 1;
    while (std::fabs(x - y) > 1e-9 * x) {
        const double c = (x - y) / 2;
        const double mean = (x + y) / 2;
        y = std::sqrt(x * y);
        x = mean;
        sum -= weight * (c * c);
        weight *= 2;
    }
    return 6.283185307179586 * sum / ((x + y) / 2);
}

#endif
