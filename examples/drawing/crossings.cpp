#include "crossings.h"

#include "meet.h"

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

namespace geometry = boost::geometry;
using TreePoint = geometry::model::point<double, 2, geometry::cs::cartesian>;
using TreeBox = geometry::model::box<TreePoint>;
using Entry = std::pair<TreeBox, std::size_t>; // of the list of places
using Tree = geometry::index::rtree<Entry, geometry::index::quadratic<16>>;

constexpr std::size_t mostCrossings = 1000000;
constexpr std::size_t mostPairs = 20000000; // of boxes that overlap

// A piece of a picture.
struct Place {
    std::size_t shape;
    std::size_t piece;
};

// The box of a piece, so much wider that touching pieces overlap in spite of rounding.
TreeBox boxOf(const Piece &piece)
{
    const karD_Rect box = exactBox(piece);
    const double reach =
        std::max({std::fabs(box.left()), std::fabs(box.right()), std::fabs(box.bottom()), std::fabs(box.top())});
    const double margin = 1e-9 * std::max(box.width(), box.height()) + 4e-15 * reach;
    return TreeBox(TreePoint(box.left() - margin, box.bottom() - margin),
                   TreePoint(box.right() + margin, box.top() + margin));
}

class Search {
public:
    Search(const Picture &ownPicture, int passes) : picture(ownPicture), mostPasses(passes) {}

    std::vector<Crossing> run(Phase &phase, karFilter &filter)
    {
        std::vector<Entry> entries;
        for (std::size_t shape = 0; shape < picture.size(); ++shape)
            for (std::size_t piece = 0; piece < picture[shape].pieces.size(); ++piece) {
                entries.emplace_back(boxOf(picture[shape].pieces[piece]), places.size());
                places.push_back({shape, piece});
            }
        const Tree tree(entries.begin(), entries.end()); // packed as a whole
        std::vector<Entry> near;
        std::size_t pairs = 0;
        for (const Entry &entry : entries) {
            if (!phase.next(static_cast<double>(entry.second) / static_cast<double>(entries.size())))
                break;
            near.clear();
            tree.query(geometry::index::intersects(entry.first), std::back_inserter(near));
            // The order in which the tree hands them out is its own affair.
            std::sort(near.begin(), near.end(), [](const Entry &a, const Entry &b) { return a.second < b.second; });
            for (const Entry &other : near)
                if (other.second > entry.second)
                    check(places[entry.second], places[other.second], filter);
            pairs += near.size();
            if (crossings.size() > mostCrossings || pairs > mostPairs) {
                FindingMaker(filter, FindingTooManyCrossings, 1) << static_cast<int>(crossings.size());
                break;
            }
        }
        return std::move(crossings);
    }

private:
    void check(const Place &one, const Place &other, karFilter &filter)
    {
        const Shape &shape1 = picture[one.shape];
        const Shape &shape2 = picture[other.shape];
        const Piece &piece1 = shape1.pieces[one.piece];
        const Piece &piece2 = shape2.pieces[other.piece];
        points.clear();
        if (!meet(piece1, piece2, mostPasses, points))
            FindingMaker(filter, FindingUnsettled, 2)
                << karString(nameOf(shape1).c_str()) << karString(nameOf(shape2).c_str());
        for (const karD_Point &point : points)
            if (one.shape != other.shape || !isJoint(shape1, one.piece, other.piece, point))
                crossings.push_back({point, one.shape, other.shape});
    }

    // Whether two pieces of one path follow each other at the point.
    static bool isJoint(const Shape &shape, std::size_t earlier, std::size_t later, const karD_Point &point)
    {
        const std::size_t last = shape.pieces.size() - 1;
        const bool forward = later == earlier + 1 && same(point, shape.pieces[earlier].end);
        const bool closing = earlier == 0 && later == last && shape.closed() && same(point, shape.pieces[0].start);
        return forward || closing;
    }
    static bool same(const karD_Point &p, const karD_Point &q)
    {
        return p.DistMax(q) <= 1e-9 * std::max(p.DistMax(karD_Point()), 1.0);
    }

    const Picture &picture;
    int mostPasses;
    std::vector<Place> places;
    std::vector<karD_Point> points;
    std::vector<Crossing> crossings;
};

} // namespace

std::vector<Crossing> findCrossings(const Picture &picture, int mostPasses, karFilter &filter)
{
    Phase phase(filter, 60, 90, "crossing");
    return Search(picture, mostPasses).run(phase, filter);
}
