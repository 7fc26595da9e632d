/// \file
/// Axis-parallel boxes: of the pixel grid with y downwards, of the drawing plane with y upwards.
#ifndef KAR_RECT_H
#define KAR_RECT_H

#include "kardpoint.h"

#include <utility>

/// A box of the pixel grid. Normalised it has left <= right and top <= bottom: y grows downwards. Nothing but the
/// ordering constructors and `init` normalises it. Arithmetic wraps at 32 bits.
/// Note: the right and the bottom edge belong to it, yet its width is right - left.
class karRect {
public:
    /// \name Construction
    /// \{
    karRect() = default;                                                                          ///< All zero.
    karRect(int x1, int y1, int x2, int y2) { init(x1, y1, x2, y2); }                             ///< Normalised.
    karRect(const karPoint &a, const karPoint &b) : topLeft_(a.Min(b)), bottomRight_(a.Max(b)) {} ///< Normalised.
    /// Corner `p` at the left and top, `p` + `d` at the right and bottom.
    /// Note: not normalised; a negative dimension gives an inverted box, other than in `karD_Rect`.
    karRect(const karPoint &p, const karDimension &d) : topLeft_(p), bottomRight_(p + d) {}
    karRect(const karRect &) = default; ///< Copies the two corners.
    /// The placed copy of `r`, not normalised: see `karparamblock.h`.
    KAR_API karRect(const karRect &r, karParamBlock *block);
    /// Normalised.
    void init(int x1, int y1, int x2, int y2) { *this = karRect(karPoint(x1, y1), karPoint(x2, y2)); }
    /// \}

    karRect &operator=(const karRect &) = default; ///< Copies the two corners.

    /// \name Type identity
    /// \{
    ObjektIdies GetType() const { return KAR_ID_RECT; }             ///< 10.
    int IsType(ObjektIdies id) const { return id == KAR_ID_RECT; }  ///< Equality with 10.
    int CanCast(ObjektIdies id) const { return id == KAR_ID_RECT; } ///< Equality with 10.
    /// \}

    /// \name Reading
    /// \{

    /// Edges and corners as they are stored, normalised or not.
    int left() const { return topLeft_.x(); }
    int top() const { return topLeft_.y(); }
    int right() const { return bottomRight_.x(); }
    int bottom() const { return bottomRight_.y(); }
    karPoint topLeft() const { return topLeft_; }
    karPoint topRight() const { return karPoint(right(), top()); }
    karPoint bottomLeft() const { return karPoint(left(), bottom()); }
    karPoint bottomRight() const { return bottomRight_; }
    karPoint centre() const { return (topLeft_ + bottomRight_) / 2; }     ///< The sum wraps, its half truncates.
    int width() const { return kar::wrapSub(right(), left()); }           ///< right - left, without a plus one.
    int height() const { return kar::wrapSub(bottom(), top()); }          ///< bottom - top, without a plus one.
    karDimension size() const { return karDimension(width(), height()); } ///< Width and height.
    /// The chain ((left == top) == right) == bottom, each comparison being 0 or 1.
    /// Note: the all-zero box and (1, 1, 1, 1) are null, (5, 5, 5, 5) isn't, and left 2, top 5, right 0, bottom 1 is.
    bool isNull() const
    {
        const int first = left() == top();
        const int second = first == right();
        return second == bottom();
    }
    /// \}

    /// \name Changing: plain stores, no order kept
    /// \{

    /// Stores the edge, or the two edges that meet in the corner; the others stay.
    void left(int value) { topLeft_.x(value); }
    void top(int value) { topLeft_.y(value); }
    void right(int value) { bottomRight_.x(value); }
    void bottom(int value) { bottomRight_.y(value); }
    void topLeft(karPoint p) { topLeft_ = p; }
    void topRight(karPoint p)
    {
        right(p.x());
        top(p.y());
    }
    void bottomLeft(karPoint p)
    {
        left(p.x());
        bottom(p.y());
    }
    void bottomRight(karPoint p) { bottomRight_ = p; }
    karRect &makeNull() { return *this = karRect(); } ///< All zero.
    /// \}

    /// \name Moving and turning
    /// \{
    void operator+=(const karPoint &p) { MoveElement(p.x(), p.y()); } ///< Adds to both corners.
    /// Subtracts from both corners.
    void operator-=(const karPoint &p) { MoveElement(kar::wrapNeg(p.x()), kar::wrapNeg(p.y())); }
    /// Adds (dx, dy) to both corners.
    void MoveElement(int dx, int dy)
    {
        topLeft_.MoveElement(dx, dy);
        bottomRight_.MoveElement(dx, dy);
    }
    /// Both corners as `karPoint::RotateElement` turns them.
    /// Note: the result isn't normalised and is no bounding box: it is the two turned corners.
    KAR_API void RotateElement(double angle);
    KAR_API void RotateElement(double cosine, double sine);                 ///< \overload
    KAR_API void RotateElement(double angle, int cx, int cy);               ///< \overload
    KAR_API void RotateElement(double cosine, double sine, int cx, int cy); ///< \overload
    /// \}

    /// \name Relations
    /// \{

    /// All four places are equal.
    int operator==(const karRect &o) const { return topLeft_ == o.topLeft_ && bottomRight_ == o.bottomRight_; }
    /// A place differs.
    int operator!=(const karRect &o) const { return topLeft_ != o.topLeft_ || bottomRight_ != o.bottomRight_; }
    bool contains(karPoint p) const { return p >= topLeft_ && p <= bottomRight_; } ///< All four edges included.
    /// Both stored corners of `o`.
    bool contains(const karRect &o) const { return contains(o.topLeft_) && contains(o.bottomRight_); }
    /// Have the two boxes a point in common? Touching boxes have.
    bool intersects(const karRect &o) const { return topLeft_.Max(o.topLeft_) <= bottomRight_.Min(o.bottomRight_); }
    /// Can anything of the turned box be seen in this box: see `karrectx.h`.
    KAR_API bool isVisibleIn(karRectX &r);
    /// \}

    /// \name Combining
    /// \{

    /// The box around both.
    /// Note: a null box counts like any other and pulls the result towards the origin.
    void unionrect(const karRect &o)
    {
        topLeft_ = topLeft_.Min(o.topLeft_);
        bottomRight_ = bottomRight_.Max(o.bottomRight_);
    }
    /// The box common to both and true; if there is none, all zero and false. Touching boxes have one.
    KAR_API bool setintersects(const karRect &o);
    /// \}

private:
    karPoint topLeft_;
    karPoint bottomRight_;
};

/// Inside the box or on its edge. `r` isn't normalised first.
inline bool karPoint::isFullIn(karRect &r) const { return r.contains(*this); }

/// A box of the drawing plane. Normalised it has left <= right and bottom <= top: y grows upwards. Comparisons have no
/// tolerance.
/// Note: with inverted input `contains` is false for every point.
/// Note: to and from a `karRect` every place goes by its name (`bottom` from `bottom`), never by the sense of the axes,
/// in constructors, assignment, comparison, union and tests alike. A normalised `karRect` therefore becomes a
/// `karD_Rect` whose bottom lies above its top.
class karD_Rect {
public:
    /// \name Construction
    /// \{
    karD_Rect() = default;                                                          ///< All zero.
    karD_Rect(double x1, double y1, double x2, double y2) { init(x1, y1, x2, y2); } ///< Normalised.
    /// \overload
    karD_Rect(const karD_Point &a, const karD_Point &b) : bottomLeft_(a), topRight_(b) { NormalizeRect(); }
    /// Corners `p` and `p` + `d`, normalised, other than in `karRect`.
    karD_Rect(const karD_Point &p, const karD_Dimension &d) : karD_Rect(p, p + d) {}
    karD_Rect(const karD_Rect &) = default;                                               ///< Copies the two corners.
    karD_Rect(const karRect &r) : bottomLeft_(r.bottomLeft()), topRight_(r.topRight()) {} ///< Name to name.
    /// The placed copy of `r`, not normalised: see `karparamblock.h`.
    KAR_API karD_Rect(const karD_Rect &r, karParamBlock *block);
    KAR_API karD_Rect(const karRect &r, karParamBlock *block); ///< \overload
    /// Normalised; a pair that can't be compared, not being numbers, stays as it comes.
    void init(const double &x1, const double &y1, const double &x2, const double &y2)
    {
        *this = karD_Rect(karD_Point(x1, y1), karD_Point(x2, y2));
    }
    /// \overload
    void SetRect(const double &x1, const double &y1, const double &x2, const double &y2) { init(x1, y1, x2, y2); }
    /// \}

    /// \name Assignment
    /// \{
    karD_Rect &operator=(const karD_Rect &) = default;                      ///< Copies the two corners.
    karD_Rect &operator=(const karRect &r) { return *this = karD_Rect(r); } ///< Name to name.
    /// \}

    /// \name Type identity
    /// \{
    ObjektIdies GetType() const { return KAR_ID_D_RECT; }             ///< 14.
    int IsType(ObjektIdies id) const { return id == KAR_ID_D_RECT; }  ///< Equality with 14.
    int CanCast(ObjektIdies id) const { return id == KAR_ID_D_RECT; } ///< Equality with 14.
    /// \}

    /// \name Reading
    /// \{

    /// Edges and corners as they are stored, normalised or not.
    double left() const { return bottomLeft_.x(); }
    double right() const { return topRight_.x(); }
    double top() const { return topRight_.y(); }
    double bottom() const { return bottomLeft_.y(); }
    karD_Point topLeft() const { return karD_Point(left(), top()); }
    karD_Point topRight() const { return topRight_; }
    karD_Point bottomLeft() const { return bottomLeft_; }
    karD_Point bottomRight() const { return karD_Point(right(), bottom()); }
    /// Half the sum of left and right, half the sum of bottom and top.
    karD_Point centre() const { return karD_Point((left() + right()) * 0.5, (bottom() + top()) * 0.5); }
    double width() const { return right() - left(); }                         ///< right - left.
    double height() const { return top() - bottom(); }                        ///< top - bottom.
    karD_Dimension size() const { return karD_Dimension(width(), height()); } ///< Width and height.
    /// Without extent: left == right and bottom == top. Note: not the rule of `karRect`.
    bool isNull() const { return left() == right() && bottom() == top(); }
    /// \}

    /// \name Ordered stores
    /// A new value that doesn't stay strictly on its side of the opposite place pushes itself there: `left(v)` stores v
    /// if v < right; otherwise left takes the old right, and right takes v. The other three alike.
    /// Note: equal values count as crossing; the box is the same afterwards.
    /// \{

    /// Stores one edge and keeps it on its side of the opposite one.
    KAR_API void left(const double &value);
    KAR_API void right(const double &value);
    KAR_API void top(const double &value);
    KAR_API void bottom(const double &value);
    /// The corners store their two places so, x first.
    void topLeft(karD_Point p)
    {
        left(p.x());
        top(p.y());
    }
    /// \overload
    void topRight(karD_Point p)
    {
        right(p.x());
        top(p.y());
    }
    /// \overload
    void bottomLeft(karD_Point p)
    {
        left(p.x());
        bottom(p.y());
    }
    /// \overload
    void bottomRight(karD_Point p)
    {
        right(p.x());
        bottom(p.y());
    }
    void topLeft(karPoint p) { topLeft(karD_Point(p)); }         ///< \overload
    void topRight(karPoint p) { topRight(karD_Point(p)); }       ///< \overload
    void bottomLeft(karPoint p) { bottomLeft(karD_Point(p)); }   ///< \overload
    void bottomRight(karPoint p) { bottomRight(karD_Point(p)); } ///< \overload
    /// \}

    /// \name Plain stores, no order kept
    /// \{

    /// Stores one edge as it is; the others stay.
    void set_left(const double &value) { bottomLeft_.x(value); }
    void set_right(const double &value) { topRight_.x(value); }
    void set_top(const double &value) { topRight_.y(value); }
    void set_bottom(const double &value) { bottomLeft_.y(value); }
    void add_left(const double &value) { bottomLeft_.x() += value; }       ///< In the sense of the coordinate.
    void add_right(const double &value) { topRight_.x() += value; }        ///< \overload
    void add_top(const double &value) { topRight_.y() += value; }          ///< \overload
    void add_bottom(const double &value) { bottomLeft_.y() += value; }     ///< \overload
    KAR_API void topBottom(const double &newTop, const double &newBottom); ///< Stores both edges as they are.
    KAR_API void leftRight(const double &newLeft, const double &newRight); ///< Stores both edges as they are.
    karD_Point &topRight() { return topRight_; }     ///< The stored corner; the two composed corners have no such form.
    karD_Point &bottomLeft() { return bottomLeft_; } ///< \overload
    karD_Rect &makeNull() { return *this = karD_Rect(); } ///< All zero.
    /// \}

    /// \name Moving and widening
    /// \{
    KAR_API void operator+=(const karD_Point &p);                  ///< Adds to both corners.
    KAR_API void operator-=(const karD_Point &p);                  ///< Subtracts from both corners.
    void operator+=(const karPoint &p) { *this += karD_Point(p); } ///< Adds to both corners.
    void operator-=(const karPoint &p) { *this -= karD_Point(p); } ///< Subtracts from both corners.
    /// left - d and right + d if left <= right, otherwise left + d and right - d: a positive d widens an inverted box
    /// too. A negative d shrinks and may invert it.
    KAR_API karD_Rect &InflateRect_X(const double &d);
    KAR_API karD_Rect &InflateRect_Y(const double &d); ///< The same with bottom and top.
    KAR_API karD_Rect &InflateRect(const double &d);   ///< Both, with the same d.
    /// Exchanges left and right where right < left, bottom and top where bottom > top.
    karD_Rect &NormalizeRect()
    {
        if (right() < left())
            std::swap(bottomLeft_.x(), topRight_.x());
        if (bottom() > top())
            std::swap(bottomLeft_.y(), topRight_.y());
        return *this;
    }
    /// \}

    /// \name Relations
    /// \{

    /// All four places are equal.
    int operator==(const karD_Rect &o) const { return bottomLeft_ == o.bottomLeft_ && topRight_ == o.topRight_; }
    /// A place differs.
    int operator!=(const karD_Rect &o) const { return bottomLeft_ != o.bottomLeft_ || topRight_ != o.topRight_; }
    /// All four places are equal, name to name.
    int operator==(const karRect &o) const { return *this == karD_Rect(o); }
    int operator!=(const karRect &o) const { return *this != karD_Rect(o); }         ///< A place differs, name to name.
    bool contains(karPoint p) const { return contains(karD_Point(p)); }              ///< All four edges included.
    bool contains(karD_Point p) const { return p >= bottomLeft_ && p <= topRight_; } ///< \overload
    bool contains(const karRect &o) const { return contains(karD_Rect(o)); }         ///< Its two stored corners.
    bool contains(const karD_Rect &o) const { return contains(o.bottomLeft_) && contains(o.topRight_); } ///< \overload
    /// With the places of `o` name to name.
    bool intersects(const karRect &o) const { return intersects(karD_Rect(o)); }
    /// Does this box contain the (left, bottom) or the (right, top) corner of `o`?
    /// Note: only those two are tried: boxes that cross like a plus sign, and a box inside `o`, don't intersect.
    /// `overlapped` is the true test.
    bool intersects(const karD_Rect &o) const { return contains(o.bottomLeft_) || contains(o.topRight_); }
    /// Have the two boxes a point in common? Touching boxes have.
    /// Note: normalises `o` and the receiver first, both for good.
    KAR_API bool overlapped(karD_Rect &o);
    /// \}

    /// \name Combining
    /// \{
    void unionrect(const karRect &o) { unionrect(karD_Rect(o)); } ///< With the places of `o` name to name.
    /// left and bottom become the lesser, right and top the greater of each pair.
    void unionrect(const karD_Rect &o)
    {
        bottomLeft_ = bottomLeft_.Min(o.bottomLeft_);
        topRight_ = topRight_.Max(o.topRight_);
    }
    /// With the places of `o` name to name.
    bool setintersects(const karRect &o) { return setintersects(karD_Rect(o)); }
    /// If `intersects(o)`, takes on the values of `o` and gives true; otherwise all zero and false.
    /// Note: no intersection is computed; `average` gives that. The corners of `o` go through the ordered stores,
    /// bottom left and then top right, so an operand that isn't normalised comes out as those leave it.
    KAR_API bool setintersects(const karD_Rect &o);
    /// The box common to both; all zero if there is none.
    /// Note: normalises `o` and the receiver first, both for good.
    KAR_API karD_Rect average(karD_Rect &o);
    /// \}

private:
    karD_Point bottomLeft_;
    karD_Point topRight_;
};

#endif
