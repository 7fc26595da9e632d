// The usual conversions of `printf` without the C library.
#ifndef KAR_FORMAT_TEXT_H
#define KAR_FORMAT_TEXT_H

#include <cstdarg>
#include <cstddef>

namespace kar::text {

/// Writes what `vsnprintf` would, byte by byte the same, and gives the length; -1 for what is left to the C library,
/// and then `out` means nothing. What it writes are ordinary characters, "%%" and the conversions d, i, u, x, c, s and
/// f, with width and the flag "-"; numbers also with the flag "0" and the letter l, signed ones with "+" and " "; s and
/// f with a precision. It leaves widths and precisions of more than three digits, the null text, infinities, what isn't
/// a number, a decimal point of several bytes, and whatever `room` bytes don't hold with its terminator.
int writeUsualFormat(char *out, std::size_t room, const char *format, std::va_list list);

} // namespace kar::text

#endif
