/// \file
/// Positions and extents on the pixel grid.
#ifndef KAR_POINT_H
#define KAR_POINT_H

#include "karexport.h"
#include "karnumeric.h"
#include "tpair.h"

#include <cmath>

class karD_Point;
class karParamBlock;
class karRect;
class karRectX;

namespace kar {

/// What `karPoint` and `karDimension` share; `Self` is the class itself and `Id` its object id.
/// Arithmetic wraps at 32 bits, |INT_MIN| being INT_MIN; nothing is tested, neither a divisor for 0.
template <class Self, ObjektIdies Id>
class IntegerPlanePair : public tUniquePair<int> {
public:
    using tUniquePair<int>::tUniquePair;

    /// \name Type identity, of the class alone and not virtual
    /// \{
    ObjektIdies GetType() const { return Id; }             ///< `Id`.
    int IsType(ObjektIdies id) const { return id == Id; }  ///< Equality with `Id`.
    int CanCast(ObjektIdies id) const { return id == Id; } ///< Equality with `Id`.
    /// \}

    /// \name Relations: 1 or 0
    /// Note: the four relations hold only if they hold for x and for y. They are no order and no complements of each
    /// other: (1, 2) is neither < (2, 2) nor >= (2, 2).
    /// \{
    int operator==(const Self &o) const { return x() == o.x() && y() == o.y(); } ///< Both places are equal.
    int operator!=(const Self &o) const { return x() != o.x() || y() != o.y(); } ///< A place differs.
    int operator>=(Self o) const { return x() >= o.x() && y() >= o.y(); }        ///< It holds for x and for y.
    int operator<=(Self o) const { return x() <= o.x() && y() <= o.y(); }        ///< It holds for x and for y.
    int operator>(Self o) const { return x() > o.x() && y() > o.y(); }           ///< It holds for x and for y.
    int operator<(Self o) const { return x() < o.x() && y() < o.y(); }           ///< It holds for x and for y.
    /// \}

    /// The one total order, y before x: the difference of the y, or that of the x where the y are equal. Only its
    /// comparison with zero means something.
    /// Note: the difference wraps, so values more than 2^31 apart compare the other way round.
    int Cmp(const Self &o) const
    {
        const int d = wrapSub(y(), o.y());
        return d != 0 ? d : wrapSub(x(), o.x());
    }

    /// \name Arithmetic, place by place
    /// The quotient truncates towards zero, the remainder has the sign of the dividend; INT_MIN by -1 gives INT_MIN and
    /// the remainder 0.
    /// Note: `*`, `/` and `%` know the integer alone; a real operand is truncated by the language before the call.
    /// \{

    /// Place by place; overflow wraps at 32 bits.
    Self operator+(Self o) const { return Self(wrapAdd(x(), o.x()), wrapAdd(y(), o.y())); }
    Self operator-(Self o) const { return Self(wrapSub(x(), o.x()), wrapSub(y(), o.y())); }
    Self operator-() const { return Self(wrapNeg(x()), wrapNeg(y())); }
    Self operator*(int factor) const { return Self(wrapMul(x(), factor), wrapMul(y(), factor)); }
    Self operator/(int divisor) const { return Self(wrapDiv(x(), divisor), wrapDiv(y(), divisor)); }
    Self operator%(int divisor) const { return Self(wrapRem(x(), divisor), wrapRem(y(), divisor)); }
    Self &operator+=(const Self &o) { return store(wrapAdd(x(), o.x()), wrapAdd(y(), o.y())); }
    Self &operator-=(const Self &o) { return store(wrapSub(x(), o.x()), wrapSub(y(), o.y())); }
    Self &operator*=(int factor) { return store(wrapMul(x(), factor), wrapMul(y(), factor)); }
    Self &operator/=(int divisor) { return store(wrapDiv(x(), divisor), wrapDiv(y(), divisor)); }
    /// \}

    /// Inner product x * o.x + y * o.y.
    /// Note: the right operand is a pointer; without one `*` is the product with a number.
    int operator*(const Self *o) const { return wrapAdd(wrapMul(x(), o->x()), wrapMul(y(), o->y())); }

    /// \name Lesser and greater value of each place
    /// \{

    /// The lesser x and the lesser y.
    Self Min(const Self &o) const { return Self(x() < o.x() ? x() : o.x(), y() < o.y() ? y() : o.y()); }
    /// The greater x and the greater y.
    Self Max(const Self &o) const { return Self(x() > o.x() ? x() : o.x(), y() > o.y() ? y() : o.y()); }
    /// \}

    /// \name Distances
    /// \{
    int DistAbs(Self o) const { return wrapAdd(wrapAbs(deltaX(o)), wrapAbs(deltaY(o))); } ///< |dx| + |dy|.
    /// The greater of |dx| and |dy|.
    int DistMax(Self o) const
    {
        const int absX = wrapAbs(deltaX(o));
        const int absY = wrapAbs(deltaY(o));
        return absX > absY ? absX : absY;
    }
    /// dx * dx + dy * dy. The differences wrap at 32 bits; their squares are real and can't overflow.
    double DistSqr(Self o) const
    {
        const double dx = deltaX(o);
        const double dy = deltaY(o);
        return (dx * dx) + (dy * dy);
    }
    double DistEuk(Self o) const { return std::sqrt(DistSqr(o)); } ///< Square root of `DistSqr`.
    /// \}

private:
    int deltaX(const Self &o) const { return wrapSub(x(), o.x()); }
    int deltaY(const Self &o) const { return wrapSub(y(), o.y()); }
    Self &store(int newX, int newY)
    {
        x(newX);
        y(newY);
        return static_cast<Self &>(*this);
    }
};

} // namespace kar

/// An extent on the pixel grid: `First` is the width, `Second` the height. It may be negative.
class karDimension : public kar::IntegerPlanePair<karDimension, KAR_ID_DIMENSION> {
public:
    /// \name Construction
    /// \{
    karDimension() = default;                              ///< (0, 0).
    karDimension(int v) : IntegerPlanePair(v, v) {}        ///< (v, v).
    karDimension(int a, int b) : IntegerPlanePair(a, b) {} ///< Width `a`, height `b`.
    karDimension(const karDimension &) = default;          ///< Copies width and height.
    /// \}

    /// \name Assignment
    /// \{
    karDimension &operator=(const karDimension &) = default;           ///< Copies width and height.
    karDimension &operator=(int v) { return *this = karDimension(v); } ///< Both places become `v`.
    /// \}

    /// \name Reading
    /// \{

    /// Width and height as stored; the forms with `Val` are the same.
    int width() const { return First(); }
    int widthVal() const { return First(); }
    int height() const { return Second(); }
    int heightVal() const { return Second(); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one of the two; the other stays.
    void width(int value) { First(value); }
    void height(int value) { Second(value); }
    /// \}
};

/// A position on the pixel grid, in whatever unit the caller works in. x grows to the right; angles are radians, and
/// a positive one turns (1, 0) towards (0, 1).
/// Note: `point + 3` and `point - 3` are ambiguous, since a number becomes a point and a dimension alike, and so is
/// `point = {1, 2}`; `point *= 2` takes an `int` or a `double`, any other number type needs a cast.
class karPoint : public kar::IntegerPlanePair<karPoint, KAR_ID_POINT> {
public:
    /// \name Construction
    /// \{
    karPoint() = default;                              ///< (0, 0).
    karPoint(int v) : IntegerPlanePair(v, v) {}        ///< (v, v).
    karPoint(int a, int b) : IntegerPlanePair(a, b) {} ///< x is `a`, y is `b`.
    karPoint(const karPoint &) = default;              ///< Copies x and y.
    /// The placed copy of `p`: see `karparamblock.h`.
    KAR_API karPoint(const karPoint &p, const karParamBlock *block);
    /// \}

    /// \name Assignment
    /// \{
    karPoint &operator=(const karPoint &) = default;           ///< Copies x and y.
    karPoint &operator=(int v) { return *this = karPoint(v); } ///< Both places become `v`.
    karPoint &operator=(const karD_Point &p);                  ///< Rounds half away from zero: see `kardpoint.h`.
    /// \}

    /// \name Arithmetic
    /// \{
    using IntegerPlanePair::operator+;
    using IntegerPlanePair::operator-;
    using IntegerPlanePair::operator*=;
    /// Moved by the width along x and the height along y; wraps at 32 bits.
    karPoint operator+(karDimension d) const { return *this + karPoint(d.width(), d.height()); }
    karPoint operator-(karDimension d) const { return *this - karPoint(d.width(), d.height()); }
    /// Each place becomes trunc(place * factor + 0.5); beyond the `int` range it saturates, not-a-number gives 0.
    /// Note: 0.5 is added whatever the sign, so a product of -1.2 gives 0, unlike the conversion from `karD_Point`.
    karPoint &operator*=(double factor)
    {
        x(kar::toInt((x() * factor) + 0.5));
        y(kar::toInt((y() * factor) + 0.5));
        return *this;
    }
    /// \}

    /// \name Changing
    /// \{
    void setNull() { *this = 0; }                                   ///< To (0, 0).
    void MoveElement(int dx, int dy) { *this += karPoint(dx, dy); } ///< Adds (dx, dy); wraps at 32 bits.
    /// \}

    /// \name Rotation about the origin or (cx, cy), by an angle in radians or by its cosine and sine
    /// With dx, dy the difference from the centre, x becomes cx + trunc(dx * c) - trunc(dy * s) and y becomes
    /// cy + trunc(dx * s) + trunc(dy * c).
    /// Note: each product is truncated on its own, so a turn loses up to two units a place. A product beyond the
    /// `int` range saturates, not-a-number gives 0; the sums wrap.
    /// \{

    /// Turns the point where it stands.
    KAR_API void RotateElement(double angle);
    void RotateElement(double cosine, double sine) { RotateElement(cosine, sine, 0, 0); }
    KAR_API void RotateElement(double angle, int cx, int cy);
    void RotateElement(double cosine, double sine, int cx, int cy)
    {
        const double dx = kar::wrapSub(x(), cx);
        const double dy = kar::wrapSub(y(), cy);
        // Products with factors below 1 stay in the `int` range.
        const bool isBelowOne = std::fabs(cosine) < 1 && std::fabs(sine) < 1;
        const auto toInt = [isBelowOne](double v) { return isBelowOne ? static_cast<int>(v) : kar::toInt(v); };
        y(kar::wrapAdd(kar::wrapAdd(cy, toInt(dx * sine)), toInt(dy * cosine)));
        x(kar::wrapSub(kar::wrapAdd(cx, toInt(dx * cosine)), toInt(dy * sine)));
    }
    /// \}

    /// \name Position in a box
    /// \{
    bool isFullIn(karRect &r) const; ///< Inside or on the edge of a box: see `karrect.h`.
    /// Inside or on the edge of a turned box: see `karrectx.h`.
    /// Note: describes `r` anew by `karRectX::normLage`, for good.
    KAR_API bool isFullIn(karRectX &r) const;
    /// \}
};

#endif
