#include "karrect.h"

void karRect::RotateElement(double angle) { RotateElement(angle, 0, 0); }

void karRect::RotateElement(double cosine, double sine) { RotateElement(cosine, sine, 0, 0); }

void karRect::RotateElement(double angle, int cx, int cy)
{
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    RotateElement(cosine, sine, cx, cy);
}

void karRect::RotateElement(double cosine, double sine, int cx, int cy)
{
    topLeft_.RotateElement(cosine, sine, cx, cy);
    bottomRight_.RotateElement(cosine, sine, cx, cy);
}

bool karRect::setintersects(const karRect &o)
{
    const karPoint lower = topLeft_.Max(o.topLeft_);
    const karPoint upper = bottomRight_.Min(o.bottomRight_);
    if (!(lower <= upper)) {
        makeNull();
        return false;
    }
    topLeft_ = lower;
    bottomRight_ = upper;
    return true;
}

namespace {

// Ordered stores into the lower or the upper of two opposite places.

void storeLower(double value, double &lower, double &upper)
{
    if (value < upper) {
        lower = value;
    } else {
        lower = upper;
        upper = value;
    }
}

void storeUpper(double value, double &lower, double &upper)
{
    if (value > lower) {
        upper = value;
    } else {
        upper = lower;
        lower = value;
    }
}

} // namespace

// References that come in may lie in the receiver, since `topRight()` and `bottomLeft()` hand its corners out: what is
// needed after the first store is copied before it.

void karD_Rect::left(const double &value) { storeLower(value, bottomLeft_.x(), topRight_.x()); }
void karD_Rect::right(const double &value) { storeUpper(value, bottomLeft_.x(), topRight_.x()); }
void karD_Rect::bottom(const double &value) { storeLower(value, bottomLeft_.y(), topRight_.y()); }
void karD_Rect::top(const double &value) { storeUpper(value, bottomLeft_.y(), topRight_.y()); }

void karD_Rect::topBottom(const double &newTop, const double &newBottom)
{
    const double entryBottom = newBottom;
    set_top(newTop);
    set_bottom(entryBottom);
}

void karD_Rect::leftRight(const double &newLeft, const double &newRight)
{
    const double entryRight = newRight;
    set_left(newLeft);
    set_right(entryRight);
}

void karD_Rect::operator+=(const karD_Point &p)
{
    const double dx = p.x();
    const double dy = p.y();
    bottomLeft_.MoveElement(dx, dy);
    topRight_.MoveElement(dx, dy);
}

void karD_Rect::operator-=(const karD_Point &p)
{
    const double dx = p.x();
    const double dy = p.y();
    bottomLeft_.MoveElement(-dx, -dy);
    topRight_.MoveElement(-dx, -dy);
}

karD_Rect &karD_Rect::InflateRect_X(const double &d)
{
    const double outwards = left() <= right() ? d : -d;
    add_left(-outwards);
    add_right(outwards);
    return *this;
}

karD_Rect &karD_Rect::InflateRect_Y(const double &d)
{
    const double outwards = bottom() <= top() ? d : -d;
    add_bottom(-outwards);
    add_top(outwards);
    return *this;
}

karD_Rect &karD_Rect::InflateRect(const double &d)
{
    const double both = d;
    InflateRect_X(both);
    return InflateRect_Y(both);
}

bool karD_Rect::overlapped(karD_Rect &o)
{
    o.NormalizeRect();
    NormalizeRect();
    return !(left() > o.right() || right() < o.left() || top() < o.bottom() || bottom() > o.top());
}

bool karD_Rect::setintersects(const karD_Rect &o)
{
    if (!intersects(o)) {
        makeNull();
        return false;
    }
    const karD_Rect source = o; // `o` may be the receiver
    bottomLeft(source.bottomLeft_);
    topRight(source.topRight_);
    return true;
}

karD_Rect karD_Rect::average(karD_Rect &o)
{
    karD_Rect common;
    if (overlapped(o)) {
        common.bottomLeft_ = bottomLeft_.Max(o.bottomLeft_);
        common.topRight_ = topRight_.Min(o.topRight_);
    }
    return common;
}
