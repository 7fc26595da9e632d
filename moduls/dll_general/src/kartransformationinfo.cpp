#include "kartransformationinfo.h"

#include "angles.h"

#include <cmath>

ObjektIdies karTransformationInfo::GetType() const { return KAR_ID_TRANSFORMATION_INFO; }

bool karTransformationInfo::CanCast(ObjektIdies id) const { return id == KAR_ID_TRANSFORMATION_INFO; }

karTransformationInfo::karTransformationInfo(double scaleX, double scaleY, double scaleZ, double rotateX,
                                             double rotateY, double rotateZ, double translateX, double translateY,
                                             double translateZ, double cutXY, double cutXZ, double cutYX, double cutYZ,
                                             double cutZX, double cutZY)
    : scale{scaleX, scaleY, scaleZ},
      rotate{_CheckAngleRange(rotateX), _CheckAngleRange(rotateY), _CheckAngleRange(rotateZ)},
      translate{translateX, translateY, translateZ},
      cutXY_(cutXY),
      cutXZ_(cutXZ),
      cutYX_(cutYX),
      cutYZ_(cutYZ),
      cutZX_(cutZX),
      cutZY_(cutZY)
{}

karMatrix karTransformationInfo::GetTransformationMatrix() const
{
    return ::GetTransformationMatrix(translate.x, translate.y, translate.z, rotate.x, rotate.y, rotate.z, scale.x,
                                     scale.y, scale.z);
}

double karTransformationInfo::_CheckAngleRange(double a) const
{
    return kar::withinATurn(a, [](double angle) { return angle > kar::fullTurn; });
}

karTransformationInfo &karTransformationInfo::operator+=(const karTransformationInfo &o)
{
    translate = {translate.x + o.translate.x, translate.y + o.translate.y, translate.z + o.translate.z};
    scale = {scale.x * o.scale.x, scale.y * o.scale.y, scale.z * o.scale.z};
    rotate = {_CheckAngleRange(rotate.x + o.rotate.x), _CheckAngleRange(rotate.y + o.rotate.y),
              _CheckAngleRange(rotate.z + o.rotate.z)};
    return *this;
}

namespace {

double dividedUnlessSmall(double place, double divisor)
{
    return std::fabs(divisor) >= kar::lengthTolerance ? place / divisor : place;
}

} // namespace

karTransformationInfo &karTransformationInfo::operator-=(const karTransformationInfo &o)
{
    translate = {translate.x - o.translate.x, translate.y - o.translate.y, translate.z - o.translate.z};
    scale = {dividedUnlessSmall(scale.x, o.scale.x), dividedUnlessSmall(scale.y, o.scale.y),
             dividedUnlessSmall(scale.z, o.scale.z)};
    rotate = {_CheckAngleRange(rotate.x - o.rotate.x), _CheckAngleRange(rotate.y - o.rotate.y),
              _CheckAngleRange(rotate.z - o.rotate.z)};
    return *this;
}
