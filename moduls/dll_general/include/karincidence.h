/// \file
/// Lines, circles, arcs and ellipses: directions, which side, on or off, how far, where the foot falls.
///
/// Angles are radians, counter-clockwise from the positive x axis, unless a function says otherwise. A normalised angle
/// is one from atan2 or atan to which 6.283185307179586 is added when it is negative.
///
/// A line goes through points 1 and 2. An arc has a centre, a radius and two angles and runs counter-clockwise from
/// `start` to `end`; start > end passes through angle 0. A point of an ellipse with centre, semi-axes a and b and
/// rotation r is (cx + a*cos r*cos t - b*sin r*sin t, cy + a*sin r*cos t + b*cos r*sin t); `start` and `end` of an
/// elliptical arc are values of the parameter t, not polar angles.
///
/// What is not guarded below divides by zero or takes the arc cosine of more than 1, and the infinities and
/// not-a-numbers pass on.
#ifndef KAR_INCIDENCE_H
#define KAR_INCIDENCE_H

#include "kardpoint.h"
#include "karexport.h"

class kar3D_Point;
class kar3DVector;

/// \name Angles
/// \{

/// The angle of (x, y), normalised, 0 for (0, 0): radians for fullCircle = 0, otherwise a full turn counts
/// `fullCircle`, as 360 for degrees.
KAR_API double arcusTangens(const double &y, const double &x, const double &fullCircle);

/// The arc tangent of `t`, normalised.
KAR_API double arcusTangens(const double &t);

/// The angle at point 0 between the directions to points 1 and 2, in [0, pi], or 2*pi less that angle where the
/// direction to point 2 is less inclined to the z axis than that to point 1.
/// Note: nothing but the inclination to the z axis tells the two, so in the x-y plane the angle never exceeds pi.
/// Nothing is clamped: where rounding lifts the quotient above 1, and for a zero vector, the angle is not a number.
KAR_API double GetAngle(const double &x0, const double &y0, const double &z0, const double &x1, const double &y1,
                        const double &z1, const double &x2, const double &y2, const double &z2);

/// The angle between two integer vectors in degrees, 0 to 180, or -1000.0 where the product of their lengths is at most
/// 0.1.
/// Note: the inner product wraps at 32 bits, the lengths don't, so vectors longer than about 32767 may give any angle.
KAR_API double give_angle(int x1, int y1, int x2, int y2);

/// The normalised direction from point 1 to point 2.
/// Note: where |x2 - x1| < 1e-50 it is pi/2 for y2 > y1 and 3*pi/2 otherwise, coincident points included.
KAR_API double AngleX_Line(const double &x1, const double &y1, const double &x2, const double &y2);

/// \}

/// \name Sides
/// \{

/// Side of (px, py) seen along the directed line: -1 strictly left, 1 right or on the line.
/// Note: there is no 0 and no tolerance. Coincident end points give 1.
KAR_API int SideOfPoint_From_Line(const double &x1, const double &y1, const double &x2, const double &y2,
                                  const double &px, const double &py);

/// On which side of C the foot of D on the line AB falls: 1 towards B, -1 towards A. The box of C and B is asked before
/// that of C and A; a foot in neither belongs to the nearer of B and A, B where they are equally far from C.
KAR_API int ChangedSideOfLine(const double &ax, const double &ay, const double &bx, const double &by, const double &cx,
                              const double &cy, const double &dx, const double &dy);

/// \}

/// \name On or off
/// \{

/// `testDistance`: the point lies no further than `tolerance` from the unbounded line. `testRange`: it lies in the box
/// of the two end points widened by `tolerance`. Without either, true.
/// Note: a distance that is not a number passes, a coordinate of the point that is not a number doesn't lie in a box.
KAR_API bool IsPointOnLine(double x1, double y1, double x2, double y2, double px, double py, bool testDistance,
                           bool testRange, double tolerance);

/// |(px - cx)^2 + (py - cy)^2 - radius^2| < tolerance.
/// Note: the tolerance is on squared lengths, so the band grows narrower as the radius grows.
KAR_API bool IsPointOnCircle(double cx, double cy, double radius, double px, double py, double tolerance);

/// Whether the direction of the point from the centre lies on the arc, within 1e-50, and unless `onCircleKnown` the
/// point on the circle. `start` and `end` are taken to lie in [0, 2*pi).
/// Note: start = end accepts that one angle only.
KAR_API bool IsPointOnArc(double cx, double cy, double radius, double start, double end, double px, double py,
                          bool onCircleKnown, double tolerance);

/// With (u, v) the point carried to the unit circle, |u^2 + v^2 - 1| < tolerance. With P = a*cos r, Q = -b*sin r,
/// R = a*sin r, S = b*cos r and the offsets dx, dy from the centre, u = (S*dx - Q*dy)/(P*S - Q*R) and
/// v = (P*dy - R*dx)/(P*S - Q*R).
KAR_API bool IsPointOnEllipse(double cx, double cy, double a, double b, double rotation, double px, double py,
                              double tolerance);

/// Whether the point lies on the ellipse as above and its parameter t = acos u, or 2*pi - acos u for v < 0, between
/// `start` and `end`, without tolerance.
/// Note: start = end is the whole ellipse. The tenth argument is not read. Nothing is clamped, so a point with |u|
/// beyond 1 has a t that is not a number and lies on no arc.
KAR_API bool IsPointOnEllipticalArc(double cx, double cy, double a, double b, double rotation, double start, double end,
                                    double px, double py, bool, double tolerance);

/// \}

/// \name Distances and feet
/// \{

/// Distance of (px, py) from the unbounded line: |px - x1| where |x2 - x1| < 1e-50, |py - y1| where |y2 - y1| < 1e-50.
/// Note: coincident end points give |px - x1|.
KAR_API double Calculate_Distance_To_Line(const double &px, const double &py, const double &x1, const double &y1,
                                          const double &x2, const double &y2);

/// Mirrors (px, py) at the unbounded line. Always true.
/// Note: coincident end points count as a horizontal line.
KAR_API bool Calculate_Mirror_Point_To_Line(const double &px, const double &py, const double &x1, const double &y1,
                                            const double &x2, const double &y2, double &mirrorX, double &mirrorY);

/// The foot of the perpendicular from (px, py) on the unbounded line. Result: 1, or with `testOnSegment` 1 where the
/// foot lies in the box of the end points widened by 1e-10 and 0 elsewhere; the foot is written in either case.
/// Note: coincident end points count as a horizontal line.
KAR_API int Calculate_Perpendicular_Point_To_Line(const double &px, const double &py, const double &x1,
                                                  const double &y1, const double &x2, const double &y2, double &footX,
                                                  double &footY, bool testOnSegment);

/// \}

/// \name Circles
/// \{

/// Centre and radius of the circle through three points. Always true.
/// Note: points on one line leave the infinities or not-a-numbers of the solver.
KAR_API bool Calculate_Circle_By_3Points(const double &x1, const double &y1, const double &x2, const double &y2,
                                         const double &x3, const double &y3, double &cx, double &cy, double &radius);

/// The centre, left of the direction from point 1 to point 2, of the circle through both with the given radius, so that
/// the short arc runs counter-clockwise from point 1 to point 2. Always true; only the square of `radius` counts.
/// The centre lies on dx*X + dy*Y + k = 0; with X eliminated, A*Y^2 + B*Y + C = 0 has A = 1 + (dy*dy)/(dx*dx),
/// B = (2*dy*x1)/dx + (2*k*dy)/(dx*dx) - 2*y1, C = (2*k*x1)/dx + (k*k)/(dx*dx) + y1*y1 + x1*x1 - radius*radius. Where
/// |dx| < 1e-50, Y is eliminated alike.
/// Note: where the points are further apart than the diameter, or coincide, the centre is not written.
KAR_API bool Calculate_Centrepoint_Of_Arc(const double &x1, const double &y1, const double &x2, const double &y2,
                                          const double &radius, double &cx, double &cy);

/// \}

/// Plane geometry in points. It has no fields.
class karCalculator2D {
public:
    karCalculator2D() = default;                                          ///< Does nothing, as there are no fields.
    karCalculator2D(const karCalculator2D &) = default;                   ///< \overload
    karCalculator2D &operator=(const karCalculator2D &) { return *this; } ///< \overload

    /// Centre of the arc from `p1` to `p2` that spans the signed angle `angle`.
    KAR_API karD_Point GetArcCentrePoint(const karD_Point &p1, const karD_Point &p2, const double &angle) const;

    /// The bearing of `a` seen from `b`, from the y axis clockwise, normalised.
    /// Note: where the x differ by less than 1e-50 it is pi/4 for a above b and 3*pi/4 otherwise.
    KAR_API double GetAngle(const karD_Point &a, const karD_Point &b) const;
};

/// Space geometry in points and vectors. It has no fields.
class karCalculator3D {
public:
    karCalculator3D() = default;                                          ///< Does nothing, as there are no fields.
    karCalculator3D(const karCalculator3D &) = default;                   ///< \overload
    karCalculator3D &operator=(const karCalculator3D &) { return *this; } ///< \overload

    /// `GetAngle` of the coordinates, `a` being the vertex.
    KAR_API double GetAngle(const kar3D_Point &a, const kar3D_Point &b, const kar3D_Point &c) const;

    /// The scalar triple product u.(v x w), summed as u.y*(v.z*w.x - v.x*w.z) + u.z*(v.x*w.y - w.x*v.y) +
    /// u.x*(v.y*w.z - v.z*w.y).
    KAR_API double SpatProduct(const kar3DVector &u, const kar3DVector &v, const kar3DVector &w) const;
};

#endif
