/// \file
/// Complex numbers as the solvers compute with them.
#ifndef KAR_COMPLEX_H
#define KAR_COMPLEX_H

#include "karexport.h"

#include <cmath>

/// A complex number: real part, then imaginary part. Nothing is scaled and no divisor is tested, so overflow,
/// infinities and not-a-numbers pass on.
class karComplex {
public:
    /// \name Construction
    /// \{
    karComplex() = default;                                                    ///< (0, 0).
    karComplex(const double &real, const double &imag) : re(real), im(imag) {} ///< Real part, imaginary part.
    karComplex(const karComplex &) = default;                                  ///< Copies both parts.
    /// \}

    karComplex &operator=(const karComplex &) = default; ///< Copies both parts.

    /// \name Reading
    /// \{
    double GetReal() const { return re; } ///< The real part as stored.
    double GetImag() const { return im; } ///< The imaginary part as stored.
    /// The modulus sqrt(re * re + im * im).
    /// Note: computed directly, so it is infinite where the square of a part is, and 0 where both squares underflow.
    double mod() const { return std::sqrt((re * re) + (im * im)); }
    /// \}

    /// \name Changing
    /// \{
    void SetReal(const double &real) { re = real; } ///< Stores the real part alone.
    void SetImag(const double &imag) { im = imag; } ///< Stores the imaginary part alone.
    /// Stores both parts.
    void SetData(const double &real, const double &imag)
    {
        const double newImag = imag; // `imag` may be the real part of this number
        re = real;
        im = newImag;
    }
    /// \}

    karComplex conj() const { return karComplex(re, -im); } ///< (re, -im).

    /// The square root (u, v) with u = sqrt((mod + re) * 0.5) >= 0 and v = im / (2 * u).
    /// Note: the root, not the square. The negative real axis has no branch of its own: there, and at 0, u is 0 and the
    /// imaginary part is 0 / 0, not a number.
    KAR_API karComplex sqr() const;

    /// \name Arithmetic with a complex number
    /// The quotient is ((a*c + b*d) / n, (c*b - d*a) / n) with n = c*c + d*d.
    /// \{
    karComplex operator+(const karComplex &o) const { return karComplex(re + o.re, im + o.im); } ///< Part by part.
    karComplex operator-(const karComplex &o) const { return karComplex(re - o.re, im - o.im); } ///< Part by part.
    /// (a*c - b*d, c*b + d*a) for (a, b) * (c, d).
    karComplex operator*(const karComplex &o) const
    {
        return karComplex((re * o.re) - (im * o.im), (o.re * im) + (o.im * re));
    }
    /// The quotient; `o` isn't tested for 0.
    karComplex operator/(const karComplex &o) const
    {
        const double n = (o.re * o.re) + (o.im * o.im);
        return karComplex(((re * o.re) + (im * o.im)) / n, ((o.re * im) - (o.im * re)) / n);
    }
    karComplex operator-() const { return karComplex(-re, -im); } ///< (-re, -im).
    karComplex operator+() const { return *this; }                ///< The number itself.
    /// \}

    /// \name Arithmetic with a real number
    /// \{

    /// Both parts times `factor`.
    karComplex operator*(const double &factor) const { return karComplex(re * factor, im * factor); }
    /// Both parts divided; 0 isn't tested for.
    karComplex operator/(const double &divisor) const { return karComplex(re / divisor, im / divisor); }
    /// Adds to the real part alone.
    karComplex operator+(const double &real) const { return karComplex(re + real, im); }
    /// \}

private:
    double re = 0.0;
    double im = 0.0;
};

#endif
