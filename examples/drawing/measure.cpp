#include "measure.h"

#include <algorithm>
#include <cmath>

void Extent::add(const karD_Rect &exactBox, const karD_Rect &sampledBox)
{
    if (!any) {
        exact = exactBox;
        sampled = sampledBox;
        any = true;
        return;
    }
    exact.unionrect(exactBox);
    sampled.unionrect(sampledBox);
}

void Extent::add(const Extent &other)
{
    if (other.any)
        add(other.exact, other.sampled);
}

karRect Extent::grid() const
{
    const double rounding = 1e-9 * std::max(exact.width(), exact.height()); // a curve ends that near to a whole unit
    return karRect(kar::toInt(std::floor(exact.left() + rounding)), kar::toInt(std::ceil(-exact.bottom() - rounding)),
                   kar::toInt(std::ceil(exact.right() - rounding)), kar::toInt(std::floor(-exact.top() + rounding)));
}

Extent extentOf(const Shape &shape)
{
    Extent extent;
    for (const Piece &piece : shape.pieces)
        extent.add(exactBox(piece), sampledBox(piece));
    if (shape.pieces.empty())
        extent.add(karD_Rect(shape.at, shape.at), karD_Rect(shape.at, shape.at));
    return extent;
}

Measures measure(const Picture &picture, karFilter &filter)
{
    Measures measures;
    Phase phase(filter, 50, 60, "measuring");
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (!phase.next(static_cast<double>(i) / static_cast<double>(picture.size())))
            break;
        const Shape &shape = picture[i];
        const Extent extent = extentOf(shape);
        measures.kinds[static_cast<std::size_t>(shape.kind)].add(extent);
        measures.whole.add(extent);
        double length = 0;
        for (const Piece &piece : shape.pieces)
            length += lengthOf(piece);
        if (!shape.pieces.empty())
            measures.lengths[shape.layer] += length;
        measures.length += length;
    }
    return measures;
}
