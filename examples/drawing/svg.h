// The picture of a drawing as SVG.
#ifndef SVG_H
#define SVG_H

#include "measure.h"
#include "picture.h"

#include <string>
#include <vector>

/// The whole picture in its colours, y upwards, arcs as arcs; its extents as a dashed box, and `marks` as small rings.
std::string toSvg(const Picture &picture, const Extent &extent, const std::vector<karD_Point> &marks);

#endif
