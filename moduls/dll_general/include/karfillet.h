/// \file
/// Fillet and chamfer: the corner of two lines blended by an arc or cut straight.
#ifndef KAR_FILLET_H
#define KAR_FILLET_H

#include "karenum.h"
#include "karexport.h"

/// \name Corners of two lines
/// Lines are given by two points each and count as unbounded. The pick point (px, py) tells which of the four sectors
/// at the corner is meant; it must lie off both lines, else the results are not numbers. 0, or -7 with untouched
/// outputs. Outputs may be the same variables as inputs. Formulas are evaluated from left to right: a foot F is offset
/// by (radius*v)/n with v = P - F and n = sqrt(v.x*v.x + v.y*v.y).
/// Note: lines are parallel where their determinant is exactly 0; there is no tolerance.
/// Note: each point is the solution of a 2x2 system. One that is singular by rounding keeps its right side, which then
/// stands for the point.
/// \{

/// The arc of the given radius that touches both lines on the side of the pick point: corner, points of tangency on
/// line 1 and line 2, centre. Method: both lines are offset towards the pick point and crossed. -7 for parallel lines.
/// Note: `radius` isn't tested; a negative one offsets away from the pick point.
KAR_API errorCodesKARTORY Calculate_Fillet_Line_Line(const double &x1, const double &y1, const double &x2,
                                                     const double &y2, const double &x3, const double &y3,
                                                     const double &x4, const double &y4, const double &px,
                                                     const double &py, const double &radius, double &cornerX,
                                                     double &cornerY, double &tangent1X, double &tangent1Y,
                                                     double &tangent2X, double &tangent2Y, double &centreX,
                                                     double &centreY);

/// The cut at `length1` from the corner on line 1 and `length2` on line 2: corner and the ends of the cut on line 1 and
/// line 2. A length below 0 counts as not given, 0 as given. With both lengths `angle` isn't read; with one, `angle`
/// >= 0 in radians is the one between the cut and the line of that length, and the other length follows by the sine
/// rule. -7, looked for in this order: no length; one length and a negative angle; parallel lines.
/// Note: a length that is not a number counts as given, and an angle that is not a number gives -7 where it is read.
/// Note: the sine rule takes pi as 3.141592654, so its length is off by some 1e-10 of itself.
KAR_API errorCodesKARTORY Calculate_Chamfer_Line_Line(const double &x1, const double &y1, const double &x2,
                                                      const double &y2, const double &x3, const double &y3,
                                                      const double &x4, const double &y4, const double &px,
                                                      const double &py, const double &length1, const double &length2,
                                                      const double &angle, double &cornerX, double &cornerY,
                                                      double &chamfer1X, double &chamfer1Y, double &chamfer2X,
                                                      double &chamfer2Y);

/// \}

#endif
