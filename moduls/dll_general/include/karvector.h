/// \file
/// Directions of the plane and of space, normalised on request.
#ifndef KAR_VECTOR_H
#define KAR_VECTOR_H

#include "kar3dpoint.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karnumeric.h"

#include <cmath>

/// A direction of the plane. It may or may not be of unit length; no field records which.
///
/// Normalisation divides each coordinate by the length; a vector shorter than 1e-50 stays exactly as it is and nothing
/// reports it (`GetDistance` shows it). A `normalize` argument of false never normalises.
/// Note: a length that is not a number is divided by. There is no difference of two vectors.
class KAR_API kar2DVector {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const; ///< 101.
    /// \}

    /// \name Construction
    /// \{
    kar2DVector() = default; ///< (0, 0).
    /// x and y as given.
    kar2DVector(const double &x, const double &y, bool normalize) : x_(x), y_(y) { normalizeIf(normalize); }
    /// (cos angle, sin angle), then always normalised; radians.
    kar2DVector(const double &angle) : x_(std::cos(angle)), y_(std::sin(angle)) { normalizeIf(true); }
    /// The difference `to` - `from`.
    kar2DVector(const karD_Point &from, const karD_Point &to, bool normalize)
        : x_(to.x() - from.x()), y_(to.y() - from.y())
    {
        normalizeIf(normalize);
    }
    /// x and y of `o`.
    kar2DVector(const kar2DVector &o, bool normalize) : x_(o.x_), y_(o.y_) { normalizeIf(normalize); }
    kar2DVector(const kar2DVector &) = default; ///< x and y of the other.
    /// \}

    kar2DVector &operator=(const kar2DVector &) = default; ///< Copies x and y.

    /// \name Reading
    /// \{
    double GetX() const { return x_; } ///< x as stored, of unit length or not.
    double GetY() const { return y_; } ///< y as stored, of unit length or not.
    /// x or y divided by the length of the two; 0.0 for a vector shorter than 1e-50.
    /// Note: on a `kar3DVector` too they ignore z, whereas `GetUnitZ` divides by the length of all three.
    double GetUnitX() const { return unit(x_, kar2DVector::GetDistance()); }
    double GetUnitY() const { return unit(y_, kar2DVector::GetDistance()); } ///< \overload
    double GetDistance() const { return std::sqrt((x_ * x_) + (y_ * y_)); }  ///< The length.
    double GetAngleX() const { return std::atan2(y_, x_); } ///< Radians in the range of `atan2`, not shifted.
    /// \}

    /// \name Changing
    /// \{
    void SetX(double x) { x_ = x; } ///< Stores x; nothing is normalised.
    void SetY(double y) { y_ = y; } ///< Stores y; nothing is normalised.
    /// Stores both, then normalises if wanted.
    void Set(const double &x, const double &y, bool normalize)
    {
        x_ = x;
        y_ = y;
        normalizeIf(normalize);
    }
    /// To unit length; a vector shorter than 1e-50 stays as it is.
    kar2DVector &Normalize()
    {
        const double length = kar2DVector::GetDistance();
        if (std::fabs(length) < kar::lengthTolerance)
            return *this;
        x_ = x_ / length;
        y_ = y_ / length;
        return *this;
    }
    /// Turns by `angle` radians, counter-clockwise: x becomes c * x - s * y, y becomes s * x + c * y.
    /// Note: on a `kar3DVector` it works on x and y, the normalisation included; z is not touched.
    kar2DVector &Rotate(const double &angle, bool normalize);
    /// \}

    /// \name Arithmetic
    /// \{

    /// Each place by itself, not normalised.
    kar2DVector operator+(const kar2DVector &o) const { return kar2DVector(x_ + o.x_, y_ + o.y_, false); }
    double operator*(const kar2DVector &o) const { return (x_ * o.x_) + (y_ * o.y_); } ///< Inner product.
    /// Each place times `factor`.
    kar2DVector operator*(const double &factor) const { return kar2DVector(x_ * factor, y_ * factor, false); }
    kar2DVector operator-() const { return kar2DVector(-x_, -y_, false); } ///< The opposite direction.
    kar2DVector operator+() const { return *this; }                        ///< The vector itself.
    /// \}

protected:
    /// The quotient, 0.0 for a length below 1e-50.
    static double unit(double coordinate, double length)
    {
        return std::fabs(length) < kar::lengthTolerance ? 0.0 : coordinate / length;
    }

private:
    void normalizeIf(bool wanted)
    {
        if (wanted)
            kar2DVector::Normalize();
    }

    double x_ = 0.0;
    double y_ = 0.0;
};

/// A direction of space. What `kar2DVector` says about length and normalisation holds with all three coordinates.
class KAR_API kar3DVector : public kar2DVector {
public:
    /// \name Virtual operations, in slot order
    /// \{
    ObjektIdies GetType() const override; ///< 114.
    /// \}

    /// \name Construction
    /// \{
    kar3DVector() = default; ///< (0, 0, 0).
    /// x, y and z as given.
    kar3DVector(const double &x, const double &y, const double &z, bool normalize) : kar2DVector(x, y, false), z_(z)
    {
        normalizeIf(normalize);
    }
    /// The difference `to` - `from`.
    kar3DVector(const kar3D_Point &from, const kar3D_Point &to, bool normalize)
        : kar3DVector(to.x() - from.x(), to.y() - from.y(), to.z() - from.z(), normalize)
    {}
    /// x, y, z of `o`.
    kar3DVector(const kar3DVector &o, bool normalize) : kar2DVector(o), z_(o.z_) { normalizeIf(normalize); }
    kar3DVector(const kar3DVector &) = default; ///< x, y, z of the other.
    /// \}

    kar3DVector &operator=(const kar3DVector &) = default; ///< Copies x, y and z.

    /// \name Reading
    /// \{
    double GetZ() const { return z_; }                          ///< z as stored, of unit length or not.
    double GetUnitZ() const { return unit(z_, GetDistance()); } ///< z / length; 0.0 for a vector shorter than 1e-50.
    /// The length.
    double GetDistance() const { return std::sqrt(((GetX() * GetX()) + (GetY() * GetY())) + (z_ * z_)); }
    /// \}

    /// \name Changing
    /// \{

    /// Note: returns the vector, while the inherited `SetX` and `SetY` return nothing.
    kar3DVector &SetZ(double z)
    {
        z_ = z;
        return *this;
    }
    using kar2DVector::Set;
    /// Stores all three, then normalises if wanted.
    kar3DVector &Set(const double &x, const double &y, const double &z, bool normalize)
    {
        return *this = kar3DVector(x, y, z, normalize);
    }
    /// To unit length; a vector shorter than 1e-50 stays as it is.
    kar3DVector &Normalize()
    {
        const double length = GetDistance();
        if (std::fabs(length) < kar::lengthTolerance)
            return *this;
        SetX(GetX() / length);
        SetY(GetY() / length);
        z_ = z_ / length;
        return *this;
    }
    /// \}

    /// \name Angles and products
    /// \{

    /// The angle between the two, radians in [0, pi], without the sense of the turn: acos(dot / (|this| * |o|)).
    /// Note: nothing is guarded or clamped. A zero vector, or a quotient that rounding has lifted above 1, gives
    /// not-a-number.
    double AngleToVector(const kar3DVector &o) const
    {
        return std::acos(InnerProduct(o) / (GetDistance() * o.GetDistance()));
    }
    /// Inner product divided by the length of `o`. Note: a zero `o` is not guarded.
    double DirectionComponent(const kar3DVector &o) const { return InnerProduct(o) / o.GetDistance(); }
    /// The right-handed cross product this x o.
    /// Note: always normalised: of unit length for vectors that are not parallel, (near) zero for parallel ones.
    kar3DVector OuterProduct(const kar3DVector &o) const
    {
        return kar3DVector((GetY() * o.z_) - (z_ * o.GetY()), (z_ * o.GetX()) - (GetX() * o.z_),
                           (GetX() * o.GetY()) - (GetY() * o.GetX()), true);
    }
    /// x * o.x + y * o.y + z * o.z.
    double InnerProduct(const kar3DVector &o) const
    {
        return ((GetX() * o.GetX()) + (GetY() * o.GetY())) + (z_ * o.z_);
    }
    double operator*(const kar3DVector &o) const { return InnerProduct(o); } ///< Inner product.
    /// \}

    /// \name Arithmetic
    /// \{

    /// Each place by itself, not normalised.
    kar3DVector operator+(const kar3DVector &o) const
    {
        return kar3DVector(GetX() + o.GetX(), GetY() + o.GetY(), z_ + o.z_, false);
    }
    /// Each place times `factor`.
    kar3DVector operator*(const double &factor) const
    {
        return kar3DVector(GetX() * factor, GetY() * factor, z_ * factor, false);
    }
    kar3DVector operator-() const { return kar3DVector(-GetX(), -GetY(), -z_, false); } ///< The opposite direction.
    kar3DVector operator+() const { return *this; }                                     ///< The vector itself.
    /// \}

private:
    void normalizeIf(bool wanted)
    {
        if (wanted)
            Normalize();
    }

    double z_ = 0.0;
};

// Sums of positions and vectors, declared with the positions.
inline karD_Point karD_Point::operator+(const kar2DVector &v) const
{
    return karD_Point(x() + v.GetX(), y() + v.GetY());
}
inline karD_Point karD_Point::operator-(const kar2DVector &v) const
{
    return karD_Point(x() - v.GetX(), y() - v.GetY());
}
inline kar3D_Point kar3D_Point::operator+(const kar3DVector &v) const
{
    return kar3D_Point(x() + v.GetX(), y() + v.GetY(), z() + v.GetZ());
}
inline kar3D_Point kar3D_Point::operator-(const kar3DVector &v) const
{
    return kar3D_Point(x() - v.GetX(), y() - v.GetY(), z() - v.GetZ());
}

#endif
