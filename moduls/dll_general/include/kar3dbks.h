/// \file
/// A plane in coefficient form, a user coordinate system in space, and the axes of object coordinate systems.
#ifndef KAR_3DBKS_H
#define KAR_3DBKS_H

#include "kar3dpoint.h"
#include "kardpoint.h"
#include "karenum.h"
#include "karexport.h"
#include "karvector.h"

/// The plane A*x + B*y + C*z + D = 0. The coefficients are stored as given, not normalised.
class KAR_API karPlane {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const; ///< 120.
    /// \}

    /// \name Construction
    /// \{

    /// The xy plane by default.
    karPlane(const double &a = 0.0, const double &b = 0.0, const double &c = 1.0, const double &d = 0.0)
        : A(a), B(b), C(c), D(d)
    {}
    karPlane(const karPlane &) = default; ///< Copies the coefficients.
    /// \}

    karPlane &operator=(const karPlane &) = default; ///< Copies the coefficients.

    /// \name Reading
    /// \{

    /// The coefficient as stored.
    double GetA() const { return A; }
    double GetB() const { return B; }
    double GetC() const { return C; }
    double GetD() const { return D; }
    /// Note: D as it is, not divided by the length of the normal.
    double GetDistance() const { return D; }
    /// \}

    /// \name Changing
    /// \{

    /// Stores all four as they are.
    karPlane &Set(const double &a, const double &b, const double &c, const double &d)
    {
        return SetA(a).SetB(b).SetC(c).SetD(d);
    }
    /// Stores one coefficient; the others stay.
    karPlane &SetA(const double &a)
    {
        A = a;
        return *this;
    }
    /// \overload
    karPlane &SetB(const double &b)
    {
        B = b;
        return *this;
    }
    /// \overload
    karPlane &SetC(const double &c)
    {
        C = c;
        return *this;
    }
    /// \overload
    karPlane &SetD(const double &d)
    {
        D = d;
        return *this;
    }
    /// \}

private:
    double A;
    double B;
    double C;
    double D;
};

/// A user coordinate system: an origin and the directions of its x and y axis. Every path that sets an axis normalises
/// it; an axis shorter than 1e-50 stays as it is. The axes are not made orthogonal to each other.
class KAR_API kar3DBKS {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const; ///< 30.
    /// \}

    /// \name Construction
    /// \{

    /// The x axis goes from `origin` to `px`, the y axis from `origin` to `py`.
    kar3DBKS(const kar3D_Point &origin, const kar3D_Point &px, const kar3D_Point &py)
        : origin_(origin), axisX(origin, px, true), axisY(origin, py, true)
    {}
    /// The axes point along `x` and `y`.
    kar3DBKS(const kar3D_Point &origin, const kar3DVector &x, const kar3DVector &y)
        : origin_(origin), axisX(x, true), axisY(y, true)
    {}
    kar3DBKS(const kar3DBKS &) = default; ///< Copies origin and axes as they are.
    /// \}

    kar3DBKS &operator=(const kar3DBKS &) = default; ///< Copies origin and axes as they are.

    /// \name Reading
    /// \{
    kar3DVector GetVectorAxisX() const { return axisX; } ///< The x axis, as a rule of unit length.
    kar3DVector GetVectorAxisY() const { return axisY; } ///< The y axis, as a rule of unit length.
    /// x axis by y axis, normalised; (near) zero for parallel axes.
    kar3DVector GetVectorAxisZ() const { return axisX.OuterProduct(axisY); }
    /// The plane through three points: the origin and the tips of the two axes, not normalised.
    /// Note: the axes count as points themselves, not as origin + axis. So only with its origin in the origin of space
    /// does it hold the two axes.
    karPlane GetPlaneXY() const;
    /// \}

    /// \name Changing
    /// \{
    kar3DVector &GetVectorAxisX() { return axisX; } ///< Note: what is written here is not normalised.
    kar3DVector &GetVectorAxisY() { return axisY; } ///< \overload
    /// Stores the origin; the axes stay.
    kar3DBKS &SetOrigin(const kar3D_Point &origin)
    {
        origin_ = origin;
        return *this;
    }
    /// Both axes, each normalised.
    kar3DBKS &SetAxis(const kar3DVector &x, const kar3DVector &y)
    {
        const kar3DVector newY(y, true); // y may be the x axis of this system
        axisX = kar3DVector(x, true);
        axisY = newY;
        return *this;
    }
    /// One axis, normalised; the other stays.
    kar3DBKS &SetAxisX(const kar3DVector &x)
    {
        axisX = kar3DVector(x, true);
        return *this;
    }
    /// \overload
    kar3DBKS &SetAxisY(const kar3DVector &y)
    {
        axisY = kar3DVector(y, true);
        return *this;
    }
    /// \}

    /// \name From the plane to space
    /// Note: these add a z of 0 and look neither at the origin nor at the axes.
    /// \{
    kar3D_Point Get3DPoint(const karD_Point &p) const { return kar3D_Point(p.x(), p.y(), 0.0); } ///< (x, y, 0).
    /// (width, height, 0).
    kar3D_Dimension Get3DDimension(const karD_Dimension &d) const
    {
        return kar3D_Dimension(d.width(), d.height(), 0.0);
    }
    /// Normalised.
    kar3DVector Get3DVector(const kar2DVector &v) const { return kar3DVector(v.GetX(), v.GetY(), 0.0, true); }
    /// `point` mirrored at the unbounded line through `lineStart` and `lineEnd`, see `Calculate_Mirror_Point_To_Line`.
    kar3D_Point Get3DMirrorPoint(const karD_Point &point, const karD_Point &lineStart, const karD_Point &lineEnd) const;
    /// \}

private:
    kar3D_Point origin_;
    kar3DVector axisX;
    kar3DVector axisY;
};

/// \name Object coordinate systems
/// \{

/// The x axis of the object coordinate system with the extrusion direction `n`, by the arbitrary axis rule of DXF: of
/// unit length, orthogonal to `n`. It is W by n with W = (0, 1, 0) where |n.x| and |n.y| are both strictly less than
/// 1/64, otherwise W = (0, 0, 1).
/// Note: `n` is compared as it is, not normalised first.
KAR_API kar3DVector GetOCSVectorAxisX(const kar3DVector &n);
/// The normalised outer product a by b: the y axis, if `a` is the extrusion direction and `b` the x axis.
KAR_API kar3DVector GetOCSVectorAxisY(const kar3DVector &a, const kar3DVector &b);

/// \}

#endif
