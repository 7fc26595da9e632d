// Full turns taken off a large angle.
#ifndef KAR_FULL_TURNS_H
#define KAR_FULL_TURNS_H

#include <cmath>

namespace kar {

/// Takes most full turns off a large angle >= 0 with the result of taking them off one by one, each difference rounded.
/// Between two powers of two all angles are multiples of one unit, so each step takes the same number of units off, and
/// what is left after several steps is exact. The last step above the lower power is left for itself: its difference may
/// lie below, where the unit is smaller. Below 1024 the steps are few, and there a tie may round either way.
inline double withoutManyTurns(double angle)
{
    constexpr double fullTurn = 6.283185307179586;
    while (angle >= 1024) {
        const double step = angle - (angle - fullTurn);
        if (!(step > 0)) // a full turn no longer changes it, or it is infinite
            break;
        int exponent = 0;
        std::frexp(angle, &exponent);
        const double lowest = std::ldexp(0.5, exponent); // the power of two at or below
        const double count = std::floor((angle - lowest) / step) - 1;
        angle = count > 0 ? angle - (count * step) : angle - fullTurn;
    }
    return angle;
}

} // namespace kar

#endif
