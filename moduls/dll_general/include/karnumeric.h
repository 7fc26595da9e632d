/// \file
/// Integer arithmetic that wraps at 32 bits, conversions from real to integer, and the tolerances of the geometry.
#ifndef KAR_NUMERIC_H
#define KAR_NUMERIC_H

/// What the headers share. A host may use it too.
namespace kar {

/// Decides that a length or a difference is zero.
constexpr double lengthTolerance = 1e-50;
/// Decides that a point lies on a segment or curve.
constexpr double curveTolerance = 1e-10;

/// The 32 bits of an unsigned number read as a signed one (two's complement).
constexpr int toSigned(unsigned bits)
{
    return bits <= 0x7fffffffu ? static_cast<int>(bits) : -static_cast<int>(~bits) - 1;
}

/// \name Sum, difference, product, negation and absolute value, wrapping at 32 bits. |INT_MIN| is INT_MIN.
/// \{

/// a + b.
constexpr int wrapAdd(int a, int b) { return toSigned(static_cast<unsigned>(a) + static_cast<unsigned>(b)); }
/// a - b.
constexpr int wrapSub(int a, int b) { return toSigned(static_cast<unsigned>(a) - static_cast<unsigned>(b)); }
/// a * b.
constexpr int wrapMul(int a, int b) { return toSigned(static_cast<unsigned>(a) * static_cast<unsigned>(b)); }
constexpr int wrapNeg(int a) { return toSigned(0u - static_cast<unsigned>(a)); } ///< -a.
constexpr int wrapAbs(int a) { return a < 0 ? wrapNeg(a) : a; }                  ///< |a|.
/// \}

/// \name Quotient truncated towards zero, and the remainder, with the sign of `a`; `b` isn't tested for 0
/// INT_MIN by -1 wraps like every other overflow: quotient INT_MIN, remainder 0.
/// \{
constexpr int wrapDiv(int a, int b) { return b == -1 ? wrapNeg(a) : a / b; } ///< a / b.
constexpr int wrapRem(int a, int b) { return b == -1 ? 0 : a % b; }          ///< a % b.
/// \}

/// Truncates towards zero. A value beyond the `int` range gives the nearest `int`, not-a-number gives 0.
constexpr int toInt(double value)
{
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<int>(value);
    if (value < 0)
        return -2147483647 - 1;
    return value > 0 ? 2147483647 : 0;
}

/// Rounds half away from zero: trunc(value - 0.5) below 0, otherwise trunc(value + 0.5), where `toInt` truncates.
constexpr int roundAway(double value) { return value < 0 ? toInt(value - 0.5) : toInt(value + 0.5); }

} // namespace kar

#endif
