#include "kar3dbks.h"

#include "karincidence.h"

#include <cmath>

ObjektIdies karPlane::GetType() const { return KAR_ID_PLANE; }

ObjektIdies kar3DBKS::GetType() const { return KAR_ID_3D_BKS; }

karPlane kar3DBKS::GetPlaneXY() const
{
    const kar3D_Point &O = origin_;
    const kar3D_Point X(axisX.GetX(), axisX.GetY(), axisX.GetZ());
    const kar3D_Point Y(axisY.GetX(), axisY.GetY(), axisY.GetZ());
    return karPlane(((O.y() * (X.z() - Y.z())) + (X.y() * (Y.z() - O.z()))) + (Y.y() * (O.z() - X.z())),
                    ((O.z() * (X.x() - Y.x())) + (X.z() * (Y.x() - O.x()))) + (Y.z() * (O.x() - X.x())),
                    ((O.x() * (X.y() - Y.y())) + (X.x() * (Y.y() - O.y()))) + (Y.x() * (O.y() - X.y())),
                    -(((O.x() * ((X.y() * Y.z()) - (Y.y() * X.z()))) + (X.x() * ((Y.y() * O.z()) - (O.y() * Y.z())))) +
                      (Y.x() * ((O.y() * X.z()) - (X.y() * O.z())))));
}

kar3D_Point kar3DBKS::Get3DMirrorPoint(const karD_Point &point, const karD_Point &lineStart,
                                       const karD_Point &lineEnd) const
{
    double x = 0.0;
    double y = 0.0;
    Calculate_Mirror_Point_To_Line(point.x(), point.y(), lineStart.x(), lineStart.y(), lineEnd.x(), lineEnd.y(), x, y);
    return Get3DPoint(karD_Point(x, y));
}

kar3DVector GetOCSVectorAxisX(const kar3DVector &n)
{
    constexpr double nearZ = 0.015625; // 1/64
    if (std::fabs(n.GetX()) < nearZ && std::fabs(n.GetY()) < nearZ)
        return kar3DVector(0.0, 1.0, 0.0, false).OuterProduct(n);
    return kar3DVector(0.0, 0.0, 1.0, false).OuterProduct(n);
}

kar3DVector GetOCSVectorAxisY(const kar3DVector &a, const kar3DVector &b) { return a.OuterProduct(b); }
