// The common points of two pieces.
#ifndef MEET_H
#define MEET_H

#include "piece.h"

#include <vector>

/// Adds the points that two pieces have in common, bounded by their ends, to `points`. Each lies within a billionth of
/// the smaller piece of both, as far as its coordinates allow. An end that lies on the other piece is such a point;
/// where the pieces coincide over a stretch, its ends alone are.
/// False where the library's iteration did not settle within `mostPasses` passes: a point may be missing then.
bool meet(const Piece &first, const Piece &second, int mostPasses, std::vector<karD_Point> &points);

#endif
