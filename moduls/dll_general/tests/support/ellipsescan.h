// The box of a whole turned ellipse by its steps written out, and the comparison of two boxes.
#ifndef KAR_TEST_ELLIPSE_SCAN_H
#define KAR_TEST_ELLIPSE_SCAN_H

#include "karrect.h"
#include "testnumbers.h"

#include <cmath>

/// Cosines and sines of the degrees, each from its own call.
struct DegreeTable {
    double cosine[361], sine[361];

    DegreeTable()
    {
        for (int i = 0; i <= 360; ++i) {
            const double t = i * 0.017453292519943295;
            cosine[i] = std::cos(t);
            sine[i] = std::sin(t);
        }
    }
};

/// Bit by bit.
inline bool isSame(const karD_Rect &r, const karD_Rect &o)
{
    return sameBits(r.left(), o.left()) && sameBits(r.bottom(), o.bottom()) && sameBits(r.right(), o.right()) &&
           sameBits(r.top(), o.top());
}

/// The steps written out, for a rotation that isn't along or across the axes.
inline karD_Rect scanned(double cx, double cy, double a, double b, double rotation)
{
    static const DegreeTable samples;
    const double c = std::cos(rotation), s = std::sin(rotation);
    double minX = 1e+100, minY = 1e+100, maxX = -1e+100, maxY = -1e+100;
    for (int i = 0; i <= 360; ++i) {
        const double u = a * samples.cosine[i];
        const double v = b * samples.sine[i];
        const double x = ((u * c) + (v * s)) + cx;
        const double y = ((u * s) + cy) - (v * c);
        if (x < minX)
            minX = x;
        if (x > maxX)
            maxX = x;
        if (y < minY)
            minY = y;
        if (y > maxY)
            maxY = y;
    }
    return karD_Rect(minX, minY, maxX, maxY);
}

#endif
