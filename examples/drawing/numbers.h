// Numbers, colours and texts as files and reports show them.
#ifndef NUMBERS_H
#define NUMBERS_H

#include <krkgeneral.h>

#include <string>

/// With so many places behind the point, without zeros at the end; never "-0".
std::string decimal(double value, int places);

/// The places that show a millionth of `span`, but no more.
int placesFor(double span);

/// "#RRGGBB".
std::string hex(const karColor &colour);

/// Text in UTF-8: bytes that are no UTF-8 count as Latin 1, control characters vanish.
std::string utf8(const std::string &text);

#endif
