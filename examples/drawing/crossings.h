// All crossings in a picture.
#ifndef CROSSINGS_H
#define CROSSINGS_H

#include "picture.h"

#include <cstddef>
#include <vector>

/// A common point of two shapes, or of two pieces of one.
struct Crossing {
    karD_Point at;
    std::size_t first; ///< indices into the picture
    std::size_t second;
};

/// The common points of all shapes and, in polylines, of pieces that don't follow each other, bounded by their ends.
/// Pairs are found by a tree of boxes, so time grows little more than with the number of pieces. A pair whose iteration
/// doesn't settle within `mostPasses` becomes a finding. After a break: what was found before.
std::vector<Crossing> findCrossings(const Picture &picture, int mostPasses, karFilter &filter);

#endif
