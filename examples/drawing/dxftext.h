// The text of a DXF file, checked before a parser sees it.
#ifndef DXFTEXT_H
#define DXFTEXT_H

#include "texts.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// What keeps a drawing from being read; `what()` is one line for the user, without the file's name.
class DrawingError : public std::runtime_error {
public:
    explicit DrawingError(const karString &text) : std::runtime_error(text) {}
};

/// The whole file; "-" is standard input. Where a signal interrupts the wait for it, `isStopped` tells whether to give
/// up, and the result is empty then. Throws `DrawingError` for a missing file, a directory and an empty file.
std::string readFile(
    const std::string &path, const std::function<bool()> &isStopped = [] { return false; });

/// The groups of a drawing up to and including EOF, one line for each code and each value; what stands behind is
/// dropped. Every group has a code from -5 to 1071 and a value, which is cut to what the parser takes; real and integer
/// values are numbers in range, and an entity counts no more parts than the file has lines.
/// Throws `DrawingError` for a binary drawing, a text that is no DXF, one that ends early, and a number that isn't one.
std::string checkedDxf(std::string_view text);

#endif
