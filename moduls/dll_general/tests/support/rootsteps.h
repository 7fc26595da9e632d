// The steps of Bairstow's iteration written out plainly, apart from the library.
#ifndef KAR_TEST_ROOT_STEPS_H
#define KAR_TEST_ROOT_STEPS_H

#include <cmath>

namespace plain {

struct Complex {
    double re, im;
};

inline Complex operator+(Complex z, Complex w) { return {z.re + w.re, z.im + w.im}; }
inline Complex operator-(Complex z, Complex w) { return {z.re - w.re, z.im - w.im}; }
inline Complex operator*(Complex z, Complex w) { return {z.re * w.re - z.im * w.im, w.re * z.im + w.im * z.re}; }
inline Complex operator/(Complex z, Complex w)
{
    const double n = w.re * w.re + w.im * w.im;
    return {(z.re * w.re + z.im * w.im) / n, (w.re * z.im - w.im * z.re) / n};
}
inline Complex operator-(Complex z) { return {-z.re, -z.im}; }
inline double real(Complex z) { return z.re; }
inline double real(double x) { return x; }
inline double size(Complex z) { return std::sqrt(z.re * z.re + z.im * z.im); }
inline double size(double x) { return std::fabs(x); }

inline void quadratic(double p, double q, Complex *x)
{
    const double D = p * p - 4 * q, m = -0.5 * p, h = 0.5 * std::sqrt(std::fabs(D));
    if (D >= 0)
        x[0] = {h + m, 0}, x[1] = {m - h, 0};
    else
        x[0] = {m, h}, x[1] = {m, -h};
}

inline void quadratic(Complex p, Complex q, Complex *x)
{
    const Complex w = {p.re * p.re - p.im * p.im - 4 * q.re, p.im * p.re + p.re * p.im - 4 * q.im};
    const double u = std::sqrt((size(w) + w.re) * 0.5);
    const Complex S = {u, w.im / (2 * u)};
    x[0] = {(S.re - p.re) / 2, (S.im - p.im) / 2};
    x[1] = {(-p.re - S.re) / 2, (-p.im - S.im) / 2};
}

/// Roots 0 to n - 1 for degree 3 or 4; the number of them. `a` is left with the quotient, `passes` as in the library.
template <class Number>
int bairstow(int n, Number *a, Number p, Number q, Complex *x, int &passes, double eps = 1e-10)
{
    Number b[5], c[5];
    double ratio;
    int used = 0;
    b[0] = c[0] = a[0];
    do {
        if (used >= passes) {
            passes = -1;
            return 0;
        }
        ++used;
        b[1] = a[1] - p * b[0];
        c[1] = b[1] - p * c[0];
        for (int k = 2; k <= n; ++k)
            b[k] = a[k] - p * b[k - 1] - q * b[k - 2];
        for (int k = 2; k <= n; ++k)
            c[k] = b[k] - p * c[k - 1] - q * c[k - 2];
        const Number d = b[n - 1] - c[n - 1];
        const Number D = c[n - 2] * c[n - 2] + d * c[n - 3];
        const Number dp = (c[n - 2] * b[n - 1] - c[n - 3] * b[n]) / D;
        const Number dq = (d * b[n - 1] + c[n - 2] * b[n]) / D;
        p = p + dp;
        q = q + dq;
        ratio = (size(dp) + size(dq)) / (size(p) + size(q));
    } while (ratio > eps);
    passes = used;
    quadratic(p, q, x);
    for (int k = 1; k <= n - 2; ++k)
        a[k] = b[k];
    if (n == 4)
        quadratic(b[1] / b[0], b[2] / b[0], x + 2);
    else
        x[2] = {real(-b[1] / b[0]), 0};
    return n;
}

} // namespace plain

#endif
