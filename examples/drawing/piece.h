// Straight pieces and elliptical arcs of the plane: what every entity is made of once it is placed.
#ifndef PIECE_H
#define PIECE_H

#include "placement.h"

#include <krkgeneral.h>

constexpr double pi = 3.141592653589793;
constexpr double fullTurn = 6.283185307179586;
constexpr double largestCoordinate = 1e15; ///< beyond, doubles are too coarse to draw with

/// An angle in [0, 2*pi).
double normalised(double angle);

/// A straight piece or, where `curved`, an arc of an ellipse with `a` >= `b` > 0. A path runs from `start` to `end`.
struct Piece {
    karD_Point start;
    karD_Point end;
    bool curved = false;

    karD_Point centre;
    double a = 0.0;
    double b = 0.0;
    double rotation = 0.0;  ///< of the longer axis, radians
    double from = 0.0;      ///< parameter in [0, 2*pi) where the arc begins, counter-clockwise
    double sweep = 0.0;     ///< up to 2*pi, which is the whole ellipse
    bool clockwise = false; ///< the path runs against the parameter, from the end of the sweep to `from`

    bool whole() const { return curved && sweep >= fullTurn; }
    bool round() const { return curved && a == b; }
    double to() const { return normalised(from + sweep); }
    bool holds(double parameter) const { return normalised(parameter - from) <= sweep; }
    karD_Point at(double parameter) const; ///< of the ellipse
};

Piece straightPiece(const karD_Point &start, const karD_Point &end);

/// The arc centre + u*cos t + v*sin t for t from `from` over `sweep` radians: its shadow in the plane, along z. An
/// ellipse that is seen edge-on becomes the straight piece between its outermost points.
Piece curvedPiece(const kar3D_Point &centre, const kar3D_Point &u, const kar3D_Point &v, double from, double sweep);

/// The same piece along another path: from `end` to `start`.
Piece reversed(const Piece &piece);

/// The box around the piece.
karD_Rect exactBox(const Piece &piece);
/// The box around samples one degree of the parameter apart; it lies inside the exact one.
karD_Rect sampledBox(const Piece &piece);

double lengthOf(const Piece &piece);

/// Distance of a point from the unbounded curve, to first order, with a sign; `normal` becomes the unit direction in
/// which it grows.
double offset(const Piece &piece, const karD_Point &point, karD_Point &normal);
/// Distance of a point from the bounded piece; to first order, so right for points near it.
double gap(const Piece &piece, const karD_Point &point);

#endif
