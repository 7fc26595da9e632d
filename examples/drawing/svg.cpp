#include "svg.h"

#include "numbers.h"

#include <algorithm>

namespace {

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : utf8(text)) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

// What would not be seen on the background is drawn in the contrast to it.
std::string shown(const karColor &colour)
{
    const karColor background(255, 255, 255);
    return hex(colour == background ? background.contrast() : colour);
}

class Writer {
public:
    explicit Writer(const Extent &ownExtent) : extent(ownExtent), places(placesFor(span())) {}

    void add(const Shape &shape)
    {
        if (shape.kind == EntityText)
            addText(shape);
        else if (!shape.pieces.empty())
            body += "<path stroke=\"" + shown(shape.colour) + "\" d=\"" + pathOf(shape) + "\"/>\n";
        else
            body += "<circle stroke=\"none\" fill=\"" + shown(shape.colour) + "\" cx=\"" + number(shape.at.x()) +
                    "\" cy=\"" + number(-shape.at.y()) + "\" r=\"" + number(1.5 * lineWidth()) + "\"/>\n";
    }

    void ring(const karD_Point &at)
    {
        body += "<circle stroke=\"#e00000\" cx=\"" + number(at.x()) + "\" cy=\"" + number(-at.y()) + "\" r=\"" +
                number(3 * lineWidth()) + "\"/>\n";
    }

    std::string whole() const
    {
        const karD_Rect &box = extent.exact;
        karD_Rect view = box;
        view.unionrect(texts.any ? texts.exact : box);
        view.InflateRect(0.02 * span());
        const double width = view.width();
        const double height = view.height();
        std::string result = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + number(view.left()) + " " +
                             number(-view.top()) + " " + number(width) + " " + number(height) + "\">\n<rect x=\"" +
                             number(view.left()) + "\" y=\"" + number(-view.top()) + "\" width=\"" + number(width) +
                             "\" height=\"" + number(height) +
                             "\" fill=\"#ffffff\"/>\n<g fill=\"none\" stroke-width=\"" + number(lineWidth()) +
                             "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
        result += "<rect stroke=\"#808080\" stroke-dasharray=\"" + number(4 * lineWidth()) + "\" x=\"" +
                  number(box.left()) + "\" y=\"" + number(-box.top()) + "\" width=\"" + number(box.width()) +
                  "\" height=\"" + number(box.height()) + "\"/>\n";
        return result + body + "</g>\n</svg>\n";
    }

private:
    double span() const
    {
        const double larger = std::max(extent.exact.width(), extent.exact.height());
        return larger > 0 ? larger : 1.0;
    }
    double lineWidth() const { return span() / 300; }

    void arcTo(std::string &path, const Piece &piece, const karD_Point &end, bool large) const
    {
        path += "A" + number(piece.a) + "," + number(piece.b) + " " +
                (piece.round() ? "0" : decimal(-piece.rotation * (180 / pi), fine)) + (large ? " 1 " : " 0 ") +
                (piece.clockwise ? "1 " : "0 ") + place(end);
    }

    std::string pathOf(const Shape &shape) const
    {
        std::string path;
        for (std::size_t i = 0; i < shape.pieces.size(); ++i) {
            const Piece &piece = shape.pieces[i];
            if (i == 0 || piece.start != shape.pieces[i - 1].end)
                path += "M" + place(piece.start);
            if (!piece.curved) {
                path += "L" + place(piece.end);
            } else if (piece.sweep > 1.5 * pi) { // one arc whose ends nearly meet would be drawn at random
                arcTo(path, piece, piece.at(piece.from + piece.sweep / 2), false);
                arcTo(path, piece, piece.end, false);
            } else {
                arcTo(path, piece, piece.end, piece.sweep > pi);
            }
        }
        if (shape.closed())
            path += "Z";
        return path;
    }

    // y grows downwards in SVG.
    std::string place(const karD_Point &p) const { return number(p.x()) + "," + number(-p.y()); }
    std::string number(double value) const { return decimal(value, places); }

    void addText(const Shape &shape)
    {
        const auto &entity = static_cast<const TextEntity &>(*shape.entity);
        const std::string content(entity.text);
        if (!(entity.height > 0) || content.empty())
            return;
        const bool middle = entity.alignment == 1 || entity.alignment == 4;
        const bool atEnd = entity.alignment == 2;
        const std::string anchor = middle ? " text-anchor=\"middle\"" : atEnd ? " text-anchor=\"end\"" : "";
        body += "<text stroke=\"none\" fill=\"" + shown(shape.colour) + "\" font-family=\"sans-serif\" font-size=\"" +
                number(entity.height) + "\"" + anchor + " transform=\"matrix(" + decimal(shape.right.x(), fine) + "," +
                decimal(-shape.right.y(), fine) + "," + decimal(-shape.up.x(), fine) + "," +
                decimal(shape.up.y(), fine) + "," + place(shape.at) + ")\">" + escaped(content) + "</text>\n";
        // About the room that it takes, so that the view holds it.
        const double room = 0.6 * entity.height * static_cast<double>(content.size());
        const karD_Point along(shape.right.x() * room, shape.right.y() * room);
        const karD_Point top(shape.up.x() * entity.height, shape.up.y() * entity.height);
        const karD_Point start = shape.at - along * (middle ? 0.5 : atEnd ? 1.0 : 0.0);
        for (const karD_Point &p : {start, start + along, start + top, start + along + top})
            texts.add(karD_Rect(p, p), karD_Rect(p, p));
    }

    static constexpr int fine = 8; // places of angles in degrees and of unit vectors

    const Extent &extent;
    int places;
    Extent texts;
    std::string body;
};

} // namespace

std::string toSvg(const Picture &picture, const Extent &extent, const std::vector<karD_Point> &marks)
{
    Writer writer(extent);
    for (const Shape &shape : picture)
        writer.add(shape);
    for (const karD_Point &mark : marks)
        writer.ring(mark);
    return writer.whole();
}
