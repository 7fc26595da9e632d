// kartory-gallery FOLDER: one picture of each geometric operation of the library.
#include "canvas.h"

#include "piece.h"
#include "savefile.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

constexpr int bothBounded = 3; // limit mask: the first and the second curve end where they end
constexpr int noLimits = 0;
const karD_Rect usualView(-10.0, -7.0, 10.0, 7.0);

using Picture = std::string (*)();

// How a count of outputs becomes points on the sheet.
void mark(Canvas &canvas, int count, const double (&x)[4], const double (&y)[4])
{
    for (int i = 0; i < count; ++i)
        canvas.point(karD_Point(x[i], y[i]));
}

std::string lineLine()
{
    Canvas canvas(usualView);
    const karD_Point a(-8, -4);
    const karD_Point b(8, 5);
    const karD_Point c(-6, 5);
    const karD_Point d(5, -5);
    canvas.line(a, b);
    canvas.line(c, d);
    double x = 0;
    double y = 0;
    if (Intersect_Line_Line(a.x(), a.y(), b.x(), b.y(), c.x(), c.y(), d.x(), d.y(), bothBounded, x, y) == 1)
        canvas.point(karD_Point(x, y));
    return canvas.svg();
}

std::string lineArc()
{
    Canvas canvas(usualView);
    const karD_Point a(-9, -1);
    const karD_Point b(9, 3);
    canvas.line(a, b);
    canvas.arc(karD_Point(0, 0), 5, 5, 0, 5.5, fullTurn - 5.5 + 3.6); // through angle 0
    double x[4] = {};
    double y[4] = {};
    const int count =
        Intersect_Line_Arc(a.x(), a.y(), b.x(), b.y(), 0.0, 0.0, 5.0, 5.5, 3.6, bothBounded, x[0], y[0], x[1], y[1]);
    mark(canvas, count, x, y);
    return canvas.svg();
}

std::string lineEllipse()
{
    Canvas canvas(usualView);
    const karD_Point a(-9, 4);
    const karD_Point b(9, -3);
    canvas.line(a, b);
    canvas.ellipse(karD_Point(0, 0), 7, 3, 0.4);
    double x[4] = {};
    double y[4] = {};
    const int count =
        Intersect_Line_Ellipse(a.x(), a.y(), b.x(), b.y(), 0.0, 0.0, 7.0, 3.0, 0.4, noLimits, x[0], y[0], x[1], y[1]);
    mark(canvas, count, x, y);
    return canvas.svg();
}

std::string lineEllipticalArc()
{
    Canvas canvas(usualView);
    const karD_Point a(-9, 4);
    const karD_Point b(9, -3);
    canvas.line(a, b);
    canvas.ellipse(karD_Point(0, 0), 7, 3, 0.4, helper);
    canvas.arc(karD_Point(0, 0), 7, 3, 0.4, 1.0, 4.0 - 1.0);
    double x[4] = {};
    double y[4] = {};
    const int count = Intersect_Line_EllipticalArc(a.x(), a.y(), b.x(), b.y(), 0.0, 0.0, 7.0, 3.0, 0.4, 1.0, 4.0,
                                                   bothBounded, x[0], y[0], x[1], y[1]);
    mark(canvas, count, x, y); // the crossing beyond the end of the arc isn't among them
    return canvas.svg();
}

// The forms with a limit to the iteration always end. Four slots show every point; one without a point stays as it was.
std::string twoEllipses(double a1, double b1, double rotation1, double a2, double b2, double rotation2, double distance)
{
    Canvas canvas(usualView);
    canvas.ellipse(karD_Point(-distance / 2, 0), a1, b1, rotation1);
    canvas.ellipse(karD_Point(distance / 2, 0), a2, b2, rotation2);
    double x[4] = {HUGE_VAL, HUGE_VAL, HUGE_VAL, HUGE_VAL};
    double y[4] = {};
    int passes = 1000;
    Intersect_Ellipse_Ellipse(-distance / 2, 0.0, a1, b1, rotation1, 0.0, fullTurn, distance / 2, 0.0, a2, b2,
                              rotation2, 0.0, fullTurn, noLimits, x[0], y[0], x[1], y[1], x[2], y[2], x[3], y[3],
                              passes);
    for (int i = 0; i < 4; ++i)
        if (std::isfinite(x[i]))
            canvas.point(karD_Point(x[i], y[i]));
    return canvas.svg();
}

std::string arcArc() { return twoEllipses(5, 5, 0, 4, 4, 0, 5); }

std::string ellipseEllipse() { return twoEllipses(6.5, 2.5, 0.5, 6, 3, -0.7, 1); }

std::string footOnLine()
{
    Canvas canvas(usualView);
    const karD_Point a(-8, -4);
    const karD_Point b(8, 2);
    const karD_Point p(-2, 5);
    canvas.line(a, b);
    double x = 0;
    double y = 0;
    Calculate_Perpendicular_Point_To_Line(p.x(), p.y(), a.x(), a.y(), b.x(), b.y(), x, y, true);
    canvas.line(p, karD_Point(x, y), helper);
    canvas.point(p, given);
    canvas.point(karD_Point(x, y));
    return canvas.svg();
}

std::string feetOnEllipse()
{
    Canvas canvas(usualView);
    const karD_Point p(1.5, 0.5);
    canvas.ellipse(karD_Point(0, 0), 8, 5, 0.3);
    double x[4] = {};
    double y[4] = {};
    int passes = 1000;
    const int count = Calculate_Perpendicular_Points_To_Ellipse(p.x(), p.y(), 0.0, 0.0, 8.0, 5.0, 0.3, 0.0, 0.0, x[0],
                                                                y[0], x[1], y[1], x[2], y[2], x[3], y[3], passes);
    for (int i = 0; i < count; ++i)
        canvas.line(p, karD_Point(x[i], y[i]), helper);
    canvas.point(p, given);
    mark(canvas, count, x, y);
    return canvas.svg();
}

std::string mirror()
{
    Canvas canvas(usualView);
    const karD_Point a(-1, -6);
    const karD_Point b(1.5, 6);
    canvas.line(a, b);
    const karD_Point corners[] = {{-8, 0}, {-4, 1}, {-5, 5}};
    karD_Point mirrored[3];
    for (int i = 0; i < 3; ++i) {
        double x = 0;
        double y = 0;
        Calculate_Mirror_Point_To_Line(corners[i].x(), corners[i].y(), a.x(), a.y(), b.x(), b.y(), x, y);
        mirrored[i].Set(x, y);
        canvas.line(corners[i], mirrored[i], helper);
    }
    for (int i = 0; i < 3; ++i) {
        canvas.line(corners[i], corners[(i + 1) % 3]);
        canvas.line(mirrored[i], mirrored[(i + 1) % 3], result);
    }
    return canvas.svg();
}

std::string circleThroughThreePoints()
{
    Canvas canvas(usualView);
    const karD_Point p[] = {{-5, 1}, {0, 5.5}, {4, -3}};
    double x = 0;
    double y = 0;
    double radius = 0;
    Calculate_Circle_By_3Points(p[0].x(), p[0].y(), p[1].x(), p[1].y(), p[2].x(), p[2].y(), x, y, radius);
    canvas.circle(karD_Point(x, y), radius, result);
    canvas.point(karD_Point(x, y));
    for (const karD_Point &one : p)
        canvas.point(one, given);
    return canvas.svg();
}

std::string fillet()
{
    Canvas canvas(usualView);
    const karD_Point tip(-7, -5);
    const karD_Point a(9, -5);
    const karD_Point b(1, 6);
    const karD_Point pick(0, -2); // in the sector that is meant
    const double radius = 3;
    double corner[2] = {};
    double first[2] = {};
    double second[2] = {};
    double centre[2] = {};
    canvas.line(tip, a, helper);
    canvas.line(tip, b, helper);
    if (Calculate_Fillet_Line_Line(tip.x(), tip.y(), a.x(), a.y(), tip.x(), tip.y(), b.x(), b.y(), pick.x(), pick.y(),
                                   radius, corner[0], corner[1], first[0], first[1], second[0], second[1], centre[0],
                                   centre[1]) != KAR_SUCCESS)
        return canvas.svg();
    const karD_Point middle(centre[0], centre[1]);
    const double end = std::atan2(first[1] - middle.y(), first[0] - middle.x()) + fullTurn;
    const double start = std::atan2(second[1] - middle.y(), second[0] - middle.x());
    canvas.line(karD_Point(first[0], first[1]), a);
    canvas.line(karD_Point(second[0], second[1]), b);
    canvas.arc(middle, radius, radius, 0, start, end - start, result);
    canvas.point(middle, helper);
    canvas.point(pick, given);
    return canvas.svg();
}

std::string chamfer()
{
    Canvas canvas(usualView);
    const karD_Point tip(-7, -5);
    const karD_Point a(9, -5);
    const karD_Point b(1, 6);
    const karD_Point pick(0, -2);
    double corner[2] = {};
    double first[2] = {};
    double second[2] = {};
    canvas.line(tip, a, helper);
    canvas.line(tip, b, helper);
    const double notGiven = -1;
    const double angle = pi / 6; // between the cut and the first line
    if (Calculate_Chamfer_Line_Line(tip.x(), tip.y(), a.x(), a.y(), tip.x(), tip.y(), b.x(), b.y(), pick.x(), pick.y(),
                                    5.0, notGiven, angle, corner[0], corner[1], first[0], first[1], second[0],
                                    second[1]) != KAR_SUCCESS)
        return canvas.svg();
    canvas.line(karD_Point(first[0], first[1]), a);
    canvas.line(karD_Point(second[0], second[1]), b);
    canvas.line(karD_Point(first[0], first[1]), karD_Point(second[0], second[1]), result);
    canvas.point(pick, given);
    return canvas.svg();
}

std::string extents()
{
    Canvas canvas(usualView);
    canvas.ellipse(karD_Point(-4, 1), 5, 2, 0.6);
    canvas.box(CalculateBoundingRect(-4.0, 1.0, 5.0, 2.0, 0.6), result); // a box of samples
    canvas.ellipse(karD_Point(5, -1), 4, 2.5, 0.5, helper);
    canvas.arc(karD_Point(5, -1), 4, 2.5, 0.5, 0.2, 2.4);
    canvas.box(CalculateBoundingRect(5.0, -1.0, 4.0, 2.5, 0.5, 0.2, 2.6), result);
    return canvas.svg();
}

// The axes of object coordinate systems, seen from the front: each extrusion direction with its x axis.
std::string arbitraryAxis()
{
    Canvas canvas(usualView);
    const auto seen = [](const kar3DVector &v, const karD_Point &at) {
        return karD_Point(at.x() + 2.2 * (v.GetX() - 0.35 * v.GetY()), at.y() + 2.2 * (v.GetZ() - 0.25 * v.GetY()));
    };
    const kar3DVector directions[] = {{0, 0, 1, true}, {0, 0, -1, true}, {1, 0, 0, true},
                                      {0, 1, 0, true}, {1, 1, 1, true},  {-1, 2, 0.5, true}};
    int place = 0;
    for (const kar3DVector &normal : directions) {
        const karD_Point at(-6.5 + 6.5 * (place % 3), place < 3 ? 3.0 : -3.5);
        const kar3DVector x = GetOCSVectorAxisX(normal);
        const kar3DVector y = GetOCSVectorAxisY(normal, x);
        canvas.line(at, seen(normal, at));
        canvas.line(at, seen(x, at), result);
        canvas.line(at, seen(y, at), helper);
        char text[64];
        std::snprintf(text, sizeof text, "%.2f %.2f %.2f", normal.GetX(), normal.GetY(), normal.GetZ());
        canvas.caption(karD_Point(at.x() - 2.2, at.y() - 2.9), text);
        ++place;
    }
    return canvas.svg();
}

std::string rotatedRectangle()
{
    Canvas canvas(karD_Rect(-100, -70, 100, 70));
    const karRectX turned(karPoint(-20, -45), 90, 50, 0.5);
    // On the pixel grid y grows downwards; here the sheet is turned with it.
    const auto place = [](const karPoint &p) { return karD_Point(p.x(), p.y()); };
    for (int corner = 0; corner < 4; ++corner)
        canvas.line(place(turned.Point(corner)), place(turned.Point(corner + 1)));
    const karRect around = turned.extent();
    canvas.box(karD_Rect(around.left(), around.top(), around.right(), around.bottom()), result);
    canvas.point(place(turned.Point(0)), given);
    return canvas.svg();
}

// The DXF colours: 24 hues with five brightnesses, full and pale, and the fixed ones in the middle.
std::string colourWheel()
{
    Canvas canvas(karD_Rect(-12, -12, 12, 12));
    const karD_Point middle(0, 0);
    for (int index = 10; index < 250; ++index) {
        const int hue = index / 10 - 1;
        const int ring = index % 10;
        const double start = hue * fullTurn / 24;
        canvas.sector(middle, 10.5 - 0.8 * ring, 11.3 - 0.8 * ring, start, start + fullTurn / 24,
                      karColor(static_cast<ACAD_Color>(index)));
    }
    int place = 0;
    for (const int index : {1, 2, 3, 4, 5, 6, 7, 8, 9, 250, 251, 252, 253, 254, 255}) {
        const double start = place * fullTurn / 15;
        canvas.sector(middle, 1, 2.6, start, start + fullTurn / 15, karColor(static_cast<ACAD_Color>(index)));
        ++place;
    }
    return canvas.svg();
}

constexpr struct {
    const char *name;
    Picture draw;
} pictures[] = {
    {"line-line", lineLine},
    {"line-arc", lineArc},
    {"line-ellipse", lineEllipse},
    {"line-elliptical-arc", lineEllipticalArc},
    {"arc-arc", arcArc},
    {"ellipse-ellipse", ellipseEllipse},
    {"foot-on-line", footOnLine},
    {"feet-on-ellipse", feetOnEllipse},
    {"mirror", mirror},
    {"circle-through-three-points", circleThroughThreePoints},
    {"fillet", fillet},
    {"chamfer", chamfer},
    {"extents", extents},
    {"arbitrary-axis", arbitraryAxis},
    {"rotated-rectangle", rotatedRectangle},
    {"colour-wheel", colourWheel},
};

} // namespace

int main(int argc, char **argv)
{
    constexpr int misused = 1;
    constexpr int unwritable = 3;
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::printf("Draws one picture of each geometric operation of the library into a folder.\n"
                    "Usage: kartory-gallery FOLDER\n\n"
                    "Options:\n"
                    "  -h,--help                   Print this help message and exit\n");
        return 0;
    }
    if (argc != 2 || argv[1][0] == '-') {
        std::fprintf(stderr, "usage: kartory-gallery FOLDER\n");
        return misused;
    }
    const std::filesystem::path folder(argv[1]);
    std::error_code ignored; // saving tells of a folder that isn't there
    std::filesystem::create_directories(folder, ignored);
    try {
        for (const auto &picture : pictures)
            saveWhole((folder / (std::string(picture.name) + ".svg")).string(), picture.draw());
    } catch (const OutputError &error) {
        std::fprintf(stderr, "kartory-gallery: %s\n", error.what());
        return unwritable;
    }
    return 0;
}
