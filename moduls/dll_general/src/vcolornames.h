// The sixteen named colours.
#ifndef V_COLOR_NAMES_H
#define V_COLOR_NAMES_H

namespace kar {

struct NamedColor {
    long packed;      ///< red in the lowest byte
    const char *name; ///< null in the row that ends the table
};

/// The library carries these names and reads none of them: the text form of a colour is always the numeric one. The
/// attribute keeps the table in the library although nothing refers to it.
[[gnu::used]] static const NamedColor namedColors[] = {
    {0x000000, "Black"},
    {0x0000FF, "Red"},
    {0x00FF00, "Green"},
    {0x00FFFF, "Yellow"},
    {0xFF0000, "Blue"},
    {0xFF00FF, "Magenta"},
    {0xFFFF00, "Cyan"},
    {0xFFFFFF, "White"},
    {0xC0C0C0, "Gray"},
    {0x000080, "Dark Red"},
    {0x008000, "Dark Green"},
    {0x008080, "Dark Yellow"},
    {0x800000, "Dark Blue"},
    {0x800080, "Dark Magenta"},
    {0x808000, "Dark Cyan"},
    {0x808080, "Dark Gray"},
    {0, nullptr},
};

} // namespace kar

#endif
