/// \file
/// Intersections of lines, arcs, ellipses and elliptical arcs, and the perpendicular feet on an ellipse.
#ifndef KAR_INTERSECT_H
#define KAR_INTERSECT_H

#include "karexport.h"

/// \name Intersections
/// Curves are given by their parameters: a line by two points; an arc by centre, radius > 0, start and end; an ellipse
/// by centre, semi-axes > 0 and rotation; an elliptical arc also by start and end, which are values of the parameter t
/// of X(t) = cx + a*cos r*cos t - b*sin r*sin t, Y(t) = cy + a*sin r*cos t + b*cos r*sin t, in [0, 2*pi). Angles are
/// radians, counter-clockwise; start above end passes through 0.
///
/// `limitMask` says which curves are bounded: bit 1 the first of the call, bit 2 the second; a curve whose bit is clear
/// counts as unbounded. The result is the number of points that pass the test of each set bit (tolerance 1e-10).
///
/// An output may be the same variable as an input, which counts with its value on entry. Formulas are evaluated from
/// left to right, with squares formed first: (cx + (a*c)*cos t) - (b*s)*sin t with c = cos r and s = sin r.
///
/// Method: the half-angle substitution u = tan(t/2) turns a line and an ellipse into a quadratic, two ellipses into a
/// quartic, which Bairstow's iteration solves.
/// \{

/// The crossing of two lines: 1, or 0 for parallel and coincident lines, whose (x, y) is then (0, 0).
/// Note: where a limit refuses the crossing the result is 0, and (x, y) hold the crossing.
KAR_API int Intersect_Line_Line(const double &x1, const double &y1, const double &x2, const double &y2,
                                const double &x3, const double &y3, const double &x4, const double &y4,
                                const int &limitMask, double &x, double &y);

/// `Intersect_Line_EllipticalArc` with a = b = `radius` and rotation 0.
KAR_API int Intersect_Line_Arc(const double &x1, const double &y1, const double &x2, const double &y2, const double &cx,
                               const double &cy, const double &radius, const double &start, const double &end,
                               const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y);

/// `Intersect_Line_EllipticalArc` from 0.0 to 6.283185307179586.
KAR_API int Intersect_Line_Ellipse(const double &x1, const double &y1, const double &x2, const double &y2,
                                   const double &cx, const double &cy, const double &a, const double &b,
                                   const double &rotation, const int &limitMask, double &p1x, double &p1y, double &p2x,
                                   double &p2y);

/// 0 to 2 points, packed in the order of the roots; an output that gets no point is 0. A tangent gives one point.
/// Note: a line that crosses the curve at t = pi loses that point unless it is horizontal: the root is at infinity. The
/// candidate of a horizontal line is (cx - a*cos r, cy + a*sin r), which on a rotated ellipse isn't the
/// point of t = pi.
/// Note: where the quadratic has no second degree and the first root isn't 0, the point of t = 0 is a second candidate,
/// whether or not it lies on the line; only the limits keep it out.
/// Note: where the line passes the point of t = pi within rounding, the other crossing is spoiled by cancellation.
/// Note: a line with coincident end points counts as vertical, and a vertical line has no candidate at t = pi.
/// Note: a root that is not a number counts with `limitMask` 0; no limit lets it pass.
KAR_API int Intersect_Line_EllipticalArc(const double &x1, const double &y1, const double &x2, const double &y2,
                                         const double &cx, const double &cy, const double &a, const double &b,
                                         const double &rotation, const double &start, const double &end,
                                         const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y);

/// `Intersect_Ellipse_Ellipse` with a = b = radius and rotations 0, and two outputs.
/// Note: points of the third and fourth root are counted and not seen. A caller who needs them asks for the ellipses.
/// Note: a first radius below 0.01 gives 0.
KAR_API int Intersect_Arc_Arc(const double &c1x, const double &c1y, const double &r1, const double &start1,
                              const double &end1, const double &c2x, const double &c2y, const double &r2,
                              const double &start2, const double &end2, const int &limitMask, double &p1x, double &p1y,
                              double &p2x, double &p2y);

/// \overload
/// With a limit to the iteration, see `Intersect_Ellipse_Ellipse`.
KAR_API int Intersect_Arc_Arc(const double &c1x, const double &c1y, const double &r1, const double &start1,
                              const double &end1, const double &c2x, const double &c2y, const double &r2,
                              const double &start2, const double &end2, const int &limitMask, double &p1x, double &p1y,
                              double &p2x, double &p2y, int &passes);

/// 0 to 4 points.
/// Note: 0 with untouched outputs where |a1*b1| is below 0.0001; the second ellipse isn't tested.
/// Note: an accepted point stands in the slot of its root, not packed; a slot that gets no point is left as it was.
/// Note: a crossing at t = pi of the second ellipse is lost where the quartic's leading coefficient is below 0.0001.
/// Note: a root whose imaginary part is below 0.0001 counts as real, so that near misses give points too; only a limit
/// tests whether they lie on the first ellipse.
/// Note: a root that is not a number counts as real and passes without limits, with coordinates that are not numbers.
/// Note: the iteration has no limit, and a few in 10,000 random pairs never end (docs/crossings.md), far more of
/// touching, concentric and osculating ones. The form with `passes` always ends.
KAR_API int Intersect_Ellipse_Ellipse(const double &c1x, const double &c1y, const double &a1, const double &b1,
                                      const double &rotation1, const double &start1, const double &end1,
                                      const double &c2x, const double &c2y, const double &a2, const double &b2,
                                      const double &rotation2, const double &start2, const double &end2,
                                      const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y,
                                      double &p3x, double &p3y, double &p4x, double &p4y);

/// \overload
/// With a limit to the iteration; a run that ends within it has the same bits as without.
/// `passes` on entry: the most passes allowed for each factor of the quartic. On return: the passes used over all
/// factors, or -1 if the limit was reached; the result then counts the points of the factors that did settle.
KAR_API int Intersect_Ellipse_Ellipse(const double &c1x, const double &c1y, const double &a1, const double &b1,
                                      const double &rotation1, const double &start1, const double &end1,
                                      const double &c2x, const double &c2y, const double &a2, const double &b2,
                                      const double &rotation2, const double &start2, const double &end2,
                                      const int &limitMask, double &p1x, double &p1y, double &p2x, double &p2y,
                                      double &p3x, double &p3y, double &p4x, double &p4y, int &passes);

/// \}

/// \name Perpendicular feet
/// \{

/// The points of an elliptical arc whose normal passes through (px, py): 0 to 4, packed in the order of the roots; an
/// output that gets no point is 0. Method: a quartic in z = e^(it), solved by Bairstow's iteration.
/// Note: a root is (cos t, sin t) as it stands; the foot counts where its squared modulus is within 1e-10 of 1.
/// Note: a foot at t = 0 or pi is lost where its cosine rounds beyond 1.
/// Note: the quartic of a circle has no leading coefficient: mostly one foot of the two comes out, the other root not
/// being a number. From the centre of a circle every point is a foot, and no root is a number: 0. The iteration has no
/// limit; the form with `passes` always ends.
KAR_API int Calculate_Perpendicular_Points_To_Ellipse(const double &px, const double &py, const double &cx,
                                                      const double &cy, const double &a, const double &b,
                                                      const double &rotation, const double &start, const double &end,
                                                      double &p1x, double &p1y, double &p2x, double &p2y, double &p3x,
                                                      double &p3y, double &p4x, double &p4y);

/// \overload
/// With a limit to the iteration; `passes` as for `Intersect_Ellipse_Ellipse`.
KAR_API int Calculate_Perpendicular_Points_To_Ellipse(const double &px, const double &py, const double &cx,
                                                      const double &cy, const double &a, const double &b,
                                                      const double &rotation, const double &start, const double &end,
                                                      double &p1x, double &p1y, double &p2x, double &p2y, double &p3x,
                                                      double &p3y, double &p4x, double &p4y, int &passes);

/// \}

#endif
