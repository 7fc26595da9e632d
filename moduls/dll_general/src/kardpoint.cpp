#include "kardpoint.h"

#include "angles.h"

double karD_Point::AngleX(karD_Point o) const
{
    const double dx = o.x() - x();
    const double dy = o.y() - y();
    if (dx == 0 && dy == 0)
        return 0.0; // atan2 would read a direction out of the signs of two zeros
    return kar::normalisedAngle(std::atan2(dy, dx));
}

void karD_Point::RotateElement(double angle) { RotateElement(angle, 0.0, 0.0); }

void karD_Point::RotateElement(double angle, double cx, double cy)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    RotateElement(cosine, sine, cx, cy);
}
