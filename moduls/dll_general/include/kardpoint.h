/// \file
/// Positions and extents of the drawing plane, and the way between them and the pixel grid.
#ifndef KAR_DPOINT_H
#define KAR_DPOINT_H

#include "karpoint.h"

#include <cmath>

class kar2DVector;

namespace kar {

/// What `karD_Point` and `karD_Dimension` share; `Self` is the class itself and `Id` its object id.
/// Nothing is tested: a division by 0 gives infinity or not-a-number, which pass on.
template <class Self, ObjektIdies Id>
class RealPlanePair : public tUniquePair<double> {
public:
    using tUniquePair<double>::tUniquePair;

    /// \name Type identity, of the class alone and not virtual
    /// \{
    ObjektIdies GetType() const { return Id; }             ///< `Id`.
    int IsType(ObjektIdies id) const { return id == Id; }  ///< Equality with `Id`.
    int CanCast(ObjektIdies id) const { return id == Id; } ///< Equality with `Id`.
    /// \}

    /// \name Relations: 1 or 0
    /// Exact, without tolerance.
    /// Note: the four relations hold only if they hold for x and for y. They are no order and no complements of each
    /// other.
    /// \{
    int operator==(const Self &o) const { return x() == o.x() && y() == o.y(); } ///< Both places are equal.
    int operator!=(const Self &o) const { return x() != o.x() || y() != o.y(); } ///< A place differs.
    int operator>=(Self o) const { return x() >= o.x() && y() >= o.y(); }        ///< It holds for x and for y.
    int operator<=(Self o) const { return x() <= o.x() && y() <= o.y(); }        ///< It holds for x and for y.
    int operator>(Self o) const { return x() > o.x() && y() > o.y(); }           ///< It holds for x and for y.
    int operator<(Self o) const { return x() < o.x() && y() < o.y(); }           ///< It holds for x and for y.
    /// \}

    /// \name Arithmetic, place by place
    /// \{

    /// Each place by itself, in double arithmetic.
    Self operator-() const { return Self(-x(), -y()); }
    Self operator*(double factor) const { return Self(x() * factor, y() * factor); }
    Self operator/(double divisor) const { return Self(x() / divisor, y() / divisor); }
    Self &operator*=(double factor) { return store(x() * factor, y() * factor); }
    Self &operator/=(double divisor) { return store(x() / divisor, y() / divisor); }
    Self &operator+=(const Self &o) { return store(x() + o.x(), y() + o.y()); }
    Self &operator-=(const Self &o) { return store(x() - o.x(), y() - o.y()); }
    /// \}

    /// Inner product x * o.x + y * o.y.
    /// Note: the right operand is a pointer; without one `*` is the product with a number.
    double operator*(const Self *o) const { return (x() * o->x()) + (y() * o->y()); }

    /// \name Lesser and greater value of each place
    /// A place that can't be compared, not being a number, stays that of the receiver.
    /// \{

    /// The lesser x and the lesser y.
    Self Min(const Self &o) const { return Self(o.x() < x() ? o.x() : x(), o.y() < y() ? o.y() : y()); }
    /// The greater x and the greater y.
    Self Max(const Self &o) const { return Self(o.x() > x() ? o.x() : x(), o.y() > y() ? o.y() : y()); }
    /// \}

    /// \name Distances
    /// \{
    double DistAbs(Self o) const { return std::fabs(x() - o.x()) + std::fabs(y() - o.y()); } ///< |dx| + |dy|.
    /// The greater of |dx| and |dy|; |dy| unless |dx| is strictly greater.
    double DistMax(Self o) const
    {
        const double absX = std::fabs(x() - o.x());
        const double absY = std::fabs(y() - o.y());
        return absX > absY ? absX : absY;
    }
    /// dx * dx + dy * dy.
    double DistSqr(Self o) const
    {
        const double dx = x() - o.x();
        const double dy = y() - o.y();
        return (dx * dx) + (dy * dy);
    }
    double DistEuk(Self o) const { return std::sqrt(DistSqr(o)); } ///< Square root of `DistSqr`.
    /// \}

protected:
    /// Stores both places and gives the object in its own type.
    Self &store(double newX, double newY)
    {
        x(newX);
        y(newY);
        return static_cast<Self &>(*this);
    }
};

} // namespace kar

/// An extent of the drawing plane: `First` is the width, `Second` the height. It may be negative.
/// Note: `dimension * 0` is ambiguous, since the literal is a null pointer too; write 0.0.
class karD_Dimension : public kar::RealPlanePair<karD_Dimension, KAR_ID_D_DIMENSION> {
public:
    /// \name Construction
    /// \{
    karD_Dimension() = default;                                 ///< (0, 0).
    karD_Dimension(double v) : RealPlanePair(v, v) {}           ///< (v, v).
    karD_Dimension(double a, double b) : RealPlanePair(a, b) {} ///< Width `a`, height `b`.
    karD_Dimension(const karD_Dimension &) = default;           ///< Copies width and height.
    /// \}

    /// \name Assignment
    /// \{
    karD_Dimension &operator=(const karD_Dimension &) = default; ///< Copies width and height.
    karD_Dimension &operator=(double v) { return store(v, v); }  ///< Both places become `v`.
    /// \}

    /// \name Reading
    /// \{

    /// Width and height as stored; the forms with `Val` are the same.
    double width() const { return First(); }
    double widthVal() const { return First(); }
    double height() const { return Second(); }
    double heightVal() const { return Second(); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one of the two; the other stays.
    void width(double value) { First(value); }
    void height(double value) { Second(value); }
    /// \}

    /// The total order, y before x: -1, 0 or 1; 0 if the deciding difference is not a number.
    int Cmp(const karD_Dimension &o) const
    {
        double d = y() - o.y();
        if (d == 0)
            d = x() - o.x();
        if (d < 0)
            return -1;
        return d > 0 ? 1 : 0;
    }

    /// \name Arithmetic
    /// \{
    using RealPlanePair::operator-;
    /// Width with width, height with height.
    karD_Dimension operator+(karD_Dimension o) const { return karD_Dimension(x() + o.x(), y() + o.y()); }
    karD_Dimension operator-(karD_Dimension o) const { return karD_Dimension(x() - o.x(), y() - o.y()); }
    /// \}
};

/// A position of the drawing plane. x grows to the right, y upwards; angles are radians, counter-clockwise positive.
/// Note: sums with a bare number (`point + 3`) and assignments of a braced pair (`point = {1, 2}`) are ambiguous, since
/// several operand types can be made of them. `*`, `/`, `*=`, `/=` and `=` take an `int` or a `double`; any other
/// number type needs a cast.
class karD_Point : public kar::RealPlanePair<karD_Point, KAR_ID_D_POINT> {
public:
    /// \name Construction
    /// \{
    karD_Point() = default;                                        ///< (0, 0).
    karD_Point(double v) : RealPlanePair(v, v) {}                  ///< (v, v).
    karD_Point(double a, double b) : RealPlanePair(a, b) {}        ///< x is `a`, y is `b`.
    karD_Point(const karD_Point &) = default;                      ///< Copies x and y.
    karD_Point(const karPoint &p) : RealPlanePair(p.x(), p.y()) {} ///< Exact.
    /// The placed copy of `p`: see `karparamblock.h`.
    KAR_API karD_Point(const karD_Point &p, karParamBlock *block);
    /// \}

    /// \name Assignment
    /// \{
    karD_Point &operator=(const karD_Point &) = default;                     ///< Copies x and y.
    karD_Point &operator=(const karPoint &p) { return store(p.x(), p.y()); } ///< Exact.
    karD_Point &operator=(const double &v) { return store(v, v); }           ///< Both places become `v`.
    karD_Point &operator=(const int &v) { return store(v, v); }              ///< \overload
    karD_Point &Set(double newX, double newY) { return store(newX, newY); }  ///< Stores both places.
    /// \}

    /// Rounds half away from zero: trunc(v - 0.5) for a place below 0, otherwise trunc(v + 0.5). Beyond the `int`
    /// range it saturates, not-a-number gives 0.
    /// Note: the sum is rounded before it is truncated, so 0.49999999999999994 gives 1.
    operator karPoint() const { return karPoint(kar::roundAway(x()), kar::roundAway(y())); }

    /// The total order, y before x: the difference of the y, or that of the x where the y are equal.
    /// Note: the difference itself, not its sign as in `karD_Dimension`.
    double Cmp(const karD_Point &o) const
    {
        const double d = y() - o.y();
        return d == 0 ? x() - o.x() : d;
    }

    /// \name Arithmetic, place by place
    /// An integer operand is converted first: the product, the quotient and the sum are real.
    /// \{
    using RealPlanePair::operator-;
    using RealPlanePair::operator*;
    using RealPlanePair::operator/;
    using RealPlanePair::operator+=;
    using RealPlanePair::operator-=;
    using RealPlanePair::operator*=;
    using RealPlanePair::operator/=;
    /// Each place by itself, in double arithmetic.
    karD_Point operator+(const karD_Point &o) const { return karD_Point(x() + o.x(), y() + o.y()); }
    karD_Point operator-(const karD_Point &o) const { return karD_Point(x() - o.x(), y() - o.y()); }
    karD_Point operator+(const karD_Dimension &d) const { return karD_Point(x() + d.x(), y() + d.y()); }
    karD_Point operator-(const karD_Dimension &d) const { return karD_Point(x() - d.x(), y() - d.y()); }
    karD_Point operator+(const karPoint &o) const { return karD_Point(x() + o.x(), y() + o.y()); }
    karD_Point operator-(const karPoint &o) const { return karD_Point(x() - o.x(), y() - o.y()); }
    /// With the stored x and y of the vector: see `karvector.h`.
    inline karD_Point operator+(const kar2DVector &v) const;
    inline karD_Point operator-(const kar2DVector &v) const; ///< \overload
    karD_Point &operator+=(const karD_Dimension &d) { return store(x() + d.x(), y() + d.y()); }
    karD_Point &operator-=(const karD_Dimension &d) { return store(x() - d.x(), y() - d.y()); }
    karD_Point &operator+=(const karPoint &o) { return store(x() + o.x(), y() + o.y()); }
    karD_Point &operator-=(const karPoint &o) { return store(x() - o.x(), y() - o.y()); }
    karD_Point operator*(int factor) const { return *this * static_cast<double>(factor); }
    karD_Point operator/(int divisor) const { return *this / static_cast<double>(divisor); }
    karD_Point &operator*=(int factor) { return *this *= static_cast<double>(factor); }
    karD_Point &operator/=(int divisor) { return *this /= static_cast<double>(divisor); }
    /// Inner product with a point of the grid.
    double operator*(const karPoint *o) const { return (x() * o->x()) + (y() * o->y()); }
    /// \}

    /// \name Lesser and greater value of each place, also beside a point of the grid
    /// \{
    using RealPlanePair::Max;
    using RealPlanePair::Min;
    karD_Point Min(const karPoint &o) const { return Min(karD_Point(o)); } ///< The lesser x and the lesser y.
    karD_Point Max(const karPoint &o) const { return Max(karD_Point(o)); } ///< The greater x and the greater y.
    /// \}

    /// \name Distances and direction
    /// \{
    double DistX(karD_Point o) const { return std::fabs(x() - o.x()); } ///< |dx|.
    double DistY(karD_Point o) const { return std::fabs(y() - o.y()); } ///< |dy|.
    /// The signed difference (x - o.x, y - o.y).
    karD_Dimension DistDim(const karD_Point &o) const { return karD_Dimension(x() - o.x(), y() - o.y()); }
    /// The direction from this point to `o`, in [0, 2 * pi), without tolerance; 0 if the two coincide.
    KAR_API double AngleX(karD_Point o) const;
    /// \}

    /// \name Changing
    /// \{
    void setNull() { store(0.0, 0.0); }                                   ///< To (0, 0).
    void MoveElement(double dx, double dy) { store(x() + dx, y() + dy); } ///< Adds (dx, dy).
    /// \}

    /// \name Rotation about the origin or (cx, cy), by an angle in radians or by its cosine and sine
    /// With dx, dy the difference from the centre, x becomes (cx + dx * c) - dy * s and y becomes
    /// (cy + dx * s) + dy * c. Nothing is rounded.
    /// \{

    /// Turns the point where it stands.
    KAR_API void RotateElement(double angle);
    void RotateElement(double cosine, double sine) { RotateElement(cosine, sine, 0.0, 0.0); }
    KAR_API void RotateElement(double angle, double cx, double cy);
    void RotateElement(double cosine, double sine, double cx, double cy)
    {
        const double dx = x() - cx;
        const double dy = y() - cy;
        store((cx + (dx * cosine)) - (dy * sine), (cy + (dx * sine)) + (dy * cosine));
    }
    /// \}
};

/// As `karD_Point::operator karPoint`.
inline karPoint &karPoint::operator=(const karD_Point &p) { return *this = karPoint(p); }

#endif
