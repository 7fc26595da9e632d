// A drawing as it lies in the plane: blocks inserted, bulges turned into arcs, colours found, everything transformed.
#ifndef PICTURE_H
#define PICTURE_H

#include "drawing.h"
#include "operation.h"
#include "piece.h"

#include <string>
#include <vector>

/// One placed entity.
struct Shape {
    const Entity *entity = nullptr; ///< where it comes from; in a block, the block's
    EntityKind kind = EntityOther;
    std::string layer; ///< that of the insert for entities of a block on layer 0
    karColor colour;
    std::vector<Piece> pieces; ///< lines, arcs and polylines: a path, each piece beginning where the one before ends

    // Points and texts.
    karD_Point at;
    karD_Point right; ///< the unit of a text's own x axis
    karD_Point up;    ///< \overload

    bool closed() const { return pieces.size() > 1 && pieces.back().end == pieces.front().start; }
};

/// "LINE 1F (WALLS)": kind, handle where there is one, and layer.
std::string nameOf(const Shape &shape);

/// The handle as the file writes it; empty where there is none.
std::string handleOf(const Shape &shape);

using Picture = std::vector<Shape>;

/// Places all entities of the drawing but those of its sheets. What can't be placed (a circle without radius, an angle
/// beyond 1e6, a block that isn't there) is left out and becomes a finding. After a break the picture holds what was
/// placed before.
/// Throws `DrawingError` for a drawing that becomes too large by its inserts.
Picture place(const Drawing &drawing, const karTransformationInfo &transformation, karFilter &filter);

#endif
