#include "karrectx.h"

#include "angles.h"

namespace {

// Inclusive, in whichever order the two limits lie.
bool between(int value, int limit, int otherLimit)
{
    return limit <= otherLimit ? limit <= value && value <= otherLimit : otherLimit <= value && value <= limit;
}

// Does it hold for all corners? They are asked in their order, up to the first for which it doesn't.
template <class Test>
bool all(const karPoint (&corners)[4], Test holds)
{
    return holds(corners[0]) && holds(corners[1]) && holds(corners[2]) && holds(corners[3]);
}

} // namespace

karRectX::Corners karRectX::corners() const
{
    const int right = kar::wrapAdd(x(), Width());
    const int bottom = kar::wrapAdd(y(), Height());
    Corners corners = {{origin_, karPoint(right, y()), karPoint(right, bottom), karPoint(x(), bottom)}};
    const double cosine = std::cos(angle_);
    const double sine = std::sin(angle_);
    for (int i = 1; i < 4; ++i)
        corners.at[i].RotateElement(cosine, sine, x(), y());
    return corners;
}

karPoint karRectX::Point(int i) const
{
    karPoint corner = origin_;
    switch (i & 3) {
    case 0:
        return corner;
    case 1:
        corner.x(kar::wrapAdd(x(), Width()));
        break;
    case 2:
        corner = origin_ + size_;
        break;
    default:
        corner.y(kar::wrapAdd(y(), Height()));
        break;
    }
    corner.RotateElement(angle_, x(), y());
    return corner;
}

karRect karRectX::extent() const
{
    const Corners c = corners();
    const karPoint &p0 = c.at[0];
    const karPoint &p1 = c.at[1];
    const karPoint &p2 = c.at[2];
    const karPoint &p3 = c.at[3];
    if (p0.x() == p1.x() || p0.y() == p1.y())
        return karRect(p0.x(), p0.y(), p2.x(), p2.y());
    if (between(p1.x(), p0.x(), p2.x()) && between(p3.x(), p0.x(), p2.x()))
        return karRect(p0.x(), p1.y(), p2.x(), p3.y());
    return karRect(p1.x(), p0.y(), p3.x(), p2.y());
}

void karRectX::normLage()
{
    angle_ = kar::withinATurn(angle_, [](double angle) { return angle >= kar::fullTurn; });
    if (angle_ < kar::halfPi)
        return;
    if (angle_ < kar::pi) {
        origin_ = Point(3);
        angle_ -= kar::halfPi;
        size_ = karDimension(Height(), Width());
    } else if (angle_ < kar::threeHalfPi) {
        origin_ = Point(2);
        angle_ -= kar::pi;
    } else {
        origin_ = Point(1);
        angle_ -= kar::threeHalfPi;
        size_ = karDimension(Height(), Width());
    }
}

bool karPoint::isFullIn(karRectX &r) const
{
    r.normLage();
    const karRectX::Corners c = r.corners();
    const karPoint &p0 = c.at[0];
    const karPoint &p1 = c.at[1];
    const karPoint &p2 = c.at[2];
    const karPoint &p3 = c.at[3];
    const int px = x();
    const int py = y();
    if (!between(px, p3.x(), p1.x()) || !between(py, p0.y(), p2.y()))
        return false;
    const double t = std::tan(r.Ang());
    if (t == 0) // an unturned box: the limits at every y are its sides
        return true;

    // The edges from p0 to p1 and from p3 to p2 rise by t, those from p0 to p3 and from p1 to p2 stand across them.
    const auto along = [&](const karPoint &p) {
        return kar::wrapAdd(p.x(), kar::roundAway(kar::wrapSub(py, p.y()) / t));
    };
    const auto across = [&](const karPoint &p) {
        return kar::wrapAdd(p.x(), kar::roundAway(kar::wrapNeg(kar::wrapSub(py, p.y())) * t));
    };
    const int left = between(py, p0.y(), p3.y()) ? across(p0) : along(p3);
    const int right = between(py, p0.y(), p1.y()) ? along(p0) : across(p1);
    return between(px, left, right);
}

bool karRectX::isFullIn(karRect &r) const
{
    return all(corners().at, [&](const karPoint &corner) { return corner.isFullIn(r); });
}

bool karRectX::isFullIn(karRectX &r)
{
    return all(corners().at, [&](const karPoint &corner) { return corner.isFullIn(r); });
}

namespace {

// Does an edge of corner `a`, towards `b` at the tangent `t` or towards `d` across it, meet a side of `r`?
// `u` is 1.0 / t.
bool crosses(const karPoint &a, const karPoint &b, const karPoint &d, const karRect &r, double t, double u)
{
    if (!between(a.y(), r.top(), r.bottom())) {
        const int level = between(r.top(), a.y(), r.bottom()) ? r.top() : r.bottom();
        const int dy = kar::wrapSub(level, a.y());
        int alongX = kar::wrapNeg(r.left());
        if (between(level, a.y(), b.y())) {
            alongX = kar::wrapAdd(a.x(), kar::toInt(dy * u));
            if (between(alongX, r.left(), r.right()))
                return true;
        }
        int acrossX = alongX;
        if (between(level, a.y(), d.y())) {
            acrossX = kar::wrapSub(a.x(), kar::toInt(dy * t));
            if (between(acrossX, r.left(), r.right()))
                return true;
        }
        if (between(r.left(), acrossX, alongX))
            return true;
    }
    if (!between(a.y(), r.left(), r.right())) { // the y of the corner against the limits in x
        const int level = between(r.left(), a.x(), r.right()) ? r.left() : r.right();
        const int dx = kar::wrapSub(level, a.x());
        if (between(level, a.x(), b.x()) && between(kar::wrapAdd(a.y(), kar::toInt(dx * t)), r.top(), r.bottom()))
            return true;
        if (between(level, a.x(), d.x()) && between(kar::wrapSub(a.y(), kar::toInt(dx * u)), r.top(), r.bottom()))
            return true;
    }
    return false;
}

} // namespace

bool karRectX::isVisibleIn(karRect &r) const
{
    const Corners c = corners();
    const karPoint(&p)[4] = c.at;
    for (const karPoint &corner : p)
        if (corner.isFullIn(r))
            return true;

    if (all(p, [&](const karPoint &q) { return q.x() < r.left(); }) ||
        all(p, [&](const karPoint &q) { return q.x() > r.right(); }) ||
        all(p, [&](const karPoint &q) { return q.y() > r.bottom(); }) ||
        all(p, [&](const karPoint &q) { return q.y() < r.top(); }))
        return false;
    if (p[0].x() == p[1].x() || p[0].x() == p[3].x())
        return true;

    const double t = std::tan(angle_);
    const double u = 1.0 / t;
    return crosses(p[0], p[1], p[3], r, t, u) || crosses(p[2], p[3], p[1], r, t, u);
}

bool karRect::isVisibleIn(karRectX &r) { return r.isVisibleIn(*this); }
