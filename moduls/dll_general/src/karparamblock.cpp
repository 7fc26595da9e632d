#include "karparamblock.h"

#include <cmath>

namespace {

// Reciprocals of each other and near to pi/2 by a million; the values are fixed, and placed elements depend on them.
constexpr double radiansPerUnit = 1.57079635e-06;
constexpr double unitsPerRadian = 636619.7629629073;

constexpr int rightAngle = 1000000;
constexpr int fullTurn = 4 * rightAngle;

} // namespace

karParamBlock::karParamBlock(karPoint insertPoint, double scaleX, double scaleY, int angle, int slope, int mirror,
                             const karColor &color, int layer)
    : insertPoint_(insertPoint),
      scaleX_(scaleX),
      scaleY_(scaleY),
      slope_(slope),
      mirror_(mirror),
      slopeTangent_(slope != 0 ? std::tan(slope * radiansPerUnit) : 0.0),
      color_(color),
      layer_(layer)
{
    setAngle(angle);
}

karParamBlock::karParamBlock(karPoint insertPoint, double scaleX, double scaleY, int angle, int mirror,
                             const karColor &color, int layer)
    : insertPoint_(insertPoint),
      scaleX_(scaleX),
      scaleY_(scaleY),
      angle_(angle),
      mirror_(mirror),
      color_(color),
      layer_(layer)
{}

void karParamBlock::setAngle(int angle)
{
    angle_ = angle;
    switch (angle) {
    case 0:
        sine_ = 0.0;
        cosine_ = 1.0;
        break;
    case rightAngle:
        sine_ = 1.0;
        cosine_ = 0.0;
        break;
    case 2 * rightAngle:
        sine_ = 0.0;
        cosine_ = -1.0;
        break;
    case 3 * rightAngle:
        sine_ = -1.0;
        cosine_ = 0.0;
        break;
    default: {
        const double radians = angle * radiansPerUnit;
        sine_ = std::sin(radians);
        cosine_ = std::cos(radians);
    }
    }
}

void karParamBlock::setAngle(double radians) { setAngle(kar::roundAway(radians * unitsPerRadian)); }

void karParamBlock::Concat(karParamBlock *o)
{
    if (!o)
        return;
    insertPoint_ += o->insertPoint_;
    scaleX_ *= o->scaleX_;
    scaleY_ *= o->scaleY_;
    const int angle = kar::wrapAdd(angle_, o->angle_);
    setAngle(angle > fullTurn ? angle - fullTurn : angle);
    const int slope = kar::wrapAdd(slope_, o->slope_);
    slope_ = slope > rightAngle || slope < -rightAngle ? 0 : slope;
    mirror_ ^= o->mirror_;
}

karPoint::karPoint(const karPoint &p, const karParamBlock *block) : karPoint(p)
{
    if (!block)
        return;
    double placedX = x();
    double placedY = y();
    block->modify_point(placedX, placedY);
    x(kar::toInt(placedX + 0.5));
    y(kar::toInt(placedY + 0.5));
}

karD_Point::karD_Point(const karD_Point &p, karParamBlock *block) : karD_Point(p)
{
    if (block)
        block->modify_point(x(), y());
}

karRect::karRect(const karRect &r, karParamBlock *block)
    : topLeft_(r.topLeft_, block), bottomRight_(r.bottomRight_, block)
{}

karD_Rect::karD_Rect(const karD_Rect &r, karParamBlock *block)
    : bottomLeft_(r.bottomLeft_, block), topRight_(r.topRight_, block)
{}

karD_Rect::karD_Rect(const karRect &r, karParamBlock *block) : karD_Rect(karD_Rect(r), block) {}
