/// \file
/// Numerical integration, and the length of elliptical arcs.
#ifndef KAR_INTEGRAL_H
#define KAR_INTEGRAL_H

#include "karexport.h"

/// A function to integrate: takes the abscissa and the parameters that the caller handed over with it.
using karIntegrand = double (*)(double, const double *const);

/// \name Romberg's method (W. Romberg, 1955)
/// The tableau has seven rows of seven. Row 0, column j is the trapezoid value with 2^j intervals; row k, column j the
/// k-th extrapolation (4^k * row k-1 column j+1 - row k-1 column j) / (4^k - 1), so that row k has 7 - k entries.
/// Nothing is tested and nothing is allocated; the integrand is called at most 65 times.
/// \{

/// The integral from `lower` to `upper`: row 6, column 0 of a tableau of its own. Exact within rounding for polynomials
/// up to degree 13.
/// Note: where the trapezoid stage stops early, the columns that it has not reached are completed with the trapezoid
/// values of their levels, so a periodic integrand over a full turn comes out right.
KAR_API double integral(double lower, double upper, karIntegrand integrand, const double *const parameters);

/// Fills the tableau: row 0 by `TrapezesAdapt` with the bound 1e-14, then the six extrapolations.
/// Note: all six are formed however early the trapezoid stage stopped; they use what the caller left in the columns of
/// row 0 that were not reached.
KAR_API void Romberg(double lower, double upper, double (*const tableau)[7], karIntegrand integrand,
                     const double *const parameters);

/// Fills row 0 from column 0 on, each column with twice the intervals of the one before, until two neighbours differ by
/// at most `eps` or column 6 is done. Columns above the last one reached are left alone.
/// Note: eps = 0 fills column 0 only, and so does an infinite one. An integrand that is periodic over the interval, or
/// 0 at all points asked for, stops at column 1. A difference that is not a number doesn't stop.
KAR_API void TrapezesAdapt(double lower, double upper, double eps, double (*const tableau)[7], karIntegrand integrand,
                           const double *const parameters);

/// \}

/// \name Arc length
/// \{

/// Speed of the point (p[0]*cos t + p[1]*sin t, p[2]*cos t + p[3]*sin t) of an ellipse at the parameter `t`.
KAR_API double normDerivedElliptical(double t, const double *const parameters);

/// Length of the arc of an ellipse with semi-axes `a`, `b` between the values `start` and `end` of the parameter,
/// radians: the `integral` of `normDerivedElliptical`. Seven levels bound the accuracy: it falls as the ellipse gets
/// flatter and the arc longer, as docs/arclength.md tells.
/// Note: the centre is not read. `start` and `end` are not normalised; `end` < `start` gives a negative length.
KAR_API double LengthOfEllipticalArc(const double &cx, const double &cy, const double &a, const double &b,
                                     const double &rotation, const double &start, const double &end);

/// \}

#endif
