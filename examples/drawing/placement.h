// Where a coordinate system lies in another.
#ifndef PLACEMENT_H
#define PLACEMENT_H

#include <krkgeneral.h>

/// The origin and the axes of a coordinate system, seen from another one. Axes need be neither of unit length nor
/// orthogonal.
struct Placement {
    kar3D_Point origin{0.0, 0.0, 0.0};
    kar3D_Point x{1.0, 0.0, 0.0};
    kar3D_Point y{0.0, 1.0, 0.0};
    kar3D_Point z{0.0, 0.0, 1.0};

    /// The object coordinate system of an extrusion direction, by the arbitrary axis rule. A null
    /// direction is that of z.
    static Placement ofExtrusion(const kar3DVector &extrusion);
    /// Scaled first, turned then, moved last.
    static Placement of(const karTransformationInfo &info);

    kar3D_Point direction(const kar3D_Point &d) const { return (x * d.x() + y * d.y()) + z * d.z(); }
    kar3D_Point point(const kar3D_Point &p) const { return origin + direction(p); }
    /// A system that lies in this one, seen from where this one is seen.
    Placement holding(const Placement &inner) const
    {
        return {point(inner.origin), direction(inner.x), direction(inner.y), direction(inner.z)};
    }
};

#endif
