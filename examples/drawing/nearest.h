// The feet of the perpendiculars from a point.
#ifndef NEAREST_H
#define NEAREST_H

#include "picture.h"

#include <cstddef>
#include <vector>

struct Foot {
    std::size_t shape; ///< index into the picture
    karD_Point at;
    double distance;
};

/// On every shape that has one, the foot of a perpendicular that is nearest to the point; the nearest shape first. A
/// shape without one, whose ends alone could be nearest, is not in the list. A shape whose iteration doesn't settle
/// within `mostPasses` becomes a finding. After a break: the shapes before.
std::vector<Foot> nearestFeet(const Picture &picture, const karD_Point &point, int mostPasses, karFilter &filter);

#endif
