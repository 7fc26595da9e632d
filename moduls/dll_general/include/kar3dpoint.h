/// \file
/// Positions and extents in space, and an interval that keeps the same shape of three values.
#ifndef KAR_3DPOINT_H
#define KAR_3DPOINT_H

#include "karexport.h"
#include "karnumeric.h"

#include <cmath>

class kar3DVector;
class karMatrix;

/// Three doubles in the order x, y, z. What `kar3D_Point` and `kar3D_Dimension` share; its public surface is the
/// constructors, the two classes expose the rest. Nothing is tested and nothing fails: a division by 0 gives infinity
/// or not-a-number, which pass on. A number that lies in the receiver counts with its value on entry.
class kar3D_Pair {
public:
    /// \name Construction
    /// \{
    kar3D_Pair() = default;                                                                ///< (0, 0, 0).
    kar3D_Pair(const double &x, const double &y, const double &z) : x_(x), y_(y), z_(z) {} ///< x, y and z as given.
    kar3D_Pair(const kar3D_Pair &) = default;                                              ///< Copies x, y and z.
    /// \}

protected:
    /// \name Assignment
    /// \{
    kar3D_Pair &operator=(const kar3D_Pair &) = default;                    ///< Copies x, y and z.
    const kar3D_Pair &operator=(const double &v) { return store(v, v, v); } ///< All three places become `v`.
    /// \}

    /// \name Reading
    /// \{

    /// The coordinate as stored.
    const double &x() const { return x_; }
    const double &y() const { return y_; }
    const double &z() const { return z_; }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one coordinate; the others stay.
    void x(const double &v) { x_ = v; }
    void y(const double &v) { y_ = v; }
    void z(const double &v) { z_ = v; }
    /// \}

    /// \name Relations
    /// Equality: |o.x - x|, |o.y - y| and |o.z - z| are each strictly less than 1e-50, which for coordinates of
    /// ordinary size is identity. The four others hold only if they hold in x, in y and in z, without tolerance: they
    /// are no order and no complements of each other.
    /// Note: 1e-50 is far below what a coordinate is rounded by, so equality is that of the bits but for values near 0.
    /// Infinities are not equal to each other, since their difference is not a number.
    /// \{

    /// Equal within the tolerance in all three places.
    bool operator==(const kar3D_Pair &o) const
    {
        return std::fabs(o.x_ - x_) < kar::lengthTolerance && std::fabs(o.y_ - y_) < kar::lengthTolerance &&
               std::fabs(o.z_ - z_) < kar::lengthTolerance;
    }
    bool operator!=(const kar3D_Pair &o) const { return !(*this == o); } ///< The negation of `==`.
    bool operator>=(const kar3D_Pair &o) const { return x_ >= o.x_ && y_ >= o.y_ && z_ >= o.z_; } ///< In all three.
    bool operator<=(const kar3D_Pair &o) const { return x_ <= o.x_ && y_ <= o.y_ && z_ <= o.z_; } ///< In all three.
    bool operator>(const kar3D_Pair &o) const { return x_ > o.x_ && y_ > o.y_ && z_ > o.z_; }     ///< In all three.
    bool operator<(const kar3D_Pair &o) const { return x_ < o.x_ && y_ < o.y_ && z_ < o.z_; }     ///< In all three.
    /// The total order, y before x before z: -1, 0 or 1; 0 if the deciding difference is not a number.
    int Cmp(const kar3D_Pair &o) const
    {
        double d = y_ - o.y_;
        if (d == 0)
            d = x_ - o.x_;
        if (d == 0)
            d = z_ - o.z_;
        if (d < 0)
            return -1;
        return d > 0 ? 1 : 0;
    }
    /// \}

    /// \name Arithmetic, place by place, also of products and quotients
    /// A number is applied to each place, in sums too.
    /// \{

    /// Each place by itself, in double arithmetic.
    const kar3D_Pair &operator+=(const kar3D_Pair &o) { return store(x_ + o.x_, y_ + o.y_, z_ + o.z_); }
    const kar3D_Pair &operator-=(const kar3D_Pair &o) { return store(x_ - o.x_, y_ - o.y_, z_ - o.z_); }
    const kar3D_Pair &operator*=(const kar3D_Pair &o) { return store(x_ * o.x_, y_ * o.y_, z_ * o.z_); }
    const kar3D_Pair &operator/=(const kar3D_Pair &o) { return store(x_ / o.x_, y_ / o.y_, z_ / o.z_); }
    const kar3D_Pair &operator+=(const double &v) { return store(x_ + v, y_ + v, z_ + v); }
    const kar3D_Pair &operator-=(const double &v) { return store(x_ - v, y_ - v, z_ - v); }
    const kar3D_Pair &operator*=(const double &v) { return store(x_ * v, y_ * v, z_ * v); }
    const kar3D_Pair &operator/=(const double &v) { return store(x_ / v, y_ / v, z_ / v); }
    kar3D_Pair operator+(const kar3D_Pair &o) const { return kar3D_Pair(x_ + o.x_, y_ + o.y_, z_ + o.z_); }
    kar3D_Pair operator-(const kar3D_Pair &o) const { return kar3D_Pair(x_ - o.x_, y_ - o.y_, z_ - o.z_); }
    kar3D_Pair operator*(const kar3D_Pair &o) const { return kar3D_Pair(x_ * o.x_, y_ * o.y_, z_ * o.z_); }
    kar3D_Pair operator/(const kar3D_Pair &o) const { return kar3D_Pair(x_ / o.x_, y_ / o.y_, z_ / o.z_); }
    kar3D_Pair operator+(const double &v) const { return kar3D_Pair(x_ + v, y_ + v, z_ + v); }
    kar3D_Pair operator-(const double &v) const { return kar3D_Pair(x_ - v, y_ - v, z_ - v); }
    kar3D_Pair operator*(const double &v) const { return kar3D_Pair(x_ * v, y_ * v, z_ * v); }
    kar3D_Pair operator/(const double &v) const { return kar3D_Pair(x_ / v, y_ / v, z_ / v); }
    kar3D_Pair operator-() const { return kar3D_Pair(-x_, -y_, -z_); }
    /// \}

    /// \name Lesser and greater value of each place
    /// A place that can't be compared, not being a number, stays that of the receiver.
    /// \{

    /// The lesser x, the lesser y and the lesser z.
    kar3D_Pair Min(const kar3D_Pair &o) const
    {
        return kar3D_Pair(o.x_ < x_ ? o.x_ : x_, o.y_ < y_ ? o.y_ : y_, o.z_ < z_ ? o.z_ : z_);
    }
    /// The greater x, the greater y and the greater z.
    kar3D_Pair Max(const kar3D_Pair &o) const
    {
        return kar3D_Pair(o.x_ > x_ ? o.x_ : x_, o.y_ > y_ ? o.y_ : y_, o.z_ > z_ ? o.z_ : z_);
    }
    /// \}

    /// \name Distances and direction
    /// \{

    /// |dx| + |dy| + |dz|.
    double DistAbs(const kar3D_Pair &o) const
    {
        return (std::fabs(x_ - o.x_) + std::fabs(y_ - o.y_)) + std::fabs(z_ - o.z_);
    }
    /// The greatest of |dx|, |dy| and |dz|.
    double DistMax(const kar3D_Pair &o) const
    {
        const double dx = std::fabs(x_ - o.x_);
        const double dy = std::fabs(y_ - o.y_);
        const double dz = std::fabs(z_ - o.z_);
        const double greater = dx > dy ? dx : dy;
        return greater > dz ? greater : dz;
    }
    /// dx * dx + dy * dy + dz * dz.
    double DistSqr(const kar3D_Pair &o) const
    {
        const double dx = x_ - o.x_;
        const double dy = y_ - o.y_;
        const double dz = z_ - o.z_;
        return ((dx * dx) + (dy * dy)) + (dz * dz);
    }
    double DistEuk(const kar3D_Pair &o) const { return std::sqrt(DistSqr(o)); } ///< Square root of `DistSqr`.
    /// Distance from the origin.
    double Distance() const { return std::sqrt(((x_ * x_) + (y_ * y_)) + (z_ * z_)); }
    /// The direction from this point to `o` in the xy plane: radians in the range of `atan2`.
    /// Note: it is not shifted to [0, 2 * pi) as that of `karD_Point` is.
    double AngleX(const kar3D_Pair &o) const { return std::atan2(o.y_ - y_, o.x_ - x_); }
    /// \}

    /// Stores all three places and gives the object.
    const kar3D_Pair &store(double newX, double newY, double newZ)
    {
        x_ = newX;
        y_ = newY;
        z_ = newZ;
        return *this;
    }

private:
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
};

namespace kar {

/// What `kar3D_Point` and `kar3D_Dimension` expose of `kar3D_Pair`, each with its own type; `Truth` is the result type
/// of the relations.
template <class Self, class Truth>
class SpaceTriple : public kar3D_Pair {
public:
    using kar3D_Pair::kar3D_Pair;
    SpaceTriple() = default;                            ///< (0, 0, 0).
    SpaceTriple(const kar3D_Pair &o) : kar3D_Pair(o) {} ///< Copies x, y and z.

    /// All three places become `v`.
    const Self &operator=(const double &v)
    {
        kar3D_Pair::operator=(v);
        return self();
    }

    /// \name Relations, as in `kar3D_Pair`
    /// \{

    /// As the operator of `kar3D_Pair`.
    Truth operator==(const Self &o) const { return kar3D_Pair::operator==(o); }
    Truth operator!=(const Self &o) const { return kar3D_Pair::operator!=(o); }
    Truth operator>=(const Self &o) const { return kar3D_Pair::operator>=(o); }
    Truth operator<=(const Self &o) const { return kar3D_Pair::operator<=(o); }
    Truth operator>(const Self &o) const { return kar3D_Pair::operator>(o); }
    Truth operator<(const Self &o) const { return kar3D_Pair::operator<(o); }
    int Cmp(const Self &o) const { return kar3D_Pair::Cmp(o); } ///< As `kar3D_Pair::Cmp`.
    /// \}

    /// \name Arithmetic, place by place
    /// \{

    /// As the operator of `kar3D_Pair`.
    const Self &operator+=(const Self &o) { return self(kar3D_Pair::operator+=(o)); }
    const Self &operator-=(const Self &o) { return self(kar3D_Pair::operator-=(o)); }
    const Self &operator*=(const Self &o) { return self(kar3D_Pair::operator*=(o)); }
    const Self &operator/=(const Self &o) { return self(kar3D_Pair::operator/=(o)); }
    const Self &operator+=(const double &v) { return self(kar3D_Pair::operator+=(v)); }
    const Self &operator-=(const double &v) { return self(kar3D_Pair::operator-=(v)); }
    const Self &operator*=(const double &v) { return self(kar3D_Pair::operator*=(v)); }
    const Self &operator/=(const double &v) { return self(kar3D_Pair::operator/=(v)); }
    Self operator+(const Self &o) const { return Self(kar3D_Pair::operator+(o)); }
    Self operator-(const Self &o) const { return Self(kar3D_Pair::operator-(o)); }
    Self operator*(const Self &o) const { return Self(kar3D_Pair::operator*(o)); }
    Self operator/(const Self &o) const { return Self(kar3D_Pair::operator/(o)); }
    Self operator+(const double &v) const { return Self(kar3D_Pair::operator+(v)); }
    Self operator-(const double &v) const { return Self(kar3D_Pair::operator-(v)); }
    Self operator*(const double &v) const { return Self(kar3D_Pair::operator*(v)); }
    Self operator/(const double &v) const { return Self(kar3D_Pair::operator/(v)); }
    Self operator-() const { return Self(kar3D_Pair::operator-()); }
    /// \}

    /// \name Lesser and greater value of each place, distances
    /// \{

    /// As the operation of the same name in `kar3D_Pair`.
    Self Min(const Self &o) const { return Self(kar3D_Pair::Min(o)); }
    Self Max(const Self &o) const { return Self(kar3D_Pair::Max(o)); }
    double DistAbs(const Self &o) const { return kar3D_Pair::DistAbs(o); }
    double DistMax(const Self &o) const { return kar3D_Pair::DistMax(o); }
    double DistSqr(const Self &o) const { return kar3D_Pair::DistSqr(o); }
    double DistEuk(const Self &o) const { return kar3D_Pair::DistEuk(o); }
    /// \}

protected:
    SpaceTriple(const SpaceTriple &) = default;            ///< Copies x, y and z.
    SpaceTriple &operator=(const SpaceTriple &) = default; ///< Copies x, y and z.

    const Self &self() const { return static_cast<const Self &>(*this); } ///< The object in its own type.
    /// The triple in the type that it is part of.
    static const Self &self(const kar3D_Pair &triple) { return static_cast<const Self &>(triple); }
};

} // namespace kar

/// An extent in space: width along x, height along y, deep along z. It may be negative.
class kar3D_Dimension : public kar::SpaceTriple<kar3D_Dimension, int> {
public:
    /// \name Construction
    /// \{
    kar3D_Dimension() = default; ///< (0, 0, 0).
    /// Width, height and deep as given.
    kar3D_Dimension(const double &width, const double &height, const double &deep) : SpaceTriple(width, height, deep) {}
    kar3D_Dimension(const kar3D_Dimension &) = default;      ///< Copies the three places.
    kar3D_Dimension(const kar3D_Pair &o) : SpaceTriple(o) {} ///< Width from x, height from y, deep from z.
    /// A copy of `p`. Note: `matrix` is ignored, and `_notready` is called.
    KAR_API kar3D_Dimension(const kar3D_Dimension &p, const karMatrix *matrix);
    /// \}

    /// \name Assignment
    /// \{
    kar3D_Dimension &operator=(const kar3D_Dimension &) = default; ///< Copies the three places.
    // Declared here: the assignment of the base beside it would make that of a triple or a position ambiguous.
    /// All three places become `v`.
    const kar3D_Dimension &operator=(const double &v) { return SpaceTriple::operator=(v); }
    /// \}

    /// \name Reading
    /// \{

    /// Width, height and deep as stored; the forms with `Val` are the same.
    const double &width() const { return x(); }
    const double &height() const { return y(); }
    const double &deep() const { return z(); }
    const double &widthVal() const { return x(); }
    const double &heightVal() const { return y(); }
    const double &deepVal() const { return z(); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one of the three; the others stay.
    void width(const double &v) { x(v); }
    void height(const double &v) { y(v); }
    void deep(const double &v) { z(v); }
    /// \}

    /// \name Transformation
    /// Note: neither looks at the matrix, and both call `_notready`. `*=` leaves the extent as it is, `*`
    /// gives (0, 0, 0).
    /// \{
    using SpaceTriple::operator*=;
    using SpaceTriple::operator*;
    KAR_API const kar3D_Dimension &operator*=(const karMatrix &matrix); ///< Changes nothing.
    KAR_API kar3D_Dimension operator*(const karMatrix &matrix) const;   ///< (0, 0, 0).
    /// \}
};

/// A position in space.
/// Note: the assignment of a braced triple (`point = {1, 2, 3}`) is ambiguous, since a position, an extent or a plain
/// triple can be made of it; write `point.Set(1, 2, 3)`.
class kar3D_Point : public kar::SpaceTriple<kar3D_Point, bool> {
public:
    /// \name Construction
    /// \{
    kar3D_Point() = default;                                                                 ///< (0, 0, 0).
    kar3D_Point(const double &x, const double &y, const double &z) : SpaceTriple(x, y, z) {} ///< x, y and z as given.
    kar3D_Point(const kar3D_Point &) = default;                                              ///< Copies x, y and z.
    kar3D_Point(const kar3D_Pair &o) : SpaceTriple(o) {}                                     ///< Copies x, y and z.
    /// `p` transformed by `matrix`, see `operator*=`; a copy of `p` if `matrix` is null or not 4 by 4.
    inline kar3D_Point(const kar3D_Point &p, const karMatrix *matrix);
    /// \}

    /// \name Assignment
    /// \{

    /// Copies the three places: of an extent width, height and deep.
    kar3D_Point &operator=(const kar3D_Point &) = default;
    kar3D_Point &operator=(const kar3D_Pair &o) { return *this = kar3D_Point(o); }
    kar3D_Point &operator=(const kar3D_Dimension &d) { return *this = kar3D_Point(d); }
    using SpaceTriple::operator=;
    /// \}

    /// \name Reading
    /// \{

    /// The coordinate as stored; `GetX` is the same as `x`, and so on.
    const double &x() const { return kar3D_Pair::x(); }
    const double &y() const { return kar3D_Pair::y(); }
    const double &z() const { return kar3D_Pair::z(); }
    const double &GetX() const { return x(); }
    const double &GetY() const { return y(); }
    const double &GetZ() const { return z(); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one coordinate; the others stay.
    void x(const double &v) { kar3D_Pair::x(v); }
    void y(const double &v) { kar3D_Pair::y(v); }
    void z(const double &v) { kar3D_Pair::z(v); }
    void SetX(const double &v) { x(v); }
    void SetY(const double &v) { y(v); }
    void SetZ(const double &v) { z(v); }
    /// Stores all three.
    void Set(const double &newX, const double &newY, const double &newZ) { store(newX, newY, newZ); }
    /// Stores the new position. Note: it does not add.
    kar3D_Point &move(const double &newX, const double &newY, const double &newZ)
    {
        store(newX, newY, newZ);
        return *this;
    }
    void setNull() { store(0.0, 0.0, 0.0); } ///< To (0, 0, 0).
    /// \}

    /// \name Relations, also with an extent
    /// \{
    using SpaceTriple::operator==;
    using SpaceTriple::operator!=;
    using SpaceTriple::operator>=;
    using SpaceTriple::operator<=;
    using SpaceTriple::operator>;
    using SpaceTriple::operator<;
    /// As the operator of `kar3D_Pair`: x with width, y with height, z with deep.
    bool operator==(const kar3D_Dimension &d) const { return kar3D_Pair::operator==(d); }
    bool operator!=(const kar3D_Dimension &d) const { return kar3D_Pair::operator!=(d); }
    bool operator>=(const kar3D_Dimension &d) const { return kar3D_Pair::operator>=(d); }
    bool operator<=(const kar3D_Dimension &d) const { return kar3D_Pair::operator<=(d); }
    bool operator>(const kar3D_Dimension &d) const { return kar3D_Pair::operator>(d); }
    bool operator<(const kar3D_Dimension &d) const { return kar3D_Pair::operator<(d); }
    /// \}

    /// \name Arithmetic, place by place, also with an extent or a vector
    /// \{
    using SpaceTriple::operator+=;
    using SpaceTriple::operator-=;
    using SpaceTriple::operator*=;
    using SpaceTriple::operator/=;
    using SpaceTriple::operator+;
    using SpaceTriple::operator-;
    using SpaceTriple::operator*;
    using SpaceTriple::operator/;
    /// As the operator of `kar3D_Pair`: x with width, y with height, z with deep.
    const kar3D_Point &operator+=(const kar3D_Dimension &d) { return self(kar3D_Pair::operator+=(d)); }
    const kar3D_Point &operator-=(const kar3D_Dimension &d) { return self(kar3D_Pair::operator-=(d)); }
    const kar3D_Point &operator*=(const kar3D_Dimension &d) { return self(kar3D_Pair::operator*=(d)); }
    const kar3D_Point &operator/=(const kar3D_Dimension &d) { return self(kar3D_Pair::operator/=(d)); }
    kar3D_Point operator+(const kar3D_Dimension &d) const { return kar3D_Pair::operator+(d); }
    kar3D_Point operator-(const kar3D_Dimension &d) const { return kar3D_Pair::operator-(d); }
    kar3D_Point operator*(const kar3D_Dimension &d) const { return kar3D_Pair::operator*(d); }
    kar3D_Point operator/(const kar3D_Dimension &d) const { return kar3D_Pair::operator/(d); }
    /// With the stored x, y, z of the vector: see `karvector.h`.
    inline kar3D_Point operator+(const kar3DVector &v) const;
    inline kar3D_Point operator-(const kar3DVector &v) const; ///< \overload
    /// The signed difference (x - o.x, y - o.y, z - o.z).
    kar3D_Point DistDim(const kar3D_Point &o) const { return *this - o; }
    /// \}

    /// \name Distance from the origin and direction, as in `kar3D_Pair`
    /// \{
    double Distance() const { return kar3D_Pair::Distance(); }                  ///< As `kar3D_Pair::Distance`.
    double AngleX(const kar3D_Point &o) const { return kar3D_Pair::AngleX(o); } ///< As `kar3D_Pair::AngleX`.
    /// \}

    /// \name Transformation
    /// By a 4 by 4 matrix M, rows and columns counted from 0, defined in `karmatrix.h`:
    /// x' = ((z * M[0][2] + y * M[0][1]) + x * M[0][0]) + M[3][0], y' and z' likewise from rows 1 and 2 with M[3][1]
    /// and M[3][2].
    /// Note: a matrix of another size leaves the point as it is in `*=` and gives (0, 0, 0) in `*`.
    /// Note: the linear block is applied to a column vector, the translation is read from the last row. The fourth
    /// column is never read: there is no projective division.
    /// \{
    inline kar3D_Point &operator*=(const karMatrix &matrix);     ///< Unchanged by a matrix of another size.
    inline kar3D_Point operator*(const karMatrix &matrix) const; ///< (0, 0, 0) with a matrix of another size.
    /// \}
};

/// An interval from `lo` to `hi`, with a third value that only a constructor sets and nothing reads.
/// Note: a sum with an `int` (`range + 1`) is ambiguous, since a range is also a number; write `range + 1.0`.
class kar3D_Range {
public:
    /// \name Construction
    /// \{
    kar3D_Range() = default; ///< All three values 0.
    /// From the lesser to the greater of `a` and `b`; the third value is `c`.
    kar3D_Range(double a, double b, double c) : lo_(b < a ? b : a), hi_(b > a ? b : a), third(c) {}
    kar3D_Range(const kar3D_Range &) = default; ///< Copies all three values.
    /// \}

    kar3D_Range &operator=(const kar3D_Range &) = default; ///< Copies all three values.

    /// \name Reading
    /// \{
    double lo() const { return lo_; }                               ///< The lower end as stored.
    double hi() const { return hi_; }                               ///< The upper end as stored.
    double isNull() const { return lo_ < hi_ ? 0.0 : 1.0; }         ///< 1.0 if `lo` is not less than `hi`, else 0.0.
    operator double() const { return lo_ < hi_ ? hi_ - lo_ : 0.0; } ///< The length, 0.0 of a null range.
    bool in(double v) const { return lo_ <= v && v <= hi_; }        ///< Both ends included.
    /// \}

    /// \name Changing
    /// \{
    void lo(double v) { lo_ = v; } ///< Stores; no order is kept.
    void hi(double v) { hi_ = v; } ///< \overload
    /// `lo` becomes 32767.0 and `hi` 0.0, so that the next sum takes over the first value.
    /// Note: this works for `lo` below 32767.0 and `hi` above 0.0. A null range and 40000.0 give 32767.0 to 40000.0, a
    /// negative value leaves `hi` 0.0.
    void makeNull()
    {
        lo_ = 32767.0;
        hi_ = 0.0;
    }
    /// \}

    /// \name Unions
    /// The lesser of the two `lo`, the greater of the two `hi`.
    /// Note: `+` puts the two in order and the third value to 0, `+=` does neither. So the sum of two null ranges goes
    /// from 0.0 to 32767.0.
    /// \{

    /// With the single value `v`.
    kar3D_Range operator+(double v) const { return kar3D_Range(v < lo_ ? v : lo_, v > hi_ ? v : hi_, 0.0); }
    /// The union of both, put in order.
    kar3D_Range operator+(const kar3D_Range &o) const
    {
        return kar3D_Range(o.lo_ < lo_ ? o.lo_ : lo_, o.hi_ > hi_ ? o.hi_ : hi_, 0.0);
    }
    /// The union of both as it comes out; the third value stays.
    kar3D_Range &operator+=(const kar3D_Range &o)
    {
        lo_ = o.lo_ < lo_ ? o.lo_ : lo_;
        hi_ = o.hi_ > hi_ ? o.hi_ : hi_;
        return *this;
    }
    /// \}

private:
    double lo_ = 0.0;
    double hi_ = 0.0;
    [[maybe_unused]] double third = 0.0;
};

#endif
