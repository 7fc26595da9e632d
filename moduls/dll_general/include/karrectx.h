/// \file
/// The turned box of the pixel grid: its corners, what lies in it and where it can be seen.
#ifndef KAR_RECT_X_H
#define KAR_RECT_X_H

#include "karrect.h"

/// A box of the pixel grid turned about its first corner: the origin, the size and the angle in radians, positive from
/// the x axis towards the y axis. The corners 0 to 3 are the origin, the one along the width, the opposite one and the
/// one along the height. Arithmetic wraps at 32 bits; a real that goes to the grid saturates at the `int` range, and
/// not-a-number gives 0.
/// Note: every step stays on the grid, truncated or rounded as told, so the answers are right within a unit or so.
///
/// `karPoint::isFullIn(karRectX &r)` asks whether the point lies in the turned box or on its edge: its x between those
/// of the corners 3 and 1, its y between those of the corners 0 and 2, and its x also between the left and the right
/// edge at its y, the distance of each edge from its corner being rounded half away from zero.
/// Note: it describes `r` anew by `normLage` first, for good, whatever the answer. Where the tangent of the angle is
/// exactly 0 the corners alone decide, and nothing is divided.
class karRectX {
public:
    /// \name Construction
    /// \{

    /// Stores the parts as given; nothing is normalised.
    karRectX(karPoint origin, karDimension size, double angle) : origin_(origin), size_(size), angle_(angle) {}
    karRectX(karPoint origin, int width, int height, double angle)
        : karRectX(origin, karDimension(width, height), angle)
    {}
    karRectX(const karRectX &) = default; ///< Copies origin, size and angle.
    void init(karPoint origin, karDimension size, double angle) { *this = karRectX(origin, size, angle); }
    /// Note: the angle is a whole number of radians.
    void init(int x, int y, int width, int height, int angle)
    {
        *this = karRectX(karPoint(x, y), karDimension(width, height), angle);
    }
    /// \}

    karRectX &operator=(const karRectX &) = default; ///< Copies origin, size and angle.

    /// \name Type identity
    /// \{
    ObjektIdies GetType() const { return KAR_ID_RECT_X; }             ///< 46.
    int CanCast(ObjektIdies id) const { return id == KAR_ID_RECT_X; } ///< Equality with 46.
    /// \}

    /// \name Reading
    /// \{

    /// The parts as stored: origin, size and the angle in radians.
    int x() const { return origin_.x(); }
    int y() const { return origin_.y(); }
    int Width() const { return size_.width(); }
    int Height() const { return size_.height(); }
    karDimension Dim() const { return size_; }
    double Ang() const { return angle_; }
    /// Corner `i`, of which only the two low bits count. 0 is the origin; the others are turned about it by
    /// `karPoint::RotateElement`, each product truncated on its own.
    KAR_API karPoint Point(int i) const;
    /// The axis-parallel box around the turned one, with left <= right and top <= bottom.
    /// Note: where the second corner has come to lie in the row or column of the origin, it is the box from the origin
    /// to the opposite corner. A box that hardly turns may reach out of it.
    KAR_API karRect extent() const;
    /// \}

    /// \name Changing
    /// \{

    /// Stores the size; origin and angle stay.
    void Dim(int width, int height) { size_ = karDimension(width, height); }
    /// Describes the same box with an angle in [0, pi/2) from another corner, exchanging width and height where the
    /// corner is a neighbour.
    /// Note: the new origin is the truncated corner, so the box may move by a unit or so. An angle too large for a full
    /// turn to change it stays, less the three quarter turns of the last quadrant if it is positive.
    KAR_API void normLage();
    /// \}

    /// \name Relations
    /// \{
    KAR_API bool isFullIn(karRect &r) const; ///< Do all four corners lie in the box or on its edge?
    /// Do all four corners lie in the turned box or on its edge, by `karPoint::isFullIn`?
    /// Note: that describes `r` anew by `normLage`, for good, in the course of the first corner. `r` may be this box,
    /// whose corners then are those from before.
    KAR_API bool isFullIn(karRectX &r);
    /// Can anything of this box be seen in `r`? Neither is normalised.
    /// Note: the crossings are looked for along the edges of two opposite corners. Those of the horizontal limits are
    /// skipped for a corner whose y lies between the top and bottom of `r`, those of the vertical limits for one whose
    /// y, not x, lies between the left and right.
    /// Note: an edge of the corner that doesn't meet the horizontal limit has a place all the same: the one towards the
    /// first neighbour -left, the one towards the second the place of the first. Both begin anew for the opposite
    /// corner. The left between the two places counts as seen: a left of 0 does where neither edge meets the limit.
    KAR_API bool isVisibleIn(karRect &r) const;
    /// \}

private:
    friend bool karPoint::isFullIn(karRectX &r) const;

    struct Corners {
        karPoint at[4];
    };
    Corners corners() const;

    karPoint origin_;
    karDimension size_;
    double angle_;
};

#endif
