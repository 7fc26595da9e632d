#include "karpoint.h"

void karPoint::RotateElement(double angle) { RotateElement(angle, 0, 0); }

void karPoint::RotateElement(double angle, int cx, int cy)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    RotateElement(cosine, sine, cx, cy);
}
