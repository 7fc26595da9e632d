// Angles in radians: the constants, and how one is brought into a full turn.
#ifndef KAR_ANGLES_H
#define KAR_ANGLES_H

#include <cmath>

namespace kar {

constexpr double halfPi = 1.5707963267948966;
constexpr double pi = 3.141592653589793;
constexpr double threeHalfPi = 4.71238898038469;
/// What a negative angle is raised by.
constexpr double fullTurn = 6.283185307179586;

/// An angle of atan2 raised into [0, 2*pi).
inline double normalisedAngle(double angle) { return angle < 0 ? angle + fullTurn : angle; }

/// Takes most full turns off a large angle >= 0 with the result of taking them off one by one, each difference rounded.
/// Between two powers of two all angles are multiples of one unit, so each step takes the same number of units off, and
/// what is left after several steps is exact. The last step above the lower power is left for itself: its difference
/// may lie below, where the unit is smaller. Below 1024 the steps are few, and there a tie may round either way.
inline double withoutManyTurns(double angle)
{
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

/// What full turns added to or taken off one by one leave of any angle, each sum rounded: from 0 on, and as far as
/// `isTooLarge` is false. An angle that a full turn no longer changes stays.
template <class TooLarge>
double withinATurn(double angle, TooLarge isTooLarge)
{
    if (angle < 0)
        angle = -withoutManyTurns(-angle);
    while (angle < 0) {
        const double next = angle + fullTurn;
        if (next == angle)
            break;
        angle = next;
    }
    angle = withoutManyTurns(angle);
    while (isTooLarge(angle)) {
        const double next = angle - fullTurn;
        if (next == angle)
            break;
        angle = next;
    }
    return angle;
}

} // namespace kar

#endif
