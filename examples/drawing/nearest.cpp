#include "nearest.h"

#include <algorithm>
#include <cmath>

namespace {

bool isOn(const Piece &piece, const karD_Point &foot)
{
    const double size = piece.curved ? piece.a : piece.start.DistEuk(piece.end);
    return gap(piece, foot) <= 1e-9 * size + 4e-15 * foot.DistMax(karD_Point());
}

void addIfOn(const Piece &piece, const karD_Point &foot, std::vector<karD_Point> &feet)
{
    if (isOn(piece, foot))
        feet.push_back(foot);
}

// An ellipse with its longer axis on the x axis, a = 1 and the centre in the origin.
class UnitEllipse {
public:
    UnitEllipse(const Piece &ownPiece, int passes)
        : piece(ownPiece),
          mostPasses(passes),
          flat(piece.b / piece.a),
          c(std::cos(piece.rotation)),
          s(std::sin(piece.rotation))
    {}

    // False where the iteration doesn't settle.
    bool feet(const karD_Point &point, std::vector<karD_Point> &found)
    {
        const double dx = (point.x() - piece.centre.x()) / piece.a;
        const double dy = (point.y() - piece.centre.y()) / piece.a;
        px = dx * c + dy * s;
        py = dy * c - dx * s;
        // Near an axis rounding takes feet away, or the iteration ends nowhere: a point beside it and the ends of the
        // axes lead there too.
        constexpr double little = 1e-3;
        const bool settled = look(px, py, found);
        const bool settledBeside = look(px + little, py + 0.7 * little, found);
        for (int quarter = 0; quarter < 4; ++quarter)
            add(quarter * (pi / 2), found);
        return settled || settledBeside;
    }

private:
    bool look(double x, double y, std::vector<karD_Point> &found)
    {
        double fx[4] = {};
        double fy[4] = {};
        int passes = mostPasses;
        const int count = Calculate_Perpendicular_Points_To_Ellipse(
            x, y, 0.0, 0.0, 1.0, flat, 0.0, 0.0, 0.0, fx[0], fy[0], fx[1], fy[1], fx[2], fy[2], fx[3], fy[3], passes);
        for (int i = 0; i < count; ++i)
            add(std::atan2(fy[i] / flat, fx[i]), found);
        return passes >= 0;
    }

    void add(double t, std::vector<karD_Point> &found) const
    {
        if (settle(t))
            addIfOn(piece, piece.at(t), found);
    }

    // Newton's steps towards the parameter at which the direction to the point is perpendicular to the ellipse.
    bool settle(double &t) const
    {
        constexpr int steps = 30;
        double slope = 0;
        for (int i = 0; i < steps; ++i) {
            const double sine = std::sin(t);
            const double cosine = std::cos(t);
            slope = (px - cosine) * sine + (flat * sine - py) * flat * cosine;
            const double change =
                (px - cosine) * cosine + sine * sine + flat * (flat * cosine * cosine - (flat * sine - py) * sine);
            if (std::fabs(change) < 1e-9)
                break;
            const double step = std::clamp(slope / change, -0.1, 0.1);
            t -= step;
            if (std::fabs(step) < 1e-15)
                break;
        }
        return std::fabs(slope) <= 1e-9 * (1 + std::fabs(px) + std::fabs(py));
    }

    const Piece &piece;
    int mostPasses;
    double flat;
    double c;
    double s;
    double px = 0;
    double py = 0;
};

bool feetOf(const Piece &piece, const karD_Point &point, int mostPasses, std::vector<karD_Point> &feet)
{
    if (!piece.curved) {
        if (!(piece.start.DistEuk(piece.end) > 0))
            return true;
        // Around the start of the line, so that large coordinates cost no accuracy.
        double x = 0;
        double y = 0;
        Calculate_Perpendicular_Point_To_Line(point.x() - piece.start.x(), point.y() - piece.start.y(), 0.0, 0.0,
                                              piece.end.x() - piece.start.x(), piece.end.y() - piece.start.y(), x, y,
                                              false);
        addIfOn(piece, karD_Point(x + piece.start.x(), y + piece.start.y()), feet);
        return true;
    }
    if (piece.round()) {
        const double distance = piece.centre.DistEuk(point);
        if (!(distance > 0)) { // every point of a circle is a foot from its centre
            feet.push_back(piece.start);
            return true;
        }
        const double dx = (point.x() - piece.centre.x()) / distance * piece.a;
        const double dy = (point.y() - piece.centre.y()) / distance * piece.a;
        addIfOn(piece, karD_Point(piece.centre.x() + dx, piece.centre.y() + dy), feet);
        addIfOn(piece, karD_Point(piece.centre.x() - dx, piece.centre.y() - dy), feet);
        return true;
    }
    return UnitEllipse(piece, mostPasses).feet(point, feet);
}

} // namespace

std::vector<Foot> nearestFeet(const Picture &picture, const karD_Point &point, int mostPasses, karFilter &filter)
{
    Phase phase(filter, 90, 95, "looking for the nearest");
    std::vector<Foot> result;
    std::vector<karD_Point> feet;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (!phase.next(static_cast<double>(i) / static_cast<double>(picture.size())))
            break;
        feet.clear();
        for (const Piece &piece : picture[i].pieces)
            if (!feetOf(piece, point, mostPasses, feet))
                FindingMaker(filter, FindingUnsettledFoot, 1) << karString(nameOf(picture[i]).c_str());
        const auto nearer = [&point](const karD_Point &p, const karD_Point &q) {
            return p.DistSqr(point) < q.DistSqr(point);
        };
        const auto nearest = std::min_element(feet.begin(), feet.end(), nearer);
        if (nearest != feet.end())
            result.push_back({i, *nearest, nearest->DistEuk(point)});
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const Foot &a, const Foot &b) { return a.distance < b.distance; });
    return result;
}
