// Crossings, feet, a fillet and an extent.
#include "expect.h"

#include <karextent.h>
#include <karfillet.h>
#include <karincidence.h>
#include <karintersect.h>

#include <cmath>

constexpr double pi = 3.141592653589793;

static bool agrees(double a, double b) { return std::fabs(a - b) < 1e-9; }

int main()
{
    // The line x = 3 and the upper half of the circle of radius 5. Bit 1 bounds the line, bit 2 the arc.
    double x1 = 0;
    double y1 = 0;
    double x2 = 0;
    double y2 = 0;
    const int arcBounded = 2;
    const int count = Intersect_Line_Arc(3.0, -9.0, 3.0, 9.0, 0.0, 0.0, 5.0, 0.0, pi, arcBounded, x1, y1, x2, y2);
    EXPECT(count == 1 && agrees(x1, 3.0) && agrees(y1, 4.0)); // (3, -4) lies on the other half

    // Two ellipses that cross in four points. `passes` bounds the iteration and tells whether it settled.
    double x[4] = {};
    double y[4] = {};
    int passes = 1000;
    const int crossings = Intersect_Ellipse_Ellipse(0.0, 0.0, 5.0, 2.0, 0.0, 0.0, 2 * pi, 0.5, 0.3, 5.0, 2.0, 1.2, 0.0,
                                                    2 * pi, 0, x[0], y[0], x[1], y[1], x[2], y[2], x[3], y[3], passes);
    EXPECT(crossings == 4 && passes > 0);
    for (int i = 0; i < 4; ++i)
        EXPECT(IsPointOnEllipse(0.0, 0.0, 5.0, 2.0, 0.0, x[i], y[i], 1e-6));

    // The foot of a perpendicular.
    double footX = 0;
    double footY = 0;
    Calculate_Perpendicular_Point_To_Line(2.0, 5.0, 0.0, 0.0, 10.0, 0.0, footX, footY, false);
    EXPECT(footX == 2.0 && footY == 0.0);

    // The corner of the two axes rounded with radius 1, on the side of (3, 3). Parallel lines give -7.
    double cornerX, cornerY, t1x, t1y, t2x, t2y, centreX, centreY;
    EXPECT(Calculate_Fillet_Line_Line(0.0, 0.0, 9.0, 0.0, 0.0, 0.0, 0.0, 9.0, 3.0, 3.0, 1.0, cornerX, cornerY, t1x, t1y,
                                      t2x, t2y, centreX, centreY) == KAR_SUCCESS);
    EXPECT(centreX == 1.0 && centreY == 1.0 && t1x == 1.0 && t1y == 0.0);
    EXPECT(Calculate_Fillet_Line_Line(0.0, 0.0, 9.0, 0.0, 0.0, 1.0, 9.0, 1.0, 3.0, 3.0, 1.0, cornerX, cornerY, t1x, t1y,
                                      t2x, t2y, centreX, centreY) == KAR_ERROR_CORNER);

    // The box of the upper half of an ellipse.
    const karD_Rect box = CalculateBoundingRect(0.0, 0.0, 5.0, 2.0, 0.0, 0.0, pi);
    EXPECT(agrees(box.left(), -5.0) && agrees(box.right(), 5.0) && agrees(box.top(), 2.0) && agrees(box.bottom(), 0.0));
    return 0;
}
