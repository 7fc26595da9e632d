// From a DXF text to a drawing, by dxflib.
#ifndef DXFREADER_H
#define DXFREADER_H

#include "drawing.h"

#include <string>

/// Reads the file into an empty drawing. Throws `DrawingError`; the drawing then holds what was read before.
void readDxf(const std::string &path, Drawing &drawing);

#endif
