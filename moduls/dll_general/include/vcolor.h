/// \file
/// Conversions of packed colours: to and from the colour numbers of exchange formats, and to and from text.
#ifndef V_COLOR_H
#define V_COLOR_H

#include "karexport.h"

class karString;

/// Packed colours and the colour numbers of DXF and IGES. It holds nothing. A packed colour has red in its lowest byte,
/// green in the next, then blue.
class vColor {
public:
    /// The IGES colour number, 1 to 8, of one of the eight pure colours; 0 for every other value.
    /// Note: the whole number is compared, so bits above the three bytes give 0.
    KAR_API static int ConvRGB2IGES(long rgb);

    /// The DXF index of a colour. Fifteen values match exactly, as whole numbers: black and white (7), the six
    /// other pure colours (1 to 6), and seven greys (8, 9, 250 to 254). Every other colour comes from the low three
    /// bytes and gets an index of the colour wheel, 10 times the hue number (1 to 24) plus the brightness (0, 2, 4, 6,
    /// 8 from bright to dark) plus 1 if it is pale.
    /// Note: black and white are both 7. A grey that doesn't match exactly lies on the wheel too: 0x808080 gives 95.
    /// There is no ramp of greys behind the exact values. Those are not the greys of `ConvDXF2RGB`, so the two don't
    /// invert each other.
    KAR_API static int ConvRGB2DXF(long rgb);

    /// The packed colour of a DXF index; outside 0 to 255 it gives 0. 0 to 9 and 250 to 255 are fixed, the others lie
    /// on a wheel of 24 hues with five brightnesses each; odd indices are pale, no part of them below 127.
    KAR_API static long ConvDXF2RGB(int index);
};

/// Packed colours and their text form. It holds nothing.
class vColorName {
public:
    /// Writes "RGB(r,g,b)" with the three parts as decimal numbers to `out`, and gives 0. The flag changes nothing.
    /// Note: no name is ever written.
    KAR_API static int Conv(long rgb, karString &out, int flag);

    /// The packed colour of a text that holds "RGB", behind it "(", and then three numbers that end at ",", "," and
    /// ")". Whatever stands before "RGB", between it and "(", or behind ")" is passed over. Null, a text without one of
    /// these marks, or no memory for a copy gives 0. A number is trimmed of blanks and tabs and read by
    /// `karString::s2int`: digits alone are decimal, everything else is hexadecimal, and what isn't a number gives 0.
    /// Values above 255 count as 255.
    /// Note: there is no lower limit. A number below 0 goes into blue * 65536 + green * 256 + red as it is; the sum
    /// wraps at 32 bits.
    /// Note: `errno` isn't cleared, neither before nor between the numbers: with `ERANGE` in it, every number that
    /// isn't digits alone gives 0. The numbers in front of a missing mark are read too and may leave it there.
    KAR_API static long Conv(const char *text);
};

#endif
