/// \file
/// The colour value: red, green, blue, and a fourth byte for colours that are inherited or symbolic.
#ifndef KAR_COLOR_H
#define KAR_COLOR_H

#include "karexport.h"
#include "karstring.h"

/// What stands in the fourth byte of a colour that isn't a plain one. The values are numbers and no flags.
enum FARBWERTE_SPECIAL : int {
    FARBWERT_VONLAYER = 1,      ///< colour of the layer
    FARBWERT_VONBLOCK = 2,      ///< colour of the block
    FARBWERT_VONBACKGROUND = 3, ///< background colour
    FARBWERT_VONFOREGROUND = 4, ///< foreground colour
};

/// The DXF colour index, 0 to 255. Indices without a name here lie on the colour wheel or the ramp of greys.
enum ACAD_Color : int {
    ACAD_COLOR_NONE = 0,         ///< black
    ACAD_COLOR_RED = 1,          ///< (255, 0, 0)
    ACAD_COLOR_YELLOW = 2,       ///< (255, 255, 0)
    ACAD_COLOR_GREEN = 3,        ///< (0, 255, 0)
    ACAD_COLOR_CYAN = 4,         ///< (0, 255, 255)
    ACAD_COLOR_BLUE = 5,         ///< (0, 0, 255)
    ACAD_COLOR_MAGENTA = 6,      ///< (255, 0, 255)
    ACAD_COLOR_WHITE = 7,        ///< white; what `karColor::acad` gives for black as well
    ACAD_COLOR_DARK_GRAY = 8,    ///< (128, 128, 128)
    ACAD_COLOR_GRAY = 9,         ///< (192, 192, 192)
    ACAD_COLOR_WHEEL_FIRST = 10, ///< 24 hues of ten colours each from here
    ACAD_COLOR_WHEEL_LAST = 249, ///< the last of them
    ACAD_COLOR_RAMP_FIRST = 250, ///< darkest of six greys
    ACAD_COLOR_RAMP_LAST = 255,  ///< lightest of six greys
};

/// A colour in four bytes. `special` is 0 for a plain colour, otherwise a `FARBWERTE_SPECIAL` value, beside which the
/// three parts keep what they held.
class karColor {
public:
    /// \name Construction
    /// \{
    karColor() = default; ///< Plain black: all four bytes 0.
    karColor(unsigned char r, unsigned char g, unsigned char b) : red_(r), green_(g), blue_(b) {} ///< A plain colour.
    /// All four bytes from the low 32 bits of `v`: red in the lowest byte, then green and blue,
    /// `special` in the highest.
    karColor(unsigned long v) : red_(byteOf(v, 0)), green_(byteOf(v, 8)), blue_(byteOf(v, 16)), special_(byteOf(v, 24))
    {}
    /// Black with `special` `s`; a value outside 1 to 4 gives plain black.
    karColor(FARBWERTE_SPECIAL s)
        : special_(s >= FARBWERT_VONLAYER && s <= FARBWERT_VONFOREGROUND ? static_cast<unsigned char>(s)
                                                                         : static_cast<unsigned char>(0))
    {}
    /// The plain colour of a DXF index; outside 0 to 255 black with the mark of the layer's colour.
    /// Note: the assignment from such an index gives plain black.
    karColor(ACAD_Color c) { init(c); }
    karColor(const karColor &) = default; ///< Copies all four bytes.
    /// \}

    /// \name Assignment
    /// \{
    karColor &operator=(const karColor &) = default; ///< Copies all four bytes.
    /// The plain colour of a DXF index; outside 0 to 255 plain black.
    KAR_API karColor &operator=(ACAD_Color c);
    /// \}

    /// \name Reading
    /// \{

    /// One byte as stored, 0 to 255.
    unsigned char red() const { return red_; }
    unsigned char green() const { return green_; }
    unsigned char blue() const { return blue_; }
    unsigned char special() const { return special_; }
    /// The four bytes as one number, below 2^32: red lowest, then green, blue, and `special` highest.
    unsigned long rgbs() const { return pack(red_, green_, blue_, special_); }
    /// The same with blue lowest, then green, red, and `special` highest.
    unsigned long bgrs() const { return pack(blue_, green_, red_, special_); }
    /// \}

    /// \name Changing
    /// \{

    /// Stores one byte; the others stay.
    void red(unsigned char value) { red_ = value; }
    void green(unsigned char value) { green_ = value; }
    void blue(unsigned char value) { blue_ = value; }
    void special(unsigned char value) { special_ = value; }
    /// Stores the mark alone; the three parts stay.
    karColor &SetColorVONLAYER() { return mark(FARBWERT_VONLAYER); }
    karColor &SetColorVONBLOCK() { return mark(FARBWERT_VONBLOCK); }           ///< \overload
    karColor &SetColorVONBACKGROUND() { return mark(FARBWERT_VONBACKGROUND); } ///< \overload
    karColor &SetColorVONFOREGROUND() { return mark(FARBWERT_VONFOREGROUND); } ///< \overload
    /// \}

    /// \name Kind of colour
    /// Note: these test bits of `special`, whose values are numbers. A background colour (3) is also one of the layer
    /// and one of the block, and colours of the layer (1) and of the block (2) also are background colours.
    /// \{
    bool IsColorVONLAYER() const { return (special_ & 1) != 0; }      ///< Bit 0.
    bool IsColorVONBLOCK() const { return (special_ & 2) != 0; }      ///< Bit 1.
    bool IsColorVONBACKGROUND() const { return (special_ & 3) != 0; } ///< Bit 0 or bit 1.
    bool IsColorVONFOREGROUND() const { return (special_ & 4) != 0; } ///< Bit 2.
    /// \}

    /// \name Relations: all four bytes
    /// \{
    bool operator==(const karColor &o) const { return rgbs() == o.rgbs(); } ///< All four bytes are equal.
    bool operator!=(const karColor &o) const { return rgbs() != o.rgbs(); } ///< A byte differs.
    /// \}

    /// \name Arithmetic, part by part
    /// Note: `special` of the result is 0.
    /// \{
    karColor invers() const { return parts(255 - red_, 255 - green_, 255 - blue_); } ///< The complement.
    /// Exclusive or.
    karColor operator^(const karColor &o) const { return parts(red_ ^ o.red_, green_ ^ o.green_, blue_ ^ o.blue_); }
    karColor &operator^=(const karColor &o) { return *this = *this ^ o; } ///< Exclusive or.
    /// 255 for a part below 128, otherwise 0.
    karColor contrast() const { return parts(contrastOf(red_), contrastOf(green_), contrastOf(blue_)); }
    /// The mean of both, truncated.
    karColor twilight(const karColor &o) const
    {
        return parts((red_ + o.red_) / 2, (green_ + o.green_) / 2, (blue_ + o.blue_) / 2);
    }
    /// \}

    /// \name Conversion
    /// \{

    /// The text "RGB(r,g,b)" of the three parts. `special` isn't told, and the flag changes nothing.
    KAR_API karString name(bool flag) const;
    /// The DXF index by `vColor::ConvRGB2DXF`; black and white are both 7.
    /// Note: `special` goes along in the highest byte, so the exact values match a plain colour only.
    KAR_API ACAD_Color acad() const;
    /// The IGES colour number by `vColor::ConvRGB2IGES`, 0 if there is none.
    /// Note: `special` goes along in the highest byte, so a colour that isn't plain gives 0.
    KAR_API int iges() const;
    /// \}

private:
    KAR_API void init(ACAD_Color c);

    static unsigned char byteOf(unsigned long v, int shift) { return static_cast<unsigned char>((v >> shift) & 0xff); }
    static int contrastOf(int part) { return part < 128 ? 255 : 0; }
    static karColor parts(int r, int g, int b)
    {
        return karColor(static_cast<unsigned char>(r), static_cast<unsigned char>(g), static_cast<unsigned char>(b));
    }
    static unsigned long pack(unsigned long byte0, unsigned long byte1, unsigned long byte2, unsigned long byte3)
    {
        return byte0 | (byte1 << 8) | (byte2 << 16) | (byte3 << 24);
    }
    karColor &mark(FARBWERTE_SPECIAL s)
    {
        special_ = static_cast<unsigned char>(s);
        return *this;
    }

    unsigned char red_ = 0;
    unsigned char green_ = 0;
    unsigned char blue_ = 0;
    unsigned char special_ = 0;
};

#endif
