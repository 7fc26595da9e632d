#include "kardpoint.h"

namespace {

/// What a negative angle is raised by.
constexpr double fullTurn = 6.283185307179586;

} // namespace

double karD_Point::AngleX(karD_Point o) const
{
    const double dx = o.x() - x();
    const double dy = o.y() - y();
    if (dx == 0 && dy == 0)
        return 0.0; // atan2 would read a direction out of the signs of two zeros
    const double angle = std::atan2(dy, dx);
    return angle < 0 ? angle + fullTurn : angle;
}

void karD_Point::RotateElement(double angle) { RotateElement(angle, 0.0, 0.0); }

void karD_Point::RotateElement(double angle, double cx, double cy)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    RotateElement(cosine, sine, cx, cy);
}
