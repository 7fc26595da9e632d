// A sheet to draw on: lines, circles, ellipses, points and captions as SVG, y upwards.
#ifndef CANVAS_H
#define CANVAS_H

#include <krkgeneral.h>

#include <string>

/// Colours with a meaning.
constexpr const char *given = "#303030";  ///< what goes in
constexpr const char *result = "#d00000"; ///< what comes out
constexpr const char *helper = "#a0a0a0"; ///< what explains it

class Canvas {
public:
    /// The part of the plane that is seen.
    explicit Canvas(const karD_Rect &view);

    void line(const karD_Point &a, const karD_Point &b, const char *colour = given);
    void box(const karD_Rect &box, const char *colour);
    /// From `start` counter-clockwise over `sweep` radians of the parameter.
    void arc(const karD_Point &centre, double a, double b, double rotation, double start, double sweep,
             const char *colour = given);
    void ellipse(const karD_Point &centre, double a, double b, double rotation, const char *colour = given);
    void circle(const karD_Point &centre, double radius, const char *colour = given)
    {
        ellipse(centre, radius, radius, 0.0, colour);
    }
    void point(const karD_Point &at, const char *colour = result);
    void sector(const karD_Point &centre, double inner, double outer, double start, double end, const karColor &fill);
    void caption(const karD_Point &at, const std::string &text);

    /// The finished picture.
    std::string svg() const;

private:
    void stroke(const std::string &path, const char *colour);

    karD_Rect view;
    std::string body;
};

#endif
