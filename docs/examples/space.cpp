// Vectors, matrices and coordinate systems.
#include "expect.h"

#include <kar3dbks.h>
#include <kartransformationinfo.h>

int main()
{
    const kar3DVector x(1.0, 0.0, 0.0, false);
    const kar3DVector y(0.0, 2.0, 0.0, true); // true: to unit length
    EXPECT(y.GetY() == 1.0);
    EXPECT(x.OuterProduct(y).GetZ() == 1.0);

    // A position is scaled first and turned second; a size that doesn't fit leaves it as it is.
    kar3D_Point p(1.0, 2.0, 3.0);
    p *= GetTranslateMatrix(10.0, 20.0, 30.0);
    EXPECT(p == kar3D_Point(11.0, 22.0, 33.0));
    p *= GetScaleMatrix(2.0, 1.0, 0.0);
    EXPECT(p == kar3D_Point(22.0, 22.0, 0.0));
    p *= karMatrix(3);
    EXPECT(p == kar3D_Point(22.0, 22.0, 0.0));

    // The parameters of a transformation, and the matrix that they make.
    karTransformationInfo info;
    info.SetScale(2.0, 2.0, 2.0).SetRotateX(-1.0);
    EXPECT(info.GetRotateX() > 5.28 && info.GetRotateX() < 5.29); // brought into a full turn
    EXPECT(info.GetScaleMatrix().GetValue(1, 1)[0] == 2.0);       // rows and columns count from 1

    // The x axis of the object coordinate system of a drawing that is seen from the front.
    const kar3DVector axis = GetOCSVectorAxisX(kar3DVector(0.0, -1.0, 0.0, false));
    EXPECT(axis.GetX() == 1.0 && axis.GetY() == 0.0 && axis.GetZ() == 0.0);
    return 0;
}
