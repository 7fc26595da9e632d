// Prints how far the length of an elliptical arc is off, by the eccentricity: the table of docs/arclength.md.
#include "karintegral.h"

#include "ellipseperimeter.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr double fullTurn = 6.283185307179586;

/// The largest relative error over the arcs of 1/`parts` of a whole ellipse that begin at an end of an axis, or, for
/// the sum of the parts, of the whole.
double relativeError(double b, int parts, bool summed)
{
    const double exact = perimeter(1, b);
    double sum = 0, worst = 0;
    for (int part = 0; part < parts; ++part) {
        const double length =
            LengthOfEllipticalArc(0, 0, 1, b, 0, part * (fullTurn / parts), (part + 1) * (fullTurn / parts));
        sum += length;
        worst = std::max(worst, std::fabs(length * parts - exact) / exact);
    }
    return summed ? std::fabs(sum - exact) / exact : worst;
}

} // namespace

int main()
{
    std::puts("| eccentricity | b / a | whole | half | quarter | sum of 8 | sum of 32 |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const double b : {1.0, 0.99, 0.95, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2, 0.1, 0.05, 0.02, 0.01, 0.001})
        std::printf("| %.6f | %g | %.0e | %.0e | %.0e | %.0e | %.0e |\n", std::sqrt(1 - (b * b)), b,
                    relativeError(b, 1, false), relativeError(b, 2, false), relativeError(b, 4, false),
                    relativeError(b, 8, true), relativeError(b, 32, true));
    return 0;
}
