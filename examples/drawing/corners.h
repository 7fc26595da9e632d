// Corners blended by arcs or cut straight.
#ifndef CORNERS_H
#define CORNERS_H

#include "picture.h"

enum class CornerForm {
    Fillet, ///< an arc; the size is its radius
    Chamfer ///< a cut; the size is its distance from the corner on both lines
};

/// Works on every corner of two straight pieces that follow each other in a polyline, and of two lines of which just
/// the two ends meet there. In the plane of the picture, so the size counts after the transformation. A corner for
/// which its pieces are too short becomes a finding. Gives the number of corners done; after a break, those before.
int workCorners(Picture &picture, CornerForm form, double size, karFilter &filter);

#endif
