#include "corners.h"

#include "numbers.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// What takes the place of a corner: the ends of the two pieces and what lies between.
struct Corner {
    karD_Point onFirst;
    karD_Point onSecond;
    Piece between;
};

double angleOf(const karD_Point &centre, const karD_Point &p)
{
    return std::atan2(p.y() - centre.y(), p.x() - centre.x());
}

// The arc from one point to another around a centre, the short way.
Piece shortArc(const karD_Point &centre, double radius, const karD_Point &from, const karD_Point &to)
{
    const double sweep = normalised(angleOf(centre, to) - angleOf(centre, from));
    const kar3D_Point middle(centre.x(), centre.y(), 0.0);
    const kar3D_Point u(radius, 0.0, 0.0);
    const kar3D_Point v(0.0, radius, 0.0);
    Piece arc = sweep <= pi ? curvedPiece(middle, u, v, angleOf(centre, from), sweep)
                            : reversed(curvedPiece(middle, u, v, angleOf(centre, to), fullTurn - sweep));
    arc.start = from;
    arc.end = to;
    return arc;
}

// The corner at `tip` between the pieces towards `p` and `q`; none for pieces in one line and for those
// that are too short.
std::optional<Corner> cornerAt(const karD_Point &tip, const karD_Point &p, const karD_Point &q, CornerForm form,
                               double size)
{
    const kar2DVector toP(tip, p, true);
    const kar2DVector toQ(tip, q, true);
    const double sine = toP.GetX() * toQ.GetY() - toP.GetY() * toQ.GetX();
    if (!(std::fabs(sine) > 1e-6))
        return std::nullopt;
    // Around the tip, so that large coordinates cost no accuracy. The pick point lies between the two pieces.
    const karD_Point a(p.x() - tip.x(), p.y() - tip.y());
    const karD_Point b(q.x() - tip.x(), q.y() - tip.y());
    const double pickX = (toP.GetX() + toQ.GetX()) * size;
    const double pickY = (toP.GetY() + toQ.GetY()) * size;
    double corner[2] = {};
    double first[2] = {};
    double second[2] = {};
    double centre[2] = {};
    const errorCodesKARTORY failed =
        form == CornerForm::Fillet
            ? Calculate_Fillet_Line_Line(0.0, 0.0, a.x(), a.y(), 0.0, 0.0, b.x(), b.y(), pickX, pickY, size, corner[0],
                                         corner[1], first[0], first[1], second[0], second[1], centre[0], centre[1])
            : Calculate_Chamfer_Line_Line(0.0, 0.0, a.x(), a.y(), 0.0, 0.0, b.x(), b.y(), pickX, pickY, size, size, 0.0,
                                          corner[0], corner[1], first[0], first[1], second[0], second[1]);
    const double taken1 = std::sqrt(first[0] * first[0] + first[1] * first[1]);
    const double taken2 = std::sqrt(second[0] * second[0] + second[1] * second[1]);
    if (failed != KAR_SUCCESS || !(taken1 <= a.DistEuk(karD_Point())) || !(taken2 <= b.DistEuk(karD_Point())))
        return std::nullopt;
    const auto outside = [&tip](const double(&local)[2]) { return karD_Point(local[0] + tip.x(), local[1] + tip.y()); };
    Corner result;
    result.onFirst = outside(first);
    result.onSecond = outside(second);
    result.between = form == CornerForm::Fillet ? shortArc(outside(centre), size, result.onFirst, result.onSecond)
                                                : straightPiece(result.onFirst, result.onSecond);
    return result;
}

bool bends(const Piece &piece, const Piece &following)
{
    const kar2DVector one(piece.start, piece.end, true);
    const kar2DVector other(following.start, following.end, true);
    return std::fabs(one.GetX() * other.GetY() - one.GetY() * other.GetX()) > 1e-6;
}

class CornerWork {
public:
    CornerWork(Picture &ownPicture, CornerForm ownForm, double ownSize, karFilter &ownFilter)
        : picture(ownPicture), form(ownForm), size(ownSize), filter(ownFilter)
    {}

    void polyline(Shape &shape)
    {
        const bool closed = shape.closed();
        std::vector<Piece> &pieces = shape.pieces;
        std::vector<Piece> result;
        std::optional<Piece> closing;
        // The corner behind the last piece is that before the first one.
        if (closed && !pieces.back().curved && !pieces.front().curved)
            closing = join(shape, pieces.back(), pieces.front());
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            std::optional<Piece> between;
            if (i + 1 < pieces.size() && !pieces[i].curved && !pieces[i + 1].curved)
                between = join(shape, pieces[i], pieces[i + 1]);
            addPiece(result, pieces[i]);
            if (between)
                result.push_back(*between);
        }
        if (closing)
            result.push_back(*closing);
        pieces = std::move(result);
    }

    // Two lines with an end in common that no third line shares.
    void lines(const std::vector<std::size_t> &ends)
    {
        if (ends.size() != 2 || ends[0] / 2 == ends[1] / 2)
            return;
        Shape &first = picture[ends[0] / 2];
        Shape &second = picture[ends[1] / 2];
        Piece one = ends[0] % 2 == 0 ? reversed(first.pieces[0]) : first.pieces[0];
        Piece other = ends[1] % 2 == 0 ? second.pieces[0] : reversed(second.pieces[0]);
        other.start = one.end;
        const std::optional<Piece> between = join(first, one, other);
        if (!between)
            return;
        first.pieces[0] = ends[0] % 2 == 0 ? reversed(one) : one;
        second.pieces[0] = ends[1] % 2 == 0 ? other : reversed(other);
        Shape blend = first;
        blend.kind = between->curved ? EntityArc : EntityLine;
        blend.pieces = {*between};
        picture.push_back(std::move(blend));
    }

    int done = 0;

private:
    // Shortens both pieces and gives what comes between; none where the corner stays.
    std::optional<Piece> join(const Shape &shape, Piece &piece, Piece &following)
    {
        if (!bends(piece, following))
            return std::nullopt;
        const std::optional<Corner> corner = cornerAt(piece.end, piece.start, following.end, form, size);
        if (!corner) {
            const int places = placesFor(std::max(piece.end.DistMax(karD_Point()), size));
            FindingMaker(filter, FindingSharpCorner, 2)
                << karString(nameOf(shape).c_str())
                << karString((decimal(piece.end.x(), places) + ", " + decimal(piece.end.y(), places)).c_str());
            return std::nullopt;
        }
        piece.end = corner->onFirst;
        following.start = corner->onSecond;
        ++done;
        return corner->between;
    }

    static void addPiece(std::vector<Piece> &path, const Piece &piece)
    {
        if (piece.curved ||
            piece.start != piece.end) // nothing is left of a piece between two corners that need all of it
            path.push_back(piece);
    }

    Picture &picture;
    CornerForm form;
    double size;
    karFilter &filter;
};

// A place of the plane on a fine grid, so that ends which only rounding keeps apart fall together.
using Cell = std::pair<long long, long long>;

struct CellHash {
    std::size_t operator()(const Cell &cell) const
    {
        return static_cast<std::size_t>(static_cast<unsigned long long>(cell.first) * 1000003u +
                                        static_cast<unsigned long long>(cell.second));
    }
};

} // namespace

int workCorners(Picture &picture, CornerForm form, double size, karFilter &filter)
{
    Phase phase(filter, 45, 50, "blending");
    CornerWork work(picture, form, size, filter);
    const std::size_t count = picture.size();
    std::unordered_map<Cell, std::vector<std::size_t>, CellHash> meetings; // shape * 2, + 1 for the end
    std::vector<Cell> order;
    const auto note = [&](const karD_Point &p, std::size_t end) {
        const double grid = size * 1e-6;
        const Cell cell(std::llround(std::clamp(p.x() / grid, -9e18, 9e18)),
                        std::llround(std::clamp(p.y() / grid, -9e18, 9e18)));
        std::vector<std::size_t> &ends = meetings[cell];
        if (ends.empty())
            order.push_back(cell);
        ends.push_back(end);
    };
    for (std::size_t i = 0; i < count; ++i) {
        if (!phase.next(0.5 * static_cast<double>(i) / static_cast<double>(count)))
            return work.done;
        Shape &shape = picture[i];
        if (shape.kind == EntityPolyline && shape.pieces.size() > 1) {
            work.polyline(shape);
        } else if (shape.kind == EntityLine) {
            note(shape.pieces[0].start, i * 2);
            note(shape.pieces[0].end, i * 2 + 1);
        }
    }
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!phase.next(0.5 + 0.5 * static_cast<double>(i) / static_cast<double>(order.size())))
            break;
        work.lines(meetings[order[i]]);
    }
    return work.done;
}
