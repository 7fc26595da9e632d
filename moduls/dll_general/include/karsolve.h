/// \file
/// Small linear systems, quadratic equations, and polynomials by Bairstow's iteration.
#ifndef KAR_SOLVE_H
#define KAR_SOLVE_H

#include "karcomplex.h"
#include "karexport.h"

class karMatrix;

/// \name Determinants and linear systems
/// \{

/// Solves a*x + b*y = e, c*x + d*y = f by Cramer's rule: with D = a*d - b*c, x = (d*e - b*f) / D, y = (a*f - c*e) / D.
/// Always true.
/// Note: D is not tested. A singular system leaves the infinities or not-a-numbers of the two divisions.
KAR_API bool Solve_2x2Matrix(const double &a, const double &b, const double &c, const double &d, const double &e,
                             const double &f, double &x, double &y);

/// The determinant a*d - b*c of the rows (a, b), (c, d).
KAR_API double Calculate_Determinante2(const double &a, const double &b, const double &c, const double &d);

/// The determinant of the rows (a, b, c), (d, e, f), (g, h, i) by Sarrus' rule, summed as
/// a*e*i + c*d*h + b*f*g - a*f*h - b*d*i - c*e*g.
KAR_API double Calculate_Determinante3(const double &a, const double &b, const double &c, const double &d,
                                       const double &e, const double &f, const double &g, const double &h,
                                       const double &i);

/// Solves A * x = b for `n` = 1 or 2 unknowns by Gaussian elimination with partial pivoting; the first row with the
/// largest element is the pivot. 1: `b` holds x. 0: singular, `b` is left alone. A is only read.
/// Note: the system need not be tridiagonal. Singular means a pivot that is exactly 0.0; there is no tolerance. The
/// rows have two elements, so a third column counts as 0: any other `n` gives 0.
KAR_API int gausstridiag(double (*const A)[2], double *const b, int n);

/// \}

/// \name Quadratic equations
/// Note: `Solve_SquareRoots` and `CalculateRoots` differ in what they count and in what they leave behind.
/// \{

/// Real roots of a*x*x + b*x + c = 0. 1: found, with x1 = sqrt(D) / (2*a) - b / (2*a) and x2 the other one, so that a
/// negative a makes x1 the smaller. 0: none.
/// |a| < 1e-50 is the linear equation, x1 = -c / b; where |b| < 1e-50 too, both outputs are 0 and the result is 0. What
/// is not a number counts as that small.
/// Note: the result doesn't count the roots. With D = b*b - 4*a*c below 0 the outputs stay as they were; a D that is
/// not a number gives 1 and outputs that are not numbers. The second output of the linear equation is a plain 0.0.
KAR_API int Solve_SquareRoots(const double &a, const double &b, const double &c, double &x1, double &x2);

/// Both roots of x*x + p*x + q = 0 as (re1, im1), (re2, im2): the larger real one first, or the one with the positive
/// imaginary part.
/// Note: a discriminant that is not a number counts as a negative one.
KAR_API void Solve_SquareRoots(const double &p, const double &q, double &re1, double &im1, double &re2, double &im2);

/// Both roots of x*x + p*x + q = 0 with complex coefficients: x1 = (S - p) / 2, x2 = (-p - S) / 2, S being the root of
/// p*p - 4*q with positive real part.
/// Note: S is formed like `karComplex::sqr`. Where p*p - 4*q is zero or a negative real, the imaginary parts are not
/// numbers.
KAR_API void Solve_SquareRoots(const karComplex &p, const karComplex &q, karComplex &x1, karComplex &x2);

/// Number of real roots of a*x*x + b*x + c = 0: 2 with x1 > x2, 1 with x1 = x2, or 0 with both outputs 0. With
/// t = b / a they are told apart by w = t*t*0.25 - c / a, |w| < 1e-50 being the double root.
/// Note: a is not tested. A w that is not a number counts as no root.
KAR_API int CalculateRoots(const double &a, const double &b, const double &c, double &x1, double &x2);

/// \}

/// \name Polynomials
/// Bairstow's iteration (L. Bairstow, 1914): Newton's method for a factor x*x + p*x + q, whose roots are stored and
/// which is then divided out. Coefficients are in descending powers, `a`[0] the leading one, and are overwritten by the
/// quotients. Roots come as the pair of the first factor, the pair of the next, then the last pair or the single root,
/// each pair in the order of the quadratic solver. A factor counts as found when the ratio
/// (|dp| + |dq|) / (|p| + |q|) of a pass is not above a bound, or is not a number.
///
/// Note: built for degrees 3 and 4. Below 3 a work entry in front of the arrays counts as 0 and nothing is stored
/// behind position `n`. `eqbairstow` and `EqBairstow` have work arrays for degree 4; beyond that their
/// entries count as 0.
/// \{

/// Roots of a real polynomial of degree `n`: `a` has the entries 0 to `n`, and so have `re` and `im`, which take the
/// roots at 1 to `n` and whose entry 0 is left alone. Starts at p = q = 0 and repeats while the ratio is above `eps`.
/// Note: the two numbers before `eps` are not read. There is no limit to the passes; some polynomials never end.
KAR_API void eqbairstow(int n, double *const a, double *const re, double *const im, double, double, double eps);

/// The same with a limit; the roots are bit by bit those of the form without one. Result: the number of roots stored.
/// `passes` on entry: the most passes allowed for one factor. On return: the passes used over all factors, or -1 if
/// a factor reached the limit; then only the roots of the factors before it are stored.
KAR_API int eqbairstow(int n, double *const a, double *const re, double *const im, double, double, double eps,
                       int &passes);

/// Roots of a complex polynomial of degree `n`: `a` and `x` have the entries 0 to `n`, the roots come at 1 to `n`, and
/// entry 0 of `x` is left alone. Starts at `p`, `q` and repeats while the ratio is above `eps`.
/// Note: the single root of an odd degree is real: its quotient without the imaginary part. There is no limit to the
/// passes; some polynomials never end.
KAR_API void EqBairstow(int n, karComplex *const a, karComplex *const x, const karComplex &p, const karComplex &q,
                        const double &eps);

/// The same with a limit; the roots are bit by bit those of the form without one. Result and `passes` as for
/// `eqbairstow`.
KAR_API int EqBairstow(int n, karComplex *const a, karComplex *const x, const karComplex &p, const karComplex &q,
                       const double &eps, int &passes);

/// Roots of a real polynomial whose coefficients are the one row of a matrix: a new matrix of 2 rows, real parts in the
/// first, and as many columns as `coefficients` has. Anything but one row gives an empty matrix. Starts at p = q = 0
/// and repeats while the ratio is at least 1e-50, in practice until the correction is exactly zero or not a number.
/// Note: the number of columns N counts as the degree, and the coefficient that is then missing is 0, so one root is 0
/// in exact arithmetic. All imaginary parts are stored in the first two columns, each pair over the one before, and
/// that of a single root is a 0 in the first column; the other columns stay 0. `coefficients` is overwritten although
/// it is const. The two numbers are not read. There is no limit to the passes.
KAR_API karMatrix Solve_Polynom_Roots(const karMatrix &coefficients, const double &, const double &);

/// \}

#endif
