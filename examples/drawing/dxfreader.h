// From a DXF text to a drawing, by dxflib.
#ifndef DXFREADER_H
#define DXFREADER_H

#include "drawing.h"
#include "operation.h"

#include <string>

/// Reads a file into an empty drawing. Throws `DrawingError`; the drawing then holds what was read before, and so it
/// does after a break.
void readDxf(const std::string &path, Drawing &drawing, karFilter &filter);

/// \overload the groups that `checkedDxf` gives.
void readDxfText(const std::string &groups, Drawing &drawing, Phase &phase);

#endif
