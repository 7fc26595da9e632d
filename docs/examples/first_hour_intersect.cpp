// The first hour: where two curves meet, what the limits do, and the forms that always end.
#include <krkgeneral.h>

#include <cmath>
#include <cstdio>

constexpr double pi = 3.141592653589793;

//! [mask]
// The line through (3, -1) and (3, 9), and the upper half of the circle of radius 5 around the origin. The whole line
// meets the whole circle in (3, 4) and (3, -4): the first point lies on both pieces, the second on neither.
static void lineAndArc()
{
    const char *const bounded[] = {"neither", "the line", "the arc", "both"};
    for (int limitMask = 0; limitMask < 4; ++limitMask) { // bit 1 bounds the first curve, bit 2 the second
        double x[2];
        double y[2];
        const int count =
            Intersect_Line_Arc(3.0, -1.0, 3.0, 9.0, 0.0, 0.0, 5.0, 0.0, pi, limitMask, x[0], y[0], x[1], y[1]);
        std::printf("bounded: %s. %d found:", bounded[limitMask], count);
        for (int i = 0; i < count; ++i) // packed: the points found stand in front
            std::printf(" (%.6g, %.6g)", x[i], y[i]);
        std::printf("\n");
    }
}
//! [mask]

//! [slots]
// A whole ellipse around the origin with semi-axes a and b, and one around (centre, 0) with c and d.
static void twoEllipses(double a, double b, double centre, double c, double d)
{
    double x[4];
    double y[4];
    for (int i = 0; i < 4; ++i)
        x[i] = y[i] = std::nan(""); // a slot that gets no point stays as it was
    int passes = 1000;              // in: the most passes for one factor; out: the passes used, or -1
    const int count = Intersect_Ellipse_Ellipse(0.0, 0.0, a, b, 0.0, 0.0, 2 * pi, centre, 0.0, c, d, 0.0, 0.0, 2 * pi,
                                                3, x[0], y[0], x[1], y[1], x[2], y[2], x[3], y[3], passes);
    std::printf("%d found:", count);
    for (int i = 0; i < 4; ++i) // not packed: a point stands in the slot of its root
        if (!std::isnan(x[i]))
            std::printf(" (%.6g, %.6g)", x[i], y[i]);
    std::printf(passes < 0 ? ". There may be more: the iteration didn't settle.\n" : ". Settled.\n");
}
//! [slots]

//! [failures]
static void failures()
{
    // A count of 0: nothing was found. These lines are parallel.
    double x = 0;
    double y = 0;
    const int segments = 3;
    std::printf("parallel lines: %d\n", Intersect_Line_Line(0.0, 0.0, 4.0, 0.0, 0.0, 1.0, 4.0, 1.0, segments, x, y));

    // A negative code: the corner can't be rounded, and the outputs stay as they were.
    double corner[2], tangent1[2], tangent2[2], centre[2];
    const errorCodesKARTORY code =
        Calculate_Fillet_Line_Line(0.0, 0.0, 4.0, 0.0, 0.0, 1.0, 4.0, 1.0, 2.0, 0.5, 0.2, corner[0], corner[1],
                                   tangent1[0], tangent1[1], tangent2[0], tangent2[1], centre[0], centre[1]);
    std::printf("fillet of parallel lines: %d\n", code);

    // The same with a text that isn't a number; the value is 0 then.
    karString text("12 mm");
    double value = 1;
    std::printf("\"12 mm\" as a number: %d", text.s2double(value));
    std::printf(", value %g\n", value);

    // An unchanged receiver: a point and a matrix of the wrong size.
    kar3D_Point point(1.0, 2.0, 3.0);
    point *= karMatrix(3);
    std::printf("a point by a 3 by 3 matrix: (%g, %g, %g)\n", point.x(), point.y(), point.z());

    // What is not a number comes of what isn't guarded, and passes on.
    const double angle = kar3DVector().AngleToVector(kar3DVector(1.0, 0.0, 0.0, false));
    std::printf("angle to a vector without length: %s\n", std::isnan(angle) ? "not a number" : "a number");
}
//! [failures]

int main()
{
    lineAndArc();
    //! [ellipses]
    twoEllipses(5.0, 2.0, 0.5, 2.0, 5.0); // cross in four points
    twoEllipses(5.0, 2.0, 6.0, 3.0, 1.0); // cross in two
    twoEllipses(4.0, 3.0, 1.0, 1.0, 1.0); // one inside the other
    //! [ellipses]
    failures();
    return 0;
}
