/// \file
/// A transformation of space as fifteen parameters.
#ifndef KAR_TRANSFORMATION_INFO_H
#define KAR_TRANSFORMATION_INFO_H

#include "karenum.h"
#include "karexport.h"
#include "karmatrix.h"

/// Scale, rotation, translation and shear (cut) of a transformation, each set by itself and turned into a matrix on
/// request by the factories of `karmatrix.h`. Angles are radians.
class KAR_API karTransformationInfo {
public:
    /// \name Virtual operations, in slot order
    /// \{
    virtual ObjektIdies GetType() const;        ///< 123.
    virtual bool CanCast(ObjektIdies id) const; ///< Equality with 123.
    /// \}

    /// \name Construction
    /// \{
    karTransformationInfo() = default; ///< Scale 1, everything else 0.
    /// Each angle passes the range check of `SetRotateX`.
    karTransformationInfo(double scaleX, double scaleY, double scaleZ, double rotateX, double rotateY, double rotateZ,
                          double translateX, double translateY, double translateZ, double cutXY, double cutXZ,
                          double cutYX, double cutYZ, double cutZX, double cutZY);
    karTransformationInfo(const karTransformationInfo &) = default; ///< Copies all fifteen.
    /// \}

    karTransformationInfo &operator=(const karTransformationInfo &) = default; ///< Copies all fifteen.

    /// \name Reading
    /// \{

    /// The parameter as stored: factors, angles in radians, lengths, and elements of the shear by row and column.
    double GetScaleX() const { return scale.x; }
    double GetScaleY() const { return scale.y; }
    double GetScaleZ() const { return scale.z; }
    double GetRotateX() const { return rotate.x; }
    double GetRotateY() const { return rotate.y; }
    double GetRotateZ() const { return rotate.z; }
    double GetTranslateX() const { return translate.x; }
    double GetTranslateY() const { return translate.y; }
    double GetTranslateZ() const { return translate.z; }
    double GetCutXY() const { return cutXY_; }
    double GetCutXZ() const { return cutXZ_; }
    double GetCutYX() const { return cutYX_; }
    double GetCutYZ() const { return cutYZ_; }
    double GetCutZX() const { return cutZX_; }
    double GetCutZY() const { return cutZY_; }
    /// \}

    /// The factory's `GetTransformationMatrix` of translation, rotation and scale. Note: the cuts take no part.
    karMatrix GetTransformationMatrix() const;

    /// \name Matrices of one part
    /// What the factory of the same name gives for the values of its group.
    /// \{

    /// Of this one part alone.
    karMatrix GetTranslateMatrix() const { return ::GetTranslateMatrix(translate.x, translate.y, translate.z); }
    karMatrix GetTranslateXMatrix() const { return ::GetTranslateXMatrix(translate.x); }
    karMatrix GetTranslateYMatrix() const { return ::GetTranslateYMatrix(translate.y); }
    karMatrix GetTranslateZMatrix() const { return ::GetTranslateZMatrix(translate.z); }
    karMatrix GetRotateMatrix() const { return ::GetRotateMatrix(rotate.x, rotate.y, rotate.z); }
    karMatrix GetRotateXMatrix() const { return ::GetRotateXMatrix(rotate.x); }
    karMatrix GetRotateYMatrix() const { return ::GetRotateYMatrix(rotate.y); }
    karMatrix GetRotateZMatrix() const { return ::GetRotateZMatrix(rotate.z); }
    karMatrix GetScaleMatrix() const { return ::GetScaleMatrix(scale.x, scale.y, scale.z); }
    karMatrix GetScaleXMatrix() const { return ::GetScaleXMatrix(scale.x); }
    karMatrix GetScaleYMatrix() const { return ::GetScaleYMatrix(scale.y); }
    karMatrix GetScaleZMatrix() const { return ::GetScaleZMatrix(scale.z); }
    karMatrix GetCutMatrix() const { return ::GetCutMatrix(cutXY_, cutXZ_, cutYX_, cutYZ_, cutZX_, cutZY_); }
    karMatrix GetCutXMatrix() const { return ::GetCutXMatrix(cutXY_, cutXZ_); }
    karMatrix GetCutYMatrix() const { return ::GetCutYMatrix(cutYX_, cutYZ_); }
    karMatrix GetCutZMatrix() const { return ::GetCutZMatrix(cutZX_, cutZY_); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one parameter as it is; the others stay.
    karTransformationInfo &SetScaleX(double v) { return set(scale.x, v); }
    karTransformationInfo &SetScaleY(double v) { return set(scale.y, v); }
    karTransformationInfo &SetScaleZ(double v) { return set(scale.z, v); }
    /// The angle is brought into [0, 2*pi] by whole turns of 6.283185307179586, both ends included: 6.283185307179586
    /// itself stays. An angle so large that a turn no longer changes it stays too.
    /// Note: each turn is rounded for itself, so a large angle keeps the sum of the roundings. It takes no longer.
    karTransformationInfo &SetRotateX(double v) { return set(rotate.x, _CheckAngleRange(v)); }
    karTransformationInfo &SetRotateY(double v) { return set(rotate.y, _CheckAngleRange(v)); } ///< \overload
    karTransformationInfo &SetRotateZ(double v) { return set(rotate.z, _CheckAngleRange(v)); } ///< \overload
    /// Stores one parameter as it is; the others stay.
    karTransformationInfo &SetTranslateX(double v) { return set(translate.x, v); }
    karTransformationInfo &SetTranslateY(double v) { return set(translate.y, v); } ///< \overload
    karTransformationInfo &SetTranslateZ(double v) { return set(translate.z, v); } ///< \overload
    karTransformationInfo &SetCutXY(double v) { return set(cutXY_, v); }
    karTransformationInfo &SetCutXZ(double v) { return set(cutXZ_, v); }
    karTransformationInfo &SetCutYX(double v) { return set(cutYX_, v); }
    karTransformationInfo &SetCutYZ(double v) { return set(cutYZ_, v); }
    karTransformationInfo &SetCutZX(double v) { return set(cutZX_, v); }
    karTransformationInfo &SetCutZY(double v) { return set(cutZY_, v); }
    /// Stores the three as they are.
    karTransformationInfo &SetScale(double x, double y, double z) { return set(scale, {x, y, z}); }
    /// Stores the three as they are.
    karTransformationInfo &SetTranslate(double x, double y, double z) { return set(translate, {x, y, z}); }
    /// Note: stores the three angles as they are, without the range check of the single setters.
    karTransformationInfo &SetRotate(double x, double y, double z) { return set(rotate, {x, y, z}); }
    /// \}

    /// \name Combination, place by place
    /// The angles pass the range check, the cuts stay as they are.
    /// \{

    /// Adds the translation, multiplies the scale, adds the rotation.
    karTransformationInfo &operator+=(const karTransformationInfo &o);
    /// Subtracts the translation, divides the scale, subtracts the rotation. A place of the scale stays as it is where
    /// that of `o` is smaller than 1e-50 in absolute value or not a number.
    karTransformationInfo &operator-=(const karTransformationInfo &o);
    /// \}

protected:
    double _CheckAngleRange(double a) const; ///< `a` in [0, 2*pi], see `SetRotateX`.

private:
    struct Places {
        double x;
        double y;
        double z;
    };

    karTransformationInfo &set(double &place, double v)
    {
        place = v;
        return *this;
    }
    karTransformationInfo &set(Places &places, const Places &v)
    {
        places = v;
        return *this;
    }

    Places scale{1.0, 1.0, 1.0};
    Places rotate{0.0, 0.0, 0.0};
    Places translate{0.0, 0.0, 0.0};
    double cutXY_ = 0.0;
    double cutXZ_ = 0.0;
    double cutYX_ = 0.0;
    double cutYZ_ = 0.0;
    double cutZX_ = 0.0;
    double cutZY_ = 0.0;
};

#endif
