#include "canvas.h"

#include "numbers.h"
#include "piece.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int places = 4;

std::string at(const karD_Point &p) { return decimal(p.x(), places) + "," + decimal(-p.y(), places); }

karD_Point onEllipse(const karD_Point &centre, double a, double b, double rotation, double t)
{
    const double x = a * std::cos(t);
    const double y = b * std::sin(t);
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    return karD_Point(centre.x() + x * c - y * s, centre.y() + x * s + y * c);
}

} // namespace

Canvas::Canvas(const karD_Rect &ownView) : view(ownView) {}

void Canvas::stroke(const std::string &path, const char *colour)
{
    body += "<path fill=\"none\" stroke=\"" + std::string(colour) + "\" d=\"" + path + "\"/>\n";
}

void Canvas::line(const karD_Point &a, const karD_Point &b, const char *colour)
{
    stroke("M" + at(a) + "L" + at(b), colour);
}

void Canvas::box(const karD_Rect &box, const char *colour)
{
    stroke("M" + at(box.bottomLeft()) + "L" + at(box.bottomRight()) + "L" + at(box.topRight()) + "L" +
               at(box.topLeft()) + "Z",
           colour);
}

void Canvas::arc(const karD_Point &centre, double a, double b, double rotation, double start, double sweep,
                 const char *colour)
{
    constexpr double degrees = 180 / pi;
    std::string path = "M" + at(onEllipse(centre, a, b, rotation, start));
    for (const double part : {0.5, 1.0}) // halves, so that no arc is large
        path += "A" + decimal(a, places) + "," + decimal(b, places) + " " + decimal(-rotation * degrees, places) +
                " 0 0 " + at(onEllipse(centre, a, b, rotation, start + part * sweep));
    stroke(path, colour);
}

void Canvas::ellipse(const karD_Point &centre, double a, double b, double rotation, const char *colour)
{
    arc(centre, a, b, rotation, 0.0, fullTurn, colour);
}

void Canvas::point(const karD_Point &p, const char *colour)
{
    body += "<circle fill=\"" + std::string(colour) + "\" cx=\"" + decimal(p.x(), places) + "\" cy=\"" +
            decimal(-p.y(), places) + "\" r=\"" + decimal(view.width() / 100, places) + "\"/>\n";
}

void Canvas::sector(const karD_Point &centre, double inner, double outer, double start, double end,
                    const karColor &fill)
{
    const auto arcTo = [&](double radius, double angle, const char *sweep) {
        return "A" + decimal(radius, places) + "," + decimal(radius, places) + " 0 0 " + sweep + " " +
               at(onEllipse(centre, radius, radius, 0.0, angle));
    };
    body += "<path fill=\"" + hex(fill) + "\" d=\"M" + at(onEllipse(centre, outer, outer, 0.0, start)) +
            arcTo(outer, end, "0") + "L" + at(onEllipse(centre, inner, inner, 0.0, end)) + arcTo(inner, start, "1") +
            "Z\"/>\n";
}

void Canvas::caption(const karD_Point &p, const std::string &text)
{
    body += "<text font-family=\"sans-serif\" font-size=\"" + decimal(view.width() / 30, places) + "\" x=\"" +
            decimal(p.x(), places) + "\" y=\"" + decimal(-p.y(), places) + "\">" + text + "</text>\n";
}

std::string Canvas::svg() const
{
    const std::string corner = at(view.topLeft());
    const std::string size = decimal(view.width(), places) + " " + decimal(view.height(), places);
    std::string viewBox = corner + " " + size;
    std::replace(viewBox.begin(), viewBox.end(), ',', ' ');
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"360\" viewBox=\"" + viewBox +
           "\">\n<rect fill=\"#ffffff\" x=\"" + decimal(view.left(), places) + "\" y=\"" +
           decimal(-view.top(), places) + "\" width=\"" + decimal(view.width(), places) + "\" height=\"" +
           decimal(view.height(), places) + "\"/>\n<g stroke-width=\"" + decimal(view.width() / 200, places) + "\">\n" +
           body + "</g>\n</svg>\n";
}
