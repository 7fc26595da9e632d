// The text of a DXF file, checked before a parser sees it.
#ifndef DXFTEXT_H
#define DXFTEXT_H

#include <stdexcept>
#include <string>

/// What keeps a drawing from being read; `what()` is one line for the user, without the file's name.
class DrawingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads `path` and gives its text up to and including the EOF group; what stands behind it is dropped.
/// Every group has a code from -5 to 1071 and a value; real and integer values are numbers in range.
/// Throws `DrawingError` for a missing file, a directory, an empty file, a binary drawing, a text that is no DXF, one that
/// ends early, and a number that isn't one or is out of range.
std::string readDxfText(const std::string &path);

#endif
