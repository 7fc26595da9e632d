#include "placement.h"

#include <new>

namespace {

kar3D_Point axis(const kar3DVector &v) { return kar3D_Point(v.GetX(), v.GetY(), v.GetZ()); }

} // namespace

Placement Placement::ofExtrusion(const kar3DVector &extrusion)
{
    // The rule compares the direction as it is, so it is brought to unit length first.
    const kar3DVector normal(extrusion.GetX(), extrusion.GetY(), extrusion.GetZ(), true);
    Placement result;
    if (normal.GetDistance() < 0.5)
        return result;
    const kar3DVector x = GetOCSVectorAxisX(normal);
    result.x = axis(x);
    result.y = axis(GetOCSVectorAxisY(normal, x));
    result.z = axis(normal);
    return result;
}

Placement Placement::of(const karTransformationInfo &info)
{
    // One after the other: the product of the three matrices turns and scales the translation as well.
    const karMatrix steps[] = {info.GetScaleMatrix(), info.GetRotateMatrix(), info.GetTranslateMatrix()};
    for (const karMatrix &step : steps)
        if (!step.GetData()) // without memory it reads as zeros
            throw std::bad_alloc();
    const auto image = [&steps](double px, double py, double pz) {
        return ((kar3D_Point(px, py, pz) * steps[0]) * steps[1]) * steps[2];
    };
    Placement result;
    result.origin = image(0.0, 0.0, 0.0);
    result.x = image(1.0, 0.0, 0.0) - result.origin;
    result.y = image(0.0, 1.0, 0.0) - result.origin;
    result.z = image(0.0, 0.0, 1.0) - result.origin;
    return result;
}
