/// \file
/// The placement of a drawn element: where it is inserted, how it is scaled, turned and slanted, its colour and layer.
/// The constructors of points and boxes that take a block make a placed copy of themselves; they are told here.
#ifndef KAR_PARAM_BLOCK_H
#define KAR_PARAM_BLOCK_H

#include "karcolor.h"
#include "karrect.h"

/// The placement of an element. Rotation and slant are counted in angle units, 1,000,000 to the right angle; the block
/// keeps their sine, cosine and tangent beside them.
///
/// Placed copies: `karPoint(p, block)`, `karD_Point(p, block)`, `karRect(r, block)`, `karD_Rect(r, block)`. A null
/// block gives a plain copy. A point goes through `modify_point`; an integer place comes back as trunc(v + 0.5),
/// saturated at the `int` range, not-a-number giving 0. A box has its two stored corners placed, the (left, top) and
/// (right, bottom) ones of a `karRect`, the (left, bottom) and (right, top) ones of a `karD_Rect`.
/// Note: 0.5 is added whatever the sign, so -1.2 gives 0, unlike the conversion from `karD_Point`.
/// Note: a placed box isn't normalised and is no bounding box: it is the two placed corners.
class karParamBlock {
public:
    /// \name Construction
    /// Note: the sine, cosine and slope tangent that a constructor doesn't set are those of angle 0 and slope 0.
    /// \{
    karParamBlock() = default; ///< At (0, 0), scale 1, everything else 0.
    /// Everything set; angle and slope in angle units.
    KAR_API karParamBlock(karPoint insertPoint, double scaleX, double scaleY, int angle, int slope, int mirror,
                          const karColor &color, int layer);
    /// Slope 0.
    /// Note: the angle is stored without its sine and cosine, so nothing turns before `setAngle`.
    KAR_API karParamBlock(karPoint insertPoint, double scaleX, double scaleY, int angle, int mirror,
                          const karColor &color, int layer);
    karParamBlock(karParamBlock *o) : karParamBlock(*o) {} ///< A copy of `*o`.
    karParamBlock(const karParamBlock &) = default;        ///< Copies all parts.
    /// \}

    karParamBlock &operator=(const karParamBlock &) = default; ///< Copies all parts.

    /// \name Reading
    /// \{
    karPoint getInsertPoint() const { return insertPoint_; } ///< Where the origin of the element comes to lie.
    double getScaleX() const { return scaleX_; }             ///< Factor of x, applied first.
    double getScaleY() const { return scaleY_; }             ///< Factor of y, applied first.
    int getAngle() const { return angle_; }                  ///< In angle units.
    int getSlope() const { return slope_; }                  ///< In angle units.
    int getMirror() const { return mirror_; }                ///< Stored and combined. Note: nothing is mirrored by it.
    karColor getColor() const { return color_; }             ///< Carried along; `modify_point` doesn't ask for it.
    int getLayer() const { return layer_; }                  ///< Carried along, like the colour.
    /// \}

    /// \name Changing
    /// \{

    /// Stores the part; the others stay.
    void setInsertPoint(karPoint p) { insertPoint_ = p; }
    void setScaleX(double scale) { scaleX_ = scale; }
    void setScaleY(double scale) { scaleY_ = scale; }
    /// In angle units, with sine and cosine. They are exact for 0, 1000000, 2000000 and 3000000; every other value,
    /// 4000000 and the negative ones among them, takes those of angle * 1.57079635e-06.
    /// Note: so a full turn of 4000000 has a sine that is not 0.
    KAR_API void setAngle(int angle);
    /// In radians: radians * 636619.7629629073 rounded half away from zero, saturated at the `int` range, not-a-number
    /// giving 0; then as above.
    /// Note: a number that is neither an `int` nor a real needs a cast.
    KAR_API void setAngle(double radians);
    /// Note: stores the slope alone. The tangent stays that of the constructor, so on a block made without a slope this
    /// slants nothing.
    void setSlope(int slope) { slope_ = slope; }
    void setMirror(int mirror) { mirror_ = mirror; }
    void setColor(const karColor &color) { color_ = color; }
    void setLayer(int layer) { layer_ = layer; }
    /// Combines with the placement `o`, which may be this one; null changes nothing. The insert points and the angles
    /// are added, the scales multiplied; an angle above 4000000 is reduced by 4000000 once. The slopes are added, and a
    /// sum beyond a right angle becomes 0. The mirrors are combined bit by bit (exclusive or). Colour and layer stay.
    /// Sums wrap at 32 bits.
    /// Note: the insert point of `o` is neither scaled nor turned, and the slope tangent isn't refreshed. An angle of
    /// exactly 4000000 stays.
    KAR_API void Concat(karParamBlock *o);
    /// \}

    /// Places (x, y): y = scaleY * y, then x = scaleX * x - y * slopeTangent with this y, then the rotation, then the
    /// shift by the insert point. The result is always 0.
    int modify_point(double &x, double &y) const
    {
        const double scaledY = scaleY_ * y;
        const double slantedX = (scaleX_ * x) - (slope_ != 0 ? scaledY * slopeTangent_ : 0);
        const double turnedX = angle_ != 0 ? (slantedX * cosine_) - (scaledY * sine_) : slantedX;
        const double turnedY = angle_ != 0 ? (slantedX * sine_) + (scaledY * cosine_) : scaledY;
        x = turnedX + insertPoint_.x();
        y = turnedY + insertPoint_.y();
        return 0;
    }

private:
    karPoint insertPoint_;
    double scaleX_ = 1.0;
    double scaleY_ = 1.0;
    int angle_ = 0;
    int slope_ = 0;
    int mirror_ = 0;
    double sine_ = 0.0;
    double cosine_ = 1.0;
    double slopeTangent_ = 0.0;
    karColor color_;
    int layer_ = 0;
};

#endif
