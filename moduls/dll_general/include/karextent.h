/// \file
/// Extents of point arrays, ellipses and elliptical arcs, and an ellipse solved for one coordinate.
#ifndef KAR_EXTENT_H
#define KAR_EXTENT_H

#include "karexport.h"
#include "kardpoint.h"
#include "karrect.h"

/// An array of the host: its elements and how many there are.
template <class T>
struct karArrayT {
    T *elements;    ///< the first of `count`, not looked at where that is 0
    unsigned count; ///< how many there are
};

/// \name Extents
/// Ellipses are given by centre, semi-axes > 0 and rotation in radians; an arc also by start and end, values of the
/// parameter, in [0, 2*pi). Formulas are evaluated from left to right: (cx + (a*c)*cos t) - (b*s)*sin t with c = cos r
/// and s = sin r, ((b*b/(a*a))*D)*D with D = x - cx.
/// Note: coordinates that are not numbers don't move an extent.
/// \{

/// The box of the points.
/// Note: an empty array gives (-1e+300, -1e+300) to (1e+300, 1e+300).
KAR_API karD_Rect CalculateBoundingRect(const karArrayT<karD_Point> &points);

/// The box of a whole ellipse. Exact where the rotation is a multiple of pi/2 up to 2*pi, within 1e-50.
/// Note: elsewhere it is the box of 361 samples one degree apart, which lies inside the true extent: by up to 3.8e-5 of
/// the half extent in a direction. The overload for an arc from 0 to 0 finds all extremes.
KAR_API karD_Rect CalculateBoundingRect(const double &cx, const double &cy, const double &a, const double &b,
                                        const double &rotation);

/// The box of an elliptical arc, from its ends and the extremes between them. start >= end passes through 0.
/// Note: an extreme is looked for at t1 = arctan((b/a)/tan r), t2 = arctan(-(b/a)*tan r), t1 + pi and t2 + pi as they
/// come out. Where t1 or t2 is negative the same extreme at t + 2*pi isn't found on an arc with start < end, and always
/// counts on one through 0, whose box may so be larger than the arc.
KAR_API karD_Rect CalculateBoundingRect(const double &cx, const double &cy, const double &a, const double &b,
                                        const double &rotation, const double &start, const double &end);

/// Two angles of an ellipse, by its rotation r: 0 and pi/2 at multiples of pi, pi/2 and 0 at odd multiples of pi/2 (up
/// to 2*pi, within 1e-50), else atan2(a*cos r, b*sin r) and atan2(a*sin r, -b*cos r). The centre isn't read.
/// Note: elsewhere than at the multiples these are not the parameters of the extremes; see the arc's extent for those.
KAR_API void CalculateExtremAngle(const double &cx, const double &cy, const double &a, const double &b,
                                  const double &rotation, double &first, double &second);

/// The y with (y*sin(angle) - cy)^2 + (b^2/a^2)*(x - cx)^2 = b^2: as `CalculateRoots`, 2, 1 or 0 with both outputs 0.
/// Note: sin(angle) = 0 divides by zero.
KAR_API int CalculateEllipseYValue(const double &cx, const double &cy, const double &a, const double &b,
                                   const double &angle, const double &x, double &y1, double &y2);
/// The x with (x*cos(angle) - cx)^2 + (a^2/b^2)*(y - cy)^2 = a^2: as above.
KAR_API int CalculateEllipseXValue(const double &cx, const double &cy, const double &a, const double &b,
                                   const double &angle, const double &y, double &x1, double &x2);

/// \}

#endif
