#include "karvector.h"

ObjektIdies kar2DVector::GetType() const { return KAR_ID_2D_VECTOR; }

kar2DVector &kar2DVector::Rotate(const double &angle, bool normalize)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double newX = (c * x_) - (s * y_);
    const double newY = (s * x_) + (c * y_);
    x_ = newX;
    y_ = newY;
    normalizeIf(normalize);
    return *this;
}

ObjektIdies kar3DVector::GetType() const { return KAR_ID_3D_VECTOR; }
