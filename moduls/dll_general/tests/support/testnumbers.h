// Reals that meet the cases of numeric code: ordinary ones, small integers, values about the tolerances, any bits.
#ifndef KAR_TEST_NUMBERS_H
#define KAR_TEST_NUMBERS_H

#include "testrandom.h"

#include <cmath>
#include <cstdint>
#include <cstring>

/// [-1, 1) * 2^e, e from `low` to `high`.
inline double scaledDouble(TestRandom &random, int low, int high)
{
    const double fraction = random.between(-1.0, 1.0); // drawn first, whatever order a compiler gives arguments
    return std::ldexp(fraction, random.between(low, high));
}

/// A real of a mixed lot; half of them in [-10, 10).
inline double mixedDouble(TestRandom &random)
{
    switch (random.below(16)) {
    case 0:
        return random.anyDouble();
    case 1:
        return scaledDouble(random, -175, -155); // about 1e-50
    case 2:
        return scaledDouble(random, -60, 60);
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
        return random.between(-3, 3);
    default:
        return random.between(-10.0, 10.0);
    }
}

/// The same bits, or both not a number.
inline bool sameBits(double a, double b)
{
    if (a != a || b != b)
        return a != a && b != b;
    std::uint64_t bitsOfA, bitsOfB;
    std::memcpy(&bitsOfA, &a, sizeof a);
    std::memcpy(&bitsOfB, &b, sizeof b);
    return bitsOfA == bitsOfB;
}

#define EXPECT_BITS(expected, actual) EXPECT_TRUE(sameBits(expected, actual)) << (actual) << " is not " << (expected)

#endif
