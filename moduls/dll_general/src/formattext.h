// The usual conversions of `printf` without the C library.
#ifndef KAR_FORMAT_TEXT_H
#define KAR_FORMAT_TEXT_H

#include <cstdarg>
#include <cstddef>

namespace kar::text {

/// Writes what `vsnprintf` would, byte by byte the same, and gives the length, if the format has nothing but ordinary
/// characters and the conversions d, i, u, x, c, s and f with width, the flags "-" and "0", of signed numbers "+" and
/// " " too, precision of s and f, and the letter l. Otherwise, or if `room` bytes don't hold text and terminator, -1,
/// and `out` means nothing.
int writeUsualFormat(char *out, std::size_t room, const char *format, std::va_list list);

} // namespace kar::text

#endif
