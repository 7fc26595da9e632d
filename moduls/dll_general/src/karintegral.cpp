#include "karintegral.h"

#include "ellipseaxes.h"

#include <cmath>

namespace {

constexpr int levels = 7;
constexpr double trapezoidTolerance = 1e-14;

/// The trapezoid values of one integral, level by level.
class Trapezoids {
public:
    Trapezoids(double from, double to, karIntegrand function, const double *functionParameters)
        : lower(from), h(to - from), integrand(function), parameters(functionParameters)
    {}

    double first(double upper) const
    {
        const double atLower = integrand(lower, parameters);
        const double atUpper = integrand(upper, parameters);
        return (h * (atLower + atUpper)) * 0.5;
    }

    /// The value with twice the intervals of `previous`.
    double next(double previous)
    {
        h *= 0.5;
        intervals *= 2;
        double sum = 0.0;
        for (int i = 1; i < intervals; i += 2)
            sum += integrand(lower + (i * h), parameters);
        return (sum * h) + (0.5 * previous);
    }

private:
    double lower;
    double h;
    karIntegrand integrand;
    const double *parameters;
    int intervals = 1;
};

/// Fills row 0 up to the level where it settles. Result: that level.
int fillUntilSettled(Trapezoids &trapezoids, double upper, double eps, double *row)
{
    int level = 0;
    row[0] = trapezoids.first(upper);
    double difference = 2 * eps;
    while (!(std::fabs(difference) <= eps) && level < levels - 1) {
        row[level + 1] = trapezoids.next(row[level]);
        difference = row[level + 1] - row[level];
        ++level;
    }
    return level;
}

void extrapolate(double (*const tableau)[7])
{
    double w = 1;
    for (int k = 1; k < levels; ++k) {
        w *= 4;
        for (int j = 0; j < levels - k; ++j)
            tableau[k][j] = ((w * tableau[k - 1][j + 1]) - tableau[k - 1][j]) / (w - 1);
    }
}

} // namespace

double integral(double lower, double upper, karIntegrand integrand, const double *const parameters)
{
    double tableau[levels][levels] = {};
    Trapezoids trapezoids(lower, upper, integrand, parameters);
    for (int level = fillUntilSettled(trapezoids, upper, trapezoidTolerance, tableau[0]); level < levels - 1; ++level)
        tableau[0][level + 1] = trapezoids.next(tableau[0][level]);
    extrapolate(tableau);
    return tableau[levels - 1][0];
}

void Romberg(double lower, double upper, double (*const tableau)[7], karIntegrand integrand,
             const double *const parameters)
{
    TrapezesAdapt(lower, upper, trapezoidTolerance, tableau, integrand, parameters);
    extrapolate(tableau);
}

void TrapezesAdapt(double lower, double upper, double eps, double (*const tableau)[7], karIntegrand integrand,
                   const double *const parameters)
{
    Trapezoids trapezoids(lower, upper, integrand, parameters);
    fillUntilSettled(trapezoids, upper, eps, tableau[0]);
}

double normDerivedElliptical(double t, const double *const parameters)
{
    const double cosine = std::cos(t);
    const double sine = std::sin(t);
    const double x = (parameters[1] * cosine) - (parameters[0] * sine);
    const double y = (parameters[3] * cosine) - (parameters[2] * sine);
    return std::sqrt((x * x) + (y * y));
}

double LengthOfEllipticalArc(const double &, const double &, const double &a, const double &b, const double &rotation,
                             const double &start, const double &end)
{
    const kar::EllipseAxes axes(a, b, rotation);
    const double parameters[4] = {axes.P, axes.Q, axes.R, axes.S};
    return integral(start, end, normDerivedElliptical, parameters);
}
