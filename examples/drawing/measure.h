// Extents and lengths of what is placed.
#ifndef MEASURE_H
#define MEASURE_H

#include "picture.h"

#include <array>
#include <map>
#include <string>

/// The box around some shapes: exact, and by samples along the curves, which lies inside the exact one.
struct Extent {
    bool any = false;
    karD_Rect exact;
    karD_Rect sampled;

    void add(const karD_Rect &exactBox, const karD_Rect &sampledBox);
    void add(const Extent &other);
    /// The exact box in whole units, rounded outwards. y grows downwards, as on a pixel grid.
    karRect grid() const;
};

Extent extentOf(const Shape &shape);

/// What the shapes of a picture measure.
struct Measures {
    std::array<Extent, entityKinds> kinds;
    Extent whole;
    std::map<std::string, double> lengths; ///< of the curves of each layer
    double length = 0.0;                   ///< of all
};

/// After a break the measures are those of the shapes before.
Measures measure(const Picture &picture, karFilter &filter);

#endif
