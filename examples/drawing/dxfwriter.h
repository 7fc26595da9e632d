// The picture of a drawing as DXF, by dxflib.
#ifndef DXFWRITER_H
#define DXFWRITER_H

#include "picture.h"

#include <string>

/// Writes points, texts and curves as they lie in the picture: without blocks, and polylines with an elliptical arc in
/// pieces. False if the file doesn't take it all.
bool writeDxf(const std::string &path, const Picture &picture, const Drawing &drawing);

#endif
